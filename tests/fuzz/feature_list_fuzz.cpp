// What a media server says that it can do, and what it says of itself: bounded, and of addresses only such as
// can be spoken to.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/nubelink/host/bookmark_request.h"
#include "platform/nubelink/host/device.h"
#include "platform/nubelink/host/feature_reader.h"
#include "platform/nubelink/host/feature_request.h"
#include "platform/nubelink/host/text.h"

using namespace nbl;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void read_list(std::string document) {
    mend_xml(document);
    const std::vector<FeaturePtr> features = read_features(document);
    require(features.size() <= kMostFeatures);
    for (const FeaturePtr& feature : features) {
        require(feature->containers.size() <= kMostContainers);
        require(feature->containers.size() == feature->container_list.size());
        for (const auto& container : feature->containers) {
            require(!container->id.empty());
        }
    }
}

void read_description(const std::string& document) {
    DeviceDescription description;
    if (read_device_description(document, "http://127.0.0.1:80/d.xml", "uuid:1", description)) {
        require(is_web_address(description.content_directory.control_url.c_str()));
        require(description.content_directory.type.find_first_of("\r\n\"") == std::string::npos);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    read_list(bytes);
    read_description(bytes);
    read_announced_actions(bytes);
    can_search_by_class(bytes);
    return 0;
}
