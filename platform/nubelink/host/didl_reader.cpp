#include "platform/nubelink/host/didl_reader.h"

#include <algorithm>
#include <utility>

#include "platform/nubelink/host/item_values.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"

namespace nbl {

namespace {

constexpr std::string_view kDublinCore = "http://purl.org/dc/elements/1.1/";
constexpr std::string_view kUpnp = "urn:schemas-upnp-org:metadata-1-0/upnp/";

constexpr int kObjectDepth = 2;
constexpr int kPropertyDepth = 3;

// What an object may have of properties, so that there is room for those that the reader adds at its end, and
// looking for one among them costs little.
constexpr int kMostProperties = 200;
constexpr size_t kMostBytes = ItemBuilder::kLargestRecord - 3 * ItemBuilder::kLargestValue;

/// Writes a name as properties have it: "dc:title".
void set_name(std::string& to, const XmlName& name) {
    const bool is_dublin_core = name.space == kDublinCore;
    const std::string_view prefix = is_dublin_core ? "dc" : name.space == kUpnp ? "upnp" : name.prefix;
    to = prefix;
    if (!prefix.empty()) {
        to += ':';
    }
    to += name.local;
}

/// One <res>: an address of the content.
struct Resource {
    std::string address;
    std::vector<std::pair<std::string, std::string>> attributes;

    std::string_view find(std::string_view name) const {
        for (const auto& [key, value] : attributes) {
            if (key == name) {
                return value;
            }
        }
        return {};
    }
    void clear() {
        address.clear();
        attributes.clear();
    }
};

bool is_subtitle(std::string_view mime_type) {
    return mime_type == "text/srt" || mime_type == "application/x-subrip" || mime_type == "smi/caption" ||
           starts_with(mime_type, "text/vtt");
}

bool is_small_picture(const ProtocolInfo& info) {
    const std::string_view profile = info.parameter("DLNA.ORG_PN");
    return profile == "JPEG_TN" || profile == "PNG_TN";
}

/// How well a resource suits a player; the larger the better. Nothing beats the first one of equal rank.
uint64_t rank_of(const Resource& resource) {
    const ProtocolInfo info(resource.find("protocolInfo"));
    std::string_view size = resource.find("resolution");
    const uint64_t width = number_of(next_field(size, 'x')).value_or(0);
    const uint64_t height = number_of(size).value_or(0);
    constexpr uint64_t kMostSide = 1 << 20;
    const bool is_picture = starts_with(info.mime_type, "image/");
    const uint64_t pixels = is_picture && width < kMostSide && height < kMostSide ? width * height : 0;
    const bool reachable = starts_with(resource.address, "http") && info.protocol == "http-get";
    const bool original = info.parameter("DLNA.ORG_CI") != "1";
    const bool small = is_small_picture(info);
    return uint64_t{reachable} << 62 | uint64_t{!small} << 61 | uint64_t{original} << 60 | pixels;
}

class DidlHandler : public XmlHandler {
public:
    DidlHandler(nbl_provider_t provider, std::vector<ItemPtr>& items, size_t most)
        : provider_(provider), items_(items), most_(most) {}

    void open(const XmlName& name, const XmlAttributes& attributes) override {
        ++depth_;
        if (depth_ == kObjectDepth) {
            open_object(name, attributes);
        } else if (depth_ == kPropertyDepth && in_object_) {
            open_property(name, attributes);
        }
    }

    void text(std::string_view piece) override {
        if (depth_ == kPropertyDepth && in_object_ && text_.size() < ItemBuilder::kLargestValue) {
            text_ += piece;
        }
    }

    void close() override {
        if (depth_ == kPropertyDepth && in_object_) {
            close_property();
        } else if (depth_ == kObjectDepth && in_object_) {
            close_object();
        }
        --depth_;
    }

private:
    void open_object(const XmlName& name, const XmlAttributes& attributes);
    void open_property(const XmlName& name, const XmlAttributes& attributes);
    void add(std::string_view name, std::string_view value);
    void close_property();
    void close_resource();
    void close_object();
    void offer_thumbnail(std::string_view address, bool sure);

