// The JSON of a client's request: whatever it is, it is read or refused, and what is read keeps its bounds.
#include "engine/src/client_request.h"

#include <cstdlib>
#include <string>

#include "engine/src/completion.h"
#include "engine/src/json_text.h"

namespace {

void expect(bool is_so) {
    if (!is_so) {
        std::abort();
    }
}

bool is_clean(const std::string& text) {
    return text.find('\0') == std::string::npos && text != "QRA_NULL";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (const auto list = engine::parse_list_request(text)) {
        expect(list->section >= 0);
        expect(is_clean(list->query.container) && is_clean(list->query.category) &&
               is_clean(list->query.filter));
    }
    if (const auto detail = engine::parse_detail_request(text)) {
        expect(is_clean(detail->item_id));
        // What is echoed goes out as ASCII, on which the bus insists.
        for (const char byte :
             engine::detail_answer(1, engine::Event::kDetailReady, detail->request_id, detail->item_id)) {
            expect(byte >= ' ' && static_cast<unsigned char>(byte) < 0x80);
        }
    }
    if (const auto act = engine::parse_act_request("", text)) {
        expect(is_clean(act->comment) && act->item_id.find('\0') == std::string::npos);
    }
    return 0;
}
