// Runs the C clients on a drive with a few pictures.

#include <gtest/gtest.h>
#include "tests/capi/client_programs.h"
#include "tests/capi/media_drive.h"

namespace {

TEST(CInterface, ServesAClientWrittenInC) {
    const MediaDrive drive;
    EXPECT_EQ(0, run({QRA_C_CLIENT, "drive", drive.path()}));
}

TEST(CInterface, ServesAClientThatLoadsTheLibraryTwice) {
    const MediaDrive drive;
    EXPECT_EQ(0, run({QRA_DLOPEN_CLIENT, "drive", drive.path(), QRA_LIBRARY}));
}

}  // namespace
