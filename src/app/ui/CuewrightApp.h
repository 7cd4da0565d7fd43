#pragma once

#include "app/model/AppModel.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

class QUrl;
class QWidget;

namespace cuewright {

class AppMenus;
class EditorWindow;

// The program: the one model, made before any window, the editor window with its menu bar,
// and the settings window. Files named on the command line and files the desktop asks us
// to open all go through the model's openExternalURL.
class CuewrightApp final : public QObject {
    Q_OBJECT
public:
    struct Options {
        // Empty members get the real ones: the Qt player, QFileDialog, the system clock.
        AppModelSeams seams;
        // Opens links in the default browser unless replaced.
        std::function<void(const QUrl&)> openLink;
    };

    explicit CuewrightApp(Options options = {}, QObject* parent = nullptr);
    ~CuewrightApp() override;

    AppModel& model() const { return *m_model; }
    EditorWindow& window() const { return *m_window; }
    AppMenus& menus() const { return *m_menus; }
    // Made on first use.
    QWidget& settingsWindow();

    void showSettings();
    void checkForUpdates();
    // Command-line arguments: paths or file URLs, relative to the working directory.
    void openArguments(const QStringList& arguments);

    // The update check lands from elsewhere; until it is set, the item says it is unavailable.
    void setUpdateChecker(std::function<void(AppModel&, QWidget* parent)> checker);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_installDialogs;
    std::unique_ptr<AppModel> m_model;
    std::function<void(const QUrl&)> m_openLink;
    std::function<void(AppModel&, QWidget*)> m_updateChecker;
    std::unique_ptr<EditorWindow> m_window;
    AppMenus* m_menus = nullptr;
    std::unique_ptr<QWidget> m_settings;
};

} // namespace cuewright
