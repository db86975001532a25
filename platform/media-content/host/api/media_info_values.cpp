#include "media_info.h"

#include "platform/media-content/host/api/row_access.h"

// The values of media rows, one function for each.

using namespace media_content;

int media_info_get_media_type(media_info_h media, int* media_type) {
    return read_row(__func__, media, media_type, [](const Row& row) { return int{row.kind}; });
}

int media_info_get_storage_type(media_info_h media, int* storage_type) {
    return read_row(__func__, media, storage_type,
                    [](const Row&) { return int{MEDIA_CONTENT_STORAGE_EXTERNAL}; });
}

int media_info_is_360_content(media_info_h media, bool* is_360) {
    return read_row(__func__, media, is_360, [](const Row& row) { return row.is_360; });
}

int media_info_get_rating(media_info_h media, int* rating) {
    return read_value(__func__, media, MediaValue::kRating, rating);
}

int media_info_get_played_count(media_info_h media, int* played_count) {
    return read_value(__func__, media, MediaValue::kPlayedCount, played_count);
}

int media_info_get_played_position(media_info_h media, int* played_position) {
    return read_value(__func__, media, MediaValue::kPlayedPosition, played_position);
}

int media_info_get_stitched_state(media_info_h media, int* state) {
    return read_value(__func__, media, MediaValue::kStitchType, state);
}

int media_info_get_title(media_info_h media, char** title) {
    return read_value(__func__, media, MediaValue::kTitle, title);
}

int media_info_get_file_path(media_info_h media, char** file_path) {
    return read_path(__func__, media, file_path);
}

int media_info_get_display_name(media_info_h media, char** display_name) {
    return read_name(__func__, media, display_name);
}

int media_info_get_mime_type(media_info_h media, char** mime_type) {
    return read_value(__func__, media, MediaValue::kMimeType, mime_type);
}

int media_info_get_author(media_info_h media, char** author) {
    return read_value(__func__, media, MediaValue::kAuthor, author);
}

int media_info_get_provider(media_info_h media, char** provider) {
    return read_value(__func__, media, MediaValue::kProvider, provider);
}

int media_info_get_content_name(media_info_h media, char** content_name) {
    return read_value(__func__, media, MediaValue::kContentName, content_name);
}

int media_info_get_category(media_info_h media, char** category) {
    return read_value(__func__, media, MediaValue::kCategory, category);
}

int media_info_get_location_tag(media_info_h media, char** tag) {
    return read_value(__func__, media, MediaValue::kLocationTag, tag);
}

int media_info_get_age_rating(media_info_h media, char** age_rating) {
    return read_value(__func__, media, MediaValue::kAgeRating, age_rating);
}

int media_info_get_keyword(media_info_h media, char** keyword) {
    return read_value(__func__, media, MediaValue::kKeyword, keyword);
}

int media_info_get_media_id(media_info_h media, char** media_id) {
    return read_id(__func__, media, media_id);
}

int media_info_get_favorite(media_info_h media, bool* favorite) {
    return read_value(__func__, media, MediaValue::kFavorite, favorite);
}

int media_info_is_drm(media_info_h media, bool* drm) {
    return read_value(__func__, media, MediaValue::kIsDrm, drm);
}

int media_info_get_size(media_info_h media, unsigned long long* size) {
    return read_value(__func__, media, MediaValue::kSize, size);
}

int media_info_get_longitude(media_info_h media, double* longitude) {
    return read_value(__func__, media, MediaValue::kLongitude, longitude);
}

int media_info_get_latitude(media_info_h media, double* latitude) {
    return read_value(__func__, media, MediaValue::kLatitude, latitude);
}

int media_info_get_altitude(media_info_h media, double* altitude) {
    return read_value(__func__, media, MediaValue::kAltitude, altitude);
}

int media_info_get_added_time(media_info_h media, time_t* added_time) {
    return read_value(__func__, media, MediaValue::kAddedTime, added_time);
}

int media_info_get_modified_time(media_info_h media, time_t* modified_time) {
    return read_value(__func__, media, MediaValue::kModifiedTime, modified_time);
}

