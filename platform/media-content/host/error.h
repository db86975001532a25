#ifndef QRA_MEDIA_CONTENT_ERROR_H
#define QRA_MEDIA_CONTENT_ERROR_H

#include <stdexcept>
#include <string>

#include "media_content_type.h"

namespace media_content {

/// A failure on its way to the C interface, where guarded() turns it into its code.
class MediaError : public std::runtime_error {
public:
    MediaError(media_content_error_e code, const std::string& what) : std::runtime_error(what), code_(code) {}

    media_content_error_e code() const { return code_; }

private:
    media_content_error_e code_;
};

}  // namespace media_content

#endif
