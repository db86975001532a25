#include "platform/nubelink/host/xml.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <climits>
#include <string>

#include "platform/nubelink/host/text.h"
#include "platform/support/release.h"
#include "xml_turn.h"

namespace nbl {

namespace {

using ParserPtr = std::unique_ptr<xmlParserCtxt, support::Release<xmlFreeParserCtxt>>;

/// Somebody else in the process may clean up libxml2's global state, but not meanwhile.
class XmlTurn {
public:
    XmlTurn() { xml_turn_begin(); }
    ~XmlTurn() { xml_turn_end(); }
    XmlTurn(const XmlTurn&) = delete;
    XmlTurn& operator=(const XmlTurn&) = delete;
};

std::string_view view_of(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : std::string_view();
}

/// Stands for the long text in the document that the parser gets. U+FDD0, which is for use within programs.
constexpr std::string_view kStandIn = "\xEF\xB7\x90";

/// The one long text of an envelope: a whole document, escaped. The parser would hand it over in as many
/// pieces as it has references, and take longer for that than for all the rest.
struct LongText {
    size_t begin = 0;
    size_t size = 0;  ///< 0: there is none
};

/// The tag that a text begins with.
struct Tag {
    size_t end = std::string_view::npos;  ///< behind it; none where it does not end
    size_t attributes = 0;                ///< with what it says of namespaces
};

Tag read_tag(std::string_view text) {
    Tag tag;
    char quote = '\0';
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '=') {
            ++tag.attributes;
        } else if (c == '>') {
            tag.end = i + 1;
            break;
        }
    }
    return tag;
}

/// The document up to the first tag with more attributes than any tag has. The parser compares each of them
/// with all others: it would be at a tag of a megabyte for minutes.
std::string_view before_endless_tag(std::string_view document) {
    // A tag with that many attributes is longer than this.
    constexpr size_t kShort = size_t{4} * kMostXmlAttributes;
    size_t tag = document.find('<');
    while (tag != std::string_view::npos) {
        const size_t next = document.find('<', tag + 1);
        const std::string_view piece = document.substr(tag, next - tag);
        if (piece.size() > kShort && read_tag(piece).attributes > kMostXmlAttributes) {
            return document.substr(0, tag);
        }
        tag = next;
    }
    return document;
}

/// Whether the text means the same to the parser as to without_entities().
bool is_simple(std::string_view text) {
    return text.find('\r') == std::string_view::npos && text.find("&#") == std::string_view::npos;
}

/// Finds it among the first tags of a document in which there are only tags and texts.
LongText find_long_text(std::string_view document) {
    constexpr size_t kLong = 2000;
    constexpr int kTags = 64;
    size_t tag = document.find('<');
    for (int i = 0; i < kTags && tag != std::string_view::npos; ++i) {
        const size_t next = document.find('<', tag + 1);
        const std::string_view piece = document.substr(tag, next - tag);
        if (starts_with(piece, "<!") || (starts_with(piece, "<?") && tag != 0)) {
            break;
        }
        const size_t end =
            piece.size() > kLong && next != std::string_view::npos ? read_tag(piece).end : piece.size();
        if (end < piece.size() && piece.size() - end > kLong) {
            const bool fits = is_simple(piece.substr(end)) &&
                              document.find(kStandIn) == std::string_view::npos &&
                              document.find("<!", next) == std::string_view::npos;
            return fits ? LongText{tag + end, piece.size() - end} : LongText();
        }
        tag = next;
    }
    return {};
}

/// The parser's callbacks come to this.
struct Reading {
    XmlHandler& handler;
    std::string_view long_text;  ///< as the document has it; what stands for it is in what the parser gets
    xmlParserCtxtPtr context = nullptr;
    int depth = 0;
    bool refused = false;

    void refuse() {
        refused = true;
        xmlStopParser(context);
    }
};

void on_open(void* self, const xmlChar* name, const xmlChar* prefix, const xmlChar* space, int,
             const xmlChar**, int attribute_count, int, const xmlChar** attributes) {
    auto* reading = static_cast<Reading*>(self);
    if (reading->refused) {
        return;
    }
    if (++reading->depth > kDeepestXml) {
        reading->refuse();
        return;
    }
    reading->handler.open({view_of(space), view_of(prefix), view_of(name)},
                          XmlAttributes(attributes, attribute_count));
}

void on_close(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
    auto* reading = static_cast<Reading*>(self);
    if (!reading->refused && reading->depth > 0) {
        --reading->depth;
        reading->handler.close();
    }
}

void on_text(void* self, const xmlChar* text, int length) {
    auto* reading = static_cast<Reading*>(self);
    if (reading->refused || length <= 0) {
        return;
    }
    const std::string_view piece(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    if (!reading->long_text.empty() && piece == kStandIn) {
        reading->handler.text(without_entities(reading->long_text));
    } else {
        reading->handler.text(piece);
    }
}

void on_document_type(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
    static_cast<Reading*>(self)->refuse();
}

// The parser's own word on what is broken is not for people.
void on_error(void*, xmlErrorPtr) {}

xmlSAXHandler make_calls() {
    xmlSAXHandler calls = {};
    calls.initialized = XML_SAX2_MAGIC;
    calls.startElementNs = on_open;
    calls.endElementNs = on_close;
    calls.characters = on_text;
    calls.ignorableWhitespace = on_text;
    calls.cdataBlock = on_text;
    calls.internalSubset = on_document_type;
    calls.serror = on_error;
    return calls;
}

bool parse(std::string_view document, Reading reading) {
    const XmlTurn turn;
    const ParserPtr context(xmlCreateMemoryParserCtxt(document.data(), static_cast<int>(document.size())));
    if (context == nullptr) {
        return false;
    }
    reading.context = context.get();
    *context->sax = make_calls();
    context->userData = &reading;
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_RECOVER | XML_PARSE_IGNORE_ENC);
    xmlParseDocument(context.get());
    return context->wellFormed != 0 && !reading.refused;
}

}  // namespace

XmlName XmlAttributes::name(int index) const {
    const unsigned char* const* attribute = values_ + 5 * static_cast<ptrdiff_t>(index);
    return {view_of(attribute[2]), view_of(attribute[1]), view_of(attribute[0])};
}

std::string_view XmlAttributes::value(int index) const {
    const unsigned char* const* attribute = values_ + 5 * static_cast<ptrdiff_t>(index);
    return {reinterpret_cast<const char*>(attribute[3]), static_cast<size_t>(attribute[4] - attribute[3])};
}

std::string_view XmlAttributes::find(std::string_view local) const {
    for (int i = 0; i < count_; ++i) {
        if (name(i).local == local) {
            return value(i);
        }
    }
    return {};
}

bool read_xml(std::string_view whole_document, XmlHandler& handler) {
    const std::string_view document = before_endless_tag(whole_document);
    if (document.empty() || document.size() > INT_MAX) {
        return false;
    }
    const LongText text = find_long_text(document);
    if (text.size == 0) {
        return parse(document, {handler, {}});
    }
    std::string shortened(document.substr(0, text.begin));
    shortened += kStandIn;
    shortened += document.substr(text.begin + text.size);
    return parse(shortened, {handler, document.substr(text.begin, text.size)});
}

}  // namespace nbl
