#ifndef QRA_APPS_QRA_ENGINE_WATCH_H
#define QRA_APPS_QRA_ENGINE_WATCH_H

#include <glib.h>

#include <functional>

/// The engine as the bus sees it.
enum class EngineState { Running, Ended, NoBus };

/// Tells the engine's state at once, and each change of it, on the main loop's thread. What `tell` uses has
/// to outlive that thread's loop: a call may be on its way when the object goes.
class EngineWatch {
public:
    explicit EngineWatch(std::function<void(EngineState)> tell);
    ~EngineWatch();
    EngineWatch(const EngineWatch&) = delete;
    EngineWatch& operator=(const EngineWatch&) = delete;

private:
    const guint id_;
};

#endif
