// A stranger's XML, read as metadata and as a table of contents.
#include <cstdint>
#include <string>
#include <vector>

#include "libqra-agent/source/scsa/qra_dmp_parse_xml.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CQRADmpParseXml parser;
    _stDMPMETADATA metadata;
    parser.ParseDMPMetaData(text, metadata);
    std::vector<std::string> files = {"TableOfContents.xml", "meta.xml"};
    int index = -1;
    parser.ParseDMPTableOfContents(text, files, index);
    if (index < -1 || index >= static_cast<int>(files.size())) {
        __builtin_trap();
    }
    std::string path;
    parser.ParseDMPTableOfContents(text, path);
    return 0;
}
