#include "platform/mtp/virtual-camera/card.h"

#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/mtp/virtual-camera/ptp_codes.h"

namespace virtual_camera {

namespace {

constexpr int kDeepest = 32;
constexpr size_t kHeadLength = 65536;  ///< of a file, where sizes and thumbnails are looked for
constexpr uint64_t kMadeUpSize = 2048;

struct Extension {
    const char* text;
    uint16_t format;
};

constexpr Extension kExtensions[] = {
    {"jpg", 0x3801}, {"jpeg", 0x3801}, {"jfif", 0x3808}, {"tif", 0x380D}, {"tiff", 0x380D}, {"bmp", 0x3804},
    {"gif", 0x3807}, {"pict", 0x380A}, {"png", 0x380B},  {"mp4", 0xB982}, {"wmv", 0xB981},  {"avi", 0x300A},
    {"mpg", 0x300B}, {"mpeg", 0x300B}, {"asf", 0x300C},  {"mov", 0x300D}, {"mp3", 0x3009},  {"wav", 0x3008},
};

uint16_t format_of(const std::string& name) {
    const size_t dot = name.rfind('.');
    if (dot != std::string::npos) {
        for (const Extension& extension : kExtensions) {
            if (strcasecmp(name.c_str() + dot + 1, extension.text) == 0) {
                return extension.format;
            }
        }
    }
    return format::kUndefined;
}

uint32_t big16(const std::vector<uint8_t>& bytes, size_t at) {
    return static_cast<uint32_t>(bytes[at]) << 8U | bytes[at + 1];
}

uint32_t big32(const std::vector<uint8_t>& bytes, size_t at) {
    return big16(bytes, at) << 16U | big16(bytes, at + 2);
}

void read_jpeg_size(const std::vector<uint8_t>& head, Object& object) {
    for (size_t at = 2; at + 9 < head.size() && head[at] == 0xFF;) {
        const uint8_t marker = head[at + 1];
        const bool is_frame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (is_frame) {
            object.height = big16(head, at + 5);
            object.width = big16(head, at + 7);
            return;
        }
        at += 2 + big16(head, at + 2);
    }
}

void read_picture_size(Object& object) {
    const std::vector<uint8_t> head = Card::read(object, 0, kHeadLength);
    if (object.format == format::kJpeg) {
        read_jpeg_size(head, object);
    } else if (object.format == format::kPng && head.size() >= 24) {
        object.width = big32(head, 16);
        object.height = big32(head, 20);
    }
}

}  // namespace

Card::Card(const Description& description) {
    for (const std::string& directory : description.storages) {
        storages_.push_back(static_cast<uint32_t>(storages_.size() + 1) << 16U | 1U);
        add_tree(storages_.back(), 0, directory, 0);
    }
    if (description.objects > 0) {
        if (storages_.empty()) {
            storages_.push_back(0x00010001);
        }
        add_made_up(storages_.front(), description.objects);
    }
}

void Card::add_tree(uint32_t storage, uint32_t parent, const std::string& directory, int depth) {
    std::error_code error;
    std::vector<std::filesystem::directory_entry> entries;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        entries.push_back(entry);
    }
    std::sort(entries.begin(), entries.end());
    for (const auto& entry : entries) {
        const std::string name = entry.path().filename().string();
        struct stat status {};
        if (stat(entry.path().c_str(), &status) != 0) {
            continue;
        }
        if (S_ISDIR(status.st_mode) && depth < kDeepest) {
            add_tree(storage, add_folder(storage, parent, name), entry.path().string(), depth + 1);
        } else if (S_ISREG(status.st_mode)) {
            Object object;
            object.storage = storage;
            object.parent = parent;
            object.format = format_of(name);
            object.size = static_cast<uint64_t>(status.st_size);
            object.modified = status.st_mtime;
            object.name = name;
            object.path = entry.path().string();
            read_picture_size(object);
            add(object);
        }
    }
}

void Card::add_made_up(uint32_t storage, unsigned count) {
    const uint32_t parent = add_folder(storage, add_folder(storage, 0, "DCIM"), "100VIRT");
    for (unsigned i = 1; i <= count; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "IMG_%06u.JPG", i);
        Object object;
        object.storage = storage;
        object.parent = parent;
        object.format = format::kJpeg;
        object.size = kMadeUpSize;
        object.modified = 1600000000 + static_cast<int64_t>(i);
        object.width = 4000;
        object.height = 3000;
        object.name = name;
        add(object);
    }
}

uint32_t Card::add_folder(uint32_t storage, uint32_t parent, const std::string& name) {
    Object object;
    object.storage = storage;
    object.parent = parent;
    object.format = format::kFolder;
    object.name = name;
    return add(object);
}

uint32_t Card::add(Object object) {
    object.handle = ++last_handle_;
    objects_[object.handle] = object;
    return object.handle;
}

bool Card::has_storage(uint32_t storage) const {
    return std::find(storages_.begin(), storages_.end(), storage) != storages_.end();
}

const Object* Card::find(uint32_t handle) const {
    const auto it = objects_.find(handle);
    return it != objects_.end() ? &it->second : nullptr;
}

std::vector<uint32_t> Card::children(uint32_t storage, uint32_t parent) const {
    const uint32_t folder = parent == kRootParent ? 0 : parent;
    std::vector<uint32_t> handles;
    for (const auto& [handle, object] : objects_) {
        if (object.parent == folder && (storage == kAllStorages || object.storage == storage)) {
            handles.push_back(handle);
        }
    }
    return handles;
}

std::vector<uint8_t> Card::read(const Object& object, uint64_t offset, size_t length) {
    if (offset >= object.size) {
        return {};
    }
    std::vector<uint8_t> bytes(std::min<uint64_t>(length, object.size - offset));
    if (object.path.empty()) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<uint8_t>((offset + i) * 7 + object.handle);
        }
        return bytes;
    }
    std::ifstream file(object.path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return bytes;
}

std::vector<uint8_t> Card::thumbnail(const Object& object) {
    if (object.format != format::kJpeg || object.path.empty()) {
        return {};
    }
    const std::vector<uint8_t> head = read(object, 0, kHeadLength);
    const uint8_t begin[] = {0xFF, 0xD8, 0xFF};
    const uint8_t end[] = {0xFF, 0xD9};
    const auto first =
        std::search(head.begin() + std::min<size_t>(2, head.size()), head.end(), begin, begin + 3);
    const auto last = std::search(first, head.end(), end, end + 2);
    if (last != head.end()) {
        return {first, last + 2};
    }
    return object.size <= kHeadLength ? head : std::vector<uint8_t>();
}

}  // namespace virtual_camera
