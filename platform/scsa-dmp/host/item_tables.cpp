#include "platform/scsa-dmp/host/item_tables.h"

#include <algorithm>

#include "platform/media-content/host/metadata/byte_cursor.h"
#include "platform/media-content/host/metadata/isobmff.h"

namespace scsa_host {
namespace {

using media_content::Box;
using media_content::box_type;
using media_content::BoxWalker;
using media_content::ByteCursor;

constexpr uint64_t kFullBoxHeader = 4;  // version and flags

// Where the offsets of a place count from.
constexpr uint16_t kFromFile = 0;
constexpr uint16_t kFromItemData = 1;

bool is_xml_type(std::string_view type) {
    constexpr std::string_view kSuffix = "+xml";
    return type == "application/xml" || type == "text/xml" ||
           (type.size() > kSuffix.size() && type.substr(type.size() - kSuffix.size()) == kSuffix);
}

}  // namespace

ItemTables::ItemTables(ByteSource& source, ByteRange meta) : source_(source) {
    if (meta.length < kFullBoxHeader) {
        return;
    }
    std::optional<Box> places;
    BoxWalker walker(source, {meta.offset + kFullBoxHeader, meta.length - kFullBoxHeader});
    for (Box box; walker.next(box);) {
        if (box.type == box_type("xml ") && !xml_box_ && box.payload.length > kFullBoxHeader) {
            xml_box_ = {box.payload.offset + kFullBoxHeader, box.payload.length - kFullBoxHeader};
        } else if (box.type == box_type("pitm")) {
            read_primary_item(box);
        } else if (box.type == box_type("iinf")) {
            read_item_infos(box);
        } else if (box.type == box_type("iloc") && !places) {
            places = box;
        } else if (box.type == box_type("idat")) {
            item_data_ = box.payload;
        }
    }
    // The boxes may stand in any order, and places count from the item data.
    if (places) {
        read_places(*places);
    }
}

void ItemTables::read_primary_item(const Box& box) {
    if (source_.read_block(box.payload, kLargestItemInfo, bytes_)) {
        ByteCursor cursor(bytes_);
        const uint8_t version = cursor.u8();
        cursor.skip(3);
        primary_ = version == 0 ? cursor.u16() : cursor.u32();
    }
}

void ItemTables::read_item_infos(const Box& box) {
    uint8_t version = 0;
    const uint64_t head = source_.read_exactly(box.payload.offset, &version, 1) && version == 0
                              ? kFullBoxHeader + 2
                              : kFullBoxHeader + 4;
    if (box.payload.length < head) {
        return;
    }
    BoxWalker walker(source_, {box.payload.offset + head, box.payload.length - head});
    for (Box entry; items_.size() < kMostItems && walker.next(entry);) {
        if (entry.type == box_type("infe") && source_.read_block(entry.payload, kLargestItemInfo, bytes_)) {
            read_item_info();
        }
    }
}

void ItemTables::read_item_info() {
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    Item item;
    item.number = version < 3 ? cursor.u16() : cursor.u32();
    const uint16_t protection = cursor.u16();
    const uint32_t type = version < 2 ? box_type("mime") : cursor.u32();
    item.name = cursor.text();
    if (!cursor.ok() || protection != 0) {
        return;
    }
    if (type == box_type("mime")) {
        item.is_xml = is_xml_type(cursor.text());
        if (!cursor.text().empty()) {
            return;  // it is encoded in one more way
        }
    }
    items_.push_back(std::move(item));
}

void ItemTables::read_places(const Box& box) {
    if (!source_.read_block(box.payload, kLargestTable, bytes_)) {
        return;
    }
    ByteCursor cursor(bytes_);
    const uint8_t version = cursor.u8();
    cursor.skip(3);
    const uint32_t packed = cursor.u16();
    // Widths of offset, length, base offset and (from version 1 on) extent index.
    const size_t widths[4] = {packed >> 12U, packed >> 8U & 15U, packed >> 4U & 15U,
                              version == 0 ? 0 : packed & 15U};
    if (*std::max_element(std::begin(widths), std::end(widths)) > sizeof(uint64_t)) {
        return;
    }
    const uint32_t count = version < 2 ? cursor.u16() : cursor.u32();
    for (uint32_t i = 0; i < count && places_.size() < kMostItems; ++i) {
        if (!read_place(cursor, version, widths)) {
            return;
        }
    }
}

bool ItemTables::read_place(ByteCursor& cursor, uint8_t version, const size_t (&widths)[4]) {
    const uint32_t item = version < 2 ? cursor.u16() : cursor.u32();
    const uint16_t method = version == 0 ? 0 : cursor.u16() & 15U;
    const uint16_t other_file = cursor.u16();
    const uint64_t base = cursor.number(widths[2]);
    const uint16_t count = cursor.u16();
    if (!cursor.ok() || count > extents_left_) {
        return false;
    }
    extents_left_ -= count;
    Extents extents;
    for (uint16_t i = 0; i < count; ++i) {
        cursor.skip(widths[3]);
        const uint64_t offset = base + cursor.number(widths[0]);
        const uint64_t length = cursor.number(widths[1]);
        const auto range = offset >= base ? place(method, offset, length) : std::nullopt;
        if (!cursor.ok()) {
            return false;
        }
        if (range) {
            extents.push_back(*range);
        }
    }
    if (other_file == 0 && extents.size() == count) {
        places_.emplace(item, std::move(extents));
    }
    return true;
}

std::optional<ByteRange> ItemTables::place(uint16_t method, uint64_t offset, uint64_t length) const {
    ByteRange whole;
    if (method == kFromFile) {
        whole = {0, source_.size()};
    } else if (method == kFromItemData && item_data_) {
        whole = *item_data_;
    }
    if (offset >= whole.length || length > whole.length - offset) {
        return std::nullopt;
    }
    // No length stands for all there is.
    return ByteRange{whole.offset + offset, length != 0 ? length : whole.length - offset};
}

Extents ItemTables::xml() const {
    if (xml_box_) {
        return {*xml_box_};
    }
    const auto is_xml = [this](const Item& item) { return item.is_xml && places_.count(item.number) != 0; };
    auto it = std::find_if(items_.begin(), items_.end(),
                           [&](const Item& item) { return item.number == primary_ && is_xml(item); });
    if (it == items_.end()) {
        it = std::find_if(items_.begin(), items_.end(), is_xml);
    }
    return it != items_.end() ? places_.at(it->number) : Extents();
}

Extents ItemTables::item_named(std::string_view name) const {
    const auto it =
        std::find_if(items_.begin(), items_.end(), [&](const Item& item) { return item.name == name; });
    return it != items_.end() ? item_numbered(it->number) : Extents();
}

Extents ItemTables::item_numbered(uint32_t number) const {
    const bool known =
        std::any_of(items_.begin(), items_.end(), [&](const Item& item) { return item.number == number; });
    const auto it = places_.find(number);
    return known && it != places_.end() ? it->second : Extents();
}

}  // namespace scsa_host
