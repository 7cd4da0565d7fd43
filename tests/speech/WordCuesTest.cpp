#include "speech/WordCues.h"

#include <gtest/gtest.h>

using namespace cuewright;

namespace {

std::vector<std::string> texts(const std::vector<CaptionCue>& cues)
{
    std::vector<std::string> result;
    for (const auto& cue : cues)
        result.push_back(cue.text);
    return result;
}

// Words a quarter second apart, each lasting 0.2 s.
std::vector<RecognizedWord> spoken(std::initializer_list<const char*> list)
{
    std::vector<RecognizedWord> words;
    double t = 0;
    for (const char* text : list) {
        words.push_back({ text, t, 0.2 });
        t += 0.25;
    }
    return words;
}

} // namespace

TEST(WordCues, cueClosesAtTheWordLimitInclusive)
{
    const auto cues = LocalTranscriber::cues(spoken({ "a", "b", "c", "d", "e", "f", "g", "h", "i" }), 8, 4.5);
    EXPECT_EQ(texts(cues), (std::vector<std::string> { "a b c d e f g h", "i" }));
    EXPECT_EQ(cues[0].start, 0);
    EXPECT_DOUBLE_EQ(cues[0].end, 7 * 0.25 + 0.2);
    EXPECT_EQ(cues[1].start, 2);
    EXPECT_TRUE(LocalTranscriber::cues({}, 8, 4.5).empty());
}

TEST(WordCues, cueClosesAtTheWordThatReachesTheDuration)
{
    // Spans of 4.4, then 5.4: the closing word stays in the cue.
    const std::vector<RecognizedWord> words { { "one", 0, 1 }, { "two", 3, 1.4 }, { "three", 4.4, 1 },
        { "four", 6, 1 } };
    const auto cues = LocalTranscriber::cues(words, 8, 4.5);
    EXPECT_EQ(texts(cues), (std::vector<std::string> { "one two three", "four" }));
    EXPECT_DOUBLE_EQ(cues[0].end, 5.4);

    // Exactly the maximum closes too.
    const std::vector<RecognizedWord> exact { { "one", 0, 1 }, { "two", 3.5, 1 }, { "three", 5, 1 } };
    EXPECT_EQ(texts(LocalTranscriber::cues(exact, 8, 4.5)), (std::vector<std::string> { "one two", "three" }));
}

TEST(WordCues, sentenceEndsAreWholeLastCharacters)
{
    EXPECT_EQ(texts(LocalTranscriber::cues(spoken({ "Hello", ",", "world", ".", "Next" }), 8, 4.5)),
        (std::vector<std::string> { "Hello, world.", "Next" }));
    EXPECT_EQ(texts(LocalTranscriber::cues(spoken({ "Yes!", "Really?", "word.", "e.g", "end.\u201D", "x" }), 8, 4.5)),
        (std::vector<std::string> { "Yes!", "Really?", "word.", "e.g end.\u201D x" }));
    // A point carrying a combining mark, or joined to a prepended sign, is another character.
    EXPECT_EQ(texts(LocalTranscriber::cues(spoken({ "a.\u0301", "\u0600.", "\u00e9." }), 8, 4.5)),
        (std::vector<std::string> { "a.\u0301 \u0600. \u00e9." }));
}

TEST(WordCues, joinedTextClosesUpPunctuationOnly)
{
    const auto cues = LocalTranscriber::cues(spoken({ "so", "", "what", "?", "ok", "!", "x", " ," }), 20, 100);
    // The empty word leaves a double space; " ," closes up once, left to right.
    EXPECT_EQ(texts(cues), (std::vector<std::string> { "so  what?", "ok!", "x ," }));
}

TEST(WordCues, timesGoThroughTheClampingConstructor)
{
    const auto cues
        = LocalTranscriber::cues(std::vector<RecognizedWord> { { "hi.", 2, 0 }, { "neg", -1, 0.5 } }, 8, 4.5);
    ASSERT_EQ(cues.size(), 2u);
    EXPECT_DOUBLE_EQ(cues[0].end, 2.05);
    EXPECT_EQ(cues[1].start, 0);
    EXPECT_DOUBLE_EQ(cues[1].end, 0.05);
}
