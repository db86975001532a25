#include "libqra-agent/source/ptp/qra_ptp_source.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"
#include "tests/fakes/camera_media.h"
#include "tests/unit/ptp/camera_fixture.h"

using testing::ElementsAre;

namespace {

constexpr std::chrono::seconds kDeadline(60);

/// A gate that a thread can be held at.
class Gate {
public:
    void close() { set(false); }
    void open() { set(true); }

    /// Waits at a closed gate.
    void pass() {
        std::unique_lock<std::mutex> lock(mutex_);
        ++arrived_;
        changed_.notify_all();
        EXPECT_TRUE(changed_.wait_for(lock, kDeadline, [this] { return open_; }));
    }

    void wait_for_arrival() {
        std::unique_lock<std::mutex> lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, kDeadline, [this] { return arrived_ > 0; }));
    }

private:
    void set(bool open) {
        const std::lock_guard<std::mutex> lock(mutex_);
        open_ = open;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = true;
    int arrived_ = 0;
};

/// A source with a client that notes its events.
class Client {
public:
    Client() {
        param_.pSource = const_cast<char*>("SOURCE_PTP");
        param_.szSortCategory = const_cast<char*>("CATEGORY-FOLDER-TITLE");
        param_.szContentType = const_cast<char*>("CONTENT-FOLDER");
        param_.szFolderId = const_cast<char*>("0");
        param_.nBusValue = 1;
        param_.nDeviceValue = 2;
    }
    ~Client() { source_.Close(); }

    qra_general_s& param() { return param_; }
    CQRAPTPSource& source() { return source_; }
    void hold_callback(Gate* gate) { gate_ = gate; }

    void open() {
        EXPECT_TRUE(source_.Open());
        EXPECT_TRUE(source_.SetCallback(&Client::on_complete, this));
    }

    bool execute() { return source_.Execute(&param_); }

    /// Waits for as many events, and gives the last.
    int wait_for(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, kDeadline, [&] { return events_.size() >= count; });
        return events_.size() == count ? events_.back() : -1;
    }

    /// Opens the source if need be, and requests a list.
    int list() {
        if (!source_.IsOpen()) {
            open();
        }
        const size_t before = event_count();
        EXPECT_TRUE(execute());
        return wait_for(before + 1);
    }

    size_t event_count() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return events_.size();
    }

    int count() {
        int count = -1;
        EXPECT_TRUE(source_.GetItemCount(&count));
        return count;
    }

    std::string text(const char* field) {
        char* value = nullptr;
        EXPECT_TRUE(source_.GetValue(field, &value)) << field;
        const std::unique_ptr<char, decltype(&free)> owner(value, &free);
        return value != nullptr ? value : "null";
    }

    template <class T>
    T number(const char* field) {
        T value{};
        EXPECT_TRUE(source_.GetValue(field, &value)) << field;
        return value;
    }

    std::vector<std::string> names() {
        std::vector<std::string> names;
        for (int i = 0; i < count(); ++i) {
            EXPECT_TRUE(source_.MoveToIndex(i));
            names.push_back(text("DISPLAY_NAME"));
        }
        return names;
    }

private:
    static bool on_complete(qra_event_e event, void* client) {
        auto* self = static_cast<Client*>(client);
        if (self->gate_ != nullptr) {
            self->gate_->pass();
        }
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->events_.push_back(event);
        self->changed_.notify_all();
        return true;
    }

    qra_general_s param_;
    CQRAPTPSource source_;
    Gate* gate_ = nullptr;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> events_;
};

class PtpSource : public CameraFixture {
protected:
    PtpSource() {
        FakeMtp::Object picture = file(5, "b.JPG", 14, 0, "12345");
        picture.width = 4000;
        picture.height = 3000;
        picture.modified_time = 1500000000;
        add_camera().objects = {folder(3, "DCIM"), picture, file(6, "c.mp4", 6), file(7, "a.jpg", 14, 3)};
    }

    CQRAPTPSource& source() { return client_.source(); }

    /// Lets no thread make `call` before the gate is opened.
    void hold(const std::string& call, Gate& gate) {
        gate.close();
        fake_.before = [call, &gate](const std::string& made, int) {
            if (made == call) {
                gate.pass();
            }
            return 0;
        };
    }

    Client client_;
};
using PtpSourceDeath = PtpSource;

TEST_F(PtpSource, ShowsAFolder) {
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(client_.names(), ElementsAre("DCIM", "b.JPG", "c.mp4"));
    EXPECT_EQ(source().GetFolderCount(), 1);
}

