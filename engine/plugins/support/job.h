#ifndef QRA_ENGINE_PLUGINS_SUPPORT_JOB_H
#define QRA_ENGINE_PLUGINS_SUPPORT_JOB_H

#include <memory>

#include "engine/src/plugin.h"

namespace engine {

/**
 * What goes on behind a request of the engine.
 *
 * The engine may end its request from inside any answer, so a job outlives its request until the thread's
 * main context comes round again.
 */
class Job {
public:
    virtual ~Job() = default;
    /// Ends what goes on. Nothing is answered from here on.
    virtual void cancel() = 0;
};

/// The request that the engine holds for a job.
RequestPtr request_for(std::shared_ptr<Job> job);

}  // namespace engine

#endif
