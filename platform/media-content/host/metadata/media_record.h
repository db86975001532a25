#ifndef QRA_MEDIA_CONTENT_METADATA_MEDIA_RECORD_H
#define QRA_MEDIA_CONTENT_METADATA_MEDIA_RECORD_H

#include <cstdint>
#include <optional>
#include <string>

namespace media_content {

/// What a row of the media table is; the numbers are those of media_info_get_media_type.
enum class MediaKind : int {
    kImage = 0,
    kVideo = 1,
    kSound = 2,
    kMusic = 3,
    kOther = 4,
    kRecording = 5,
    kUhd = 6,
    kScsa = 7,
};

/// How 360-degree content was put together; the numbers are those of media_info_get_stitched_state.
enum class StitchType : int {
    kNone = 0,              ///< no 360-degree content
    kUnstitched = 0x10000,  ///< the lenses' pictures side by side
    kStitched = 0x20000,    ///< one projection of the whole sphere
};

/// What the header and the EXIF block of a picture tell. Unknown numbers are 0, unknown texts empty.
struct ImageMetadata {
    int width = 0;        ///< pixels, before rotation
    int height = 0;       ///< pixels, before rotation
    int orientation = 0;  ///< EXIF orientation, 1 to 8; 0 unknown
    int iso = 0;
    double f_number = 0;
    std::string exposure_time;  ///< seconds as a fraction or a number: "1/60"
    std::string date_taken;     ///< as EXIF writes it: "2021:05:06 10:20:30"
    std::string model;
    std::string burst_id;
};

struct VideoMetadata {
    int width = 0;
    int height = 0;
    int64_t duration_ms = 0;
    int64_t bit_rate = 0;  ///< bit/s of the whole file
};

struct AudioMetadata {
    int64_t duration_ms = 0;
    int channels = 0;
    int bit_rate = 0;         ///< bit/s
    int sample_rate = 0;      ///< Hz
    int bits_per_sample = 0;  ///< 0 where the coding has none
    std::string album, artist, genre, composer, year, recorded_date, copyright, track_number;
};

/// The info file of a recording. Times are seconds since 1970 in UTC, durations milliseconds.
struct RecordingMetadata {
    int timezone = 0, ptc = 0, major = 0, minor = 0, channel_type = 0, program_num = 0, duration = 0;
    int embargo_time = 0, expiry_time = 0, start_time = 0, program_start_time = 0, program_end_time = 0;
    int program_date = 0, parental_rating = 0, aspect_ratio = 0, resolution = 0, sports_type = 0;
    int guidance_length = 0, tv_mode = 0, play_count = 0, hd = 0;
    std::string channel_name, channel_num, program_title, program_crid, guidance, synopsis, genre, language;
    std::string modified_month, private_data;
    bool timer_record = false, series_record = false, subtitle = false, ttx = false, ad = false;
    bool hard_of_hearing_radio = false, data_service = false, content_lock = false, content_watch = false;
    bool has_audio_only = false, is_local_record = false;
};

struct UhdMetadata {
    std::string content_id, content_title, release_date;
    int sub_type = -1;
};

/**
 * What a file's content tells about it, as the readers find it. The file system's own facts (path, size,
 * times) and what the user did with it (play counts, positions) are no part of it. Only the block of its kind
 * is set.
 */
struct MediaRecord {
    MediaKind kind = MediaKind::kOther;
    std::string mime_type;
    std::string title;  ///< the tag's title; empty where there is none
    std::string author, provider, content_name, category, age_rating, keyword;
    std::string
        location_tag;  ///< "37.566500 126.978000": latitude and longitude in degrees; empty if unknown
    std::optional<double> latitude, longitude, altitude;  ///< degrees, metres above sea level
    int rating = 0;
    bool is_drm = false;
    bool is_360 = false;
    StitchType stitch_type = StitchType::kNone;
    ImageMetadata image;
    VideoMetadata video;
    AudioMetadata audio;
    RecordingMetadata recording;
    UhdMetadata uhd;
};

}  // namespace media_content

#endif
