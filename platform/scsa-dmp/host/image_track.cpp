#include "platform/scsa-dmp/host/image_track.h"

#include <algorithm>

#include "platform/media-content/host/metadata/byte_cursor.h"
#include "platform/media-content/host/metadata/isobmff.h"

namespace scsa_host {
namespace {

using media_content::Box;
using media_content::box_type;
using media_content::BoxWalker;
using media_content::ByteCursor;
using media_content::find_box;

/// Walks over the tables of one track.
class SampleTables {
public:
    /// Takes the payload of the "stbl" box. Places of 32 and of 64 bits differ in the table's name.
    bool load(ByteSource& source, ByteRange tables);
    /// All samples, a chunk being one piece; empty if the tables do not agree.
    Extents samples();

private:
    bool add_chunk(uint32_t samples);
    bool take_sizes(uint32_t samples, uint64_t& total);

    std::vector<uint8_t> sizes_;
    std::vector<uint8_t> chunks_;
    std::vector<uint8_t> runs_;
    size_t chunk_width_ = 0;

    ByteCursor size_cursor_{nullptr, 0};
    ByteCursor chunk_cursor_{nullptr, 0};
    uint32_t same_size_ = 0;
    uint32_t samples_left_ = 0;
    Extents extents_;
};

bool SampleTables::load(ByteSource& source, ByteRange tables) {
    BoxWalker walker(source, tables);
    bool read = true;
    for (Box box; read && walker.next(box);) {
        if (box.type == box_type("stsz")) {
            read = source.read_block(box.payload, kLargestTable, sizes_);
        } else if (box.type == box_type("stsc")) {
            read = source.read_block(box.payload, kLargestTable, runs_);
        } else if (box.type == box_type("stco") || box.type == box_type("co64")) {
            chunk_width_ = box.type == box_type("stco") ? sizeof(uint32_t) : sizeof(uint64_t);
            read = source.read_block(box.payload, kLargestTable, chunks_);
        }
    }
    return read;
}

Extents SampleTables::samples() {
    size_cursor_ = ByteCursor(sizes_);
    size_cursor_.skip(4);
    same_size_ = size_cursor_.u32();
    samples_left_ = size_cursor_.u32();
    chunk_cursor_ = ByteCursor(chunks_);
    chunk_cursor_.skip(4);
    const uint32_t chunk_count = chunk_cursor_.u32();
    ByteCursor runs(runs_);
    runs.skip(4);
    uint32_t runs_left = runs.u32();
    // A run tells its first chunk, counted from 1, and lasts to the next run's; so one is read ahead.
    uint32_t next_first = runs_left > 0 ? runs.u32() : 0;
    uint32_t per_chunk = 0;
    for (uint32_t chunk = 1; chunk <= chunk_count && samples_left_ > 0; ++chunk) {
        if (chunk == next_first) {
            per_chunk = runs.u32();
            runs.skip(4);
            next_first = --runs_left > 0 ? runs.u32() : 0;
        }
        if (!runs.ok() || !add_chunk(per_chunk)) {
            return {};
        }
    }
    return samples_left_ == 0 ? std::move(extents_) : Extents();
}

bool SampleTables::add_chunk(uint32_t samples) {
    const uint64_t offset = chunk_cursor_.number(chunk_width_);
    uint64_t total = 0;
    if (!chunk_cursor_.ok() || samples == 0 || extents_.size() == kMostExtents ||
        !take_sizes(std::min(samples, samples_left_), total)) {
        return false;
    }
    extents_.push_back({offset, total});
    return true;
}

bool SampleTables::take_sizes(uint32_t samples, uint64_t& total) {
    samples_left_ -= samples;
    if (same_size_ != 0) {
        total = uint64_t{same_size_} * samples;
        return true;
    }
    for (uint32_t i = 0; i < samples && size_cursor_.ok(); ++i) {
        total += size_cursor_.u32();
    }
    return size_cursor_.ok();
}

/// The number of a track, by the payload of its "trak" box.
uint32_t track_number(ByteSource& source, ByteRange track) {
    const auto header = find_box(source, track, box_type("tkhd"));
    std::vector<uint8_t> bytes;
    if (!header || !source.read_block(header->payload, kLargestItemInfo, bytes)) {
        return 0;
    }
    ByteCursor cursor(bytes);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    cursor.skip(version == 1 ? 16 : 8);  // when it was made and changed
    return cursor.u32();
}

}  // namespace

Extents track_samples(ByteSource& source, ByteRange movie, uint32_t number) {
    BoxWalker walker(source, movie);
    for (Box track; walker.next(track);) {
        if (track.type != box_type("trak") || track_number(source, track.payload) != number) {
            continue;
        }
        auto box = find_box(source, track.payload, box_type("mdia"));
        for (const uint32_t type : {box_type("minf"), box_type("stbl")}) {
            box = box ? find_box(source, box->payload, type) : box;
        }
        SampleTables tables;
        return box && tables.load(source, box->payload) ? tables.samples() : Extents();
    }
    return {};
}

}  // namespace scsa_host
