// Lists of cameras by the exported functions, through the real service, from virtual cameras.

#include <gmock/gmock.h>
#include <json/reader.h>
#include <json/value.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "libqra-agent/source/ptp/qra_ptp_manage.h"
#include "platform/mtp/virtual-camera/virtual_camera.h"
#include "tests/fakes/camera_media.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/virtual_cameras.h"
#include "tests/integration/camera_list.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int kBus = 1;
constexpr int kGetObjectInfo = 0x1008;
constexpr int kGetObject = 0x1009;
constexpr char kRoot[] = "0";

class Camera : public testing::Test {
protected:
    Camera() { setenv("QRA_APP_DIR", cameras_.directory().path("app").c_str(), 1); }

    /// Plugs a camera with one card in.
    int plug(const std::string& name, const std::string& folder, std::vector<std::string> lines = {}) {
        lines.push_back("storage = " + cameras_.folder(folder));
        return cameras_.plug(name, lines);
    }

    /// A card with a folder of pictures, and others beside it.
    void fill_card() {
        cameras_.write("card/DCIM", "b.jpg", jpeg_with_thumbnail(40, 30));
        cameras_.write("card/DCIM", "a.jpg", jpeg_with_thumbnail(4, 3));
        cameras_.write("card/DCIM", "film.mp4", noted_film(""));
        cameras_.write("card/DCIM/100", "deep.png", "picture");
        cameras_.write("card", "z.jpg", jpeg_with_thumbnail(8, 6));
        cameras_.write("card", "notes.txt", "text");
    }

    /// The folder of a name below the top.
    static std::string folder_id(int device, const std::string& name) {
        CameraList top({device, kRoot});
        top.wait();
        return top.id_of(name);
    }

    static std::vector<std::string> names_of(const CameraList::Request& request) {
        CameraList list(request);
        EXPECT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
        return list.names();
    }

    static Json::Value json_of(const std::string& text) {
        Json::Value value;
        const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
        EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) << text;
        return value;
    }

    static int transactions(int device, int operation = 0) {
        return static_cast<int>(virtual_camera_transactions(kBus, device, operation));
    }

    VirtualCameras cameras_;
    LogCapture log_;
};

TEST_F(Camera, ShowsItsFoldersOneByOne) {
    fill_card();
    const int device = plug("camera", "card");
    EXPECT_THAT(names_of({device, kRoot}), ElementsAre("DCIM", "z.jpg"));
    const std::string dcim = folder_id(device, "DCIM");
    EXPECT_THAT(names_of({device, dcim}), ElementsAre("100", "a.jpg", "b.jpg", "film.mp4"));
    EXPECT_THAT(names_of({device, dcim, "CONTENT-VIDEO"}), ElementsAre("100", "film.mp4"));
    EXPECT_THAT(names_of({device, dcim, "CONTENT-IMAGE", R"({"param_media_extension_image":["png"]})"}),
                ElementsAre("100"));
}

TEST_F(Camera, ShowsItsPicturesInARow) {
    fill_card();
    EXPECT_THAT(names_of({plug("camera", "card"), ""}), ElementsAre("a.jpg", "b.jpg", "deep.png", "z.jpg"));
}

