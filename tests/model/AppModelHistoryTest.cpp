#include "ModelTestSupport.h"

#include <QSignalSpy>

using namespace cuewright;
using namespace cuewright::testing;

namespace {

using HistoryTest = ModelTest;

std::vector<std::string> texts(const AppModel& model)
{
    std::vector<std::string> result;
    for (const auto& cue : model.document().cues)
        result.push_back(cue.text);
    return result;
}

TEST_F(HistoryTest, undoAndRedoWalkTheWholeHistory)
{
    model->loadVideo(file("talk.mov"));
    struct State {
        CaptionDocument document;
        CaptionStyle style;
        std::optional<Uuid> selected;
    };
    const auto capture = [&] { return State { model->document(), model->style(), model->selectedCueID() }; };
    std::vector<State> states { capture() };
    const std::vector<std::function<void()>> edits {
        [&] { model->addCue(1.0); },
        [&] { model->updateSelected([](CaptionCue& cue) { cue.text = "Hello"; }); },
        [&] { model->addCue(5.0); },
        [&] { model->updateStyle("style-fontSize", [](CaptionStyle& style) { style.fontSize = 40; }); },
        [&] { model->setCuePosition(model->document().cues[0].id, 0.25, 0.75); },
        [&] { model->removeSelectedCue(); },
    };
    for (const auto& edit : edits) {
        clock->advance(1);
        edit();
        states.push_back(capture());
    }
    ASSERT_EQ(model->undoStackCount(), static_cast<int>(edits.size()));
    const double playhead = model->playhead();

    for (std::size_t i = states.size() - 1; i > 0; --i) {
        model->undo();
        EXPECT_EQ(model->document(), states[i - 1].document) << "undo to state " << i - 1;
        EXPECT_EQ(model->style(), states[i - 1].style);
        EXPECT_EQ(model->selectedCueID(), states[i - 1].selected);
        EXPECT_EQ(model->statusMessage(), "Undid last edit.");
    }
    EXPECT_FALSE(model->canUndo());
    model->undo(); // empty: silent
    EXPECT_EQ(model->statusMessage(), "Undid last edit.");

    for (std::size_t i = 1; i < states.size(); ++i) {
        model->redo();
        EXPECT_EQ(model->document(), states[i].document) << "redo to state " << i;
        EXPECT_EQ(model->style(), states[i].style);
        EXPECT_EQ(model->selectedCueID(), states[i].selected);
        EXPECT_EQ(model->statusMessage(), "Redid edit.");
    }
    EXPECT_FALSE(model->canRedo());
    EXPECT_EQ(model->playhead(), playhead);
}

TEST_F(HistoryTest, editsOfOneKeyJoinWithinTheSlidingInterval)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1.0);
    const auto id = *model->selectedCueID();
    clock->advance(5);
    const int base = model->undoStackCount();
    const auto setText
        = [&](const std::string& text) { model->updateSelected([&](CaptionCue& cue) { cue.text = text; }); };

    // 0.5 s apart, three times: one step, undone at once.
    setText("a");
    clock->advance(0.5);
    setText("ab");
    clock->advance(0.5);
    setText("abc");
    EXPECT_EQ(model->undoStackCount(), base + 1);
    model->undo();
    EXPECT_EQ(texts(*model), std::vector<std::string> { "New caption" });
    model->redo();

    // 0.8 s apart: two steps.
    clock->advance(0.8);
    setText("abcd");
    EXPECT_EQ(model->undoStackCount(), base + 2);

    // After undo the same key starts a new step.
    const int before = model->undoStackCount();
    model->undo();
    clock->advance(0.1);
    setText("again");
    EXPECT_EQ(model->undoStackCount(), before);
    EXPECT_FALSE(model->canRedo());

    // A joined edit still empties the redo stack.
    clock->advance(0.1);
    setText("again2");
    model->undo();
    EXPECT_TRUE(model->canRedo());
    clock->advance(0.1);
    setText("b");
    clock->advance(0.1);
    setText("bc");
    EXPECT_FALSE(model->canRedo());

    // Keys of different cues never join.
    model->addCue(10.0);
    const auto other = *model->selectedCueID();
    const int countBefore = model->undoStackCount();
    model->setCueTiming(id, 1.0, 2.0);
    model->setCueTiming(other, 10.0, 11.0);
    EXPECT_EQ(model->undoStackCount(), countBefore + 2);
}

