#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>

#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/fakes/received.h"
#include "tests/fakes/temp_dir.h"
#include "tests/unit/nubelink/dlna_items.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What a transfer callback got; the numbers without the little that is added to them.
struct Told {
    std::vector<int> codes;
    std::vector<std::string> ids;
    std::vector<double> numbers;  ///< of the last call
};

int tell(int code, char* id, void* told, double download_total, double download_now, double upload_total,
         double upload_now) {
    auto* to = static_cast<Told*>(told);
    to->codes.push_back(code);
    to->ids.emplace_back(id);
    to->numbers = {download_total, download_now, upload_total, upload_now};
    return 1;
}

bool add_bookmark(void* received, int seconds) {
    static_cast<Received*>(received)->add(std::to_string(seconds));
    return true;
}

class DlnaTransfer : public testing::Test {
protected:
    DlnaTransfer() {
        int provider = 0;
        EXPECT_TRUE(wrapper->InitProvider(&provider, "uuid:1"));
    }

    int download() {
        return wrapper->QraNblDownLoad("http://a/1", "video/mp4", path.c_str(), tell, &told, id);
    }

    void tell_download(int state, unsigned long long received = 0, unsigned long long total = 0) {
        service.run([&] {
            const FakeNubelink::Transfer transfer = service.last_transfer();
            nbl_transfer_info info{state, 0, received, total};
            transfer.cb(transfer.token, &info, transfer.user_data);
        });
    }

    int upload(const std::string& src) { return wrapper->QraNblUpLoad(src.c_str(), tell, &told, id); }

    void complete_upload(int error) {
        service.run([&] {
            const FakeNubelink::Transfer transfer = service.last_transfer();
            transfer.handlers.started(transfer.token, nullptr, 0, transfer.user_data);
            transfer.handlers.completed(transfer.token, nullptr, error, transfer.user_data);
        });
    }

    void tell_upload(int error, unsigned long long sent, unsigned long long total) {
        service.run([&] {
            const FakeNubelink::Transfer transfer = service.last_transfer();
            nbl_transfer_info info{NBL_DOWNLOAD_STATE_PROGRESS, error, sent, total};
            transfer.handlers.progress(transfer.token, &info, error, transfer.user_data);
        });
    }

    void write_file() { std::ofstream(path) << "part"; }
    bool file_is_there() const { return std::ifstream(path).good(); }

    LogCapture log;
    FakeNubelink service;
    TempDir dir;
    const std::string path = dir.path() + "/film.mp4";
    Told told;
    char id[DLNA_REQUEST_ID_SIZE] = "";
    std::unique_ptr<CQRADLNAWrapper> wrapper = std::make_unique<CQRADLNAWrapper>();
};

TEST_F(DlnaTransfer, ADownloadIsStartedWithItsArgumentsAndGetsAnId) {
    EXPECT_EQ(download(), 0);

    EXPECT_EQ(service.count("nbl_provider_download http://a/1 video/mp4 " + path + " 1000"), 1);
    EXPECT_EQ(std::string(id).size(), 36U);
}

TEST_F(DlnaTransfer, ProgressAndCompletionAreToldALittleAboveTheNumbers) {
    download();

    tell_download(NBL_DOWNLOAD_STATE_PROGRESS, 50, 200);
    EXPECT_THAT(told.codes, ElementsAre(20));
    EXPECT_THAT(told.numbers, ElementsAre(200 + 1e-6, 50 + 1e-6, 0.0, 0.0));
    tell_download(NBL_DOWNLOAD_STATE_COMPLETE, 200, 200);

    EXPECT_THAT(told.codes, ElementsAre(20, 0));
    EXPECT_THAT(told.ids, ElementsAre(id, id));
    EXPECT_TRUE(log.contains("Download Complete"));
    EXPECT_TRUE(log.contains("Download 25%"));
}

