#include "libqra-agent/source/scsa/qra_dmp_data.h"

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

/// Where a content keeps the value of a field; null if it has none, and the next content is asked.
template <class Value>
struct Field {
    const char* szName;
    const Value* (*pFind)(const _stDMPMETADATA& content);
};

template <class Value, Value _stDMPMetadata_common::*pMember>
const Value* FindCommon(const _stDMPMETADATA& content) {
    return &(content.common.*pMember);
}

template <class Value, Value _stDMPMetadata_image::*pMember>
const Value* FindInImage(const _stDMPMETADATA& content) {
    return content.images.empty() ? nullptr : &(content.images.front().*pMember);
}

template <std::string _stDMPMetadata_rating::*pMember>
const std::string* FindInRating(const _stDMPMETADATA& content) {
    return content.ratings.empty() ? nullptr : &(content.ratings.front().*pMember);
}

constexpr Field<int> NUMBER_FIELDS[] = {
    {"INDEX", FindCommon<int, &_stDMPMetadata_common::nIndex>},
    {"WIDTH", FindInImage<int, &_stDMPMetadata_image::nWidth>},
    {"HEIGHT", FindInImage<int, &_stDMPMetadata_image::nHeight>},
};

constexpr Field<std::string> TEXT_FIELDS[] = {
    {"CONTENT_ID", FindCommon<std::string, &_stDMPMetadata_common::strContentID>},
    {"PROFILE", FindCommon<std::string, &_stDMPMetadata_common::strDECEMediaProfile>},
    {"RUNLENGTH", FindCommon<std::string, &_stDMPMetadata_common::strRunLength>},
    {"PUBLISHER", FindCommon<std::string, &_stDMPMetadata_common::strPublisher>},
    {"TITLE_19", FindCommon<std::string, &_stDMPMetadata_common::strTitleDisplay19>},
    {"TITLE_60", FindCommon<std::string, &_stDMPMetadata_common::strTitleDisplay60>},
    {"TITLE_UNLIMITED", FindCommon<std::string, &_stDMPMetadata_common::strTitleDisplayUnlimited>},
    {"TITLE_SORT", FindCommon<std::string, &_stDMPMetadata_common::strTitleDisplaySort>},
    {"SUMMARY_190", FindCommon<std::string, &_stDMPMetadata_common::strSummary190>},
    {"SUMMARY_400", FindCommon<std::string, &_stDMPMetadata_common::strSummary400>},
    {"SUMMARY_4000", FindCommon<std::string, &_stDMPMetadata_common::strSummary4000>},
    {"DESC_LANGUAGE", FindCommon<std::string, &_stDMPMetadata_common::strDescriptionLanguage>},
    {"ENCODING", FindInImage<std::string, &_stDMPMetadata_image::strEncoding>},
    {"TRACK_REFERENCE", FindInImage<std::string, &_stDMPMetadata_image::strTrackReference>},
    {"STREAM_NAME", FindInImage<std::string, &_stDMPMetadata_image::strLocation>},
    {"COUNTRY", FindInRating<&_stDMPMetadata_rating::strCountry>},
    {"SYSTEM", FindInRating<&_stDMPMetadata_rating::strSystem>},
    {"RATING_VALUE", FindInRating<&_stDMPMetadata_rating::strValue>},
    {"RATING_DESC", FindInRating<&_stDMPMetadata_rating::strDescription>},
    {"ADULT_CONTENT", FindInRating<&_stDMPMetadata_rating::strAdultContent>},
};

/// The value of the first content that has one; null, with a log line, if there is none.
template <class Value, size_t N>
const Value* FindValue(const Field<Value> (&fields)[N], const std::string& strField,
                       const std::vector<_stDMPMETADATA>& contents) {
    for (const Field<Value>& field : fields) {
        if (strField != field.szName) {
            continue;
        }
        for (const _stDMPMETADATA& content : contents) {
            if (const Value* const pFound = field.pFind(content)) {
                return pFound;
            }
        }
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: Do not find data strField = [%s]", strField.c_str());
        return nullptr;
    }
    QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: wrong strField = [%s]", strField.c_str());
    return nullptr;
}

/// An index below 0 is out of range too.
bool IsInRange(int nIndex, size_t nSize) {
    return static_cast<size_t>(nIndex) < nSize;
}

}  // namespace

bool CQRADmpData::FindPathExist(std::string strFilePath) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const bool bFind = m_MetaDataMap.count(strFilePath) != 0;
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: bFind = [%d]", bFind);
    return bFind;
}

void CQRADmpData::InsertData(std::string strFilePath, std::vector<_stDMPMETADATA>& contents) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_MetaDataMap.emplace(strFilePath, contents);
}

void CQRADmpData::InsertData(std::string strFilePath, _stDMPMETADATA& content) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_MetaDataMap[strFilePath].push_back(content);
}

