#ifndef QRA_MEDIA_CONTENT_DATABASE_NEW_ROWS_H
#define QRA_MEDIA_CONTENT_DATABASE_NEW_ROWS_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/media-content/host/database/late_id.h"
#include "platform/media-content/host/database/media_writer.h"

namespace media_content {

/// A file to be entered: where its row belongs, and what was read of it.
struct NewFile {
    int64_t storage = 0;
    std::string folder;  ///< below the storage, as MediaWriter takes it
    FileFacts facts;
    MediaRecord record;
};

/**
 * The rows of single files on their way into the database.
 *
 * A copy of thousands of small files would pay more for a transaction of each row than for the file. So a
 * thread writes the rows, in one transaction all that came within 20 ms. Lists and counts of this process
 * have them at once, as readers wait with settle() for the rows that were added before; only the values of a
 * row that is listed already are read without waiting. Other processes see them that much later. A process
 * that is killed loses the rows of that time, whose files the next scan of the drive finds.
 *
 * Any thread may call anything, but for settle() a thread that has a WriteLease. The thread begins with the
 * first row.
 */
class NewRows {
public:
    explicit NewRows(Database& database) : database_(database) {}
    /// Writes what is left.
    ~NewRows();
    NewRows(const NewRows&) = delete;
    NewRows& operator=(const NewRows&) = delete;

    /// Waits where too many are ahead of it.
    LateId add(NewFile file);

    /// Waits until what was added before is written or has failed, but no longer than `most`.
    /// @return whether it is
    bool settle(std::chrono::milliseconds most);

private:
    struct Entry {
        NewFile file;
        std::promise<int64_t> id;
    };

    void run();
    void write(std::vector<Entry>& entries);
    static void write_in_one(MediaWriter& writer, std::vector<Entry>& entries);
    void fail(std::vector<Entry>& entries, const std::exception& error);

    Database& database_;
    std::mutex mutex_;
    std::condition_variable wanted_;   // the thread has something to do
    std::condition_variable written_;  // it has done something
    std::vector<Entry> waiting_;       // guarded by mutex_
    uint64_t added_count_ = 0;         // guarded by mutex_
    uint64_t written_count_ = 0;       // guarded by mutex_; failed ones too
    bool hurry_ = false;               // guarded by mutex_; somebody waits
    bool ending_ = false;              // guarded by mutex_
    std::thread thread_;               // guarded by mutex_ until it runs
};

}  // namespace media_content

#endif
