#include "platform/media-content/host/database/new_rows.h"

#include <exception>
#include <optional>
#include <utility>

#include "platform/media-content/host/log.h"

namespace media_content {

namespace {

/// How long a row waits for company.
constexpr std::chrono::milliseconds kLinger{20};
/// As many rows as a transaction is to have; as many more may wait while it is written.
constexpr size_t kBatch = 64;

}  // namespace

NewRows::~NewRows() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ending_ = true;
    }
    wanted_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

LateId NewRows::add(NewFile file) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { run(); });
    }
    written_.wait(lock, [this] { return waiting_.size() < kBatch; });
    Entry& entry = waiting_.emplace_back();
    entry.file = std::move(file);
    ++added_count_;
    if (waiting_.size() == 1 || waiting_.size() == kBatch) {
        wanted_.notify_one();
    }
    return entry.id.get_future().share();
}

bool NewRows::settle(std::chrono::milliseconds most) {
    std::unique_lock<std::mutex> lock(mutex_);
    const uint64_t before = added_count_;
    const auto settled = [&] { return written_count_ >= before; };
    if (settled()) {
        return true;
    }
    hurry_ = true;
    wanted_.notify_one();
    return written_.wait_for(lock, most, settled);
}

void NewRows::run() {
    std::vector<Entry> entries;
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        wanted_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
        if (waiting_.empty()) {
            return;
        }
        wanted_.wait_for(lock, kLinger, [this] { return ending_ || hurry_ || waiting_.size() >= kBatch; });
        hurry_ = false;
        entries.swap(waiting_);
        written_.notify_all();  // there is room again
        lock.unlock();
        write(entries);
        const size_t count = entries.size();
        entries.clear();
        lock.lock();
        written_count_ += count;
        written_.notify_all();
    }
}

void NewRows::write(std::vector<Entry>& entries) {
    std::optional<MediaWriter> writer;
    try {
        writer.emplace(database_);
        write_in_one(*writer, entries);
        return;
    } catch (const std::exception& error) {
        // Where another process does not let go of the database, the next row would wait as long in vain.
        if (!writer || entries.size() == 1) {
            fail(entries, error);
            return;
        }
    }
    writer.reset();
    // One row that cannot be written takes no other with it.
    for (Entry& entry : entries) {
        std::vector<Entry> one;
        one.push_back(std::move(entry));
        write(one);
    }
}

void NewRows::write_in_one(MediaWriter& writer, std::vector<Entry>& entries) {
    std::vector<int64_t> ids;
    for (const auto& [file, id] : entries) {
        // A folder that the scanner knows is left as it is: whether its other files are up to date is not
        // known here.
        const int64_t folder = writer.known_or_new_folder(file.storage, file.folder);
        ids.push_back(writer.put_file(folder, file.facts, file.record));
    }
    writer.commit();
    for (size_t i = 0; i < entries.size(); ++i) {
        entries[i].id.set_value(ids[i]);
    }
}

/// To be called in the handler of `error`.
void NewRows::fail(std::vector<Entry>& entries, const std::exception& error) {
    const auto* known = dynamic_cast<const MediaError*>(&error);
    if (known != nullptr && known->code() == MEDIA_CONTENT_ERROR_CORRUPT) {
        database_.note_damage();
    }
    for (Entry& entry : entries) {
        MC_LOG_WARNING("[%s] has no row: %s", entry.file.facts.name.c_str(), error.what());
        entry.id.set_exception(std::current_exception());
    }
}

}  // namespace media_content
