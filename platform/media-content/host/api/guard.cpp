#include "platform/media-content/host/api/guard.h"

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/log.h"

namespace media_content {

int report_failure(const char* function, const MediaError& error) {
    if (error.code() == MEDIA_CONTENT_ERROR_CORRUPT) {
        try {
            connected_database()->note_damage();
        } catch (const MediaError&) {
            // It was found while connecting, and has been dealt with there.
        }
    }
    // That something is not there is an answer like any other.
    if (error.code() == MEDIA_CONTENT_ERROR_NOT_FOUND) {
        MC_LOG_INFO("%s: %s", function, error.what());
    } else {
        MC_LOG_WARNING("%s: %s", function, error.what());
    }
    return error.code();
}

int report_failure(const char* function, const std::exception& error) {
    MC_LOG_WARNING("%s: %s", function, error.what());
    return MEDIA_CONTENT_ERROR_DATABASE;
}

}  // namespace media_content
