#ifndef QRA_MEDIA_CONTENT_METADATA_XML_PROPERTIES_H
#define QRA_MEDIA_CONTENT_METADATA_XML_PROPERTIES_H

#include <string>
#include <string_view>
#include <vector>

namespace media_content {

/// A simple property that is looked for in an XML text, and what was found.
struct XmlProperty {
    std::string_view name;  ///< its namespace, a blank and its local name
    std::string value;      ///< empty where the text does not have it
};

/**
 * Finds properties in an XML text, such as an XMP packet, be they attributes or elements with a text. The
 * first one of a name counts. False when the text is no well-formed XML or has a document type (which XMP
 * never has); what was found before the fault stays.
 */
bool find_xml_properties(std::string_view xml, std::vector<XmlProperty>& wanted);

}  // namespace media_content

#endif
