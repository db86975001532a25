#include "engine/plugins/webdav/multistatus_reader.h"

#include <algorithm>

#include "engine/plugins/support/time_text.h"

namespace engine {

namespace {

constexpr std::string_view kDav = "DAV:";
constexpr std::string_view kOwnCloud = "http://owncloud.org/ns";
constexpr std::string_view kNextcloud = "http://nextcloud.org/ns";
constexpr size_t kLongestText = 16 * 1024;
constexpr size_t kMostProperties = 256;

bool is_success(std::string_view status_line) {
    // "HTTP/1.1 200 OK"
    const size_t space = status_line.find(' ');
    return status_line.empty() ||
           (space != std::string_view::npos && status_line.substr(space + 1, 1) == "2");
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool has_name(const std::vector<std::pair<std::string, std::string>>& properties, const std::string& name) {
    return std::any_of(properties.begin(), properties.end(),
                       [&name](const auto& property) { return property.first == name; });
}

}  // namespace

/// A property that has its place in an entry.
struct MultistatusReader::Property {
    std::string_view space;
    std::string_view name;
    void (*set)(WebDavEntry& entry, std::string& value);
};
const MultistatusReader::Property MultistatusReader::kProperties[] = {
    {kDav, "getcontenttype", [](WebDavEntry& e, std::string& value) { e.content_type.swap(value); }},
    {kDav, "displayname", [](WebDavEntry& e, std::string& value) { e.display_name.swap(value); }},
    {kDav, "getetag", [](WebDavEntry& e, std::string& value) { e.etag.swap(value); }},
    {kDav, "getcontentlength", [](WebDavEntry& e, std::string& value) { e.size = number_of_text(value); }},
    {kDav, "getlastmodified",
     [](WebDavEntry& e, std::string& value) { e.modified = seconds_of_mail_time(value); }},
    {kDav, "creationdate",
     [](WebDavEntry& e, std::string& value) { e.created = seconds_of_iso_time(value); }},
    {kOwnCloud, "fileid", [](WebDavEntry& e, std::string& value) { e.file_id.swap(value); }},
    {kNextcloud, "has-preview", [](WebDavEntry& e, std::string& value) { e.has_preview = value == "true"; }},
};

const MultistatusReader::Property* MultistatusReader::find_property(std::string_view space,
                                                                    std::string_view name) {
    const auto* const row = std::find_if(
        std::begin(kProperties), std::end(kProperties),
        [&](const Property& property) { return property.name == name && property.space == space; });
    return row == std::end(kProperties) ? nullptr : row;
}

/// Which element means what within which other one.
struct MultistatusReader::Child {
    Place parent;
    std::string_view name;
    Place place;
};
const MultistatusReader::Child MultistatusReader::kChildren[] = {
    {Place::kOutside, "multistatus", Place::kMultistatus},
    {Place::kMultistatus, "response", Place::kResponse},
    {Place::kResponse, "href", Place::kHref},
    {Place::kResponse, "status", Place::kStatus},
    {Place::kResponse, "propstat", Place::kPropstat},
    {Place::kPropstat, "status", Place::kPropstatStatus},
    {Place::kPropstat, "prop", Place::kProp},
    {Place::kProp, "resourcetype", Place::kResourceType},
};

MultistatusReader::MultistatusReader(TakeEntry take_entry, bool keep_all)
    : take_entry_(std::move(take_entry)), keep_all_(keep_all), xml_(*this), places_{Place::kOutside} {}

bool MultistatusReader::read(const char* bytes, size_t size) {
    return xml_.read(bytes, size) && reason_.empty();
}

bool MultistatusReader::finish() {
    return xml_.finish() && reason_.empty();
}

const std::string& MultistatusReader::reason() const {
    return reason_.empty() ? xml_.reason() : reason_;
}

MultistatusReader::Place MultistatusReader::child_of(Place parent, std::string_view space,
                                                     std::string_view name) const {
    if (space == kDav) {
        for (const Child& child : kChildren) {
            if (child.parent == parent && child.name == name) {
                return child.place;
            }
        }
    }
    return parent == Place::kProp ? Place::kProperty : Place::kElsewhere;
}

bool MultistatusReader::collects(Place place) const {
    return place == Place::kHref || place == Place::kStatus || place == Place::kPropstatStatus ||
           place == Place::kProperty;
}

void MultistatusReader::open(std::string_view space, std::string_view name, const XmlAttributes&) {
    const Place parent = places_.back();
    const Place place = child_of(parent, space, name);
    if (parent == Place::kOutside && place != Place::kMultistatus) {
        reason_ = "it is not the answer of a WebDAV server";
        xml_.stop();
        return;
    }
    places_.push_back(place);
    if (place == Place::kResponse) {
        entry_ = {};
        status_.clear();
    } else if (place == Place::kPropstat) {
        propstat_.clear();
        propstat_status_.clear();
        propstat_folder_ = false;
    } else if (place == Place::kProperty) {
        value_.property = find_property(space, name);
        if (!value_.property && keep_all_) {
            value_.name.assign(space).append(" ").append(name);
        }
    } else if (parent == Place::kResourceType && space == kDav && name == "collection") {
        propstat_folder_ = true;
    }
    if (collects(place)) {
        text_.clear();
        text_complete_ = true;
    }
}

void MultistatusReader::text(std::string_view piece) {
    if (!collects(places_.back())) {
        return;
    }
    const size_t room = kLongestText - text_.size();
    text_complete_ = text_complete_ && piece.size() <= room;
    text_.append(piece.substr(0, room));
}

void MultistatusReader::close() {
    const Place place = places_.back();
    places_.pop_back();
    switch (place) {
        case Place::kHref:
            // Half an address is none.
            entry_.href = text_complete_ ? trimmed(text_) : "";
            break;
        case Place::kStatus:
            status_ = trimmed(text_);
            break;
        case Place::kPropstatStatus:
            propstat_status_ = trimmed(text_);
            break;
        case Place::kProperty:
            close_property();
            break;
        case Place::kPropstat:
            close_propstat();
            break;
        case Place::kResponse:
            close_response();
            break;
        default:
            break;
    }
}

void MultistatusReader::close_property() {
    value_.text = trimmed(text_);
    const bool kept = value_.property || keep_all_;
    if (kept && !value_.text.empty() && propstat_.size() < kMostProperties) {
        propstat_.push_back(std::move(value_));
    }
}

void MultistatusReader::close_propstat() {
    if (!is_success(propstat_status_)) {
        return;
    }
    entry_.folder = entry_.folder || propstat_folder_;
    for (Value& value : propstat_) {
        if (value.property) {
            value.property->set(entry_, value.text);
        } else if (entry_.others.size() < kMostProperties && !has_name(entry_.others, value.name)) {
            entry_.others.emplace_back(std::move(value.name), std::move(value.text));
        }
    }
}

void MultistatusReader::close_response() {
    if (!entry_.href.empty() && is_success(status_)) {
        take_entry_(entry_);
    }
}

}  // namespace engine
