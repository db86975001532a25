// What a client's source sends through the real service.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"
#include "libqra-agent/source/nubelink/qra_dlna_source.h"
#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

struct SourceUploadTest : HomeNetworkTest {
    static bool on_transfer(int, qra_event_e event, char*, double, double, double, double, void* self) {
        auto* test = static_cast<SourceUploadTest*>(self);
        test->told.change([&] { test->ended = event != QRA_EVENT_ACT_UPDATE ? event : test->ended; });
        return true;
    }

    Signal told;
    int ended = -1;
};

TEST_F(SourceUploadTest, BringsTheBytesOfAFifoUnderTheNameOfTheFile) {
    MediaServer server;
    ASSERT_NE(wait_for(), nullptr);
    CQRADlnaMgr::GetInstance()->SetServiceProvide(service);
    CQRADLNASource source;
    std::string device = kFirstId;
    ASSERT_TRUE(source.Open(device.data()));
    source.SetCallback(&SourceUploadTest::on_transfer, this);
    const std::string fifo = directory.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string bytes = "\xff\xd8\xff" + std::string(300'000, 'j');
    std::string upload = R"({"fifo_name":")" + fifo + R"(","file_name":"camera 7.jpg"})";
    char request[64] = "";
    ASSERT_TRUE(source.UpLoad(upload.data(), request));
    std::thread camera([&] { std::ofstream(fifo, std::ios::binary) << bytes; });

    EXPECT_TRUE(told.wait([this] { return ended >= 0; }));
    camera.join();
    EXPECT_EQ(ended, QRA_EVENT_ACT_SUCCESS);
    std::ifstream arrived(server.tell({"noted", "import:camera 7"}), std::ios::binary);
    EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(arrived), {}) == bytes);
    source.Close();
    CQRADlnaMgr::GetInstance()->SetServiceProvide(nullptr);
}

}  // namespace
