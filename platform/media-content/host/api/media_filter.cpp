#include "media_filter.h"

#include <new>

#include "platform/media-content/host/api/filter.h"

namespace {

/// A handle without its own memory is all that can be missing here.
int assign(std::string& field, const char* text) {
    try {
        field = text;
        return MEDIA_CONTENT_ERROR_NONE;
    } catch (const std::bad_alloc&) {
        return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
    }
}

}  // namespace

int media_filter_create(filter_h* filter) {
    if (filter == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    auto* created = new (std::nothrow) filter_s;
    if (created == nullptr) {
        return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
    }
    *filter = created;
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_filter_destroy(filter_h filter) {
    if (filter == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    delete filter;
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_filter_set_storage(filter_h filter, const char* storage_id) {
    if (filter == nullptr || storage_id == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return assign(filter->storage_id, storage_id);
}

int media_filter_set_condition(filter_h filter, const char* condition, int collation) {
    if (filter == nullptr || condition == nullptr || collation != MEDIA_CONTENT_COLLATE_NOCASE) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return assign(filter->condition, condition);
}

int media_filter_set_order(filter_h filter, media_content_order_e order, const char* keys, int collation) {
    if (filter == nullptr || keys == nullptr || collation != MEDIA_CONTENT_COLLATE_NOCASE ||
        (order != MEDIA_CONTENT_ORDER_ASC && order != MEDIA_CONTENT_ORDER_DESC)) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    filter->order = order;
    return assign(filter->order_keys, keys);
}

int media_filter_set_offset(filter_h filter, int offset, int count) {
    if (filter == nullptr || offset < 0 || count < 0) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    filter->offset = offset;
    filter->count = count;
    return MEDIA_CONTENT_ERROR_NONE;
}
