#include "platform/media-content/host/scanner/drive_scan.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <utility>

#include "platform/media-content/host/log.h"

namespace media_content {
namespace {

constexpr size_t kFilesInChunk = 16;
constexpr auto kReportInterval = std::chrono::milliseconds(100);
constexpr auto kCollectWait = std::chrono::milliseconds(20);

/// Look-up by name in rows that outlive it, which also tells those that nobody asked for.
template <typename Row>
class RowsByName {
public:
    using NameOf = const std::string& (*)(const Row&);

    RowsByName(const std::vector<Row>& rows, NameOf name) : rows_(rows), name_(name), seen_(rows.size()) {
        // Chains in two vectors: a map of nodes costs more than all else that is done with a row.
        size_t size = 8;
        while (size < rows.size()) {
            size *= 2;
        }
        heads_.assign(size, kNone);
        next_.resize(rows.size());
        for (size_t i = 0; i < rows.size(); ++i) {
            size_t& head = head_of(name_(rows[i]));
            next_[i] = head;
            head = i;
        }
    }

    const Row* take(const std::string& name) {
        for (size_t i = head_of(name); i != kNone; i = next_[i]) {
            if (name_(rows_[i]) == name) {
                seen_[i] = true;
                return &rows_[i];
            }
        }
        return nullptr;
    }

    template <typename Visit>
    void for_each_unseen(Visit visit) const {
        for (size_t i = 0; i < rows_.size(); ++i) {
            if (!seen_[i]) {
                visit(rows_[i]);
            }
        }
    }

private:
    static constexpr size_t kNone = SIZE_MAX;

    size_t& head_of(const std::string& name) {
        return heads_[std::hash<std::string>()(name) & (heads_.size() - 1)];
    }

    const std::vector<Row>& rows_;
    const NameOf name_;
    std::vector<size_t> heads_, next_;
    std::vector<bool> seen_;
};

const std::string& file_name(const KnownFile& file) {
    return file.facts.name;
}

const std::string& folder_name(const KnownFolder& folder) {
    return folder.name;
}

bool is_unchanged(const KnownFile& known, const ListedFile& listed) {
    return known.facts.size == listed.facts.size && known.facts.modified_ns == listed.facts.modified_ns &&
           known.facts.companion_ns == listed.facts.companion_ns && known.kind == listed.type->kind;
}

}  // namespace

DriveScan::DriveScan(Database& database, const StoragePath& place, bool recursive,
                     const std::atomic<bool>& stop, ScanReporter report)
    : database_(database),
      place_(place),
      recursive_(recursive),
      stop_(stop),
      report_(std::move(report)),
      reader_(database),
      rows_ahead_(database),
      batch_(database, place_.storage),
      pool_(stop) {}

void DriveScan::run() {
    open_drive();
    begin();
    while (!stop_ && step()) {
        if (batch_.is_ripe()) {
            write();
        }
        report(false);
    }
    if (stop_) {
        throw MediaError(MEDIA_CONTENT_ERROR_CANCELLED, "the scan was cancelled");
    }
    finish();
}

void DriveScan::open_drive() {
    root_ = DriveDirectory::open_root(place_.storage.target);
    // In this order: from here on the open directory is that of the right file system, whatever is unmounted.
    if (!root_ || !is_mounted(place_.storage)) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, place_.storage.target + " is not mounted");
    }
    start_ = DriveDirectory::open_path(root_, place_.relative);
    if (!start_) {
        const int error = errno;
        if (error == ENOENT || error == ENOTDIR || error == EXDEV) {
            drop_missing_start();
        }
        throw MediaError(
            error == EACCES || error == EIO ? MEDIA_CONTENT_ERROR_IO : MEDIA_CONTENT_ERROR_NOT_FOUND,
            place_.storage.target + place_.relative + ": " + std::strerror(error));
    }
}

void DriveScan::drop_missing_start() {
    const int64_t id = find_folder(reader_.connection(), place_.storage.key, place_.relative);
    if (id != 0 && !place_.relative.empty()) {
        batch_.remove_folder(id);
        write();
    }
}

void DriveScan::begin() {
    auto folder = std::make_shared<ScannedFolder>();
    folder->relative = place_.relative;
    folder->modified_ns = start_->modified_ns();
    if (const auto known = known_folder(reader_.connection(), place_.storage.key, place_.relative)) {
        folder->id = known->id;
        folder->status = known->scan_status;
        if (known->modified_ns != folder->modified_ns) {
            batch_.put_folder(folder);
        }
    } else {
        batch_.put_folder(folder);
    }
    folders_.push_back(std::move(folder));
}

/// Does whatever can be done next. False when nothing is left.
bool DriveScan::step() {
    feed_pool();
    const bool may_list = backlog_.files.empty() && !folders_.empty() && pool_.has_room();
    if (may_list) {
        const FolderPtr folder = std::move(folders_.front());
        folders_.pop_front();
        scan_folder(folder);
        feed_pool();
    }
    if (pool_.in_flight() == 0) {
        return !folders_.empty() || !backlog_.files.empty();
    }
    auto wait = may_list && !folders_.empty() ? std::chrono::milliseconds(0) : kCollectWait;
    while (collect(wait)) {
        wait = std::chrono::milliseconds(0);
    }
    return true;
}