    nbl_provider_t const provider_;
    std::vector<ItemPtr>& items_;
    size_t most_;  ///< objects that may still be read
    ItemBuilder builder_;
    int depth_ = 0;
    bool in_object_ = false;
    bool is_container_ = false;
    int properties_ = 0;
    // The property, while it is open.
    std::string name_;
    std::string text_;
    Resource resource_;
    bool is_small_art_ = false;
    // What the object's resources have come to so far.
    Resource best_;
    uint64_t best_rank_ = 0;
    std::string thumbnail_;
    bool thumbnail_is_sure_ = false;
};

void DidlHandler::open_object(const XmlName& name, const XmlAttributes& attributes) {
    is_container_ = name.local == "container";
    in_object_ = (is_container_ || name.local == "item") && most_ > 0;
    builder_.clear();
    properties_ = 0;
    best_.clear();
    best_rank_ = 0;
    thumbnail_.clear();
    thumbnail_is_sure_ = false;
    for (int i = 0; in_object_ && i < attributes.count(); ++i) {
        set_name(name_, attributes.name(i));
        add('@' + name_, attributes.value(i));
    }
}

void DidlHandler::add(std::string_view name, std::string_view value) {
    if (properties_ < kMostProperties && builder_.size() < kMostBytes) {
        ++properties_;
        builder_.add(name, value);
    }
}

void DidlHandler::open_property(const XmlName& name, const XmlAttributes& attributes) {
    set_name(name_, name);
    text_.clear();
    is_small_art_ = false;
    if (name_ == "res") {
        resource_.clear();
        for (int i = 0; i < attributes.count(); ++i) {
            resource_.attributes.emplace_back(attributes.name(i).local, attributes.value(i));
        }
    } else if (name_ == "upnp:albumArtURI") {
        const std::string_view profile = attributes.find("profileID");
        is_small_art_ = profile == "JPEG_TN" || profile == "PNG_TN";
    }
}

void DidlHandler::close_property() {
    const std::string_view value = trimmed(text_);
    if (name_ == "res") {
        resource_.address = value;
        close_resource();
        return;
    }
    if (name_ == "upnp:albumArtURI") {
        offer_thumbnail(value, is_small_art_);
    }
    add(name_, value);
}

void DidlHandler::close_resource() {
    const ProtocolInfo info(resource_.find("protocolInfo"));
    if (is_small_picture(info)) {
        offer_thumbnail(resource_.address, true);
    }
    if (is_subtitle(info.mime_type)) {
        add(property::kSubtitle, resource_.address);
        return;
    }
    add(property::kSubtitle, resource_.find("subtitleFileUri"));
    const uint64_t rank = rank_of(resource_);
    if (best_.attributes.empty() || rank > best_rank_) {
        std::swap(best_, resource_);
        best_rank_ = rank;
    }
}

void DidlHandler::offer_thumbnail(std::string_view address, bool sure) {
    if (thumbnail_.empty() || (sure && !thumbnail_is_sure_)) {
        thumbnail_ = address;
        thumbnail_is_sure_ = sure;
    }
}

void DidlHandler::close_object() {
    in_object_ = false;
    --most_;
    builder_.add("res", best_.address);
    for (const auto& [name, value] : best_.attributes) {
        add("res@" + name, value);
    }
    if (thumbnail_ != builder_.text("upnp:albumArtURI")) {
        builder_.add(property::kThumbnail, thumbnail_);
    }
    for (const std::string_view name : {"kvr:CaptionInfoEx", "kvr:CaptionInfo"}) {
        builder_.add(property::kSubtitle, std::string(builder_.text(name)));
    }
    builder_.add("dc:title", std::string(builder_.text("@id")));
    const ProtocolInfo info(best_.find("protocolInfo"));
    items_.push_back(
        builder_.build(item_type_of(is_container_, builder_.text("upnp:class"), info.mime_type), provider_));
}

}  // namespace

bool read_didl(std::string_view document, nbl_provider_t provider, std::vector<ItemPtr>& items, size_t most) {
    document = trimmed(document);
    if (document.empty()) {
        return true;
    }
    DidlHandler handler(provider, items, most);
    return read_xml(document, handler);
}

}  // namespace nbl
