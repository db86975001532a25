// A stranger's SFF: its XML and its pictures are asked for, whatever its boxes say.
#include <cstdint>
#include <string>

#include "platform/scsa-dmp/host/sff_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    scsa_host::MemorySource source(data, size);
    std::string xml;
    scsa_host::SffReader(source).read_xml(xml);
    for (const char* const reference : {"1", "urn:track:2", "cover.jpg"}) {
        scsa_host::ImageBytes image;
        scsa_host::SffReader(source).read_image(reference, image);
    }
    return 0;
}
