#ifndef QRA_TESTS_FAKES_FAKE_SOURCE_H
#define QRA_TESTS_FAKES_FAKE_SOURCE_H

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/qra_source_base.h"

/// What the test wants a source to hold and to refuse, and what was asked of it. Outlives the source.
struct SourceScript {
    struct Item {
        std::map<std::string, std::string> texts;
        std::map<std::string, long long> numbers;
        std::map<std::string, double> reals;
    };

    // The list.
    std::vector<Item> items;
    std::map<qra_media_type_e, int> counts;
    int folder_count = 0;
    std::optional<CQRAGroupInfo> groups = CQRAGroupInfo();
    std::optional<std::string> rating;
    std::optional<int> bookmark;

    // What fails.
    bool open_works = true;
    bool close_works = true;
    bool execute_works = true;
    bool cancel_works = false;
    bool count_works = true;

    /// Answer each request with success, on a thread of the source.
    bool answers_by_itself = false;

    // What was asked.
    std::vector<std::string> calls;
    std::vector<std::string> paths;  ///< of each Execute(); "(null)" for none
    int cursor = 0;
};

/// A source that follows a SourceScript. Its callback discipline is that of a real one: one mutex is held
/// through the callback, UNSetCallback() waits for it and SetCallback() does not.
class FakeSource : public IQRASourceBase {
public:
    explicit FakeSource(SourceScript& script) : script_(script) {}
    ~FakeSource() override;

    /// Calls the completion callback from this thread; false if none is set.
    bool complete(qra_event_e event);

    using IQRASourceBase::Open;
    bool Open() override;
    bool Open(char* device) override;
    bool IsOpen() override { return open_; }
    bool Close() override;
    bool SetCallback(qra_source_complete_cb cb, void* user_data) override;
    bool SetCallback(qra_source_transfer_cb, void*) override { return false; }
    bool UNSetCallback() override;
    bool Execute(qra_general_s* param) override;

    bool MoveToIndex(int index) override;
    bool MoveToPrevious() override { return move_to(script_.cursor - 1, "MoveToPrevious"); }
    bool MoveToNext() override { return move_to(script_.cursor + 1, "MoveToNext"); }
    bool GetItemCount(int* count) override;
    bool GetItemCountByType(qra_media_type_e type, int* count) override;
    bool GetValue(std::string field, char** value) override;
    bool GetValue(std::string field, int* value) override { return number(field, value); }
    bool GetValue(std::string field, unsigned long long* value) override { return number(field, value); }
    bool GetValue(std::string field, long* value) override { return number(field, value); }
    bool GetValue(std::string field, bool* value) override { return number(field, value); }
    bool GetValue(std::string field, double* value) override;
    bool SetValue(const char* field, long value) override;
    bool SetValue(const char* field, int value) override;
    bool SetValue(const char* field, const char* value) override;
    bool GetDBIndex(char* id, int* index) override;
    CQRAGroupInfo* GetGroupInfo() override;
    bool GetBookMark(bool (*cb)(void*, int), void* user_data) override;
    int GetFolderCount() override { return script_.folder_count; }
    bool GetRatingInfo(char** rating) override;
    bool CancelAsync() override;

private:
    bool move_to(int index, const std::string& call);
    bool note(const std::string& call, bool result);
    const SourceScript::Item* item() const;
    void join();

    template <class T>
    bool number(const std::string& field, T* value) {
        const SourceScript::Item* at_cursor = item();
        if (at_cursor == nullptr || at_cursor->numbers.count(field) == 0)
            return false;
        *value = static_cast<T>(at_cursor->numbers.at(field));
        return true;
    }

    SourceScript& script_;
    bool open_ = false;
    std::mutex callback_mutex_;      ///< held through the callback
    std::mutex registration_mutex_;  ///< covers the next two
    qra_source_complete_cb cb_ = nullptr;
    void* user_data_ = nullptr;
    std::vector<std::thread> workers_;  ///< one for each request since the last Close()
};

#endif
