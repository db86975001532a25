#ifndef QRA_ENGINE_PLUGINS_SUPPORT_XML_READER_H
#define QRA_ENGINE_PLUGINS_SUPPORT_XML_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace engine {

/// The attributes of an element, while it is handed over.
class XmlAttributes {
public:
    XmlAttributes(const unsigned char** values, int count) : values_(values), count_(count) {}
    /// The value of the attribute of that name that is in no namespace; empty for none.
    std::string find(std::string_view name) const;

private:
    const unsigned char** values_;  ///< five to each attribute, as the parser has them
    int count_;
};

/// Takes an XML document in its order. Elements come with their namespace, whatever prefix stands for it.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void open(std::string_view space, std::string_view name, const XmlAttributes& attributes) = 0;
    /// A piece of text; one text may come in several.
    virtual void text(std::string_view piece) = 0;
    virtual void close() = 0;
};

/**
 * Reads an XML document from a stranger, piece by piece as it comes.
 *
 * A document type is refused, and with it entities, attribute defaults and everything that makes a parser
 * fetch or expand; elements lie at most kDeepest deep, and no tag is longer than 128 KiB. What it keeps does
 * not grow with the document.
 */
class XmlReader {
public:
    static constexpr int kDeepest = 64;

    explicit XmlReader(XmlHandler& handler);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    /// The next piece; false if the document is refused. Nothing more is handed over then.
    bool read(const char* bytes, size_t size);
    /// The end; false if the document is refused or not complete.
    bool finish();
    /// Ends the reading from inside the handler: nothing more is handed over.
    void stop();
    /// Why the document was refused.
    const std::string& reason() const;

private:
    struct Parser;
    const std::unique_ptr<Parser> parser_;
};

}  // namespace engine

#endif