void DriveScan::scan_folder(const FolderPtr& folder) {
    progress_.current_path = folder->relative;
    // The rows first: a file that another scan enters meanwhile must not look as if it had gone.
    const KnownRows known = known_rows_of(*folder);
    const auto directory = open_folder(*folder);
    if (!directory) {
        fail_folder(folder, errno);
        return;
    }
    Listing listing;
    const bool complete = directory->list(stop_, listing);
    if (!complete) {
        fail_folder(folder, errno);
    }
    backlog_ = {folder, directory, {}, 0};
    compare_folders(folder, known.folders, listing.folders, complete);
    compare_files(folder, known.files, std::move(listing.files), complete);
    if (complete && backlog_.files.empty()) {
        finish_folder(folder);
    }
}

std::shared_ptr<const DriveDirectory> DriveScan::open_folder(const ScannedFolder& folder) const {
    return folder.parent ? root_->open_below(folder.relative, folder.parent) : start_;
}

KnownRows DriveScan::known_rows_of(const ScannedFolder& folder) {
    if (folder.has_rows_ahead) {
        return rows_ahead_.take();
    }
    return folder.id != 0 ? read_known_rows(reader_.connection(), folder.id) : KnownRows();
}

void DriveScan::fail_folder(const FolderPtr& folder, int error) {
    folder->unreadable = true;
    if (error == ENOENT || error == EXDEV || error == ECANCELED) {
        return;  // it has gone since it was listed: the next scan tells what is there now
    }
    MC_LOG_WARNING("cannot read the folder [%s%s]: %s", place_.storage.target.c_str(),
                   folder->relative.c_str(), std::strerror(error));
    // What nobody may read is no reason to come again.
    incomplete_ = incomplete_ || error != EACCES;
    if (folder->status != MEDIA_SCAN_STATUS_FAILED) {
        batch_.set_status(folder, MEDIA_SCAN_STATUS_FAILED);
    }
}

void DriveScan::compare_files(const FolderPtr& folder, const std::vector<KnownFile>& known,
                              std::vector<ListedFile> listed, bool complete) {
    RowsByName<KnownFile> rows(known, file_name);
    progress_.files_seen += listed.size();
    for (ListedFile& file : listed) {
        const KnownFile* row = rows.take(file.facts.name);
        if (row && is_unchanged(*row, file)) {
            ++progress_.files_done;
        } else {
            backlog_.files.push_back({std::move(file), row == nullptr});
        }
    }
    folder->unread_chunks = (backlog_.files.size() + kFilesInChunk - 1) / kFilesInChunk;
    if (complete) {
        rows.for_each_unseen([this](const KnownFile& gone) { batch_.remove_file(gone.id); });
    }
}

void DriveScan::compare_folders(const FolderPtr& folder, const std::vector<KnownFolder>& known,
                                const std::vector<ListedFolder>& listed, bool complete) {
    RowsByName<KnownFolder> rows(known, folder_name);
    for (const ListedFolder& found : listed) {
        auto below = std::make_shared<ScannedFolder>();
        below->relative = folder->relative + '/' + found.name;
        below->modified_ns = found.modified_ns;
        below->parent = backlog_.directory->lineage();
        const KnownFolder* row = rows.take(found.name);
        if (row) {
            below->id = row->id;
            below->status = row->scan_status;
        }
        if (!row || row->modified_ns != found.modified_ns) {
            batch_.put_folder(below);
        }
        if (recursive_) {
            if (below->id != 0) {
                below->has_rows_ahead = true;
                rows_ahead_.ask(below->id);
            }
            folders_.push_back(std::move(below));
        }
    }
    if (complete) {
        rows.for_each_unseen([this](const KnownFolder& gone) { batch_.remove_folder(gone.id); });
    }
}

void DriveScan::feed_pool() {
    while (!backlog_.files.empty() && pool_.has_room()) {
        WorkChunk chunk;
        chunk.folder = backlog_.folder;
        chunk.directory = backlog_.directory;
        chunk.path = place_.storage.target + backlog_.folder->relative;
        const size_t end = std::min(backlog_.next + kFilesInChunk, backlog_.files.size());
        chunk.files.resize(end - backlog_.next);
        for (FileWork& work : chunk.files) {
            UnreadFile& unread = backlog_.files[backlog_.next++];
            work.file = std::move(unread.file);
            work.is_new = unread.is_new;
        }
        pool_.submit(std::move(chunk));
        if (backlog_.next == backlog_.files.size()) {
            backlog_ = {};
        }
    }
}

bool DriveScan::collect(std::chrono::milliseconds wait) {
    WorkChunk chunk;
    if (!pool_.collect(chunk, wait)) {
        return false;
    }
    const FolderPtr folder = chunk.folder;
    batch_.put_files(std::move(chunk));
    if (--folder->unread_chunks == 0) {
        finish_folder(folder);
    }
    return !batch_.is_ripe();
}

void DriveScan::finish_folder(const FolderPtr& folder) {
    if (!folder->unreadable && folder->status != MEDIA_SCAN_STATUS_FOLDER_SCANNED) {
        batch_.set_status(folder, MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    }
}

void DriveScan::write() {
    if (!batch_.empty()) {
        batch_.write(progress_);
        report(true);
    }
}

void DriveScan::report(bool written) {
    const auto now = std::chrono::steady_clock::now();
    if (written || now - reported_ >= kReportInterval) {
        reported_ = now;
        report_(progress_, written);
    }
}

void DriveScan::finish() {
    write();
    const bool whole_drive = recursive_ && place_.relative.empty();
    if (whole_drive && !incomplete_ && place_.storage.scan_status != MEDIA_SCAN_STATUS_FULLY_SCANNED) {
        MediaWriter writer(database_);
        writer.set_storage_status(place_.storage.key, MEDIA_SCAN_STATUS_FULLY_SCANNED);
        writer.commit();
    }
    database_.trim();
    report_(progress_, false);
}

}  // namespace media_content
