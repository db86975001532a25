#include "apps/qra/media_path.h"

#include <algorithm>

#include "apps/qra/directory_path.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

std::string media_path(MediaDrives& drives, const std::string& path) {
    const std::string directory = existing_directory(path);
    const std::vector<Drive> before = drives.all();
    std::string result = drives.attach(directory, "");
    const Drive drive = drives.drive_of(result);
    const bool is_new = std::none_of(before.begin(), before.end(),
                                     [&](const Drive& known) { return known.name == drive.name; });
    if (is_new) {
        print_note("attached " + shown_path(directory) + " as " + drive.name);
    }
    return result;
}
