#include "libqra-agent/source/ptp/qra_ptp_manage.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <thread>

#include "libqra-agent/source/ptp/qra_ptp_temp_file.h"
#include "tests/fakes/camera_media.h"
#include "tests/unit/ptp/camera_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Items = std::vector<_stPtpContentItem>;
using Names = std::vector<std::string>;

class PtpManage : public CameraFixture {
protected:
    static bool take(_stPtpContentItem& item, void* items) {
        static_cast<Items*>(items)->push_back(item);
        return true;
    }

    static Names names(const Items& items) {
        Names result;
        for (const _stPtpContentItem& item : items) {
            result.push_back(item.strDisplayName);
        }
        return result;
    }

    static _stPTPParam param(int folder = 0, const std::string& content = "CONTENT-FOLDER",
                             const std::string& extension = "",
                             const std::string& category = "CATEGORY-FOLDER-TITLE") {
        _stPTPParam param;
        param.strContentType = content;
        param.strSortCategory = category;
        param.strExtension = extension;
        param.nFolderId = folder;
        return param;
    }

    void find(int number = 2) { ASSERT_TRUE(manage_.FindCamera(1, number, false)); }

    /// The folder view, which has to succeed.
    Items list_folder(const _stPTPParam& what = param()) {
        Items items;
        EXPECT_TRUE(manage_.InitParam(&what));
        EXPECT_TRUE(manage_.RequestListofFolder(&take, &items)) << log_.text();
        return items;
    }

    Items list_pictures() {
        Items items;
        EXPECT_TRUE(manage_.RequestListofDCM(&take, &items)) << log_.text();
        return items;
    }

    /// A file of the camera with the handle 5, tested for 360-degree content.
    _stPtpContentItem tested(const std::string& name, int file_type, const std::string& content,
                             const std::string& model = "XQ-T410") {
        add_camera(2, model).objects = {file(5, name, file_type, 0, content)};
        find();
        const Items items = list_folder();
        EXPECT_EQ(items.size(), 1U);
        return items.empty() ? _stPtpContentItem() : items.front();
    }

    CQRAPTPManage manage_;
};

TEST_F(PtpManage, IsOneForTheProcess) {
    EXPECT_EQ(CQRAPTPManage::GetInstance(), CQRAPTPManage::GetInstance());
}

TEST_F(PtpManage, RefusesNegativeNumbersWithoutACallToThePlatform) {
    EXPECT_FALSE(manage_.FindCamera(-1, 0, false));
    EXPECT_FALSE(manage_.FindCamera(0, -1, true));
    EXPECT_EQ(log_.count("nBusValue or nDeviceValue param error"), 2);
    EXPECT_EQ(fake_.count(), 0);
}

TEST_F(PtpManage, FindsTheCameraWithTheNumbers) {
    add_camera(2);
    add_camera(3);
    add_camera(3).bus = 4;
    _stPTPCamera camera;
    EXPECT_TRUE(manage_.FindCamera(1, 3, false, &camera));
    EXPECT_EQ(camera.hDevice, 13);
    EXPECT_EQ(camera.nBusValue, 1);
    EXPECT_EQ(camera.nDeviceValue, 3);
    EXPECT_THAT(camera.vStorageIds, ElementsAre(1));
    EXPECT_FALSE(camera.b360Model);
}

TEST_F(PtpManage, DoesNotSearchForTheCameraThatItHolds) {
    add_camera(2);
    find();
    const int calls = fake_.count();
    EXPECT_TRUE(manage_.FindCamera(1, 2, false));
    EXPECT_EQ(fake_.count(), calls);
    EXPECT_TRUE(log_.contains("Camera found, return directly"));
    EXPECT_TRUE(manage_.FindCamera(1, 2, true));
    EXPECT_GT(fake_.count(), calls);
}

TEST_F(PtpManage, FindsNothingWithoutTheService) {
    add_camera(2);
    fake_.before = [](const std::string& call, int) { return call == "initialize" ? -7 : 0; };
    EXPECT_FALSE(manage_.FindCamera(1, 2, false));
    EXPECT_TRUE(log_.contains("[ptp performance] mtp_initialize failed -7"));
    EXPECT_EQ(fake_.count("get_devices"), 0);
    fake_.before = [](const std::string& call, int) { return call == "get_devices" ? -3 : 0; };
    EXPECT_FALSE(manage_.FindCamera(1, 2, false));
    EXPECT_TRUE(log_.contains("[ptp performance] mtp_get_device_list failed -3"));
}

