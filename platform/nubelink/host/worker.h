#ifndef QRA_NUBELINK_WORKER_H
#define QRA_NUBELINK_WORKER_H

#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/support/glib_ptr.h"

namespace nbl {

/**
 * The service's thread, with a main context of its own that is the thread's default: whatever GLib, GSSDP and
 * libsoup begin on it comes back on it.
 *
 * Everything that speaks to the network lives on this thread alone and needs no locks. Other threads post
 * tasks to it. Any thread may call post() and is_current(); start() is called once, by the owner. The end
 * stops the loop and joins the thread; tasks that have not run by then are dropped.
 */
class Worker {
public:
    using Task = std::function<void()>;

    Worker();
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// False if the system gives no thread.
    bool start();

    /// Runs `task` on the thread, after all that were posted before it and never from inside this call.
    void post(Task task);

    /// Whether the caller is on the thread.
    bool is_current() const { return std::this_thread::get_id() == thread_.get_id(); }

private:
    static int on_tasks(void* self);
    void run_tasks();
    void loop();

    glib::ContextPtr context_;
    bool stop_ = false;       ///< of the thread alone
    std::mutex mutex_;        ///< held across no call
    std::deque<Task> tasks_;  // by mutex_
    std::thread thread_;
};

/// Calls a function once after a while, on the thread that starts it, from its default main context. Its end,
/// and each new start, call it off. Lives on one thread.
class Timer {
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    enum class Priority { kNormal, kAfterAllElse };

    /// `due` may end the timer, or start it anew. With kAfterAllElse it waits for all else that is ready by
    /// then.
    void start(unsigned milliseconds, std::function<void()> due, Priority priority = Priority::kNormal);
    void stop();

private:
    static int on_due(void* self);

    std::function<void()> due_;
    glib::SourcePtr source_;
};

/**
 * Calls functions later, in their order, one at a time: each when nothing else is ready on the loop of the
 * thread that adds it, or when it has been first for the longest wait. What a call brings about on the
 * network is on its way then before the next call. Lives on one thread; its end drops what has not been
 * called.
 */
class Turns {
public:
    static constexpr unsigned kLongestWait = 50;
    explicit Turns(unsigned longest_wait = kLongestWait) : longest_wait_(longest_wait) {}
    ~Turns() { disarm(); }
    Turns(const Turns&) = delete;
    Turns& operator=(const Turns&) = delete;

    /// `turn` may add others, and end the turns.
    void add(std::function<void()> turn);

private:
    static int on_turn(void* self);
    void arm();
    void disarm();

    const unsigned longest_wait_;
    std::deque<std::function<void()>> turns_;
    // While there are turns, whichever comes first.
    glib::SourcePtr on_idle_;
    glib::SourcePtr on_wait_;
};

}  // namespace nbl

#endif
