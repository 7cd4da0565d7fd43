#include "core/CaptionQuality.h"
#include "core/CaptionNavigation.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;

namespace {

CaptionCue cue(double start, double end, std::string text = "x")
{
    return CaptionCue(Uuid::generate(), start, end, std::move(text));
}

std::vector<CaptionQualityIssueKind> kinds(const std::vector<CaptionQualityIssue>& issues)
{
    std::vector<CaptionQualityIssueKind> result;
    for (const auto& issue : issues)
        result.push_back(issue.kind);
    return result;
}

std::vector<CaptionQualityIssue> issuesOf(const CaptionCue& c)
{
    return CaptionQuality::issues(c, CueList { c });
}

std::optional<std::string> messageOf(const CaptionCue& c, CaptionQualityIssueKind kind)
{
    for (const auto& issue : issuesOf(c))
        if (issue.kind == kind)
            return issue.message;
    return std::nullopt;
}

using Kind = CaptionQualityIssueKind;

} // namespace

TEST(CaptionQuality, issueIdNamesCueAndKind)
{
    const auto c = cue(0, 1, std::string(21, 'a'));
    const auto issues = issuesOf(c);
    ASSERT_EQ(issues.size(), 1u);
    EXPECT_EQ(issues[0].id(), c.id.toString() + "-tooFast");
}

TEST(CaptionQuality, readingSpeedCountsVisibleCharactersAndRounds)
{
    EXPECT_EQ(messageOf(cue(0, 1, std::string(20, 'a')), Kind::tooFast), std::nullopt);
    EXPECT_EQ(messageOf(cue(0, 1, std::string(21, 'a')), Kind::tooFast),
        "21 characters per second \u2014 shorten the text or extend the caption.");

    // White space of every kind is left out of the count, line breaks included.
    std::string spaced = "a";
    for (int i = 0; i < 20; ++i)
        spaced += (i % 4 == 0 ? "\n" : i % 4 == 1 ? "\u00A0" : i % 4 == 2 ? "\u3000" : " ") + std::string("a");
    EXPECT_EQ(messageOf(cue(0, 1, spaced), Kind::tooFast),
        "21 characters per second \u2014 shorten the text or extend the caption.");
    EXPECT_EQ(messageOf(cue(0, 0.1, "a b"), Kind::tooFast), std::nullopt);

    // The exact speed is compared; the message rounds half away from zero.
    EXPECT_EQ(messageOf(cue(0, 1, std::string(203, 'a')), Kind::tooFast)->substr(0, 4), "203 ");
    auto slowish = cue(0, 10, std::string(203, 'a'));
    EXPECT_EQ(messageOf(slowish, Kind::tooFast)->substr(0, 3), "20 ");
    slowish.text = std::string(205, 'a');
    EXPECT_EQ(messageOf(slowish, Kind::tooFast)->substr(0, 3), "21 ");

    // Zero length reads as the minimum duration.
    auto instant = cue(1, 2, "a");
    instant.end = instant.start;
    EXPECT_EQ(messageOf(instant, Kind::tooFast), std::nullopt);
    instant.text = "ab";
    EXPECT_EQ(
        messageOf(instant, Kind::tooFast), "40 characters per second \u2014 shorten the text or extend the caption.");
}

TEST(CaptionQuality, charactersAreGraphemeClusters)
{
    // 21 accented letters written as base and combining mark, and 21 family emoji.
    std::string accents, families;
    for (int i = 0; i < 21; ++i) {
        accents += "e\u0301";
        families += "\U0001F468\u200D\U0001F469\u200D\U0001F467";
    }
    EXPECT_EQ(messageOf(cue(0, 1.05, accents), Kind::tooFast), std::nullopt);
    EXPECT_EQ(messageOf(cue(0, 1, accents), Kind::tooFast)->substr(0, 3), "21 ");
    EXPECT_EQ(messageOf(cue(0, 1, families), Kind::tooFast)->substr(0, 3), "21 ");

    const std::string line42 = std::string(20, 'a') + " " + std::string(21, 'b');
    EXPECT_EQ(messageOf(cue(0, 10, line42), Kind::longLine), std::nullopt);
    EXPECT_EQ(messageOf(cue(0, 10, line42 + "c"), Kind::longLine),
        "One line has 43 characters \u2014 keep lines at 42 or fewer.");
    std::string accented42;
    for (int i = 0; i < 42; ++i)
        accented42 += i % 2 ? "o\u0308" : "\u00e9";
    EXPECT_EQ(messageOf(cue(0, 10, accented42), Kind::longLine), std::nullopt);
    EXPECT_EQ(messageOf(cue(0, 10, accented42 + "\U0001F1EB\U0001F1F7"), Kind::longLine),
        "One line has 43 characters \u2014 keep lines at 42 or fewer.");
}

