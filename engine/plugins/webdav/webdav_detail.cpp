#include "engine/plugins/webdav/webdav_detail.h"

#include <utility>

#include "engine/plugins/webdav/webdav_item.h"
#include "engine/plugins/webdav/webdav_path.h"

namespace engine {

WebDavDetail::WebDavDetail(std::shared_ptr<HttpSession> http, std::string top, std::string item_id,
                           ItemDone done)
    : http_(std::move(http)), top_(std::move(top)), item_id_(std::move(item_id)), done_(std::move(done)) {}

void WebDavDetail::start() {
    id_ = parse_id(item_id_);
    if (!id_ || id_->path.empty()) {
        later_.start(
            0, [this] { answer(ItemAnswer::Outcome::kFailed, "there is no such item in this account"); });
        return;
    }
    propfind_.emplace(
        *http_, top_ + id_->path, PropfindDepth::kItself, PropfindWish::kAll,
        Propfind::Calls{[this](const WebDavEntry& entry, const WebDavFolder& place) { take(entry, place); },
                        [this] {
                            answer(text_.empty() ? ItemAnswer::Outcome::kEmpty : ItemAnswer::Outcome::kDone,
                                   text_);
                        },
                        [this](const std::string& reason) { answer(ItemAnswer::Outcome::kFailed, reason); }});
}

void WebDavDetail::cancel() {
    done_ = nullptr;
    later_.stop();
    if (propfind_) {
        propfind_->cancel();
    }
}

void WebDavDetail::take(const WebDavEntry& entry, const WebDavFolder& place) {
    if (!text_.empty() || !place.is_itself(entry.href)) {
        return;
    }
    text_ = item_text(webdav_detail(entry, {id_->name, id_->folder_id, place.url(entry.folder)}));
}

void WebDavDetail::answer(ItemAnswer::Outcome outcome, const std::string& text) {
    if (const ItemDone done = std::exchange(done_, nullptr)) {
        cancel();
        done({outcome, text});
    }
}

}  // namespace engine