TEST_F(DlnaTransfer, ATotalOfZeroIsNoDivision) {
    download();

    tell_download(NBL_DOWNLOAD_STATE_PROGRESS, 50, 0);

    EXPECT_THAT(told.numbers, ElementsAre(1e-6, 50 + 1e-6, 0.0, 0.0));
    EXPECT_TRUE(log.contains("Download 0%"));
}

TEST_F(DlnaTransfer, AFailedDownloadIsToldAndItsFileRemoved) {
    download();
    write_file();

    tell_download(NBL_DOWNLOAD_STATE_FAILED, 3, 200);

    EXPECT_THAT(told.codes, ElementsAre(2));
    EXPECT_FALSE(file_is_there());
}

TEST_F(DlnaTransfer, ADownloadThatIsRefusedOrHasNoRoomForItsIdIsAFailure) {
    EXPECT_EQ(wrapper->QraNblDownLoad("http://a/1", nullptr, path.c_str(), tell, &told, nullptr), 2);
    service.refuse["nbl_provider_download"] = 5;

    EXPECT_EQ(download(), 2);

    EXPECT_EQ(wrapper->QraNblStopDownload(id), 0);
    EXPECT_TRUE(log.contains("no such item"));
}

TEST_F(DlnaTransfer, ADownloadThatEndsAtOnceIsNotLost) {
    service.transfers_end_at_once = true;

    EXPECT_EQ(download(), 0);
    service.run([] {});

    EXPECT_THAT(told.codes, ElementsAre(0));
}

TEST_F(DlnaTransfer, AStoppedDownloadIsCancelledAndHeardOfNoMore) {
    download();
    service.refuse["nbl_provider_cancel_download"] = 9;

    EXPECT_EQ(wrapper->QraNblStopDownload(id), 9) << "the service's code";

    tell_download(NBL_DOWNLOAD_STATE_PROGRESS, 1, 2);
    tell_download(NBL_DOWNLOAD_STATE_CANCELLED);
    EXPECT_THAT(told.codes, ElementsAre());
    EXPECT_EQ(wrapper->QraNblStopDownload(id), 0) << "gone";
}

TEST_F(DlnaTransfer, ADownloadThatIsDoneIsForgotten) {
    download();
    tell_download(NBL_DOWNLOAD_STATE_COMPLETE, 2, 2);

    EXPECT_EQ(wrapper->QraNblStopDownload(id), 0);
    tell_download(NBL_DOWNLOAD_STATE_COMPLETE, 2, 2);

    EXPECT_THAT(told.codes, ElementsAre(0));
    EXPECT_EQ(service.count("nbl_provider_cancel_download"), 0);
}

TEST_F(DlnaTransfer, ADownloadMayBeStoppedFromItsCallback) {
    struct Stopper {
        CQRADLNAWrapper* wrapper;
        int code = -1;
    } stopper{wrapper.get()};
    wrapper->QraNblDownLoad(
        "http://a/1", nullptr, path.c_str(),
        [](int, char* request, void* data, double, double, double, double) {
            auto* to = static_cast<Stopper*>(data);
            to->code = to->wrapper->QraNblStopDownload(request);
            return 1;
        },
        &stopper, id);

    tell_download(NBL_DOWNLOAD_STATE_PROGRESS, 1, 2);

    EXPECT_EQ(stopper.code, 0);
    EXPECT_EQ(service.count("nbl_provider_cancel_download"), 1);
}

TEST_F(DlnaTransfer, APathIsSentUnderItsContentType) {
    const std::pair<const char*, const char*> rows[] = {{"/a/b.JPG", "image/jpeg"},
                                                        {"/a/b.html", "text/plain"},
                                                        {"/a/b.htm", "text/html"},
                                                        {"/a/b.xml", "text/xml; charset=\"utf-8\""},
                                                        {"/a/b.m2ts", "application/octet-stream"},
                                                        {"/a/b.mkv", "video/x-matroska"},
                                                        {"/a/b.xyz", "application/octet-stream"},
                                                        {"/a.mp3/b", "application/octet-stream"},
                                                        {"b.tp", "video/vnd.dlna.mpeg-tts"},
                                                        {"/a/c.tar.flac", "audio/x-flac"}};
    for (const auto& row : rows) {
        EXPECT_EQ(upload(row.first), 0) << row.first;
        EXPECT_EQ(service.count(std::string("nbl_item_get_local_content ") + row.first + " " + row.second), 1)
            << row.first;
    }
    EXPECT_TRUE(log.contains("COULDN'T GET MIME FOR b.xyz"));
    EXPECT_EQ(FakeNubelink::items_alive, 0);
}

