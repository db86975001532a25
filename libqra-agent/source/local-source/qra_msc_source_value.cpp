// The cursor of the source, the values under it, and the look-ups in the list.
#include <cstring>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"

namespace {

constexpr const char* SCSA_NUMBERS[] = {"INDEX", "WIDTH", "HEIGHT"};
constexpr const char* SCSA_TEXTS[] = {
    "CONTENT_ID",   "PROFILE",         "RUNLENGTH",    "PUBLISHER",       "TITLE_19",
    "TITLE_60",     "TITLE_UNLIMITED", "TITLE_SORT",   "SUMMARY_190",     "SUMMARY_400",
    "SUMMARY_4000", "DESC_LANGUAGE",   "ENCODING",     "TRACK_REFERENCE", "STREAM_NAME",
    "COUNTRY",      "SYSTEM",          "RATING_VALUE", "RATING_DESC",     "ADULT_CONTENT",
};

/// Reads a field of a package, if it is one of those that packages have with this type.
template <size_t N, class Value>
bool GetPackageValue(CQRADmpSource* pDmpSource, const char* const (&fields)[N], const std::string& strField,
                     Value* pValue) {
    for (const char* const pField : fields) {
        if (strField != pField) {
            continue;
        }
        if (pDmpSource != nullptr && pDmpSource->GetValue(strField, pValue)) {
            return true;
        }
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[%s].",
                        strField.c_str());
        return false;
    }
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: Invalid field[%s].", strField.c_str());
    return false;
}

}  // namespace

bool CQRAMSCSource::MoveToNext() {
    return m_Cursor.next();
}

bool CQRAMSCSource::MoveToPrevious() {
    return m_Cursor.previous();
}

bool CQRAMSCSource::MoveToIndex(int nIndex) {
    const bool bFound = m_Cursor.toIndex(nIndex);
    // A miss on a package asks once more for the package that the cursor stays on.
    return m_Cursor.type() == MC_TYPE_SCSA ? m_MoveToDmpSource() : bFound;
}

bool CQRAMSCSource::m_MoveToDmpSource() {
    char* szPath = nullptr;
    m_GetFieldValue("FILE_PATH", &szPath);
    QRA_ASSERT(szPath != NULL);
    const CMallocText path(szPath);
    if (!m_pDmpSource || !m_pDmpSource->MoveToIndex(szPath)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_pDmpSource->MoveToIndex failed.");
        return false;
    }
    return true;
}

bool CQRAMSCSource::GetItemCount(int* pnItemCount) {
    QRA_ASSERT(pnItemCount != NULL);
    *pnItemCount = static_cast<int>(m_ContentList.size());
    return true;
}

bool CQRAMSCSource::GetItemCountByType(qra_media_type_e eType, int* pnItemCount) {
    QRA_ASSERT(pnItemCount != NULL);
    const int* const pCounter = m_GetCounter(eType);
    *pnItemCount = pCounter != nullptr ? *pCounter : 0;
    return true;
}

bool CQRAMSCSource::GetItemCountOfGroup(char* szGroupName, int* pnItemCount) {
    QRA_ASSERT(szGroupName != NULL);
    QRA_ASSERT(pnItemCount != NULL);
    const auto it = m_GroupItemCounts.find(szGroupName);
    if (it == m_GroupItemCounts.end()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: Invalid szGroupName[%s].", szGroupName);
        return false;
    }
    *pnItemCount = it->second;
    return true;
}

bool CQRAMSCSource::GetDBIndex(char* szMediaId, int* pnIndex) {
    QRA_ASSERT(szMediaId != NULL);
    QRA_ASSERT(pnIndex != NULL);
    const int nIndex = m_IdIndex.Find(szMediaId, [&](int nOther) { return m_HasId(nOther, szMediaId); });
    if (nIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: Invalid media[%s].", szMediaId);
        return false;
    }
    *pnIndex = nIndex;
    return true;
}

bool CQRAMSCSource::m_HasId(int nIndex, const std::string& strId) {
    char* pId = nullptr;
    if (!m_pMCFWrapper->GetFieldValue(m_ContentList[nIndex], "ID_QRA", &pId)) {
        return false;
    }
    const CMallocText id(pId);
    return strId == id.get();
}

CQRAGroupInfo* CQRAMSCSource::GetGroupInfo() {
    return new CQRAGroupInfo(m_GroupInfo);
}

bool CQRAMSCSource::IndexSearch(char*, int*, int*) {
    return false;
}

bool CQRAMSCSource::GetRatingInfo(char** ppRating) {
    if (ppRating == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid pointer !!");
    }
    return false;
}

bool CQRAMSCSource::m_GetFieldValue(const std::string& strField, const mcf_out& out) {
    return m_pMCFWrapper && m_pMCFWrapper->GetFieldValue(m_Cursor.get(), strField, out);
}

bool CQRAMSCSource::m_SetFieldValue(const std::string& strField, const mcf_in& in) {
    return m_pMCFWrapper && m_pMCFWrapper->SetFieldValue(m_Cursor.get(), strField, in);
}

