#pragma once

#include "update/UpdateInfo.h"
#include "update/UpdateSession.h"

#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace cuewright {

// What "Check for Updates…" needs of the world; tests replace these.
struct UpdateCheckServices {
    // Asks the manifest; runs on a worker thread.
    std::function<std::optional<UpdateInfo>(const QString& currentVersion)> check;
    // Downloads, verifies and starts the swap; throws on failure; runs on a worker thread.
    std::function<void(const UpdateInfo& info)> install;
    // Ends the application so that the waiting swap can proceed.
    std::function<void()> terminate;

    // The build's manifest, the real installer, and QCoreApplication::quit.
    static UpdateCheckServices standard(const UpdateSession& session = {});
};

// Checks for a newer version off the UI thread and answers in modal dialogs: up to date, or an offer
// to install, after which the application quits for the swap or says that the install failed.
// Returns at once; the dialogs appear when the answer arrives.
void checkForUpdates(const QString& currentVersion, QWidget* parent,
    const UpdateCheckServices& services = UpdateCheckServices::standard());

} // namespace cuewright
