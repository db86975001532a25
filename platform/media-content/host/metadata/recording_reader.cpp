#include "platform/media-content/host/metadata/recording_reader.h"

#include "platform/recording/host/recording_info_file.h"

namespace media_content {
namespace {

template <typename T>
struct Field {
    const char* key;
    T RecordingMetadata::*member;
};

constexpr Field<int> kNumbers[] = {
    {"timezone", &RecordingMetadata::timezone},
    {"ptc", &RecordingMetadata::ptc},
    {"major", &RecordingMetadata::major},
    {"minor", &RecordingMetadata::minor},
    {"channel_type", &RecordingMetadata::channel_type},
    {"program_num", &RecordingMetadata::program_num},
    {"duration", &RecordingMetadata::duration},
    {"embargo_time", &RecordingMetadata::embargo_time},
    {"expiry_time", &RecordingMetadata::expiry_time},
    {"start_time", &RecordingMetadata::start_time},
    {"program_start_time", &RecordingMetadata::program_start_time},
    {"program_end_time", &RecordingMetadata::program_end_time},
    {"program_date", &RecordingMetadata::program_date},
    {"parental_rating", &RecordingMetadata::parental_rating},
    {"aspectratio", &RecordingMetadata::aspect_ratio},
    {"resolution", &RecordingMetadata::resolution},
    {"sports_type", &RecordingMetadata::sports_type},
    {"guidance_length", &RecordingMetadata::guidance_length},
    {"tvmode", &RecordingMetadata::tv_mode},
    {"play_count", &RecordingMetadata::play_count},
    {"hd", &RecordingMetadata::hd},
};

constexpr Field<std::string> kTexts[] = {
    {"channel_name", &RecordingMetadata::channel_name},
    {"channel_num", &RecordingMetadata::channel_num},
    {"program_title", &RecordingMetadata::program_title},
    {"program_crid", &RecordingMetadata::program_crid},
    {"guidance", &RecordingMetadata::guidance},
    {"synopsis", &RecordingMetadata::synopsis},
    {"genre", &RecordingMetadata::genre},
    {"language", &RecordingMetadata::language},
    {"modified_month", &RecordingMetadata::modified_month},
    {"private_data", &RecordingMetadata::private_data},
};

constexpr Field<bool> kFlags[] = {
    {"timer_record", &RecordingMetadata::timer_record},
    {"series_record", &RecordingMetadata::series_record},
    {"subtitle", &RecordingMetadata::subtitle},
    {"ttx", &RecordingMetadata::ttx},
    {"ad", &RecordingMetadata::ad},
    {"hard_of_hearing_radio", &RecordingMetadata::hard_of_hearing_radio},
    {"data_service", &RecordingMetadata::data_service},
    {"content_lock", &RecordingMetadata::content_lock},
    {"content_watch", &RecordingMetadata::content_watch},
    {"has_audio_only", &RecordingMetadata::has_audio_only},
    {"is_local_record", &RecordingMetadata::is_local_record},
};

void take_fields(const recording::InfoFile& info, RecordingMetadata& recording) {
    for (const auto& field : kNumbers) {
        recording.*field.member = info.number(field.key);
    }
    for (const auto& field : kTexts) {
        recording.*field.member = info.text(field.key);
    }
    for (const auto& field : kFlags) {
        recording.*field.member = info.flag(field.key);
    }
}

}  // namespace

const char* read_recording(int directory, const std::string& name, RecordingMetadata& recording) {
    recording::InfoFile info;
    const bool readable = info.load_beside(directory, name) == recording::InfoFile::LoadResult::kLoaded;
    take_fields(info, recording);
    if (recording.program_title.empty()) {
        recording.program_title = name.substr(0, name.rfind('.'));
    }
    return readable ? nullptr : "no info file that can be read beside it";
}

}  // namespace media_content
