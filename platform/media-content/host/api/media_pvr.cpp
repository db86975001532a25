#include "media_pvr.h"

#include "platform/media-content/host/api/row_access.h"
#include "platform/media-content/host/database/record_columns.h"
#include "platform/media-content/host/query/media_list.h"

using namespace media_content;

int media_pvr_foreach_media_from_db(filter_h filter, media_pvr_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        HandleCallback<media_pvr_h> target{callback, user_data};
        list_media(RowKind::kRecording, filter, target.call, &target);
    });
}

int media_pvr_get_pvr_from_db(const char* media_id, media_pvr_h* recording) {
    if (media_id == nullptr || recording == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__,
                   [&] { *recording = handle_of<media_pvr_h>(get_media(RowKind::kRecording, media_id)); });
}

int media_pvr_update_to_db(media_pvr_h recording) {
    return write_values(__func__, recording);
}

int media_pvr_clone(media_pvr_h* copy, media_pvr_h recording) {
    return share_row(copy, recording);
}

int media_pvr_destroy(media_pvr_h recording) {
    return release_row(recording);
}

int media_pvr_get_timezone(media_pvr_h recording, int* timezone) {
    return read_value(__func__, recording, RecordingValue::kTimezone, timezone);
}

int media_pvr_get_ptc(media_pvr_h recording, int* ptc) {
    return read_value(__func__, recording, RecordingValue::kPtc, ptc);
}

int media_pvr_get_major(media_pvr_h recording, int* major) {
    return read_value(__func__, recording, RecordingValue::kMajor, major);
}

int media_pvr_get_minor(media_pvr_h recording, int* minor) {
    return read_value(__func__, recording, RecordingValue::kMinor, minor);
}

int media_pvr_get_channel_type(media_pvr_h recording, int* channel_type) {
    return read_value(__func__, recording, RecordingValue::kChannelType, channel_type);
}

int media_pvr_get_program_num(media_pvr_h recording, int* program_num) {
    return read_value(__func__, recording, RecordingValue::kProgramNum, program_num);
}

int media_pvr_get_duration(media_pvr_h recording, int* duration) {
    return read_value(__func__, recording, RecordingValue::kDuration, duration);
}

int media_pvr_get_embargo_time(media_pvr_h recording, int* embargo_time) {
    return read_value(__func__, recording, RecordingValue::kEmbargoTime, embargo_time);
}

int media_pvr_get_expiry_time(media_pvr_h recording, int* expiry_time) {
    return read_value(__func__, recording, RecordingValue::kExpiryTime, expiry_time);
}

int media_pvr_get_start_time(media_pvr_h recording, int* start_time) {
    return read_value(__func__, recording, RecordingValue::kStartTime, start_time);
}

int media_pvr_get_program_start_time(media_pvr_h recording, int* program_start_time) {
    return read_value(__func__, recording, RecordingValue::kProgramStartTime, program_start_time);
}

int media_pvr_get_program_end_time(media_pvr_h recording, int* program_end_time) {
    return read_value(__func__, recording, RecordingValue::kProgramEndTime, program_end_time);
}

int media_pvr_get_program_date(media_pvr_h recording, int* program_date) {
    return read_value(__func__, recording, RecordingValue::kProgramDate, program_date);
}

int media_pvr_get_parental_rating(media_pvr_h recording, int* parental_rating) {
    return read_value(__func__, recording, RecordingValue::kParentalRating, parental_rating);
}

int media_pvr_get_aspectratio(media_pvr_h recording, int* aspectratio) {
    return read_value(__func__, recording, RecordingValue::kAspectRatio, aspectratio);
}

int media_pvr_get_resolution(media_pvr_h recording, int* resolution) {
    return read_value(__func__, recording, RecordingValue::kResolution, resolution);
}

int media_pvr_get_sports_type(media_pvr_h recording, int* sports_type) {
    return read_value(__func__, recording, RecordingValue::kSportsType, sports_type);
}

int media_pvr_get_guidance_length(media_pvr_h recording, int* guidance_length) {
    return read_value(__func__, recording, RecordingValue::kGuidanceLength, guidance_length);
}

int media_pvr_get_tvmode(media_pvr_h recording, int* tvmode) {
    return read_value(__func__, recording, RecordingValue::kTvMode, tvmode);
}

int media_pvr_get_play_count(media_pvr_h recording, int* play_count) {
    return read_value(__func__, recording, RecordingValue::kPlayCount, play_count);
}

int media_pvr_get_hd(media_pvr_h recording, int* hd) {
    return read_value(__func__, recording, RecordingValue::kHd, hd);
}

int media_pvr_get_storage_id(media_pvr_h recording, char** storage_id) {
    return read_value(__func__, recording, RecordingValue::kStorageId, storage_id);
}

