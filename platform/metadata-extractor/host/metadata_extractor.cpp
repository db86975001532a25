#include "metadata_extractor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <cstring>
#include <new>
#include <string>

#include "platform/media-content/host/metadata/av_input.h"
#include "platform/media-content/host/metadata/byte_source.h"

struct metadata_extractor_s {
    bool has_path = false;
    std::string video_codec;
    std::string audio_codec;
};

namespace {

using media_content::AvInput;
using media_content::FileSource;

std::string codec_name(const AVStream* stream) {
    const bool known = stream && stream->codecpar->codec_id != AV_CODEC_ID_NONE;
    return known ? avcodec_get_name(stream->codecpar->codec_id) : std::string();
}

bool lacks_codec(const AVStream* stream) {
    return stream && stream->codecpar->codec_id == AV_CODEC_ID_NONE;
}

void read_codecs(int descriptor, uint64_t size, metadata_extractor_s& extractor) {
    FileSource source;
    source.open(descriptor, size);
    AvInput input(source);
    if (!input.open()) {
        return;
    }
    const bool no_streams =
        !input.video() && !input.audio();  // some containers find theirs while they are read
    if (no_streams || lacks_codec(input.video()) || lacks_codec(input.audio())) {
        input.probe_streams();
    }
    extractor.video_codec = codec_name(input.video());
    extractor.audio_codec = codec_name(input.audio());
}

int read_file(const char* path, metadata_extractor_s& extractor) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return METADATA_EXTRACTOR_ERROR_FILE;
    }
    struct stat status {};
    const bool regular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (regular) {
        read_codecs(descriptor, static_cast<uint64_t>(status.st_size), extractor);
    }
    close(descriptor);
    return regular ? METADATA_EXTRACTOR_ERROR_NONE : METADATA_EXTRACTOR_ERROR_FILE;
}

}  // namespace

int metadata_extractor_create(metadata_extractor_h* extractor) {
    if (!extractor) {
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    }
    auto* created = new (std::nothrow) metadata_extractor_s;
    if (!created) {
        return METADATA_EXTRACTOR_ERROR_OUT_OF_MEMORY;
    }
    *extractor = created;
    return METADATA_EXTRACTOR_ERROR_NONE;
}

int metadata_extractor_set_path(metadata_extractor_h extractor, const char* path) {
    if (!extractor || !path) {
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    }
    try {
        metadata_extractor_s found;
        const int result = read_file(path, found);
        if (result == METADATA_EXTRACTOR_ERROR_NONE) {
            found.has_path = true;
            *extractor = std::move(found);
        }
        return result;
    } catch (const std::bad_alloc&) {
        return METADATA_EXTRACTOR_ERROR_OUT_OF_MEMORY;
    }
}

int metadata_extractor_get_metadata(metadata_extractor_h extractor, metadata_extractor_attr_e attribute,
                                    char** value) {
    if (!extractor || !value ||
        (attribute != METADATA_EXTRACTOR_VIDEO_CODEC && attribute != METADATA_EXTRACTOR_AUDIO_CODEC)) {
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    }
    if (!extractor->has_path) {
        return METADATA_EXTRACTOR_ERROR_NO_PATH;
    }
    const bool video = attribute == METADATA_EXTRACTOR_VIDEO_CODEC;
    char* copy = strdup((video ? extractor->video_codec : extractor->audio_codec).c_str());
    if (!copy) {
        return METADATA_EXTRACTOR_ERROR_OUT_OF_MEMORY;
    }
    *value = copy;
    return METADATA_EXTRACTOR_ERROR_NONE;
}

int metadata_extractor_destroy(metadata_extractor_h extractor) {
    if (!extractor) {
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    }
    delete extractor;
    return METADATA_EXTRACTOR_ERROR_NONE;
}
