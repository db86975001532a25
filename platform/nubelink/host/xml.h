#ifndef QRA_NUBELINK_XML_H
#define QRA_NUBELINK_XML_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nbl {

/// An element's or attribute's name: the namespace and the prefix are empty where there is none. A prefix
/// that the document does not declare comes with an empty namespace.
struct XmlName {
    std::string_view space;
    std::string_view prefix;
    std::string_view local;
};

/// The attributes of an element, while it is handed over.
class XmlAttributes {
public:
    XmlAttributes(const unsigned char** values, int count) : values_(values), count_(count) {}
    int count() const { return count_; }
    XmlName name(int index) const;
    std::string_view value(int index) const;
    /// The value of the attribute of that local name, in whatever namespace; empty for none.
    std::string_view find(std::string_view local) const;

private:
    const unsigned char** values_;  ///< five to each attribute, as the parser has them
    int count_;
};

/// Takes an XML document in its order.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void open(const XmlName& name, const XmlAttributes& attributes) = 0;
    /// A piece of text; one text may come in several.
    virtual void text(std::string_view piece) = 0;
    virtual void close() = 0;
};

/// How deep elements may lie.
constexpr int kDeepestXml = 64;

/// How many attributes a tag may have.
constexpr size_t kMostXmlAttributes = 64;

/**
 * Hands a document from a stranger to `handler`. Where it is broken, what can be understood is handed over
 * all the same. A document type ends the reading, and with it entities, attribute defaults and everything
 * that makes a parser fetch or expand; so do elements that lie deeper than kDeepestXml, and tags with more
 * than kMostXmlAttributes.
 *
 * Holds the process's turn at libxml2 (xml_turn.h) all the while: `handler` must not wait for anybody, nor
 * read another document.
 *
 * @param document  UTF-8 as mend_xml() leaves it; an encoding that it declares is not looked at
 * @return whether it was well-formed to its end
 */
bool read_xml(std::string_view document, XmlHandler& handler);

}  // namespace nbl

#endif
