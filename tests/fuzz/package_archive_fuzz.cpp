// A stranger's container: it is listed, and its first files are read.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/scsa-dmp/host/container_digest.h"
#include "platform/scsa-dmp/host/entry_name.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    scsa_host::MemorySource source(data, size);
    scsa_host::ContainerReader walked(source);
    scsa_host::ContainerDigest digest;
    if (walked.open()) {
        scsa_host::take_digest(walked, digest);
    }
    std::vector<std::string>& names = digest.names;
    names.resize(std::min<size_t>(names.size(), 4));
    for (const std::string& name : names) {
        scsa_host::kind_of(name);
        scsa_host::ContainerReader reader(source);
        scsa_host::ImageBytes bytes;
        if (reader.find(name)) {
            reader.read(bytes);
        }
        scsa_host::ContainerReader other(source);
        const auto place = other.find(name) ? other.stored_place() : std::nullopt;
        if (place && (place->offset > size || place->length > size - place->offset)) {
            __builtin_trap();
        }
    }
    return 0;
}
