#include "tests/unit/local_source/filter_recorder.h"

#include "media_filter.h"

FilterRecorder g_filter;

int media_filter_create(filter_h* filter) {
    if (g_filter.create_result == 0) {
        *filter = reinterpret_cast<filter_h>(&g_filter);
        ++g_filter.alive;
    }
    return g_filter.create_result;
}

int media_filter_destroy(filter_h) {
    --g_filter.alive;
    return 0;
}

int media_filter_set_storage(filter_h, const char* storage_id) {
    g_filter.storage = storage_id;
    return g_filter.storage_result;
}

int media_filter_set_condition(filter_h, const char* condition, int collation) {
    g_filter.condition = condition;
    g_filter.condition_collation = collation;
    return g_filter.condition_result;
}

int media_filter_set_order(filter_h, media_content_order_e order, const char* keys, int collation) {
    g_filter.order_keys = keys;
    g_filter.order = order;
    g_filter.order_collation = collation;
    return g_filter.order_result;
}
