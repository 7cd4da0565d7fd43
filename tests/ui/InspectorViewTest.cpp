#include "app/ui/InspectorView.h"

#include "ViewsTestSupport.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace cuewright::testing {
namespace {

    namespace V = InspectorValues;

    TEST(InspectorValues, styleWritesLimitTypedValues)
    {
        EXPECT_EQ(V::storedFontSize(200), 120);
        EXPECT_EQ(V::storedFontSize(3), 24);
        EXPECT_DOUBLE_EQ(V::storedBottomMargin(1), 0.02);
        EXPECT_DOUBLE_EQ(V::storedBottomMargin(40), 0.25);
        EXPECT_DOUBLE_EQ(V::storedBottomMargin(9), 0.09);
    }

    TEST(InspectorValues, timeRangesAndTheShiftThreshold)
    {
        const CaptionCue cue(Uuid::generate(), 2, 4, "a");
        EXPECT_DOUBLE_EQ(V::startRange(cue).upper, 3.95);
        // Without a video the end may still run to the minimum length.
        EXPECT_DOUBLE_EQ(V::endRange(cue, 0).lower, 0.0);
        EXPECT_DOUBLE_EQ(V::endRange(cue, 0).upper, 2.05);
        EXPECT_DOUBLE_EQ(V::endRange(cue, 60).upper, 60);
        EXPECT_FALSE(V::canShiftAll(0.0005));
        EXPECT_TRUE(V::canShiftAll(0.001));
        EXPECT_TRUE(V::canShiftAll(-0.5));
    }

    TEST(InspectorValues, coloursKeepTheirOpacityAndInvalidOnesBecomeWhite)
    {
        const RGBAColor translucent { 0.2, 0.4, 0.6, 0.72 };
        const auto back = V::rgbaColor(V::color(translucent));
        EXPECT_NEAR(back.red, 0.2, 1e-4);
        EXPECT_NEAR(back.alpha, 0.72, 1e-4);
        EXPECT_EQ(V::rgbaColor(QColor()), RGBAColor::white());
    }

    class InspectorViewTest : public ModelTest {
    protected:
        void SetUp() override
        {
            ModelTest::SetUp();
            view = std::make_unique<InspectorView>(*model);
            view->resize(340, 900);
            view->show();
        }

        template <typename T> T* child(const char* name) const
        {
            auto* widget = view->findChild<T*>(QString::fromLatin1(name));
            EXPECT_NE(widget, nullptr) << name;
            return widget;
        }

        void submit(const char* field, const QString& text)
        {
            auto* edit = child<QLineEdit>(field);
            edit->selectAll();
            QTest::keyClicks(edit, text);
            QTest::keyClick(edit, Qt::Key_Return);
        }

        std::unique_ptr<InspectorView> view;
    };

    TEST_F(InspectorViewTest, typedStyleValuesAreLimitedAndShownAsStored)
    {
        submit("fontSizeField", "200");
        EXPECT_EQ(model->style().fontSize, 120);
        EXPECT_EQ(child<QLineEdit>("fontSizeField")->text(), "120");
        EXPECT_EQ(child<QSlider>("fontSizeSlider")->value(), 120);

        submit("bottomMarginField", "1");
        EXPECT_DOUBLE_EQ(model->style().bottomMargin, 0.02);
        EXPECT_EQ(child<QLineEdit>("bottomMarginField")->text(), "2");

        child<QSlider>("fontSizeSlider")->setValue(60);
        EXPECT_EQ(model->style().fontSize, 60);
        EXPECT_EQ(child<QLineEdit>("fontSizeField")->text(), "60");
    }

    TEST_F(InspectorViewTest, backgroundToggleHidesItsColourAndBringsTheSameBack)
    {
        const auto colour = model->style().backgroundColor;
        auto* toggle = child<QCheckBox>("backgroundToggle");
        auto* well = child<ColorWell>("backgroundColorWell");
        toggle->setChecked(false);
        EXPECT_FALSE(model->style().backgroundEnabled);
        EXPECT_FALSE(well->isVisibleTo(view.get()));
        toggle->setChecked(true);
        EXPECT_TRUE(well->isVisibleTo(view.get()));
        EXPECT_EQ(model->style().backgroundColor, colour);
    }

