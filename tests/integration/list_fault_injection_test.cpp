#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <mutex>
#include <vector>

#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

/// The answer to a list request.
class Answer {
public:
    static bool on_list(void* answer, CQRAAgentHandle*, qra_event_e event, int, const char*) {
        auto* const self = static_cast<Answer*>(answer);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->event_ = event;
        self->came_.notify_all();
        return true;
    }

    /// The event; -1 if none came within 30 seconds.
    int wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        came_.wait_for(lock, std::chrono::seconds(30), [&] { return event_ >= 0; });
        return event_;
    }

private:
    std::mutex mutex_;
    std::condition_variable came_;
    int event_ = -1;
};

/// What a client got of one request, from the request to the disconnect.
struct Outcome {
    bool accepted = false;
    int event = -1;
    std::vector<std::string> tiles;  ///< as JSON
};

bool operator==(const Outcome& left, const Outcome& right) {
    return left.accepted == right.accepted && left.event == right.event && left.tiles == right.tiles;
}

std::vector<std::string> read_tiles(qra_agent_handler_h handle) {
    qra_page_param_h style = nullptr;
    EXPECT_EQ(qra_create_page_param(&style), QRA_ERROR_NONE);
    qra_param_set_page_style_mask(style, 0x26);
    qra_param_set_page_style_group_index(style, -1);
    int count = 0;
    if (qra_set_page_style_v2(handle, style) == QRA_ERROR_NONE) {
        qra_get_item_count_v2(handle, &count);
    }
    qra_destroy_page_param(style);
    std::vector<std::string> tiles;
    for (int i = 0; i < count; ++i) {
        char* item = nullptr;
        tiles.push_back(qra_get_item_v2(handle, i, &item) == QRA_ERROR_NONE ? take(item) : "(failed)");
    }
    return tiles;
}

/// One whole list request, as a browser makes it.
Outcome list(const std::string& path, const char* content, const char* category,
             const char* keyword = nullptr) {
    qra_general_param_h param = nullptr;
    EXPECT_EQ(qra_create_general_param(&param), QRA_ERROR_NONE);
    qra_param_set_general_source(param, "SOURCE_MSC");
    qra_param_set_general_path(param, path.c_str());
    qra_param_set_general_content_type(param, content);
    qra_param_set_general_sort_category(param, category);
    qra_param_set_general_is_uhd_meta(param, true);
    if (keyword != nullptr) {
        qra_param_set_general_key_word(param, keyword);
    }
    Outcome outcome;
    Answer answer;
    qra_agent_handler_h handle = nullptr;
    outcome.accepted = qra_request_list_v2(param, Answer::on_list, &answer, &handle) == QRA_ERROR_NONE;
    if (outcome.accepted) {
        outcome.event = answer.wait();
        outcome.tiles = read_tiles(handle);
        EXPECT_EQ(qra_disconnect_v2(handle), QRA_ERROR_NONE);
    }
    qra_destroy_general_param(param);
    return outcome;
}

/// A folder of twenty rows of every kind, and a folder in it.
class ListFaultInjection : public SampleDrive {
protected:
    ListFaultInjection() {
        for (int i = 1; i <= 8; ++i) {
            write("show/picture " + std::to_string(i) + ".jpg");
        }
        for (int i = 1; i <= 4; ++i) {
            write("show/film " + std::to_string(i) + ".mp4");
            write("show/song " + std::to_string(i) + ".mp3");
        }
        write_recording("show/news", "program_title=News picture\nchannel_name=BBC\nmajor=1\n");
        write_recording("show/sports", "program_title=Sports\nchannel_name=ITV\nmajor=2\n");
        write("show/title.um4");
        write("show/deep/other.jpg");
    }

    /**
     * Lets the first call of a request fail, then the second, and so on until a request comes through without
     * a fault. Each request is answered, by a success or by a failure, and the one without a fault is like
     * one before the first fault.
     */
    void run_with_every_call_failing(const char* content, const char* category,
                                     const char* keyword = nullptr) {
        faults::reset();
        const Outcome expected = list(path("show"), content, category, keyword);
        ASSERT_EQ(expected.event, QRA_EVENT_LIST_SUCCESS) << log.text();
        ASSERT_FALSE(expected.tiles.empty());
        int failures = 0;
        for (int n = 1;; ++n) {
            faults::fail_call(n);
            const Outcome outcome = list(path("show"), content, category, keyword);
            if (faults::failed().empty()) {
                EXPECT_TRUE(outcome == expected);
                break;
            }
            EXPECT_TRUE(!outcome.accepted || outcome.event == QRA_EVENT_LIST_SUCCESS ||
                        outcome.event == QRA_EVENT_LIST_FAILED)
                << n << " " << faults::failed();
            failures += !outcome.accepted || outcome.event == QRA_EVENT_LIST_FAILED;
            ASSERT_LT(n, 100000);
        }
        EXPECT_GT(failures, 5) << "the faults did not reach the request";
        faults::reset();
        EXPECT_TRUE(list(path("show"), content, category, keyword) == expected);
    }
};

}  // namespace

TEST_F(ListFaultInjection, AFolderByTitleIsAnsweredWhateverFails) {
    scan();
    run_with_every_call_failing("CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
}

TEST_F(ListFaultInjection, AFolderByDateWithItsGroupsIsAnsweredWhateverFails) {
    scan();
    run_with_every_call_failing("CONTENT-IMAGE", "CATEGORY-FOLDER-DATE");
}

TEST_F(ListFaultInjection, AUhdFolderIsAnsweredWhateverFails) {
    scan();
    run_with_every_call_failing("CONTENT-VIDEO", "CATEGORY-UHD-FOLDER-WITHUPFOLDER");
}

TEST_F(ListFaultInjection, RecordingsByChannelAreAnsweredWhateverFails) {
    scan();
    run_with_every_call_failing("CONTENT-PVR", "CATEGORY-CHANNEL_NAME");
}

TEST_F(ListFaultInjection, AKeywordSearchIsAnsweredWhateverFails) {
    scan();
    run_with_every_call_failing("CONTENT-FOLDER", "CATEGORY-KEYWORD-SEARCH", "picture");
}

TEST_F(ListFaultInjection, AFolderThatIsScannedFirstIsAnsweredWhateverFails) {
    // A scan of one folder does not make the storage count as scanned, so that every round scans again.
    list(path("show"), "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE");
    list(path("show"), "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE");
    ASSERT_EQ(faults::count("media_content_scan_folder_v2"), 2);
    run_with_every_call_failing("CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE");
}
