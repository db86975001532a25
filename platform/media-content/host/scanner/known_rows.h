#ifndef QRA_MEDIA_CONTENT_SCANNER_KNOWN_ROWS_H
#define QRA_MEDIA_CONTENT_SCANNER_KNOWN_ROWS_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/media-content/host/database/media_writer.h"

namespace media_content {

/// What the database has below one folder.
struct KnownRows {
    std::vector<KnownFile> files;
    std::vector<KnownFolder> folders;
};

KnownRows read_known_rows(SqliteConnection& connection, int64_t folder);

/**
 * Reads the rows of folders on a thread of its own, while the scan still lists those before them: a scan that
 * finds nothing new takes little longer than the walk. One thread, the scan's, makes all calls.
 */
class KnownRowsAhead {
public:
    explicit KnownRowsAhead(Database& database) : database_(database) {}
    ~KnownRowsAhead();
    KnownRowsAhead(const KnownRowsAhead&) = delete;
    KnownRowsAhead& operator=(const KnownRowsAhead&) = delete;

    /// Each folder that is asked for has to be taken, in the same order.
    void ask(int64_t folder);

    /// The rows of the folder that was asked for first and not taken yet. Throws what the database threw.
    KnownRows take();

private:
    /// Folders that are read and wait to be taken: enough to keep both threads busy, few enough to hold.
    static constexpr size_t kMostReady = 32;

    void run();
    void read_asked(std::unique_lock<std::mutex>& lock);

    Database& database_;
    std::thread thread_;
    std::deque<KnownRows> taken_;  ///< handed over together, so that the threads seldom wake each other

    std::mutex mutex_;              ///< covers all below
    std::condition_variable work_;  ///< there is something to read and room for it, or the end
    std::condition_variable done_;  ///< something is ready, or has failed
    std::deque<int64_t> asked_;
    std::deque<KnownRows> ready_;
    std::exception_ptr failure_;
    bool ending_ = false;
};

}  // namespace media_content

#endif
