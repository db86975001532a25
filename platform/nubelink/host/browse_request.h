#ifndef QRA_NUBELINK_BROWSE_REQUEST_H
#define QRA_NUBELINK_BROWSE_REQUEST_H

#include <memory>
#include <string>
#include <vector>

#include "platform/nubelink/host/folder_end.h"
#include "platform/nubelink/host/page_loop.h"
#include "platform/nubelink/host/page_pairs.h"
#include "platform/nubelink/host/request_table.h"
#include "platform/nubelink/host/service.h"

namespace nbl {

/// Whom a request with items answers.
struct ItemClient {
    nbl_provider_cb call = nullptr;
    void* user_data = nullptr;
};

/**
 * A request that is answered with items. Subclasses gather them and end with finish(), fail() or, for a part
 * of the answer, deliver().
 */
class ItemRequest : public Request {
public:
    ItemRequest(nbl_provider_t provider, ItemClient client)
        : Request(provider->id), provider_(provider), client_(client) {}

    void start(Session& session) final;
    void answer(int error) final;

protected:
    virtual void begin() = 0;
    Session& session() { return *session_; }
    nbl_provider_t provider() const { return provider_; }

    /// Answers with the items and ends the request, which is gone when this returns.
    void finish(const std::vector<ItemPtr>& items, int64_t place, int64_t total);
    /// Answers with the error and ends the request, which is gone when this returns.
    void fail(int error);
    /// Answers with a part of the items. The client may end the request from inside, but not before this
    /// returns.
    void deliver(const std::vector<ItemPtr>& items, int64_t place, int64_t total) {
        tell(items, place, total, false, 0);
    }

private:
    void tell(const std::vector<ItemPtr>& items, int64_t place, int64_t total, bool end, int error);

    nbl_provider_t const provider_;
    const ItemClient client_;
    Session* session_ = nullptr;
};

/// The children of a folder, from `start` on, `count` at most.
class BrowseRequest : public ItemRequest {
public:
    BrowseRequest(nbl_provider_t provider, const nbl_item_s& folder, int start, int count, ItemClient client);

private:
    void begin() override;
    void take(std::optional<Page> page);
    void ask_alone();
    void on_end(int error);

    const std::string folder_id_;
    const int64_t said_;  ///< how many children the folder's record tells; 0 for nothing
    const int start_;
    const int count_;
    int64_t total_ = 0;
    std::vector<ItemPtr> items_;
    std::shared_ptr<PagePairs::Ticket> ticket_;
    std::unique_ptr<PageLoop> loop_;
};

/// One object. A folder's children are counted by asking for one of them meanwhile: what servers say in the
/// folder's own record is missing or wrong more often. Where that tells no number, or another one than the
/// record, the folder's end is looked for.
class BrowseItemRequest : public ItemRequest {
public:
    BrowseItemRequest(nbl_provider_t provider, std::string id, ItemClient client);

private:
    /// After that long the number is what there may be at most.
    static constexpr unsigned kLongestCount = 10'000;
    void begin() override;
    void on_part();
    void count_children();
    void look_for_end(int64_t said);
    void finish_folder(int64_t child_count);

    const std::string id_;
    std::unique_ptr<Page> object_;
    std::unique_ptr<Page> children_;
    std::unique_ptr<PageCall> object_call_;
    std::unique_ptr<PageCall> children_call_;
    std::unique_ptr<FolderEnd> end_;
    Timer count_time_;
    bool is_late_ = false;
};

/// All that a search finds, page by page.
class SearchRequest : public ItemRequest {
public:
    SearchRequest(nbl_provider_t provider, std::string criteria, int start, int count, ItemClient client);

private:
    void begin() override;
    void on_page(std::vector<ItemPtr> items, int64_t place, int64_t total);
    void on_end(int error);

    const std::string criteria_;
    const int start_;
    const int count_;
    // The page that has come last is held back until it is known whether it is the last one.
    std::vector<ItemPtr> held_;
    int64_t held_place_;
    int64_t total_ = 0;
    std::unique_ptr<PageLoop> loop_;
};

}  // namespace nbl

#endif
