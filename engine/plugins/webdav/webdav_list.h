#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_LIST_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_LIST_H

#include <memory>
#include <optional>
#include <string>

#include "engine/plugins/http/http_session.h"
#include "engine/plugins/support/held_items.h"
#include "engine/plugins/support/job.h"
#include "engine/plugins/webdav/propfind.h"
#include "engine/src/timer.h"

namespace engine {

/**
 * Lists a folder of a WebDAV server.
 *
 * Items go out while the answer is being read. Their numbers have to be known before the first one: a folder
 * of few entries is held until its end; beside the answer of a larger one a second, lean question asks for
 * the kinds of the entries alone, whose answer is there sooner, and from then on items go out as they come.
 * Should the two answers disagree, since the folder changed meanwhile, the list fails. An order other than
 * the server's needs all items first.
 */
class WebDavList : public Job {
public:
    WebDavList(std::shared_ptr<HttpSession> http, std::string top, const ListQuery& query,
               ListAnswer& answer);
    void start();
    void cancel() override;

private:
    struct Counts {
        size_t folders = 0;
        size_t media = 0;
        bool operator!=(const Counts& other) const {
            return folders != other.folders || media != other.media;
        }
    };

    /// The entry's name if the list shows it. @param media_type receives what it is
    std::optional<std::string> shown(const WebDavEntry& entry, const WebDavFolder& folder,
                                     int& media_type) const;
    void take_item(const WebDavEntry& entry, const WebDavFolder& folder);
    void take_kind(const WebDavEntry& entry, const WebDavFolder& folder);
    void count_beside();
    void begin(const Counts& counts);
    void end();
    void fail(const std::string& reason);

    const std::shared_ptr<HttpSession> http_;
    const std::string top_;
    const ListQuery query_;
    const TitleFilter filter_;
    const ItemOrder order_;
    ListAnswer* answer_;  ///< null when nothing is answered any more
    HeldItems held_;
    Counts seen_;                  ///< items of the answer so far
    Counts counted_;               ///< of the lean answer so far
    std::optional<Counts> begun_;  ///< what the list was told to hold
    size_t entries_ = 0;
    std::string folder_id_;
    std::string url_;
    Timer later_;
    std::optional<Propfind> items_;
    std::optional<Propfind> kinds_;
};

}  // namespace engine

#endif
