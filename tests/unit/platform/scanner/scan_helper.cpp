// Usage: scan-helper scan|exit|exit-in-callback PATH
// Scans a place on a drive; or ends the process while the scan runs, from outside or from within its
// callback.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "media_content.h"
#include "media_content_admin.h"

namespace {

void end_process(int, int phase, void*) {
    if (phase == MEDIA_SCAN_PHASE_PROGRESS) {
        exit(0);
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3 || media_content_connect() != 0) {
        fprintf(stderr, "usage: scan-helper scan|exit|exit-in-callback PATH\n");
        return 1;
    }
    const std::string mode = arguments[1];
    const char* path = arguments[2];
    if (mode == "exit") {
        return media_content_scan_folder_v2(path, true, nullptr, nullptr);
    }
    if (mode == "exit-in-callback") {
        media_content_scan_folder_v2(path, true, end_process, nullptr);
    }
    const int error = media_content_admin_scan(path, true, nullptr, nullptr);
    media_content_disconnect();
    return error;
}
