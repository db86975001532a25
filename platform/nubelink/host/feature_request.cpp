#include "platform/nubelink/host/feature_request.h"

#include <algorithm>

#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/view_tree.h"

namespace nbl {

namespace {

constexpr char kVendorAction[] = "X_GetFeatureList";
constexpr char kStandardAction[] = "GetFeatureList";
constexpr char kServiceFeature[] = "DCM";

std::vector<FeaturePtr> features_in(const SoapAnswer& answer) {
    std::string document(answer.find("FeatureList"));
    mend_xml(document);
    return read_features(document);
}

bool is_refusal(int error) {
    return error == NBL_ERROR_NOT_SUPPORTED || error == NBL_ERROR_REFUSED || error == NBL_ERROR_BAD_ANSWER;
}

}  // namespace

void FeatureRequest::start(Session& session) {
    session_ = &session;
    call(kVendorAction, &FeatureRequest::on_vendor_features);
}

void FeatureRequest::call(const char* action, Step next) {
    const DevicePtr device = session_->device(device_id());
    if (device == nullptr) {
        session_->requests().end(token(), NBL_ERROR_DEVICE_GONE);
        return;
    }
    SoapQuestion question;
    question.action = action;
    call_ = std::make_unique<SoapCall>(session_->http(), device->description.content_directory, question,
                                       [this, next](const SoapAnswer& answer) {
                                           session_->on_call_error(device_id(), answer.error);
                                           // A server that does not know the action may still know the next
                                           // one; one that is not there does not.
                                           if (answer.error != NBL_ERROR_NONE && !is_refusal(answer.error)) {
                                               session_->requests().end(token(), answer.error);
                                           } else {
                                               (this->*next)(answer);
                                           }
                                       });
}

void FeatureRequest::on_vendor_features(const SoapAnswer& answer) {
    features_ = features_in(answer);
    if (has_sorted_containers()) {
        finish(NBL_FEATURE_SOURCE_SERVER);
    } else {
        call(kStandardAction, &FeatureRequest::on_standard_features);
    }
}

void FeatureRequest::on_standard_features(const SoapAnswer& answer) {
    std::vector<FeaturePtr> more = features_in(answer);
    std::move(more.begin(), more.end(), std::back_inserter(features_));
    if (has_sorted_containers()) {
        finish(NBL_FEATURE_SOURCE_SERVER);
    } else {
        call("GetSearchCapabilities", &FeatureRequest::on_search_capabilities);
    }
}

void FeatureRequest::on_search_capabilities(const SoapAnswer& answer) {
    if (!can_search_by_class(answer.find("SearchCaps"))) {
        finish(NBL_FEATURE_SOURCE_NONE);
        return;
    }
    add_service_views();
    finish(NBL_FEATURE_SOURCE_SERVICE);
}

void FeatureRequest::add_service_views() {
    auto feature = std::make_unique<nbl_feature_s>();
    feature->name = kServiceFeature;
    for (const View& view : all_views()) {
        add_container(*feature, view.id);
    }
    features_.push_back(std::move(feature));
}

bool FeatureRequest::has_sorted_containers() const {
    return std::any_of(features_.begin(), features_.end(), [](const FeaturePtr& feature) {
        return feature->name.find("DCM") != std::string::npos && !feature->containers.empty();
    });
}

void FeatureRequest::finish(int source) {
    provider_->feature_source = source;
    provider_->features_of = session_->device(device_id());
    if (const std::unique_ptr<Request> self = session_->requests().take(token())) {
        tell(source, NBL_ERROR_NONE);
    }
}

void FeatureRequest::answer(int error) {
    features_.clear();
    tell(NBL_FEATURE_SOURCE_NONE, error);
}

void FeatureRequest::tell(int source, int error) {
    std::vector<nbl_feature_t> handles;
    for (const FeaturePtr& feature : features_) {
        handles.push_back(feature.get());
    }
    nbl_feature_response response = {};
    response.token = token();
    response.features = handles.empty() ? nullptr : handles.data();
    response.length = static_cast<int>(handles.size());
    response.source = source;
    const DevicePtr device = Service::instance().device(device_id());
    client_.call(device.get(), &response, error, client_.user_data);
}

bool can_search_by_class(std::string_view search_capabilities) {
    while (!search_capabilities.empty()) {
        const std::string_view name = trimmed(next_field(search_capabilities, ','));
        if (name == "*" || name == "upnp:class") {
            return true;
        }
    }
    return false;
}

}  // namespace nbl
