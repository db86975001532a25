// Runs the C clients on a media server with a few pictures and songs.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <optional>

#include "tests/capi/client_programs.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/temp_dir.h"

namespace {

constexpr char kId[] = "uuid:c1";

class CInterface : public testing::Test {
protected:
    void SetUp() override {
        if (!have_own_network()) {
            GTEST_SKIP() << "the system gives no network of its own";
        }
        setenv("QRA_DATA_DIR", directory_.path().c_str(), 1);
        server_.emplace(
            std::vector<std::string>{"--name=Attic", std::string("--id=") + kId, "--maker=Kelvora"});
        server_->generate("p", "image", 5);
        server_->generate("m", "music", 4);
    }

private:
    TempDir directory_;
    std::optional<MediaServer> server_;
};

TEST_F(CInterface, ServesMediaServersToAClientWrittenInC) {
    EXPECT_EQ(0, run({QRA_C_CLIENT, "server", kId}));
}

TEST_F(CInterface, ServesMediaServersToAClientThatLoadsTheLibraryTwice) {
    EXPECT_EQ(0, run({QRA_DLOPEN_CLIENT, "server", kId, QRA_LIBRARY}));
}

}  // namespace
