#include "UiTestSupport.h"

#include "app/ui/ElidedLabel.h"
#include "app/ui/HeaderView.h"
#include "app/ui/StatusBarView.h"
#include "app/ui/TimeText.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>

namespace cuewright::testing {
namespace {

    using ContentViewTest = AppTest;

    // A focusable control that is not a text field; records the keys that reach it.
    class KeyRecorder final : public QWidget {
    public:
        using QWidget::QWidget;
        QList<int> keys;

    protected:
        void keyPressEvent(QKeyEvent* event) override { keys.push_back(event->key()); }
    };

    TEST(Clock, formatsWholeMinutesAndFlooredSeconds)
    {
        const std::pair<double, const char*> cases[] = {
            { 0, "0:00" },
            { 59.999, "0:59" },
            { 60, "1:00" },
            { 65.9, "1:05" },
            { 3725, "62:05" },
            { -3, "0:00" },
            { -0.5, "0:00" },
            { 1e30, nullptr },
        };
        for (const auto& [seconds, expected] : cases) {
            if (expected)
                EXPECT_EQ(clock(seconds).toStdString(), expected) << seconds;
            else
                EXPECT_FALSE(clock(seconds).startsWith('-')) << seconds;
        }
    }

    TEST_F(ContentViewTest, withoutVideoTheHeaderInvitesAndTheVideoControlsAreOff)
    {
        HeaderView* header = content().header();
        EXPECT_EQ(header->titleLabel()->fullText(), "Vantrel Cuewright");
        EXPECT_EQ(header->subtitleLabel()->text(), "Create accurate captions locally on your Mac");
        EXPECT_FALSE(header->transcribeButton()->isEnabled());
        EXPECT_TRUE(header->addVideoButton()->isEnabled());
        EXPECT_FALSE(header->saveProjectAction()->isEnabled());
        EXPECT_FALSE(header->exportButton()->isEnabled());
        EXPECT_FALSE(header->relinkVideoAction()->isVisible());
        EXPECT_EQ(header->addVideoButton()->objectName(), "addVideoButton");
        EXPECT_EQ(header->transcribeButton()->objectName(), "transcribeButton");

        StatusBarView* status = content().statusBar();
        EXPECT_FALSE(status->localOnlyLabel()->isVisible());
        EXPECT_FALSE(status->progressBar()->isVisible());
        EXPECT_EQ(status->messageLabel()->fullText(), "Add a video to begin.");
    }

    TEST_F(ContentViewTest, aLoadedVideoNamesTheWorkAndCountsItsCaptions)
    {
        loadVideoWithCues({ { 1, 3, "Hello there." } });
        HeaderView* header = content().header();
        EXPECT_EQ(header->titleLabel()->fullText(), "talk.mov");
        EXPECT_EQ(header->subtitleLabel()->text(), "1 captions");
        EXPECT_TRUE(header->transcribeButton()->isEnabled());
        EXPECT_TRUE(header->saveProjectAction()->isEnabled());
        EXPECT_TRUE(header->exportButton()->isEnabled());
        EXPECT_TRUE(content().statusBar()->localOnlyLabel()->isVisible());
        EXPECT_EQ(app->window().windowTitle(), "talk.mov \u2014 Cuewright");

        model().addCue(10);
        EXPECT_EQ(header->subtitleLabel()->text(), "2 captions");
    }

    TEST_F(ContentViewTest, longWorkShowsProgressAndBarsTranscribeAndExport)
    {
        loadVideoWithCues({ { 1, 3, "Hello there." } });
        model().transcribe();
        ASSERT_TRUE(model().isWorking());
        EXPECT_TRUE(content().statusBar()->progressBar()->isVisible());
        EXPECT_FALSE(content().header()->transcribeButton()->isEnabled());
        EXPECT_FALSE(content().header()->exportButton()->isEnabled());
        releaseTranscription->store(true);
        ASSERT_TRUE(waitFor([&] { return !model().isWorking(); }));
        EXPECT_FALSE(content().statusBar()->progressBar()->isVisible());
    }

    TEST_F(ContentViewTest, aLongFileNameStaysOnOneLine)
    {
        const QString name = QString(300, 'a') + ".mov";
        model().loadVideo(file(name));
        ElidedLabel* title = content().header()->titleLabel();
        EXPECT_EQ(title->fullText(), name);
        EXPECT_LE(title->sizeHint().height(), title->fontMetrics().height() + 1);
        EXPECT_LE(title->fontMetrics().horizontalAdvance(title->text()), title->width());
        EXPECT_LE(app->window().width(), 1400) << "the title must not widen the window";
    }