void CQRADmpData::RemoveData(std::string strFilePath) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (m_MetaDataMap.erase(strFilePath) == 0) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: Can not find path !");
    }
}

bool CQRADmpData::m_FindData(const std::string& strFilePath) {
    if (m_MetaDataMap.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: m_MetaDataMap is empty !");
        return false;
    }
    if (m_MetaDataMap.count(strFilePath) == 0) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: Can not find path, New File path !");
        return false;
    }
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: Exists File path [%s]!", strFilePath.c_str());
    return true;
}

/// The contents that values are read from; null, with a log line, if there are none.
const CQRADmpData::Contents* CQRADmpData::m_GetContents(const std::string& strFilePath) {
    if (!m_FindData(strFilePath)) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: wrong file path = [%s]", strFilePath.c_str());
        return nullptr;
    }
    const Contents& contents = m_MetaDataMap[strFilePath];
    if (contents.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: file %s has no data", strFilePath.c_str());
        return nullptr;
    }
    return &contents;
}

bool CQRADmpData::GetValue(std::string strFilePath, std::string strField, int* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (pValue == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "NULL == pValue");
        return false;
    }
    const Contents* const pContents = m_GetContents(strFilePath);
    const int* const pFound = pContents != nullptr ? FindValue(NUMBER_FIELDS, strField, *pContents) : nullptr;
    if (pFound == nullptr) {
        return false;
    }
    *pValue = *pFound;
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: Get int type data: strField = [%s], iValue = [%d]", strField.c_str(),
                  *pValue);
    return true;
}

bool CQRADmpData::GetValue(std::string strFilePath, std::string strField, char** ppValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (ppValue == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "NULL == pValue");
        return false;
    }
    const Contents* const pContents = m_GetContents(strFilePath);
    if (pContents == nullptr) {
        return false;
    }
    const std::string* const pFound =
        strField == "FILE_PATH" ? &strFilePath : FindValue(TEXT_FIELDS, strField, *pContents);
    if (pFound == nullptr) {
        return false;
    }
    CQRAUtil::AssignValueByCStyle(ppValue, pFound->c_str());
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: Get int type data: strField = [%s], strValue = [%s]",
                  strField.c_str(), pFound->c_str());
    return true;
}

/// The contents that pictures are counted in. A path that is not known comes into being by the asking.
const CQRADmpData::Contents* CQRADmpData::m_GetIndexedContents(const std::string& strFilePath) {
    if (m_MetaDataMap.empty() || m_MetaDataMap[strFilePath].empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: m_MetaDataMap.empty() || m_MetaDataMap[%s].empty()",
                        strFilePath.c_str());
        return nullptr;
    }
    return &m_MetaDataMap[strFilePath];
}

bool CQRADmpData::GetThumbCount(std::string strFilePath, int& iCount) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    iCount = 0;
    const Contents* const pContents = m_GetIndexedContents(strFilePath);
    if (pContents == nullptr) {
        return false;
    }
    iCount = static_cast<int>(pContents->size());
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: Content Size = [%d]", iCount);
    return true;
}

bool CQRADmpData::GetThumbDataCount(std::string strFilePath, int iContentIndex, int& iCount) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    iCount = 0;
    const Contents* const pContents = m_GetIndexedContents(strFilePath);
    if (pContents == nullptr) {
        return false;
    }
    if (!IsInRange(iContentIndex, pContents->size())) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: iContentsIndex is Out of Range!! iCountSize = [%d]",
                        static_cast<int>(pContents->size()));
        return false;
    }
    iCount = static_cast<int>((*pContents)[iContentIndex].images.size());
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpData: iThumbSize = [%d]", iCount);
    return iCount != 0;
}

bool CQRADmpData::GetThumbnailData(std::string strFilePath, int iContentIndex, int iImageIndex,
                                   std::string& strImgPath, std::string& strTrackReference) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    strImgPath.clear();
    strTrackReference.clear();
    const Contents* const pContents = m_FindData(strFilePath) ? m_GetIndexedContents(strFilePath) : nullptr;
    if (pContents == nullptr) {
        return false;
    }
    if (!IsInRange(iContentIndex, pContents->size())) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: iContentsIndex is Out of Range!! iCountSize = [%d]",
                        static_cast<int>(pContents->size()));
        return false;
    }
    const std::vector<_stDMPMetadata_image>& images = (*pContents)[iContentIndex].images;
    if (!IsInRange(iImageIndex, images.size())) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpData: iContentsIndex is Out of Range!! iThumbSize = [%d]",
                        static_cast<int>(images.size()));
        return false;
    }
    strImgPath = images[iImageIndex].strLocation;
    strTrackReference = images[iImageIndex].strTrackReference;
    QRA_LOG_TRACE(QRA_TAG_DMP, "strImgPath = [%s], strTrackReference = [%s]", strImgPath.c_str(),
                  strTrackReference.c_str());
    return true;
}
