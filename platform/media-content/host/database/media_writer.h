#ifndef QRA_MEDIA_CONTENT_DATABASE_MEDIA_WRITER_H
#define QRA_MEDIA_CONTENT_DATABASE_MEDIA_WRITER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/// What the file system tells about a file or a folder.
struct FileFacts {
    std::string name;          ///< without its directory; any bytes
    int64_t size = 0;          ///< bytes
    int64_t modified_ns = 0;   ///< since 1970
    int64_t companion_ns = 0;  ///< when the info file beside a recording was modified; 0 where there is none
};

/// A file that has a row.
struct KnownFile {
    int64_t id = 0;
    MediaKind kind = MediaKind::kOther;
    FileFacts facts;
};

/// A folder that has a row.
struct KnownFolder {
    int64_t id = 0;
    std::string name;
    int64_t modified_ns = 0;
    int scan_status = 0;  ///< media_scan_status_e
};

/// The folder's id, 0 if it has no row. @param relative "" for the drive itself, "/a/b" below it
int64_t find_folder(SqliteConnection& connection, int64_t storage, std::string_view relative);

/// What the row of one folder tells; empty if it has none.
std::optional<KnownFolder> known_folder(SqliteConnection& connection, int64_t storage,
                                        std::string_view relative);

/// The files that lie in the folder itself and have rows.
std::vector<KnownFile> known_files(SqliteConnection& connection, int64_t folder);

/// The folders that lie in the folder itself and have rows.
std::vector<KnownFolder> known_folders(SqliteConnection& connection, int64_t folder);

/**
 * A batch of changes to the rows of one storage, in one transaction: nothing is there before commit(), and
 * all is undone where that is not called. Batches of a few hundred rows are right: a transaction has its
 * price, and everybody else who writes waits for its end.
 *
 * One thread uses it, which has no other write lease. All functions throw MediaError; after
 * MEDIA_CONTENT_ERROR_DISK_FULL the batch is lost, what was committed before stays.
 *
 * What the user did with a file (play counts, positions, titles and marks that were set) is never touched.
 */
class MediaWriter {
public:
    explicit MediaWriter(Database& database) : lease_(database) {}

    /// The folder's row, and the rows of the folders above it, made where there are none. @return its id
    int64_t ensure_folder(int64_t storage, const std::string& relative, int64_t modified_ns);
    /// The same, but a row that is there stays as it is.
    int64_t known_or_new_folder(int64_t storage, const std::string& relative);
    void set_folder_status(int64_t folder, int status);
    /// Removes the folder's row with everything below it.
    void remove_folder(int64_t folder);

    /// Enters a file, or updates the row of that name in that folder. @return its id
    int64_t put_file(int64_t folder, const FileFacts& facts, const MediaRecord& record);
    void remove_file(int64_t id);

    void set_storage_status(int64_t storage, int status);

    void commit() { lease_.commit(); }

private:
    int64_t storage_of_folder(int64_t folder);
    int64_t insert_folder(int64_t storage, const std::string& relative, int64_t modified_ns);
    void insert_media(int64_t storage, int64_t folder, const FileFacts& facts, const std::string& name_key,
                      const MediaRecord& record);
    void update_media(int64_t id, const FileFacts& facts, const MediaRecord& record);
    void put_details(int64_t id, const MediaRecord& record);

    Database::WriteLease lease_;
    // The folder of the last file: files come folder by folder.
    int64_t last_folder_ = 0;
    int64_t last_storage_ = 0;
};

}  // namespace media_content

#endif
