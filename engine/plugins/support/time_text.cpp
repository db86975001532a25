#include "engine/plugins/support/time_text.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <charconv>
#include <memory>

#include "platform/support/release.h"

namespace engine {

namespace {

using DateTimePtr = std::unique_ptr<GDateTime, support::Release<g_date_time_unref>>;
using TimeZonePtr = std::unique_ptr<GTimeZone, support::Release<g_time_zone_unref>>;

constexpr uint64_t kLongestDuration = uint64_t{1'000'000} * 3600;

int64_t seconds_of(const DateTimePtr& time) {
    return time ? g_date_time_to_unix(time.get()) : 0;
}

}  // namespace

int64_t seconds_of_mail_time(const std::string& text) {
    return seconds_of(DateTimePtr(soup_date_time_new_from_http_string(text.c_str())));
}

int64_t seconds_of_iso_time(const std::string& text) {
    const TimeZonePtr utc(g_time_zone_new_utc());
    return seconds_of(DateTimePtr(g_date_time_new_from_iso8601(text.c_str(), utc.get())));
}

uint64_t milliseconds_of_duration(const std::string& text) {
    uint64_t seconds = 0;
    size_t begin = 0;
    for (int part = 0; part < 3; ++part) {
        const size_t end = std::min(text.find(':', begin), text.size());
        const std::string digits = text.substr(begin, end - begin);
        if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos ||
            digits.size() > 9) {
            return 0;
        }
        seconds = seconds * 60 + number_of_text(digits);
        if (end == text.size()) {
            return seconds <= kLongestDuration ? seconds * 1000 : 0;
        }
        begin = end + 1;
    }
    return 0;
}

uint64_t number_of_text(const std::string& text) {
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

}  // namespace engine
