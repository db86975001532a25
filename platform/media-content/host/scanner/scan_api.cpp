#include <chrono>

#include "media_content.h"
#include "media_content_admin.h"
#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/scanner/scan_service.h"

using namespace media_content;

namespace {

constexpr auto kProgressInterval = std::chrono::milliseconds(100);

bool show(const ScanRun& run, media_content_scan_progress_cb callback, void* user_data) {
    if (callback == nullptr) {
        return true;
    }
    const ScanProgress now = run.progress();
    const std::string path = run.drive_path() + now.current_path;
    const media_content_scan_progress_s progress{now.files_seen, now.files_done, path.c_str(), now.added,
                                                 now.updated,    now.removed,    now.failed};
    return callback(&progress, user_data);
}

/// Waits for a scan and shows its progress. @return its result
int follow(ScanRun& run, const std::string& path, media_content_scan_progress_cb callback, void* user_data) {
    int error = MEDIA_CONTENT_ERROR_NONE;
    while (!run.wait(kProgressInterval, error)) {
        if (!show(run, callback, user_data)) {
            run.leave(path);
            return MEDIA_CONTENT_ERROR_CANCELLED;
        }
    }
    show(run, callback, user_data);
    return error;
}

int cancel(const char* path) {
    if (path == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return ScanService::instance().cancel(path) ? MEDIA_CONTENT_ERROR_NONE : MEDIA_CONTENT_ERROR_NOT_FOUND;
}

}  // namespace

int media_content_scan_folder_v2(const char* path, bool recursive, media_scan_completed_cb callback,
                                 void* user_data) {
    if (path == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        ScanListener listener;
        if (callback != nullptr) {
            listener = [callback, user_data](int error, int phase) { callback(error, phase, user_data); };
        }
        ScanService::instance().start(path, recursive, std::move(listener));
    });
}

int media_content_cancel_scan_folder(const char* path) {
    return cancel(path);
}

int media_content_admin_scan(const char* path, bool recursive, media_content_scan_progress_cb callback,
                             void* user_data) {
    if (path == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    int result = MEDIA_CONTENT_ERROR_NONE;
    const int started = guarded(__func__, [&] {
        const auto run = ScanService::instance().start(path, recursive, {});
        result = follow(*run, path, callback, user_data);
    });
    return started != MEDIA_CONTENT_ERROR_NONE ? started : result;
}

int media_content_admin_cancel_scan(const char* path) {
    return cancel(path);
}