TEST_F(PtpManage, FindsNothingWhereNoCameraIs) {
    EXPECT_FALSE(manage_.FindCamera(1, 2, false));
    add_camera(2);
    EXPECT_FALSE(manage_.FindCamera(2, 1, false));
    fake_.before = [](const std::string& call, int) {
        return call == "deviceinfo_get_device_number" ? -3 : 0;
    };
    EXPECT_FALSE(manage_.FindCamera(1, 2, false));
}

TEST_F(PtpManage, KeepsTheCameraThatItHasWhenAnotherOneIsNotFound) {
    add_camera(2).objects = {file(5, "a.jpg", 14)};
    find();
    _stPTPCamera camera;
    EXPECT_TRUE(manage_.FindCamera(7, 7, false, &camera));
    EXPECT_EQ(camera.nDeviceValue, 2);
    const Items items = list_folder();
    EXPECT_THAT(names(items), ElementsAre("a.jpg"));
    EXPECT_EQ(items.front().strThumbnailPath, "ptp://001;002;5");
}

TEST_F(PtpManage, HoldsACameraThatTellsNoStorages) {
    add_camera(2).objects = {file(5, "a.jpg", 14)};
    fake_.before = [](const std::string& call, int) {
        return call == "get_storages" || call == "deviceinfo_get_model_name" ? -4 : 0;
    };
    EXPECT_TRUE(manage_.FindCamera(1, 2, false));
    EXPECT_TRUE(log_.contains("mtp_get_storage_ids failed , ret :-4"));
    EXPECT_THAT(list_folder(), IsEmpty());
    EXPECT_THAT(list_pictures(), IsEmpty());
    EXPECT_EQ(fake_.count("get_object_handles"), 0);
}

TEST_F(PtpManage, KnowsThe360ModelByItsName) {
    for (const auto& [model, is_360] :
         {std::pair("XQ-T410", true), std::pair("XQ-T41", false), std::pair("xq-t410", false)}) {
        fake_.devices.clear();
        add_camera(2, model);
        _stPTPCamera camera;
        EXPECT_TRUE(manage_.FindCamera(1, 2, true, &camera));
        EXPECT_EQ(camera.b360Model, is_360) << model;
    }
}

TEST_F(PtpManage, TakesNoParametersFromNull) {
    EXPECT_FALSE(manage_.InitParam(nullptr));
}

TEST_F(PtpManage, ShowsFoldersFirstAndFilesByName) {
    add_camera().objects = {file(1, "b.jpg", 14),       file(2, "B.jpg", 14), folder(3, "z"),
                            file(4, "a.jpg", 14),       folder(5, "c"),       file(6, "a.jpg0.png", 20),
                            file(7, "\xC3\xA4.jpg", 14)};
    find();
    EXPECT_THAT(names(list_folder()),
                ElementsAre("c", "z", "B.jpg", "a.jpg", "a.jpg0.png", "b.jpg", "\xC3\xA4.jpg"));
}

TEST_F(PtpManage, FillsAnItemFromWhatTheCameraTells) {
    FakeMtp::Object picture = file(-5, "IMG.0001.JPG", 14, 7, "12345");
    picture.width = 4000;
    picture.height = 3000;
    picture.modified_time = 1500000000;
    add_camera(2).objects = {picture};
    find();
    const Items items = list_folder(param(7));
    ASSERT_EQ(items.size(), 1U);
    const _stPtpContentItem& item = items.front();
    EXPECT_EQ(item.strDisplayName, "IMG.0001.JPG");
    EXPECT_EQ(item.strTitle, "IMG.0001");
    EXPECT_EQ(item.strFormat, "JPG");
    EXPECT_EQ(item.strFilePath, "12/-5");
    EXPECT_EQ(item.strPlayPath, "ptp://12/-5");
    EXPECT_EQ(item.strThumbnailPath, "ptp://001;002;-5");
    EXPECT_EQ(item.strId, "-5");
    EXPECT_EQ(item.nWidth, 4000);
    EXPECT_EQ(item.nHeight, 3000);
    EXPECT_EQ(item.nModifiedTime, 1500000000);
    EXPECT_EQ(item.uSize, 5U);
    EXPECT_FALSE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0);
}

