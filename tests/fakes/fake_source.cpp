#include "tests/fakes/fake_source.h"

#include <cstring>

#include "libqra-agent/agent/src/qra_type.h"

FakeSource::~FakeSource() {
    join();
    script_.calls.push_back("destroyed");
}

bool FakeSource::complete(qra_event_e event) {
    std::lock_guard<std::mutex> guard(callback_mutex_);
    qra_source_complete_cb cb = nullptr;
    void* user_data = nullptr;
    {
        std::lock_guard<std::mutex> registration(registration_mutex_);
        cb = cb_;
        user_data = user_data_;
    }
    return cb != nullptr && cb(event, user_data);
}

bool FakeSource::Open() {
    open_ = script_.open_works;
    return note("Open", open_);
}

bool FakeSource::Open(char* device) {
    open_ = script_.open_works;
    return note(std::string("Open ") + (device != nullptr ? device : "(null)"), open_);
}

bool FakeSource::Close() {
    if (!script_.close_works)
        return note("Close", false);
    open_ = false;
    UNSetCallback();
    join();
    return note("Close", true);
}

bool FakeSource::SetCallback(qra_source_complete_cb cb, void* user_data) {
    std::lock_guard<std::mutex> registration(registration_mutex_);
    cb_ = cb;
    user_data_ = user_data;
    return true;
}

bool FakeSource::UNSetCallback() {
    std::lock_guard<std::mutex> guard(callback_mutex_);
    std::lock_guard<std::mutex> registration(registration_mutex_);
    cb_ = nullptr;
    user_data_ = nullptr;
    return true;
}

bool FakeSource::Execute(qra_general_s* param) {
    script_.paths.push_back(param->szPath != nullptr ? param->szPath : "(null)");
    if (!script_.execute_works)
        return false;
    // A worker of an earlier request may still wait for the agent mutex, which the caller holds.
    if (script_.answers_by_itself)
        workers_.emplace_back([this] { complete(QRA_EVENT_LIST_SUCCESS); });
    return true;
}

bool FakeSource::MoveToIndex(int index) {
    return move_to(index, "MoveToIndex " + std::to_string(index));
}

bool FakeSource::GetItemCount(int* count) {
    if (!script_.count_works)
        return false;
    *count = static_cast<int>(script_.items.size());
    return true;
}

bool FakeSource::GetItemCountByType(qra_media_type_e type, int* count) {
    if (!script_.count_works)
        return false;
    *count = script_.counts[type];
    return true;
}

bool FakeSource::GetValue(std::string field, char** value) {
    const SourceScript::Item* at_cursor = item();
    if (at_cursor == nullptr || at_cursor->texts.count(field) == 0)
        return false;
    *value = strdup(at_cursor->texts.at(field).c_str());
    return true;
}

bool FakeSource::GetValue(std::string field, double* value) {
    const SourceScript::Item* at_cursor = item();
    if (at_cursor == nullptr || at_cursor->reals.count(field) == 0)
        return number(field, value);
    *value = at_cursor->reals.at(field);
    return true;
}

bool FakeSource::SetValue(const char* field, long value) {
    return note(std::string("SetValue time ") + field + "=" + std::to_string(value), value > 0);
}

bool FakeSource::SetValue(const char* field, int value) {
    return note(std::string("SetValue int ") + field + "=" + std::to_string(value), value >= 0);
}

bool FakeSource::SetValue(const char* field, const char* value) {
    return note(std::string("SetValue text ") + field + "=" + value, value[0] != '\0');
}

bool FakeSource::GetDBIndex(char* id, int* index) {
    for (size_t i = 0; i < script_.items.size(); ++i) {
        const auto it = script_.items[i].texts.find("ID_QRA");
        if (it != script_.items[i].texts.end() && it->second == id) {
            *index = static_cast<int>(i);
            return true;
        }
    }
    return false;
}

CQRAGroupInfo* FakeSource::GetGroupInfo() {
    return script_.groups.has_value() ? new CQRAGroupInfo(*script_.groups) : nullptr;
}

bool FakeSource::GetBookMark(bool (*cb)(void*, int), void* user_data) {
    return script_.bookmark.has_value() && cb(user_data, *script_.bookmark);
}

bool FakeSource::GetRatingInfo(char** rating) {
    if (!script_.rating.has_value())
        return false;
    *rating = strdup(script_.rating->c_str());
    return true;
}

bool FakeSource::CancelAsync() {
    return note("CancelAsync", script_.cancel_works);
}

bool FakeSource::move_to(int index, const std::string& call) {
    const bool valid = index >= 0 && index < static_cast<int>(script_.items.size());
    if (valid)
        script_.cursor = index;
    return note(call, valid);
}

bool FakeSource::note(const std::string& call, bool result) {
    script_.calls.push_back(call);
    return result;
}

const SourceScript::Item* FakeSource::item() const {
    return script_.cursor < static_cast<int>(script_.items.size()) ? &script_.items[script_.cursor] : nullptr;
}

void FakeSource::join() {
    for (std::thread& worker : workers_)
        worker.join();
    workers_.clear();
}
