#include "engine/plugins/feed/feed_reader.h"

#include <glib.h>

#include <algorithm>
#include <utility>

#include "engine/plugins/support/time_text.h"

namespace engine {

namespace {

constexpr std::string_view kAtomSpace = "http://www.w3.org/2005/Atom";
constexpr std::string_view kPodcastSpace = "http://www.itunes.com/dtds/podcast-1.0.dtd";
constexpr std::string_view kMediaSpace = "http://search.yahoo.com/mrss/";
constexpr size_t kLongestText = 16 * 1024;
constexpr size_t kMostEnclosures = 32;

bool is_podcast_space(std::string_view space) {
    return space.size() == kPodcastSpace.size() &&
           g_ascii_strncasecmp(space.data(), kPodcastSpace.data(), space.size()) == 0;
}

std::string trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// A text that was cut must not end in half a character.
std::string whole_characters(std::string text) {
    const char* end = nullptr;
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), &end)) {
        text.resize(static_cast<size_t>(end - text.data()));
    }
    return text;
}

void set_first(std::string& field, std::string value) {
    if (field.empty()) {
        field = std::move(value);
    }
}

}  // namespace

/// The elements of an entry whose text counts. Where two mean the same, the first one wins.
struct FeedReader::TextElement {
    Kind kind;
    bool podcast;  ///< in the podcasts' namespace, else in the feed's own
    std::string_view name;
    void (*set)(FeedEntry& entry, std::string text);
};
const FeedReader::TextElement FeedReader::kTextElements[] = {
    {Kind::kRss, false, "title", [](FeedEntry& e, std::string text) { set_first(e.title, std::move(text)); }},
    {Kind::kRss, false, "guid", [](FeedEntry& e, std::string text) { set_first(e.id, std::move(text)); }},
    {Kind::kRss, false, "link", [](FeedEntry& e, std::string text) { set_first(e.link, std::move(text)); }},
    {Kind::kRss, false, "description",
     [](FeedEntry& e, std::string text) { set_first(e.summary, std::move(text)); }},
    {Kind::kRss, false, "author",
     [](FeedEntry& e, std::string text) { set_first(e.author, std::move(text)); }},
    {Kind::kRss, false, "pubDate",
     [](FeedEntry& e, std::string text) { e.published = seconds_of_mail_time(text); }},
    {Kind::kRss, true, "author",
     [](FeedEntry& e, std::string text) { set_first(e.author, std::move(text)); }},
    {Kind::kRss, true, "summary",
     [](FeedEntry& e, std::string text) { set_first(e.summary, std::move(text)); }},
    {Kind::kRss, true, "duration",
     [](FeedEntry& e, std::string text) { e.duration_ms = milliseconds_of_duration(text); }},
    {Kind::kAtom, false, "title",
     [](FeedEntry& e, std::string text) { set_first(e.title, std::move(text)); }},
    {Kind::kAtom, false, "id", [](FeedEntry& e, std::string text) { set_first(e.id, std::move(text)); }},
    {Kind::kAtom, false, "summary",
     [](FeedEntry& e, std::string text) { set_first(e.summary, std::move(text)); }},
    {Kind::kAtom, false, "name",
     [](FeedEntry& e, std::string text) { set_first(e.author, std::move(text)); }},
    {Kind::kAtom, false, "published",
     [](FeedEntry& e, std::string text) { e.published = seconds_of_iso_time(text); }},
    {Kind::kAtom, false, "updated",
     [](FeedEntry& e, std::string text) { e.updated = seconds_of_iso_time(text); }},
    {Kind::kAtom, true, "duration",
     [](FeedEntry& e, std::string text) { e.duration_ms = milliseconds_of_duration(text); }},
};

FeedReader::FeedReader() : xml_(*this) {}

bool FeedReader::read(const char* bytes, size_t size) {
    return xml_.read(bytes, size) && reason_.empty();
}

bool FeedReader::finish() {
    return xml_.finish() && reason_.empty();
}

const std::string& FeedReader::reason() const {
    return reason_.empty() ? xml_.reason() : reason_;
}

void FeedReader::refuse(const char* why) {
    reason_ = why;
    xml_.stop();
}

