#ifndef QRA_TESTS_UNIT_LOCAL_SOURCE_FILTER_RECORDER_H
#define QRA_TESTS_UNIT_LOCAL_SOURCE_FILTER_RECORDER_H

#include <string>

/**
 * Stands in for the platform's filters, and remembers what is set on them.
 *
 * One filter at a time is enough for a filter product. A step fails when its result is set to something other
 * than 0.
 */
struct FilterRecorder {
    int create_result = 0;
    int storage_result = 0;
    int condition_result = 0;
    int order_result = 0;

    int alive = 0;  ///< filters made and not destroyed
    std::string storage;
    std::string condition = "not set";
    int condition_collation = 0;
    std::string order_keys = "not set";
    int order = -1;
    int order_collation = 0;
};

/// The one that the platform's functions of this program write to.
extern FilterRecorder g_filter;

#endif
