#include "platform/nubelink/host/browse_request.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "platform/nubelink/host/item_values.h"

namespace nbl {

namespace {

int to_int(int64_t number) {
    return static_cast<int>(std::min<int64_t>(number, INT_MAX));
}

}  // namespace

void ItemRequest::start(Session& session) {
    session_ = &session;
    begin();
}

void ItemRequest::answer(int error) {
    tell({}, 0, 0, true, error);
}

void ItemRequest::finish(const std::vector<ItemPtr>& items, int64_t place, int64_t total) {
    if (const std::unique_ptr<Request> self = session().requests().take(token())) {
        tell(items, place, total, true, NBL_ERROR_NONE);
    }
}

void ItemRequest::fail(int error) {
    session().requests().end(token(), error);
}

void ItemRequest::tell(const std::vector<ItemPtr>& items, int64_t place, int64_t total, bool end, int error) {
    std::vector<nbl_item_t> handles;
    handles.reserve(items.size());
    for (const ItemPtr& item : items) {
        handles.push_back(item.get());
    }
    nbl_response response = {};
    response.token = token();
    response.items = handles.empty() ? nullptr : handles.data();
    response.length = static_cast<int>(handles.size());
    response.end = end ? 1 : 0;
    response.start = to_int(place);
    response.total = to_int(total);
    const DevicePtr device = Service::instance().device(device_id());
    client_.call(device.get(), &response, error, client_.user_data);
}

BrowseRequest::BrowseRequest(nbl_provider_t provider, const nbl_item_s& folder, int start, int count,
                             ItemClient client)
    : ItemRequest(provider, client),
      folder_id_(folder.text("@id")),
      said_(child_count_of(folder).value_or(0)),
      start_(start),
      count_(count) {}

void BrowseRequest::begin() {
    provider()->pages.on_question(folder_id_, start_);
    ticket_ = session().page_pairs().ask({provider(), folder_id_, start_, count_},
                                         [this](std::optional<Page> page) { take(std::move(page)); });
}

void BrowseRequest::take(std::optional<Page> page) {
    if (!page) {
        ask_alone();
        return;
    }
    total_ = page->total;
    items_ = std::move(page->items);
    on_end(NBL_ERROR_NONE);
}

void BrowseRequest::ask_alone() {
    PageLoop::Range range;
    range.start = start_;
    range.most = count_;
    range.page = count_;
    const int64_t found = provider()->pages.count_of(folder_id_);
    range.expected = found > 0 ? found : said_;
    loop_ = std::make_unique<PageLoop>(
        session(), provider(), PageSource{PageSource::Kind::kChildren, folder_id_, {}}, range,
        [this](std::vector<ItemPtr> items, int64_t, int64_t total) {
            session().requests().extend(token());
            total_ = total;
            std::move(items.begin(), items.end(), std::back_inserter(items_));
        },
        [this](int error) { on_end(error); });
}

void BrowseRequest::on_end(int error) {
    if (error != NBL_ERROR_NONE) {
        fail(error);
        return;
    }
    if (provider()->pages.is_repeated(folder_id_, start_, items_)) {
        items_.clear();
    }
    finish(items_, start_, total_);
}

BrowseItemRequest::BrowseItemRequest(nbl_provider_t provider, std::string id, ItemClient client)
    : ItemRequest(provider, client), id_(std::move(id)) {}

void BrowseItemRequest::begin() {
    object_call_ = std::make_unique<PageCall>(
        session(), provider(), PageSource{PageSource::Kind::kObject, id_, {}}, 0, 0, [this](Page page) {
            object_ = std::make_unique<Page>(std::move(page));
            on_part();
        });
    children_call_ = std::make_unique<PageCall>(
        session(), provider(), PageSource{PageSource::Kind::kChildren, id_, {}}, 0, 1, [this](Page page) {
            children_ = std::make_unique<Page>(std::move(page));
            on_part();
        });
    count_time_.start(kLongestCount, [this] {
        is_late_ = true;
        if (end_ != nullptr) {
            finish_folder(end_->most());
        }
    });
}

void BrowseItemRequest::on_part() {
    if (object_ == nullptr) {
        return;
    }
    if (object_->error != NBL_ERROR_NONE) {
        fail(object_->error);
        return;
    }
    if (object_->items.empty()) {
        finish({}, 0, 0);
        return;
    }
    if (object_->items.front()->type() != NBL_ITEM_TYPE_FOLDER) {
        finish(object_->items, 0, 1);
    } else if (children_ != nullptr) {
        count_children();
    }
}

void BrowseItemRequest::count_children() {
    const int64_t said = child_count_of(*object_->items.front()).value_or(0);
    const int64_t total = children_->total;
    // Some tell how many they give as the total.
    const bool is_told = total > 0 && (said == total || (said == 0 && total > 1));
    if (children_->error != NBL_ERROR_NONE) {
        finish_folder(said);
    } else if (children_->items.empty() || is_told) {
        finish_folder(total);
    } else {
        look_for_end(total > 0 ? total : said);
    }
}

void BrowseItemRequest::look_for_end(int64_t said) {
    if (is_late_) {
        finish_folder(FolderEnd::kMostChildren);
        return;
    }
    end_ = std::make_unique<FolderEnd>(session(), provider(), id_, children_->items, said,
                                       [this](int64_t count) { finish_folder(count); });
}

void BrowseItemRequest::finish_folder(int64_t child_count) {
    provider()->pages.set_count(id_, child_count);
    ItemPtr& item = object_->items.front();
    item = with_child_count(*item, child_count);
    finish(object_->items, 0, 1);
}

SearchRequest::SearchRequest(nbl_provider_t provider, std::string criteria, int start, int count,
                             ItemClient client)
    : ItemRequest(provider, client),
      criteria_(std::move(criteria)),
      start_(start),
      count_(count),
      held_place_(start) {}

void SearchRequest::begin() {
    PageLoop::Range range;
    range.start = start_;
    range.page = count_;
    loop_ = std::make_unique<PageLoop>(
        session(), provider(), PageSource{PageSource::Kind::kSearch, "0", criteria_}, range,
        [this](std::vector<ItemPtr> items, int64_t place, int64_t total) {
            on_page(std::move(items), place, total);
        },
        [this](int error) { on_end(error); });
}

void SearchRequest::on_page(std::vector<ItemPtr> items, int64_t place, int64_t total) {
    session().requests().extend(token());
    if (!held_.empty()) {
        deliver(held_, held_place_, total_);
    }
    held_ = std::move(items);
    held_place_ = place;
    total_ = total;
}

void SearchRequest::on_end(int error) {
    if (error != NBL_ERROR_NONE) {
        if (!held_.empty()) {
            deliver(held_, held_place_, total_);
        }
        fail(error);
        return;
    }
    finish(held_, held_place_, total_);
}

}  // namespace nbl
