#include "core/CueList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace cuewright;

namespace {
std::vector<CaptionCue> makeCues(int n)
{
    std::vector<CaptionCue> cues;
    for (int i = 0; i < n; ++i)
        cues.emplace_back(Uuid::generate(), i, i + 1, "cue " + std::to_string(i));
    return cues;
}
} // namespace

TEST(CueList, behavesLikeAVectorUnderRandomEdits)
{
    auto reference = makeCues(300);
    CueList list(reference);
    std::mt19937 random(7);
    for (int step = 0; step < 2000; ++step) {
        const auto op = random() % 3;
        if (op == 0 || reference.empty()) {
            const auto at = random() % (reference.size() + 1);
            CaptionCue cue(Uuid::generate(), step, step + 1, "new");
            reference.insert(reference.begin() + static_cast<long>(at), cue);
            list.insert(at, cue);
        } else if (op == 1) {
            const auto at = random() % reference.size();
            reference.erase(reference.begin() + static_cast<long>(at));
            list.erase(at);
        } else {
            const auto at = random() % reference.size();
            reference[at].text += "!";
            list.mutableAt(at).text += "!";
        }
    }
    ASSERT_EQ(list.size(), reference.size());
    EXPECT_EQ(list.toVector(), reference);
    EXPECT_TRUE(std::equal(list.begin(), list.end(), reference.begin(), reference.end()));
    for (std::size_t i = 0; i < reference.size(); i += 37)
        EXPECT_EQ(list[i], reference[i]);
    EXPECT_EQ(list.end() - list.begin(), static_cast<std::ptrdiff_t>(reference.size()));
}

TEST(CueList, copiesAreIndependentValues)
{
    CueList original(makeCues(200));
    const CueList snapshot = original;
    original.mutableAt(150).text = "changed";
    original.erase(3);
    original.push_back(CaptionCue(Uuid::generate(), 0, 1, "end"));
    EXPECT_EQ(snapshot.size(), 200u);
    EXPECT_EQ(snapshot[150].text, "cue 150");
    EXPECT_NE(snapshot, original);
    CueList restored = snapshot;
    EXPECT_EQ(restored, snapshot);
    restored.mutableAt(0).text = "cue 0";
    EXPECT_EQ(restored, snapshot);
}