TEST_F(PtpManage, NamesFoldersWholeAndFilesWithoutAnExtensionToo) {
    add_camera().objects = {folder(1, "100.CANNED"), file(2, "picture", 14)};
    find();
    const Items items = list_folder();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].strTitle, "100.CANNED");
    EXPECT_EQ(items[0].strFormat, "FOLDER");
    EXPECT_EQ(items[1].strTitle, "picture");
    EXPECT_EQ(items[1].strFormat, "");
}

TEST_F(PtpManage, ShowsTheTypesOfTheExtensionLists) {
    // One object of each type, named by its number.
    FakeMtp::Device& camera = add_camera();
    for (int type = 0; type < 45; ++type) {
        camera.objects.push_back(file(100 + type, std::string(1, static_cast<char>('A' + type)), type));
    }
    find();
    const auto types = [this](const _stPTPParam& what) {
        std::vector<int> result;
        for (const _stPtpContentItem& item : list_folder(what)) {
            result.push_back(item.strDisplayName[0] - 'A');
        }
        std::sort(result.begin(), result.end());
        return result;
    };
    EXPECT_THAT(types(param()), ElementsAre(0, 6, 8, 9, 10, 11, 12, 14, 17, 18, 20));
    EXPECT_THAT(types(param(0, "CONTENT-IMAGE")), ElementsAre(0, 14, 17, 18, 20));
    EXPECT_THAT(types(param(0, "CONTENT-VIDEO")), ElementsAre(0, 6, 8, 9, 10, 11, 12));
    EXPECT_THAT(types(param(0, "CONTENT-IMAGE", "", "CATEGORY-TITLE")), ElementsAre(14, 17, 18, 20));
    EXPECT_THAT(types(param(0, "CONTENT-MUSIC")), ElementsAre(0));
    const std::string lists = R"({"param_media_extension_image":["Jfif","tiff","PICT","jpeg","folder"]})";
    EXPECT_THAT(types(param(0, "CONTENT-IMAGE", lists, "CATEGORY-TITLE")), ElementsAre(0, 15, 16, 19));
    EXPECT_FALSE(log_.contains("vExtension.empty() == true"));
    EXPECT_THAT(types(param(0, "CONTENT-VIDEO", lists)), ElementsAre(0));
    EXPECT_EQ(log_.count("vExtension.empty() == true"), 1);
}

TEST_F(PtpManage, HasNoListWithoutAType) {
    add_camera();
    find();
    const _stPTPParam what = param(0, "CONTENT-VIDEO", "{}", "CATEGORY-TITLE");
    Items items;
    EXPECT_TRUE(manage_.InitParam(&what));
    EXPECT_FALSE(manage_.RequestListofFolder(&take, &items));
    EXPECT_TRUE(log_.contains("vExtension.empty() == true"));
    EXPECT_TRUE(log_.contains("File Type Error"));
    EXPECT_EQ(fake_.count("get_object_handles"), 0);
}

TEST_F(PtpManage, HasNoListOfANegativeFolder) {
    add_camera();
    find();
    const _stPTPParam what = param(-1);
    Items items;
    EXPECT_TRUE(manage_.InitParam(&what));
    EXPECT_FALSE(manage_.RequestListofFolder(&take, &items));
    EXPECT_TRUE(log_.contains("error parameter folderid"));
}

TEST_F(PtpManage, FailsWhereAFolderCannotBeRead) {
    add_camera();
    find();
    fake_.before = [](const std::string& call, int) { return call == "get_object_handles" ? -5 : 0; };
    const _stPTPParam what = param();
    Items items;
    EXPECT_TRUE(manage_.InitParam(&what));
    EXPECT_FALSE(manage_.RequestListofFolder(&take, &items));
    EXPECT_TRUE(log_.contains("mtp_get_object_handles , ret : -5"));
    EXPECT_TRUE(log_.contains("GetObjectHandle failed"));
}

