#ifndef QRA_TESTS_UNIT_SHARE_SHARE_FIXTURE_H
#define QRA_TESTS_UNIT_SHARE_SHARE_FIXTURE_H

#include <gtest/gtest.h>
#include <qra/qra_batch.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/share/src/qra_share_thread.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

/// A selected item as the agent gives its values. What is not there cannot be read.
struct SharedItem {
    std::map<std::string, std::string> texts;
    std::map<std::string, long long> numbers;
};

/// What the test wants the agent of a job to hold, and what the job asked of it. Outlives the agent.
struct ShareScript {
    std::vector<SharedItem> items;
    std::optional<int> count;  ///< of the selection, if not that of the items
    bool count_works = true;
    bool add_works = true;
    bool delete_works = true;
    bool set_works = true;
    std::function<void()> on_add;  ///< called within AddFile()

    std::vector<std::string> added;
    std::vector<std::string> deleted;
    std::vector<std::pair<std::string, int>> set;
    std::vector<std::string> read;  ///< keys, in the order in which they were asked for
    int cursor = -1;
};

/// A local agent that follows a ShareScript.
class ScriptedAgent : public CQRALocalAgent {
public:
    explicit ScriptedAgent(ShareScript& script) : script_(script) {}

    using CQRALocalAgent::GetItemValue;
    using CQRALocalAgent::SetItemValue;
    qra_error_code_e GetSelectionCount(CQRAAgentHandle*, int* count) override;
    qra_error_code_e MoveToIndex(CQRAAgentHandle*, int index) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char* key, char** value) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char* key, int* value) override {
        return number(key, value);
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char* key, bool* value) override {
        return number(key, value);
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char* key, long* value) override {
        return number(key, value);
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char* key, unsigned long long* value) override {
        return number(key, value);
    }
    qra_error_code_e SetItemValue(CQRAAgentHandle*, const char* key, int value) override;
    qra_error_code_e AddFile(const char* path) override;
    qra_error_code_e DeleteFile(const char* id) override;

private:
    const SharedItem* item() const;

    template <class T>
    qra_error_code_e number(const char* key, T* value) {
        script_.read.push_back(key);
        if (item() == nullptr || item()->numbers.count(key) == 0) {
            return QRA_ERROR_INTERNAL;
        }
        *value = static_cast<T>(item()->numbers.at(key));
        return QRA_ERROR_NONE;
    }

    ShareScript& script_;
};

/// One call of the client's callback.
struct BatchEvent {
    qra_event_e event;
    qra_share_status_info_s status;
};

/// A client of batch jobs: collects their events, and waits for them.
class BatchClient {
public:
    BatchClient();
    BatchClient(const BatchClient&) = delete;
    BatchClient& operator=(const BatchClient&) = delete;

    qra_share_user_data_s* param() { return &param_; }
    /// Called within the callback, on the job's thread.
    void on_event(std::function<void(CQRASendHandle*, const BatchEvent&)> hook) { hook_ = std::move(hook); }

    std::vector<BatchEvent> events() const;
    /// The events but those of progress.
    std::vector<qra_event_e> milestones() const;
    int count(qra_event_e event) const;
    /// Waits for an event; false if it did not come in time.
    bool wait_for(qra_event_e event);
    /// Waits until the job is over, by success or failure.
    bool wait_for_end();

private:
    static bool on_share(void* self, CQRASendHandle* handle, qra_event_e event,
                         qra_share_status_info_s* status);

    qra_share_user_data_s param_;
    std::function<void(CQRASendHandle*, const BatchEvent&)> hook_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<BatchEvent> events_;
};

/// A list with a scripted agent in the registry, and a client. After each test no descriptor points below its
/// directory.
class ShareTest : public ::testing::Test {
protected:
    ShareTest();
    ~ShareTest() override;

    /// Writes a source file and selects it; its path.
    std::string select(const std::string& name, const std::string& content, int type = QRA_MEDIA_TYPE_IMAGE);
    /// Starts a job through the exported function.
    qra_error_code_e start(qra_processor_type_e type);
    /// Runs a copy to its end and stops it.
    void run_copy();
    /// Runs a job of a class of its own to its end and stops it.
    void run(std::unique_ptr<IQRAShareThread> thread);
    /// Stops the started job, if there is one.
    void stop(qra_stop_type_e type = QRA_STOP_TYPE_REMOVE);
    /// Names of the files in a folder of the destination, sorted.
    std::vector<std::string> copied(const std::string& folder = "PHOTO") const;

    LogCapture log_;
    TempDir dir_;
    ShareScript script_;
    BatchClient client_;
    qra_share_s param_;
    CQRAAgentHandle* list_;
    CQRASendHandle* job_ = nullptr;
    std::string dest_;

private:
    CQRAAgentHandle list_handle_;
};

#endif
