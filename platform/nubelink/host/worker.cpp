#include "platform/nubelink/host/worker.h"

#include <system_error>
#include <utility>

#include "platform/nubelink/host/log.h"

namespace nbl {

Worker::Worker() : context_(g_main_context_new()) {}

Worker::~Worker() {
    if (thread_.joinable()) {
        post([this] { stop_ = true; });
        thread_.join();
    }
}

bool Worker::start() {
    try {
        thread_ = std::thread(&Worker::loop, this);
        return true;
    } catch (const std::system_error& error) {
        NBL_LOG_WARNING("no thread for the home network: %s", error.what());
        return false;
    }
}

void Worker::post(Task task) {
    const std::lock_guard<std::mutex> lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() == 1) {
        const glib::SourcePtr source(g_idle_source_new());
        g_source_set_priority(source.get(), G_PRIORITY_DEFAULT);
        g_source_set_callback(source.get(), &Worker::on_tasks, this, nullptr);
        g_source_attach(source.get(), context_.get());
    }
}

int Worker::on_tasks(void* self) {
    static_cast<Worker*>(self)->run_tasks();
    return G_SOURCE_REMOVE;
}

void Worker::run_tasks() {
    std::deque<Task> tasks;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        tasks.swap(tasks_);
    }
    for (Task& task : tasks) {
        if (!stop_) {
            task();
        }
        task = nullptr;  // What it holds ends here, in order, not after the tasks behind it.
    }
}

void Worker::loop() {
    g_main_context_push_thread_default(context_.get());
    while (!stop_) {
        g_main_context_iteration(context_.get(), TRUE);
    }
    g_main_context_pop_thread_default(context_.get());
}

void Timer::start(unsigned milliseconds, std::function<void()> due, Priority priority) {
    stop();
    due_ = std::move(due);
    source_.reset(g_timeout_source_new(milliseconds));
    g_source_set_priority(source_.get(),
                          priority == Priority::kNormal ? G_PRIORITY_DEFAULT : G_PRIORITY_DEFAULT_IDLE);
    g_source_set_callback(source_.get(), &Timer::on_due, this, nullptr);
    g_source_attach(source_.get(), g_main_context_get_thread_default());
}

void Timer::stop() {
    if (source_ != nullptr) {
        g_source_destroy(source_.get());
        source_.reset();
    }
}

int Timer::on_due(void* self) {
    auto* timer = static_cast<Timer*>(self);
    timer->source_.reset();
    const std::function<void()> due = std::move(timer->due_);
    due();
    return G_SOURCE_REMOVE;
}

void Turns::add(std::function<void()> turn) {
    turns_.push_back(std::move(turn));
    if (turns_.size() == 1) {
        arm();
    }
}

int Turns::on_turn(void* self) {
    auto* turns = static_cast<Turns*>(self);
    const std::function<void()> turn = std::move(turns->turns_.front());
    turns->turns_.pop_front();
    turns->disarm();
    if (!turns->turns_.empty()) {
        turns->arm();
    }
    turn();
    return G_SOURCE_REMOVE;
}

void Turns::arm() {
    on_idle_.reset(g_idle_source_new());
    g_source_set_priority(on_idle_.get(), G_PRIORITY_HIGH_IDLE);
    on_wait_.reset(g_timeout_source_new(longest_wait_));
    for (GSource* source : {on_idle_.get(), on_wait_.get()}) {
        g_source_set_callback(source, &Turns::on_turn, this, nullptr);
        g_source_attach(source, g_main_context_get_thread_default());
    }
}

void Turns::disarm() {
    for (glib::SourcePtr* source : {&on_idle_, &on_wait_}) {
        if (*source != nullptr) {
            g_source_destroy(source->get());
            source->reset();
        }
    }
}

}  // namespace nbl
