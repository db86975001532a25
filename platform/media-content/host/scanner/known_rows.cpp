#include "platform/media-content/host/scanner/known_rows.h"

#include <utility>

namespace media_content {

KnownRows read_known_rows(SqliteConnection& connection, int64_t folder) {
    return {known_files(connection, folder), known_folders(connection, folder)};
}

KnownRowsAhead::~KnownRowsAhead() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ending_ = true;
    }
    work_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void KnownRowsAhead::ask(int64_t folder) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        asked_.push_back(folder);
    }
    work_.notify_one();
    if (!thread_.joinable()) {
        thread_ = std::thread(&KnownRowsAhead::run, this);
    }
}

KnownRows KnownRowsAhead::take() {
    if (taken_.empty()) {
        {
            std::unique_lock<std::mutex> lock(mutex_);
            done_.wait(lock, [this] { return !ready_.empty() || failure_; });
            if (ready_.empty()) {
                std::rethrow_exception(failure_);
            }
            taken_.swap(ready_);
        }
        work_.notify_one();
    }
    KnownRows rows = std::move(taken_.front());
    taken_.pop_front();
    return rows;
}

void KnownRowsAhead::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    try {
        read_asked(lock);
    } catch (const std::exception&) {
        if (!lock.owns_lock()) {
            lock.lock();
        }
        failure_ = std::current_exception();
        done_.notify_one();
    }
}

void KnownRowsAhead::read_asked(std::unique_lock<std::mutex>& lock) {
    Database::ReadLease reader(database_);
    for (;;) {
        work_.wait(lock, [this] { return ending_ || (!asked_.empty() && ready_.size() < kMostReady); });
        if (ending_) {
            return;
        }
        const int64_t folder = asked_.front();
        asked_.pop_front();
        lock.unlock();
        KnownRows rows = read_known_rows(reader.connection(), folder);
        lock.lock();
        ready_.push_back(std::move(rows));
        done_.notify_one();
    }
}

}  // namespace media_content
