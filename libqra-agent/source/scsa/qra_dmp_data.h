#ifndef QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_DATA_H
#define QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_DATA_H

#include <map>
#include <string>
#include <vector>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "libqra-agent/source/scsa/qra_dmp_metadata.h"

/**
 * What the packages told that were looked at since the process began, by path. Nothing leaves it on its own:
 * a drive that went away still answers, and one that comes back with another package at a path shows the old
 * one. A path with no contents is a package that was looked at and holds nothing.
 *
 * Any thread may call anything. m_Mutex is held through each operation, and no other lock is taken under it;
 * what comes out is a copy. To ask and to insert are two operations: where two threads read one package, the
 * first result stays.
 */
class CQRADmpData : public CQRASingleton<CQRADmpData> {
public:
    virtual ~CQRADmpData() = default;

    bool FindPathExist(std::string strFilePath) QRA_EXCLUDES(m_Mutex);
    /// Adds a package; one that is known keeps what it has.
    void InsertData(std::string strFilePath, std::vector<_stDMPMETADATA>& contents) QRA_EXCLUDES(m_Mutex);
    /// Adds one more content to a package, which need not be known.
    void InsertData(std::string strFilePath, _stDMPMETADATA& content) QRA_EXCLUDES(m_Mutex);
    void RemoveData(std::string strFilePath) QRA_EXCLUDES(m_Mutex);

    /// The value of the first content that can answer. An empty text is a value, and leaves `*ppValue` alone;
    /// any other is the caller's to free.
    bool GetValue(std::string strFilePath, std::string strField, int* pValue) QRA_EXCLUDES(m_Mutex);
    bool GetValue(std::string strFilePath, std::string strField, char** ppValue) QRA_EXCLUDES(m_Mutex);

    /// Number of contents. Once there is any package, a path that is not known becomes one without contents.
    bool GetThumbCount(std::string strFilePath, int& iCount) QRA_EXCLUDES(m_Mutex);
    /// Number of pictures of one content; false if there is none. As GetThumbCount() with a path not known.
    bool GetThumbDataCount(std::string strFilePath, int iContentIndex, int& iCount) QRA_EXCLUDES(m_Mutex);
    bool GetThumbnailData(std::string strFilePath, int iContentIndex, int iImageIndex,
                          std::string& strImgPath, std::string& strTrackReference) QRA_EXCLUDES(m_Mutex);

private:
    using Contents = std::vector<_stDMPMETADATA>;

    bool m_FindData(const std::string& strFilePath) QRA_REQUIRES(m_Mutex);
    const Contents* m_GetContents(const std::string& strFilePath) QRA_REQUIRES(m_Mutex);
    const Contents* m_GetIndexedContents(const std::string& strFilePath) QRA_REQUIRES(m_Mutex);

    CQRAGMutex m_Mutex;
    std::map<std::string, Contents> m_MetaDataMap QRA_GUARDED_BY(m_Mutex);
};

#endif
