#include "media_content.h"

#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/database/database.h"

using namespace media_content;

int media_content_connect(void) {
    return guarded(__func__, connect_database);
}

int media_content_disconnect(void) {
    return disconnect_database() ? MEDIA_CONTENT_ERROR_NONE : MEDIA_CONTENT_ERROR_NOT_CONNECTED;
}
