#ifndef QRA_TESTS_CAPI_MEDIA_DRIVE_H
#define QRA_TESTS_CAPI_MEDIA_DRIVE_H

#include <string>

#include "tests/fakes/temp_dir.h"

/**
 * A drive with a media database of its own: four pictures and a folder with one more, attached and scanned.
 *
 * Sets the variables by which this process, and those that it starts, find the database. One at a time.
 */
class MediaDrive {
public:
    MediaDrive();
    MediaDrive(const MediaDrive&) = delete;
    MediaDrive& operator=(const MediaDrive&) = delete;

    /// The drive's path below the media root.
    const std::string& path() const { return path_; }

private:
    TempDir directory_;
    std::string path_;
};

#endif
