#include "apps/qra/browsing.h"

#include "apps/qra/command_line.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/media_path.h"

Browsing::Browsing(const CommandLine& line) : path_(prepare(line)), request_(line.list, path_) {}

std::string Browsing::prepare(const CommandLine& line) {
    if (line.list.source == kServerSource) {
        return network_.emplace().find(line.path);
    }
    if (line.list.source == kPlaylistSource) {
        MediaDrives& drives = drives_.emplace();
        return drives.drive_of(media_path(drives, line.path)).link_path;
    }
    if (line.list.source != kCameraSource) {
        engine_.emplace();
    }
    return line.list.source == kDriveSource ? prepare_drive(line) : line.path;
}

// A view of folders shows what is in the folder; any other view shows its whole drive.
std::string Browsing::prepare_drive(const CommandLine& line) {
    MediaDrives& drives = drives_.emplace();
    std::string path = media_path(drives, readable_directory(line.path));
    if (line.scan_first) {
        const bool of_folder = line.list.sort_category.find("FOLDER") != std::string::npos;
        drives.scan(of_folder ? path : drives.drive_of(path).link_path, !of_folder);
    }
    return path;
}
