#ifndef QRA_MEDIA_CONTENT_METADATA_AV_INPUT_H
#define QRA_MEDIA_CONTENT_METADATA_AV_INPUT_H

#include "platform/media-content/host/metadata/byte_source.h"

struct AVFormatContext;
struct AVIOContext;
struct AVStream;

namespace media_content {

/**
 * A media file opened by libavformat through a ByteSource, which must outlive it.
 *
 * Only containers of video and sound are opened, and nothing but the one file: a file that refers to others,
 * such as a list of segments, is refused. libavformat's own messages are switched off for the process.
 */
class AvInput {
public:
    explicit AvInput(ByteSource& source) : source_(source) {}
    ~AvInput();
    AvInput(const AvInput&) = delete;
    AvInput& operator=(const AvInput&) = delete;

    /// Reads the container's header. Once only; false when it is none that is known.
    bool open();

    /// Reads into the streams for what the header leaves open: costs ten times an open().
    bool probe_streams();

    /// After a successful open(). It belongs to this object.
    const AVFormatContext* context() const { return context_; }

    /// The first stream of video that is no cover picture; null where there is none.
    const AVStream* video() const;
    const AVStream* audio() const;

    int64_t duration_ms() const;  ///< 0 unknown

private:
    static int on_read(void* self, uint8_t* out, int length);
    static int64_t on_seek(void* self, int64_t offset, int whence);

    ByteSource& source_;
    uint64_t position_ = 0;
    AVIOContext* io_ = nullptr;
    AVFormatContext* context_ = nullptr;
};

}  // namespace media_content

#endif