TEST_F(PtpSource, ShowsTheFolderThatIsAskedFor) {
    client_.param().szFolderId = const_cast<char*>("3");
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(client_.names(), ElementsAre("a.jpg"));
}

TEST_F(PtpSource, ShowsAllPicturesForAnyOtherCategory) {
    client_.param().szFolderId = nullptr;
    for (const char* category : {"CATEGORY-TITLE", "CATEGORY-FOLDER", "anything"}) {
        client_.param().szSortCategory = const_cast<char*>(category);
        EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
        EXPECT_THAT(client_.names(), ElementsAre("a.jpg", "b.JPG")) << category;
    }
    EXPECT_EQ(source().GetFolderCount(), 0);
}

TEST_F(PtpSource, AnEmptyFolderIsASuccess) {
    client_.param().szFolderId = const_cast<char*>("99");
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(client_.count(), 0);
}

TEST_F(PtpSource, GivesItsTextsUnderTheirFields) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_TRUE(source().MoveToIndex(1));
    EXPECT_EQ(client_.text("DISPLAY_NAME"), "b.JPG");
    EXPECT_EQ(client_.text("TITLE"), "b");
    EXPECT_EQ(client_.text("THUMBNAIL_PATH"), "ptp://001;002;5");
    EXPECT_EQ(client_.text("PLAY_PATH"), "ptp://12/5");
    EXPECT_EQ(client_.text("FILE_PATH"), "12/5");
    EXPECT_EQ(client_.text("ID_QRA"), "5");
    EXPECT_EQ(client_.text("FORMAT"), "JPG");
}

TEST_F(PtpSource, GivesItsNumbersUnderTheirFields) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_TRUE(source().MoveToIndex(1));
    EXPECT_EQ(client_.number<int>("WIDTH"), 4000);
    EXPECT_EQ(client_.number<int>("HEIGHT"), 3000);
    EXPECT_EQ(client_.number<int>("MODIFIED_TIME"), 1500000000);
    EXPECT_EQ(client_.number<int>("STITCH_TYPE"), 0);
    EXPECT_EQ(client_.number<int>("MEDIA_TYPE"), QRA_MEDIA_TYPE_IMAGE);
    EXPECT_EQ(client_.number<unsigned long long>("SIZE"), 5U);
    EXPECT_FALSE(client_.number<bool>("IS_360"));
}

TEST_F(PtpSource, KnowsEachFieldInItsOwnTypeOnly) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    char* text = nullptr;
    int number = 7;
    unsigned long long size = 7;
    bool flag = true;
    long time = 7;
    double real = 7;
    for (const char* field :
         {"WIDTH", "HEIGHT", "MODIFIED_TIME", "STITCH_TYPE", "MEDIA_TYPE", "SIZE", "IS_360", "DISPLAY_NAME",
          "TITLE", "THUMBNAIL_PATH", "PLAY_PATH", "FILE_PATH", "ID_QRA", "FORMAT", "title", "ARTIST", ""}) {
        const bool is_number = source().GetValue(field, &number);
        const bool is_size = source().GetValue(field, &size);
        const bool is_flag = source().GetValue(field, &flag);
        const bool is_text = source().GetValue(field, &text);
        free(text);
        text = nullptr;
        const bool known =
            std::string(field) != "title" && std::string(field) != "ARTIST" && field[0] != '\0';
        EXPECT_EQ(is_number + is_size + is_flag + is_text, known ? 1 : 0) << field;
        EXPECT_FALSE(source().GetValue(field, &time)) << field;
        EXPECT_FALSE(source().GetValue(field, &real)) << field;
    }
    EXPECT_EQ(time, 7);
    EXPECT_EQ(real, 7);
}

TEST_F(PtpSource, TellsTheMediaTypeByTheExtensionLists) {
    fake_.devices[0].model = "XQ-T410";
    fake_.devices[0].objects = {folder(1, "a"),
                                file(2, "b.jpg", 14),
                                file(3, "c.jpg", 14, 0, noted_picture({"MM", 0x10000})),
                                file(4, "d.mp4", 6),
                                file(5, "e.mp4", 6, 0, noted_film(m360_box(1))),
                                file(6, "f.jpg.raw", 14),
                                file(7, "g.FOLDER", 14)};
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    std::vector<int> types;
    int type = -1;
    for (int i = 0; i < client_.count(); ++i) {
        ASSERT_TRUE(source().MoveToIndex(i));
        types.push_back(source().GetValue("MEDIA_TYPE", &type) ? type : -1);
    }
    // A file whose extension says so counts as a folder.
    EXPECT_THAT(types, ElementsAre(1, 1, 2, 15, 3, 16, -1));
    EXPECT_EQ(source().GetFolderCount(), 2);
}

