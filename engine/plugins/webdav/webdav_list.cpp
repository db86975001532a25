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
// Servers end an answer that nobody reads for a minute.
constexpr unsigned kMillisecondsToCount = 20'000;

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
    auto id = parse_id(query_.container);
    if (!id) {
        later_.start(0, [this] { fail("there is no such folder in this account"); });
        return;
    }
    id_ = std::move(*id);
    // Servers know folders by a slash at the end, and media by none.
    const bool folder = media_kind_of("", id_.name).media_type == 0;
    url_ = top_ + id_.path + (folder && !id_.path.empty() ? "/" : "");
    items_.emplace(*http_, url_, PropfindDepth::kChildren, PropfindWish::kItems,
                   Propfind::Calls{[this](const WebDavEntry& entry, const WebDavFolder& folder) {
                                       take_item(entry, folder);
                                   },
                                   [this] { end(); }, [this](const std::string& reason) { fail(reason); }});
}

void WebDavList::cancel() {
    answer_ = nullptr;
    later_.stop();
    counting_.stop();
    if (items_) {
        items_->cancel();
    }
    if (kinds_) {
        kinds_->cancel();
    }
}

std::optional<WebDavPlace> WebDavList::place_of(const WebDavEntry& entry, const WebDavFolder& folder) const {
    if (auto name = folder.child(entry.href)) {
        std::string url = folder.url_of(*name, entry.folder);
        return WebDavPlace{std::move(*name), id_.id, std::move(url)};
    }
    if (!entry.folder && !id_.name.empty() && folder.is_itself(entry.href)) {
        return WebDavPlace{id_.name, id_.folder_id, folder.url(false)};
    }
    return std::nullopt;
}

bool WebDavList::shows(int media_type, const std::string& title) const {
    return (media_type == QRA_MEDIA_TYPE_FOLDER || is_wanted(media_type, query_.content_type)) &&
           filter_.lets_pass(title);
}

void WebDavList::take_item(const WebDavEntry& entry, const WebDavFolder& folder) {
    if (!answer_) {
        return;
    }
    if (++entries_ > kMostEntries) {
        fail("the folder has more entries than can be shown");
        return;
    }
    const auto place = place_of(entry, folder);
    if (!place) {
        return;
    }
    const Item item = webdav_item(entry, *place);
    if (!shows(item.media_type, item.title)) {
        return;
    }
    size_t& seen = entry.folder ? seen_.folders : seen_.media;
    ++seen;
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
    items_->hold();
    counting_.start(kMillisecondsToCount, [this] { items_->go_on(); });
    // Without this answer the list still comes, only later: its failure is none of the list.
    kinds_.emplace(*http_, url_, PropfindDepth::kChildren,
                   filter_.is_empty() ? PropfindWish::kKinds : PropfindWish::kNamedKinds,
                   Propfind::Calls{[this](const WebDavEntry& entry, const WebDavFolder& folder) {
                                       take_kind(entry, folder);
                                   },
                                   [this] {
                                       begin(counted_);
                                       end_counting();
                                   },
                                   [this](const std::string&) { end_counting(); }});
}

void WebDavList::end_counting() {
    counting_.stop();
    if (answer_) {
        items_->go_on();
    }
}

void WebDavList::take_kind(const WebDavEntry& entry, const WebDavFolder& folder) {
    const auto name = folder.child(entry.href);
    if (name && shows(webdav_kind(entry, *name).media_type,
                      filter_.is_empty() ? std::string() : webdav_title(entry, *name))) {
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
