#include "UiTestSupport.h"

#include "app/ui/AppMenus.h"
#include "app/ui/SettingsView.h"

#include <QAction>
#include <QFile>
#include <QFileOpenEvent>
#include <QLabel>
#include <QMenu>

namespace cuewright::testing {
namespace {

    using AppMenusTest = AppTest;

    TEST_F(AppMenusTest, theMenusSitInTheirGroupsWithTheirShortcuts)
    {
        AppMenus& menus = app->menus();
        EXPECT_EQ(menus.undo->shortcut(), QKeySequence("Ctrl+Z"));
        EXPECT_EQ(menus.redo->shortcut(), QKeySequence("Ctrl+Shift+Z"));
        EXPECT_EQ(menus.openProject->shortcut(), QKeySequence("Ctrl+O"));
        EXPECT_EQ(menus.addVideo->shortcut(), QKeySequence("Ctrl+I"));
        EXPECT_EQ(menus.saveProject->shortcut(), QKeySequence("Ctrl+S"));
        EXPECT_TRUE(menus.relinkVideo->shortcut().isEmpty());
        EXPECT_EQ(menus.addCaption->shortcut(), QKeySequence("Ctrl+T"));
        EXPECT_TRUE(menus.transcribe->shortcut().isEmpty());
        EXPECT_EQ(menus.previousCaption->shortcut(), QKeySequence("Ctrl+Up"));
        EXPECT_EQ(menus.nextCaption->shortcut(), QKeySequence("Ctrl+Down"));
        EXPECT_EQ(menus.setStartToPlayhead->shortcut(), QKeySequence("Alt+["));
        EXPECT_EQ(menus.setEndToPlayhead->shortcut(), QKeySequence("Alt+]"));
        EXPECT_EQ(menus.nudgeLeft->shortcut(), QKeySequence("Alt+Left"));
        EXPECT_EQ(menus.nudgeRight->shortcut(), QKeySequence("Alt+Right"));
        EXPECT_EQ(menus.mergeWithNext->shortcut(), QKeySequence("Ctrl+Shift+M"));

        EXPECT_EQ(menus.undo->text(), "Undo");
        EXPECT_EQ(menus.openProject->text(), "Open Project\u2026");
        EXPECT_EQ(menus.checkForUpdates->text(), "Check for Updates\u2026");
        EXPECT_EQ(menus.feedback->text(), "Cuewright Feedback\u2026");
        EXPECT_TRUE(menus.editMenu()->actions().contains(menus.undo));
        EXPECT_TRUE(menus.fileMenu()->actions().contains(menus.mergeWithNext));
        EXPECT_TRUE(menus.applicationMenu()->actions().contains(menus.checkForUpdates));
        EXPECT_TRUE(menus.helpMenu()->actions().contains(menus.feedback));
        // Dividers part the File menu into four blocks.
        int dividers = 0;
        for (QAction* action : menus.fileMenu()->actions())
            dividers += action->isSeparator();
        EXPECT_EQ(dividers, 3);
    }

    TEST_F(AppMenusTest, withoutSelectionTheCueItemsAreOffAndTheirKeysDoNothing)
    {
        AppMenus& menus = app->menus();
        loadVideoWithCues({ { 1, 3, "One" }, { 5, 7, "Two" } });
        EXPECT_TRUE(menus.nudgeLeft->isEnabled());
        model().setSelectedCueID(std::nullopt);
        for (QAction* action : { menus.setStartToPlayhead, menus.setEndToPlayhead, menus.nudgeLeft, menus.nudgeRight,
                 menus.mergeWithNext })
            EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
        EXPECT_TRUE(menus.addCaption->isEnabled());
        EXPECT_TRUE(menus.transcribe->isEnabled());

        const CaptionDocument before = model().document();
        const QString status = model().statusMessage();
        QTest::keyClick(&app->window(), Qt::Key_Left, Qt::AltModifier);
        EXPECT_EQ(model().document(), before);
        EXPECT_EQ(model().statusMessage(), status);
    }

    TEST_F(AppMenusTest, mergeFollowsWhetherTheSelectionHasANextCue)
    {
        AppMenus& menus = app->menus();
        loadVideoWithCues({ { 1, 3, "One" }, { 5, 7, "Two" } });
        model().setSelectedCueID(model().document().cues[0].id);
        EXPECT_TRUE(menus.mergeWithNext->isEnabled());
        model().setSelectedCueID(model().document().cues[1].id);
        EXPECT_EQ(menus.mergeWithNext->isEnabled(), model().canMergeSelectedCueWithNext());
    }

