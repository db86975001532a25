#ifndef QRA_TESTS_FAKES_LOOP_SOURCES_H
#define QRA_TESTS_FAKES_LOOP_SOURCES_H

#include <glib.h>

#include <memory>

/// The sources of a thread's main context: timers, idle calls, sockets that are waited for. watch() runs
/// once, on that thread, before count() does on any other.
class LoopSources {
public:
    void watch() { context_.reset(g_main_context_ref_thread_default()); }
    bool is_watching() const { return context_ != nullptr; }

    /// How many there are now. A context numbers its sources: each number up to the latest is looked up.
    int count() const {
        const std::unique_ptr<GSource, decltype(&g_source_unref)> latest(g_idle_source_new(),
                                                                         &g_source_unref);
        g_source_set_callback(
            latest.get(), [](void*) -> int { return G_SOURCE_REMOVE; }, nullptr, nullptr);
        const unsigned numbers = g_source_attach(latest.get(), context_.get());
        g_source_destroy(latest.get());
        int count = 0;
        for (unsigned number = 1; number < numbers; ++number) {
            count += g_main_context_find_source_by_id(context_.get(), number) != nullptr ? 1 : 0;
        }
        return count;
    }

private:
    struct Unref {
        void operator()(GMainContext* context) const { g_main_context_unref(context); }
    };
    std::unique_ptr<GMainContext, Unref> context_;
};

#endif