TEST_F(HistoryTest, exactlyPointSevenSecondsJoins)
{
    model->loadVideo(file("talk.mov"));
    clock->setNow(0);
    model->addCue(1.0);
    const int count = model->undoStackCount();
    clock->setNow(0.7); // a difference of exactly 0.7
    model->addCue(5.0);
    EXPECT_EQ(model->undoStackCount(), count);
    EXPECT_EQ(model->document().cues.size(), 2u);
    clock->setNow(0.7 + 0.7000001);
    model->addCue(9.0);
    EXPECT_EQ(model->undoStackCount(), count + 1);
}

TEST_F(HistoryTest, theStackKeepsTheLastHundredSteps)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1.0);
    clock->advance(1);
    const auto firstState = model->document();
    for (int i = 0; i < 101; ++i) {
        model->updateStyle(QString("style-%1").arg(i), [i](CaptionStyle& style) { style.fontSize = 10 + i; });
    }
    EXPECT_EQ(model->undoStackCount(), 100);
    while (model->canUndo())
        model->undo();
    EXPECT_EQ(model->style().fontSize, 10);
    EXPECT_EQ(model->document(), firstState);
    EXPECT_EQ(model->redoStackCount(), 100);
}

TEST_F(HistoryTest, anEditThatChangesNothingLeavesNoTrace)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1.0);
    const auto id = *model->selectedCueID();
    clock->advance(1);
    model->updateStyle("style-fontSize", [](CaptionStyle& style) { style.fontSize = 30; });
    model->undo();
    ASSERT_EQ(model->redoStackCount(), 1);
    const int undoCount = model->undoStackCount();

    QSignalSpy documentSpy(model.get(), &AppModel::documentChanged);
    QSignalSpy historySpy(model.get(), &AppModel::historyChanged);
    model->updateStyle("style-fontSize", [](CaptionStyle&) {});
    model->setCuePosition(id, 0.5, 0.5);
    clock->advance(0.2);
    model->setCuePosition(id, 0.5, 0.5); // same values, same selection: nothing
    EXPECT_EQ(model->statusMessage(), "Caption position updated.");
    EXPECT_EQ(model->redoStackCount(), 0);
    EXPECT_EQ(model->undoStackCount(), undoCount + 1);

    // The silent edit of another key left the position key in place: this one joins.
    clock->advance(0.2);
    model->updateStyle("style-shadowEnabled", [](CaptionStyle&) {});
    clock->advance(0.2);
    model->setCuePosition(id, 0.1, 0.1);
    EXPECT_EQ(model->undoStackCount(), undoCount + 1);
    EXPECT_EQ(documentSpy.count(), 2);
    EXPECT_EQ(historySpy.count(), 2);
}

TEST_F(HistoryTest, settersNotifyOnlyRealChanges)
{
    QSignalSpy selection(model.get(), &AppModel::selectedCueIDChanged);
    QSignalSpy language(model.get(), &AppModel::languageIdentifierChanged);
    const auto id = Uuid::generate();
    model->setSelectedCueID(id);
    model->setSelectedCueID(id);
    model->setLanguageIdentifier("en-US");
    EXPECT_EQ(selection.count(), 1);
    EXPECT_EQ(language.count(), 0);
    // A selection that names no cue is allowed and gives no selected cue.
    EXPECT_FALSE(model->selectedCue().has_value());
    EXPECT_FALSE(model->canUndo());

    QSignalSpy playhead(model.get(), &AppModel::playheadChanged);
    player->time = std::nan(""); // the observer reads it as 0, the value it has
    QTest::qWait(120);
    EXPECT_EQ(playhead.count(), 0);
}

} // namespace
