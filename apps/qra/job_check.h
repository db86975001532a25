#ifndef QRA_APPS_QRA_JOB_CHECK_H
#define QRA_APPS_QRA_JOB_CHECK_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "apps/qra/job_item.h"

// What would make a job fail, told before it starts. Each check gives a reason that reads after the file's
// name, or an empty text.

/// What the file system of a copy's target can take.
struct TargetLimits {
    dev_t device = 0;
    std::string file_system;         ///< "vfat", "ext4", ...; empty if nobody knows
    std::uint64_t free_bytes = 0;    ///< for this user
    std::uint64_t block_bytes = 1;   ///< what a file of one byte takes
    std::uint64_t largest_file = 0;  ///< 0: no limit that matters
    std::uint64_t user_limit = 0;    ///< bytes that the user lets a file have (ulimit -f); 0: no limit
    std::size_t longest_name = 0;    ///< in bytes; 0: not known
    bool windows_names =
        false;  ///< UTF-8 of at most 255 UTF-16 units, without the signs that Windows forbids
};

/// The limits of the file system that a directory lies on. @throws CommandError if they cannot be had
TargetLimits target_limits(const std::string& directory);

/// A tile of the page that stands for no content: the way up, the header of a group, an empty one.
bool is_without_content(int media_type);

/// Why a job does not work on tiles of this kind.
std::string tile_refusal(int media_type);

/// Why the source of a copy cannot be read as it is, or is a recording that a job does not copy.
std::string source_refusal(const JobItem& item);

/// Why the target's file system cannot hold a file.
std::string limit_refusal(const JobItem& item, const TargetLimits& limits);

/// Why nothing can be written where a copy would put a file.
std::string target_refusal(const JobItem& item, const std::string& directory);

/// The copies of a job that is being planned, each beside those before it and what is on the target.
class PlannedCopies {
public:
    /// `limits` stay the caller's.
    PlannedCopies(std::string directory, const TargetLimits& limits)
        : directory_(std::move(directory)), limits_(limits) {}

    /// Adds a copy; or says why it has no place: no name is left for it, or a companion, which is not given a
    /// name of its own, would replace a file.
    std::string add(const JobItem& item);

    /// What an item lacks once its copy is reported as done: the companions that did not come whole. Empty
    /// for nothing, and where the copy took another place than was planned.
    std::string shortfall(const JobItem& item) const;

private:
    struct Companion {
        std::string source;
        std::string copy;
    };
    struct Copy {
        std::string path;
        std::vector<Companion> companions;
    };

    /// A path as the target tells it from others.
    std::string key(const std::string& path) const;

    const std::string directory_;
    const TargetLimits& limits_;
    std::map<std::string, std::string> sources_;  ///< of each file to come, by the key of its path
    std::map<int, Copy> copies_;                  ///< by the item's tile
};

/// Why a file cannot be removed, or is a recording that a job does not delete.
std::string removal_refusal(const JobItem& item);

/// The name of the folder that a copy puts a file of this kind into; null for a kind that cannot be copied.
const char* copy_folder(int media_type);

/// The directory no longer lies on the file system that it lay on: its drive was pulled.
bool has_gone(const std::string& directory, const TargetLimits& limits);

/// Why a copy that the library reported as failed did not succeed, as far as that can be told afterwards.
std::string copy_failure(const JobItem& item, const std::string& directory, const TargetLimits& limits);

/// The same for a file that was to be deleted.
std::string removal_failure(const JobItem& item);

/// What the copies of the files and of their companions take on the target.
std::uint64_t needed_bytes(const std::vector<JobItem>& items, const TargetLimits& limits);

#endif
