#include "platform/mtp/host/object_info.h"

#include <libmtp.h>
#include <strings.h>

#include <climits>
#include <cstring>
#include <string>

namespace mtp {

namespace {

static_assert(int{LIBMTP_FILETYPE_FOLDER} == int{MTP_FILETYPE_FOLDER});
static_assert(int{LIBMTP_FILETYPE_MP4} == int{MTP_FILETYPE_MP4});
static_assert(int{LIBMTP_FILETYPE_WMV} == int{MTP_FILETYPE_WMV});
static_assert(int{LIBMTP_FILETYPE_QT} == int{MTP_FILETYPE_MOV});
static_assert(int{LIBMTP_FILETYPE_JPEG} == int{MTP_FILETYPE_JPG});
static_assert(int{LIBMTP_FILETYPE_PNG} == int{MTP_FILETYPE_PNG});
static_assert(int{LIBMTP_FILETYPE_UNKNOWN} == int{MTP_FILETYPE_UNKNOWN});
static_assert(int{MTP_FILETYPE_ALL} == int{MTP_FILETYPE_UNKNOWN} + 1);

struct Extension {
    const char* text;
    int file_type;
};

/// For cameras that have no number of PTP for some of their own files.
constexpr Extension kExtensions[] = {
    {"mp4", MTP_FILETYPE_MP4},  {"wmv", MTP_FILETYPE_WMV},   {"avi", MTP_FILETYPE_AVI},
    {"mpg", MTP_FILETYPE_MPEG}, {"mpeg", MTP_FILETYPE_MPEG}, {"asf", MTP_FILETYPE_ASF},
    {"mov", MTP_FILETYPE_MOV},  {"jpg", MTP_FILETYPE_JPG},   {"jpeg", MTP_FILETYPE_JPG},
    {"tif", MTP_FILETYPE_TIFF}, {"tiff", MTP_FILETYPE_TIFF}, {"bmp", MTP_FILETYPE_BMP},
    {"gif", MTP_FILETYPE_GIF},  {"pict", MTP_FILETYPE_PICT}, {"png", MTP_FILETYPE_PNG},
};

int file_type(int type, const std::string& name) {
    const size_t dot = name.rfind('.');
    if (type != MTP_FILETYPE_UNKNOWN || dot == std::string::npos) {
        return type;
    }
    for (const Extension& extension : kExtensions) {
        if (strcasecmp(name.c_str() + dot + 1, extension.text) == 0) {
            return extension.file_type;
        }
    }
    return type;
}

/// A name that is one name wherever it is used.
std::string file_name(const char* text) {
    std::string name = text != nullptr ? text : "";
    for (char& c : name) {
        const auto byte = static_cast<unsigned char>(c);
        c = byte < ' ' || byte == 0x7F || c == '/' ? '_' : c;
    }
    if (name == "." || name == "..") {
        name.assign(name.size(), '_');
    }
    size_t length = std::min(name.size(), size_t{MTP_FILE_NAME_SIZE - 1});
    while (length < name.size() && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80) {
        --length;
    }
    return name.substr(0, length);
}

int in_range(int64_t value) {
    return value < 0 || value > INT_MAX ? 0 : static_cast<int>(value);
}

}  // namespace

ObjectInfo object_info(const LIBMTP_file_struct& file, const Transport::Pixels& pixels) {
    ObjectInfo info;
    info.there = true;
    info.name = file_name(file.filename);
    info.file_type = file_type(static_cast<int>(file.filetype), info.name);
    info.storage = file.storage_id;
    info.size = info.file_type == MTP_FILETYPE_FOLDER ? 0 : file.filesize;
    info.width = in_range(pixels.width);
    info.height = in_range(pixels.height);
    info.modified_time = in_range(file.modificationdate);
    return info;
}

void tell(const ObjectInfo& info, mtp_object_info& told) {
    told.file_type = info.file_type;
    told.size = info.size;
    told.width = info.width;
    told.height = info.height;
    told.modified_time = info.modified_time;
    std::memcpy(told.file_name, info.name.c_str(), info.name.size() + 1);
}

}  // namespace mtp
