#ifndef QRA_ENGINE_COMPLETION_H
#define QRA_ENGINE_COMPLETION_H

#include <cstdint>
#include <string>

namespace engine {

/// The numbers of "qra_event_type".
enum class Event {
    kListReady = 0,
    kListEmpty = 1,
    kListFailed = 2,
    kDetailReady = 3,
    kDetailEmpty = 4,
    kDetailFailed = 5,
    kActDone = 6,
    kActFailed = 7,
    kDisconnected = 8,
    kDropped = 10,
    kActUpdate = 12
};

// The texts of "qra_request_normal_complete", each for the connection `id`. A failure's reason is for a
// person and stands under "qra_error_text".

std::string list_ready(uint32_t id, int32_t section, const std::string& object_name);
std::string list_empty(uint32_t id, int32_t section);
std::string list_failed(uint32_t id, int32_t section, const std::string& reason);

/// For kDetailReady and kDetailEmpty the text is the item's; for kDetailFailed it is the reason.
std::string detail_answer(uint32_t id, Event event, const std::string& request_id, const std::string& text);

/// For kActDone and kActUpdate the text is what the act gave; for kActFailed it is the reason. An update says
/// that more follows, the others that this is the end.
std::string act_answer(uint32_t id, Event event, const std::string& request_id, const std::string& text);

/// For kDisconnected and kDropped.
std::string plain_answer(uint32_t id, Event event);

}  // namespace engine

#endif
