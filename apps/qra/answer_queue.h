#ifndef QRA_APPS_QRA_ANSWER_QUEUE_H
#define QRA_APPS_QRA_ANSWER_QUEUE_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"

/// What callbacks of the library give on their threads, for the command that waits for it. It has to outlive
/// the request whose callback fills it.
template <typename Answer>
class AnswerQueue {
public:
    void give(Answer answer) {
        const std::lock_guard<std::mutex> lock(mutex_);
        answers_.push_back(std::move(answer));
        changed_.notify_one();
    }

    /// The next answer; nothing after a signal that ends the tool.
    std::optional<Answer> next() {
        const interrupt::Reaction wake = wake_on_interrupt();
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return interrupted_ || !answers_.empty(); });
        return take();
    }

    /// The next answer; nothing after that point in time, or after a signal that ends the tool.
    std::optional<Answer> next_before(std::chrono::steady_clock::time_point end) {
        const interrupt::Reaction wake = wake_on_interrupt();
        std::unique_lock<std::mutex> lock(mutex_);
        const bool woken =
            changed_.wait_until(lock, end, [this] { return interrupted_ || !answers_.empty(); });
        return woken ? take() : std::nullopt;
    }

    /// The next answer. @throws CommandError if none has come in time, or a signal ends the tool
    Answer next_within(std::chrono::seconds time) {
        const interrupt::Reaction wake = wake_on_interrupt();
        std::unique_lock<std::mutex> lock(mutex_);
        if (!changed_.wait_for(lock, time, [this] { return interrupted_ || !answers_.empty(); })) {
            throw CommandError(ExitStatus::RequestFailed,
                               "no answer within " + std::to_string(time.count()) + " seconds");
        }
        std::optional<Answer> answer = take();
        if (!answer) {
            throw CommandError(ExitStatus::RequestFailed, "interrupted");
        }
        return *std::move(answer);
    }

private:
    interrupt::Reaction wake_on_interrupt() {
        return interrupt::Reaction([this] {
            const std::lock_guard<std::mutex> lock(mutex_);
            interrupted_ = true;
            changed_.notify_one();
        });
    }

    std::optional<Answer> take() {
        if (interrupted_) {
            return std::nullopt;
        }
        Answer answer = std::move(answers_.front());
        answers_.pop_front();
        return answer;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Answer> answers_;  ///< under mutex_
    bool interrupted_ = false;    ///< under mutex_
};

#endif
