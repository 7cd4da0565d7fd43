#include "speech/RecognitionState.h"

#include <utility>

namespace cuewright {

RecognitionState::RecognitionState()
    : m_continuation(std::in_place)
    , m_words(m_continuation->get_future())
{
}

std::future<std::vector<RecognizedWord>> RecognitionState::words()
{
    return std::move(m_words);
}

void RecognitionState::setTask(std::shared_ptr<RecognitionTask> task)
{
    std::lock_guard guard(m_lock);
    // After the one resumption nobody will clear the field, and holding the task would only
    // keep it alive.
    if (m_continuation)
        m_task = std::move(task);
}

void RecognitionState::finish(Outcome result)
{
    std::promise<std::vector<RecognizedWord>> continuation;
    std::shared_ptr<RecognitionTask> task;
    {
        std::lock_guard guard(m_lock);
        if (!m_continuation)
            return;
        continuation = std::move(*m_continuation);
        m_continuation.reset();
        task = std::move(m_task);
    }
    if (auto* error = std::get_if<std::exception_ptr>(&result))
        continuation.set_exception(*error);
    else
        continuation.set_value(std::move(std::get<std::vector<RecognizedWord>>(result)));
    if (task)
        task->finish();
}

} // namespace cuewright