TEST_F(PtpManage, LeavesOutObjectsThatCannotBeDescribed) {
    add_camera().objects = {file(1, "a.jpg", 14), file(2, "b.jpg", 14), file(3, "c.jpg", 14)};
    find();
    fake_.before = [](const std::string& call, int object) {
        return call == "objectinfo_get_object_info" && object == 2 ? -5 : 0;
    };
    EXPECT_THAT(names(list_folder()), ElementsAre("a.jpg", "c.jpg"));
    EXPECT_EQ(log_.count("GetObjectInfo failed"), 1);
}

TEST_F(PtpManage, ShowsWhatLiesOnAllStorages) {
    FakeMtp::Device& camera = add_camera();
    camera.storages = {1, 2};
    camera.objects = {file(1, "b.jpg", 14), file(2, "a.jpg", 14), folder(3, "DCIM"), file(4, "c.jpg", 14, 3)};
    camera.objects[1].storage = 2;
    find();
    EXPECT_THAT(names(list_folder()), ElementsAre("DCIM", "a.jpg", "b.jpg"));
    // Both storages tell of the folder's child, which is one.
    EXPECT_THAT(names(list_folder(param(3))), ElementsAre("c.jpg"));
}

TEST_F(PtpManage, EndsAListThatTheCallerDoesNotWant) {
    add_camera().objects = {file(1, "a.jpg", 14), file(2, "b.jpg", 14)};
    find();
    const auto refuse = [](_stPtpContentItem&, void* count) {
        ++*static_cast<int*>(count);
        return false;
    };
    int count = 0;
    const _stPTPParam what = param();
    EXPECT_TRUE(manage_.InitParam(&what));
    EXPECT_FALSE(manage_.RequestListofFolder(refuse, &count));
    EXPECT_FALSE(manage_.RequestListofDCM(refuse, &count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(log_.count("Error in CallBack"), 2);
    EXPECT_EQ(list_folder().size(), 2U);
}

TEST_F(PtpManage, ShowsAllPicturesOfTheFirstStorageInARow) {
    FakeMtp::Device& camera = add_camera(2, "XQ-T410");
    camera.storages = {1, 2};
    const std::string round = noted_picture({"MM", 0x20000});
    camera.objects = {folder(1, "DCIM"),      folder(2, "100", 1),      file(3, "b.jpg", 14, 2, round),
                      file(4, "c.mp4", 6, 2), file(5, "a.png", 20, 1),  file(6, "d.bmp", 17),
                      file(7, "e.gif", 18),   file(8, "other.jpg", 14), file(9, "e.tif", 16, 2)};
    camera.objects[7].storage = 2;
    find();
    const _stPTPParam what = param(0, "CONTENT-VIDEO", "{}", "CATEGORY-TITLE");
    EXPECT_TRUE(manage_.InitParam(&what));
    const Items items = list_pictures();
    EXPECT_THAT(names(items), ElementsAre("a.png", "b.jpg", "d.bmp"));
    EXPECT_EQ(items[1].strFilePath, "12/3");
    EXPECT_EQ(items[1].strThumbnailPath, "ptp://001;002;3");
    EXPECT_EQ(items[1].strPlayPath, "ptp://12/3");
    EXPECT_EQ(items[1].strTitle, "b");
    EXPECT_EQ(items[1].strFormat, "jpg");
    EXPECT_FALSE(items[1].bIs360);
    EXPECT_EQ(items[1].nStitchType, 0);
    EXPECT_EQ(fake_.count("get_object"), 0);
}

TEST_F(PtpManage, WalksTheTreeLevelByLevel) {
    add_camera().objects = {folder(1, "a"), folder(2, "b", 1), folder(3, "c"), file(4, "x.jpg", 14, 2)};
    find();
    list_pictures();
    std::vector<std::string> walked;
    for (const std::string& call : fake_.calls()) {
        if (call.find("get_object_handles") == 0) {
            walked.push_back(call.substr(19));
        }
    }
    EXPECT_THAT(walked, ElementsAre("0", "1", "3", "2"));
}

TEST_F(PtpManage, LeavesOutFoldersAndPicturesThatCannotBeRead) {
    add_camera().objects = {folder(1, "a"), file(2, "a.jpg", 14, 1), folder(3, "b"), file(4, "b.jpg", 14, 3),
                            file(5, "c.jpg", 14, 3)};
    find();
    fake_.before = [](const std::string& call, int object) {
        return (call == "get_object_handles" && object == 1) ||
                       (call == "objectinfo_get_object_info" && object == 4)
                   ? -7
                   : 0;
    };
    EXPECT_THAT(names(list_pictures()), ElementsAre("c.jpg"));
    EXPECT_EQ(log_.count("mtp_get_object_handles failed : -7"), 1);
    EXPECT_EQ(log_.count("mtp_objectinfo_get_object_info failed : -7"), 1);
}

TEST_F(PtpManage, LooksAtFoldersThatLieInThemselvesOnce) {
    add_camera().objects = {folder(1, "a"), folder(2, "b", 1), file(3, "x.jpg", 14, 2)};
    fake_.children = {{1, {2, 1}}, {2, {1, 3, 0, 3}}};
    find();
    EXPECT_THAT(names(list_pictures()), ElementsAre("x.jpg"));
    EXPECT_EQ(fake_.count("get_object_handles"), 3);
}

TEST_F(PtpManage, ShowsNothingOfACameraThatWasPulledOut) {
    add_camera().objects = {file(1, "a.jpg", 14)};
    find();
    fake_.devices.clear();
    Items items;
    const _stPTPParam what = param();
    EXPECT_TRUE(manage_.InitParam(&what));
    EXPECT_FALSE(manage_.RequestListofFolder(&take, &items));
    EXPECT_THAT(list_pictures(), IsEmpty());
    EXPECT_TRUE(log_.contains("mtp_get_object_handles failed : -3"));
}

TEST_F(PtpManage, WithoutACameraHasEmptyLists) {
    EXPECT_THAT(list_folder(), IsEmpty());
    EXPECT_THAT(list_pictures(), IsEmpty());
    EXPECT_EQ(fake_.count(), 0);
}

TEST_F(PtpManage, Tells360PicturesByTheirNote) {
    const _stPtpContentItem item = tested("a.jpg", 14, noted_picture({"MM", 0x20000, 0x0103}));
    EXPECT_TRUE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0x20103);
    EXPECT_EQ(fake_.count("get_object"), 1);
    EXPECT_EQ(fake_.count("get_partial_object"), 0);
}

TEST_F(PtpManage, Tells360PicturesByTheirPacket) {
    const _stPtpContentItem item = tested("a.jpg", 14, jpeg_picture({xmp_segment(panorama_packet())}));
    EXPECT_TRUE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0);
    EXPECT_EQ(fake_.count("get_object"), 1);
}

