#ifndef QRA_APPS_QRA_JOB_ITEM_H
#define QRA_APPS_QRA_JOB_ITEM_H

#include <cstdint>
#include <string>

/// A chosen tile as a job sees it.
struct JobItem {
    int tile = 0;  ///< list index
    int media_type = 0;
    std::string name;
    std::string path;
    std::uint64_t size = 0;  ///< bytes, as the media database has it
    bool has_time = false;   ///< the media database knows when it was modified
};

#endif
