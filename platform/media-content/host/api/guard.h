#ifndef QRA_MEDIA_CONTENT_API_GUARD_H
#define QRA_MEDIA_CONTENT_API_GUARD_H

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "platform/media-content/host/error.h"

namespace media_content {

/// Writes the log line of a failure that is no mere answer, and notes a damaged database. @return its code
int report_failure(const char* function, const MediaError& error);
int report_failure(const char* function, const std::exception& error);

/// Runs what a function of the C interface does. Nothing is thrown through that interface.
template <typename Body>
int guarded(const char* function, Body body) noexcept {
    try {
        body();
        return MEDIA_CONTENT_ERROR_NONE;
    } catch (const MediaError& error) {
        return report_failure(function, error);
    } catch (const std::bad_alloc&) {
        return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        return report_failure(function, error);
    }
}

/// A copy for the caller of the C interface, who frees it. Throws std::bad_alloc.
inline char* duplicate(std::string_view text) {
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

}  // namespace media_content

#endif