TEST_F(PtpManage, Tells360FilmsByTheCamerasBoxes) {
    const _stPtpContentItem item = tested("a.mp4", 6, noted_film(m360_box(2) + stip_box("00001"), 500000));
    EXPECT_TRUE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0x20001);
    EXPECT_EQ(fake_.bytes(), 10U * 8 + 8 + 54);
    EXPECT_EQ(fake_.count("get_object"), 0);
}

TEST_F(PtpManage, Tells360FilmsByTheirDescription) {
    const _stPtpContentItem item = tested(
        "a.mp4", 6, box("moov", box("trak", spherical_box(""))) + box("mdat", std::string(500000, 'x')));
    EXPECT_TRUE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0x10000);
    EXPECT_LT(fake_.bytes(), 400U);
}

TEST_F(PtpManage, LeavesPlainMediaPlain) {
    const _stPtpContentItem item = tested("a.jpg", 14, jpeg_picture({}));
    EXPECT_FALSE(item.bIs360);
    EXPECT_EQ(item.nStitchType, 0);
}

TEST_F(PtpManage, TestsTheMediaOfNoOtherModel) {
    EXPECT_FALSE(tested("a.jpg", 14, noted_picture({"MM", 0x20000}), "XQ-T411").bIs360);
    EXPECT_FALSE(tested("a.mp4", 6, noted_film(m360_box(1)), "").bIs360);
    EXPECT_EQ(fake_.bytes(), 0U);
}

