#ifndef QRA_TESTS_FAKES_FAKE_SVC_PVR_H
#define QRA_TESTS_FAKES_FAKE_SVC_PVR_H

#include <string>

/// Takes the place of the recording service in a test program.
struct FakeRecording {
    static bool known;
    static int content_version;
    static int incomplete_reason;
    static std::string asked_path;
};

#endif
