#include "platform/media-content/host/metadata/metadata_reader.h"

#include <exception>
#include <string_view>

#include "platform/media-content/host/metadata/exif_reader.h"
#include "platform/media-content/host/metadata/picture_header.h"
#include "platform/media-content/host/metadata/recording_reader.h"
#include "platform/media-content/host/metadata/tagged_sound_reader.h"
#include "platform/media-content/host/metadata/video_reader.h"
#include "platform/media-content/host/metadata/xmp_reader.h"

namespace media_content {
namespace {

std::string_view stem(std::string_view name) {
    return name.substr(0, name.rfind('.'));
}

}  // namespace

const char* MetadataReader::read(int descriptor, uint64_t size, int directory, const std::string& name,
                                 const MediaType& type, MediaRecord& record) {
    record.kind = type.kind;
    record.mime_type = type.mime_type;
    source_.open(descriptor, size);
    try {
        return read_content(directory, name, record);
    } catch (const std::exception&) {
        return "a reader failed";
    }
}

const char* MetadataReader::read_content(int directory, const std::string& name, MediaRecord& record) {
    switch (record.kind) {
        case MediaKind::kImage:
            return read_picture(record);
        case MediaKind::kVideo:
            return read_video(source_, record) ? nullptr : "no known video container";
        case MediaKind::kSound:
        case MediaKind::kMusic:
            return read_music(name, record);
        case MediaKind::kRecording:
            return read_recording(directory, name, record.recording);
        case MediaKind::kUhd: {
            record.uhd.content_id = stem(name);
            const bool readable = read_uhd(source_, record);
            if (record.uhd.content_title.empty()) {
                record.uhd.content_title = stem(name);
            }
            record.title = record.uhd.content_title;
            return readable ? nullptr : "no known container";
        }
        case MediaKind::kScsa:
        case MediaKind::kOther:
            return nullptr;
    }
    return nullptr;
}

const char* MetadataReader::read_picture(MediaRecord& record) {
    PictureHeader header;
    const bool has_size = read_picture_header(source_, header);
    record.image.width = header.width;
    record.image.height = header.height;
    for (const ByteRange& block : header.exif) {
        read_exif(source_, block, scratch_, record);
    }
    if (!header.xmp.empty() && source_.read_block(header.xmp, kLargestXmp, scratch_)) {
        read_picture_xmp({reinterpret_cast<const char*>(scratch_.data()), scratch_.size()}, record);
    }
    return has_size ? nullptr : "no picture header that tells its size";
}

const char* MetadataReader::read_music(const std::string& name, MediaRecord& record) {
    if (read_tagged_sound(source_, name.c_str(), record) || read_untagged_sound(source_, record)) {
        return nullptr;
    }
    return "no known sound format";
}

}  // namespace media_content
