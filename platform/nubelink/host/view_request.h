#ifndef QRA_NUBELINK_VIEW_REQUEST_H
#define QRA_NUBELINK_VIEW_REQUEST_H

#include <memory>
#include <string>

#include "platform/nubelink/host/browse_request.h"
#include "platform/nubelink/host/ordered_views.h"

namespace nbl {

/**
 * A request for a container of an ordered view. Whose the container is decides what the server's features
 * say: if it is the server's own, the request becomes the plain one that it was made with, under the same
 * token.
 */
class ViewRequest : public ItemRequest {
public:
    ViewRequest(nbl_provider_t provider, std::string id, std::unique_ptr<Request> plain, ItemClient client);
    ~ViewRequest() override;

protected:
    /// Answers from the container.
    virtual void take_node(const ViewTree::Node& node) = 0;
    /// Whether the server is asked for changes first.
    virtual bool wants_fresh() const = 0;
    const std::string& id() const { return id_; }

private:
    static void on_features(nbl_device_t device, nbl_feature_response* response, int error, void* self);
    void begin() override;
    void go_on();
    void ask();
    void become_plain();
    void take_tree(int error, const ViewTree* tree);

    const std::string id_;
    std::unique_ptr<Request> plain_;
    int feature_token_ = 0;  ///< of the request for the server's features, while it is open
    std::unique_ptr<OrderedViews::Question> question_;
};

/// Children of a container, from `start` on, `count` at most.
class ViewBrowseRequest : public ViewRequest {
public:
    ViewBrowseRequest(nbl_provider_t provider, const nbl_item_s& folder, int start, int count,
                      ItemClient client);

private:
    void take_node(const ViewTree::Node& node) override;
    bool wants_fresh() const override;

    const int start_;
    const int count_;
};

/// The container itself.
class ViewItemRequest : public ViewRequest {
public:
    ViewItemRequest(nbl_provider_t provider, const std::string& id, ItemClient client);

private:
    void take_node(const ViewTree::Node& node) override;
    bool wants_fresh() const override { return true; }
};

}  // namespace nbl

#endif
