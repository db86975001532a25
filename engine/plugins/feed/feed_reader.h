#ifndef QRA_ENGINE_PLUGINS_FEED_FEED_READER_H
#define QRA_ENGINE_PLUGINS_FEED_FEED_READER_H

#include <cstdint>
#include <string>
#include <vector>

#include "engine/plugins/support/xml_reader.h"

namespace engine {

/// A file that an entry of a feed names.
struct FeedEnclosure {
    std::string url;  ///< as it came
    std::string type;
    uint64_t size = 0;
};

struct FeedEntry {
    std::string title;
    std::string id;
    std::string link;
    std::string author;
    std::string summary;
    std::string image;
    int64_t published = 0;  ///< seconds since 1970
    int64_t updated = 0;
    uint64_t duration_ms = 0;
    std::vector<FeedEnclosure> enclosures;
};

/**
 * Reads a feed, RSS 2.0 or Atom, as it comes, and keeps the entries that name files.
 *
 * Long texts are cut, and a feed of more than kMostEntries is refused.
 */
class FeedReader : private XmlHandler {
public:
    static constexpr size_t kMostEntries = 20'000;

    FeedReader();

    /// The next piece; false, with a reason, if this is no feed.
    bool read(const char* bytes, size_t size);
    /// The end; false if the feed is not complete.
    bool finish();
    /// What is wrong, for a sentence: "its XML is broken".
    const std::string& reason() const;

    const std::vector<FeedEntry>& entries() const { return entries_; }
    /// The feed's own picture; empty for none.
    const std::string& image() const { return image_; }

private:
    enum class Kind { kUnknown, kRss, kAtom };
    struct TextElement;
    static const TextElement kTextElements[];

    void open(std::string_view space, std::string_view name, const XmlAttributes& attributes) override;
    void text(std::string_view piece) override;
    void close() override;

    void open_root(std::string_view space, std::string_view name);
    void open_in_entry(std::string_view space, std::string_view name, const XmlAttributes& attributes);
    void open_in_feed(std::string_view space, std::string_view name, const XmlAttributes& attributes);
    void add_enclosure(FeedEnclosure enclosure);
    void close_entry();
    void refuse(const char* why);

    XmlReader xml_;
    std::string reason_;
    Kind kind_ = Kind::kUnknown;
    int depth_ = 0;
    int entry_depth_ = 0;  ///< 0: outside of an entry
    int text_depth_ = 0;   ///< 0: the text is of no interest
    int image_depth_ = 0;  ///< of RSS's picture element
    const TextElement* text_element_ = nullptr;
    std::string text_;
    FeedEntry entry_;
    std::vector<FeedEntry> entries_;
    std::string image_;
};

}  // namespace engine

#endif
