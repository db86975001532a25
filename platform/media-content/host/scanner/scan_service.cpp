#include "platform/media-content/host/scanner/scan_service.h"

#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

#include "platform/media-content/host/log.h"
#include "platform/media-content/host/scanner/drive_scan.h"
#include "platform/media-content/host/scanner/scan_lock.h"

namespace media_content {
namespace {

constexpr auto kLongestFarewell = std::chrono::seconds(2);

StoragePath locate_or_throw(Database& database, const std::string& path) {
    Database::ReadLease reader(database);
    auto place = locate(reader.connection(), path);
    if (!place) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, path + " is on no attached drive");
    }
    return std::move(*place);
}

std::string lock_name(const StoragePath& place, bool recursive) {
    return place.storage.id + (recursive ? "*" : "") + place.relative;
}

}  // namespace

ScanRun::ScanRun(std::shared_ptr<Database> database, StoragePath place, bool recursive)
    : database_(std::move(database)), place_(std::move(place)), recursive_(recursive) {}

bool ScanRun::join(const std::string& path, ScanListener listener) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (ended_ || stop_) {
        return false;
    }
    wanted_.push_back(path);
    if (listener) {
        listeners_.push_back(std::move(listener));
    }
    return true;
}

bool ScanRun::leave(const std::string& path) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto request = std::find(wanted_.begin(), wanted_.end(), path);
    if (ended_ || request == wanted_.end()) {
        return false;
    }
    wanted_.erase(request);
    if (wanted_.empty()) {
        stop_ = true;
    }
    return true;
}

bool ScanRun::wait(std::chrono::milliseconds time, int& error) {
    std::unique_lock<std::mutex> lock(mutex_);
    const bool ended = ended_changed_.wait_for(lock, time, [this] { return ended_; });
    error = error_;
    return ended;
}

ScanProgress ScanRun::progress() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return progress_;
}

void ScanRun::execute() {
    tell(0, MEDIA_SCAN_PHASE_STARTED);
    const int error = scan();
    std::vector<ScanListener> listeners;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ended_ = true;
        error_ = error;
        listeners.swap(listeners_);
    }
    ended_changed_.notify_all();
    for (const ScanListener& listener : listeners) {
        listener(error, MEDIA_SCAN_PHASE_FINISHED);
    }
}

int ScanRun::scan() {
    try {
        ScanLock lock(database_->path() + ".scan-lock");
        if (!lock.take(lock_name(place_, recursive_), stop_)) {
            return MEDIA_CONTENT_ERROR_CANCELLED;
        }
        DriveScan(*database_, place_, recursive_, stop_, [this](const ScanProgress& progress, bool written) {
            report(progress, written);
        }).run();
        return MEDIA_CONTENT_ERROR_NONE;
    } catch (const MediaError& error) {
        const bool expected = error.code() == MEDIA_CONTENT_ERROR_CANCELLED;
        const int priority = expected ? DLOG_PRIORITY_INFO : DLOG_PRIORITY_WARNING;
        __dlog_print(0, priority, MEDIA_CONTENT_LOG_TAG, "scan of [%s%s] ends with error %d: %s",
                     place_.storage.target.c_str(), place_.relative.c_str(), error.code(), error.what());
        if (error.code() == MEDIA_CONTENT_ERROR_CORRUPT) {
            database_->note_damage();
        }
        return error.code();
    } catch (const std::bad_alloc&) {
        return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        MC_LOG_WARNING("scan of [%s%s] failed: %s", place_.storage.target.c_str(), place_.relative.c_str(),
                       error.what());
        return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
    }
}

void ScanRun::report(const ScanProgress& progress, bool written) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        progress_ = progress;
    }
    if (written) {
        tell(0, MEDIA_SCAN_PHASE_PROGRESS);
    }
}

void ScanRun::tell(int error, int phase) {
    std::vector<ScanListener> listeners;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        listeners = listeners_;
    }
    for (const ScanListener& listener : listeners) {
        listener(error, phase);
    }
}

ScanService& ScanService::instance() {
    static auto* service = new ScanService;
    return *service;
}

ScanService::ScanService() {
    std::atexit([] { instance().stop_all(); });
}

std::shared_ptr<ScanRun> ScanService::start(const std::string& path, bool recursive, ScanListener listener) {
    auto database = connected_database();
    StoragePath place = locate_or_throw(*database, path);
    reap();
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const Entry& entry : entries_) {
        const ScanRun& run = *entry.run;
        const bool same = run.database_ == database && run.recursive_ == recursive &&
                          run.place_.storage.id == place.storage.id && run.place_.relative == place.relative;
        if (same && entry.run->join(path, listener)) {
            return entry.run;
        }
    }
    Entry& entry = entries_.emplace_back();
    entry.run = std::make_shared<ScanRun>(std::move(database), std::move(place), recursive);
    entry.run->join(path, std::move(listener));
    try {
        entry.thread = std::thread([this, &entry] { run(entry); });
    } catch (const std::system_error&) {
        entries_.pop_back();
        throw MediaError(MEDIA_CONTENT_ERROR_OUT_OF_MEMORY, "no thread is to be had for a scan");
    }
    return entry.run;
}

bool ScanService::cancel(const std::string& path) {
    const std::lock_guard<std::mutex> lock(mutex_);
    bool found = false;
    for (const Entry& entry : entries_) {
        found = entry.run->leave(path) || found;
    }
    return found;
}

void ScanService::run(Entry& entry) {
    pthread_setname_np(pthread_self(), "media-scan");
    entry.run->execute();
    const std::lock_guard<std::mutex> lock(mutex_);
    entry.finished = true;
    finished_.notify_all();
}

void ScanService::reap() {
    std::list<Entry> finished;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (auto at = entries_.begin(); at != entries_.end();) {
            const auto next = std::next(at);
            if (at->finished) {
                finished.splice(finished.end(), entries_, at);
            }
            at = next;
        }
    }
    for (Entry& entry : finished) {
        entry.thread.join();
    }
}

void ScanService::stop_all() {
    {
        std::unique_lock<std::mutex> lock(mutex_);
        for (const Entry& entry : entries_) {
            entry.run->stop();
        }
        // Not for ever: a listener may wait for what the thread that ends the process holds, or be that
        // thread.
        finished_.wait_for(lock, kLongestFarewell, [this] {
            return std::all_of(entries_.begin(), entries_.end(), [](const Entry& entry) {
                return entry.finished || entry.thread.get_id() == std::this_thread::get_id();
            });
        });
    }
    reap();
}

}  // namespace media_content
