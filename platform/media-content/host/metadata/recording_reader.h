#ifndef QRA_MEDIA_CONTENT_METADATA_RECORDING_READER_H
#define QRA_MEDIA_CONTENT_METADATA_RECORDING_READER_H

#include <string>

#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/**
 * Reads the info file that lies beside a recording.
 *
 * @param directory  the recording's directory
 * @param name       the recording's name in it; without a title in the info file its stem is the title
 * @return null, or what is wrong: a phrase for the log
 */
const char* read_recording(int directory, const std::string& name, RecordingMetadata& recording);

}  // namespace media_content

#endif
