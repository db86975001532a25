#ifndef QRA_MEDIA_CONTENT_SCANNER_SCAN_BATCH_H
#define QRA_MEDIA_CONTENT_SCANNER_SCAN_BATCH_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/scanner/metadata_pool.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

/// How far a scan has come.
struct ScanProgress {
    size_t files_seen = 0;
    size_t files_done = 0;
    size_t added = 0;
    size_t updated = 0;
    size_t removed = 0;
    size_t failed = 0;
    std::string current_path;  ///< on the drive
};

/// A folder that a scan has met.
struct ScannedFolder {
    std::string relative;  ///< "" for the drive itself, "/a/b" below it
    int64_t id = 0;        ///< of its row; 0 as long as it has none
    int64_t modified_ns = 0;
    int status = 0;               ///< as the database has it
    bool has_rows_ahead = false;  ///< its rows were asked for in advance
    size_t unread_chunks = 0;
    bool unreadable = false;
    std::shared_ptr<const Lineage> parent;  ///< null for the folder that the scan begins with
};

/**
 * What a scan has found and not written yet. It is written in transactions of a few hundred rows, folders
 * before their files, and a folder's status after all that it speaks for.
 */
class ScanBatch {
public:
    ScanBatch(Database& database, const Storage& storage) : database_(database), storage_(storage) {}

    void put_folder(std::shared_ptr<ScannedFolder> folder);
    void put_files(WorkChunk chunk);
    void remove_file(int64_t id);
    void remove_folder(int64_t id);
    void set_status(std::shared_ptr<ScannedFolder> folder, int status);

    bool empty() const { return rows_ == 0; }
    /// Whether it is large enough to be written, or has waited long enough.
    bool is_ripe() const;

    /**
     * Writes all and is empty then; nothing where something is to be removed, or could not be read, and the
     * drive is no longer there. Throws MediaError: MEDIA_CONTENT_ERROR_IO for a drive that went away, and
     * what the database says.
     */
    void write(ScanProgress& progress);

private:
    class Transactions;

    void note_row();
    void check_mounted() const;
    void write_file(Transactions& transactions, const ScannedFolder& folder, const FileWork& work,
                    ScanProgress& progress) const;

    Database& database_;
    const Storage& storage_;
    size_t rows_ = 0;
    bool has_written_ = false;
    bool must_be_mounted_ = false;
    std::chrono::steady_clock::time_point oldest_;  ///< when the first row came in
    std::vector<std::shared_ptr<ScannedFolder>> folders_;
    std::vector<WorkChunk> chunks_;
    std::vector<int64_t> gone_files_;
    std::vector<int64_t> gone_folders_;
    std::vector<std::pair<std::shared_ptr<ScannedFolder>, int>> statuses_;
};

}  // namespace media_content

#endif
