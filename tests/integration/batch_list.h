#ifndef QRA_TESTS_INTEGRATION_BATCH_LIST_H
#define QRA_TESTS_INTEGRATION_BATCH_LIST_H

#include <qra/qra_content_agent.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// An open list of a folder's media, as a client of the exported functions has it, and the jobs on it.
class BatchList {
public:
    /// Opens the list, with folders and media and nothing else, and ok() tells whether that worked.
    explicit BatchList(const std::string& path, int mask = 0x06);
    ~BatchList();
    BatchList(const BatchList&) = delete;
    BatchList& operator=(const BatchList&) = delete;

    bool ok() const { return handle_ != nullptr && event_ == QRA_EVENT_LIST_SUCCESS; }
    /// Names of the tiles, in order.
    std::vector<std::string> names() const;
    /// Selects a tile by its name; false if there is none.
    bool select(const std::string& name) const;
    /// Selects every tile that can be selected.
    void select_all() const;
    void navigate(qra_navigation_e navigation) const { qra_set_navigation_v2(handle_, navigation); }

    void set_patience(std::chrono::seconds patience) { patience_ = patience; }

    using Watch = std::function<void(qra_event_e, const qra_share_status_info_s&)>;
    /// Runs a job to its end and stops it; the event with which it ended, or -1.
    int run(qra_processor_type_e type, const std::string& destination, const Watch& watch = nullptr);
    /// The two halves of it.
    bool start(qra_processor_type_e type, const std::string& destination, const Watch& watch = nullptr);
    int finish();
    /// Stops a job that was started, whether it is over or not.
    bool stop();

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*);
    static bool on_share(void* self, CQRASendHandle*, qra_event_e event, qra_share_status_info_s* status);
    std::string name_of(int tile) const;
    int tiles() const;
    int wait();

    qra_agent_handler_h handle_ = nullptr;
    CQRASendHandle* job_ = nullptr;
    std::chrono::seconds patience_{60};
    Watch watch_;
    std::mutex mutex_;
    std::condition_variable changed_;
    int event_ = -1;
};

#endif
