#ifndef QRA_APPS_QRA_ENGINE_WATCH_H
#define QRA_APPS_QRA_ENGINE_WATCH_H

#include <gio/gio.h>

#include "apps/qra/answer_queue.h"
#include "apps/qra/engine_access.h"

/// The engine as the bus sees it.
enum class EngineState { Running, Ended, NoBus };

/// Gives a queue the engine's state at once, and each change of it, on the main loop's thread. The queue has
/// to outlive that thread: an answer may be on its way when the watch goes.
template <typename Answer>
class EngineWatch {
public:
    explicit EngineWatch(AnswerQueue<Answer>& answers)
        : id_(g_bus_watch_name(G_BUS_TYPE_SYSTEM, kEngineName, G_BUS_NAME_WATCHER_FLAGS_NONE, on_running,
                               on_ended, &answers, nullptr)) {}
    ~EngineWatch() { g_bus_unwatch_name(id_); }
    EngineWatch(const EngineWatch&) = delete;
    EngineWatch& operator=(const EngineWatch&) = delete;

private:
    static void on_running(GDBusConnection*, const char*, const char*, gpointer answers) {
        static_cast<AnswerQueue<Answer>*>(answers)->give(EngineState::Running);
    }
    static void on_ended(GDBusConnection* bus, const char*, gpointer answers) {
        static_cast<AnswerQueue<Answer>*>(answers)->give(bus != nullptr ? EngineState::Ended
                                                                        : EngineState::NoBus);
    }

    const guint id_;
};

#endif
