#ifndef QRA_MEDIA_CONTENT_SCANNER_SCAN_SERVICE_H
#define QRA_MEDIA_CONTENT_SCANNER_SCAN_SERVICE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "media_content.h"
#include "platform/media-content/host/scanner/scan_batch.h"

namespace media_content {

/// What a scan tells those who asked for it, on its own thread: an error, or 0 and a media_scan_phase_e.
using ScanListener = std::function<void(int error, int phase)>;

/**
 * A scan under way, for one or more requests that want the same place in the same depth. It goes on as long
 * as one of them wants it, and ends with one result for all. Any thread may use it.
 */
class ScanRun {
public:
    ScanRun(std::shared_ptr<Database> database, StoragePath place, bool recursive);

    /// Adds a request that was made with this path; false when it is too late for this run.
    bool join(const std::string& path, ScanListener listener);

    /// Takes one request that was made with this path back, and stops the scan when it was the last.
    bool leave(const std::string& path);

    void stop() { stop_ = true; }

    /// Waits for the end, at most this long. True, with the result, when the scan has ended.
    bool wait(std::chrono::milliseconds time, int& error);

    ScanProgress progress() const;

    /// The drive's path below the media root.
    std::string drive_path() const { return place_.storage.link_path(); }

private:
    friend class ScanService;

    void execute();
    int scan();
    void tell(int error, int phase);
    void report(const ScanProgress& progress, bool written);

    const std::shared_ptr<Database> database_;
    const StoragePath place_;
    const bool recursive_;
    std::atomic<bool> stop_{false};

    mutable std::mutex mutex_;  ///< covers all below; not held while a listener runs
    std::condition_variable ended_changed_;
    std::vector<std::string> wanted_;  ///< the paths of the requests that were not taken back
    std::vector<ScanListener> listeners_;
    ScanProgress progress_;
    bool ended_ = false;
    int error_ = 0;
};

/**
 * All scans of this process, each on a thread of its own. Requests for the same place and depth share one
 * scan, and scans of several processes for the same place and depth run one after the other. Any thread may
 * call anything, also from within a listener.
 */
class ScanService {
public:
    /// Made at the first use and never destroyed; scans that still run are stopped when the process ends.
    static ScanService& instance();

    /**
     * Starts a scan, or joins the one that does the same.
     *
     * @param path      the place as the caller names it, which is what cancel() takes
     * @param listener  may be empty; it gets exactly one final report
     * Throws MediaError: MEDIA_CONTENT_ERROR_NOT_FOUND for a path on no attached drive,
     * MEDIA_CONTENT_ERROR_NOT_CONNECTED.
     */
    std::shared_ptr<ScanRun> start(const std::string& path, bool recursive, ScanListener listener);

    /// Takes one request for each scan with this path back. False: there was none.
    bool cancel(const std::string& path);

private:
    struct Entry {
        std::shared_ptr<ScanRun> run;
        std::thread thread;
        bool finished = false;
    };

    ScanService();
    void run(Entry& entry);
    void reap();
    void stop_all();

    std::mutex mutex_;
    std::condition_variable finished_;  ///< an entry's thread has nothing left to do
    std::list<Entry> entries_;          ///< guarded by mutex_
};

}  // namespace media_content

#endif
