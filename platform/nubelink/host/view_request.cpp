#include "platform/nubelink/host/view_request.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/nubelink/host/feature_request.h"

namespace nbl {

ViewRequest::ViewRequest(nbl_provider_t provider, std::string id, std::unique_ptr<Request> plain,
                         ItemClient client)
    : ItemRequest(provider, client), id_(std::move(id)), plain_(std::move(plain)) {}

ViewRequest::~ViewRequest() {
    if (feature_token_ != 0) {
        session().requests().take(feature_token_);
    }
}

void ViewRequest::begin() {
    // A server that has come anew may have come with others.
    const DevicePtr& known = provider()->features_of;
    if (known != nullptr && known == session().device(device_id())) {
        go_on();
        return;
    }
    RequestTable& requests = session().requests();
    feature_token_ = requests.new_token();
    requests.start(
        feature_token_,
        std::make_unique<FeatureRequest>(provider(), FeatureClient{&ViewRequest::on_features, this}),
        &session());
}

void ViewRequest::on_features(nbl_device_t, nbl_feature_response*, int error, void* self) {
    auto* request = static_cast<ViewRequest*>(self);
    request->feature_token_ = 0;
    if (error != NBL_ERROR_NONE) {
        request->fail(error);
        return;
    }
    request->session().requests().extend(request->token());
    request->go_on();
}

void ViewRequest::go_on() {
    if (provider()->feature_source == NBL_FEATURE_SOURCE_SERVICE) {
        ask();
    } else {
        become_plain();
    }
}

void ViewRequest::become_plain() {
    RequestTable& requests = session().requests();
    Session& session_now = session();
    const int own_token = token();
    std::unique_ptr<Request> plain = std::move(plain_);
    requests.take(own_token);  // This request is gone from here on.
    requests.start(own_token, std::move(plain), &session_now);
}

void ViewRequest::ask() {
    question_ = session().views().ask(
        provider(), *view_of(id_), wants_fresh(),
        [this](int error, const ViewTree* tree) { take_tree(error, tree); },
        [this] { session().requests().extend(token()); });
}

void ViewRequest::take_tree(int error, const ViewTree* tree) {
    const ViewTree::Node* node = tree != nullptr ? tree->find(id_) : nullptr;
    if (node != nullptr) {
        take_node(*node);
    } else {
        fail(error != NBL_ERROR_NONE ? error : NBL_ERROR_ITEM_NOT_EXIST);
    }
}

ViewBrowseRequest::ViewBrowseRequest(nbl_provider_t provider, const nbl_item_s& folder, int start, int count,
                                     ItemClient client)
    : ViewRequest(provider, std::string(folder.text("@id")),
                  std::make_unique<BrowseRequest>(provider, folder, start, count, client), client),
      start_(start),
      count_(count) {}

bool ViewBrowseRequest::wants_fresh() const {
    return id() == view_of(id())->id && start_ == 0;
}

void ViewBrowseRequest::take_node(const ViewTree::Node& node) {
    const size_t begin = std::min(static_cast<size_t>(start_), node.size());
    const size_t end = std::min(begin + static_cast<size_t>(count_), node.size());
    std::vector<ItemPtr> items;
    items.reserve(end - begin);
    for (size_t i = begin; i < end; ++i) {
        items.push_back(node.groups.empty() ? share(node.items[i])
                                            : ViewTree::item_of(*node.groups[i], provider()));
    }
    finish(items, start_, static_cast<int64_t>(node.size()));
}

ViewItemRequest::ViewItemRequest(nbl_provider_t provider, const std::string& id, ItemClient client)
    : ViewRequest(provider, id, std::make_unique<BrowseItemRequest>(provider, id, client), client) {}

void ViewItemRequest::take_node(const ViewTree::Node& node) {
    std::vector<ItemPtr> items;
    items.push_back(ViewTree::item_of(node, provider()));
    finish(items, 0, 1);
}

}  // namespace nbl
