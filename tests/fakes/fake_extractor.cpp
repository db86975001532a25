#include "tests/fakes/fake_extractor.h"

#include <cstdlib>
#include <cstring>

#include "scsa_dmp.h"

namespace fake_extractor {

std::map<std::string, int> types;
std::map<std::string, Package> packages;
std::vector<std::string> calls;

void reset() {
    types.clear();
    packages.clear();
    calls.clear();
}

namespace {

template <class Key>
bool give(const std::map<Key, std::string>& texts, const Key& key, std::string& out) {
    const auto it = texts.find(key);
    if (it != texts.end()) {
        out = it->second;
    }
    return it != texts.end();
}

template <class Key>
bool give(const std::map<Key, std::string>& images, const Key& key, unsigned long long& size, char** buffer) {
    std::string bytes;
    if (!give(images, key, bytes)) {
        return false;
    }
    size = bytes.size();
    *buffer = static_cast<char*>(std::malloc(bytes.size()));
    std::memcpy(*buffer, bytes.data(), bytes.size());
    return true;
}

}  // namespace
}  // namespace fake_extractor

namespace SCSA_DMP {

using namespace fake_extractor;

bool MetaDataExtractor::GetFileList(std::string package, std::vector<std::string>& files) {
    calls.push_back("GetFileList " + package);
    const auto& list = packages[package].files;
    files = list.value_or(std::vector<std::string>());
    return list.has_value();
}

int MetaDataExtractor::GetFileType(std::string entry) {
    const auto it = types.find(entry);
    return it != types.end() ? it->second : 1;
}

bool MetaDataExtractor::GetXML(std::string package, std::string entry, std::string& xml) {
    calls.push_back("GetXML " + package + " " + entry);
    return give(packages[package].xml, entry, xml);
}

bool MetaDataExtractor::GetXMLFromSFF(std::string package, std::string entry, std::string& xml) {
    calls.push_back("GetXMLFromSFF " + package + " " + entry);
    return give(packages[package].sff_xml, entry, xml);
}

bool MetaDataExtractor::GetImageBuffer(std::string package, std::string image_path, unsigned long long& size,
                                       char** buffer) {
    calls.push_back("GetImageBuffer " + package + " " + image_path);
    return give(packages[package].images, image_path, size, buffer);
}

bool MetaDataExtractor::GetImageBufferFromSFF(std::string package, std::string image_path,
                                              std::string track_reference, unsigned long long& size,
                                              char** buffer) {
    calls.push_back("GetImageBufferFromSFF " + package + " " + image_path + " " + track_reference);
    return give(packages[package].sff_images, {image_path, track_reference}, size, buffer);
}

}  // namespace SCSA_DMP
