#include "apps/qra/main_loop_thread.h"

MainLoopThread::MainLoopThread() : loop_(g_main_loop_new(nullptr, FALSE), &g_main_loop_unref) {
    const auto tell = [](gpointer promise) -> gboolean {
        static_cast<std::promise<void>*>(promise)->set_value();
        return G_SOURCE_REMOVE;
    };
    g_idle_add(tell, &running_);
    thread_ = std::thread([loop = loop_.get()] { g_main_loop_run(loop); });
    // A quit that came before the loop runs would be lost.
    running_.get_future().wait();
}

MainLoopThread::~MainLoopThread() {
    g_main_loop_quit(loop_.get());
    thread_.join();
}
