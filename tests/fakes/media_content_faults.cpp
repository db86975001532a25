#include "tests/fakes/media_content_faults.h"

#include <dlfcn.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>

#include "media_content.h"
#include "metadata_extractor.h"

namespace {

struct HeldScan {
    media_scan_completed_cb callback;
    void* user_data;
};

struct Faults {
    std::mutex mutex;
    std::condition_variable scan_came;
    int calls = 0;
    int failing_call = 0;
    std::string failed;
    std::map<std::string, int> counts;
    std::set<std::string> failing;
    std::set<std::string> failing_afterwards;
    std::map<std::string, std::function<void()>> actions;
    int media_type = -1;
    bool no_row = false;
    bool holds_scans = false;
    HeldScan scan{};
};

Faults& faults() {
    static Faults* const the_faults = new Faults;
    return *the_faults;
}

enum class Fate { kWorks, kFails, kFailsAfterwards };

/// Counts a call and tells what becomes of it.
Fate fate_of(const char* function) {
    std::function<void()> action;
    {
        const std::lock_guard<std::mutex> lock(faults().mutex);
        const auto found = faults().actions.find(function);
        if (found != faults().actions.end()) {
            action = found->second;
        }
    }
    if (action) {
        action();
    }
    const std::lock_guard<std::mutex> lock(faults().mutex);
    ++faults().counts[function];
    if (++faults().calls == faults().failing_call) {
        faults().failed = function;
        return Fate::kFails;
    }
    if (faults().failing.count(function) > 0) {
        return Fate::kFails;
    }
    return faults().failing_afterwards.count(function) > 0 ? Fate::kFailsAfterwards : Fate::kWorks;
}

template <class Function>
Function* real(const char* function) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, function));
}

/// Calls the real function, or fails.
template <class Function, class... Arguments>
int forward(const char* function, Function*, Arguments... arguments) {
    const Fate fate = fate_of(function);
    if (fate == Fate::kFails) {
        return media_content_faults::kFailure;
    }
    const int result = real<Function>(function)(arguments...);
    return fate == Fate::kFailsAfterwards ? media_content_faults::kFailure : result;
}

/// The same for a function that releases something, which it does in any case.
template <class Function, class... Arguments>
int release(const char* function, Function*, Arguments... arguments) {
    const Fate fate = fate_of(function);
    const int result = real<Function>(function)(arguments...);
    return fate == Fate::kWorks ? result : media_content_faults::kFailure;
}

template <class Function, class Handle>
int give_row(const char* function, Function*, const char* media_id, Handle* row) {
    bool no_row = false;
    {
        const std::lock_guard<std::mutex> lock(faults().mutex);
        no_row = faults().no_row;
    }
    if (no_row) {
        *row = nullptr;
        return fate_of(function) == Fate::kWorks ? 0 : media_content_faults::kFailure;
    }
    return forward(function, static_cast<Function*>(nullptr), media_id, row);
}

}  // namespace

namespace media_content_faults {

void reset() {
    HeldScan held{};
    {
        const std::lock_guard<std::mutex> lock(faults().mutex);
        held = faults().scan;
        faults().calls = 0;
        faults().failing_call = 0;
        faults().failed.clear();
        faults().counts.clear();
        faults().failing.clear();
        faults().failing_afterwards.clear();
        faults().actions.clear();
        faults().media_type = -1;
        faults().no_row = false;
        faults().holds_scans = false;
        faults().scan = {};
    }
    if (held.callback != nullptr) {
        held.callback(MEDIA_CONTENT_ERROR_CANCELLED, MEDIA_SCAN_PHASE_FINISHED, held.user_data);
    }
}

void fail_call(int n) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().calls = 0;
    faults().failing_call = n;
    faults().failed.clear();
}

void fail(const std::string& function) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().failing.insert(function);
}

void fail_afterwards(const std::string& function) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().failing_afterwards.insert(function);
}

int calls() {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    return faults().calls;
}

int count(const std::string& function) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    return faults().counts[function];
}

std::string failed() {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    return faults().failed;
}

void before(const std::string& function, std::function<void()> action) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().actions[function] = std::move(action);
}

void set_media_type(int type) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().media_type = type;
}

void give_no_row() {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().no_row = true;
}

void hold_scans() {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().holds_scans = true;
}

bool wait_for_scan() {
    std::unique_lock<std::mutex> lock(faults().mutex);
    return faults().scan_came.wait_for(lock, std::chrono::seconds(60),
                                       [] { return faults().scan.callback != nullptr; });
}

