#include "platform/media-content/host/metadata/av_input.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {
namespace {

constexpr int kBufferSize = 32 * 1024;
constexpr int64_t kProbeBytes = 1 << 20;
constexpr int64_t kProbeDuration = AV_TIME_BASE;

// Demuxers that read one container. Those that open further files are left out on purpose.
constexpr char kContainers[] =
    "mov,mp4,matroska,webm,avi,mpegts,mpeg,mpegvideo,asf,flv,live_flv,rm,ogg,mxf,dv,mjpeg,h264,hevc,m4v,"
    "mp3,aac,ac3,eac3,dts,dtshd,amr,amrnb,amrwb,au,caf,dsf,iff,aiff,wav,w64,flac,ape,wv,tta,mpc,mpc8";

/// How the commonest containers begin: knowing it saves asking every demuxer.
struct Signature {
    size_t offset;
    std::string_view magic;
    const char* demuxer;
};

constexpr Signature kSignatures[] = {
    {4, "ftyp", "mov"},
    {0, "\x1A\x45\xDF\xA3", "matroska"},
    {8, "AVI ", "avi"},
};

const AVInputFormat* known_format(ByteSource& source) {
    std::array<uint8_t, 12> start{};
    source.read(0, start.data(), start.size());
    for (const Signature& signature : kSignatures) {
        if (begins_with(start.data() + signature.offset, signature.magic)) {
            return av_find_input_format(signature.demuxer);
        }
    }
    return nullptr;
}

int refuse_to_open(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

const AVStream* first_stream(const AVFormatContext* context, AVMediaType type) {
    for (unsigned int i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        if (stream->codecpar->codec_type == type && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
            return stream;
        }
    }
    return nullptr;
}

}  // namespace

AvInput::~AvInput() {
    avformat_close_input(&context_);
    if (io_) {
        av_freep(&io_->buffer);
        avio_context_free(&io_);
    }
}

bool AvInput::open() {
    static const bool silenced = (av_log_set_level(AV_LOG_QUIET), true);
    static_cast<void>(silenced);
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
    io_ = buffer ? avio_alloc_context(buffer, kBufferSize, 0, this, on_read, nullptr, on_seek) : nullptr;
    context_ = io_ ? avformat_alloc_context() : nullptr;
    if (!context_) {
        if (!io_) {
            av_free(buffer);
        }
        return false;
    }
    context_->pb = io_;
    context_->io_open = refuse_to_open;
    context_->format_whitelist = av_strdup(kContainers);
    context_->probesize = kProbeBytes;
    context_->max_analyze_duration = kProbeDuration;
    return avformat_open_input(&context_, nullptr, known_format(source_), nullptr) == 0;
}

bool AvInput::probe_streams() {
    return avformat_find_stream_info(context_, nullptr) >= 0;
}

const AVStream* AvInput::video() const {
    return first_stream(context_, AVMEDIA_TYPE_VIDEO);
}

const AVStream* AvInput::audio() const {
    return first_stream(context_, AVMEDIA_TYPE_AUDIO);
}

int64_t AvInput::duration_ms() const {
    if (context_->duration > 0) {
        return av_rescale(context_->duration, 1000, AV_TIME_BASE);
    }
    int64_t longest = 0;
    for (unsigned int i = 0; i < context_->nb_streams; ++i) {
        const AVStream* stream = context_->streams[i];
        if (stream->duration > 0) {
            longest =
                std::max(longest, av_rescale_q(stream->duration, stream->time_base, AVRational{1, 1000}));
        }
    }
    return longest;
}

int AvInput::on_read(void* self, uint8_t* out, int length) {
    auto* input = static_cast<AvInput*>(self);
    const size_t count = input->source_.read(input->position_, out, static_cast<size_t>(length));
    input->position_ += count;
    return count > 0 ? static_cast<int>(count) : AVERROR_EOF;
}

int64_t AvInput::on_seek(void* self, int64_t offset, int whence) {
    auto* input = static_cast<AvInput*>(self);
    const auto size = static_cast<int64_t>(input->source_.size());
    int64_t base = 0;
    switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return size;
        case SEEK_SET:
            break;
        case SEEK_CUR:
            base = static_cast<int64_t>(input->position_);
            break;
        case SEEK_END:
            base = size;
            break;
        default:
            return AVERROR(EINVAL);
    }
    int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0) {
        return AVERROR(EINVAL);
    }
    input->position_ = static_cast<uint64_t>(target);
    return target;
}

}  // namespace media_content