TEST_F(PtpSource, TakesTheExtensionListsOfTheRequest) {
    client_.param().szExtension =
        const_cast<char*>(R"({"param_media_extension_image":["mp4"],"param_media_extension_video":["jpg"]})");
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(client_.names(), ElementsAre("DCIM", "b.JPG", "c.mp4"));
    EXPECT_EQ(client_.number<int>("MEDIA_TYPE"), QRA_MEDIA_TYPE_IMAGE);
    ASSERT_TRUE(source().MoveToIndex(1));
    EXPECT_EQ(client_.number<int>("MEDIA_TYPE"), QRA_MEDIA_TYPE_VIDEO);
    client_.param().szExtension = nullptr;
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(client_.number<int>("MEDIA_TYPE"), QRA_MEDIA_TYPE_IMAGE);
}

TEST_F(PtpSource, MovesItsCursorWithinTheList) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_FALSE(source().MoveToPrevious());
    EXPECT_TRUE(log_.contains("m_nIndex < 0"));
    EXPECT_TRUE(source().MoveToNext());
    EXPECT_TRUE(source().MoveToNext());
    EXPECT_FALSE(source().MoveToNext());
    EXPECT_TRUE(log_.contains("m_nIndex > vector.size()"));
    EXPECT_EQ(client_.text("DISPLAY_NAME"), "c.mp4");
    EXPECT_TRUE(source().MoveToPrevious());
    EXPECT_EQ(client_.text("DISPLAY_NAME"), "b.JPG");
    for (const int index : {-1, 3, 1000}) {
        EXPECT_FALSE(source().MoveToIndex(index));
        EXPECT_TRUE(log_.contains("nIndex is not in [0,len], nIndex = " + std::to_string(index)));
    }
    EXPECT_EQ(client_.text("DISPLAY_NAME"), "b.JPG");
}

TEST_F(PtpSource, KeepsItsCursorThroughARequest) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_TRUE(source().MoveToIndex(2));
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(client_.text("DISPLAY_NAME"), "c.mp4");
    client_.param().szFolderId = const_cast<char*>("3");
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    char* text = nullptr;
    EXPECT_FALSE(source().GetValue("TITLE", &text));
    EXPECT_FALSE(source().MoveToNext());
    EXPECT_TRUE(source().MoveToIndex(0));
    EXPECT_EQ(client_.text("TITLE"), "a");
}

TEST_F(PtpSource, RefusesNullOutputs) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_FALSE(source().GetItemCount(nullptr));
    EXPECT_FALSE(source().GetItemCountByType(QRA_MEDIA_TYPE_IMAGE, nullptr));
    EXPECT_EQ(log_.count("nCount is null"), 2);
    EXPECT_FALSE(source().GetValue("TITLE", static_cast<char**>(nullptr)));
    EXPECT_FALSE(source().GetValue("WIDTH", static_cast<int*>(nullptr)));
    EXPECT_FALSE(source().GetValue("MEDIA_TYPE", static_cast<int*>(nullptr)));
    EXPECT_FALSE(source().GetValue("SIZE", static_cast<unsigned long long*>(nullptr)));
    EXPECT_FALSE(source().GetValue("IS_360", static_cast<bool*>(nullptr)));
    EXPECT_FALSE(source().GetValue("TIME", static_cast<long*>(nullptr)));
    EXPECT_FALSE(source().GetValue("TIME", static_cast<double*>(nullptr)));
    EXPECT_EQ(log_.count("pValue is null"), 7);
    int index = 7;
    char id[] = "5";
    EXPECT_FALSE(source().GetDBIndex(nullptr, &index));
    EXPECT_FALSE(source().GetDBIndex(id, nullptr));
    EXPECT_EQ(index, 7);
}

TEST_F(PtpSource, GivesNoValueWhenItIsClosed) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_TRUE(source().IsOpen());
    EXPECT_TRUE(source().Close());
    EXPECT_FALSE(source().IsOpen());
    int width = 7;
    EXPECT_FALSE(source().GetValue("WIDTH", &width));
    EXPECT_EQ(width, 7);
    EXPECT_TRUE(log_.contains("CQRAPTPSource is not Open"));
}

