#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_STATUS_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_STATUS_H

#include <qra/qra_batch.h>

#include <string>

/**
 * How far a batch job is, in the record that the client sees.
 *
 * Written by the job's thread only, and read by the client inside its callback, which runs on that thread.
 */
class CQRAShareStatus {
public:
    virtual ~CQRAShareStatus() = default;

    qra_share_status_info_s& GetInfo() { return m_stInfo; }

    /// Sets counts of a job that begins.
    void Begin(int nTotalCount);
    /// Goes on to the next file. A name that is empty or too long leaves the one before it.
    void BeginFile(const std::string& strName, unsigned long long llSize);
    /// Counts bytes that were copied.
    void AddBytes(unsigned long long llBytes);
    /// Takes back what was counted for a file that failed.
    void DropFile(unsigned long long llTotalBefore);

private:
    qra_share_status_info_s m_stInfo = {};
};

#endif
