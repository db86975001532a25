#include "tests/dlna/server/content.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr const char* kImage = "object.item.imageItem.photo";
constexpr const char* kVideo = "object.item.videoItem.movie";
constexpr const char* kMusic = "object.item.audioItem.musicTrack";
constexpr const char* kFolder = "object.container.storageFolder";

struct FileType {
    const char* extension;
    const char* upnp_class;
    const char* mime;
};

constexpr FileType kFileTypes[] = {
    {".jpg", kImage, "image/jpeg"},       {".png", kImage, "image/png"},
    {".gif", kImage, "image/gif"},        {".mp3", kMusic, "audio/mpeg"},
    {".flac", kMusic, "audio/x-flac"},    {".ogg", kMusic, "application/ogg"},
    {".wav", kMusic, "audio/x-wav"},      {".mp4", kVideo, "video/mp4"},
    {".mkv", kVideo, "video/x-matroska"}, {".avi", kVideo, "video/x-msvideo"},
    {".ts", kVideo, "video/mpeg"},
};

const FileType* type_of(const std::filesystem::path& path) {
    for (const FileType& type : kFileTypes) {
        if (path.extension() == type.extension) {
            return &type;
        }
    }
    return nullptr;
}

/// The number with zeros before it.
std::string padded(int value, std::size_t digits) {
    const std::string text = std::to_string(value);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

/// Titles go through the alphabet from both ends, so that their order is not that of the numbers.
std::string title_of(int i) {
    const char first = static_cast<char>(i % 2 == 0 ? 'A' + i / 2 % 13 : 'Z' - i / 2 % 13);
    const char second = static_cast<char>('a' + i / 3 % 26);
    return std::string{first, second} + " " + padded(i, 5);
}

std::string date_of(int i) {
    return padded(2015 + i / 12 % 6, 4) + "-" + padded(1 + i % 12, 2) + "-" + padded(1 + i % 28, 2);
}

Object generated(Kind kind, int i) {
    Object object;
    object.title = title_of(i);
    object.date = date_of(i);
    object.size = 1000 + i;
    if (kind == Kind::image) {
        object.upnp_class = kImage;
        object.mime = "image/jpeg";
        object.resolution = "640x480";
    } else if (kind == Kind::video) {
        object.upnp_class = kVideo;
        object.mime = "video/mp4";
        object.resolution = "1280x720";
        object.seconds = 60 + i % 600;
    } else {
        object.upnp_class = kMusic;
        object.mime = "audio/mpeg";
        object.artist = "Artist " + padded(i % 7, 2);
        object.album = "Album " + padded(i % 11, 2);
        object.genre = "Genre " + padded(i % 3, 2);
        object.seconds = 30 + i % 300;
    }
    return object;
}

std::vector<std::string> by_letters(const Object& object) {
    return {object.title.substr(0, 1), object.title.substr(0, 2)};
}
std::vector<std::string> by_month(const Object& object) {
    return {object.date.substr(0, 4), object.date.substr(0, 7)};
}
std::vector<std::string> by_letter(const Object& object) {
    return {object.title.substr(0, 1)};
}
std::vector<std::string> by_artist(const Object& object) {
    return {object.artist};
}
std::vector<std::string> by_album(const Object& object) {
    return {object.album};
}
std::vector<std::string> by_genre(const Object& object) {
    return {object.genre};
}

}  // namespace

Content::Content() {
    Object root;
    root.id = "0";
    root.parent = "-1";
    root.title = "Root";
    root.upnp_class = kFolder;
    objects_.emplace("0", std::move(root));
}

const Object* Content::find(const std::string& id) const {
    const auto found = objects_.find(id);
    return found == objects_.end() ? nullptr : &found->second;
}

Object* Content::find(const std::string& id) {
    const auto found = objects_.find(id);
    return found == objects_.end() ? nullptr : &found->second;
}

Object& Content::add(Object object) {
    objects_.at(object.parent).children.push_back(object.id);
    const std::string id = object.id;
    return objects_[id] = std::move(object);
}

