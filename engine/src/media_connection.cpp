#include "engine/src/media_connection.h"

#include "engine/src/engine_log.h"
#include "media_content.h"

namespace engine {

MediaConnection::~MediaConnection() {
    if (connected_) {
        media_content_disconnect();
    }
}

bool MediaConnection::ensure() {
    if (!connected_) {
        const int error = media_content_connect();
        connected_ = error == MEDIA_CONTENT_ERROR_NONE;
        if (!connected_) {
            ENGINE_WARNING("cannot connect to the media database: error %d", error);
        }
    }
    return connected_;
}

}  // namespace engine
