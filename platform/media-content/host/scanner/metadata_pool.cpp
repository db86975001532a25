#include "platform/media-content/host/scanner/metadata_pool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/media-content/host/log.h"

namespace media_content {
namespace {

constexpr unsigned int kMostThreads = 8;

void log_unreadable(const WorkChunk& chunk, const FileWork& work, const char* reason) {
    MC_LOG_WARNING("cannot read the metadata of [%s/%s]: %s", chunk.path.c_str(),
                   work.file.facts.name.c_str(), reason);
}

}  // namespace

MetadataPool::~MetadataPool() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ending_ = true;
        queue_.clear();
    }
    work_.notify_all();
    space_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

bool MetadataPool::has_room() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return queue_.size() < kLongestQueue;
}

void MetadataPool::submit(WorkChunk chunk) {
    if (threads_.empty()) {
        start();
    }
    ++in_flight_;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        queue_.push_back(std::move(chunk));
    }
    work_.notify_one();
}

void MetadataPool::start() {
    const unsigned int count = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
    for (unsigned int i = 0; i < count; ++i) {
        threads_.emplace_back(&MetadataPool::run, this);
    }
}

bool MetadataPool::collect(WorkChunk& chunk, std::chrono::milliseconds wait) {
    {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!done_.wait_for(lock, wait, [this] { return !finished_.empty(); })) {
            return false;
        }
        chunk = std::move(finished_.front());
        finished_.pop_front();
    }
    space_.notify_one();
    --in_flight_;
    return true;
}

void MetadataPool::run() {
    MetadataReader reader(&stop_);
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        work_.wait(lock, [this] { return ending_ || !queue_.empty(); });
        if (ending_) {
            return;
        }
        WorkChunk chunk = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        read_chunk(reader, chunk);
        lock.lock();
        space_.wait(lock, [this] { return ending_ || finished_.size() < kMostDone; });
        finished_.push_back(std::move(chunk));
        done_.notify_one();
    }
}

void MetadataPool::read_chunk(MetadataReader& reader, WorkChunk& chunk) const {
    for (FileWork& work : chunk.files) {
        if (stop_) {
            break;
        }
        work.outcome = read_file(reader, chunk, work);
    }
    chunk.directory.reset();
}

FileOutcome MetadataPool::read_file(MetadataReader& reader, const WorkChunk& chunk, FileWork& work) const {
    const FileFacts& facts = work.file.facts;
    work.record.kind = work.file.type->kind;
    work.record.mime_type = work.file.type->mime_type;
    const Descriptor file = chunk.directory->open_file(facts.name, work.file.is_link);
    if (!file) {
        return not_opened(chunk, work, errno);
    }
    const char* problem =
        reader.read(file.get(), static_cast<uint64_t>(facts.size), chunk.directory->descriptor(), facts.name,
                    *work.file.type, work.record);
    if (stop_) {  // what was read may have been cut off
        return FileOutcome::kSkipped;
    }
    if (!problem) {
        return FileOutcome::kRead;
    }
    log_unreadable(chunk, work, problem);
    return reader.device_failed() ? FileOutcome::kRefused : FileOutcome::kUnreadable;
}

FileOutcome MetadataPool::not_opened(const WorkChunk& chunk, const FileWork& work, int error) {
    if (error == ENOENT) {
        return FileOutcome::kGone;
    }
    log_unreadable(chunk, work, std::strerror(error));
    const bool may_not =
        error == EACCES || error == EPERM || error == ELOOP || error == EXDEV || error == ENXIO;
    return may_not ? FileOutcome::kUnreadable : FileOutcome::kRefused;
}

}  // namespace media_content
