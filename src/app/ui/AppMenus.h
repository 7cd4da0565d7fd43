#pragma once

#include <QObject>

#include <functional>

class QAction;
class QMenu;
class QMenuBar;
class QUrl;

namespace cuewright {

class AppModel;

// The menu bar: an application menu (settings, update check, quit), File, Edit and Help.
// Every item calls a command of the model; enablement follows the model's change signals.
class AppMenus final : public QObject {
    Q_OBJECT
public:
    struct Hooks {
        std::function<void()> showSettings;
        std::function<void()> checkForUpdates;
        std::function<void(const QUrl&)> openLink;
        std::function<void()> quit;
    };

    AppMenus(AppModel& model, QMenuBar* menuBar, Hooks hooks, QObject* parent = nullptr);

    QMenu* applicationMenu() const { return m_applicationMenu; }
    QMenu* fileMenu() const { return m_fileMenu; }
    QMenu* editMenu() const { return m_editMenu; }
    QMenu* helpMenu() const { return m_helpMenu; }

    QAction* undo = nullptr;
    QAction* redo = nullptr;
    QAction* openProject = nullptr;
    QAction* addVideo = nullptr;
    QAction* saveProject = nullptr;
    QAction* relinkVideo = nullptr;
    QAction* addCaption = nullptr;
    QAction* transcribe = nullptr;
    QAction* previousCaption = nullptr;
    QAction* nextCaption = nullptr;
    QAction* setStartToPlayhead = nullptr;
    QAction* setEndToPlayhead = nullptr;
    QAction* nudgeLeft = nullptr;
    QAction* nudgeRight = nullptr;
    QAction* mergeWithNext = nullptr;
    QAction* settings = nullptr;
    QAction* checkForUpdates = nullptr;
    QAction* quit = nullptr;
    QAction* feedback = nullptr;

private:
    void buildApplicationMenu(QMenuBar* menuBar);
    void buildFileMenu(QMenuBar* menuBar);
    void buildEditMenu(QMenuBar* menuBar);
    void buildHelpMenu(QMenuBar* menuBar);

    AppModel& m_model;
    Hooks m_hooks;
    QMenu* m_applicationMenu = nullptr;
    QMenu* m_fileMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QMenu* m_helpMenu = nullptr;
};

} // namespace cuewright
