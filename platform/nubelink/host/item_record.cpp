#include "platform/nubelink/host/item_record.h"

#include <array>
#include <cstring>
#include <new>
#include <unordered_map>

#include "platform/nubelink/host/item_memory.h"
#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

// A property is kept as: its code, where that is 0 the name's length and the name; three bytes of the value's
// length; the value.
constexpr size_t kLengthBytes = 3;
constexpr size_t kLongestName = 255;
constexpr uint8_t kNamed = 0;

/// Names with a code of their own: place in the table, from 1. The order is no promise to anybody.
constexpr std::array<std::string_view, 48> kNames = {
    "@id",
    "dc:title",
    "upnp:class",
    "@parentID",
    "@restricted",
    "@childCount",
    "@searchable",
    "@refID",
    "res",
    "res@protocolInfo",
    "res@size",
    "res@duration",
    "res@resolution",
    "res@bitrate",
    "res@sampleFrequency",
    "res@nrAudioChannels",
    "res@bitsPerSample",
    "res@colorDepth",
    "res@protection",
    "res@importUri",
    "res@id",
    "dc:date",
    "dc:creator",
    "dc:description",
    "dc:publisher",
    "dc:language",
    "dc:rights",
    "upnp:artist",
    "upnp:author",
    "upnp:actor",
    "upnp:director",
    "upnp:album",
    "upnp:genre",
    "upnp:albumArtURI",
    "upnp:originalTrackNumber",
    "upnp:playbackCount",
    "upnp:lastPlaybackPosition",
    "upnp:lastPlaybackTime",
    "upnp:icon",
    "upnp:storageUsed",
    "upnp:objectUpdateID",
    "upnp:containerUpdateID",
    "upnp:writeStatus",
    "upnp:createClass",
    "kvr:dcmInfo",
    "desc",
    property::kThumbnail,
    property::kSubtitle,
};

static_assert(kNames.size() < 64, "a builder has a bit for each code");

uint8_t code_of(std::string_view name) {
    // Never destroyed: the service's thread may run to the process's very end.
    static const auto& codes = *[] {
        auto* by_name = new std::unordered_map<std::string_view, uint8_t>;
        for (const std::string_view known : kNames) {
            by_name->emplace(known, static_cast<uint8_t>(by_name->size() + 1));
        }
        return by_name;
    }();
    const auto found = codes.find(name);
    return found == codes.end() ? kNamed : found->second;
}

size_t number_at(std::string_view bytes, size_t at) {
    const auto byte = [&](size_t i) {
        return static_cast<size_t>(static_cast<unsigned char>(bytes[at + i]));
    };
    return byte(0) | byte(1) << 8 | byte(2) << 16;
}

struct Property {
    uint8_t code;
    std::string_view name;  ///< empty for one with a code
    std::string_view value;
};

/// Takes the first property off `rest`.
Property next_property(std::string_view& rest) {
    Property found{static_cast<uint8_t>(rest[0]), {}, {}};
    rest.remove_prefix(1);
    if (found.code == kNamed) {
        const auto length = static_cast<unsigned char>(rest[0]);
        found.name = rest.substr(1, length);
        rest.remove_prefix(size_t{1} + length);
    }
    const size_t length = number_at(rest, 0);
    found.value = rest.substr(kLengthBytes, length);
    rest.remove_prefix(kLengthBytes + length);
    return found;
}

std::optional<std::string_view> find_property(std::string_view bytes, std::string_view name) {
    const uint8_t code = code_of(name);
    while (!bytes.empty()) {
        const Property property = next_property(bytes);
        if (property.code == code && (code != kNamed || property.name == name)) {
            return property.value;
        }
    }
    return std::nullopt;
}

}  // namespace

void ItemBuilder::add(std::string_view name, std::string_view value) {
    value = value.substr(0, cut_at_character(value, kLargestValue));
    const size_t size = 2 + name.size() + kLengthBytes + value.size();
    if (value.empty() || name.size() > kLongestName || bytes_.size() + size > kLargestRecord) {
        return;
    }
    const uint8_t code = code_of(name);
    const uint64_t bit = uint64_t{1} << code;
    if (code != kNamed ? (coded_ & bit) != 0 : has(name)) {
        return;
    }
    coded_ |= bit;
    bytes_ += static_cast<char>(code);
    if (code == kNamed) {
        bytes_ += static_cast<char>(name.size());
        bytes_ += name;
    }
    for (size_t i = 0; i < kLengthBytes; ++i) {
        bytes_ += static_cast<char>(value.size() >> (8 * i) & 0xFF);
    }
    bytes_ += value;
}

void ItemBuilder::add_all(const nbl_item_s& item) {
    std::string_view rest = item.bytes();
    while (!rest.empty()) {
        const Property property = next_property(rest);
        add(property.code == kNamed ? property.name : kNames[property.code - 1U], property.value);
    }
}

bool ItemBuilder::has(std::string_view name) const {
    return find_property(bytes_, name).has_value();
}

std::string_view ItemBuilder::text(std::string_view name) const {
    return find_property(bytes_, name).value_or(std::string_view());
}

ItemPtr ItemBuilder::build(int type, nbl_provider_t provider) {
    void* memory = ::operator new(sizeof(nbl_item_s) + bytes_.size());
    auto* item =
        new (memory) nbl_item_s(static_cast<uint8_t>(type), provider, static_cast<uint32_t>(bytes_.size()));
    std::memcpy(static_cast<void*>(item + 1), bytes_.data(), bytes_.size());
    ItemMemory::add(sizeof(nbl_item_s) + bytes_.size());
    clear();
    return ItemPtr(item);
}

ItemPtr with_child_count(const nbl_item_s& item, int64_t count) {
    ItemBuilder builder;
    builder.add("@childCount", std::to_string(count));
    builder.add_all(item);
    return builder.build(item.type(), item.provider());
}

}  // namespace nbl

std::optional<std::string_view> nbl_item_s::find(std::string_view name) const {
    return nbl::find_property(bytes(), name);
}

void nbl_item_s::give_back() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        nbl::ItemMemory::remove(sizeof(nbl_item_s) + size_);
        this->~nbl_item_s();
        ::operator delete(static_cast<void*>(this));
    }
}
