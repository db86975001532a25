#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_DETAIL_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_DETAIL_H

#include <memory>
#include <optional>
#include <string>

#include "engine/plugins/http/http_session.h"
#include "engine/plugins/support/job.h"
#include "engine/plugins/webdav/propfind.h"
#include "engine/src/timer.h"

namespace engine {

/// Asks a WebDAV server for all that it tells of one item.
class WebDavDetail : public Job {
public:
    WebDavDetail(std::shared_ptr<HttpSession> http, std::string top, std::string item_id, ItemDone done);
    void start();
    void cancel() override;

private:
    void take(const WebDavEntry& entry, const WebDavFolder& folder);
    void answer(ItemAnswer::Outcome outcome, const std::string& text);

    const std::shared_ptr<HttpSession> http_;
    const std::string top_;
    const std::string item_id_;
    ItemDone done_;  ///< empty when nothing is answered any more
    std::optional<WebDavId> id_;
    std::string text_;
    Timer later_;
    std::optional<Propfind> propfind_;
};

}  // namespace engine

#endif
