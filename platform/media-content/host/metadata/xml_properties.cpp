#include "platform/media-content/host/metadata/xml_properties.h"

#include <expat.h>

#include <memory>

#include "platform/media-content/host/metadata/number_text.h"

namespace media_content {
namespace {

constexpr XML_Char kNamespaceSeparator = ' ';
constexpr size_t kLongestValue = 1024;

struct ParserDeleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<XML_ParserStruct, ParserDeleter>;

class PropertyFinder {
public:
    explicit PropertyFinder(std::vector<XmlProperty>& wanted)
        : wanted_(wanted), parser_(XML_ParserCreateNS(nullptr, kNamespaceSeparator)) {
        if (parser_) {
            XML_SetUserData(parser_.get(), this);
            XML_SetElementHandler(parser_.get(), on_start, on_end);
            XML_SetCharacterDataHandler(parser_.get(), on_text);
            XML_SetStartDoctypeDeclHandler(parser_.get(), on_document_type);
        }
    }

    bool parse(std::string_view xml) {
        return parser_ &&
               XML_Parse(parser_.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
    }

private:
    static PropertyFinder& self(void* user_data) { return *static_cast<PropertyFinder*>(user_data); }

    XmlProperty* find_missing(std::string_view name) {
        for (XmlProperty& property : wanted_) {
            if (property.name == name && property.value.empty()) {
                return &property;
            }
        }
        return nullptr;
    }

    static void on_start(void* user_data, const XML_Char* name, const XML_Char** attributes) {
        PropertyFinder& finder = self(user_data);
        for (; attributes[0]; attributes += 2) {
            if (XmlProperty* property = finder.find_missing(attributes[0])) {
                property->value = trimmed(attributes[1]);
            }
        }
        finder.open_ = finder.find_missing(name);
        finder.text_.clear();
    }

    static void on_text(void* user_data, const XML_Char* text, int length) {
        PropertyFinder& finder = self(user_data);
        if (finder.open_ && finder.text_.size() < kLongestValue) {
            finder.text_.append(text, static_cast<size_t>(length));
        }
    }

    static void on_end(void* user_data, const XML_Char*) {
        PropertyFinder& finder = self(user_data);
        if (finder.open_) {
            finder.open_->value = trimmed(finder.text_);
            finder.open_ = nullptr;
        }
    }

    // Entities are the one way in which a small text can become a large one.
    static void on_document_type(void* user_data, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        XML_StopParser(self(user_data).parser_.get(), XML_FALSE);
    }

    std::vector<XmlProperty>& wanted_;
    ParserPtr parser_;
    XmlProperty* open_ = nullptr;  ///< the property whose element is open
    std::string text_;
};

}  // namespace

bool find_xml_properties(std::string_view xml, std::vector<XmlProperty>& wanted) {
    xml = trimmed(xml);
    return PropertyFinder(wanted).parse(xml);
}

}  // namespace media_content
