#include "platform/nubelink/host/device.h"

#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"
#include "platform/support/glib_ptr.h"

namespace nbl {

namespace {

constexpr size_t kLongestText = 1024;
constexpr std::string_view kContentDirectory = "urn:schemas-upnp-org:service:ContentDirectory:";

/// The type of the service as it may stand in a header; empty if it is no content directory.
std::string content_directory_type(std::string_view type) {
    type = trimmed(type);
    const bool is_one = starts_with(type, kContentDirectory);
    return is_one && number_of(type.substr(kContentDirectory.size())) ? std::string(type) : std::string();
}

std::string absolute_address(const std::string& base, std::string_view relative) {
    const glib::TextPtr resolved(g_uri_resolve_relative(base.c_str(), std::string(trimmed(relative)).c_str(),
                                                        G_URI_FLAGS_PARSE_RELAXED, nullptr));
    return resolved != nullptr && is_web_address(resolved.get()) ? resolved.get() : std::string();
}

/// Gathers the parts of each <device>, and keeps those of the wanted one. Devices lie in each other: what
/// stands in an inner one's list is not the outer one's.
class DescriptionHandler : public XmlHandler {
public:
    DescriptionHandler(std::string_view device_id, DeviceDescription& wanted)
        : device_id_(device_id), wanted_(wanted) {}

    void open(const XmlName& name, const XmlAttributes&) override {
        text_.clear();
        if (name.local == "device") {
            devices_.emplace_back();
        } else if (name.local == "service") {
            service_ = {};
        }
        names_.emplace_back(name.local);
    }

    void text(std::string_view piece) override {
        if (text_.size() + piece.size() <= kLongestText) {
            text_ += piece;
        }
    }

    void close() override {
        const std::string name = std::move(names_.back());
        names_.pop_back();
        if (name == "device") {
            close_device();
        } else if (name == "URLBase") {
            base_ = trimmed(text_);
        } else if (!devices_.empty()) {
            close_part(name);
        }
        text_.clear();
    }

    bool found() const { return found_; }
    const std::string& base() const { return base_; }

private:
    struct Device {
        std::string id;
        DeviceDescription description;
    };

    void close_device() {
        if (!found_ && devices_.back().id == device_id_) {
            found_ = true;
            wanted_ = std::move(devices_.back().description);
        }
        devices_.pop_back();
    }

    void close_part(const std::string& name) {
        Device& device = devices_.back();
        if (name == "UDN") {
            device.id = trimmed(text_);
        } else if (name == "friendlyName") {
            device.description.name = trimmed(text_);
        } else if (name == "manufacturer") {
            device.description.maker = trimmed(text_);
        } else if (name == "serviceType") {
            service_.type = content_directory_type(text_);
        } else if (name == "controlURL") {
            service_.control_url = trimmed(text_);
        } else if (name == "SCPDURL") {
            service_.description_url = trimmed(text_);
        } else if (name == "service" && !service_.type.empty()) {
            device.description.content_directory = service_;
        }
    }

    const std::string_view device_id_;
    DeviceDescription& wanted_;
    bool found_ = false;
    std::string base_;
    std::string text_;
    std::vector<std::string> names_;
    std::vector<Device> devices_;
    ServiceAddress service_;
};

std::vector<const char*> pointers_to(const std::vector<std::string>& texts) {
    std::vector<const char*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& text : texts) {
        pointers.push_back(text.c_str());
    }
    return pointers;
}

}  // namespace

bool read_device_description(std::string document, const std::string& location, const std::string& device_id,
                             DeviceDescription& description) {
    mend_document(document);
    DescriptionHandler handler(device_id, description);
    read_xml(trimmed(document), handler);
    if (!handler.found()) {
        return false;
    }
    const std::string& base = handler.base().empty() ? location : handler.base();
    std::string& address = description.content_directory.control_url;
    address = absolute_address(base, address);
    std::string& actions = description.content_directory.description_url;
    actions = actions.empty() ? actions : absolute_address(base, actions);
    return !description.content_directory.type.empty() && !address.empty();
}

}  // namespace nbl

nbl_device_s::nbl_device_s(std::string device_id, nbl::DeviceDescription device_description,
                           std::vector<std::string> device_addresses)
    : id(std::move(device_id)),
      description(std::move(device_description)),
      addresses(std::move(device_addresses)),
      address_list(nbl::pointers_to(addresses)) {}
