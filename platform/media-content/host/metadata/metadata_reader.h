#ifndef QRA_MEDIA_CONTENT_METADATA_METADATA_READER_H
#define QRA_MEDIA_CONTENT_METADATA_METADATA_READER_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/media-content/host/metadata/byte_source.h"
#include "platform/media-content/host/metadata/media_record.h"
#include "platform/media-content/host/metadata/media_types.h"

namespace media_content {

/**
 * Reads what files tell about themselves. One for each thread: its buffers serve file after file.
 *
 * No file, however broken, makes it crash, read without end or allocate without measure.
 */
class MetadataReader {
public:
    /// @param stop ends the reading of the file at hand as soon as it is true; may be null
    explicit MetadataReader(const std::atomic<bool>* stop = nullptr) : source_(stop) {}

    /**
     * Reads an open file.
     *
     * @param descriptor  the file; the caller's
     * @param size        in bytes
     * @param directory   the file's directory, where a companion file may lie
     * @param name        the file's name in it
     * @param type        of that name
     * @param record      receives all that is known, also after a failure
     * @return null, or what is wrong with the file: a phrase for the log
     */
    const char* read(int descriptor, uint64_t size, int directory, const std::string& name,
                     const MediaType& type, MediaRecord& record);

    /// Whether the device failed under the latest file.
    bool device_failed() const { return source_.failed(); }

private:
    const char* read_content(int directory, const std::string& name, MediaRecord& record);
    const char* read_picture(MediaRecord& record);
    const char* read_music(const std::string& name, MediaRecord& record);

    FileSource source_;
    std::vector<uint8_t> scratch_;
};

}  // namespace media_content

#endif
