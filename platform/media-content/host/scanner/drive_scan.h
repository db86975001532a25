#ifndef QRA_MEDIA_CONTENT_SCANNER_DRIVE_SCAN_H
#define QRA_MEDIA_CONTENT_SCANNER_DRIVE_SCAN_H

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/scanner/drive_directory.h"
#include "platform/media-content/host/scanner/known_rows.h"
#include "platform/media-content/host/scanner/metadata_pool.h"
#include "platform/media-content/host/scanner/scan_batch.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

/// What a scan tells while it works, on its own thread. `written` is true when new rows can be seen.
using ScanReporter = std::function<void(const ScanProgress& progress, bool written)>;

/**
 * One scan of a place on a drive: compares folder after folder, the nearest first, with what the database
 * has, reads the files that are new or changed, writes the rows, and drops those of files that are gone. It
 * may be killed at any moment: what is in the database is true, and the next scan does the rest.
 *
 * One thread makes it and runs it, once.
 */
class DriveScan {
public:
    /// @param stop ends the scan within a moment; it has to outlive the scan, as have the others
    DriveScan(Database& database, const StoragePath& place, bool recursive, const std::atomic<bool>& stop,
              ScanReporter report);

    /// Throws MediaError; MEDIA_CONTENT_ERROR_CANCELLED after a stop.
    void run();

private:
    using FolderPtr = std::shared_ptr<ScannedFolder>;

    struct UnreadFile {
        ListedFile file;
        bool is_new;
    };
    /// The files of the latest folder that wait for room in the pool.
    struct Backlog {
        FolderPtr folder;
        std::shared_ptr<const DriveDirectory> directory;
        std::vector<UnreadFile> files;
        size_t next = 0;
    };

    void open_drive();
    void begin();
    void drop_missing_start();
    bool step();
    void scan_folder(const FolderPtr& folder);
    std::shared_ptr<const DriveDirectory> open_folder(const ScannedFolder& folder) const;
    KnownRows known_rows_of(const ScannedFolder& folder);
    void fail_folder(const FolderPtr& folder, int error);
    void compare_files(const FolderPtr& folder, const std::vector<KnownFile>& known,
                       std::vector<ListedFile> listed, bool complete);
    void compare_folders(const FolderPtr& folder, const std::vector<KnownFolder>& known,
                         const std::vector<ListedFolder>& listed, bool complete);
    void feed_pool();
    bool collect(std::chrono::milliseconds wait);
    void finish_folder(const FolderPtr& folder);
    void write();
    void report(bool written);
    void finish();

    Database& database_;
    const StoragePath place_;
    const bool recursive_;
    const std::atomic<bool>& stop_;
    const ScanReporter report_;

    Database::ReadLease reader_;
    KnownRowsAhead rows_ahead_;
    std::shared_ptr<const DriveDirectory> root_;
    std::shared_ptr<const DriveDirectory> start_;
    std::deque<FolderPtr> folders_;  ///< to be scanned, in this order
    Backlog backlog_;
    ScanBatch batch_;
    MetadataPool pool_;
    ScanProgress progress_;
    std::chrono::steady_clock::time_point reported_;
    bool incomplete_ = false;  ///< something could not be read that another time may be
};

}  // namespace media_content

#endif
