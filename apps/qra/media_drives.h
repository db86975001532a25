#ifndef QRA_APPS_QRA_MEDIA_DRIVES_H
#define QRA_APPS_QRA_MEDIA_DRIVES_H

#include <string>
#include <vector>

#include "apps/qra/scan_status_line.h"

struct Drive {
    std::string name;
    std::string id;
    std::string link_path;  ///< below the media root
    std::string target;     ///< the directory that was attached
    bool mounted;
    int scan_status;  ///< a media_scan_status_e
};

/// The drives that the media database knows, over its administration interface. Connected while it lives. All
/// operations throw CommandError: ServiceMissing when the database cannot be opened, else RequestFailed.
class MediaDrives {
public:
    MediaDrives();
    ~MediaDrives();
    MediaDrives(const MediaDrives&) = delete;
    MediaDrives& operator=(const MediaDrives&) = delete;

    /// Makes the directory a drive if it lies on none.
    /// @param wanted_name "USBDriveN", or "" for the first free one
    /// @return the directory's path below the media root
    std::string attach(const std::string& directory, const std::string& wanted_name);
    void detach(const std::string& name);
    std::vector<Drive> all() const;

    /// The drive that a path below the media root lies on.
    Drive drive_of(const std::string& path) const;

    /// Brings the rows of a folder up to date, showing progress. A signal cancels it.
    /// @param path a directory below the media root
    ScanResult scan(const std::string& path, bool recursive);
};

#endif
