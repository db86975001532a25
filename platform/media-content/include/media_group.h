/**
 * @file media_group.h
 * Groups of rows with their counts. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_GROUP_H
#define QRA_PLATFORM_MEDIA_GROUP_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/**
 * Calls back once for each group of the rows that the filter selects, in the order of each group's first row
 * under the filter's order; without an order, by the group's value.
 *
 * @param group_field  one of media_group_field_e
 * @param callback     the name is borrowed for the call
 * @return 0; MEDIA_CONTENT_ERROR_INVALID_PARAMETER also for an unknown field;
 * MEDIA_CONTENT_ERROR_BAD_CONDITION
 */
int media_group_foreach_group_and_count_from_db(filter_h filter, int group_field, media_group_cb callback,
                                                void* user_data);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
