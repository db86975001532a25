#include "platform/media-content/host/rows/value_table.h"

#include <cstring>
#include <iterator>
#include <new>

namespace media_content {

namespace {

// In the order of MediaValue.
constexpr ValueColumn kMediaValues[] = {
    {"m.rating", ValueType::kNumber},
    {"m.played_count", ValueType::kNumber},
    {"m.played_position", ValueType::kNumber},
    {"m.played_time", ValueType::kNumber},
    {"m.stitch_type", ValueType::kNumber},
    {"m.favorite", ValueType::kNumber},
    {"m.is_drm", ValueType::kNumber},
    {"m.size", ValueType::kNumber},
    {"m.added_time", ValueType::kNumber},
    {"(m.modified_ns - (m.modified_ns < 0) * 999999999) / 1000000000", ValueType::kNumber},
    {"m.width", ValueType::kNumber},
    {"m.height", ValueType::kNumber},
    {"m.orientation", ValueType::kNumber},
    {"m.iso", ValueType::kNumber},
    {"m.duration", ValueType::kNumber},
    {"m.bit_rate", ValueType::kNumber},
    {"m.channels", ValueType::kNumber},
    {"m.sample_rate", ValueType::kNumber},
    {"m.bits_per_sample", ValueType::kNumber},
    {"m.longitude", ValueType::kReal},
    {"m.latitude", ValueType::kReal},
    {"m.altitude", ValueType::kReal},
    {"m.f_number", ValueType::kReal},
    {"m.title", ValueType::kText},
    {"m.mime_type", ValueType::kText},
    {"m.author", ValueType::kText},
    {"m.provider", ValueType::kText},
    {"m.content_name", ValueType::kText},
    {"m.category", ValueType::kText},
    {"m.location_tag", ValueType::kText},
    {"m.age_rating", ValueType::kText},
    {"m.keyword", ValueType::kText},
    {"m.date_taken", ValueType::kText},
    {"m.burst_id", ValueType::kText},
    {"m.exposure_time", ValueType::kText},
    {"m.model", ValueType::kText},
    {"m.album", ValueType::kText},
    {"m.artist", ValueType::kText},
    {"m.genre", ValueType::kText},
    {"m.composer", ValueType::kText},
    {"m.year", ValueType::kText},
    {"m.recorded_date", ValueType::kText},
    {"m.copyright", ValueType::kText},
    {"m.track_number", ValueType::kText},
};
static_assert(std::size(kMediaValues) == static_cast<size_t>(MediaValue::kCount));

// In the order of RecordingValue.
constexpr ValueColumn kRecordingValues[] = {
    {"p.timezone", ValueType::kNumber},
    {"p.ptc", ValueType::kNumber},
    {"p.major", ValueType::kNumber},
    {"p.minor", ValueType::kNumber},
    {"p.channel_type", ValueType::kNumber},
    {"p.program_num", ValueType::kNumber},
    {"p.duration", ValueType::kNumber},
    {"p.embargo_time", ValueType::kNumber},
    {"p.expiry_time", ValueType::kNumber},
    {"p.start_time", ValueType::kNumber},
    {"p.program_start_time", ValueType::kNumber},
    {"p.program_end_time", ValueType::kNumber},
    {"p.program_date", ValueType::kNumber},
    {"p.parental_rating", ValueType::kNumber},
    {"p.aspect_ratio", ValueType::kNumber},
    {"p.resolution", ValueType::kNumber},
    {"p.sports_type", ValueType::kNumber},
    {"p.guidance_length", ValueType::kNumber},
    {"p.tv_mode", ValueType::kNumber},
    {"p.play_count", ValueType::kNumber},
    {"p.hd", ValueType::kNumber},
    {"p.timer_record", ValueType::kNumber},
    {"p.series_record", ValueType::kNumber},
    {"p.subtitle", ValueType::kNumber},
    {"p.ttx", ValueType::kNumber},
    {"p.ad", ValueType::kNumber},
    {"p.hard_of_hearing_radio", ValueType::kNumber},
    {"p.data_service", ValueType::kNumber},
    {"p.content_lock", ValueType::kNumber},
    {"p.content_watch", ValueType::kNumber},
    {"p.has_audio_only", ValueType::kNumber},
    {"p.is_local_record", ValueType::kNumber},
    {"m.size", ValueType::kNumber},
    {"(SELECT s.id FROM storage s WHERE s.key = m.storage)", ValueType::kText},
    {"p.channel_name", ValueType::kText},
    {"p.channel_num", ValueType::kText},
    {"p.program_title", ValueType::kText},
    {"p.program_crid", ValueType::kText},
    {"p.guidance", ValueType::kText},
    {"p.synopsis", ValueType::kText},
    {"p.genre", ValueType::kText},
    {"p.language", ValueType::kText},
    {"p.modified_month", ValueType::kText},
    {"p.private_data", ValueType::kText},
};
static_assert(std::size(kRecordingValues) == static_cast<size_t>(RecordingValue::kCount));

// In the order of UhdValue.
constexpr ValueColumn kUhdValues[] = {
    {"m.size", ValueType::kNumber},
    {"(m.modified_ns - (m.modified_ns < 0) * 999999999) / 1000000000", ValueType::kNumber},
    {"m.played_position", ValueType::kNumber},
    {"m.played_count", ValueType::kNumber},
    {"u.content_id", ValueType::kText},
    {"u.content_title", ValueType::kText},
    {"u.release_date", ValueType::kText},
};
static_assert(std::size(kUhdValues) == static_cast<size_t>(UhdValue::kCount));

size_t text_bytes(const ValueTable& table, const Query& row, int first_column) {
    size_t bytes = 0;
    for (size_t i = 0; i < table.count; ++i) {
        if (table.columns[i].type == ValueType::kText) {
            bytes += row.text(first_column + static_cast<int>(i)).size();
        }
    }
    return bytes;
}

}  // namespace

const ValueTable& media_values() {
    static constexpr ValueTable kTable{"media m", kMediaValues, std::size(kMediaValues)};
    return kTable;
}

const ValueTable& recording_values() {
    static constexpr ValueTable kTable{"media m JOIN pvr p ON p.id = m.id", kRecordingValues,
                                       std::size(kRecordingValues)};
    return kTable;
}

const ValueTable& uhd_values() {
    static constexpr ValueTable kTable{"media m JOIN uhd u ON u.id = m.id", kUhdValues,
                                       std::size(kUhdValues)};
    return kTable;
}

std::string select_values(const ValueTable& table, size_t rows) {
    std::string sql = "SELECT m.id";
    for (size_t i = 0; i < table.count; ++i) {
        sql += std::string(", ") + table.columns[i].sql;
    }
    sql += std::string(" FROM ") + table.from + " WHERE m.id IN (?";
    for (size_t i = 1; i < rows; ++i) {
        sql += ",?";
    }
    return sql + ")";
}

std::unique_ptr<const ValueBlock> ValueBlock::read(const ValueTable& table, const Query& row,
                                                   int first_column) {
    const size_t slots_size = table.count * sizeof(int64_t);
    void* memory = ::operator new(slots_size + text_bytes(table, row, first_column));
    auto* slots = static_cast<int64_t*>(memory);
    size_t text_at = slots_size;
    for (size_t i = 0; i < table.count; ++i) {
        const int column = first_column + static_cast<int>(i);
        if (table.columns[i].type == ValueType::kNumber) {
            slots[i] = row.integer(column);
        } else if (table.columns[i].type == ValueType::kReal) {
            const double value = row.real(column);
            std::memcpy(&slots[i], &value, sizeof value);
        } else {
            const std::string_view text = row.text(column);
            std::memcpy(static_cast<char*>(memory) + text_at, text.data(), text.size());
            slots[i] = static_cast<int64_t>(text_at | (static_cast<uint64_t>(text.size()) << 32));
            text_at += text.size();
        }
    }
    return std::unique_ptr<const ValueBlock>(static_cast<const ValueBlock*>(memory));
}

double ValueBlock::real(size_t column) const {
    double value = 0;
    std::memcpy(&value, &slots()[column], sizeof value);
    return value;
}

std::string_view ValueBlock::text(size_t column) const {
    const auto slot = static_cast<uint64_t>(slots()[column]);
    return {reinterpret_cast<const char*>(this) + static_cast<uint32_t>(slot),
            static_cast<size_t>(slot >> 32)};
}

void ValueBlock::operator delete(void* block) {
    ::operator delete(block);
}

}  // namespace media_content
