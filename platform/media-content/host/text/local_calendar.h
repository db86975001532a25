#ifndef QRA_MEDIA_CONTENT_TEXT_LOCAL_CALENDAR_H
#define QRA_MEDIA_CONTENT_TEXT_LOCAL_CALENDAR_H

#include <cstdint>
#include <string>

namespace media_content {

/// Days of the local time zone. Remembers the last day, as times in order ask for the same one again and
/// again.
class LocalCalendar {
public:
    /// "YYYY-MM-DD" of a time in seconds since 1970; valid until the next call.
    const std::string& date(int64_t time);

private:
    int64_t day_start_ = 0;
    int64_t day_end_ = 0;  // the first second of the next day
    std::string date_;
};

}  // namespace media_content

#endif
