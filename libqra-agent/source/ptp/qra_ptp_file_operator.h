#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_FILE_OPERATOR_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_FILE_OPERATOR_H

#include <string>

/**
 * A file of a camera, by its URI "ptp://bus;device;path", as a copy reads it.
 *
 * The camera's manager transfers nothing into it, so that every read of an open file fails. Belongs to one
 * thread at a time; owns no memory.
 */
class CQRAPTPFileOperator {
public:
    /// Finds the camera and checks the path, which has to hold a "/".
    bool Open(std::string strURI);
    /// Reads up to `uSize` bytes; `*puDone` becomes what was read.
    bool Read(char* pBuffer, unsigned long uSize, unsigned long* puDone);
    void Close();

protected:
    char* m_szBuffer = nullptr;  ///< what comes next; the manager's
    unsigned long m_uSize = 0;
    unsigned long m_uIndex = 0;
    bool m_bIsOpen = false;
};

#endif
