#include "app/ui/CuewrightApp.h"

#include "app/ui/AppMenus.h"
#include "app/ui/EditorWindow.h"
#include "app/ui/QtFileDialogs.h"
#include "app/ui/QtMediaPlayer.h"
#include "app/ui/SettingsView.h"

// HOOK(update-check): the update dialogs are picked up as soon as they are in the tree.
#if __has_include("app/ui/UpdateCheck.h")
#include "app/ui/UpdateCheck.h"
#define CUEWRIGHT_HAS_UPDATE_CHECK 1
#endif

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileOpenEvent>
#include <QMessageBox>
#include <QUrl>
#include <QVBoxLayout>

namespace cuewright {

namespace {

    std::unique_ptr<AppModel> makeModel(AppModelSeams seams)
    {
        if (!seams.player)
            seams.player = std::make_unique<QtMediaPlayer>();
        return std::make_unique<AppModel>(std::move(seams));
    }

} // namespace

CuewrightApp::CuewrightApp(Options options, QObject* parent)
    : QObject(parent)
    , m_installDialogs(!options.seams.dialogs)
    , m_model(makeModel(std::move(options.seams)))
    , m_openLink(
          options.openLink ? std::move(options.openLink) : [](const QUrl& url) { QDesktopServices::openUrl(url); })
{
    m_window = std::make_unique<EditorWindow>(*m_model, [this](EditorWindow& window) {
        AppMenus::Hooks hooks;
        hooks.showSettings = [this] { showSettings(); };
        hooks.checkForUpdates = [this] { checkForUpdates(); };
        hooks.openLink = [this](const QUrl& url) { m_openLink(url); };
        hooks.quit = [] { QApplication::quit(); };
        m_menus = new AppMenus(*m_model, window.menuBar(), std::move(hooks), this);
    });
    if (m_installDialogs)
        m_model->setFileDialogs(std::make_unique<QtFileDialogs>(m_window.get()));

#ifdef CUEWRIGHT_HAS_UPDATE_CHECK
    setUpdateChecker([](AppModel& model, QWidget* parent) { cuewright::checkForUpdates(model.version(), parent); });
#endif

    if (qApp)
        qApp->installEventFilter(this);
}

CuewrightApp::~CuewrightApp()
{
    if (qApp)
        qApp->removeEventFilter(this);
    m_settings.reset();
    m_window.reset();
}

QWidget& CuewrightApp::settingsWindow()
{
    if (!m_settings) {
        auto window = std::make_unique<QWidget>(nullptr, Qt::Window);
        window->setObjectName(QStringLiteral("settingsWindow"));
        window->setWindowTitle(tr("Cuewright Settings"));
        auto* layout = new QVBoxLayout(window.get());
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(new SettingsView(*m_model, m_openLink, window.get()));
        layout->setSizeConstraint(QLayout::SetFixedSize);
        m_settings = std::move(window);
    }
    return *m_settings;
}

void CuewrightApp::showSettings()
{
    QWidget& settings = settingsWindow();
    settings.show();
    settings.raise();
    settings.activateWindow();
}

void CuewrightApp::setUpdateChecker(std::function<void(AppModel&, QWidget*)> checker)
{
    m_updateChecker = std::move(checker);
}

void CuewrightApp::checkForUpdates()
{
    if (m_updateChecker) {
        m_updateChecker(*m_model, m_window.get());
        return;
    }
    QMessageBox::information(
        m_window.get(), tr("Check for Updates"), tr("Checking for updates is not available in this build."));
}

void CuewrightApp::openArguments(const QStringList& arguments)
{
    for (const QString& argument : arguments) {
        if (argument.isEmpty() || argument.startsWith(QLatin1Char('-')))
            continue;
        const QUrl asUrl(argument);
        const QUrl url = asUrl.isLocalFile() ? asUrl : QUrl::fromLocalFile(QDir::current().absoluteFilePath(argument));
        m_model->openExternalURL(url);
    }
}

bool CuewrightApp::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FileOpen && watched == qApp) {
        auto* open = static_cast<QFileOpenEvent*>(event);
        const QUrl url = open->url().isValid() ? open->url() : QUrl::fromLocalFile(open->file());
        m_model->openExternalURL(url);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace cuewright