void answer_scan(int error, int phase) {
    HeldScan held{};
    {
        const std::lock_guard<std::mutex> lock(faults().mutex);
        held = faults().scan;
        if (error != 0 || phase == MEDIA_SCAN_PHASE_FINISHED) {
            faults().scan = {};
        }
    }
    held.callback(error, phase, held.user_data);
}

}  // namespace media_content_faults

int media_content_scan_folder_v2(const char* path, bool recursive, media_scan_completed_cb callback,
                                 void* user_data) {
    {
        const std::lock_guard<std::mutex> lock(faults().mutex);
        if (faults().holds_scans) {
            ++faults().counts[__func__];
            faults().scan = {callback, user_data};
            faults().scan_came.notify_all();
            return 0;
        }
    }
    return forward(__func__, &media_content_scan_folder_v2, path, recursive, callback, user_data);
}

int media_content_cancel_scan_folder(const char* path) {
    return forward(__func__, &media_content_cancel_scan_folder, path);
}

int media_info_get_media_type(media_info_h media, int* media_type) {
    const int result = forward(__func__, &media_info_get_media_type, media, media_type);
    const std::lock_guard<std::mutex> lock(faults().mutex);
    if (result == 0 && faults().media_type >= 0) {
        *media_type = faults().media_type;
    }
    return result;
}

int media_pvr_get_pvr_from_db(const char* media_id, media_pvr_h* recording) {
    return give_row(__func__, &media_pvr_get_pvr_from_db, media_id, recording);
}

int media_uhd_get_uhd_from_db(const char* media_id, media_uhd_h* uhd) {
    return give_row(__func__, &media_uhd_get_uhd_from_db, media_id, uhd);
}

