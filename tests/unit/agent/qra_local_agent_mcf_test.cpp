#include <qra/qra_agent.h>

#include <condition_variable>
#include <mutex>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

/// A drive with one picture, and an open list of its folder.
class MediaDatabase : public SampleDrive {
protected:
    MediaDatabase() {
        write("show/a.jpg");
        scan();
    }
    ~MediaDatabase() override {
        if (handle_ != nullptr) {
            EXPECT_EQ(qra_disconnect_v2(handle_), QRA_ERROR_NONE);
        }
    }

    /// Requests the folder, or requests it again, and lays it out; the number of its tiles.
    int list() {
        std::string folder = path("show");
        qra_general_s param;
        param.pSource = const_cast<char*>("SOURCE_MSC");
        param.szPath = folder.data();
        param.szContentType = const_cast<char*>("CONTENT-IMAGE");
        param.szSortCategory = const_cast<char*>("CATEGORY-FOLDER-TITLE");
        answered_ = false;
        EXPECT_EQ(qra_request_list_v2(&param, &on_list, this, &handle_), QRA_ERROR_NONE);
        {
            std::unique_lock<std::mutex> lock(mutex_);
            came_.wait(lock, [&] { return answered_; });
        }
        qra_page_style_s style;
        style.mask = 0x04;
        EXPECT_EQ(qra_set_page_style_v2(handle_, &style), QRA_ERROR_NONE);
        int count = -1;
        EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
        return count;
    }

    /// The id of the first tile.
    std::string first_id() {
        char* id = nullptr;
        EXPECT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);
        EXPECT_EQ(qra_get_item_value_char_v2(handle_, "ID_QRA", &id), QRA_ERROR_NONE);
        return take(id);
    }
    CQRALocalAgent& agent() { return *CQRAAgentHandle::GetLocalAgent(handle_); }

    CQRAAgentHandle* handle_ = nullptr;

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e, int, const char*) {
        auto* test = static_cast<MediaDatabase*>(self);
        const std::lock_guard<std::mutex> lock(test->mutex_);
        test->answered_ = true;
        test->came_.notify_all();
        return true;
    }

    std::mutex mutex_;
    std::condition_variable came_;
    bool answered_ = false;
};

TEST_F(MediaDatabase, AFileIsAddedAndDeleted) {
    ASSERT_EQ(list(), 1);
    write("show/b.jpg");

    EXPECT_EQ(agent().AddFile(path("show/b.jpg").c_str()), QRA_ERROR_NONE);
    EXPECT_EQ(list(), 2);

    EXPECT_EQ(agent().DeleteFile(first_id().c_str()), QRA_ERROR_NONE);
    EXPECT_EQ(list(), 1);
}

TEST_F(MediaDatabase, AFileThatTheDatabaseRefusesIsInternal) {
    ASSERT_EQ(list(), 1);
    faults::fail("media_info_insert_to_db");
    faults::fail("media_info_delete_from_db");

    EXPECT_EQ(agent().AddFile(path("show/a.jpg").c_str()), QRA_ERROR_INTERNAL);
    EXPECT_EQ(agent().DeleteFile(first_id().c_str()), QRA_ERROR_INTERNAL);
}

TEST_F(MediaDatabase, ANullFileIsRefused) {
    ASSERT_EQ(list(), 1);

    EXPECT_EQ(agent().AddFile(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent().DeleteFile(nullptr), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(log.count("pPath == NULL"), 2);
}

TEST_F(MediaDatabase, ANumberOfAnItemIsReadAndStoredWithoutARequest) {
    ASSERT_EQ(list(), 1);
    const std::string id = first_id();
    int count = -1;

    EXPECT_EQ(qra_set_item_value_int_mcf(id.c_str(), "PLAYED_COUNT", 5), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_int_mcf(id.c_str(), "PLAYED_COUNT", &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 5);

    EXPECT_EQ(qra_get_item_value_int_mcf("", "PLAYED_COUNT", &count), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_mcf(id.c_str(), "", &count), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_int_mcf(id.c_str(), "NO_SUCH_FIELD", 5), QRA_ERROR_INTERNAL);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(log.count("GetItemValueMcf faild."), 2);
    EXPECT_EQ(log.count("SetItemValueMcf faild."), 1);
}

TEST_F(MediaDatabase, AStorageIsFoundByAnyPathOnIt) {
    std::string inside = path("show");
    std::string outside = root() + "/stick";
    std::string empty;
    char* id = nullptr;
    char untouched[] = "untouched";
    char* none = untouched;

    EXPECT_EQ(qra_get_storage_id_v2(inside.data(), &id), QRA_ERROR_NONE);
    EXPECT_NE(take(id), "(none)");
    EXPECT_EQ(qra_get_storage_id_v2(outside.data(), &none), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_storage_id_v2(empty.data(), &none), QRA_ERROR_INTERNAL);

    EXPECT_EQ(none, untouched);
    EXPECT_EQ(log.count("GetStorageId faild."), 2);
}

TEST_F(MediaDatabase, WithoutAConnectionEveryQuestionIsInternal) {
    faults::fail("media_content_connect");
    std::string inside = path("show");
    char* id = nullptr;
    int count = -1;

    EXPECT_EQ(qra_get_storage_id_v2(inside.data(), &id), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_mcf("id", "PLAYED_COUNT", &count), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_int_mcf("id", "PLAYED_COUNT", 1), QRA_ERROR_INTERNAL);

    EXPECT_EQ(id, nullptr);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(log.count("pMCFWrapper->ConnectMCF() == false."), 3);
}

}  // namespace
