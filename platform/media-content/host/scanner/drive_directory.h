#ifndef QRA_MEDIA_CONTENT_SCANNER_DRIVE_DIRECTORY_H
#define QRA_MEDIA_CONTENT_SCANNER_DRIVE_DIRECTORY_H

#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/media-content/host/database/media_writer.h"
#include "platform/media-content/host/metadata/media_types.h"

namespace media_content {

using files::Descriptor;

int64_t modified_ns(const struct stat& status);

/// A media file as a directory lists it.
struct ListedFile {
    FileFacts facts;
    const MediaType* type = nullptr;
    bool is_link = false;
};

struct ListedFolder {
    std::string name;
    int64_t modified_ns = 0;
    bool is_link = false;
};

struct Listing {
    std::vector<ListedFile> files;
    std::vector<ListedFolder> folders;
};

/// A directory and those on the way to it from the drive's root; it keeps nothing open.
struct Lineage {
    dev_t device = 0;
    ino_t inode = 0;
    bool behind_link = false;  ///< it, or one above it, was reached through a link
    std::shared_ptr<const Lineage> above;

    /// Whether the directory is this one or one above it.
    bool holds(const struct stat& directory) const;
};

/**
 * An open directory of a drive.
 *
 * Nothing outside the drive is ever opened through it. Links that stay inside the drive are listed like what
 * they lead to; one that leads to a directory which it lies in is not, and behind a link to a directory
 * further ones to directories are not either, so that every walk ends.
 */
class DriveDirectory {
public:
    /// The drive's root; null, with errno set, when it cannot be opened. @param target without links
    static std::shared_ptr<const DriveDirectory> open_root(const std::string& target);

    /**
     * A directory below this one, which is the drive's root.
     *
     * @param relative  "/a/b"
     * @param parent    the lineage of "/a"
     * @return null, with errno set, when it is not there or leads out of the drive
     */
    std::shared_ptr<const DriveDirectory> open_below(const std::string& relative,
                                                     const std::shared_ptr<const Lineage>& parent) const;

    /// The same for one whose parents have not been opened. @param relative also "" for the root itself
    static std::shared_ptr<const DriveDirectory> open_path(const std::shared_ptr<const DriveDirectory>& root,
                                                           const std::string& relative);

    /**
     * All that is to be listed in it. False, with errno set, when it could not be read to its end; with
     * ECANCELED after a stop.
     */
    bool list(const std::atomic<bool>& stop, Listing& listing) const;

    /// Opens a listed file for reading; invalid, with errno set, when it cannot be opened.
    Descriptor open_file(const std::string& name, bool is_link) const;

    int descriptor() const { return descriptor_.get(); }
    int64_t modified_ns() const { return modified_ns_; }
    const std::shared_ptr<const Lineage>& lineage() const { return lineage_; }

private:
    DriveDirectory(Descriptor descriptor, std::shared_ptr<const std::string> target,
                   const struct stat& status, const std::shared_ptr<const Lineage>& above, bool behind_link);

    void add_entry(const char* name, unsigned char type, Listing& listing) const;
    void add_link(const char* name, const MediaType* type, Listing& listing) const;
    bool leads_inside(int descriptor) const;
    FileFacts facts_of(const char* name, const struct stat& status, const MediaType& type) const;

    Descriptor descriptor_;
    std::shared_ptr<const std::string> target_;  ///< of the drive
    int64_t modified_ns_;
    std::shared_ptr<const Lineage> lineage_;
};

}  // namespace media_content

#endif
