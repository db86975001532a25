#include "tests/fakes/fake_svc_pvr.h"

#include <cstring>

#include "svc_pvr.h"

bool FakeRecording::known = true;
int FakeRecording::content_version = 0;
int FakeRecording::incomplete_reason = 0;
std::string FakeRecording::asked_path;

int svc_pvr_get_pvr_file_info(const char* path, pvr_file_info_s* info) {
    FakeRecording::asked_path = path;
    if (!FakeRecording::known)
        return SVC_PVR_ERROR_NO_INFO;
    info->channel_name = strdup("channel");
    info->channel_num = strdup("1-1");
    info->synopsis = strdup("");
    info->genre = strdup("");
    info->content_version = FakeRecording::content_version;
    info->incomplete_reason = FakeRecording::incomplete_reason;
    return SVC_PVR_ERROR_NONE;
}
