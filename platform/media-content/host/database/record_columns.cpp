#include "platform/media-content/host/database/record_columns.h"

#include <iterator>
#include <optional>
#include <string_view>

namespace media_content {

namespace {

constexpr int64_t kNanoseconds = 1000000000;

/// What is not known takes no room.
void bind_text(Query& query, const std::string& text) {
    text.empty() ? query.bind_null() : query.bind(text);
}

void bind_optional(Query& query, const std::optional<double>& value) {
    value ? query.bind(*value) : query.bind_null();
}

bool is_video(const RecordSource& source) {
    return source.record.kind == MediaKind::kVideo;
}

/// The time that lists and groups go by. A copy of a recording still belongs to the day it was made.
int64_t sort_time(const RecordSource& source) {
    const int start = source.record.recording.start_time;
    const bool recorded = source.record.kind == MediaKind::kRecording && start > 0;
    const int64_t ns = source.facts.modified_ns;
    return recorded ? start : ns / kNanoseconds - (ns % kNanoseconds < 0 ? 1 : 0);
}

std::string_view title(const RecordSource& source) {
    if (!source.record.title.empty()) {
        return source.record.title;
    }
    const std::string_view name = source.facts.name;
    return name.substr(0, name.rfind('.'));
}

constexpr RecordColumn kMediaColumns[] = {
    {"kind", [](Query& q, const RecordSource& s) { q.bind(static_cast<int>(s.record.kind)); }},
    {"size", [](Query& q, const RecordSource& s) { q.bind(s.facts.size); }},
    {"modified_ns", [](Query& q, const RecordSource& s) { q.bind(s.facts.modified_ns); }},
    {"companion_ns", [](Query& q, const RecordSource& s) { q.bind(s.facts.companion_ns); }},
    {"sort_time", [](Query& q, const RecordSource& s) { q.bind(sort_time(s)); }},
    {"is_360", [](Query& q, const RecordSource& s) { q.bind(s.record.is_360); }},
    {"stitch_type", [](Query& q, const RecordSource& s) { q.bind(static_cast<int>(s.record.stitch_type)); }},
    {"is_drm", [](Query& q, const RecordSource& s) { q.bind(s.record.is_drm); }},
    {"rating", [](Query& q, const RecordSource& s) { q.bind(s.record.rating); }},
    {"title", [](Query& q, const RecordSource& s) { q.bind(title(s)); }},
    {"mime_type", [](Query& q, const RecordSource& s) { bind_text(q, s.record.mime_type); }},
    {"author", [](Query& q, const RecordSource& s) { bind_text(q, s.record.author); }},
    {"provider", [](Query& q, const RecordSource& s) { bind_text(q, s.record.provider); }},
    {"content_name", [](Query& q, const RecordSource& s) { bind_text(q, s.record.content_name); }},
    {"category", [](Query& q, const RecordSource& s) { bind_text(q, s.record.category); }},
    {"location_tag", [](Query& q, const RecordSource& s) { bind_text(q, s.record.location_tag); }},
    {"age_rating", [](Query& q, const RecordSource& s) { bind_text(q, s.record.age_rating); }},
    {"keyword", [](Query& q, const RecordSource& s) { bind_text(q, s.record.keyword); }},
    {"longitude", [](Query& q, const RecordSource& s) { bind_optional(q, s.record.longitude); }},
    {"latitude", [](Query& q, const RecordSource& s) { bind_optional(q, s.record.latitude); }},
    {"altitude", [](Query& q, const RecordSource& s) { bind_optional(q, s.record.altitude); }},
    {"width",
     [](Query& q, const RecordSource& s) {
         q.bind(is_video(s) ? s.record.video.width : s.record.image.width);
     }},
    {"height",
     [](Query& q, const RecordSource& s) {
         q.bind(is_video(s) ? s.record.video.height : s.record.image.height);
     }},
    {"duration",
     [](Query& q, const RecordSource& s) {
         q.bind(is_video(s) ? s.record.video.duration_ms : s.record.audio.duration_ms);
     }},
    {"bit_rate",
     [](Query& q, const RecordSource& s) {
         q.bind(is_video(s) ? s.record.video.bit_rate : s.record.audio.bit_rate);
     }},
    {"orientation", [](Query& q, const RecordSource& s) { q.bind(s.record.image.orientation); }},
    {"iso", [](Query& q, const RecordSource& s) { q.bind(s.record.image.iso); }},
    {"f_number", [](Query& q, const RecordSource& s) { q.bind(s.record.image.f_number); }},
    {"date_taken", [](Query& q, const RecordSource& s) { bind_text(q, s.record.image.date_taken); }},
    {"burst_id", [](Query& q, const RecordSource& s) { bind_text(q, s.record.image.burst_id); }},
    {"exposure_time", [](Query& q, const RecordSource& s) { bind_text(q, s.record.image.exposure_time); }},
    {"model", [](Query& q, const RecordSource& s) { bind_text(q, s.record.image.model); }},
    {"channels", [](Query& q, const RecordSource& s) { q.bind(s.record.audio.channels); }},
    {"sample_rate", [](Query& q, const RecordSource& s) { q.bind(s.record.audio.sample_rate); }},
    {"bits_per_sample", [](Query& q, const RecordSource& s) { q.bind(s.record.audio.bits_per_sample); }},
    {"album", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.album); }},
    {"artist", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.artist); }},
    {"genre", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.genre); }},
    {"composer", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.composer); }},
    {"year", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.year); }},
    {"recorded_date", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.recorded_date); }},
    {"copyright", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.copyright); }},
    {"track_number", [](Query& q, const RecordSource& s) { bind_text(q, s.record.audio.track_number); }},
};

