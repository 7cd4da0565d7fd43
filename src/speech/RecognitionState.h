#pragma once

#include "core/RecognizedWord.h"
#include "speech/RecognitionEngine.h"

#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>
#include <vector>

namespace cuewright {

// Bridges a recogniser's handler, which may come on any thread and any number of times, to the
// one caller waiting for the words: the first finish() resumes it, every later one does nothing.
class RecognitionState {
public:
    using Outcome = std::variant<std::vector<RecognizedWord>, std::exception_ptr>;

    RecognitionState();

    // The caller's side; call once.
    std::future<std::vector<RecognizedWord>> words();

    // Stored by the starter once the task exists; a finish() that came earlier sends it nothing.
    void setTask(std::shared_ptr<RecognitionTask> task);

    void finish(Outcome result);

private:
    std::mutex m_lock;
    std::optional<std::promise<std::vector<RecognizedWord>>> m_continuation;
    std::shared_ptr<RecognitionTask> m_task;
    std::future<std::vector<RecognizedWord>> m_words;
};

} // namespace cuewright