TEST_F(PtpManage, TestsNoOtherTypes) {
    add_camera(2, "XQ-T410").objects = {folder(1, "a"), file(2, "a.mov", 12), file(3, "a.png", 20)};
    find();
    EXPECT_EQ(list_folder().size(), 3U);
    EXPECT_EQ(fake_.bytes(), 0U);
}

TEST_F(PtpManage, KeepsTemporaryFilesForTheirTestOnly) {
    add_camera(2, "XQ-T410").objects = {file(5, "a.jpg", 14, 0, noted_picture({"MM", 0x20000})),
                                        file(6, "a.mp4", 6, 0, noted_film(m360_box(1)))};
    find();
    const int process = getpid();
    fake_.before = [this](const std::string& call, int object) {
        if (call == "objectinfo_get_object_info" && object == 6) {
            EXPECT_TRUE(std::filesystem::is_empty(data_folder()));
        }
        return 0;
    };
    list_folder();
    EXPECT_THAT(fake_.files(), ElementsAre(data_folder() + "/ptp_" + std::to_string(process) + "_5.JPG",
                                           data_folder() + "/ptp_" + std::to_string(process) + "_6.MP4"));
    EXPECT_TRUE(std::filesystem::is_empty(data_folder()));
    EXPECT_FALSE(log_.contains("failed"));
}

TEST_F(PtpManage, LeavesNoTemporaryFileAfterAFailure) {
    add_camera(2, "XQ-T410").objects = {file(5, "a.jpg", 14, 0, "no picture"),
                                        file(6, "a.mp4", 6, 0, "no film"),
                                        file(7, "b.mp4", 6, 0, noted_film(m360_box(1)))};
    find();
    fake_.short_by = 1;
    EXPECT_EQ(list_folder().size(), 3U);
    fake_.short_by = 0;
    // What a service leaves behind, against its contract.
    fake_.before = [this](const std::string& call, int object) {
        if (call == "get_object" || call == "get_partial_object") {
            const char* const end = call == "get_object" ? ".JPG" : ".MP4";
            fake_.write(
                data_folder() + "/ptp_" + std::to_string(getpid()) + "_" + std::to_string(object) + end,
                "half");
            return -7;
        }
        return 0;
    };
    const Items items = list_folder();
    EXPECT_EQ(items.size(), 3U);
    EXPECT_FALSE(items.back().bIs360);
    EXPECT_TRUE(std::filesystem::is_empty(data_folder()));
    EXPECT_TRUE(log_.contains("mtp_get_partial_object failed : -7"));
    EXPECT_TRUE(log_.contains("header is invalid.\n"));
}

TEST_F(PtpManage, LeavesAPicturePlainThatCannotBeFetched) {
    fake_.before = [](const std::string& call, int) { return call == "get_object" ? -7 : 0; };
    EXPECT_FALSE(tested("a.jpg", 14, noted_picture({"MM", 0x20000})).bIs360);
    EXPECT_TRUE(log_.contains("mtp_get_partial_object failed : -7"));
    EXPECT_TRUE(log_.contains("error: file open failed\n")) << log_.text();
}

TEST_F(PtpManage, LeavesMediaPlainWithoutAFolderForTemporaryFiles) {
    app_.write("app", "a file where the application's folder should be");
    const _stPtpContentItem item = tested("a.jpg", 14, noted_picture({"MM", 0x20000}));
    EXPECT_FALSE(item.bIs360);
    EXPECT_TRUE(log_.contains("Make folder[" + data_folder() + "] failed"));
    EXPECT_EQ(fake_.bytes(), 0U);
}

TEST_F(PtpManage, RefusesTemporaryNamesThatWouldBeCut) {
    // The whole name with the object's handle, 5, has as many bytes as told.
    const auto set_length = [this](size_t length) {
        const std::string tail = "/qra-core/data/ptp_" + std::to_string(getpid()) + "_5.JPG";
        const std::string start = app_.path("app") + "/";
        ASSERT_LT(start.size() + tail.size(), length);
        setenv("QRA_APP_DIR", (start + std::string(length - tail.size() - start.size(), 'd')).c_str(), 1);
    };
    set_length(CQRAPTPTempFile::kMostBytes);
    EXPECT_FALSE(tested("a.jpg", 14, noted_picture({"MM", 0x20000})).bIs360);
    EXPECT_TRUE(log_.contains("The name of the temporary file["));
    EXPECT_EQ(fake_.bytes(), 0U);
    set_length(CQRAPTPTempFile::kMostBytes - 1);
    EXPECT_TRUE(list_folder().front().bIs360);
}

