#ifndef QRA_AGENT_AGENT_SRC_QRA_RECORDING_FILE_H
#define QRA_AGENT_AGENT_SRC_QRA_RECORDING_FILE_H

#include <string>

/// What a recording's own file tells beyond its row in the media database.
struct RecordingFileInfo {
    int nContentVersion = 0;
    int nIncompleteReason = 0;
};

/// Asks the platform's recording service; all 0 if it knows nothing of the file.
RecordingFileInfo qra_read_recording_file(const std::string& strPath);

#endif
