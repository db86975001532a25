#include "tests/unit/share/share_fixture.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "libqra-agent/agent/src/qra_handler_mgr.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kPatience{60};

qra_error_code_e internal_unless(bool ok) {
    return ok ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

}  // namespace

qra_error_code_e ScriptedAgent::GetSelectionCount(CQRAAgentHandle*, int* count) {
    if (script_.count_works) {
        *count = script_.count.value_or(static_cast<int>(script_.items.size()));
    }
    return internal_unless(script_.count_works);
}

qra_error_code_e ScriptedAgent::MoveToIndex(CQRAAgentHandle*, int index) {
    if (index < 0 || static_cast<size_t>(index) >= script_.items.size()) {
        return QRA_ERROR_INVALID_INDEX;
    }
    script_.cursor = index;
    return QRA_ERROR_NONE;
}

qra_error_code_e ScriptedAgent::GetItemValue(CQRAAgentHandle*, const char* key, char** value) {
    script_.read.push_back(key);
    if (item() == nullptr || item()->texts.count(key) == 0) {
        return QRA_ERROR_INTERNAL;
    }
    *value = strdup(item()->texts.at(key).c_str());
    return QRA_ERROR_NONE;
}

qra_error_code_e ScriptedAgent::SetItemValue(CQRAAgentHandle*, const char* key, int value) {
    script_.set.emplace_back(key, value);
    return internal_unless(script_.set_works);
}

qra_error_code_e ScriptedAgent::AddFile(const char* path) {
    if (script_.on_add) {
        script_.on_add();
    }
    if (script_.add_works) {
        script_.added.push_back(path);
    }
    return internal_unless(script_.add_works);
}

qra_error_code_e ScriptedAgent::DeleteFile(const char* id) {
    script_.deleted.push_back(id);
    return internal_unless(script_.delete_works);
}

const SharedItem* ScriptedAgent::item() const {
    return script_.cursor < 0 ? nullptr : &script_.items[static_cast<size_t>(script_.cursor)];
}

BatchClient::BatchClient() {
    param_.udata = this;
    param_.cb = &on_share;
}

std::vector<BatchEvent> BatchClient::events() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return events_;
}

std::vector<qra_event_e> BatchClient::milestones() const {
    std::vector<qra_event_e> found;
    for (const BatchEvent& event : events()) {
        if (event.event != QRA_EVENT_BATCH_PROGRESS) {
            found.push_back(event.event);
        }
    }
    return found;
}

int BatchClient::count(qra_event_e event) const {
    const std::vector<BatchEvent> all = events();
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](const BatchEvent& one) { return one.event == event; }));
}

bool BatchClient::wait_for(qra_event_e event) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience, [&] {
        return std::any_of(events_.begin(), events_.end(),
                           [&](const BatchEvent& one) { return one.event == event; });
    });
}

bool BatchClient::wait_for_end() {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience, [&] {
        return !events_.empty() && (events_.back().event == QRA_EVENT_BATCH_FAILED ||
                                    events_.back().event == QRA_EVENT_BATCH_FINISHED);
    });
}

bool BatchClient::on_share(void* self, CQRASendHandle* handle, qra_event_e event,
                           qra_share_status_info_s* status) {
    auto* client = static_cast<BatchClient*>(self);
    const BatchEvent record = {event, *status};
    if (client->hook_) {
        client->hook_(handle, record);
    }
    const std::lock_guard<std::mutex> lock(client->mutex_);
    client->events_.push_back(record);
    client->changed_.notify_all();
    return true;
}

ShareTest::ShareTest() : list_(&list_handle_), dest_(dir_.path("dest")) {
    fs::create_directories(dest_);
    fs::create_directories(dir_.path("source"));
    list_->SetAgentInstance(new ScriptedAgent(script_));
    CQRAHandlerMgr::GetInstance()->Add(list_->GetValue());
    param_.dest_dev_path = dest_.data();
}

ShareTest::~ShareTest() {
    stop();
    CQRAHandlerMgr::GetInstance()->Delete(list_->GetValue());
    EXPECT_EQ(descriptors_below(dir_.path()), 0);
}

std::string ShareTest::select(const std::string& name, const std::string& content, int type) {
    const std::string path = dir_.write("source/" + name, content);
    SharedItem item;
    item.texts = {{"DISPLAY_NAME", name}, {"FILE_PATH", path}, {"ID_QRA", "id of " + name}};
    item.numbers = {{"MEDIA_TYPE", type},
                    {"MODIFIED_TIME", 1},
                    {"SIZE", static_cast<long long>(content.size())},
                    {"CONTENT_LOCK", 0}};
    script_.items.push_back(item);
    return path;
}

qra_error_code_e ShareTest::start(qra_processor_type_e type) {
    return qra_batch_process_v2(type, &param_, list_, client_.param(), &job_);
}

void ShareTest::run_copy() {
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    stop();
}

void ShareTest::run(std::unique_ptr<IQRAShareThread> thread) {
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    IQRAShareThread* job = thread.get();
    ASSERT_EQ(job->Excute(&param_, list_, client_.param(), &out), QRA_ERROR_NONE);
    thread.release();  // the handle's from here on
    EXPECT_TRUE(client_.wait_for_end());
    EXPECT_EQ(job->Stop(&handle, QRA_STOP_TYPE_REMOVE), QRA_ERROR_NONE);
}

void ShareTest::stop(qra_stop_type_e type) {
    if (job_ != nullptr) {
        EXPECT_EQ(qra_stop_batch_process_v3(job_, type), QRA_ERROR_NONE);
        job_ = nullptr;
    }
}

std::vector<std::string> ShareTest::copied(const std::string& folder) const {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(dest_ + "/" + folder, error)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