constexpr RecordColumn kPvrColumns[] = {
    {"program_title", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.program_title); },
     kUserSetTitle},
    {"title_key", [](Query& q, const RecordSource& s) { q.bind_blob(s.title_key); }, kUserSetTitle},
    {"channel_name", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.channel_name); }},
    {"channel_key", [](Query& q, const RecordSource& s) { q.bind_blob(s.channel_key); }},
    {"channel_num", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.channel_num); }},
    {"program_crid", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.program_crid); }},
    {"guidance", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.guidance); }},
    {"synopsis", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.synopsis); }},
    {"genre", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.genre); }},
    {"language", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.language); }},
    {"modified_month",
     [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.modified_month); }},
    {"private_data", [](Query& q, const RecordSource& s) { bind_text(q, s.record.recording.private_data); }},
    {"timezone", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.timezone); }},
    {"ptc", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.ptc); }},
    {"major", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.major); }},
    {"minor", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.minor); }},
    {"channel_type", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.channel_type); }},
    {"program_num", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.program_num); }},
    {"duration", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.duration); }},
    {"embargo_time", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.embargo_time); }},
    {"expiry_time", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.expiry_time); }},
    {"start_time", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.start_time); }},
    {"program_start_time",
     [](Query& q, const RecordSource& s) { q.bind(s.record.recording.program_start_time); }},
    {"program_end_time",
     [](Query& q, const RecordSource& s) { q.bind(s.record.recording.program_end_time); }},
    {"program_date", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.program_date); }},
    {"parental_rating", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.parental_rating); }},
    {"aspect_ratio", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.aspect_ratio); }},
    {"resolution", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.resolution); }},
    {"sports_type", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.sports_type); }},
    {"guidance_length", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.guidance_length); }},
    {"tv_mode", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.tv_mode); }},
    {"play_count", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.play_count); },
     kUserSetPlayCount},
    {"hd", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.hd); }},
    {"timer_record", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.timer_record); }},
    {"series_record", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.series_record); }},
    {"subtitle", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.subtitle); }},
    {"ttx", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.ttx); }},
    {"ad", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.ad); }},
    {"hard_of_hearing_radio",
     [](Query& q, const RecordSource& s) { q.bind(s.record.recording.hard_of_hearing_radio); }},
    {"data_service", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.data_service); }},
    {"content_lock", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.content_lock); },
     kUserSetLock},
    {"content_watch", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.content_watch); },
     kUserSetWatched},
    {"has_audio_only", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.has_audio_only); }},
    {"is_local_record", [](Query& q, const RecordSource& s) { q.bind(s.record.recording.is_local_record); }},
};

constexpr RecordColumn kUhdColumns[] = {
    {"content_id", [](Query& q, const RecordSource& s) { q.bind(s.record.uhd.content_id); }},
    {"content_title", [](Query& q, const RecordSource& s) { q.bind(s.record.uhd.content_title); },
     kUserSetTitle},
    {"release_date", [](Query& q, const RecordSource& s) { q.bind(s.record.uhd.release_date); }},
    {"sub_type", [](Query& q, const RecordSource& s) { q.bind(s.record.uhd.sub_type); }, kUserSetSubType},
};

}  // namespace

const RecordTable& media_record_table() {
    static constexpr RecordTable kTable{"media", kMediaColumns, std::size(kMediaColumns)};
    return kTable;
}

const RecordTable& pvr_record_table() {
    static constexpr RecordTable kTable{"pvr", kPvrColumns, std::size(kPvrColumns)};
    return kTable;
}

const RecordTable& uhd_record_table() {
    static constexpr RecordTable kTable{"uhd", kUhdColumns, std::size(kUhdColumns)};
    return kTable;
}

std::string update_statement(const RecordTable& table) {
    std::string sql = std::string("UPDATE ") + table.name + " SET ";
    for (size_t i = 0; i < table.count; ++i) {
        sql += std::string(i > 0 ? ", " : "") + table.columns[i].name + " = ?";
    }
    return sql + " WHERE id = ?";
}

std::string upsert_statement(const RecordTable& table) {
    std::string names = "id";
    std::string marks = "?";
    std::string updates;
    for (size_t i = 0; i < table.count; ++i) {
        const std::string name = table.columns[i].name;
        const int bit = table.columns[i].user_set;
        names += ", " + name;
        marks += ", ?";
        updates += (i > 0 ? ", " : "") + name + " = ";
        updates += bit == 0 ? "excluded." + name
                            : "CASE WHEN user_set & " + std::to_string(bit) + " THEN " + name +
                                  " ELSE excluded." + name + " END";
    }
    return std::string("INSERT INTO ") + table.name + "(" + names + ") VALUES(" + marks +
           ") ON CONFLICT(id) DO UPDATE SET " + updates;
}

void bind_columns(Query& query, const RecordTable& table, const RecordSource& source) {
    for (size_t i = 0; i < table.count; ++i) {
        table.columns[i].bind(query, source);
    }
}

}  // namespace media_content