    TEST_F(AppMenusTest, navigationIsOffForAnEmptyDocumentAndItsKeyDoesNothing)
    {
        AppMenus& menus = app->menus();
        model().loadVideo(file("talk.mov"));
        EXPECT_FALSE(menus.previousCaption->isEnabled());
        EXPECT_FALSE(menus.nextCaption->isEnabled());
        const QString status = model().statusMessage();
        QTest::keyClick(&app->window(), Qt::Key_Up, Qt::ControlModifier);
        EXPECT_EQ(model().statusMessage(), status);

        model().addCue(2);
        EXPECT_TRUE(menus.nextCaption->isEnabled());
        model().setSelectedCueID(std::nullopt);
        QTest::keyClick(&app->window(), Qt::Key_Down, Qt::ControlModifier);
        EXPECT_EQ(model().statusMessage(), "Selected next caption.");
        EXPECT_EQ(model().selectedCueID(), model().document().cues[0].id);
    }

    TEST_F(AppMenusTest, undoTurnsOffAtOnceWhenItEmptiesTheStack)
    {
        AppMenus& menus = app->menus();
        model().loadVideo(file("talk.mov"));
        EXPECT_FALSE(menus.undo->isEnabled());
        EXPECT_FALSE(menus.redo->isEnabled());
        model().addCue(1);
        EXPECT_TRUE(menus.undo->isEnabled());

        QTest::keyClick(&app->window(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_TRUE(model().document().cues.empty());
        EXPECT_FALSE(menus.undo->isEnabled());
        EXPECT_TRUE(menus.redo->isEnabled());

        QTest::keyClick(&app->window(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(model().document().cues.size(), 1u);
        EXPECT_FALSE(menus.redo->isEnabled());
    }

    TEST_F(AppMenusTest, relinkIsOnForASavedProjectAndForAMissingVideo)
    {
        AppMenus& menus = app->menus();
        EXPECT_FALSE(menus.relinkVideo->isEnabled());
        loadVideoWithCues({ { 1, 3, "One" } });
        EXPECT_FALSE(menus.relinkVideo->isEnabled());

        dialogs->saveAnswers.push_back(file("talk.vantrelcaption"));
        model().saveProject();
        ASSERT_FALSE(model().projectURL().isEmpty()) << model().statusMessage().toStdString();
        EXPECT_TRUE(menus.relinkVideo->isEnabled());

        // The same project with its video gone opens in the missing state.
        model().loadVideo(file("other.mov"));
        EXPECT_FALSE(menus.relinkVideo->isEnabled());
        model().openProject(file("talk.vantrelcaption"));
        ASSERT_TRUE(waitFor([&] { return model().missingVideoPath().has_value(); }));
        EXPECT_TRUE(menus.relinkVideo->isEnabled());
    }

    TEST_F(AppMenusTest, filesFromTheDesktopGoThroughOpenExternalURL)
    {
        QFile text(dir.filePath("notes.txt"));
        ASSERT_TRUE(text.open(QIODevice::WriteOnly));
        text.write("hello\n");
        text.close();
        QFileOpenEvent openText(file("notes.txt"));
        QCoreApplication::sendEvent(qApp, &openText);
        EXPECT_EQ(model().statusMessage(), "This file is not a Vantrel Cuewright project or supported video.");

        loadVideoWithCues({ { 1, 3, "One" } });
        dialogs->saveAnswers.push_back(file("talk.vantrelcaption"));
        model().saveProject();
        model().loadVideo(file("other.mov"));
        QFileOpenEvent openProject(file("talk.vantrelcaption"));
        QCoreApplication::sendEvent(qApp, &openProject);
        ASSERT_TRUE(waitFor([&] { return model().projectURL() == file("talk.vantrelcaption"); }));
        EXPECT_EQ(model().document().cues.size(), 1u);

        app->openArguments({ dir.filePath("notes.txt") });
        EXPECT_EQ(model().statusMessage(), "This file is not a Vantrel Cuewright project or supported video.");
    }

    TEST_F(AppMenusTest, feedbackAndSettingsLinksOpenTheModelsURLs)
    {
        app->menus().feedback->trigger();
        ASSERT_EQ(openedLinks.size(), 1u);
        EXPECT_EQ(openedLinks[0], model().feedbackURL());

        app->menus().settings->trigger();
        auto* settings = app->settingsWindow().findChild<SettingsView*>();
        ASSERT_NE(settings, nullptr);
        EXPECT_TRUE(app->settingsWindow().isVisible());
        EXPECT_EQ(settings->width(), 500);
        EXPECT_EQ(settings->versionLabel()->text(), "Vantrel Cuewright " + model().version());
        emit settings->websiteLink()->linkActivated(settings->websiteLink()->toolTip());
        emit settings->feedbackLink()->linkActivated(settings->feedbackLink()->toolTip());
        ASSERT_EQ(openedLinks.size(), 3u);
        EXPECT_EQ(openedLinks[1], model().websiteURL());
        EXPECT_EQ(openedLinks[2], model().feedbackURL());
    }

} // namespace
} // namespace cuewright::testing
