#include <gmock/gmock.h>

#include "tests/fakes/file_faults.h"
#include "tests/fakes/recording_maker.h"
#include "tests/unit/platform/recording/recording_fixture.h"

namespace {

using testing::ElementsAre;

using SvcPvrFault = RecordingTest;

TEST_F(SvcPvrFault, InfoFileIsFlushedThenRenamedThenItsDirectoryIsFlushed) {
    ASSERT_TRUE(make_recording(path("news.srf"), {}));
    file_faults::fail_call(0);

    ASSERT_EQ(lock(path("news.srf"), true), SVC_PVR_ERROR_NONE);

    // The first one opens the directory to lock it.
    EXPECT_THAT(file_faults::stop(),
                ElementsAre("open", "open", "write", "fsync", "rename", "open", "fsync"));
}

TEST_F(SvcPvrFault, WhicheverCallFailsTheInfoFileIsTheOldOrTheNewOne) {
    ASSERT_TRUE(make_recording(path("news.srf"), {}));
    ASSERT_EQ(lock(path("news.srf"), true), SVC_PVR_ERROR_NONE);
    ASSERT_EQ(lock(path("news.srf"), false), SVC_PVR_ERROR_NONE);
    const std::string before = directory_.read("news.inf");
    int failures = 0;
    for (int n = 1;; ++n) {
        ASSERT_LT(n, 100) << "no end of calls";
        file_faults::fail_call(n);
        const int result = lock(path("news.srf"), true);
        const std::vector<std::string> calls = file_faults::stop();

        if (result != SVC_PVR_ERROR_NONE) {
            ++failures;
            EXPECT_EQ(result, SVC_PVR_ERROR_WRITE_FAILED) << "call " << n << ", " << calls.back();
            EXPECT_EQ(directory_.read("news.inf"), before) << "call " << n << ", " << calls.back();
        } else {
            EXPECT_TRUE(ReadRecord(path("news.srf")).info.content_lock) << "call " << n;
            EXPECT_EQ(lock(path("news.srf"), false), SVC_PVR_ERROR_NONE);
        }
        ASSERT_THAT(names(), ElementsAre("news.inf", "news.srf")) << "call " << n << ", " << calls.back();
        if (static_cast<int>(calls.size()) < n) {
            break;
        }
    }
    EXPECT_EQ(failures, 4) << "open, write, fsync and rename of the new file";
}

}  // namespace
