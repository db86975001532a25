#include "platform/media-content/host/text/local_calendar.h"

#include <cstdio>
#include <ctime>

namespace media_content {

namespace {

int64_t midnight(tm day, int days_later) {
    day.tm_mday += days_later;
    day.tm_hour = day.tm_min = day.tm_sec = 0;
    day.tm_isdst = -1;
    return mktime(&day);
}

}  // namespace

const std::string& LocalCalendar::date(int64_t time) {
    if (time >= day_start_ && time < day_end_) {
        return date_;
    }
    const auto value = static_cast<time_t>(time);
    tm local{};
    if (localtime_r(&value, &local) == nullptr) {
        date_.clear();
        day_start_ = day_end_ = 0;
        return date_;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    date_ = text;
    day_start_ = midnight(local, 0);
    day_end_ = midnight(local, 1);
    return date_;
}

}  // namespace media_content
