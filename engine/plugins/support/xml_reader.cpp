#include "engine/plugins/support/xml_reader.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <algorithm>

#include "platform/support/release.h"

namespace engine {

namespace {

using ContextPtr = std::unique_ptr<xmlParserCtxt, support::Release<xmlFreeParserCtxt>>;

constexpr size_t kLargestPiece = 64 << 10;
// The parser keeps a tag until it has all of it, and then compares each attribute with all others: at a tag
// of a megabyte it would be for minutes.
constexpr ptrdiff_t kLongestTag = 64 << 10;

std::string_view view_of(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : std::string_view();
}

}  // namespace

std::string XmlAttributes::find(std::string_view name) const {
    for (int i = 0; i < count_; ++i) {
        const unsigned char* const* attribute = values_ + 5 * static_cast<ptrdiff_t>(i);
        const bool has_space = attribute[2] != nullptr;
        if (!has_space && view_of(attribute[0]) == name) {
            return {attribute[3], attribute[4]};
        }
    }
    return {};
}

/// The parser's callbacks come to this.
struct XmlReader::Parser {
    explicit Parser(XmlHandler& to);

    void refuse(const char* why) {
        if (reason.empty()) {
            reason = why;
        }
        stop();
    }
    void stop() {
        stopped = true;
        xmlStopParser(context.get());
    }

    static void on_open(void* self, const xmlChar* name, const xmlChar* prefix, const xmlChar* space,
                        int space_count, const xmlChar** spaces, int attribute_count, int default_count,
                        const xmlChar** attributes);
    static void on_close(void* self, const xmlChar* name, const xmlChar* prefix, const xmlChar* space);
    static void on_text(void* self, const xmlChar* text, int length);
    static void on_document_type(void* self, const xmlChar* name, const xmlChar* id, const xmlChar* place);
    // The parser's own word on what is broken is not for people.
    static void on_error(void*, xmlErrorPtr) {}

    XmlHandler& handler;
    ContextPtr context;
    std::string reason;
    int depth = 0;
    bool stopped = false;
};

XmlReader::Parser::Parser(XmlHandler& to) : handler(to) {
    xmlSAXHandler calls = {};
    calls.initialized = XML_SAX2_MAGIC;
    calls.startElementNs = on_open;
    calls.endElementNs = on_close;
    calls.characters = on_text;
    calls.cdataBlock = on_text;
    calls.internalSubset = on_document_type;
    calls.serror = on_error;
    context.reset(xmlCreatePushParserCtxt(&calls, this, nullptr, 0, nullptr));
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET);
}

void XmlReader::Parser::on_open(void* self, const xmlChar* name, const xmlChar*, const xmlChar* space, int,
                                const xmlChar**, int attribute_count, int, const xmlChar** attributes) {
    auto* parser = static_cast<Parser*>(self);
    if (parser->stopped) {
        return;
    }
    if (++parser->depth > kDeepest) {
        parser->refuse("its elements lie too deep");
        return;
    }
    parser->handler.open(view_of(space), view_of(name), XmlAttributes(attributes, attribute_count));
}

void XmlReader::Parser::on_close(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
    auto* parser = static_cast<Parser*>(self);
    if (!parser->stopped) {
        --parser->depth;
        parser->handler.close();
    }
}

void XmlReader::Parser::on_text(void* self, const xmlChar* text, int length) {
    auto* parser = static_cast<Parser*>(self);
    if (!parser->stopped && length > 0) {
        parser->handler.text({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
    }
}

void XmlReader::Parser::on_document_type(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
    static_cast<Parser*>(self)->refuse("it has a document type, which is not accepted");
}

XmlReader::XmlReader(XmlHandler& handler) : parser_(std::make_unique<Parser>(handler)) {}

XmlReader::~XmlReader() = default;

bool XmlReader::read(const char* bytes, size_t size) {
    while (size > 0 && !parser_->stopped) {
        const size_t piece = std::min(size, kLargestPiece);
        if (xmlParseChunk(parser_->context.get(), bytes, static_cast<int>(piece), 0) != XML_ERR_OK &&
            !parser_->context->wellFormed) {
            parser_->refuse("its XML is broken");
        }
        const xmlParserInput* const input = parser_->context->input;
        if (!parser_->stopped && input != nullptr && input->end - input->cur > kLongestTag) {
            parser_->refuse("one of its tags is too long");
        }
        bytes += piece;
        size -= piece;
    }
    return parser_->reason.empty();
}

bool XmlReader::finish() {
    if (!parser_->stopped) {
        xmlParseChunk(parser_->context.get(), nullptr, 0, 1);
        if (!parser_->context->wellFormed) {
            parser_->refuse("its XML is broken");
        }
    }
    return parser_->reason.empty();
}

void XmlReader::stop() {
    parser_->stop();
}

const std::string& XmlReader::reason() const {
    return parser_->reason;
}

}  // namespace engine
