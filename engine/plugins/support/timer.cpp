#include "engine/plugins/support/timer.h"

#include <memory>
#include <utility>

namespace engine {

Timer::Timer(unsigned milliseconds, std::function<void()> run) : source_(g_timeout_source_new(milliseconds)) {
    using Run = std::function<void()>;
    const auto call = [](void* function) -> gboolean {
        (*static_cast<Run*>(function))();
        return G_SOURCE_REMOVE;
    };
    const auto free = [](void* function) { std::unique_ptr<Run>(static_cast<Run*>(function)); };
    g_source_set_callback(source_, call, std::make_unique<Run>(std::move(run)).release(), free);
    g_source_attach(source_, g_main_context_get_thread_default());
}

Timer::~Timer() {
    g_source_destroy(source_);
    g_source_unref(source_);
}

void Timer::restart(unsigned milliseconds) {
    g_source_set_ready_time(source_, g_get_monotonic_time() + gint64{milliseconds} * 1000);
}

}  // namespace engine