int media_info_get_played_time(media_info_h media, time_t* played_time) {
    return read_value(__func__, media, MediaValue::kPlayedTime, played_time);
}

int image_meta_get_width(image_meta_h image, int* width) {
    return read_value(__func__, image, MediaValue::kWidth, width);
}

int image_meta_get_height(image_meta_h image, int* height) {
    return read_value(__func__, image, MediaValue::kHeight, height);
}

int image_meta_get_orientation(image_meta_h image, int* orientation) {
    return read_value(__func__, image, MediaValue::kOrientation, orientation);
}

int image_meta_get_iso(image_meta_h image, int* iso) {
    return read_value(__func__, image, MediaValue::kIso, iso);
}

int image_meta_get_date_taken(image_meta_h image, char** date_taken) {
    return read_value(__func__, image, MediaValue::kDateTaken, date_taken);
}

int image_meta_get_burst_id(image_meta_h image, char** burst_id) {
    return read_value(__func__, image, MediaValue::kBurstId, burst_id);
}

int image_meta_get_exposure_time(image_meta_h image, char** exposure_time) {
    return read_value(__func__, image, MediaValue::kExposureTime, exposure_time);
}

int image_meta_get_model(image_meta_h image, char** model) {
    return read_value(__func__, image, MediaValue::kModel, model);
}

int image_meta_get_fnumber(image_meta_h image, double* fnumber) {
    return read_value(__func__, image, MediaValue::kFNumber, fnumber);
}

int video_meta_get_width(video_meta_h video, int* width) {
    return read_value(__func__, video, MediaValue::kWidth, width);
}

int video_meta_get_height(video_meta_h video, int* height) {
    return read_value(__func__, video, MediaValue::kHeight, height);
}

int video_meta_get_duration(video_meta_h video, int* duration) {
    return read_value(__func__, video, MediaValue::kDuration, duration);
}

int video_meta_get_bit_rate(video_meta_h video, int* bit_rate) {
    return read_value(__func__, video, MediaValue::kBitRate, bit_rate);
}

int audio_meta_get_duration(audio_meta_h audio, int* duration) {
    return read_value(__func__, audio, MediaValue::kDuration, duration);
}

int audio_meta_get_channel(audio_meta_h audio, int* channel) {
    return read_value(__func__, audio, MediaValue::kChannels, channel);
}

int audio_meta_get_bit_rate(audio_meta_h audio, int* bit_rate) {
    return read_value(__func__, audio, MediaValue::kBitRate, bit_rate);
}

int audio_meta_get_sample_rate(audio_meta_h audio, int* sample_rate) {
    return read_value(__func__, audio, MediaValue::kSampleRate, sample_rate);
}

int audio_meta_get_bitpersample(audio_meta_h audio, int* bitpersample) {
    return read_value(__func__, audio, MediaValue::kBitsPerSample, bitpersample);
}

int audio_meta_get_album(audio_meta_h audio, char** album) {
    return read_value(__func__, audio, MediaValue::kAlbum, album);
}

int audio_meta_get_artist(audio_meta_h audio, char** artist) {
    return read_value(__func__, audio, MediaValue::kArtist, artist);
}

int audio_meta_get_genre(audio_meta_h audio, char** genre) {
    return read_value(__func__, audio, MediaValue::kGenre, genre);
}

int audio_meta_get_composer(audio_meta_h audio, char** composer) {
    return read_value(__func__, audio, MediaValue::kComposer, composer);
}

int audio_meta_get_year(audio_meta_h audio, char** year) {
    return read_value(__func__, audio, MediaValue::kYear, year);
}

int audio_meta_get_recorded_date(audio_meta_h audio, char** recorded_date) {
    return read_value(__func__, audio, MediaValue::kRecordedDate, recorded_date);
}

int audio_meta_get_copyright(audio_meta_h audio, char** copyright) {
    return read_value(__func__, audio, MediaValue::kCopyright, copyright);
}

int audio_meta_get_track_num(audio_meta_h audio, char** track_num) {
    return read_value(__func__, audio, MediaValue::kTrackNumber, track_num);
}