TEST_F(PtpSource, CountsAllItemsAsPictures) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    int count = -1;
    EXPECT_TRUE(source().GetItemCountByType(QRA_MEDIA_TYPE_IMAGE, &count));
    EXPECT_EQ(count, 3);
    for (const qra_media_type_e type :
         {QRA_MEDIA_TYPE_FOLDER, QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_IMAGE_EXT}) {
        EXPECT_TRUE(source().GetItemCountByType(type, &count));
        EXPECT_EQ(count, 0) << type;
    }
}

TEST_F(PtpSource, FindsItemsByTheirId) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    int index = -1;
    char id[] = "6";
    EXPECT_TRUE(source().GetDBIndex(id, &index));
    EXPECT_EQ(index, 2);
    char other[] = "06";
    EXPECT_FALSE(source().GetDBIndex(other, &index));
    EXPECT_EQ(index, 2);
}

TEST_F(PtpSource, HasOneGroup) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    const std::unique_ptr<CQRAGroupInfo> groups(source().GetGroupInfo());
    ASSERT_EQ(groups->GetGroupCount(), 1);
    int start = -1;
    int count = -1;
    std::string name;
    groups->GetGroup(0, start, count, name);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(name, "PTP");
}

TEST_F(PtpSource, ChangesNothing) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_FALSE(source().SetValue("WIDTH", 1));
    EXPECT_FALSE(source().SetValue("MODIFIED_TIME", 1L));
    EXPECT_FALSE(source().SetValue("TITLE", "x"));
}

TEST_F(PtpSource, CountsFoldersThroughAllRequests) {
    for (const int folders : {1, 2, 3}) {
        ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(source().GetFolderCount(), folders);
        EXPECT_EQ(client_.count(), 3);
    }
}

TEST_F(PtpSource, RefusesRequestsThatLackSomething) {
    client_.open();
    client_.param().szSortCategory = nullptr;
    EXPECT_FALSE(client_.execute());
    EXPECT_TRUE(log_.contains("PTP-SOURCE: Invalid SortCategory"));
    client_.param().szSortCategory = const_cast<char*>("CATEGORY-FOLDER-TITLE");
    client_.param().szFolderId = nullptr;
    EXPECT_FALSE(client_.execute());
    EXPECT_TRUE(log_.contains("PTP-SOURCE: Invalid FolderId"));
    client_.param().szFolderId = const_cast<char*>("0");
    for (const char* type : {"CONTENT-MUSIC", "", static_cast<const char*>(nullptr)}) {
        client_.param().szContentType = const_cast<char*>(type);
        EXPECT_FALSE(client_.execute());
    }
    EXPECT_EQ(log_.count("PTP-SOURCE: Invalid ContentType"), 3);
    for (const char* type : {"CONTENT-FOLDER", "CONTENT-IMAGE", "CONTENT-VIDEO"}) {
        client_.param().szContentType = const_cast<char*>(type);
        EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS) << type;
    }
    EXPECT_EQ(client_.event_count(), 3U);
}

TEST_F(PtpSource, ARefusedRequestEmptiesTheList) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    client_.param().szSortCategory = nullptr;
    EXPECT_FALSE(client_.execute());
    EXPECT_EQ(client_.count(), 0);
}

TEST_F(PtpSource, FailsWithoutACamera) {
    fake_.devices.clear();
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_FAILED);
    EXPECT_TRUE(log_.contains("can not find camera"));
    client_.param().szSortCategory = const_cast<char*>("CATEGORY-TITLE");
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(log_.count("can not find camera"), 2);
}

TEST_F(PtpSource, FailsForAFolderThatCannotBeRead) {
    fake_.before = [](const std::string& call, int) { return call == "get_object_handles" ? -5 : 0; };
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(client_.count(), 0);
}

TEST_F(PtpSource, CallsNobodyAfterTheCallbackWasTakenAway) {
    Gate gate;
    hold("get_object_handles", gate);
    client_.open();
    ASSERT_TRUE(client_.execute());
    gate.wait_for_arrival();
    EXPECT_TRUE(source().UNSetCallback());
    gate.open();
    source().Close();
    EXPECT_EQ(client_.event_count(), 0U);
}

TEST_F(PtpSource, TakingTheCallbackAwayDoesNotWaitForOneThatRuns) {
    Gate gate;
    gate.close();
    client_.hold_callback(&gate);
    client_.open();
    ASSERT_TRUE(client_.execute());
    gate.wait_for_arrival();
    EXPECT_TRUE(source().UNSetCallback());
    EXPECT_EQ(client_.event_count(), 0U);
    gate.open();
    EXPECT_EQ(client_.wait_for(1), QRA_EVENT_LIST_SUCCESS);
}

