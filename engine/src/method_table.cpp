#include "engine/src/method_table.h"

namespace engine {

void MethodTable::dispatch(MethodCall call) const {
    const auto found = handlers_.find(std::string_view(call.method()));
    if (found != handlers_.end()) {
        found->second(std::move(call));
    } else {
        call.refuse(G_DBUS_ERROR_NOT_SUPPORTED,
                    std::string("The content engine does not support ") + call.method());
    }
}

}  // namespace engine