void Content::remove(const std::string& id) {
    const auto found = objects_.find(id);
    if (found == objects_.end()) {
        return;
    }
    const std::vector<std::string> children = found->second.children;
    for (const std::string& child : children) {
        remove(child);
    }
    if (Object* parent = find(found->second.parent)) {
        parent->children.erase(std::remove(parent->children.begin(), parent->children.end(), id),
                               parent->children.end());
    }
    objects_.erase(id);
}

std::vector<const Object*> Content::below(const std::string& id, bool containers) const {
    std::vector<const Object*> all;
    const Object* top = find(id);
    if (!top) {
        return all;
    }
    for (const std::string& child : top->children) {
        const Object* object = find(child);
        // A container that holds itself is not walked into.
        if (!object || (object->is_container() && object->parent != id)) {
            continue;
        }
        if (!object->is_container() || containers) {
            all.push_back(object);
        }
        const std::vector<const Object*> deeper = below(child, containers);
        all.insert(all.end(), deeper.begin(), deeper.end());
    }
    return all;
}

Object& Content::add_container(const std::string& id, const std::string& parent, const std::string& title) {
    Object container;
    container.id = id;
    container.parent = parent;
    container.title = title;
    container.upnp_class = kFolder;
    return add(std::move(container));
}

void Content::generate(const std::string& id, Kind kind, int count) {
    remove(id);
    add_container(id, "0", id);
    for (int i = 0; i < count; ++i) {
        Object object = generated(kind, i);
        object.id = id + "-" + std::to_string(i);
        object.parent = id;
        add(std::move(object));
    }
}

void Content::generate_tree(const std::string& id, int depth, int width) {
    remove(id);
    add_container(id, "0", id);
    generate_level(id, depth, width);
}

void Content::generate_level(const std::string& id, int depth, int width) {
    Object item = generated(Kind::image, depth);
    item.id = id + "-item";
    item.parent = id;
    add(std::move(item));
    for (int i = 0; depth > 1 && i < width; ++i) {
        const std::string child = id + "." + std::to_string(i);
        add_container(child, id, child);
        generate_level(child, depth - 1, width);
    }
}

bool Content::add_directory(const std::string& id, const std::string& directory) {
    std::error_code error;
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.is_regular_file() && type_of(entry.path())) {
            paths.push_back(entry.path());
        }
    }
    if (error) {
        return false;
    }
    std::sort(paths.begin(), paths.end());
    remove(id);
    add_container(id, "0", id);
    for (const std::filesystem::path& path : paths) {
        Object object;
        object.id = id + "-" + path.filename().string();
        object.parent = id;
        object.title = path.stem().string();
        object.upnp_class = type_of(path)->upnp_class;
        object.mime = type_of(path)->mime;
        object.file = path.string();
        object.size = static_cast<std::int64_t>(std::filesystem::file_size(path));
        add(std::move(object));
    }
    return true;
}

void Content::add_view(const std::string& id, const std::string& kind, Keys keys,
                       const std::vector<Object>& items) {
    add_container(id, "0", id);
    for (const Object& item : items) {
        if (!item.is_of(kind)) {
            continue;
        }
        std::string container = id;
        for (const std::string& key : keys(item)) {
            const std::string inner = container + "/" + key;
            if (!find(inner)) {
                add_container(inner, container, key);
            }
            container = inner;
        }
        Object copy = item;
        copy.id = id + ":" + item.id;
        copy.parent = container;
        add(std::move(copy));
    }
}

void Content::add_views() {
    struct View {
        const char* id;
        const char* kind;
        Keys keys;
    };
    constexpr const char* kImages = "object.item.imageItem";
    constexpr const char* kVideos = "object.item.videoItem";
    constexpr const char* kSounds = "object.item.audioItem";
    const View views[] = {
        {"I_N", kImages, by_letters}, {"I_L", kImages, by_month},  {"V_T", kVideos, by_letters},
        {"V_L", kVideos, by_month},   {"A_M", kSounds, by_letter}, {"A_A", kSounds, by_artist},
        {"A_L", kSounds, by_album},   {"A_G", kSounds, by_genre},
    };
    for (const View& view : views) {
        remove(view.id);
    }
    std::vector<Object> items;
    for (const Object* item : below("0", false)) {
        items.push_back(*item);
    }
    for (const View& view : views) {
        add_view(view.id, view.kind, view.keys, items);
    }
}
