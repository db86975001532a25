#ifndef QRA_TESTS_MEDIA_CONTENT_CONTRACT_H
#define QRA_TESTS_MEDIA_CONTENT_CONTRACT_H

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "media_content.h"
#include "media_content_admin.h"

// Short forms of what the tests ask the C interface for.

namespace media_content {

/// A filter that destroys itself.
class TestFilter {
public:
    explicit TestFilter(const std::string& storage_id = "", const std::string& condition = "") {
        media_filter_create(&filter_);
        if (!storage_id.empty()) {
            media_filter_set_storage(filter_, storage_id.c_str());
        }
        if (!condition.empty()) {
            media_filter_set_condition(filter_, condition.c_str(), MEDIA_CONTENT_COLLATE_NOCASE);
        }
    }
    TestFilter(const TestFilter&) = delete;
    TestFilter& operator=(const TestFilter&) = delete;
    ~TestFilter() { media_filter_destroy(filter_); }

    TestFilter& order(const char* keys, int direction = 0) {
        media_filter_set_order(filter_, static_cast<media_content_order_e>(direction), keys,
                               MEDIA_CONTENT_COLLATE_NOCASE);
        return *this;
    }
    TestFilter& limit(int offset, int count) {
        media_filter_set_offset(filter_, offset, count);
        return *this;
    }
    operator filter_h() const { return filter_; }

private:
    filter_h filter_ = nullptr;
};

/// A text that a getter gave, taken over; "(failed)" where it failed.
template <typename Handle>
std::string text_of(int (*getter)(Handle, char**), Handle handle) {
    char* text = nullptr;
    if (getter(handle, &text) != MEDIA_CONTENT_ERROR_NONE) {
        return "(failed)";
    }
    const std::string copy = text;
    std::free(text);
    return copy;
}

template <typename Handle>
int int_of(int (*getter)(Handle, int*), Handle handle) {
    int value = -1;
    return getter(handle, &value) == MEDIA_CONTENT_ERROR_NONE ? value : -1;
}

using Names = std::vector<std::string>;

inline bool add_media_name(media_info_h media, void* names) {
    static_cast<Names*>(names)->push_back(text_of(media_info_get_display_name, media));
    return true;
}

inline bool add_pvr_title(media_pvr_h recording, void* names) {
    static_cast<Names*>(names)->push_back(text_of(media_pvr_get_program_title, recording));
    return true;
}

inline bool add_uhd_name(media_uhd_h uhd, void* names) {
    static_cast<Names*>(names)->push_back(text_of(media_uhd_get_file_name, uhd));
    return true;
}

inline bool add_folder_name(media_folder_h folder, void* names) {
    static_cast<Names*>(names)->push_back(text_of(media_folder_get_name, folder));
    return true;
}

inline bool add_storage_name(media_storage_h storage, void* names) {
    static_cast<Names*>(names)->push_back(text_of(media_storage_get_name, storage));
    return true;
}

/// The names of all rows, or one entry "error N".
inline Names answered(int result, Names names) {
    return result == MEDIA_CONTENT_ERROR_NONE ? std::move(names) : Names{"error " + std::to_string(result)};
}

inline Names media_names(filter_h filter) {
    Names names;
    const int result = media_info_foreach_media_from_db(filter, add_media_name, &names);
    return answered(result, names);
}

inline Names media_names_of_folder(const std::string& folder, filter_h filter) {
    Names names;
    const int result = media_folder_foreach_media_from_db(folder.c_str(), filter, add_media_name, &names);
    return answered(result, names);
}

inline Names pvr_titles(filter_h filter) {
    Names names;
    const int result = media_pvr_foreach_media_from_db(filter, add_pvr_title, &names);
    return answered(result, names);
}

inline Names uhd_names(filter_h filter) {
    Names names;
    const int result = media_uhd_foreach_media_from_db(filter, add_uhd_name, &names);
    return answered(result, names);
}

inline Names folder_names(filter_h filter) {
    Names names;
    const int result = media_folder_foreach_folder_from_db(filter, add_folder_name, &names);
    return answered(result, names);
}

inline Names storage_names(filter_h filter) {
    Names names;
    const int result = media_storage_foreach_storage_from_db(filter, add_storage_name, &names);
    return answered(result, names);
}

/// Each group as "name: count".
inline Names groups(filter_h filter, int field) {
    Names names;
    const auto add = [](const char* name, int count, void* list) {
        static_cast<Names*>(list)->push_back(std::string(name != nullptr ? name : "(null)") + ": " +
                                             std::to_string(count));
        return true;
    };
    const int result = media_group_foreach_group_and_count_from_db(filter, field, add, &names);
    return answered(result, names);
}

struct DestroyMedia {
    void operator()(media_info_h media) const { media_info_destroy(media); }
};
using MediaHandle = std::unique_ptr<media_info_s, DestroyMedia>;

struct DestroyPvr {
    void operator()(media_pvr_h recording) const { media_pvr_destroy(recording); }
};
using PvrHandle = std::unique_ptr<media_pvr_s, DestroyPvr>;

inline MediaHandle media_by_id(int64_t id) {
    media_info_h media = nullptr;
    media_info_get_media_from_db(std::to_string(id).c_str(), &media);
    return MediaHandle(media);
}

inline PvrHandle pvr_by_id(int64_t id) {
    media_pvr_h recording = nullptr;
    media_pvr_get_pvr_from_db(std::to_string(id).c_str(), &recording);
    return PvrHandle(recording);
}

/// All rows of a list, kept.
inline std::vector<MediaHandle> kept_media(filter_h filter) {
    std::vector<MediaHandle> rows;
    const auto keep = [](media_info_h media, void* list) {
        media_info_h copy = nullptr;
        media_info_clone(&copy, media);
        static_cast<std::vector<MediaHandle>*>(list)->emplace_back(copy);
        return true;
    };
    media_info_foreach_media_from_db(filter, keep, &rows);
    return rows;
}

}  // namespace media_content

#endif