// All others only count, fail or go on. The macros are named after the number of arguments.
#define QRA_FORWARD_0(name)           \
    int name() {                      \
        return forward(#name, &name); \
    }
#define QRA_RELEASE_0(name)           \
    int name() {                      \
        return release(#name, &name); \
    }
#define QRA_FORWARD_1(name, A)           \
    int name(A a) {                      \
        return forward(#name, &name, a); \
    }
#define QRA_RELEASE_1(name, A)           \
    int name(A a) {                      \
        return release(#name, &name, a); \
    }
#define QRA_FORWARD_2(name, A, B)           \
    int name(A a, B b) {                    \
        return forward(#name, &name, a, b); \
    }
#define QRA_FORWARD_3(name, A, B, C)           \
    int name(A a, B b, C c) {                  \
        return forward(#name, &name, a, b, c); \
    }
#define QRA_FORWARD_4(name, A, B, C, D)           \
    int name(A a, B b, C c, D d) {                \
        return forward(#name, &name, a, b, c, d); \
    }

QRA_FORWARD_3(media_uhd_foreach_media_from_db, filter_h, media_uhd_cb, void*)
QRA_FORWARD_1(media_uhd_update_to_db, media_uhd_h)
QRA_FORWARD_2(media_uhd_clone, media_uhd_h*, media_uhd_h)
QRA_RELEASE_1(media_uhd_destroy, media_uhd_h)
QRA_FORWARD_2(media_uhd_get_media_id, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_content_id, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_path, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_content_title, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_release_date, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_file_name, media_uhd_h, char**)
QRA_FORWARD_2(media_uhd_get_size, media_uhd_h, unsigned long long*)
QRA_FORWARD_2(media_uhd_get_modified_time, media_uhd_h, time_t*)
QRA_FORWARD_2(media_uhd_get_played_position, media_uhd_h, int*)
QRA_FORWARD_2(media_uhd_get_played_count, media_uhd_h, int*)
QRA_FORWARD_2(media_uhd_set_played_position, media_uhd_h, int)
QRA_FORWARD_2(media_uhd_set_sub_type, media_uhd_h, int)
QRA_FORWARD_2(media_uhd_set_played_count, media_uhd_h, int)
QRA_FORWARD_2(media_uhd_set_content_title, media_uhd_h, const char*)
QRA_FORWARD_4(media_group_foreach_group_and_count_from_db, filter_h, int, media_group_cb, void*)
QRA_FORWARD_3(media_folder_foreach_folder_from_db, filter_h, media_folder_cb, void*)
QRA_FORWARD_4(media_folder_foreach_media_from_db, const char*, filter_h, media_info_cb, void*)
QRA_FORWARD_2(media_folder_get_folder_count_from_db, filter_h, int*)
QRA_FORWARD_3(media_folder_get_media_count_from_db, const char*, filter_h, int*)
QRA_FORWARD_3(media_folder_get_scan_status, const char*, const char*, int*)
QRA_FORWARD_2(media_folder_clone, media_folder_h*, media_folder_h)
QRA_RELEASE_1(media_folder_destroy, media_folder_h)
QRA_FORWARD_2(media_folder_get_folder_id, media_folder_h, char**)
QRA_FORWARD_2(media_folder_get_parent_folder_id, media_folder_h, char**)
QRA_FORWARD_2(media_folder_get_path, media_folder_h, char**)
QRA_FORWARD_2(media_folder_get_name, media_folder_h, char**)
QRA_FORWARD_2(media_folder_get_modified_time, media_folder_h, time_t*)
QRA_FORWARD_3(media_pvr_foreach_media_from_db, filter_h, media_pvr_cb, void*)
QRA_FORWARD_1(media_pvr_update_to_db, media_pvr_h)
QRA_FORWARD_2(media_pvr_clone, media_pvr_h*, media_pvr_h)
QRA_RELEASE_1(media_pvr_destroy, media_pvr_h)
QRA_FORWARD_2(media_pvr_get_timezone, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_ptc, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_major, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_minor, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_channel_type, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_program_num, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_duration, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_embargo_time, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_expiry_time, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_start_time, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_program_start_time, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_program_end_time, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_program_date, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_parental_rating, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_aspectratio, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_resolution, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_sports_type, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_guidance_length, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_tvmode, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_play_count, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_hd, media_pvr_h, int*)
QRA_FORWARD_2(media_pvr_get_storage_id, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_channel_name, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_channel_num, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_program_title, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_program_crid, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_guidance, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_synopsis, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_genre, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_language, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_modified_month, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_private_data, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_media_id, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_path, media_pvr_h, char**)
QRA_FORWARD_2(media_pvr_get_timer_record, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_series_record, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_subtitle, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_ttx, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_ad, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_hard_of_hearing_radio, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_data_service, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_content_lock, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_content_watch, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_has_audio_only, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_is_local_record, media_pvr_h, bool*)
QRA_FORWARD_2(media_pvr_get_size, media_pvr_h, unsigned long long*)
QRA_FORWARD_2(media_pvr_set_play_count, media_pvr_h, int)
QRA_FORWARD_2(media_pvr_set_program_title, media_pvr_h, const char*)
QRA_FORWARD_2(media_pvr_set_content_lock, media_pvr_h, bool)
QRA_FORWARD_2(media_pvr_set_content_watch, media_pvr_h, bool)
QRA_FORWARD_1(media_filter_create, filter_h*)
QRA_RELEASE_1(media_filter_destroy, filter_h)
QRA_FORWARD_2(media_filter_set_storage, filter_h, const char*)
QRA_FORWARD_3(media_filter_set_condition, filter_h, const char*, int)
QRA_FORWARD_4(media_filter_set_order, filter_h, media_content_order_e, const char*, int)
QRA_FORWARD_3(media_filter_set_offset, filter_h, int, int)
QRA_FORWARD_3(media_info_foreach_media_from_db, filter_h, media_info_cb, void*)
QRA_FORWARD_2(media_info_get_media_from_db, const char*, media_info_h*)
QRA_FORWARD_2(media_info_insert_to_db, const char*, media_info_h*)
QRA_FORWARD_1(media_info_delete_from_db, const char*)
QRA_FORWARD_1(media_info_update_to_db, media_info_h)
QRA_FORWARD_2(media_info_clone, media_info_h*, media_info_h)
QRA_RELEASE_1(media_info_destroy, media_info_h)
QRA_FORWARD_2(media_info_get_storage_type, media_info_h, int*)
QRA_FORWARD_2(media_info_get_rating, media_info_h, int*)
QRA_FORWARD_2(media_info_get_played_count, media_info_h, int*)
QRA_FORWARD_2(media_info_get_played_position, media_info_h, int*)
QRA_FORWARD_2(media_info_get_stitched_state, media_info_h, int*)
QRA_FORWARD_2(media_info_get_title, media_info_h, char**)
QRA_FORWARD_2(media_info_get_file_path, media_info_h, char**)
QRA_FORWARD_2(media_info_get_display_name, media_info_h, char**)
QRA_FORWARD_2(media_info_get_mime_type, media_info_h, char**)
QRA_FORWARD_2(media_info_get_author, media_info_h, char**)
QRA_FORWARD_2(media_info_get_provider, media_info_h, char**)
QRA_FORWARD_2(media_info_get_content_name, media_info_h, char**)
QRA_FORWARD_2(media_info_get_category, media_info_h, char**)
QRA_FORWARD_2(media_info_get_location_tag, media_info_h, char**)
QRA_FORWARD_2(media_info_get_age_rating, media_info_h, char**)
QRA_FORWARD_2(media_info_get_keyword, media_info_h, char**)
QRA_FORWARD_2(media_info_get_media_id, media_info_h, char**)
QRA_FORWARD_2(media_info_get_favorite, media_info_h, bool*)
QRA_FORWARD_2(media_info_is_drm, media_info_h, bool*)
QRA_FORWARD_2(media_info_is_360_content, media_info_h, bool*)
QRA_FORWARD_2(media_info_get_size, media_info_h, unsigned long long*)
QRA_FORWARD_2(media_info_get_longitude, media_info_h, double*)
QRA_FORWARD_2(media_info_get_latitude, media_info_h, double*)
QRA_FORWARD_2(media_info_get_altitude, media_info_h, double*)
QRA_FORWARD_2(media_info_get_added_time, media_info_h, time_t*)
QRA_FORWARD_2(media_info_get_modified_time, media_info_h, time_t*)
QRA_FORWARD_2(media_info_get_played_time, media_info_h, time_t*)
QRA_FORWARD_2(media_info_get_image, media_info_h, image_meta_h*)
QRA_FORWARD_2(media_info_get_video, media_info_h, video_meta_h*)
QRA_FORWARD_2(media_info_get_audio, media_info_h, audio_meta_h*)
QRA_RELEASE_1(image_meta_destroy, image_meta_h)
QRA_RELEASE_1(video_meta_destroy, video_meta_h)
QRA_RELEASE_1(audio_meta_destroy, audio_meta_h)
QRA_FORWARD_2(image_meta_get_width, image_meta_h, int*)
QRA_FORWARD_2(image_meta_get_height, image_meta_h, int*)
QRA_FORWARD_2(image_meta_get_orientation, image_meta_h, int*)
QRA_FORWARD_2(image_meta_get_iso, image_meta_h, int*)
QRA_FORWARD_2(image_meta_get_date_taken, image_meta_h, char**)
QRA_FORWARD_2(image_meta_get_burst_id, image_meta_h, char**)
QRA_FORWARD_2(image_meta_get_exposure_time, image_meta_h, char**)
QRA_FORWARD_2(image_meta_get_model, image_meta_h, char**)
QRA_FORWARD_2(image_meta_get_fnumber, image_meta_h, double*)
QRA_FORWARD_2(video_meta_get_width, video_meta_h, int*)
QRA_FORWARD_2(video_meta_get_height, video_meta_h, int*)
QRA_FORWARD_2(video_meta_get_duration, video_meta_h, int*)
QRA_FORWARD_2(video_meta_get_bit_rate, video_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_duration, audio_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_channel, audio_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_bit_rate, audio_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_sample_rate, audio_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_bitpersample, audio_meta_h, int*)
QRA_FORWARD_2(audio_meta_get_album, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_artist, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_genre, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_composer, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_year, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_recorded_date, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_copyright, audio_meta_h, char**)
QRA_FORWARD_2(audio_meta_get_track_num, audio_meta_h, char**)
QRA_FORWARD_2(media_info_set_played_count, media_info_h, int)
QRA_FORWARD_2(media_info_set_played_position, media_info_h, int)
QRA_FORWARD_2(media_info_set_played_time, media_info_h, time_t)
QRA_FORWARD_0(media_content_connect)
QRA_RELEASE_0(media_content_disconnect)
QRA_FORWARD_3(media_storage_foreach_storage_from_db, filter_h, media_storage_cb, void*)
QRA_FORWARD_2(media_storage_get_id, media_storage_h, char**)
QRA_FORWARD_2(media_storage_get_scan_status, const char*, int*)
QRA_FORWARD_1(metadata_extractor_create, metadata_extractor_h*)
QRA_FORWARD_2(metadata_extractor_set_path, metadata_extractor_h, const char*)
QRA_FORWARD_3(metadata_extractor_get_metadata, metadata_extractor_h, metadata_extractor_attr_e, char**)
QRA_RELEASE_1(metadata_extractor_destroy, metadata_extractor_h)
