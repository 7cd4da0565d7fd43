#include "ui/UpdateCheck.h"

#include "update/SelfUpdater.h"
#include "update/Updater.h"

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QWidget>
#include <QtConcurrent/QtConcurrentRun>

namespace cuewright {

namespace {

    void showMessage(QWidget* parent, const QString& title, const QString& text)
    {
        QMessageBox box(parent);
        box.setWindowTitle(QStringLiteral("Vantrel Cuewright"));
        box.setText(title);
        box.setInformativeText(text);
        box.exec();
    }

    // Runs `work` on a worker thread and hands its result to `done` on the thread of `context`.
    template <typename Result>
    void runThen(QObject* context, std::function<Result()> work, std::function<void(Result)> done)
    {
        auto* watcher = new QFutureWatcher<Result>(context);
        QObject::connect(watcher, &QFutureWatcherBase::finished, watcher, [watcher, done = std::move(done)] {
            watcher->deleteLater();
            done(watcher->result());
        });
        watcher->setFuture(QtConcurrent::run(std::move(work)));
    }

    void installUpdate(const UpdateInfo& info, QPointer<QWidget> parent, const UpdateCheckServices& services)
    {
        QObject* context = parent ? static_cast<QObject*>(parent.data()) : QCoreApplication::instance();
        runThen<bool>(
            context,
            [info, install = services.install] {
                try {
                    install(info);
                    return true;
                } catch (...) {
                    return false;
                }
            },
            [parent, terminate = services.terminate](bool installed) {
                if (installed)
                    terminate();
                else
                    showMessage(parent, QStringLiteral("The update could not be installed"),
                        QStringLiteral("Download it from the website instead."));
            });
    }

    void answer(const std::optional<UpdateInfo>& info, QPointer<QWidget> parent, const UpdateCheckServices& services)
    {
        if (!info) {
            showMessage(parent, QStringLiteral("Vantrel Cuewright is up to date"),
                QStringLiteral("You already have the latest version."));
            return;
        }
        QMessageBox offer(parent);
        offer.setWindowTitle(QStringLiteral("Vantrel Cuewright"));
        offer.setText(QStringLiteral("Vantrel Cuewright %1 is available").arg(QString::fromStdString(info->version)));
        offer.setInformativeText(QString::fromStdString(info->notes));
        QPushButton* install = offer.addButton(QStringLiteral("Install Update"), QMessageBox::AcceptRole);
        offer.addButton(QStringLiteral("Later"), QMessageBox::RejectRole);
        offer.setDefaultButton(install);
        offer.exec();
        if (offer.clickedButton() == install)
            installUpdate(*info, parent, services);
    }

} // namespace

UpdateCheckServices UpdateCheckServices::standard(const UpdateSession& session)
{
    UpdateCheckServices services;
    services.check = [session](const QString& currentVersion) {
        return Updater::check(Updater::manifestURL(), currentVersion.toStdString(), session);
    };
    services.install = [session](const UpdateInfo& info) { SelfUpdater::install(info, session); };
    services.terminate = [] { QCoreApplication::quit(); };
    return services;
}

void checkForUpdates(const QString& currentVersion, QWidget* parent, const UpdateCheckServices& services)
{
    QPointer<QWidget> guardedParent(parent);
    QObject* context = parent ? static_cast<QObject*>(parent) : QCoreApplication::instance();
    runThen<std::optional<UpdateInfo>>(
        context, [currentVersion, check = services.check] { return check(currentVersion); },
        [guardedParent, services](std::optional<UpdateInfo> info) { answer(info, guardedParent, services); });
}

} // namespace cuewright
