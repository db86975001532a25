#ifndef QRA_TESTS_FAKES_RECEIVED_H
#define QRA_TESTS_FAKES_RECEIVED_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

/// What a client's callbacks got, as texts in the order in which they came. Safe to use from any thread.
class Received {
public:
    void add(const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex_);
        texts_.push_back(text);
        changed_.notify_all();
    }

    std::vector<std::string> all() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return texts_;
    }

    /// False if as many texts have not come within twenty seconds.
    bool wait_for(std::size_t count) const {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return texts_.size() >= count; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<std::string> texts_;
};

#endif
