#ifndef QRA_APPS_QRA_MEDIA_PATH_H
#define QRA_APPS_QRA_MEDIA_PATH_H

#include <string>

class MediaDrives;

/// Where a directory stands below the media root. One that lies on no drive is attached, with a note on
/// stderr.
std::string media_path(MediaDrives& drives, const std::string& path);

#endif
