#ifndef QRA_NUBELINK_BOOKMARK_REQUEST_H
#define QRA_NUBELINK_BOOKMARK_REQUEST_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/item_record.h"
#include "platform/nubelink/host/position_store.h"
#include "platform/nubelink/host/request_table.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/soap_call.h"

namespace nbl {

/// An action as a server's description of a service announces it.
struct AnnouncedAction {
    std::string name;
    std::vector<std::string> in_arguments;
};

/// The actions in the description; what cannot be understood is left out.
std::vector<AnnouncedAction> read_announced_actions(std::string document);

/// How a server can be told a position: the question to ask, without an action if there is none.
SoapQuestion position_question(const std::vector<AnnouncedAction>& actions, const nbl_item_s& item,
                               int seconds);

/// Where positions are kept for servers that keep none.
PositionStore& kept_positions();

/// What is kept there for an item of a server; 0 for none.
int kept_position_of(const nbl_item_s& item);

/**
 * Keeps the position of an item: at the server, where it announces an action for that, else in
 * kept_positions(). A server that refuses, or has gone, is one that keeps none; so is one that has not
 * answered when the service ends.
 */
class BookmarkRequest : public Request {
public:
    BookmarkRequest(nbl_provider_t provider, nbl_item_t item, int seconds, nbl_bookmark_cb callback, int tag);

    void start(Session& session) override;
    void answer(int error) override;

private:
    void take_description(HttpAnswer answer);
    void take_answer(const SoapAnswer& answer);
    void keep(int seconds);
    bool keep_here(int seconds) const;

    const ItemPtr item_;
    const int seconds_;
    const nbl_bookmark_cb callback_;
    const int tag_;
    Session* session_ = nullptr;
    std::string action_;  ///< that the server was asked for
    std::unique_ptr<HttpCall> description_call_;
    std::unique_ptr<SoapCall> call_;
};

}  // namespace nbl

#endif
