#include "platform/media-content/host/metadata/heif_header.h"

#include <array>
#include <string_view>
#include <vector>

#include "platform/media-content/host/metadata/byte_cursor.h"
#include "platform/media-content/host/metadata/byte_order.h"
#include "platform/media-content/host/metadata/isobmff.h"
#include "platform/media-content/host/metadata/tiff_header.h"

namespace media_content {
namespace {

constexpr std::string_view kCanonBoxId = "\x85\xC0\xB6\x87\x82\x0F\x11\xE0\x81\x11\xF4\xCE\x46\x2B\x6A\x48";
constexpr uint64_t kFullBoxHeader = 4;  // version and flags
constexpr size_t kLargestTable = 1 << 20;
constexpr uint16_t kPropertyMask8 = 0x7F;     // without the bit "essential"
constexpr uint16_t kPropertyMask16 = 0x7FFF;  // likewise

/// What an "ispe" property tells; nothing for a property of another type.
struct ImageExtent {
    uint32_t width = 0;
    uint32_t height = 0;
};

/// The item tables of a HEIF file: which item is the picture, and where EXIF and XMP are.
class HeifReader {
public:
    HeifReader(ByteSource& source, PictureHeader& header) : source_(source), header_(header) {}

    void read(ByteRange meta);

private:
    bool load(const Box& box) { return source_.read_block(box.payload, kLargestTable, bytes_); }
    void read_primary_item();
    void read_item_infos(const Box& box);
    void read_item_info();
    void read_locations();
    void read_location(ByteCursor& cursor, uint8_t version, const size_t (&widths)[4]);
    void note_item(uint32_t item, ByteRange where);
    void read_properties(const Box& box);
    void read_associations();

