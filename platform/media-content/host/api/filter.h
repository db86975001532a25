#ifndef QRA_MEDIA_CONTENT_API_FILTER_H
#define QRA_MEDIA_CONTENT_API_FILTER_H

#include <string>

#include "media_content_type.h"

/// What a filter handle points to.
struct filter_s {
    std::string storage_id;  ///< empty: all storages
    std::string condition;   ///< empty: all rows
    std::string order_keys;  ///< empty: no order asked for
    media_content_order_e order = MEDIA_CONTENT_ORDER_ASC;
    int offset = 0;
    int count = -1;  ///< -1: no limit
};

#endif
