#include "svc_pvr.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/recording/host/recording_info_file.h"

namespace {

struct TextField {
    const char* key;
    char* pvr_file_info_s::*member;
};

constexpr TextField kTexts[] = {
    {"channel_name", &pvr_file_info_s::channel_name},
    {"channel_num", &pvr_file_info_s::channel_num},
    {"synopsis", &pvr_file_info_s::synopsis},
    {"genre", &pvr_file_info_s::genre},
};

bool copy_texts(const recording::InfoFile& file, pvr_file_info_s& info) {
    bool copied = true;
    for (const TextField& field : kTexts) {
        info.*field.member = strdup(file.text(field.key).c_str());
        copied = copied && info.*field.member;
    }
    return copied;
}

void free_texts(pvr_file_info_s& info) {
    for (const TextField& field : kTexts) {
        free(info.*field.member);
    }
}

void copy_title(const std::string& title, pvr_file_info_s& info) {
    size_t length = std::min(title.size(), sizeof(info.title) - 1);
    const auto continues = [&](size_t at) { return at < title.size() && (title[at] & 0xC0) == 0x80; };
    while (length > 0 && length < title.size() && continues(length)) {
        --length;
    }
    memcpy(info.title, title.data(), length);
    info.title[length] = '\0';
}

}  // namespace

int svc_pvr_get_pvr_file_info(const char* path, pvr_file_info_s* info) {
    if (!path || !info) {
        return SVC_PVR_ERROR_INVALID_PARAMETER;
    }
    recording::InfoFile file;
    if (!file.load_beside(AT_FDCWD, path)) {
        return SVC_PVR_ERROR_NO_INFO;
    }
    pvr_file_info_s found{};
    if (!copy_texts(file, found)) {
        free_texts(found);
        return SVC_PVR_ERROR_OUT_OF_MEMORY;
    }
    copy_title(file.text("program_title"), found);
    found.duration = file.number("duration");
    found.start_time = file.number("start_time");
    found.content_version = file.number("content_version");
    found.incomplete_reason = file.number("incomplete_reason");
    found.finished = file.flag("finished");
    found.content_lock = file.flag("content_lock");
    *info = found;
    return SVC_PVR_ERROR_NONE;
}
