#ifndef QRA_ENGINE_PLUGINS_SUPPORT_TIMER_H
#define QRA_ENGINE_PLUGINS_SUPPORT_TIMER_H

#include <glib.h>

#include <functional>

namespace engine {

/**
 * Runs something once, later, from the thread's main context, unless it is destroyed first. It may be
 * destroyed from within what it runs.
 */
class Timer {
public:
    Timer(unsigned milliseconds, std::function<void()> run);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Counts anew from now; for a timer that has not run yet.
    void restart(unsigned milliseconds);

private:
    GSource* source_;
};

}  // namespace engine

#endif