void FeedReader::open(std::string_view space, std::string_view name, const XmlAttributes& attributes) {
    ++depth_;
    if (depth_ == 1) {
        open_root(space, name);
    } else if (text_depth_ > 0) {
        return;  // Markup within a text: the text goes on.
    } else if (entry_depth_ > 0) {
        open_in_entry(space, name, attributes);
    } else {
        open_in_feed(space, name, attributes);
    }
}

void FeedReader::open_root(std::string_view space, std::string_view name) {
    if (space.empty() && name == "rss") {
        kind_ = Kind::kRss;
    } else if (space == kAtomSpace && name == "feed") {
        kind_ = Kind::kAtom;
    } else {
        refuse("it is neither RSS nor Atom");
    }
}

void FeedReader::open_in_feed(std::string_view space, std::string_view name,
                              const XmlAttributes& attributes) {
    const std::string_view own = kind_ == Kind::kAtom ? kAtomSpace : "";
    if (space == own && name == (kind_ == Kind::kAtom ? "entry" : "item")) {
        if (entries_.size() == kMostEntries) {
            refuse("it has more entries than can be shown");
            return;
        }
        entry_depth_ = depth_;
        entry_ = {};
    } else if (is_podcast_space(space) && name == "image") {
        image_ = attributes.find("href");
    } else if (kind_ == Kind::kRss && space.empty() && name == "image") {
        image_depth_ = depth_;
    } else if (image_.empty() && space == own &&
               ((kind_ == Kind::kAtom && name == "logo") || (image_depth_ > 0 && name == "url"))) {
        text_depth_ = depth_;
        text_element_ = nullptr;
        text_.clear();
    }
}

void FeedReader::open_in_entry(std::string_view space, std::string_view name,
                               const XmlAttributes& attributes) {
    const bool podcast = is_podcast_space(space);
    const std::string_view own = kind_ == Kind::kAtom ? kAtomSpace : "";
    if (kind_ == Kind::kRss && space.empty() && name == "enclosure") {
        add_enclosure(
            {attributes.find("url"), attributes.find("type"), number_of_text(attributes.find("length"))});
    } else if (kind_ == Kind::kAtom && space == own && name == "link") {
        const std::string relation = attributes.find("rel");
        if (relation == "enclosure") {
            add_enclosure({attributes.find("href"), attributes.find("type"),
                           number_of_text(attributes.find("length"))});
        } else if (relation.empty() || relation == "alternate") {
            set_first(entry_.link, attributes.find("href"));
        }
    } else if (space == kMediaSpace && name == "content") {
        add_enclosure(
            {attributes.find("url"), attributes.find("type"), number_of_text(attributes.find("fileSize"))});
    } else if (space == kMediaSpace && name == "thumbnail") {
        set_first(entry_.image, attributes.find("url"));
    } else if (podcast && name == "image") {
        entry_.image = attributes.find("href");
    } else if (podcast || space == own) {
        const auto* const element =
            std::find_if(std::begin(kTextElements), std::end(kTextElements), [&](const TextElement& row) {
                return row.kind == kind_ && row.podcast == podcast && row.name == name;
            });
        if (element != std::end(kTextElements)) {
            text_depth_ = depth_;
            text_element_ = element;
            text_.clear();
        }
    }
}

/// The same file may be named in two ways.
void FeedReader::add_enclosure(FeedEnclosure enclosure) {
    std::vector<FeedEnclosure>& all = entry_.enclosures;
    const bool known = std::any_of(all.begin(), all.end(),
                                   [&](const FeedEnclosure& other) { return other.url == enclosure.url; });
    if (!enclosure.url.empty() && !known && all.size() < kMostEnclosures) {
        all.push_back(std::move(enclosure));
    }
}

void FeedReader::text(std::string_view piece) {
    if (text_depth_ > 0) {
        text_.append(piece.substr(0, kLongestText - text_.size()));
    }
}

void FeedReader::close() {
    if (depth_ == text_depth_) {
        std::string value = trimmed(whole_characters(text_));
        if (text_element_) {
            text_element_->set(entry_, std::move(value));
        } else {
            image_ = std::move(value);
        }
        text_depth_ = 0;
    } else if (depth_ == entry_depth_) {
        close_entry();
        entry_depth_ = 0;
    } else if (depth_ == image_depth_) {
        image_depth_ = 0;
    }
    --depth_;
}

void FeedReader::close_entry() {
    if (!entry_.enclosures.empty()) {
        entries_.push_back(std::move(entry_));
    }
}

}  // namespace engine