TEST_F(Camera, TellsOfAPictureInItsText) {
    fill_card();
    const int device = plug("camera", "card");
    CameraList list({device, folder_id(device, "DCIM")});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    const Json::Value tile = json_of(list.item(2));
    const std::string id = list.id_of("b.jpg");
    EXPECT_EQ(tile["DISPLAY_NAME"].asString(), "b.jpg");
    EXPECT_EQ(tile["TITLE"].asString(), "b");
    EXPECT_EQ(tile["FORMAT"].asString(), "jpg");
    EXPECT_EQ(tile["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_IMAGE);
    EXPECT_EQ(tile["ID_QRA"].asString(), id);
    EXPECT_EQ(tile["WIDTH"].asInt(), 40);
    EXPECT_EQ(tile["HEIGHT"].asInt(), 30);
    EXPECT_EQ(tile["SIZE"].asUInt64(), jpeg_with_thumbnail(40, 30).size());
    EXPECT_EQ(tile["THUMBNAIL_PATH"].asString(), "ptp://001;00" + std::to_string(device) + ";" + id);
    EXPECT_GT(tile["MODIFIED_TIME"].asInt(), 1500000000);
    EXPECT_FALSE(tile["IS_360"].asBool());
}

TEST_F(Camera, WithoutACardHasAnEmptyList) {
    const int device = cameras_.plug("camera", {});
    EXPECT_THAT(names_of({device, kRoot}), IsEmpty());
    EXPECT_THAT(names_of({device, ""}), IsEmpty());
}

TEST_F(Camera, WithTwoCardsShowsBothTopsAndThePicturesOfTheFirst) {
    cameras_.write("inner/A", "a.jpg", "a");
    cameras_.write("outer/B", "b.jpg", "b");
    const int device = cameras_.plug(
        "camera", {"storage = " + cameras_.folder("inner"), "storage = " + cameras_.folder("outer")});
    EXPECT_THAT(names_of({device, kRoot}), ElementsAre("A", "B"));
    EXPECT_THAT(names_of({device, folder_id(device, "A")}), ElementsAre("a.jpg"));
    EXPECT_THAT(names_of({device, folder_id(device, "B")}), ElementsAre("b.jpg"));
    EXPECT_THAT(names_of({device, ""}), ElementsAre("a.jpg"));
}

TEST_F(Camera, FailsForAFolderThatIsNotThere) {
    fill_card();
    CameraList list({plug("camera", "card"), "4711"});
    EXPECT_EQ(list.wait(), QRA_EVENT_LIST_FAILED);
    EXPECT_TRUE(log_.contains("GetObjectHandle failed"));
}

TEST_F(Camera, ThatIsNotThereFails) {
    CameraList list({9, kRoot});
    EXPECT_EQ(list.wait(), QRA_EVENT_LIST_FAILED);
    EXPECT_TRUE(log_.contains("can not find camera"));
}

TEST_F(Camera, TwoListsOfOneShowEachItsOwn) {
    fill_card();
    const int device = plug("camera", "card", {"fault = slow GetObjectInfo 0 2"});
    CameraList top({device, kRoot});
    CameraList row({device, ""});
    EXPECT_EQ(row.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(top.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(top.names(), ElementsAre("DCIM", "z.jpg"));
    EXPECT_THAT(row.names(), ElementsAre("a.jpg", "b.jpg", "deep.png", "z.jpg"));
}

TEST_F(Camera, TwoShowEachItsOwn) {
    cameras_.write("one", "one.jpg", "x");
    cameras_.write("other", "other.jpg", "x");
    const int one = plug("one", "one");
    const int other = plug("other", "other");
    for (int round = 0; round < 10; ++round) {
        CameraList of_one({one, kRoot});
        CameraList of_other({other, kRoot});
        EXPECT_EQ(of_one.wait(), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(of_other.wait(), QRA_EVENT_LIST_SUCCESS);
        EXPECT_THAT(of_one.names(), ElementsAre("one.jpg"));
        EXPECT_THAT(of_other.names(), ElementsAre("other.jpg"));
    }
}

TEST_F(Camera, PluggedInAfterAnotherOneIsShown) {
    cameras_.write("one", "one.jpg", "x");
    cameras_.write("other", "other.jpg", "x");
    EXPECT_THAT(names_of({plug("camera", "one"), kRoot}), ElementsAre("one.jpg"));
    cameras_.pull("camera");
    EXPECT_THAT(names_of({plug("camera", "other"), kRoot}), ElementsAre("other.jpg"));
}

TEST_F(Camera, PulledOutDuringAWalkAnswersAtOnce) {
    const int device = plug("camera", "card", {"objects = 2000", "fault = unplug GetObjectInfo 50"});
    CameraList row({device, ""});
    // What came before is shown.
    EXPECT_EQ(row.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_LT(row.tiles(), 50);
    const std::string before = cameras_.log();
    CameraList folder({device, kRoot});
    EXPECT_EQ(folder.wait(), QRA_EVENT_LIST_FAILED);
    folder.disconnect();
    row.disconnect();
    // Nobody asks a camera that is gone.
    EXPECT_EQ(cameras_.log(), before);
    EXPECT_LE(cameras_.transactions("GetObjectInfo"), 50);
}

TEST_F(Camera, DisconnectedDuringAWalkSaysNothing) {
    const int device = plug("camera", "card", {"objects = 200", "fault = slow GetObjectInfo 0 1"});
    CameraList list({device, ""});
    ASSERT_TRUE(list.accepted());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (transactions(device, kGetObjectInfo) == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    list.disconnect();
    // The walk was waited for; its answer, if one was on its way, came before.
    const int event = list.event();
    EXPECT_TRUE(event == -1 || event == QRA_EVENT_LIST_SUCCESS) << event;
    EXPECT_EQ(names_of({device, ""}).size(), 200U);
}

TEST_F(Camera, LeavesOutAPictureThatVanishes) {
    fill_card();
    // The top has three objects; the first one in its folder is a folder.
    const int device = plug("camera", "card", {"fault = vanish GetObjectInfo 5"});
    EXPECT_THAT(names_of({device, ""}), ElementsAre("b.jpg", "deep.png", "z.jpg"));
}

TEST_F(Camera, MarksIts360Media) {
    cameras_.write("card", "1.jpg", noted_picture({"MM", 0x20000, 0x0103}));
    cameras_.write("card", "2.jpg", jpeg_picture({xmp_segment(panorama_packet())}));
    cameras_.write("card", "3.mp4", noted_film(m360_box(1) + stip_box("00002")));
    cameras_.write("card", "4.mp4", box("moov", box("trak", spherical_box("true"))));
    cameras_.write("card", "5.jpg", jpeg_with_thumbnail(4, 3));
    cameras_.write("card", "6.mp4", noted_film(""));
    cameras_.write("card", "7.jpg", noted_picture({"II", 0x20000}));
    CameraList list({plug("camera", "card", {"model = XQ-T410"}), kRoot});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    std::vector<int> types;
    std::vector<int> stitches;
    for (int tile = 0; tile < list.tiles(); ++tile) {
        types.push_back(list.number(tile, "MEDIA_TYPE"));
        stitches.push_back(list.number(tile, "STITCH_TYPE"));
    }
    EXPECT_THAT(types, ElementsAre(15, 15, 16, 16, 2, 3, 2));
    EXPECT_THAT(stitches, ElementsAre(0x20103, 0, 0x10002, 0x20000, 0, 0, 0));
    EXPECT_TRUE(std::filesystem::is_empty(cameras_.directory().path("app/qra-core/data")));
}

TEST_F(Camera, OfAnotherModelIsNotAskedForItsMedia) {
    cameras_.write("card", "1.jpg", noted_picture({"MM", 0x20000}));
    cameras_.write("card", "2.mp4", noted_film(m360_box(1), 100000));
    const int device = plug("camera", "card", {"model = XQ-T400"});
    CameraList list({device, kRoot});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.number(0, "MEDIA_TYPE"), QRA_MEDIA_TYPE_IMAGE);
    EXPECT_EQ(transactions(device, kGetObject), 0);
    EXPECT_LT(virtual_camera_bytes(kBus, device), 10000U);
}

TEST_F(Camera, SendsHeadsAndWantedPayloadsOfAFilmOnly) {
    const std::string film = noted_film(m360_box(1) + stip_box("00002"), 3000000);
    cameras_.write("with", "film.mp4", film);
    cameras_.folder("without");
    const auto bytes_of_list = [this](const std::string& folder) {
        const int device = plug(folder, folder, {"model = XQ-T410"});
        names_of({device, kRoot});
        return virtual_camera_bytes(kBus, device);
    };
    const uint64_t none = bytes_of_list("without");
    const uint64_t one = bytes_of_list("with");
    // Ten heads and two payloads, 142 bytes, in twelve transactions with 24 bytes of heads of their own; and
    // the film's description.
    EXPECT_LT(one - none, 142U + 12 * 24 + 1000);
}

TEST_F(Camera, WithManyObjectsIsAskedForEachOnce) {
    const int device = plug("camera", "card", {"objects = 300"});
    CameraList list({device, ""});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.tiles(), 300);
    // Beside them the two folders that they lie in; and the session, the device, its storages and lists of
    // handles.
    EXPECT_EQ(transactions(device, kGetObjectInfo), 300 + 2);
    EXPECT_LT(transactions(device), 300 + 20);
}

TEST_F(Camera, GivesThumbnails) {
    fill_card();
    const int device = plug("camera", "card");
    CameraList list({device, kRoot});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    const std::string path = cameras_.directory().path("thumb.jpg");
    EXPECT_TRUE(CQRAPTPManage::GetInstance()->DownloadExif(list.id_of("z.jpg"), path));
    EXPECT_EQ(cameras_.directory().read("thumb.jpg"), jpeg_thumbnail());
    EXPECT_FALSE(CQRAPTPManage::GetInstance()->DownloadExif(list.id_of("DCIM"), path + "2"));
    EXPECT_FALSE(std::filesystem::exists(path + "2"));
}

TEST_F(Camera, CannotBeCopiedFrom) {
    fill_card();
    const int device = plug("camera", "card");
    CameraList list({device, ""});
    ASSERT_EQ(list.wait(), QRA_EVENT_LIST_SUCCESS);
    const std::string destination = cameras_.folder("copies");
    EXPECT_EQ(list.copy_all(destination), QRA_EVENT_BATCH_FAILED);
    // The job wants the modification time as a time, which a camera's list has as a number.
    EXPECT_TRUE(log_.contains("Get mod time faild, error code[23]!")) << log_.text();
    EXPECT_TRUE(std::filesystem::is_empty(destination));
    EXPECT_EQ(transactions(device, kGetObject), 0);
}

}  // namespace
