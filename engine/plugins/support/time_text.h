#ifndef QRA_ENGINE_PLUGINS_SUPPORT_TIME_TEXT_H
#define QRA_ENGINE_PLUGINS_SUPPORT_TIME_TEXT_H

#include <cstdint>
#include <string>

namespace engine {

/// Seconds since 1970 of "Sat, 21 Nov 2026 22:16:45 GMT" or with a zone like "+0100"; 0 if it is no such
/// time.
int64_t seconds_of_mail_time(const std::string& text);

/// Seconds since 1970 of "2026-11-21T22:16:45Z" or with another zone; 0 if it is no such time.
int64_t seconds_of_iso_time(const std::string& text);

/// Milliseconds of "1:02:03", "45:10" or "754" seconds; 0 if it is no such duration.
uint64_t milliseconds_of_duration(const std::string& text);

/// A whole number without a sign; 0 if it is none or too large.
uint64_t number_of_text(const std::string& text);

}  // namespace engine

#endif
