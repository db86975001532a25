#include "platform/media-content/host/scanner/scan_batch.h"

#include <optional>
#include <utility>

namespace media_content {
namespace {

constexpr size_t kRipeRows = 300;
constexpr size_t kMostRowsInTransaction = 500;
constexpr auto kRipeAge = std::chrono::milliseconds(200);
constexpr auto kFirstRipeAge = std::chrono::milliseconds(20);  // somebody may be waiting for the first page

}  // namespace

/// One transaction after the other, none longer than it should be.
class ScanBatch::Transactions {
public:
    explicit Transactions(Database& database) : database_(database) {}

    MediaWriter& next() {
        if (writer_ && ++rows_ > kMostRowsInTransaction) {
            commit();
        }
        if (!writer_) {
            writer_.emplace(database_);
            rows_ = 1;
        }
        return *writer_;
    }

    void commit() {
        if (writer_) {
            writer_->commit();
            writer_.reset();
        }
    }

private:
    Database& database_;
    std::optional<MediaWriter> writer_;
    size_t rows_ = 0;
};

void ScanBatch::note_row() {
    if (rows_++ == 0) {
        oldest_ = std::chrono::steady_clock::now();
    }
}

void ScanBatch::put_folder(std::shared_ptr<ScannedFolder> folder) {
    note_row();
    folders_.push_back(std::move(folder));
}

void ScanBatch::put_files(WorkChunk chunk) {
    for (const FileWork& work : chunk.files) {
        note_row();
        must_be_mounted_ = must_be_mounted_ || work.outcome == FileOutcome::kRefused;
    }
    chunks_.push_back(std::move(chunk));
}

void ScanBatch::remove_file(int64_t id) {
    note_row();
    must_be_mounted_ = true;
    gone_files_.push_back(id);
}

void ScanBatch::remove_folder(int64_t id) {
    note_row();
    must_be_mounted_ = true;
    gone_folders_.push_back(id);
}

void ScanBatch::set_status(std::shared_ptr<ScannedFolder> folder, int status) {
    note_row();
    statuses_.emplace_back(std::move(folder), status);
}

bool ScanBatch::is_ripe() const {
    const auto ripe_age = has_written_ ? kRipeAge : kFirstRipeAge;
    return rows_ >= kRipeRows || (rows_ > 0 && std::chrono::steady_clock::now() - oldest_ >= ripe_age);
}

void ScanBatch::check_mounted() const {
    if (!is_mounted(storage_)) {
        throw MediaError(MEDIA_CONTENT_ERROR_IO, storage_.target + " went away during the scan");
    }
}

void ScanBatch::write(ScanProgress& progress) {
    if (must_be_mounted_) {
        check_mounted();
    }
    Transactions transactions(database_);
    for (const int64_t id : gone_folders_) {
        transactions.next().remove_folder(id);
    }
    for (const int64_t id : gone_files_) {
        transactions.next().remove_file(id);
    }
    progress.removed += gone_folders_.size() + gone_files_.size();
    for (const auto& folder : folders_) {
        folder->id = transactions.next().ensure_folder(storage_.key, folder->relative, folder->modified_ns);
    }
    for (const WorkChunk& chunk : chunks_) {
        for (const FileWork& work : chunk.files) {
            write_file(transactions, *chunk.folder, work, progress);
        }
    }
    for (const auto& [folder, status] : statuses_) {
        transactions.next().set_folder_status(folder->id, status);
        folder->status = status;
    }
    transactions.commit();
    folders_.clear();
    chunks_.clear();
    gone_files_.clear();
    gone_folders_.clear();
    statuses_.clear();
    must_be_mounted_ = false;
    has_written_ = true;
    rows_ = 0;
}

void ScanBatch::write_file(Transactions& transactions, const ScannedFolder& folder, const FileWork& work,
                           ScanProgress& progress) const {
    ++progress.files_done;
    if (work.outcome != FileOutcome::kGone && work.outcome != FileOutcome::kSkipped) {
        transactions.next().put_file(folder.id, work.file.facts, work.record);
        ++(work.is_new ? progress.added : progress.updated);
        progress.failed += work.outcome == FileOutcome::kRead ? 0 : 1;
    }
}

}  // namespace media_content
