#include "platform/scsa-dmp/host/sff_reader.h"

#include <charconv>
#include <optional>

#include "platform/media-content/host/metadata/isobmff.h"
#include "platform/scsa-dmp/host/image_track.h"

namespace scsa_host {
namespace {

using media_content::Box;
using media_content::box_type;
using media_content::BoxWalker;
using media_content::find_box;

/// More of them than any file has.
constexpr size_t kMostMetas = 8;

/// The number that a reference is, or that it ends with behind its last colon.
std::optional<uint32_t> number_of(std::string_view reference) {
    reference.remove_prefix(reference.rfind(':') + 1);
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(reference.data(), reference.data() + reference.size(), number);
    const bool whole = error == std::errc() && end == reference.data() + reference.size();
    return whole && number != 0 ? std::optional(number) : std::nullopt;
}

}  // namespace

void SffReader::find_boxes() {
    BoxWalker walker(source_, {0, source_.size()});
    for (Box box; metas_.size() + movies_.size() < kMostMetas && walker.next(box);) {
        if (box.type == box_type("meta")) {
            metas_.push_back(box.payload);
        } else if (box.type == box_type("moov")) {
            movies_.push_back(box.payload);
        }
    }
    for (const ByteRange& movie : movies_) {
        if (const auto meta = find_box(source_, movie, box_type("meta"))) {
            metas_.push_back(meta->payload);
        }
    }
}

bool SffReader::read_xml(std::string& xml) {
    find_boxes();
    for (const ByteRange& meta : metas_) {
        const Extents extents = ItemTables(source_, meta).xml();
        if (extents.empty()) {
            continue;
        }
        size_t size = 0;
        if (!measure(extents, size)) {
            return false;
        }
        xml.resize(size);
        return copy(extents, xml.data());
    }
    return fail("it has no metadata XML");
}

bool SffReader::read_image(const std::string& reference, ImageBytes& image) {
    find_boxes();
    const Extents extents = find_image(reference);
    size_t size = 0;
    if (extents.empty()) {
        return fail("it has no picture of that reference");
    }
    if (!measure(extents, size)) {
        return false;
    }
    return image.resize(size) ? copy(extents, image.data()) : fail("there is not enough memory");
}

Extents SffReader::find_image(const std::string& reference) {
    std::vector<ItemTables> tables;
    for (const ByteRange& meta : metas_) {
        Extents extents = tables.emplace_back(source_, meta).item_named(reference);
        if (!extents.empty()) {
            return extents;
        }
    }
    const std::optional<uint32_t> number = number_of(reference);
    if (!number) {
        return {};
    }
    for (const ByteRange& movie : movies_) {
        Extents extents = track_samples(source_, movie, *number);
        if (!extents.empty()) {
            return extents;
        }
    }
    for (const ItemTables& table : tables) {
        Extents extents = table.item_numbered(*number);
        if (!extents.empty()) {
            return extents;
        }
    }
    return {};
}

bool SffReader::measure(const Extents& extents, size_t& size) {
    uint64_t total = 0;
    for (const ByteRange& extent : extents) {
        if (extent.offset > source_.size() || extent.length > source_.size() - extent.offset) {
            return fail("a part lies beyond the end of the file");
        }
        if (extent.length > kLargestEntry - total) {
            return fail("it is too large");
        }
        total += extent.length;
    }
    size = static_cast<size_t>(total);
    return size != 0 || fail("it is empty");
}

bool SffReader::copy(const Extents& extents, char* out) {
    for (const ByteRange& extent : extents) {
        const auto length = static_cast<size_t>(extent.length);
        if (!source_.read_exactly(extent.offset, out, length)) {
            return fail("it cannot be read");
        }
        out += length;
    }
    return true;
}

bool SffReader::fail(const char* reason) {
    reason_ = reason;
    return false;
}

}  // namespace scsa_host