    TEST_F(InspectorViewTest, shiftAllAppliesTheOffsetAndResetsIt)
    {
        loadVideoWithCues({ { 2, 4 }, { 10, 12 } });
        auto* shiftAll = child<QPushButton>("shiftAllButton");
        auto* field = child<QLineEdit>("captionShiftField");
        submit("captionShiftField", "0.0005");
        EXPECT_FALSE(shiftAll->isEnabled());
        submit("captionShiftField", "1.5");
        EXPECT_TRUE(shiftAll->isEnabled());
        QTest::mouseClick(shiftAll, Qt::LeftButton);
        EXPECT_DOUBLE_EQ(model->document().cues[0].start, 3.5);
        EXPECT_EQ(field->text(), "0.00");
        EXPECT_EQ(view->captionShift(), 0.0);
        EXPECT_FALSE(shiftAll->isEnabled());
    }

    TEST_F(InspectorViewTest, syncSectionNeedsCuesAndTheSelectionNeedsACue)
    {
        EXPECT_FALSE(child<QPushButton>("shiftAllButton")->isVisibleTo(view.get()));
        EXPECT_TRUE(child<QLineEdit>("fontSizeField")->isVisibleTo(view.get()));
        EXPECT_FALSE(child<QPlainTextEdit>("captionTextEditor")->isVisibleTo(view.get()));
        loadVideoWithCues({ { 2, 4 } });
        EXPECT_TRUE(child<QPushButton>("shiftAllButton")->isVisibleTo(view.get()));
        EXPECT_TRUE(child<QPlainTextEdit>("captionTextEditor")->isVisibleTo(view.get()));
    }

    TEST_F(InspectorViewTest, timeFieldsSnapLikeTheTimelineAndClampOnSubmit)
    {
        loadVideoWithCues({ { 2, 4 }, { 10, 12 } });
        model->setSelectedCueID(cueIDs()[1]);
        submit("startField", "4.1");
        EXPECT_DOUBLE_EQ(model->selectedCue()->start, 4.0) << "snaps to the earlier cue's end";
        submit("startField", "11.99");
        EXPECT_DOUBLE_EQ(model->selectedCue()->start, 11.95);
        EXPECT_EQ(child<QLineEdit>("startField")->text(), "11.95");
        submit("endField", "500");
        EXPECT_DOUBLE_EQ(model->selectedCue()->end, 60);
        submit("endField", "abc");
        EXPECT_EQ(child<QLineEdit>("endField")->text(), "60.00");
    }

    TEST_F(InspectorViewTest, issuesShowWithTheirButtonsAndResetPositionFollowsThePosition)
    {
        loadVideoWithCues({ { 2, 6 }, { 5, 8 } });
        auto* fix = child<QPushButton>("fixOverlapsButton");
        EXPECT_TRUE(fix->isVisibleTo(view.get()));
        EXPECT_TRUE(child<QPushButton>("nextIssueButton")->isVisibleTo(view.get()));
        QTest::mouseClick(fix, Qt::LeftButton);
        EXPECT_FALSE(child<QWidget>("issueBox")->isVisibleTo(view.get()));

        auto* reset = child<QPushButton>("resetPositionButton");
        EXPECT_FALSE(reset->isVisibleTo(view.get()));
        model->setCuePosition(*model->selectedCueID(), 0.3, 0.4);
        EXPECT_TRUE(reset->isVisibleTo(view.get()));
        QTest::mouseClick(reset, Qt::LeftButton);
        EXPECT_FALSE(model->selectedCue()->positionX);
        EXPECT_FALSE(reset->isVisibleTo(view.get()));
    }

    TEST_F(InspectorViewTest, typingIntoTheTextEditorIsOneUndoStep)
    {
        loadVideoWithCues({ { 2, 4 } });
        auto* editor = child<QPlainTextEdit>("captionTextEditor");
        editor->setFocus();
        editor->selectAll();
        const int before = model->undoStackCount();
        QTest::keyClicks(editor, "Hello");
        EXPECT_EQ(model->selectedCue()->text, "Hello");
        // The deletion of the old text and the five letters coalesce into one step.
        EXPECT_EQ(model->undoStackCount(), before + 1);
        EXPECT_EQ(editor->toPlainText(), "Hello");
    }

} // namespace
} // namespace cuewright::testing
