#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "platform/files/descriptor.h"
#include "tests/unit/platform/mtp/mtp_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Waits for what has to become true, for as long as a slow machine may need.
bool wait_until(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

class MtpFaults : public Mtp {
protected:
    MtpFaults() {
        cameras_.write("card", "a.jpg", jpeg_with_thumbnail(8, 8));
        cameras_.write("card", "film.mp4", std::string(100000, 'f'));
    }

    static constexpr mtp_object_h kPicture = 1;
    static constexpr mtp_object_h kFilm = 2;

    /// What a viewer does, each with its code.
    std::vector<int> use(mtp_device_h device) const {
        char* model = nullptr;
        mtp_storage_h* ids = nullptr;
        int count = 0;
        unsigned got = 0;
        mtp_object_info info{};
        std::vector<int> codes = {
            mtp_deviceinfo_get_model_name(device, &model),
            mtp_get_storages(device, &ids, &count),
            list(device),
            mtp_objectinfo_get_object_info(device, kFilm, &info),
            mtp_get_thumbnail(device, kPicture, output("thumb").c_str()),
            mtp_get_partial_object(device, kFilm, output("range").c_str(), 50000, 8, &got),
            mtp_get_object(device, kFilm, output("whole").c_str()),
        };
        free(model);
        free(ids);
        return codes;
    }
};

// Pulls the camera out at its first transaction, its second, and so on, until it is used to the end.
TEST_F(MtpFaults, ACameraThatIsPulledAtAnyTransactionIsGoneFromThenOn) {
    bool to_the_end = false;
    for (int at = 1; !to_the_end; ++at) {
        ASSERT_LT(at, 40);
        for (const char* name : {"thumb", "range", "whole"}) {
            std::remove(output(name).c_str());
        }
        const mtp_device_h device = plug({"fault = unplug any " + std::to_string(at)});
        const std::vector<int> codes = use(device);
        const auto first = std::find(codes.begin(), codes.end(), MTP_ERROR_NO_DEVICE);
        to_the_end = first == codes.end();
        EXPECT_TRUE(std::all_of(codes.begin(), first, [](int code) { return code == 0; })) << "at " << at;
        EXPECT_TRUE(std::all_of(first, codes.end(), [](int code) { return code == MTP_ERROR_NO_DEVICE; }));
        EXPECT_EQ(devices().empty(), !to_the_end);
        EXPECT_EQ(exists("whole"), to_the_end) << "at " << at;
        EXPECT_TRUE(to_the_end || cameras_.transactions("") == at - 1) << cameras_.log();
    }
}

TEST_F(MtpFaults, ACameraThatIsPulledInTheMiddleOfAFileLeavesNoFile) {
    const mtp_device_h device = plug({"fault = sever GetObject 1"});
    EXPECT_EQ(mtp_get_object(device, kFilm, output().c_str()), MTP_ERROR_NO_DEVICE);
    EXPECT_FALSE(exists());
    EXPECT_EQ(list(device), MTP_ERROR_NO_DEVICE);
}

TEST_F(MtpFaults, ACameraThatIsPulledWhileItThinksIsNoticedThen) {
    const mtp_device_h device = plug({"fault = slow GetThumb 1 3600000"});
    std::atomic<int> code{1};
    std::thread viewer([&] { code = mtp_get_thumbnail(device, kPicture, output().c_str()); });
    EXPECT_TRUE(wait_until([&] { return cameras_.transactions("GetThumb") == 1; }));
    cameras_.pull("camera");
    viewer.join();
    EXPECT_EQ(code, MTP_ERROR_NO_DEVICE);
}

TEST_F(MtpFaults, ACameraThatIsPulledDuringAListIsAskedNothingMore) {
    const mtp_device_h device = plug({"objects = 500", "fault = unplug GetObjectInfo 100"});
    EXPECT_EQ(list(device), 0);
    EXPECT_EQ(list(device, 4), MTP_ERROR_NO_DEVICE);
    EXPECT_EQ(cameras_.transactions("GetObjectInfo"), 99);
}

TEST_F(MtpFaults, ACameraThatDoesNotAnswerIsGivenUpAndTriedAgain) {
    const mtp_device_h device = plug({"objects = 500", "fault = stall GetObjectInfo 100"});
    EXPECT_EQ(list(device), 0);
    EXPECT_EQ(list(device, 4), MTP_ERROR_IO);
    EXPECT_EQ(cameras_.transactions("GetObjectInfo"), 100) << "no other object is waited for";
    EXPECT_EQ(children(device, 4).size(), 500U);
    EXPECT_EQ(cameras_.transactions("OpenSession"), 2);
}

TEST_F(MtpFaults, ACameraThatAnswersNoMoreIsLeftAloneAfterTwoCalls) {
    std::vector<std::string> lines;
    for (int at = 2; at < 20; ++at) {
        lines.push_back("fault = stall GetObjectHandles " + std::to_string(at));
    }
    for (int folder = 0; folder < 10; ++folder) {
        cameras_.folder("card/" + std::to_string(folder));
    }
    const mtp_device_h device = plug(lines);
    for (const mtp_object_h folder : children(device, 0)) {
        EXPECT_NE(list(device, folder), MTP_ERROR_NO_DEVICE);
    }
    EXPECT_EQ(cameras_.transactions("GetObjectHandles"), 1 + 2) << cameras_.log();
    cameras_.pull("camera");
    EXPECT_EQ(list(device), MTP_ERROR_NO_DEVICE);
}

TEST_F(MtpFaults, ACameraThatAnswersBetweenTwoThatItDoesNotIsNotLeftAlone) {
    const mtp_device_h device = plug({"fault = stall GetThumb 1", "fault = stall GetThumb 3"});
    for (const int code : {MTP_ERROR_IO, MTP_ERROR_NONE, MTP_ERROR_IO, MTP_ERROR_NONE}) {
        EXPECT_EQ(mtp_get_thumbnail(device, kPicture, output().c_str()), code);
    }
}

TEST_F(MtpFaults, ASlowCameraIsWaitedFor) {
    const mtp_device_h device = plug({"fault = slow any 0 2"});
    EXPECT_THAT(use(device), testing::Each(0));
}

class MtpLies : public MtpFaults, public testing::WithParamInterface<const char*> {};

// Each kind of nonsense, as the answer to each operation.
TEST_P(MtpLies, ACameraThatSendsNonsenseIsACodeAndWorksOnAfterwards) {
    for (const char* operation : {"GetDeviceInfo", "GetStorageIDs", "GetStorageInfo", "GetObjectHandles",
                                  "GetObjectInfo", "GetThumb", "GetPartialObject", "GetObject"}) {
        const mtp_device_h device = plug({std::string("fault = ") + GetParam() + " " + operation + " 1"});
        const std::vector<int> codes = use(device);
        EXPECT_THAT(codes, testing::Contains(MTP_ERROR_IO)) << operation << "\n" << cameras_.log();
        EXPECT_THAT(codes, testing::Each(testing::AnyOf(0, MTP_ERROR_IO))) << operation;
        EXPECT_THAT(use(device), testing::Each(0)) << operation << "\n" << log_.text();
    }
}

INSTANTIATE_TEST_SUITE_P(Lies, MtpLies, testing::Values("short", "long", "cut", "flood"),
                         [](const auto& lie) { return std::string(lie.param); });

class MtpGarbage : public MtpFaults, public testing::WithParamInterface<const char*> {};

TEST_P(MtpGarbage, ACameraThatSendsGarbageIsBorne) {
    for (const char* operation :
         {"GetDeviceInfo", "GetStorageIDs", "GetStorageInfo", "GetObjectHandles", "GetObjectInfo",
          "GetObjectPropsSupported", "GetObjectPropDesc", "GetObjectPropValue", "GetObjectPropList"}) {
        const mtp_device_h device =
            plug({std::string("kind = ") + GetParam(), std::string("fault = garbage ") + operation + " 0"});
        for (const int code : use(device)) {
            EXPECT_LE(code, 0) << operation;
        }
        cameras_.pull("camera");
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, MtpGarbage, testing::Values("ptp", "mtp"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_F(MtpFaults, AnObjectThatVanishesIsNoObject) {
    const mtp_device_h device = plug({"fault = vanish GetObject 1"});
    EXPECT_EQ(list(device), 0);
    EXPECT_EQ(mtp_get_object(device, kFilm, output().c_str()), MTP_ERROR_NO_OBJECT);
    mtp_object_info info{};
    EXPECT_EQ(mtp_objectinfo_get_object_info(device, kFilm, &info), MTP_ERROR_NO_OBJECT);
    EXPECT_STREQ(info.file_name, "");
    EXPECT_THAT(names(device, 0), ElementsAre("a.jpg"));
    EXPECT_EQ(cameras_.transactions("OpenSession"), 1) << "the camera has done nothing wrong";
}

TEST_F(MtpFaults, AnObjectThatVanishesDuringAListIsLeftOut) {
    const mtp_device_h device = plug({"fault = vanish GetObjectInfo 1"});
    EXPECT_THAT(names(device, 0), ElementsAre("film.mp4"));
}

TEST_F(MtpFaults, AFolderWhoseObjectsHaveAllVanishedIsEmpty) {
    const mtp_device_h device = plug({"fault = vanish GetObjectInfo 0"});
    EXPECT_THAT(children(device, 0), IsEmpty());
}

TEST_F(MtpFaults, ARefusalDoesNotEndTheSession) {
    const mtp_device_h device = plug({"fault = refuse GetThumb 1 0x2002"});
    EXPECT_EQ(mtp_get_thumbnail(device, kPicture, output().c_str()), MTP_ERROR_IO);
    EXPECT_EQ(mtp_get_thumbnail(device, kPicture, output().c_str()), 0);
    EXPECT_EQ(cameras_.transactions("OpenSession"), 1);
}

TEST_F(MtpFaults, ACameraThatAnotherProgramHasIsBusyUntilThatIsDone) {
    const mtp_device_h device = plug();
    {
        const files::Descriptor other(open(output("plugged/camera.camera").c_str(), O_RDONLY));
        ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
        EXPECT_EQ(list(device), MTP_ERROR_BUSY);
        mtp_usb_info info{};
        EXPECT_EQ(mtp_deviceinfo_get_usb_info(device, &info), 0);
        EXPECT_STREQ(info.model, "Virtual Camera");
    }
    EXPECT_EQ(list(device), 0);
}

TEST_F(MtpFaults, NamesThatLeadElsewhereAreOneName) {
    const mtp_device_h device =
        plug({"fault = name GetObjectInfo 1 ../../etc/pass\twd", "fault = name GetObjectInfo 2 .."});
    EXPECT_THAT(names(device, 0), ElementsAre(".._.._etc_pass_wd", "__"));
}

TEST_F(MtpFaults, TheLongestNameFits) {
    std::string name;
    for (int i = 0; i < 300; ++i) {
        name += "\xE6\x97\xA5";
    }
    const mtp_device_h device = plug({"fault = name GetObjectInfo 1 " + name});
    EXPECT_EQ(names(device, 0).at(0), name.substr(0, 254 * 3)) << "PTP has room for 254 characters";
}

TEST_F(MtpFaults, AnObjectThatIsLargerThanItSaysComesWhole) {
    const mtp_device_h device = plug({"fault = size GetObjectInfo 0 10"});
    EXPECT_EQ(mtp_get_object(device, kFilm, output().c_str()), 0);
    EXPECT_EQ(content().size(), 100000U);
}

class MtpSizes : public MtpFaults, public testing::WithParamInterface<const char*> {};

TEST_P(MtpSizes, AnObjectThatSaysItIsHugeIsReadAsFarAsItGoes) {
    const mtp_device_h device =
        plug({std::string("kind = ") + GetParam(), "ranges = 64", "fault = size any 0 0xFFFFFFFFFFFFFFFF"});
    ASSERT_EQ(list(device), 0);
    EXPECT_GE(info(device, kFilm).size, 0xFFFFFFFFU);
    unsigned got = 0;
    EXPECT_EQ(mtp_get_partial_object(device, kFilm, output().c_str(), 99990, 4000000000U, &got), 0);
    EXPECT_EQ(got, 10U);
    EXPECT_EQ(mtp_get_object(device, kFilm, output().c_str()), 0);
    EXPECT_EQ(content().size(), 100000U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, MtpSizes, testing::Values("mtp"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_F(MtpFaults, FiveThousandObjectsAreListed) {
    const mtp_device_h device = plug({"objects = 5000"});
    ASSERT_EQ(list(device), 0);
    const mtp_object_h folder = child(device, "100VIRT", child(device, "DCIM"));
    const std::vector<std::string> all = names(device, folder);
    ASSERT_EQ(all.size(), 5000U);
    EXPECT_EQ(all.front(), "IMG_000001.JPG");
    EXPECT_EQ(all.back(), "IMG_005000.JPG");
}

void nothing(void*) {}

TEST_F(MtpFaults, CamerasThatComeAndGoWhileTheyAreUsedHarmNobody) {
    ASSERT_EQ(mtp_set_changed_cb(nothing, nullptr), 0);
    std::atomic<bool> done{false};
    const auto viewer = [&](int number) {
        const std::string file = output("viewer" + std::to_string(number));
        while (!done) {
            for (const mtp_device_h device : devices()) {
                const int code = mtp_get_object(device, kFilm, file.c_str());
                EXPECT_TRUE(code == 0 || code == MTP_ERROR_NO_DEVICE) << code;
            }
        }
    };
    std::thread first(viewer, 1);
    std::thread second(viewer, 2);
    for (int i = 0; i < 20; ++i) {
        cameras_.plug("camera", {"storage = " + cameras_.folder("card")});
        EXPECT_TRUE(wait_until([&] { return cameras_.transactions("OpenSession") > 0; }));
        cameras_.pull("camera");
    }
    done = true;
    first.join();
    second.join();
    EXPECT_THAT(devices(), IsEmpty());
}

TEST_F(MtpFaults, TheServiceEndsWhileACameraIsUsed) {
    for (int i = 0; i < 10; ++i) {
        const mtp_device_h device = plug();
        std::thread viewer([&] {
            while (mtp_get_thumbnail(device, kPicture, output().c_str()) == 0) {
            }
        });
        EXPECT_TRUE(wait_until([&] { return cameras_.transactions("GetThumb") > 0; }));
        EXPECT_EQ(mtp_deinitialize(), 0);
        viewer.join();
        EXPECT_EQ(mtp_initialize(), 0);
    }
}

}  // namespace