    TEST_F(ContentViewTest, theWindowCannotShrinkBelowItsMinimum)
    {
        app->window().resize(400, 300);
        QCoreApplication::processEvents();
        EXPECT_GE(content().width(), 1160);
        EXPECT_GE(content().height(), 720);
    }

    TEST_F(ContentViewTest, thePanesKeepTheirWidthLimits)
    {
        app->window().resize(1600, 900);
        QCoreApplication::processEvents();
        QSplitter* splitter = content().splitter();
        splitter->setSizes({ 1000, 100, 1000 });
        QCoreApplication::processEvents();
        const QList<int> sizes { splitter->widget(0)->width(), splitter->widget(1)->width(),
            splitter->widget(2)->width() };
        EXPECT_GE(sizes[0], 240);
        EXPECT_LE(sizes[0], 330);
        EXPECT_GE(sizes[1], 520);
        EXPECT_GE(sizes[2], 300);
        EXPECT_LE(sizes[2], 410);
    }

    TEST_F(ContentViewTest, deleteRemovesTheSelectionUnlessATextFieldHasFocus)
    {
        loadVideoWithCues({ { 1, 3, "One" }, { 5, 7, "Two" } });
        auto* field = new QLineEdit(QStringLiteral("abc"), content().inspectorPane());
        field->show();
        field->setFocus();
        field->setCursorPosition(0);
        QTest::keyClick(field, Qt::Key_Delete);
        EXPECT_EQ(field->text(), "bc");
        EXPECT_EQ(model().document().cues.size(), 2u);

        auto* control = new KeyRecorder(content().inspectorPane());
        control->setFocusPolicy(Qt::StrongFocus);
        control->show();
        control->setFocus();
        QTest::keyClick(control, Qt::Key_Delete);
        EXPECT_EQ(model().document().cues.size(), 1u);
        EXPECT_EQ(model().statusMessage(), "Caption removed.");
        EXPECT_TRUE(control->keys.isEmpty());
    }

    TEST_F(ContentViewTest, deleteWithoutSelectionPassesTheKeyOn)
    {
        loadVideoWithCues({ { 1, 3, "One" } });
        model().setSelectedCueID(std::nullopt);
        auto* control = new KeyRecorder(content().inspectorPane());
        control->setFocusPolicy(Qt::StrongFocus);
        control->show();
        control->setFocus();
        QTest::keyClick(control, Qt::Key_Delete);
        EXPECT_EQ(control->keys, QList<int> { Qt::Key_Delete });
        EXPECT_EQ(model().document().cues.size(), 1u);
    }

    TEST_F(ContentViewTest, spaceTypesInATextEditorAndTogglesPlaybackElsewhere)
    {
        loadVideoWithCues({ { 1, 3, "One" } });
        auto* editor = new QPlainTextEdit(content().inspectorPane());
        editor->show();
        editor->setFocus();
        QTest::keyClick(editor, Qt::Key_Space);
        EXPECT_EQ(editor->toPlainText(), " ");
        EXPECT_FALSE(player->playing);

        content().header()->addVideoButton()->setFocus();
        QTest::keyClick(content().header()->addVideoButton(), Qt::Key_Space);
        EXPECT_TRUE(player->playing);
        EXPECT_TRUE(model().isPlaying());
        EXPECT_TRUE(dialogs->opens.empty()) << "space went to the focused button instead of playback";
    }

    TEST_F(ContentViewTest, theLanguageMenuListsLanguagesAndChecksTheCurrentOne)
    {
        QToolButton* button = content().header()->languageButton();
        EXPECT_EQ(button->toolTip(), "Language used for local transcription");
        EXPECT_LE(button->maximumWidth(), 190);
        emit button->menu()->aboutToShow();
        const QList<QAction*> entries = button->menu()->actions();
        ASSERT_EQ(entries.size(), 2);
        EXPECT_EQ(entries[0]->data().toString(), "en-US");
        EXPECT_FALSE(entries[0]->icon().isNull());
        EXPECT_TRUE(entries[1]->icon().isNull());
        EXPECT_NE(entries[1]->text(), "de-DE") << "entries show a language name, not the identifier";

        entries[1]->trigger();
        EXPECT_EQ(model().languageIdentifier(), "de-DE");
        EXPECT_EQ(button->accessibleName(), model().selectedLanguageName());
    }

    TEST(HeaderView, languageNamesFallBackToTheIdentifier)
    {
        EXPECT_EQ(HeaderView::languageDisplayName("zz-Nothing-123456789"), "zz-Nothing-123456789");
        EXPECT_NE(HeaderView::languageDisplayName("en-US"), "en-US");
    }

} // namespace
} // namespace cuewright::testing
