#include "engine/plugins/webdav/webdav_list.h"

#include <qra/qra_types.h>

#include <utility>

#include "engine/plugins/support/media_kind.h"
#include "engine/plugins/webdav/webdav_item.h"
#include "engine/plugins/webdav/webdav_path.h"

namespace engine {

namespace {

// Most folders are smaller, and cost one question.
constexpr size_t kHeldWithoutCounting = 400;
constexpr size_t kMostEntries = 200'000;

}  // namespace

WebDavList::WebDavList(std::shared_ptr<HttpSession> http, std::string top, const ListQuery& query,
                       ListAnswer& answer)
    : http_(std::move(http)),
      top_(std::move(top)),
      query_(query),
      filter_(query.filter),
      order_(item_order_of(query.category)),
      answer_(&answer),
      held_(order_) {}

void WebDavList::start() {
    auto folder_id = parse_id(query_.container);
    if (!folder_id) {
        later_.start(0, [this] { fail("there is no such folder in this account"); });
        return;
    }
    folder_id_ = std::move(folder_id->id);
    url_ = top_ + folder_id->path + (folder_id->path.empty() ? "" : "/");
    items_.emplace(*http_, url_, PropfindDepth::kChildren, PropfindWish::kItems,
                   Propfind::Calls{[this](const WebDavEntry& entry, const WebDavFolder& folder) {
                                       take_item(entry, folder);
                                   },
                                   [this] { end(); }, [this](const std::string& reason) { fail(reason); }});
}

void WebDavList::cancel() {
    answer_ = nullptr;
    later_.stop();
    if (items_) {
        items_->cancel();
    }
    if (kinds_) {
        kinds_->cancel();
    }
}

std::optional<std::string> WebDavList::shown(const WebDavEntry& entry, const WebDavFolder& folder,
                                             int& media_type) const {
    auto name = folder.child(entry.href);
    if (!name) {
        return std::nullopt;
    }
    media_type = entry.folder ? QRA_MEDIA_TYPE_FOLDER : media_kind_of(entry.content_type, *name).media_type;
    const bool wanted = entry.folder || is_wanted(media_type, query_.content_type);
    return wanted && filter_.lets_pass(webdav_title(entry, *name)) ? name : std::nullopt;
}

void WebDavList::take_item(const WebDavEntry& entry, const WebDavFolder& folder) {
    if (!answer_) {
        return;
    }
    if (++entries_ > kMostEntries) {
        fail("the folder has more entries than can be shown");
        return;
    }
    int media_type = 0;
    const auto name = shown(entry, folder, media_type);
    if (!name) {
        return;
    }
    size_t& seen = entry.folder ? seen_.folders : seen_.media;
    ++seen;
    const Item item = webdav_item(entry, {*name, folder_id_, folder.url_of(*name, entry.folder)});
    if (!begun_) {
        held_.add(item);
        if (order_ == ItemOrder::kAsItComes && !kinds_ &&
            held_.folders() + held_.media() > kHeldWithoutCounting) {
            count_beside();
        }
    } else if (seen <= (entry.folder ? begun_->folders : begun_->media)) {
        entry.folder ? answer_->add_folder(item_text(item)) : answer_->add_medium(item_text(item));
    }
}

void WebDavList::count_beside() {
    // Without this answer the list still comes, only later: its failure is none of the list.
    kinds_.emplace(*http_, url_, PropfindDepth::kChildren, PropfindWish::kKinds,
                   Propfind::Calls{[this](const WebDavEntry& entry, const WebDavFolder& folder) {
                                       take_kind(entry, folder);
                                   },
                                   [this] { begin(counted_); }, [](const std::string&) {}});
}

void WebDavList::take_kind(const WebDavEntry& entry, const WebDavFolder& folder) {
    int media_type = 0;
    if (shown(entry, folder, media_type)) {
        ++(entry.folder ? counted_.folders : counted_.media);
    }
}

void WebDavList::begin(const Counts& counts) {
    if (!answer_ || begun_) {
        return;
    }
    if (held_.folders() > counts.folders || held_.media() > counts.media) {
        fail("the folder changed while it was read; ask again");
        return;
    }
    begun_ = counts;
    answer_->begin(counts.folders, counts.media);
    if (answer_) {
        held_.hand_to(*answer_, [this] { return answer_ != nullptr; });
    }
}

void WebDavList::end() {
    begin(seen_);
    if (!answer_) {
        return;
    }
    if (seen_ != *begun_) {
        fail("the folder changed while it was read; ask again");
        return;
    }
    ListAnswer* answer = answer_;
    cancel();
    answer->end();
}

void WebDavList::fail(const std::string& reason) {
    if (ListAnswer* answer = answer_) {
        cancel();
        answer->fail(reason);
    }
}

}  // namespace engine
