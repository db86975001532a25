#ifndef QRA_TESTS_NUBELINK_WORKER_RUN_H
#define QRA_TESTS_NUBELINK_WORKER_RUN_H

#include <chrono>
#include <future>
#include <memory>
#include <utility>

#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/worker.h"

/// A worker of its own for a test, with the connections that transfers need.
class WorkerRun {
public:
    WorkerRun() {
        worker_.start();
        run([this] { client_ = std::make_unique<nbl::HttpClient>(); });
    }
    ~WorkerRun() {
        run([this] { client_.reset(); });
    }
    WorkerRun(const WorkerRun&) = delete;
    WorkerRun& operator=(const WorkerRun&) = delete;

    const nbl::HttpClient& client() const { return *client_; }

    /// Runs that on the worker, and waits for its end.
    template <typename What>
    void run(What what) {
        std::promise<void> done;
        worker_.post([&] {
            what();
            done.set_value();
        });
        done.get_future().wait();
    }

private:
    nbl::Worker worker_;
    std::unique_ptr<nbl::HttpClient> client_;
};

/// Waits for what another thread tells; false if it does not within a long time.
template <typename T>
bool comes(std::future<T>& value) {
    return value.wait_for(std::chrono::seconds(60)) == std::future_status::ready;
}

#endif