TEST_F(PtpManage, WritesThumbnails) {
    add_camera().objects = {file(-7, "a.jpg", 14)};
    fake_.devices[0].objects[0].thumbnail = "thumb";
    find();
    EXPECT_TRUE(manage_.DownloadExif("-7", app_.path("thumb.jpg")));
    EXPECT_EQ(app_.read("thumb.jpg"), "thumb");
    EXPECT_FALSE(manage_.DownloadExif("8", app_.path("other.jpg")));
    EXPECT_FALSE(manage_.DownloadExif("", app_.path("other.jpg")));
    EXPECT_FALSE(manage_.DownloadExif("7", ""));
    EXPECT_EQ(log_.count("Please check param, strFilePath or strDownloadPath is empty"), 2);
}

TEST_F(PtpManage, ChecksThePathOfAFileAndTransfersNothing) {
    unsigned long size = 77;
    char buffer[] = "as it was";
    EXPECT_FALSE(manage_.DownloadFileToBuffer("", buffer, &size));
    EXPECT_TRUE(log_.contains("Please check param, strFilePath is empty"));
    EXPECT_FALSE(manage_.DownloadFileToBuffer("12", buffer, &size));
    EXPECT_TRUE(log_.contains("Please check strFilePath=12"));
    EXPECT_TRUE(manage_.DownloadFileToBuffer("a/b/c", buffer, &size));
    EXPECT_TRUE(log_.contains("strFolderPath=a/b"));
    EXPECT_TRUE(log_.contains("strFileName=c"));
    EXPECT_EQ(size, 77U);
    EXPECT_STREQ(buffer, "as it was");
    EXPECT_EQ(fake_.count(), 0);
}

TEST_F(PtpManage, ParametersThatComeDuringAWalkDoNotChangeIt) {
    add_camera().objects = {file(1, "a.jpg", 14), file(2, "b.mp4", 6), file(3, "c.jpg", 14, 9)};
    find();
    fake_.before = [this](const std::string& call, int) {
        if (call == "get_object_handles") {
            const _stPTPParam other = param(9, "CONTENT-VIDEO");
            EXPECT_TRUE(manage_.InitParam(&other));
        }
        return 0;
    };
    EXPECT_THAT(names(list_folder(param(0, "CONTENT-IMAGE"))), ElementsAre("a.jpg"));
}

TEST_F(PtpManage, ACameraThatIsFoundDuringAWalkDoesNotChangeIt) {
    add_camera(2).objects = {file(1, "a.jpg", 14), file(2, "b.jpg", 14)};
    add_camera(3).objects = {file(1, "x.jpg", 14)};
    find(3);
    find(2);
    // The walk holds the camera's mutex, so that the other search ends when the walk does.
    std::thread other;
    fake_.before = [&](const std::string& call, int) {
        if (call == "get_object_handles" && !other.joinable()) {
            other = std::thread([this] { EXPECT_TRUE(manage_.FindCamera(1, 3, false)); });
        }
        return 0;
    };
    const Items items = list_folder();
    other.join();
    EXPECT_THAT(names(items), ElementsAre("a.jpg", "b.jpg"));
    EXPECT_EQ(items[0].strThumbnailPath, "ptp://001;002;1");
    fake_.before = nullptr;
    EXPECT_THAT(names(list_folder()), ElementsAre("x.jpg"));
}

TEST_F(PtpManage, WalksACameraOfTheCallersOwn) {
    add_camera(2).objects = {file(1, "a.jpg", 14)};
    add_camera(3).objects = {file(1, "x.jpg", 14)};
    _stPTPCamera camera;
    ASSERT_TRUE(manage_.FindCamera(1, 2, false, &camera));
    find(3);
    Items items;
    EXPECT_TRUE(manage_.RequestListofFolder(param(), camera, &take, &items));
    EXPECT_TRUE(manage_.RequestListofDCM(camera, &take, &items));
    EXPECT_THAT(names(items), ElementsAre("a.jpg", "a.jpg"));
}

}  // namespace
