#ifndef QRA_ENGINE_PLUGINS_WEBDAV_MULTISTATUS_READER_H
#define QRA_ENGINE_PLUGINS_WEBDAV_MULTISTATUS_READER_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/plugins/support/xml_reader.h"

namespace engine {

/// One resource as a WebDAV server describes it. Properties that the server does not have stay empty.
struct WebDavEntry {
    std::string href;  ///< as it came
    bool folder = false;
    std::string content_type;
    std::string display_name;
    uint64_t size = 0;
    int64_t modified = 0;  ///< seconds since 1970; 0: not known
    int64_t created = 0;
    std::string etag;
    std::string file_id;       ///< what the server's preview service knows it by
    bool has_preview = false;  ///< the server has a small picture of it
    std::vector<std::pair<std::string, std::string>> others;  ///< all further properties that are texts
};

/**
 * Reads the answer to a PROPFIND as it comes and hands each resource over as soon as it is complete.
 *
 * A property counts if its status is a success; a resource without an address, or with a status of its own
 * that is none, is left out. What it keeps is one resource.
 */
class MultistatusReader : private XmlHandler {
public:
    using TakeEntry = std::function<void(WebDavEntry& entry)>;

    /// `take_entry` may stop the reader and keep what the entry holds. @param keep_all fills `others` too
    explicit MultistatusReader(TakeEntry take_entry, bool keep_all = false);

    /// The next piece; false, with a reason, if this is no answer to a PROPFIND.
    bool read(const char* bytes, size_t size);
    /// The end; false if the answer is not complete.
    bool finish();
    void stop() { xml_.stop(); }
    /// What is wrong, for a sentence: "its XML is broken".
    const std::string& reason() const;

private:
    enum class Place {
        kOutside,
        kMultistatus,
        kResponse,
        kHref,
        kStatus,
        kPropstat,
        kPropstatStatus,
        kProp,
        kProperty,
        kResourceType,
        kElsewhere
    };
    struct Child;
    static const Child kChildren[];
    struct Property;
    static const Property kProperties[];
    struct Value {
        const Property* property;  ///< null for one that is only shown
        std::string name;          ///< of the latter, with its namespace
        std::string text;
    };

    void open(std::string_view space, std::string_view name, const XmlAttributes& attributes) override;
    void text(std::string_view piece) override;
    void close() override;

    static const Property* find_property(std::string_view space, std::string_view name);
    Place child_of(Place parent, std::string_view space, std::string_view name) const;
    bool collects(Place place) const;
    void close_property();
    void close_propstat();
    void close_response();

    const TakeEntry take_entry_;
    const bool keep_all_;
    XmlReader xml_;
    std::string reason_;
    std::vector<Place> places_;
    WebDavEntry entry_;
    std::string text_;
    bool text_complete_ = true;  ///< it is as long as it came
    Value value_{};              ///< of the property that is being read
    std::string status_;         ///< of the resource
    std::string propstat_status_;
    bool propstat_folder_ = false;
    std::vector<Value> propstat_;
};

}  // namespace engine

#endif
