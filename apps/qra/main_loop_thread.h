#ifndef QRA_APPS_QRA_MAIN_LOOP_THREAD_H
#define QRA_APPS_QRA_MAIN_LOOP_THREAD_H

#include <glib.h>

#include <future>
#include <memory>
#include <thread>

/// Runs the process's default GLib main context on a thread of its own while it lives. The library has no
/// loop, and the engine's signals come on its client's.
///
/// The constructor returns when the loop runs; the destructor waits for a callback that the loop is in. One
/// at a time.
class MainLoopThread {
public:
    MainLoopThread();
    ~MainLoopThread();
    MainLoopThread(const MainLoopThread&) = delete;
    MainLoopThread& operator=(const MainLoopThread&) = delete;

private:
    std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop_;
    std::promise<void> running_;
    std::thread thread_;
};

#endif
