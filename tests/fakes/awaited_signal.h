#ifndef QRA_TESTS_FAKES_AWAITED_SIGNAL_H
#define QRA_TESTS_FAKES_AWAITED_SIGNAL_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// What threads of others tell and a test waits for: guards whatever the three calls touch.
class Signal {
public:
    /// Runs that, then wakes whoever waits.
    template <typename Change>
    void change(Change change) {
        const std::lock_guard<std::mutex> lock(mutex_);
        change();
        changed_.notify_all();
    }
    /// Waits until it holds; false after a minute.
    bool wait(const std::function<bool()>& holds) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::minutes(1), holds);
    }
    template <typename Read>
    auto read(Read read) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return read();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
};

#endif
