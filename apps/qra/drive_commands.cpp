#include <algorithm>
#include <string>

#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/media_path.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"
#include "media_content.h"

namespace {

const char* state_of(const Drive& drive) {
    if (!drive.mounted) {
        return "absent";
    }
    switch (drive.scan_status) {
        case MEDIA_SCAN_STATUS_FULLY_SCANNED:
            return "scanned";
        case MEDIA_SCAN_STATUS_RUNNING:
            return "scanning";
        case MEDIA_SCAN_STATUS_FAILED:
            return "scan failed";
        default:
            return "not all scanned";
    }
}

}  // namespace

void run_attach(const CommandLine& line) {
    MediaDrives drives;
    const std::string path = drives.attach(readable_directory(line.path), line.drive_name);
    const std::string name = drives.drive_of(path).name;
    if (!line.drive_name.empty() && name != line.drive_name) {
        print_note(shown_path(line.path) + " lies on " + name + " already, which keeps its name");
    }
    print(name + "\n");
}

void run_detach(const CommandLine& line) {
    MediaDrives().detach(line.drive_name);
}

void run_storages(const CommandLine&) {
    const std::vector<Drive> drives = MediaDrives().all();
    std::size_t name_width = 0;
    std::size_t state_width = 0;
    std::size_t id_width = 0;
    for (const Drive& drive : drives) {
        name_width = std::max(name_width, drive.name.size());
        state_width = std::max(state_width, std::string(state_of(drive)).size());
        id_width = std::max(id_width, drive.id.size());
    }
    for (const Drive& drive : drives) {
        print(padded(drive.name, name_width) + padded(state_of(drive), state_width) +
              padded(drive.id, id_width) + printable_text(drive.target) + "\n");
    }
}

void run_scan(const CommandLine& line) {
    MediaDrives drives;
    const std::string path = media_path(drives, readable_directory(line.path));
    const ScanResult result = drives.scan(path, line.recursive);
    print_note(std::to_string(result.files) + " files: " + std::to_string(result.added) + " new, " +
               std::to_string(result.updated) + " changed, " + std::to_string(result.removed) + " gone, " +
               std::to_string(result.failed) + " not readable");
}
