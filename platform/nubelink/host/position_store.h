#ifndef QRA_NUBELINK_POSITION_STORE_H
#define QRA_NUBELINK_POSITION_STORE_H

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace nbl {

/**
 * Where items of servers that keep no positions were left: seconds, by device and content id. A file that all
 * processes of the user share; it is looked at again when another process has written it. Of more than kMost
 * positions those that were set longest ago are forgotten. May be used from any thread.
 */
class PositionStore {
public:
    static constexpr size_t kMost = 2000;
    static constexpr size_t kLongestId = 4096;

    explicit PositionStore(std::string path) : path_(std::move(path)) {}

    /// 0 if none is kept.
    int find(std::string_view device, std::string_view content);

    /// Keeps it, or forgets it if it is 0. False if the ids are too long to keep or the file cannot be
    /// written.
    bool keep(std::string_view device, std::string_view content, int seconds);

private:
    struct Kept {
        int seconds;
        int64_t when;  ///< in microseconds, by the wall clock
    };

    // All with mutex_ held.
    void refresh();
    bool write();
    void forget_oldest();
    void read(const struct stat& status);

    const std::string path_;
    std::mutex mutex_;                            ///< also over the file, which is written seldom
    std::unordered_map<std::string, Kept> kept_;  ///< by key_of(); by mutex_
    struct stat seen_ {};                         ///< of the file that kept_ was read from; by mutex_
};

}  // namespace nbl

#endif