TEST_F(PtpSource, ClosingWaitsForTheWalk) {
    Gate gate;
    hold("get_object_handles", gate);
    client_.open();
    ASSERT_TRUE(client_.execute());
    gate.wait_for_arrival();
    std::thread closer([this] { source().Close(); });
    // The flag falls before the walk is waited for.
    while (source().IsOpen()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(fake_.count("objectinfo_get_object_info"), 0);
    gate.open();
    closer.join();
    EXPECT_EQ(fake_.count("objectinfo_get_object_info"), 3);
}

TEST_F(PtpSource, OpensAgainWithoutAnOldRequest) {
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    source().Close();
    client_.open();
    ASSERT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    source().Close();
    EXPECT_EQ(client_.event_count(), 2U);
}

TEST_F(PtpSource, TellsThatItsThreadCannotBeMade) {
    client_.open();
    EXPECT_FALSE(source().Open());
    EXPECT_TRUE(log_.contains("PTP-SOURCE: Create thread fail."));
    EXPECT_TRUE(source().IsOpen());
}

TEST_F(PtpSource, TransfersNothing) {
    EXPECT_TRUE(source().SetCallback(static_cast<qra_source_transfer_cb>(nullptr), nullptr));
    EXPECT_FALSE(source().CancelAsync());
}

TEST_F(PtpSource, TwoSourcesOnOneCameraWaitForEachOther) {
    Client other;
    other.param().szFolderId = const_cast<char*>("3");
    other.param().szContentType = const_cast<char*>("CONTENT-IMAGE");
    client_.open();
    other.open();
    Gate gate;
    hold("objectinfo_get_object_info", gate);
    ASSERT_TRUE(client_.execute());
    gate.wait_for_arrival();
    // The second request is accepted at once, and changes nothing for the first.
    ASSERT_TRUE(other.execute());
    gate.open();
    EXPECT_EQ(client_.wait_for(1), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(other.wait_for(1), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(client_.names(), ElementsAre("DCIM", "b.JPG", "c.mp4"));
    EXPECT_THAT(other.names(), ElementsAre("a.jpg"));
}

TEST_F(PtpSource, TwoSourcesOnTwoCamerasShowEachItsOwn) {
    add_camera(3).objects = {file(1, "x.jpg", 14), folder(2, "y")};
    Client other;
    other.param().nDeviceValue = 3;
    client_.open();
    other.open();
    for (size_t round = 1; round <= 20; ++round) {
        ASSERT_TRUE(client_.execute());
        ASSERT_TRUE(other.execute());
        EXPECT_EQ(client_.wait_for(round), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(other.wait_for(round), QRA_EVENT_LIST_SUCCESS);
        EXPECT_THAT(client_.names(), ElementsAre("DCIM", "b.JPG", "c.mp4"));
        EXPECT_THAT(other.names(), ElementsAre("y", "x.jpg"));
    }
}

TEST_F(PtpSource, ACameraPulledOutDuringAWalkEndsIt) {
    for (int i = 0; i < 100; ++i) {
        fake_.devices[0].objects.push_back(file(100 + i, "p" + std::to_string(i) + ".jpg", 14));
    }
    bool gone = false;
    fake_.before = [&gone](const std::string& call, int object) {
        gone = gone || (call == "objectinfo_get_object_info" && object == 120);
        return gone ? -3 : 0;
    };
    // What was described before stays in the list.
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(client_.count(), 3 + 20);
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(client_.count(), 0);
    client_.param().szSortCategory = const_cast<char*>("CATEGORY-TITLE");
    EXPECT_EQ(client_.list(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(client_.count(), 0);
}

TEST_F(PtpSource, ASecondRequestBeforeTheAnswerShowsItsOwnListInTheEnd) {
    Gate gate;
    hold("get_object_handles", gate);
    client_.open();
    ASSERT_TRUE(client_.execute());
    gate.wait_for_arrival();
    client_.param().szFolderId = const_cast<char*>("3");
    ASSERT_TRUE(client_.execute());
    gate.open();
    EXPECT_EQ(client_.wait_for(2), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(client_.names(), ElementsAre("a.jpg"));
}

TEST_F(PtpSourceDeath, ANullRequestEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(source().Execute(nullptr), "pParam != __null");
}

TEST_F(PtpSourceDeath, ASourceThatIsOpenIsNotDestroyed) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            CQRAPTPSource open;
            open.Open();
        },
        "m_bIsOpen == false");
}

}  // namespace
