#ifndef QRA_ENGINE_FOLDER_MAP_H
#define QRA_ENGINE_FOLDER_MAP_H

#include <sys/types.h>

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace engine {

/// Names a folder for one user: media databases belong to users, and so do the folder ids in them.
struct FolderKey {
    uid_t owner;
    std::string path;        ///< the folder's directory
    std::string storage_id;  ///< the drive that it lies on
};

bool operator<(const FolderKey& left, const FolderKey& right);

/// Which file it is: another one for a file of the same name that took its place, or that was mounted anew.
struct FileIdentity {
    uint64_t mount;
    uint32_t device_major;
    uint32_t device_minor;
    uint64_t inode;
    std::pair<int64_t, uint32_t> birth;  ///< seconds, nanoseconds
};

bool operator==(const FileIdentity& left, const FileIdentity& right);

/**
 * What a directory was when it was looked at. Two states differ as soon as the directory was replaced or
 * mounted anew, had an entry added, removed or renamed, or is reached through a link that was made anew. A
 * drive is such a link: each time it is attached to a media database it gets a new one.
 */
struct DirectoryState {
    FileIdentity directory;
    std::pair<int64_t, uint32_t> modified;  ///< seconds, nanoseconds
    std::vector<FileIdentity> links;        ///< of the path, from the root on
};

bool operator==(const DirectoryState& left, const DirectoryState& right);

/// The state of the directory at `path`; nothing if there is none that this process can see.
std::optional<DirectoryState> read_directory_state(const std::string& path);

/**
 * Remembers media folder ids, so that going back into a folder needs no scan and no query.
 *
 * An id is given only as long as its directory is what it was when the id was added: for a folder that is
 * gone, was replaced, whose drive went, or whose entries changed since, the caller has to look and scan anew.
 * A folder that is dropped from the database is gone or was replaced, unless the database itself was.
 * Bounded: the id that was used longest ago makes room. For one thread.
 */
class FolderMap {
public:
    /// @param database  the file that the ids are of: with another one in its place they are forgotten; may
    /// be empty
    explicit FolderMap(size_t capacity, std::string database = {})
        : capacity_(capacity), database_(std::move(database)) {}

    /**
     * Remembers `folder_id` for `key`, in place of what was there. Refused, with false, for a path that is no
     * directory or a directory that changed only just now: a further change within the resolution of the file
     * system's clock would not show.
     */
    bool add(const FolderKey& key, const std::string& folder_id);

    /// The id that was added last for `key`, or the empty text.
    std::string find(const FolderKey& key);

    size_t size() const { return entries_.size(); }

private:
    struct Entry {
        FolderKey key;
        std::string folder_id;
        DirectoryState state;
        std::optional<FileIdentity> database;  ///< when it was added; nothing if there was none
    };
    using Entries = std::list<Entry>;

    void forget(const FolderKey& key);

    size_t capacity_;
    const std::string database_;
    Entries entries_;  ///< latest used first
    std::map<FolderKey, Entries::iterator> index_;
};

}  // namespace engine

#endif
