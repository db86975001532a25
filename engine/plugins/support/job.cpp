#include "engine/plugins/support/job.h"

#include <glib.h>

#include <utility>

namespace engine {

namespace {

/// Lets go of the job from the thread's main context.
void release_later(std::shared_ptr<Job> job) {
    using Holder = std::shared_ptr<Job>;
    GSource* source = g_idle_source_new();
    const auto free = [](void* holder) { std::unique_ptr<Holder>(static_cast<Holder*>(holder)); };
    g_source_set_callback(
        source, [](void*) -> gboolean { return G_SOURCE_REMOVE; },
        std::make_unique<Holder>(std::move(job)).release(), free);
    g_source_attach(source, g_main_context_get_thread_default());
    g_source_unref(source);
}

class JobRequest : public Request {
public:
    explicit JobRequest(std::shared_ptr<Job> job) : job_(std::move(job)) {}
    ~JobRequest() override {
        job_->cancel();
        release_later(std::move(job_));
    }
    JobRequest(const JobRequest&) = delete;
    JobRequest& operator=(const JobRequest&) = delete;

private:
    std::shared_ptr<Job> job_;
};

}  // namespace

RequestPtr request_for(std::shared_ptr<Job> job) {
    return std::make_unique<JobRequest>(std::move(job));
}

}  // namespace engine