    ByteSource& source_;
    PictureHeader& header_;
    std::vector<uint8_t> bytes_;
    uint32_t primary_ = 0;
    uint32_t exif_item_ = 0;
    uint32_t xmp_item_ = 0;
    std::vector<ImageExtent> extents_;  ///< by property number, which counts from 1
};

void HeifReader::read(ByteRange meta) {
    if (meta.length < kFullBoxHeader) {
        return;
    }
    const ByteRange children{meta.offset + kFullBoxHeader, meta.length - kFullBoxHeader};
    std::optional<Box> locations, properties;
    BoxWalker walker(source_, children);
    for (Box box; walker.next(box);) {
        if (box.type == box_type("pitm") && load(box)) {
            read_primary_item();
        } else if (box.type == box_type("iinf")) {
            read_item_infos(box);
        } else if (box.type == box_type("iloc")) {
            locations = box;
        } else if (box.type == box_type("iprp")) {
            properties = box;
        }
    }
    // The tables may stand in any order, and these two name items that the others define.
    if (properties) {
        read_properties(*properties);
    }
    if (locations && load(*locations)) {
        read_locations();
    }
}

void HeifReader::read_primary_item() {
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    primary_ = version == 0 ? cursor.u16() : cursor.u32();
}

void HeifReader::read_item_infos(const Box& box) {
    std::array<uint8_t, 1> version{};
    source_.read(box.payload.offset, version.data(), version.size());
    const uint64_t head = kFullBoxHeader + (version[0] == 0 ? 2 : 4);
    if (box.payload.length < head) {
        return;
    }
    BoxWalker walker(source_, {box.payload.offset + head, box.payload.length - head});
    for (Box entry; walker.next(entry);) {
        if (entry.type == box_type("infe") && load(entry)) {
            read_item_info();
        }
    }
}

void HeifReader::read_item_info() {
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    const uint32_t item = version < 3 ? cursor.u16() : cursor.u32();
    cursor.skip(2);
    const uint32_t type = cursor.u32();
    if (version < 2 || !cursor.ok()) {
        return;
    }
    cursor.text();  // the item's name
    if (type == box_type("Exif")) {
        exif_item_ = item;
    } else if (type == box_type("mime") && cursor.text() == "application/rdf+xml") {
        xmp_item_ = item;
    }
}

void HeifReader::read_locations() {
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    const uint32_t packed = cursor.u16();
    // Widths of offset, length, base offset and (from version 1 on) extent index.
    const size_t widths[4] = {packed >> 12U, packed >> 8U & 15U, packed >> 4U & 15U,
                              version == 0 ? 0 : packed & 15U};
    for (const size_t width : widths) {
        if (width > 8) {
            return;
        }
    }
    const uint32_t count = version < 2 ? cursor.u16() : cursor.u32();
    for (uint32_t i = 0; i < count && cursor.ok(); ++i) {
        read_location(cursor, version, widths);
    }
}

void HeifReader::read_location(ByteCursor& cursor, uint8_t version, const size_t (&widths)[4]) {
    const uint32_t item = version < 2 ? cursor.u16() : cursor.u32();
    const uint16_t method = version == 0 ? 0 : cursor.u16() & 15U;
    cursor.skip(2);  // data reference
    const uint64_t base = cursor.number(widths[2]);
    const uint16_t extents = cursor.u16();
    if (extents == 0) {
        return;
    }
    cursor.skip(widths[3]);
    const uint64_t offset = cursor.number(widths[0]);
    const uint64_t length = cursor.number(widths[1]);
    // Skipped at once: an extent may take no bytes at all, and then no end of the table stops a walk over
    // them.
    cursor.skip((extents - size_t{1}) * (widths[3] + widths[0] + widths[1]));
    // Method 0 counts from the start of the file; items in pieces are none of those that are wanted here.
    if (cursor.ok() && method == 0 && extents == 1) {
        note_item(item, {base + offset, length});
    }
}

void HeifReader::note_item(uint32_t item, ByteRange where) {
    if (item == xmp_item_ && xmp_item_ != 0) {
        header_.xmp = where;
    }
    std::array<uint8_t, 4> skipped;
    if (item != exif_item_ || exif_item_ == 0 ||
        !source_.read_exactly(where.offset, skipped.data(), skipped.size())) {
        return;
    }
    const uint64_t head = skipped.size() + uint64_t{big32(skipped.data())};
    if (where.length > head) {
        header_.exif.assign(1, {where.offset + head, where.length - head});
    }
}

void HeifReader::read_properties(const Box& box) {
    const auto container = find_box(source_, box.payload, box_type("ipco"));
    if (!container) {
        return;
    }
    BoxWalker walker(source_, container->payload);
    for (Box property; walker.next(property);) {
        ImageExtent extent;
        std::array<uint8_t, 12> bytes;
        if (property.type == box_type("ispe") && property.payload.length >= bytes.size() &&
            source_.read_exactly(property.payload.offset, bytes.data(), bytes.size())) {
            extent = {big32(&bytes[4]), big32(&bytes[8])};
        }
        extents_.push_back(extent);
    }
    const auto associations = find_box(source_, box.payload, box_type("ipma"));
    if (associations && load(*associations)) {
        read_associations();
    }
}

void HeifReader::read_associations() {
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    const bool wide = (cursor.number(3) & 1) != 0;
    const uint32_t count = cursor.u32();
    for (uint32_t i = 0; i < count && cursor.ok(); ++i) {
        const uint32_t item = version == 0 ? cursor.u16() : cursor.u32();
        const uint8_t properties = cursor.u8();
        for (uint8_t j = 0; j < properties && cursor.ok(); ++j) {
            const size_t index = wide ? cursor.u16() & kPropertyMask16 : cursor.u8() & kPropertyMask8;
            if (item == primary_ && index > 0 && index <= extents_.size()) {
                header_.set_size(extents_[index - 1].width, extents_[index - 1].height);
            }
        }
    }
}

void read_canon_boxes(ByteSource& source, ByteRange movie, PictureHeader& header) {
    BoxWalker walker(source, movie);
    for (Box box; walker.next(box);) {
        if (!has_box_id(source, box, kCanonBoxId)) {
            continue;
        }
        BoxWalker blocks(source, {box.payload.offset + 16, box.payload.length - 16});
        for (Box block; blocks.next(block);) {
            if (block.type == box_type("CMT1")) {
                read_tiff_header(source, block.payload, header);
            } else if (block.type == box_type("CMT2")) {
                header.exif.push_back(block.payload);
            }
        }
    }
}

}  // namespace

void read_heif_header(ByteSource& source, PictureHeader& header) {
    BoxWalker walker(source, {0, source.size()});
    for (Box box; walker.next(box);) {
        if (box.type == box_type("meta")) {
            HeifReader(source, header).read(box.payload);
        } else if (box.type == box_type("moov") && !header.has_size()) {
            read_canon_boxes(source, box.payload, header);
        }
    }
}

}  // namespace media_content
