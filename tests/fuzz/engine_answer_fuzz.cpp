// A completion signal of the engine with any text in it: it reaches nobody but the handle that it names, and
// ends nothing. The handle has the id 7, a list request, a detail request "d" and an act "a".
#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/datamodel/qra_resultpool.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_web_agent.h"

namespace {

constexpr unsigned int kId = 7;

void check(const CQRAAgentHandle* handle, int id, const char* text) {
    if (handle->GetHandleId() != kId || id != static_cast<int>(kId) || text == nullptr)
        std::abort();
}

bool take_list(void*, CQRAAgentHandle* handle, qra_event_e, int id, const char* text) {
    check(handle, id, text);
    return true;
}

bool take_item(void*, CQRAAgentHandle* handle, int id, qra_event_e, const char* text) {
    check(handle, id, text);
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CQRAAgentHandle handle;
    handle.SetHandleId(kId);
    handle.SetResultPool(new CResultPool(0, 10, QRA_PREFETCH_AUTO));
    handle.GetResultPool()->SetCallBack([](void*, int, int, int) { return true; }, nullptr,
                                        [](void*, const std::string&) { return true; }, nullptr);
    _stAppData record;
    record.cbList = take_list;
    handle.PushRequestListData("qra_request_list", record);
    record.cbDetail = take_item;
    handle.PushRequestDetailData("d", record);
    record.cbAct = take_item;
    handle.PushRequestActData("a", record);
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());

    std::string payload(reinterpret_cast<const char*>(data), size);
    CQRAWebAgent::m_ProcessDbusSignal("qra_request_normal_complete", nullptr, payload.data());

    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
    return 0;
}
