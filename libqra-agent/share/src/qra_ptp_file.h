#ifndef QRA_AGENT_SHARE_SRC_QRA_PTP_FILE_H
#define QRA_AGENT_SHARE_SRC_QRA_PTP_FILE_H

#include <memory>
#include <string>

/// A file of a camera, by its "ptp://" URI, as a copy reads it. Belongs to one thread at a time.
class IQRAPTPFile {
public:
    virtual ~IQRAPTPFile() = default;
    virtual bool Open(std::string strUri) = 0;
    /// Reads up to `nSize` bytes; `*pnDone` becomes what was read.
    virtual bool Read(char* pBuffer, unsigned long nSize, unsigned long* pnDone) = 0;
    virtual void Close() = 0;
};

/// A new reader; null where this build has no cameras, and no file of one can be opened then.
std::unique_ptr<IQRAPTPFile> qra_make_ptp_file();

#endif