bool CQRAMSCSource::m_GetText(const std::string& strField, std::string& strText) {
    char* pText = nullptr;
    if (!m_GetFieldValue(strField, &pText)) {
        return false;
    }
    const CMallocText text(pText);
    strText = CQRAUtil::CharToString(pText);
    return true;
}

bool CQRAMSCSource::GetValue(std::string strField, double* pValue) {
    QRA_ASSERT(pValue != NULL);
    return m_GetFieldValue(strField, pValue);
}

bool CQRAMSCSource::GetValue(std::string strField, bool* pValue) {
    QRA_ASSERT(pValue != NULL);
    return m_GetFieldValue(strField, pValue);
}

bool CQRAMSCSource::GetValue(std::string strField, long* pValue) {
    QRA_ASSERT(pValue != NULL);
    return m_GetFieldValue(strField, pValue);
}

bool CQRAMSCSource::GetValue(std::string strField, unsigned long long* pValue) {
    QRA_ASSERT(pValue != NULL);
    return m_GetFieldValue(strField, pValue);
}

bool CQRAMSCSource::GetValue(std::string strField, int* pValue) {
    QRA_ASSERT(pValue != NULL);
    const EMCType eType = m_Cursor.type();
    if (strField == "MEDIA_TYPE" && eType != MC_TYPE_FOLDER && eType != MC_TYPE_GROUP) {
        return m_GetMediaType(pValue);
    }
    return m_GetFieldValue(strField, pValue) ||
           (eType == MC_TYPE_SCSA && m_GetSCSAMetaData(strField, pValue));
}

bool CQRAMSCSource::m_GetMediaType(int* pValue) {
    std::string strPath;
    qra_media_type_e eType = QRA_MEDIA_TYPE_FOLDER;
    if (!m_GetText("FILE_PATH", strPath) ||
        !m_GetFileType(CQRAUtil::GetFileExtension(strPath.c_str()), m_Cursor.get().Is360(), eType)) {
        return false;
    }
    *pValue = eType;
    return true;
}

bool CQRAMSCSource::GetValue(std::string strField, char** ppValue) {
    QRA_ASSERT(ppValue != NULL);
    if (strField == "VIDEO_CODEC") {
        return m_GetCodec(&CContentInfoProvider::GetVideoCodec, ppValue);
    }
    if (strField == "AUDIO_CODEC") {
        return m_GetCodec(&CContentInfoProvider::GetAudioCodec, ppValue);
    }
    if (strField == "FORMAT") {
        return m_GetFormat(ppValue);
    }
    if (strField == "THUMBNAIL_PATH") {
        return m_GetThumbnailPath(ppValue);
    }
    return m_GetFieldValue(strField, ppValue) ||
           (m_Cursor.type() == MC_TYPE_SCSA && m_GetSCSAMetaData(strField, ppValue));
}

bool CQRAMSCSource::m_GetCodec(bool (CContentInfoProvider::*pGet)(const char*, char**), char** ppValue) {
    std::string strPath;
    return m_pContentInfoProvider && m_GetText("FILE_PATH", strPath) &&
           (m_pContentInfoProvider.get()->*pGet)(strPath.c_str(), ppValue);
}

bool CQRAMSCSource::m_GetFormat(char** ppValue) {
    std::string strPath;
    if (!m_GetText("FILE_PATH", strPath)) {
        return false;
    }
    CQRAUtil::AssignValueByCStyle(ppValue, CQRAUtil::GetFileExtension(strPath.c_str()).c_str());
    return true;
}

bool CQRAMSCSource::m_GetThumbnailPath(char** ppValue) {
    int nType = 0;
    m_GetFieldValue("MEDIA_TYPE", &nType);
    if (nType != QRA_MEDIA_TYPE_VIDEO && nType != QRA_MEDIA_TYPE_VIDEO_EXT) {
        return m_GetFieldValue("THUMBNAIL_PATH", ppValue);
    }
    std::string strId;
    std::string strPath;
    if (!m_GetText("ID_QRA", strId) || !m_GetText("FILE_PATH", strPath)) {
        return false;
    }
    CQRAUtil::AssignValueByCStyle(ppValue, (strId + ";" + strPath).c_str());
    return true;
}

bool CQRAMSCSource::m_GetSCSAMetaData(const std::string& strField, int* pValue) {
    return GetPackageValue(m_pDmpSource.get(), SCSA_NUMBERS, strField, pValue);
}

bool CQRAMSCSource::m_GetSCSAMetaData(const std::string& strField, char** ppValue) {
    return GetPackageValue(m_pDmpSource.get(), SCSA_TEXTS, strField, ppValue);
}

bool CQRAMSCSource::SetValue(const char* szField, long nTime) {
    if (nTime <= 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: nTime <= 0.");
        return false;
    }
    QRA_ASSERT(szField != NULL);
    return m_SetFieldValue(szField, nTime);
}

bool CQRAMSCSource::SetValue(const char* szField, int nValue) {
    QRA_ASSERT(szField != NULL);
    return m_SetFieldValue(szField, nValue);
}

bool CQRAMSCSource::SetValue(const char* szField, const char* szValue) {
    QRA_ASSERT(szField != NULL);
    QRA_ASSERT(szValue != NULL);
    return m_SetFieldValue(szField, szValue);
}