int media_pvr_get_channel_name(media_pvr_h recording, char** channel_name) {
    return read_value(__func__, recording, RecordingValue::kChannelName, channel_name);
}

int media_pvr_get_channel_num(media_pvr_h recording, char** channel_num) {
    return read_value(__func__, recording, RecordingValue::kChannelNum, channel_num);
}

int media_pvr_get_program_title(media_pvr_h recording, char** program_title) {
    return read_value(__func__, recording, RecordingValue::kProgramTitle, program_title);
}

int media_pvr_get_program_crid(media_pvr_h recording, char** program_crid) {
    return read_value(__func__, recording, RecordingValue::kProgramCrid, program_crid);
}

int media_pvr_get_guidance(media_pvr_h recording, char** guidance) {
    return read_value(__func__, recording, RecordingValue::kGuidance, guidance);
}

int media_pvr_get_synopsis(media_pvr_h recording, char** synopsis) {
    return read_value(__func__, recording, RecordingValue::kSynopsis, synopsis);
}

int media_pvr_get_genre(media_pvr_h recording, char** genre) {
    return read_value(__func__, recording, RecordingValue::kGenre, genre);
}

int media_pvr_get_language(media_pvr_h recording, char** language) {
    return read_value(__func__, recording, RecordingValue::kLanguage, language);
}

int media_pvr_get_modified_month(media_pvr_h recording, char** modified_month) {
    return read_value(__func__, recording, RecordingValue::kModifiedMonth, modified_month);
}

int media_pvr_get_private_data(media_pvr_h recording, char** private_data) {
    return read_value(__func__, recording, RecordingValue::kPrivateData, private_data);
}

int media_pvr_get_media_id(media_pvr_h recording, char** media_id) {
    return read_id(__func__, recording, media_id);
}

int media_pvr_get_path(media_pvr_h recording, char** path) {
    return read_path(__func__, recording, path);
}

int media_pvr_get_timer_record(media_pvr_h recording, bool* timer_record) {
    return read_value(__func__, recording, RecordingValue::kTimerRecord, timer_record);
}

int media_pvr_get_series_record(media_pvr_h recording, bool* series_record) {
    return read_value(__func__, recording, RecordingValue::kSeriesRecord, series_record);
}

int media_pvr_get_subtitle(media_pvr_h recording, bool* subtitle) {
    return read_value(__func__, recording, RecordingValue::kSubtitle, subtitle);
}

int media_pvr_get_ttx(media_pvr_h recording, bool* ttx) {
    return read_value(__func__, recording, RecordingValue::kTtx, ttx);
}

int media_pvr_get_ad(media_pvr_h recording, bool* ad) {
    return read_value(__func__, recording, RecordingValue::kAd, ad);
}

int media_pvr_get_hard_of_hearing_radio(media_pvr_h recording, bool* hard_of_hearing_radio) {
    return read_value(__func__, recording, RecordingValue::kHardOfHearingRadio, hard_of_hearing_radio);
}

int media_pvr_get_data_service(media_pvr_h recording, bool* data_service) {
    return read_value(__func__, recording, RecordingValue::kDataService, data_service);
}

int media_pvr_get_content_lock(media_pvr_h recording, bool* content_lock) {
    return read_value(__func__, recording, RecordingValue::kContentLock, content_lock);
}

int media_pvr_get_content_watch(media_pvr_h recording, bool* content_watch) {
    return read_value(__func__, recording, RecordingValue::kContentWatch, content_watch);
}

int media_pvr_get_has_audio_only(media_pvr_h recording, bool* has_audio_only) {
    return read_value(__func__, recording, RecordingValue::kHasAudioOnly, has_audio_only);
}

int media_pvr_get_is_local_record(media_pvr_h recording, bool* is_local_record) {
    return read_value(__func__, recording, RecordingValue::kIsLocalRecord, is_local_record);
}

int media_pvr_get_size(media_pvr_h recording, unsigned long long* size) {
    return read_value(__func__, recording, RecordingValue::kSize, size);
}

int media_pvr_set_play_count(media_pvr_h recording, int count) {
    return assign_value(__func__, recording,
                        {"pvr", "play_count", int64_t{count}, nullptr, kUserSetPlayCount});
}

int media_pvr_set_program_title(media_pvr_h recording, const char* title) {
    if (title == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return assign_value(__func__, recording,
                        {"pvr", "program_title", std::string(title), "title_key", kUserSetTitle});
}

int media_pvr_set_content_lock(media_pvr_h recording, bool locked) {
    return assign_value(__func__, recording, {"pvr", "content_lock", int64_t{locked}, nullptr, kUserSetLock});
}

int media_pvr_set_content_watch(media_pvr_h recording, bool watched) {
    return assign_value(__func__, recording,
                        {"pvr", "content_watch", int64_t{watched}, nullptr, kUserSetWatched});
}