TEST_F(DlnaTransfer, AFifoIsSentUnderTheFilesNameAsAPicture) {
    EXPECT_EQ(upload(R"({"fifo_name":"/tmp/fifo","file_name":"film.mp4"})"), 0);

    EXPECT_EQ(service.count("nbl_item_get_live_content film.mp4 image/jpg /tmp/fifo"), 1);
    EXPECT_EQ(upload("\n { \"fifo_name\": \"/tmp/fifo\", \"file_name\": \"film.mp4\" }\n"), 0);
    EXPECT_EQ(service.count("nbl_item_get_live_content film.mp4 image/jpg /tmp/fifo"), 2);
}

TEST_F(DlnaTransfer, TextThatIsNoObjectWithAFifoIsAPath) {
    EXPECT_EQ(upload(R"({"file_name":"a.png"})"), 0);
    EXPECT_EQ(upload("{broken.png"), 0);

    EXPECT_EQ(service.count("nbl_item_get_local_content {broken.png image/png"), 1);
    EXPECT_EQ(service.count("nbl_item_get_live_content"), 0);
}

TEST_F(DlnaTransfer, AnUploadTellsItsProgressAndItsEnd) {
    upload("/a/b.jpg");

    tell_upload(0, 5, 10);
    EXPECT_THAT(told.numbers, ElementsAre(0.0, 0.0, 10 + 1e-6, 5 + 1e-6));
    tell_upload(0, 5, 0);
    complete_upload(0);

    EXPECT_THAT(told.codes, ElementsAre(20, 20, 0));
    EXPECT_THAT(told.numbers, ElementsAre(0.0, 0.0, 1.000001, 1.000001));
    EXPECT_EQ(wrapper->QraNblStopUpload(id), 0);
    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 0);
}

TEST_F(DlnaTransfer, AnUploadThatFailsIsTold) {
    upload("/a/b.jpg");
    complete_upload(NBL_ERROR_REFUSED);
    EXPECT_THAT(told.codes, ElementsAre(2));
    EXPECT_THAT(told.numbers, ElementsAre(0.0, 0.0, 1.000001, 1.000001));
    EXPECT_EQ(wrapper->QraNblStopUpload(id), 0);
    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 1) << "it stays until it is stopped";

    upload("/a/b.jpg");
    tell_upload(NBL_ERROR_NETWORK, 1, 2);
    EXPECT_THAT(told.codes, ElementsAre(2, 2));
    complete_upload(NBL_ERROR_NETWORK);
    EXPECT_THAT(told.codes, ElementsAre(2, 2)) << "it was over";
}

TEST_F(DlnaTransfer, AnUploadThatIsRefusedGivesTheCode) {
    EXPECT_EQ(wrapper->QraNblUpLoad("/a/b.jpg", tell, &told, nullptr), 2);
    service.refuse["nbl_provider_receive"] = 6;
    EXPECT_EQ(upload("/a/b.jpg"), 6);
    EXPECT_TRUE(log.contains("nbl_provider_receive error or request_id is error"));
    service.refuse = {{"nbl_item_get_local_content", 5}};
    EXPECT_NE(upload("/a/b.jpg"), 0);
    EXPECT_EQ(FakeNubelink::items_alive, 0);
}

TEST_F(DlnaTransfer, AnUploadThatEndsAtOnceIsNotLost) {
    service.transfers_end_at_once = true;

    EXPECT_EQ(upload("/a/b.jpg"), 0);
    service.run([] {});

    EXPECT_THAT(told.codes, ElementsAre(0));
}

