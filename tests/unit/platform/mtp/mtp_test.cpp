#include "mtp.h"

#include <gmock/gmock.h>
#include <utime.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>

#include "tests/unit/platform/mtp/mtp_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

std::string pattern(size_t length) {
    std::string text(length, '\0');
    for (size_t i = 0; i < length; ++i) {
        text[i] = static_cast<char>(i * 31 + i / 251);
    }
    return text;
}

TEST_F(Mtp, WithoutACameraThereIsAnEmptyList) {
    EXPECT_THAT(devices(), IsEmpty());
}

TEST_F(Mtp, BeforeTheServiceIsReadyEveryFunctionSaysSo) {
    ASSERT_EQ(mtp_deinitialize(), 0);
    mtp_device_h* list = nullptr;
    int count = 0;
    EXPECT_EQ(mtp_get_devices(&list, &count), MTP_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(mtp_deviceinfo_get_bus_location(1, &count), MTP_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(mtp_set_changed_cb(nullptr, nullptr), MTP_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(mtp_deinitialize(), MTP_ERROR_NOT_INITIALIZED);
}

TEST_F(Mtp, NullArgumentsAndUnknownHandlesAreCodes) {
    mtp_device_h* list = nullptr;
    int count = 0;
    unsigned got = 0;
    EXPECT_EQ(mtp_get_devices(nullptr, &count), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_devices(&list, nullptr), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_storages(1, nullptr, &count), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_object_handles(1, 1, MTP_FILETYPE_ALL, 0, nullptr, &count),
              MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_object_handles(1, 1, static_cast<mtp_filetype_e>(46), 0, &list, &count),
              MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_objectinfo_get_object_info(1, 1, nullptr), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_object(1, 1, nullptr), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_object(1, 1, ""), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_thumbnail(1, 1, nullptr), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_partial_object(1, 1, "x", 0, 0, &got), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_partial_object(1, 1, "x", 0, 1, nullptr), MTP_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(mtp_get_storages(77, &list, &count), MTP_ERROR_NO_DEVICE);
    EXPECT_EQ(mtp_get_storages(-1, &list, &count), MTP_ERROR_NO_DEVICE);
    EXPECT_EQ(mtp_get_object(0, 1, output().c_str()), MTP_ERROR_NO_DEVICE);
    EXPECT_FALSE(exists());
}

TEST_F(Mtp, ACameraTellsWhereItIsAndWhatItIs) {
    const mtp_device_h device = plug({"bus = 3", "model = XQ-T410", "vendor = Example", "serial = 42"});
    int bus = 0;
    int number = 0;
    char* model = nullptr;
    EXPECT_EQ(mtp_deviceinfo_get_bus_location(device, &bus), 0);
    EXPECT_EQ(mtp_deviceinfo_get_device_number(device, &number), 0);
    EXPECT_EQ(mtp_deviceinfo_get_model_name(device, &model), 0);
    const std::unique_ptr<char, Free> owner(model);
    EXPECT_EQ(bus, 3);
    EXPECT_EQ(number, 1);
    EXPECT_STREQ(model, "XQ-T410");
    mtp_usb_info info{};
    EXPECT_EQ(mtp_deviceinfo_get_usb_info(device, &info), 0);
    EXPECT_STREQ(info.vendor, "Example");
    EXPECT_STREQ(info.model, "XQ-T410");
    EXPECT_STREQ(info.serial_number, "42");
}

TEST_F(Mtp, WhatUsbKnowsCostsNoTransaction) {
    const mtp_device_h device = plug();
    mtp_usb_info info{};
    int number = 0;
    EXPECT_EQ(mtp_deviceinfo_get_usb_info(device, &info), 0);
    EXPECT_EQ(mtp_deviceinfo_get_bus_location(device, &number), 0);
    EXPECT_EQ(cameras_.transactions(""), 0) << cameras_.log();
}

TEST_F(Mtp, TwoStoragesHaveTheirOwnRoots) {
    cameras_.write("inner", "a.jpg", "a");
    cameras_.write("outer", "b.png", "b");
    cameras_.plug("camera",
                  {"storage = " + cameras_.folder("inner"), "storage = " + cameras_.folder("outer")});
    const mtp_device_h device = only_device();
    mtp_storage_h* ids = nullptr;
    int count = 0;
    ASSERT_EQ(mtp_get_storages(device, &ids, &count), 0);
    const std::unique_ptr<mtp_storage_h, Free> owner(ids);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(ids[0], kFirstStorage);
    EXPECT_EQ(ids[1], kSecondStorage);
    EXPECT_THAT(names(device, 0, kFirstStorage), ElementsAre("a.jpg"));
    EXPECT_THAT(names(device, 0, kSecondStorage), ElementsAre("b.png"));
}

TEST_F(Mtp, AFolderIsAskedForOnItsOwnStorageWhicheverIsNamed) {
    cameras_.write("inner/A", "a.jpg", "a");
    cameras_.write("outer/B", "b.png", "b");
    cameras_.plug("camera",
                  {"storage = " + cameras_.folder("inner"), "storage = " + cameras_.folder("outer")});
    const mtp_device_h device = only_device();
    const mtp_object_h inner = children(device, 0, kFirstStorage).at(0);
    const mtp_object_h outer = children(device, 0, kSecondStorage).at(0);
    for (const mtp_storage_h storage : {kFirstStorage, kSecondStorage, mtp_storage_h{0}}) {
        EXPECT_THAT(names(device, inner, storage), ElementsAre("a.jpg")) << storage;
        EXPECT_THAT(names(device, outer, storage), ElementsAre("b.png")) << storage;
    }
    ASSERT_EQ(mtp_deinitialize(), 0);
    ASSERT_EQ(mtp_initialize(), 0);
    EXPECT_THAT(names(only_device(), outer, kFirstStorage), ElementsAre("b.png")) << "not described before";
}

TEST_F(Mtp, ACameraWithoutACardHasNoStorages) {
    cameras_.plug("camera", {});
    mtp_storage_h* ids = nullptr;
    int count = -1;
    EXPECT_EQ(mtp_get_storages(only_device(), &ids, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(ids, nullptr);
    EXPECT_EQ(mtp_get_storages(only_device(), &ids, &count), 0) << "asked again";
}

TEST_F(Mtp, ObjectsAreToldAsTheyAre) {
    cameras_.folder("card/DCIM");
    const std::string picture =
        cameras_.write("card/DCIM", "Bild \xC3\xA4 \xE6\x97\xA5.jpg", jpeg_with_thumbnail(640, 480));
    const utimbuf time = {1600000000, 1600000000};
    ASSERT_EQ(utime(picture.c_str(), &time), 0);
    const mtp_device_h device = plug();
    const mtp_object_h folder = child(device, "DCIM");
    EXPECT_EQ(info(device, folder).file_type, MTP_FILETYPE_FOLDER);
    EXPECT_EQ(info(device, folder).size, 0U);
    const mtp_object_info told = info(device, child(device, "Bild \xC3\xA4 \xE6\x97\xA5.jpg", folder));
    EXPECT_EQ(told.file_type, MTP_FILETYPE_JPG);
    EXPECT_EQ(told.size, std::filesystem::file_size(picture));
    EXPECT_EQ(told.width, 640);
    EXPECT_EQ(told.height, 480);
    EXPECT_EQ(told.modified_time, 1600000000);
    const mtp_object_info again = info(device, child(device, "Bild \xC3\xA4 \xE6\x97\xA5.jpg", folder));
    EXPECT_EQ(again.width, 640) << "listed once more";
}

class MtpKinds : public Mtp, public testing::WithParamInterface<const char*> {};

TEST_P(MtpKinds, EveryFileTypeHasItsNumber) {
    const std::vector<std::pair<std::string, int>> types = {
        {"a.jpg", 14},  {"b.jfif", 15}, {"c.tiff", 16}, {"d.bmp", 17}, {"e.gif", 18},
        {"f.pict", 19}, {"g.png", 20},  {"h.mp4", 6},   {"i.wmv", 8},  {"j.avi", 9},
        {"k.mpg", 10},  {"l.asf", 11},  {"m.mov", 12},  {"n.xyz", 44}};
    for (const auto& [name, type] : types) {
        cameras_.write("card", name, "x");
    }
    const mtp_device_h device = plug({std::string("kind = ") + GetParam()});
    for (const auto& [name, type] : types) {
        EXPECT_EQ(info(device, child(device, name)).file_type, type) << name;
        EXPECT_EQ(info(device, child(device, name)).size, 1U) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, MtpKinds, testing::Values("ptp", "mtp", "mtp-single"), [](const auto& kind) {
    std::string name = kind.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
});

TEST_F(Mtp, OneTypeOfObjectsCanBeAskedFor) {
    cameras_.write("card", "a.jpg", "x");
    cameras_.write("card", "b.png", "x");
    cameras_.folder("card/c");
    const mtp_device_h device = plug();
    mtp_object_h* handles = nullptr;
    int count = 0;
    ASSERT_EQ(mtp_get_object_handles(device, kFirstStorage, MTP_FILETYPE_PNG, 0, &handles, &count), 0);
    const std::unique_ptr<mtp_object_h, Free> owner(handles);
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(info(device, handles[0]).file_name, "b.png");
}

TEST_F(Mtp, AnEmptyFolderIsNoFailureAndAMissingOneIs) {
    cameras_.folder("card/empty");
    const mtp_device_h device = plug();
    EXPECT_THAT(children(device, child(device, "empty")), IsEmpty());
    EXPECT_EQ(list(device, 4711), MTP_ERROR_NO_OBJECT);
    mtp_object_info nothing{};
    EXPECT_EQ(mtp_objectinfo_get_object_info(device, 4711, &nothing), MTP_ERROR_NO_OBJECT);
    EXPECT_EQ(mtp_objectinfo_get_object_info(device, 0, &nothing), MTP_ERROR_NO_OBJECT);
}

TEST_F(Mtp, AListOfObjectsCostsOneTransactionForEachAndOneForTheFolder) {
    const mtp_device_h device = plug({"objects = 300"});
    const mtp_object_h folder = child(device, "100VIRT", child(device, "DCIM"));
    const int before = cameras_.transactions("");
    EXPECT_EQ(names(device, folder).size(), 300U);
    EXPECT_EQ(cameras_.transactions("") - before, 301) << "the descriptions are asked for once";
}

TEST_F(Mtp, AWholeObjectComesByteForByte) {
    for (const size_t size : {0, 1, 500, 512, 16384, 512 * 100 - 12, 1000000}) {
        cameras_.write("card", std::to_string(size), pattern(size));
    }
    const mtp_device_h device = plug();
    for (const size_t size : {0, 1, 500, 512, 16384, 512 * 100 - 12, 1000000}) {
        EXPECT_EQ(mtp_get_object(device, child(device, std::to_string(size)), output().c_str()), 0) << size;
        EXPECT_TRUE(content() == pattern(size)) << size;
    }
}

TEST_F(Mtp, AFolderIsNoFile) {
    cameras_.folder("card/folder");
    const mtp_device_h device = plug();
    unsigned got = 7;
    EXPECT_EQ(mtp_get_object(device, child(device, "folder"), output().c_str()), MTP_ERROR_NO_OBJECT);
    EXPECT_EQ(mtp_get_partial_object(device, child(device, "folder"), output().c_str(), 0, 5, &got),
              MTP_ERROR_NO_OBJECT);
    EXPECT_EQ(got, 0U);
    EXPECT_FALSE(exists());
}

class MtpRanges : public Mtp, public testing::WithParamInterface<const char*> {};

TEST_P(MtpRanges, ARangeHoldsItsBytesAndNoOthers) {
    const std::string film = pattern(100000);
    cameras_.write("card", "film.mp4", film);
    const mtp_device_h device = plug({std::string("ranges = ") + GetParam()});
    const mtp_object_h object = child(device, "film.mp4");
    unsigned got = 0;
    EXPECT_EQ(mtp_get_partial_object(device, object, output().c_str(), 0, 8, &got), 0);
    EXPECT_EQ(got, 8U);
    EXPECT_TRUE(content() == film.substr(0, 8));
    EXPECT_EQ(mtp_get_partial_object(device, object, output().c_str(), 70000, 20000, &got), 0);
    EXPECT_EQ(got, 20000U);
    EXPECT_TRUE(content() == film.substr(70000, 20000));
    EXPECT_EQ(mtp_get_partial_object(device, object, output().c_str(), 99990, 100, &got), 0);
    EXPECT_EQ(got, 10U) << "the film ends there";
    EXPECT_TRUE(content() == film.substr(99990));
    EXPECT_EQ(mtp_get_partial_object(device, object, output().c_str(), 100000, 8, &got), 0);
    EXPECT_EQ(got, 0U);
    EXPECT_EQ(content(), "");
    EXPECT_EQ(mtp_get_partial_object(device, object, output().c_str(), uint64_t{1} << 40U, 8, &got), 0);
    EXPECT_EQ(got, 0U);
    EXPECT_LE(cameras_.transactions("GetObject"), 1) << "at most one copy of the whole";
}

INSTANTIATE_TEST_SUITE_P(Ranges, MtpRanges, testing::Values("yes", "64", "no"),
                         [](const auto& ranges) { return std::string("Ranges") + ranges.param; });

TEST_F(Mtp, ARangeFetchesNoMoreThanIsAskedFor) {
    cameras_.write("card", "film.mp4", pattern(1000000));
    const mtp_device_h device = plug();
    const mtp_object_h object = child(device, "film.mp4");
    unsigned got = 0;
    ASSERT_EQ(mtp_get_partial_object(device, object, output().c_str(), 500000, 54, &got), 0);
    EXPECT_EQ(cameras_.transactions("GetObject"), 0);
    EXPECT_EQ(cameras_.transactions("GetPartialObject"), 1);
    EXPECT_THAT(cameras_.log(), testing::HasSubstr("500000 54 -> 0x2001, 54 bytes"));
}

TEST_F(Mtp, TheCopyOfACameraWithoutRangesLeavesNoFile) {
    cameras_.write("card", "film.mp4", pattern(1000));
    const mtp_device_h device = plug({"ranges = no"});
    unsigned got = 0;
    const std::string folder = cameras_.folder("target");
    ASSERT_EQ(
        mtp_get_partial_object(device, child(device, "film.mp4"), (folder + "/out").c_str(), 10, 5, &got), 0);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

TEST_F(Mtp, AThumbnailIsTheSmallPictureInTheHead) {
    cameras_.write("card", "a.jpg", jpeg_with_thumbnail(100, 100));
    cameras_.write("card", "b.png", "no picture");
    const mtp_device_h device = plug();
    EXPECT_EQ(mtp_get_thumbnail(device, child(device, "a.jpg"), output().c_str()), 0);
    EXPECT_TRUE(content() == jpeg_thumbnail());
    EXPECT_EQ(mtp_get_thumbnail(device, child(device, "b.png"), output("b").c_str()),
              MTP_ERROR_NOT_SUPPORTED);
    EXPECT_FALSE(exists("b"));
}

int end_at_half(unsigned long long done, unsigned long long total, void* calls) {
    ++*static_cast<int*>(calls);
    return done * 2 >= total ? 1 : 0;
}

int count_bytes(unsigned long long done, unsigned long long, void* most) {
    *static_cast<unsigned long long*>(most) = done;
    return 0;
}

TEST_F(Mtp, ATransferTellsHowFarItIs) {
    cameras_.write("card", "a.jpg", pattern(200000));
    const mtp_device_h device = plug();
    unsigned long long most = 0;
    EXPECT_EQ(
        mtp_get_object_with_progress(device, child(device, "a.jpg"), output().c_str(), count_bytes, &most),
        0);
    EXPECT_EQ(most, 200000U);
}

TEST_F(Mtp, ATransferThatIsCancelledLeavesTheCameraUsable) {
    cameras_.write("card", "a.jpg", pattern(2000000));
    const mtp_device_h device = plug();
    const mtp_object_h object = child(device, "a.jpg");
    int calls = 0;
    EXPECT_EQ(mtp_get_object_with_progress(device, object, output().c_str(), end_at_half, &calls),
              MTP_ERROR_CANCELLED);
    EXPECT_GT(calls, 1);
    EXPECT_FALSE(exists());
    EXPECT_EQ(mtp_get_object(device, object, output().c_str()), 0);
    EXPECT_TRUE(content() == pattern(2000000));
    EXPECT_EQ(cameras_.transactions("OpenSession"), 1);
}

TEST_F(Mtp, AFileThatCannotBeWrittenIsToldBeforeTheCameraIsAsked) {
    cameras_.write("card", "a.jpg", pattern(1000));
    const mtp_device_h device = plug();
    const mtp_object_h object = child(device, "a.jpg");
    EXPECT_EQ(mtp_get_object(device, object, output("no/such/folder").c_str()), MTP_ERROR_WRITE_FAILED);
    EXPECT_EQ(mtp_get_thumbnail(device, object, output("no/such/folder").c_str()), MTP_ERROR_WRITE_FAILED);
    EXPECT_EQ(cameras_.transactions("GetObject"), 0);
    std::filesystem::create_symlink("/dev/full", output("full"));
    EXPECT_EQ(mtp_get_object(device, object, output("full").c_str()), MTP_ERROR_WRITE_FAILED) << "no room";
    EXPECT_TRUE(exists("full")) << "what is no file stays";
    EXPECT_EQ(mtp_get_object(device, object, output().c_str()), 0) << "the camera works on";
}

TEST_F(Mtp, OneSessionServesAllCalls) {
    cameras_.write("card", "a.jpg", jpeg_with_thumbnail(1, 1));
    const mtp_device_h device = plug();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mtp_get_thumbnail(device, child(device, "a.jpg"), output().c_str()), 0);
    }
    EXPECT_EQ(cameras_.transactions("OpenSession"), 1);
    EXPECT_EQ(mtp_deinitialize(), 0);
    EXPECT_EQ(cameras_.transactions("CloseSession"), 1);
}

TEST_F(Mtp, TwoCamerasKeepApart) {
    cameras_.write("first", "a.jpg", "1");
    cameras_.write("second", "b.jpg", "22");
    cameras_.plug("first", {"storage = " + cameras_.folder("first")});
    cameras_.plug("second", {"storage = " + cameras_.folder("second")});
    const std::vector<mtp_device_h> both = devices();
    ASSERT_EQ(both.size(), 2U);
    std::vector<std::string> seen;
    for (const mtp_device_h device : both) {
        seen.push_back(names(device, 0).at(0));
    }
    EXPECT_THAT(seen, testing::UnorderedElementsAre("a.jpg", "b.jpg"));
}

TEST_F(Mtp, ACameraKeepsItsHandleAsLongAsItIsThere) {
    const mtp_device_h device = plug();
    EXPECT_EQ(only_device(), device);
    cameras_.pull("camera");
    EXPECT_THAT(devices(), IsEmpty());
    EXPECT_NE(plug(), device) << "another one";
}

/// Counts calls, and lets a test wait for them.
class Calls {
public:
    static void count(void* self) {
        auto* calls = static_cast<Calls*>(self);
        const std::lock_guard<std::mutex> lock(calls->mutex_);
        ++calls->count_;
        calls->changed_.notify_all();
    }
    bool wait_for(int count) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return count_ >= count; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

TEST_F(Mtp, ThoseWhoWatchAreToldOfCamerasThatComeAndGo) {
    Calls calls;
    ASSERT_EQ(mtp_set_changed_cb(Calls::count, &calls), 0);
    plug();
    EXPECT_TRUE(calls.wait_for(1));
    EXPECT_EQ(devices().size(), 1U);
    cameras_.pull("camera");
    EXPECT_TRUE(calls.wait_for(2));
    EXPECT_THAT(devices(), IsEmpty());
    EXPECT_EQ(mtp_set_changed_cb(nullptr, nullptr), 0);
}

TEST_F(Mtp, SeveralThreadsShareACamera) {
    cameras_.write("card", "a.jpg", jpeg_with_thumbnail(10, 10));
    cameras_.write("card", "b.jpg", pattern(50000));
    const mtp_device_h device = plug();
    const auto work = [&](int number) {
        const std::string file = output("out" + std::to_string(number));
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(names(device, 0).size(), 2U);
            EXPECT_EQ(mtp_get_object(device, child(device, "b.jpg"), file.c_str()), 0);
            EXPECT_EQ(mtp_get_thumbnail(device, child(device, "a.jpg"), file.c_str()), 0);
        }
    };
    std::thread first(work, 1);
    std::thread second(work, 2);
    first.join();
    second.join();
    EXPECT_EQ(cameras_.transactions("OpenSession"), 1);
}

TEST_F(Mtp, WhatLibmtpSaysGoesToTheLogAndNowhereElse) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const mtp_device_h device = plug();
    children(device, 0);
    const std::string to_out = testing::internal::GetCapturedStdout();
    const std::string to_err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(to_out, "");
    EXPECT_EQ(to_err, "");
    EXPECT_TRUE(log_.contains("libmtp: LIBMTP WARNING: no MTP vendor extension")) << log_.text();
}

}  // namespace
