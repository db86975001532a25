#include "platform/nubelink/host/xml.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <climits>

#include "platform/nubelink/host/glib_ptr.h"
#include "xml_turn.h"

namespace nbl {

namespace {

using ParserPtr = std::unique_ptr<xmlParserCtxt, Release<xmlFreeParserCtxt>>;

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

/// The parser's callbacks come to this.
struct Reading {
    XmlHandler& handler;
    xmlParserCtxtPtr context;
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
    if (!reading->refused && length > 0) {
        reading->handler.text({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
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

bool read_xml(std::string_view document, XmlHandler& handler) {
    if (document.empty() || document.size() > INT_MAX) {
        return false;
    }
    const XmlTurn turn;
    const ParserPtr context(xmlCreateMemoryParserCtxt(document.data(), static_cast<int>(document.size())));
    if (context == nullptr) {
        return false;
    }
    xmlSAXHandler calls = make_calls();
    Reading reading{handler, context.get()};
    *context->sax = calls;
    context->userData = &reading;
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_RECOVER | XML_PARSE_IGNORE_ENC);
    xmlParseDocument(context.get());
    return context->wellFormed != 0 && !reading.refused;
}

}  // namespace nbl
