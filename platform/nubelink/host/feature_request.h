#ifndef QRA_NUBELINK_FEATURE_REQUEST_H
#define QRA_NUBELINK_FEATURE_REQUEST_H

#include <memory>
#include <optional>
#include <vector>

#include "platform/nubelink/host/feature_reader.h"
#include "platform/nubelink/host/request_table.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/soap_call.h"

namespace nbl {

/// Whom a feature request answers.
struct FeatureClient {
    nbl_feature_cb call = nullptr;
    void* user_data = nullptr;
};

/**
 * The features of a server: by the vendors' action, else by the standard's. A server whose features hold no
 * sorted containers is asked whether it can search.
 */
class FeatureRequest : public Request {
public:
    FeatureRequest(nbl_provider_t provider, FeatureClient client)
        : Request(provider->id), provider_(provider), client_(client) {}

    void start(Session& session) override;
    void answer(int error) override;

private:
    using Step = void (FeatureRequest::*)(const SoapAnswer&);
    void call(const char* action, Step next);
    void on_vendor_features(const SoapAnswer& answer);
    void on_standard_features(const SoapAnswer& answer);
    void on_search_capabilities(const SoapAnswer& answer);
    bool has_sorted_containers() const;
    void add_service_views();
    void finish(int source);
    void tell(int source, int error);

    nbl_provider_t const provider_;
    const FeatureClient client_;
    Session* session_ = nullptr;
    std::vector<FeaturePtr> features_;
    std::unique_ptr<SoapCall> call_;
};

/// Whether a server that says so can be searched by the class of objects.
bool can_search_by_class(std::string_view search_capabilities);

}  // namespace nbl

#endif
