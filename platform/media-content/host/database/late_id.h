#ifndef QRA_MEDIA_CONTENT_DATABASE_LATE_ID_H
#define QRA_MEDIA_CONTENT_DATABASE_LATE_ID_H

#include <cstdint>
#include <future>

namespace media_content {

/// The id of a row, once it is written; else the error that kept it from being written.
using LateId = std::shared_future<int64_t>;

}  // namespace media_content

#endif
