#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_LIST_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_LIST_H

#include <memory>
#include <optional>
#include <string>

#include "engine/plugins/http/http_session.h"
#include "engine/plugins/support/held_items.h"
#include "engine/plugins/support/job.h"
#include "engine/plugins/webdav/propfind.h"
#include "engine/plugins/webdav/webdav_item.h"
#include "engine/src/timer.h"

namespace engine {

/**
 * Lists a folder of a WebDAV server. The list of a medium holds that medium alone.
 *
 * Items go out while the answer is being read. Their numbers have to be known before the first one: a folder
 * of few entries is held until its end. The answer of a larger one is not read on until a second, lean
 * question has told the kinds of the entries alone; from then on items go out as they come. Without an answer
 * to that question, or with one that takes its time, the first answer is read on, and items go out as soon as
 * either is complete. Should the two disagree, since the folder changed meanwhile, the list fails. An order
 * other than the server's needs all items first.
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

    /// Where an entry of the list stands: in the folder, or it is the medium that was asked for.
    std::optional<WebDavPlace> place_of(const WebDavEntry& entry, const WebDavFolder& folder) const;
    bool shows(int media_type, const std::string& title) const;
    void take_item(const WebDavEntry& entry, const WebDavFolder& folder);
    void take_kind(const WebDavEntry& entry, const WebDavFolder& folder);
    void count_beside();
    void end_counting();
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
    WebDavId id_;  ///< of what is listed
    std::string url_;
    Timer later_;
    Timer counting_;
    std::optional<Propfind> items_;
    std::optional<Propfind> kinds_;
};

}  // namespace engine

#endif
