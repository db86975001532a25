#ifndef QRA_MEDIA_CONTENT_SCANNER_METADATA_POOL_H
#define QRA_MEDIA_CONTENT_SCANNER_METADATA_POOL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/media-content/host/metadata/metadata_reader.h"
#include "platform/media-content/host/scanner/drive_directory.h"

namespace media_content {

/// How the reading of one file ended.
enum class FileOutcome {
    kRead,
    kUnreadable,  ///< listed with what is known
    kRefused,     ///< the device failed, or is no longer there
    kGone,        ///< it was deleted after it had been listed
    kSkipped,     ///< the scan stopped first
};

/// A file to read, and what was read.
struct FileWork {
    ListedFile file;
    bool is_new = true;
    FileOutcome outcome = FileOutcome::kSkipped;
    MediaRecord record;
};

struct ScannedFolder;

/// Some files of one folder, handed through the pool together.
struct WorkChunk {
    std::shared_ptr<ScannedFolder> folder;
    std::shared_ptr<const DriveDirectory> directory;
    std::string path;  ///< of the folder, for the log
    std::vector<FileWork> files;
};

/**
 * Threads that read files. One thread, the scan's, submits chunks and collects them, in whatever order they
 * are done; both queues are short, so that memory stays small. The threads start with the first chunk.
 */
class MetadataPool {
public:
    /// @param stop  ends the reading of files as soon as it is true; chunks still come back
    explicit MetadataPool(const std::atomic<bool>& stop) : stop_(stop) {}
    ~MetadataPool();
    MetadataPool(const MetadataPool&) = delete;
    MetadataPool& operator=(const MetadataPool&) = delete;

    /// Whether submit() would find room.
    bool has_room() const;
    void submit(WorkChunk chunk);

    /// Chunks that were submitted and not collected.
    size_t in_flight() const { return in_flight_; }

    /// Takes a chunk that is done, waiting for one up to `wait`. False when there is none.
    bool collect(WorkChunk& chunk, std::chrono::milliseconds wait);

private:
    static constexpr size_t kLongestQueue = 64;
    static constexpr size_t kMostDone = 64;

    void start();
    void run();
    void read_chunk(MetadataReader& reader, WorkChunk& chunk) const;
    FileOutcome read_file(MetadataReader& reader, const WorkChunk& chunk, FileWork& work) const;
    static FileOutcome not_opened(const WorkChunk& chunk, const FileWork& work, int error);

    const std::atomic<bool>& stop_;
    size_t in_flight_ = 0;  ///< the scan's thread alone uses it
    std::vector<std::thread> threads_;

    mutable std::mutex mutex_;       ///< covers all below
    std::condition_variable work_;   ///< there is a chunk to read, or the pool ends
    std::condition_variable done_;   ///< there is a chunk to collect
    std::condition_variable space_;  ///< there is room for a chunk that is done
    std::deque<WorkChunk> queue_;
    std::deque<WorkChunk> finished_;
    bool ending_ = false;
};

}  // namespace media_content

#endif
