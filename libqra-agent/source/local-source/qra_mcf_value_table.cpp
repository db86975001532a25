#include "libqra-agent/source/local-source/qra_mcf_value_table.h"

static_assert(std::variant_size_v<mcf_get_function> == 22 && std::variant_size_v<mcf_set_function> == 8);

const mcf_get_table& CQRAMCFValueTable::GetCommon() {
    static const auto& table = *new mcf_get_table{
        {"MEDIA_TYPE", media_info_get_media_type},
        {"STORAGE_TYPE", media_info_get_storage_type},
        {"RATING", media_info_get_rating},
        {"PLAYED_COUNT", media_info_get_played_count},
        {"PLAYED_POSITION", media_info_get_played_position},
        {"STITCH_TYPE", media_info_get_stitched_state},
        {"TITLE", media_info_get_title},
        {"FILE_PATH", media_info_get_file_path},
        {"DISPLAY_NAME", media_info_get_display_name},
        {"MIME_TYPE", media_info_get_mime_type},
        {"AUTHOR", media_info_get_author},
        {"PROVIDER", media_info_get_provider},
        {"CONTENT_NAME", media_info_get_content_name},
        {"CATEGORY", media_info_get_category},
        {"LOCATION_TAG", media_info_get_location_tag},
        {"AGE_RATING", media_info_get_age_rating},
        {"KEYWORD", media_info_get_keyword},
        {"ID_QRA", media_info_get_media_id},
        // The file is its own thumbnail.
        {"THUMBNAIL_PATH", media_info_get_file_path},
        {"FAVOURITE", media_info_get_favorite},
        {"IS_DRM", media_info_is_drm},
        {"IS_360", media_info_is_360_content},
        {"SIZE", media_info_get_size},
        {"LONGITUDE", media_info_get_longitude},
        {"LATITUDE", media_info_get_latitude},
        {"ALTITUDE", media_info_get_altitude},
        {"ADDED_TIME", media_info_get_added_time},
        {"MODIFIED_TIME", media_info_get_modified_time},
        {"PLAYED_TIME", media_info_get_played_time},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetImage() {
    static const auto& table = *new mcf_get_table{
        {"WIDTH", image_meta_get_width},
        {"HEIGHT", image_meta_get_height},
        {"ORIENTATION", image_meta_get_orientation},
        {"ISO", image_meta_get_iso},
        {"DATE_TAKEN", image_meta_get_date_taken},
        {"BURST_ID", image_meta_get_burst_id},
        {"EXPOSURE_TIME", image_meta_get_exposure_time},
        {"MODEL", image_meta_get_model},
        {"FNUMBER", image_meta_get_fnumber},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetVideo() {
    static const auto& table = *new mcf_get_table{
        {"WIDTH", video_meta_get_width},
        {"HEIGHT", video_meta_get_height},
        {"DURATION", video_meta_get_duration},
        {"BITRATE", video_meta_get_bit_rate},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetAudio() {
    static const auto& table = *new mcf_get_table{
        {"DURATION", audio_meta_get_duration},
        {"CHANNEL", audio_meta_get_channel},
        {"BITRATE", audio_meta_get_bit_rate},
        {"SAMPLERATE", audio_meta_get_sample_rate},
        {"BIT_RESOLUTION", audio_meta_get_bitpersample},
        {"ALBUM", audio_meta_get_album},
        {"ARTIST", audio_meta_get_artist},
        {"GENRE", audio_meta_get_genre},
        {"COMPOSER", audio_meta_get_composer},
        {"YEAR", audio_meta_get_year},
        {"RECORDED_DATE", audio_meta_get_recorded_date},
        {"COPYRIGHT", audio_meta_get_copyright},
        {"TRACK_NUM", audio_meta_get_track_num},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetPVR() {
    static const auto& table = *new mcf_get_table{
        {"TIMEZONE", media_pvr_get_timezone},
        {"PTC", media_pvr_get_ptc},
        {"MAJOR", media_pvr_get_major},
        {"MINOR", media_pvr_get_minor},
        {"CHANNEL_TYPE", media_pvr_get_channel_type},
        {"PROGRAM_NUM", media_pvr_get_program_num},
        {"DURATION", media_pvr_get_duration},
        {"EMBARGO_TIME", media_pvr_get_embargo_time},
        {"EXPIRY_TIME", media_pvr_get_expiry_time},
        {"START_TIME", media_pvr_get_start_time},
        {"PROGRAM_START_TIME", media_pvr_get_program_start_time},
        {"PROGRAM_END_TIME", media_pvr_get_program_end_time},
        {"PROGRAM_DATE", media_pvr_get_program_date},
        {"PARENTAL_RATING", media_pvr_get_parental_rating},
        {"ASPECTRATIO", media_pvr_get_aspectratio},
        {"RESOLUTION", media_pvr_get_resolution},
        {"SPORTS_TYPE", media_pvr_get_sports_type},
        {"GUIDANCE_LENGTH", media_pvr_get_guidance_length},
        {"TVMODE", media_pvr_get_tvmode},
        {"PLAY_COUNT", media_pvr_get_play_count},
        {"HD", media_pvr_get_hd},
        {"STORAGE_ID", media_pvr_get_storage_id},
        {"CHANNEL_NAME", media_pvr_get_channel_name},
        {"CHANNEL_NUM", media_pvr_get_channel_num},
        {"PROGRAM_TITLE", media_pvr_get_program_title},
        {"PROGRAM_CRID", media_pvr_get_program_crid},
        {"GUIDANCE", media_pvr_get_guidance},
        {"SYNOPSIS", media_pvr_get_synopsis},
        {"GENRE", media_pvr_get_genre},
        {"LANGUAGE", media_pvr_get_language},
        {"MODIFIED_MONTH", media_pvr_get_modified_month},
        {"PRIVATE_DATA", media_pvr_get_private_data},
        {"ID_QRA", media_pvr_get_media_id},
        {"FILE_PATH", media_pvr_get_path},
        {"TIMER_RECORD", media_pvr_get_timer_record},
        {"SERIES_RECORD", media_pvr_get_series_record},
        {"SUBTITLE", media_pvr_get_subtitle},
        {"TTX", media_pvr_get_ttx},
        {"AD", media_pvr_get_ad},
        {"HARD_OF_HEARING_RADIO", media_pvr_get_hard_of_hearing_radio},
        {"DATA_SERVICE", media_pvr_get_data_service},
        {"CONTENT_LOCK", media_pvr_get_content_lock},
        {"CONTENT_WATCH", media_pvr_get_content_watch},
        {"HAS_AUDIO_ONLY", media_pvr_get_has_audio_only},
        {"IS_LOCAL_RECORD", media_pvr_get_is_local_record},
        {"SIZE", media_pvr_get_size},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetUHD() {
    static const auto& table = *new mcf_get_table{
        {"ID_QRA", media_uhd_get_media_id},
        {"UHD_SERVER_ID", media_uhd_get_content_id},
        {"FILE_PATH", media_uhd_get_path},
        {"TITLE", media_uhd_get_content_title},
        {"DATE_TAKEN", media_uhd_get_release_date},
        {"DISPLAY_NAME", media_uhd_get_file_name},
        {"SIZE", media_uhd_get_size},
        {"MODIFIED_TIME", media_uhd_get_modified_time},
        {"PLAYED_POSITION", media_uhd_get_played_position},
        {"PLAYED_COUNT", media_uhd_get_played_count},
    };
    return table;
}

const mcf_get_table& CQRAMCFValueTable::GetFolder() {
    static const auto& table = *new mcf_get_table{
        {"ID_QRA", media_folder_get_folder_id},
        {"PARENT_ID", media_folder_get_parent_folder_id},
        {"FILE_PATH", media_folder_get_path},
        {"DISPLAY_NAME", media_folder_get_name},
        {"TITLE", media_folder_get_name},
        {"ADDED_TIME", media_folder_get_modified_time},
        {"MODIFIED_TIME", media_folder_get_modified_time},
    };
    return table;
}

const mcf_set_table& CQRAMCFValueTable::SetMedia() {
    static const auto& table = *new mcf_set_table{
        {"PLAYED_COUNT", media_info_set_played_count},
        {"PLAYED_POSITION", media_info_set_played_position},
        {"PLAYED_TIME", media_info_set_played_time},
    };
    return table;
}

const mcf_set_table& CQRAMCFValueTable::SetPVR() {
    static const auto& table = *new mcf_set_table{
        {"PLAY_COUNT", media_pvr_set_play_count},
        {"PROGRAM_TITLE", media_pvr_set_program_title},
        {"CONTENT_LOCK", media_pvr_set_content_lock},
        {"CONTENT_WATCH", media_pvr_set_content_watch},
    };
    return table;
}

const mcf_set_table& CQRAMCFValueTable::SetUHD() {
    static const auto& table = *new mcf_set_table{
        {"PLAYED_POSITION", media_uhd_set_played_position},
        {"SUB_TYPE", media_uhd_set_sub_type},
        {"PLAYED_COUNT", media_uhd_set_played_count},
        {"TITLE", media_uhd_set_content_title},
    };
    return table;
}