TEST_F(DlnaTransfer, AStoppedUploadIsCancelledAndHeardOfNoMore) {
    upload("/a/b.jpg");

    EXPECT_EQ(wrapper->QraNblStopUpload(id), 0);

    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 1);
    complete_upload(0);
    EXPECT_THAT(told.codes, ElementsAre());
}

TEST_F(DlnaTransfer, TheEndOfTheWrapperStopsItsTransfers) {
    download();
    const FakeNubelink::Transfer transfer = service.last_transfer();
    upload("/a/b.jpg");

    wrapper.reset();

    EXPECT_EQ(service.count("nbl_provider_cancel_download"), 1);
    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 1);
    service.run([&] {
        nbl_transfer_info info{NBL_DOWNLOAD_STATE_COMPLETE, 0, 1, 1};
        transfer.cb(transfer.token, &info, transfer.user_data);
    });
    complete_upload(0);
    EXPECT_THAT(told.codes, ElementsAre());
}

TEST_F(DlnaTransfer, TheWrapperMayEndFromTheCallbackOfATransferThatIsDone) {
    wrapper->QraNblDownLoad(
        "http://a/1", nullptr, path.c_str(),
        [](int, char*, void* data, double, double, double, double) {
            static_cast<std::unique_ptr<CQRADLNAWrapper>*>(data)->reset();
            return 1;
        },
        &wrapper, id);

    tell_download(NBL_DOWNLOAD_STATE_COMPLETE, 1, 1);

    EXPECT_EQ(wrapper, nullptr);
}

TEST_F(DlnaTransfer, ABookmarkIsReadFromTheItem) {
    Received received;
    service.hold = true;
    EXPECT_TRUE(wrapper->QraNblGetBookmark("42", add_bookmark, &received));
    ASSERT_TRUE(service.wait_for_open(1));
    const FakeNubelink::Request request = service.open()[0];

    service.run([&] {
        nbl_item_t item = FakeNubelink::make_item({"42", "", NBL_ITEM_TYPE_VIDEO, {}, {{"bookmark", 95}}});
        nbl_response response{request.token, &item, 1, 1, 0, 1};
        request.cb(nullptr, &response, 0, request.user_data);
        nbl_item_free(item);
    });

    EXPECT_THAT(received.all(), ElementsAre("95"));
}

TEST_F(DlnaTransfer, AnItemThatIsGoneHasTheBookmarkZero) {
    Received received;

    EXPECT_TRUE(wrapper->QraNblGetBookmark("nowhere", add_bookmark, &received));

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_THAT(received.all(), ElementsAre("0"));
    EXPECT_TRUE(log.contains("dlna server item not exist,response length: 0"));
    service.refuse["nbl_provider_browse_item"] = 5;
    EXPECT_FALSE(wrapper->QraNblGetBookmark("42", add_bookmark, &received));
}

TEST_F(DlnaTransfer, ACancelledListLeavesABookmarkAlone) {
    Received received;
    service.hold = true;
    service.folders["42"] = {};
    EXPECT_TRUE(wrapper->QraNblGetBookmark("42", add_bookmark, &received));
    ASSERT_TRUE(service.wait_for_open(1));

    EXPECT_TRUE(wrapper->CancelAsync());
    service.answer(service.open()[0]);

    EXPECT_EQ(received.all().size(), 1U);
}

TEST_F(DlnaTransfer, ABookmarkIsSetWithItsTag) {
    const _stDLNAMediaItem media = make_media({"42", "", NBL_ITEM_TYPE_VIDEO, {}, {}});

    EXPECT_TRUE(wrapper->QraNblSetBookmark(media.pItem, 95));
    service.run([] {});

    EXPECT_EQ(service.count("nbl_provider_set_bookmark 42 95 65535"), 1);
    EXPECT_TRUE(log.contains("set bookmark, error[0]"));
    service.refuse["nbl_provider_set_bookmark"] = 5;
    EXPECT_FALSE(wrapper->QraNblSetBookmark(media.pItem, 95));
}

}  // namespace
