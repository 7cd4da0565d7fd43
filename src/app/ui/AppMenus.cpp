#include "app/ui/AppMenus.h"

#include "app/model/AppModel.h"
#include "app/ui/ModelObserver.h"
#include "core/CaptionNavigation.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QUrl>

namespace cuewright {

namespace {

    constexpr double nudgeStepSeconds = 0.1;

    QAction* item(QMenu* menu, const QString& text, const QString& name, const QKeySequence& shortcut = {})
    {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        if (!shortcut.isEmpty()) {
            action->setShortcut(shortcut);
            // The items work from anywhere in the window, as the menu bar's keys do.
            action->setShortcutContext(Qt::WindowShortcut);
        }
        return action;
    }

} // namespace

AppMenus::AppMenus(AppModel& model, QMenuBar* menuBar, Hooks hooks, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_hooks(std::move(hooks))
{
    buildApplicationMenu(menuBar);
    buildFileMenu(menuBar);
    buildEditMenu(menuBar);
    buildHelpMenu(menuBar);
}

void AppMenus::buildApplicationMenu(QMenuBar* menuBar)
{
    m_applicationMenu = menuBar->addMenu(tr("&Cuewright"));
    settings = item(m_applicationMenu, tr("Settings\u2026"), QStringLiteral("settingsItem"),
        QKeySequence(Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
    connect(settings, &QAction::triggered, this, [this] {
        if (m_hooks.showSettings)
            m_hooks.showSettings();
    });
    checkForUpdates = item(m_applicationMenu, tr("Check for Updates\u2026"), QStringLiteral("checkForUpdatesItem"));
    checkForUpdates->setMenuRole(QAction::ApplicationSpecificRole);
    connect(checkForUpdates, &QAction::triggered, this, [this] {
        if (m_hooks.checkForUpdates)
            m_hooks.checkForUpdates();
    });
    m_applicationMenu->addSeparator();
    quit
        = item(m_applicationMenu, tr("Quit Cuewright"), QStringLiteral("quitItem"), QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, [this] {
        if (m_hooks.quit)
            m_hooks.quit();
    });
}

void AppMenus::buildFileMenu(QMenuBar* menuBar)
{
    m_fileMenu = menuBar->addMenu(tr("&File"));
    QMenu* menu = m_fileMenu;
    AppModel* model = &m_model;

    openProject
        = item(menu, tr("Open Project\u2026"), QStringLiteral("openProjectItem"), QKeySequence(Qt::CTRL | Qt::Key_O));
    connect(openProject, &QAction::triggered, model, [model] { model->openProject(); });
    addVideo = item(menu, tr("Add Video\u2026"), QStringLiteral("addVideoItem"), QKeySequence(Qt::CTRL | Qt::Key_I));
    connect(addVideo, &QAction::triggered, model, [model] { model->addVideo(); });
    saveProject
        = item(menu, tr("Save Project\u2026"), QStringLiteral("saveProjectItem"), QKeySequence(Qt::CTRL | Qt::Key_S));
    connect(saveProject, &QAction::triggered, model, [model] { model->saveProject(); });
    relinkVideo = item(menu, tr("Relink Video\u2026"), QStringLiteral("relinkVideoItem"));
    connect(relinkVideo, &QAction::triggered, model, [model] { model->relinkVideo(); });
    menu->addSeparator();

    addCaption = item(menu, tr("Add Caption"), QStringLiteral("addCaptionItem"), QKeySequence(Qt::CTRL | Qt::Key_T));
    connect(addCaption, &QAction::triggered, model, [model] { model->addCue(); });
    transcribe = item(menu, tr("Transcribe Locally"), QStringLiteral("transcribeItem"));
    connect(transcribe, &QAction::triggered, model, [model] { model->transcribe(); });
    menu->addSeparator();

    previousCaption = item(
        menu, tr("Previous Caption"), QStringLiteral("previousCaptionItem"), QKeySequence(Qt::CTRL | Qt::Key_Up));
    connect(previousCaption, &QAction::triggered, model,
        [model] { model->selectAdjacentCue(CaptionNavigation::Direction::previous); });
    nextCaption
        = item(menu, tr("Next Caption"), QStringLiteral("nextCaptionItem"), QKeySequence(Qt::CTRL | Qt::Key_Down));
    connect(nextCaption, &QAction::triggered, model,
        [model] { model->selectAdjacentCue(CaptionNavigation::Direction::next); });
    menu->addSeparator();

    setStartToPlayhead = item(menu, tr("Set Caption Start to Playhead"), QStringLiteral("setStartItem"),
        QKeySequence(Qt::ALT | Qt::Key_BracketLeft));
    connect(setStartToPlayhead, &QAction::triggered, model, [model] { model->setSelectedCueStartToPlayhead(); });
    setEndToPlayhead = item(menu, tr("Set Caption End to Playhead"), QStringLiteral("setEndItem"),
        QKeySequence(Qt::ALT | Qt::Key_BracketRight));
    connect(setEndToPlayhead, &QAction::triggered, model, [model] { model->setSelectedCueEndToPlayhead(); });
    nudgeLeft
        = item(menu, tr("Nudge Caption Left"), QStringLiteral("nudgeLeftItem"), QKeySequence(Qt::ALT | Qt::Key_Left));
    connect(nudgeLeft, &QAction::triggered, model, [model] { model->nudgeSelectedCue(-nudgeStepSeconds); });
    nudgeRight = item(
        menu, tr("Nudge Caption Right"), QStringLiteral("nudgeRightItem"), QKeySequence(Qt::ALT | Qt::Key_Right));
    connect(nudgeRight, &QAction::triggered, model, [model] { model->nudgeSelectedCue(nudgeStepSeconds); });
    mergeWithNext = item(menu, tr("Merge Caption with Next"), QStringLiteral("mergeItem"),
        QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_M));
    connect(mergeWithNext, &QAction::triggered, model, [model] { model->mergeSelectedCueWithNext(); });

    observe(
        m_model, this,
        [this] { relinkVideo->setEnabled(!m_model.projectURL().isEmpty() || m_model.missingVideoPath().has_value()); },
        &AppModel::projectURLChanged, &AppModel::missingVideoPathChanged);
    observe(
        m_model, this,
        [this] {
            const bool hasCues = !m_model.document().cues.empty();
            previousCaption->setEnabled(hasCues);
            nextCaption->setEnabled(hasCues);
        },
        &AppModel::documentChanged);
    observe(
        m_model, this,
        [this] {
            const bool hasSelection = m_model.selectedCue().has_value();
            for (QAction* action : { setStartToPlayhead, setEndToPlayhead, nudgeLeft, nudgeRight })
                action->setEnabled(hasSelection);
            mergeWithNext->setEnabled(m_model.canMergeSelectedCueWithNext());
        },
        &AppModel::selectedCueIDChanged, &AppModel::documentChanged);
}

void AppMenus::buildEditMenu(QMenuBar* menuBar)
{
    m_editMenu = menuBar->addMenu(tr("&Edit"));
    AppModel* model = &m_model;
    undo = item(m_editMenu, tr("Undo"), QStringLiteral("undoItem"), QKeySequence(Qt::CTRL | Qt::Key_Z));
    connect(undo, &QAction::triggered, model, [model] { model->undo(); });
    redo = item(m_editMenu, tr("Redo"), QStringLiteral("redoItem"), QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_Z));
    connect(redo, &QAction::triggered, model, [model] { model->redo(); });
    observe(
        m_model, this,
        [this] {
            undo->setEnabled(m_model.canUndo());
            redo->setEnabled(m_model.canRedo());
        },
        &AppModel::historyChanged);
}

void AppMenus::buildHelpMenu(QMenuBar* menuBar)
{
    m_helpMenu = menuBar->addMenu(tr("&Help"));
    feedback = item(m_helpMenu, tr("Cuewright Feedback\u2026"), QStringLiteral("feedbackItem"));
    connect(feedback, &QAction::triggered, this, [this] {
        if (m_hooks.openLink)
            m_hooks.openLink(m_model.feedbackURL());
    });
}

} // namespace cuewright