TEST(CaptionQuality, linesAreCutAtEveryNewlineCharacter)
{
    EXPECT_EQ(messageOf(cue(0, 10, "a\nb"), Kind::tooManyLines), std::nullopt);
    EXPECT_EQ(messageOf(cue(0, 10, "a\nb\nc"), Kind::tooManyLines), "3 lines \u2014 use no more than 2.");
    EXPECT_EQ(messageOf(cue(0, 10, "a\nb\n"), Kind::tooManyLines), "3 lines \u2014 use no more than 2.");
    EXPECT_EQ(messageOf(cue(0, 10, "a\r\nb"), Kind::tooManyLines), "3 lines \u2014 use no more than 2.");
    EXPECT_EQ(messageOf(cue(0, 10, "\u00e9\r\n\u0301"), Kind::tooManyLines), "3 lines \u2014 use no more than 2.");
    EXPECT_EQ(messageOf(cue(0, 10,
                            "a\u2028b\u0085c\u2029d\x0B"
                            "e\x0C"
                            "f"),
                  Kind::tooManyLines),
        "6 lines \u2014 use no more than 2.");
    EXPECT_EQ(messageOf(cue(0, 10, ""), Kind::tooManyLines), std::nullopt);
    // Lines are measured apart: two short lines make no long one.
    EXPECT_EQ(
        messageOf(cue(0, 10, std::string(40, 'a') + "\r\n" + std::string(40, 'b')), Kind::longLine), std::nullopt);
}

TEST(CaptionQuality, allFaultsOfOneCueInFixedOrder)
{
    const auto a = cue(0, 1, std::string(50, 'a') + "\nb\nc");
    const auto b = cue(0.5, 2, "ok");
    const CaptionDocument document = CaptionDocument::unsorted(CueList { a, b });
    const auto issues = CaptionQuality::issues(document);
    EXPECT_EQ(kinds(issues),
        (std::vector<Kind> { Kind::overlap, Kind::tooFast, Kind::longLine, Kind::tooManyLines, Kind::overlap }));
    EXPECT_EQ(issues[0].message, "Overlaps another caption.");
    EXPECT_EQ(issues[4].cueID, b.id);
    EXPECT_TRUE(CaptionQuality::issues(CaptionDocument()).empty());
}

TEST(CaptionQuality, documentComparesListNeighboursOnlyOneCueComparesAll)
{
    const auto longCue = cue(0, 10, "long");
    const auto inside = cue(10, 11);
    const auto later = cue(5, 6); // overlaps the long cue, but is not its neighbour in the list
    const CaptionDocument document = CaptionDocument::unsorted(CueList { longCue, inside, later });

    // inside/later: 5 < 11, a neighbour overlap; the long cue only touches `inside`.
    const auto all = CaptionQuality::issues(document);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].cueID, inside.id);
    EXPECT_EQ(all[1].cueID, later.id);

    EXPECT_EQ(kinds(CaptionQuality::issues(longCue, document.cues)), std::vector<Kind> { Kind::overlap });
    EXPECT_TRUE(CaptionQuality::issues(inside, document.cues).empty());

    // Touching cues do not overlap in either.
    const auto first = cue(0, 1);
    const auto second = cue(1, 2);
    const CaptionDocument touching = CaptionDocument::unsorted(CueList { first, second });
    EXPECT_TRUE(CaptionQuality::issues(touching).empty());
    EXPECT_TRUE(CaptionQuality::issues(first, touching.cues).empty());
}

TEST(CaptionNavigation, walksTimelineOrderAndStopsAtTheEnds)
{
    using CaptionNavigation::adjacentCueID;
    using CaptionNavigation::Direction;
    // List order differs from time order; c and d tie on start and end, so list order decides.
    const auto a = cue(5, 6);
    const auto b = cue(1, 3);
    const auto c = cue(1, 2);
    const auto d = cue(1, 2);
    const CueList list { a, b, c, d };

    std::vector<Uuid> forward { adjacentCueID(list, std::nullopt, Direction::next).value() };
    for (int i = 0; i < 4; ++i)
        forward.push_back(adjacentCueID(list, forward.back(), Direction::next).value());
    EXPECT_EQ(forward, (std::vector<Uuid> { c.id, d.id, b.id, a.id, a.id }));

    EXPECT_EQ(adjacentCueID(list, std::nullopt, Direction::previous), a.id);
    EXPECT_EQ(adjacentCueID(list, b.id, Direction::previous), d.id);
    EXPECT_EQ(adjacentCueID(list, c.id, Direction::previous), c.id);
    EXPECT_EQ(adjacentCueID(list, Uuid::generate(), Direction::next), c.id);
    EXPECT_EQ(adjacentCueID(list, Uuid::generate(), Direction::previous), a.id);
    EXPECT_EQ(adjacentCueID(CueList {}, a.id, Direction::next), std::nullopt);
}
