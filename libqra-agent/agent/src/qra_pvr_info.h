#ifndef QRA_AGENT_AGENT_SRC_QRA_PVR_INFO_H
#define QRA_AGENT_AGENT_SRC_QRA_PVR_INFO_H

#include <string>

#include "svc_pvr.h"

/// What the platform's recording service knows of a recording; owns the texts that the service allocates.
class CQRAPvrInfo {
public:
    CQRAPvrInfo() = default;
    ~CQRAPvrInfo();
    CQRAPvrInfo(const CQRAPvrInfo&) = delete;
    CQRAPvrInfo& operator=(const CQRAPvrInfo&) = delete;

    /// Asks for a recording, by its path or that of its info file. Once for each object; false leaves it
    /// empty.
    bool Read(const std::string& strPath);

    pvr_file_info_s* operator->() { return &m_stInfo; }
    pvr_file_info_s& operator*() { return m_stInfo; }

private:
    pvr_file_info_s m_stInfo = {};
};

/// Has the service remove a recording with its companions. One that is not there any more counts as removed.
bool qra_delete_recording(const std::string& strPath);

#endif
