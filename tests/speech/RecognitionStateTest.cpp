#include "speech/RecognitionState.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>

using namespace cuewright;

namespace {

struct CountingTask : RecognitionTask {
    void finish() override { ++finished; }
    std::atomic<int> finished = 0;
};

TEST(RecognitionState, racingFinishesResumeTheCallerOnce)
{
    for (int round = 0; round < 200; ++round) {
        RecognitionState state;
        auto words = state.words();
        auto task = std::make_shared<CountingTask>();
        state.setTask(task);

        std::barrier start(2);
        auto finishWith = [&](std::string text) {
            start.arrive_and_wait();
            state.finish(std::vector<RecognizedWord> { { text, 0, 1 } });
        };
        std::thread one(finishWith, "one");
        std::thread two(finishWith, "two");
        one.join();
        two.join();

        const auto result = words.get();
        ASSERT_EQ(result.size(), 1u);
        EXPECT_TRUE(result[0].text == "one" || result[0].text == "two");
        EXPECT_EQ(task->finished, 1);

        state.finish(std::make_exception_ptr(std::runtime_error("late")));
        EXPECT_EQ(task->finished, 1);
    }
}

TEST(RecognitionState, errorsReachTheCallerAndEarlyFinishesTellNoTask)
{
    RecognitionState state;
    auto words = state.words();
    state.finish(std::make_exception_ptr(std::runtime_error("The recogniser stopped.")));
    auto task = std::make_shared<CountingTask>();
    state.setTask(task);
    state.finish(std::vector<RecognizedWord> {});

    EXPECT_THROW(words.get(), std::runtime_error);
    EXPECT_EQ(task->finished, 0);
    EXPECT_EQ(task.use_count(), 1) << "a finished state keeps no task alive";
}

} // namespace
