#ifndef QRA_ENGINE_TIMER_H
#define QRA_ENGINE_TIMER_H

#include <glib.h>

#include <functional>
#include <utility>

namespace engine {

/// Calls a function once after a while, from the main context; its end, and each new start, call it off.
class Timer {
public:
    /// One of low priority lets everything that has come in be seen to before it is due: a deadline.
    explicit Timer(int priority = G_PRIORITY_DEFAULT) : priority_(priority) {}
    ~Timer() { stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// `due` may end the timer, or start it anew.
    void start(unsigned milliseconds, std::function<void()> due) {
        stop();
        due_ = std::move(due);
        source_ = g_timeout_add_full(priority_, milliseconds, &Timer::on_due, this, nullptr);
    }

    void stop() {
        if (source_ != 0) {
            g_source_remove(std::exchange(source_, 0));
        }
    }

private:
    static int on_due(void* self) {
        auto* timer = static_cast<Timer*>(self);
        timer->source_ = 0;
        const std::function<void()> due = std::move(timer->due_);
        due();
        return G_SOURCE_REMOVE;
    }

    const int priority_;
    std::function<void()> due_;
    unsigned source_ = 0;
};

}  // namespace engine

#endif
