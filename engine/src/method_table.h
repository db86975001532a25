#ifndef QRA_ENGINE_METHOD_TABLE_H
#define QRA_ENGINE_METHOD_TABLE_H

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "engine/src/method_call.h"

namespace engine {

/// Which area of the engine serves which method of the interface. For one thread.
class MethodTable {
public:
    using Handler = std::function<void(MethodCall)>;

    /// Each method is served by one handler, which lives as long as the table is asked.
    void serve(const char* method, Handler handler) { handlers_[method] = std::move(handler); }

    /// The same for a member function of the area that serves the method.
    template <class Area>
    void serve(const char* method, Area* area, void (Area::*handler)(MethodCall)) {
        serve(method, [area, handler](MethodCall call) { (area->*handler)(std::move(call)); });
    }

    /// Hands the call to its handler; one that nobody serves is refused.
    void dispatch(MethodCall call) const;

private:
    std::map<std::string, Handler, std::less<>> handlers_;
};

}  // namespace engine

#endif
