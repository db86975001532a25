#include "libqra-agent/source/ptp/qra_ptp_source.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/local-source/qra_msc_names.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"

template <class Value>
struct _stPTPField {
    std::string_view name;
    Value _stPtpContentItem::*value;
};

namespace {

constexpr char kFolderView[] = "CATEGORY-FOLDER-TITLE";
constexpr const char* CONTENT_TYPES[] = {"CONTENT-FOLDER", "CONTENT-IMAGE", "CONTENT-VIDEO"};

constexpr _stPTPField<std::string> kTextFields[] = {
    {"DISPLAY_NAME", &_stPtpContentItem::strDisplayName},
    {"TITLE", &_stPtpContentItem::strTitle},
    {"THUMBNAIL_PATH", &_stPtpContentItem::strThumbnailPath},
    {"PLAY_PATH", &_stPtpContentItem::strPlayPath},
    {"FILE_PATH", &_stPtpContentItem::strFilePath},
    {"ID_QRA", &_stPtpContentItem::strId},
    {"FORMAT", &_stPtpContentItem::strFormat},
};

constexpr _stPTPField<int> kNumberFields[] = {
    {"WIDTH", &_stPtpContentItem::nWidth},
    {"HEIGHT", &_stPtpContentItem::nHeight},
    {"MODIFIED_TIME", &_stPtpContentItem::nModifiedTime},
    {"STITCH_TYPE", &_stPtpContentItem::nStitchType},
};

constexpr _stPTPField<unsigned long long> kSizeFields[] = {{"SIZE", &_stPtpContentItem::uSize}};
constexpr _stPTPField<bool> kFlagFields[] = {{"IS_360", &_stPtpContentItem::bIs360}};

bool UnknownField(const std::string& strField) {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Unkown field[%s].", strField.c_str());
    return false;
}

bool IsNull(const void* pOut, const char* szMessage) {
    if (pOut == nullptr)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "%s", szMessage);
    return pOut == nullptr;
}

}  // namespace

CQRAPTPSource::~CQRAPTPSource() {
    QRA_ASSERT(m_bIsOpen == false);
    QRA_ASSERT(m_bIsExsit == false);
}

bool CQRAPTPSource::Open() {
    m_bIsOpen = true;
    m_bIsExsit = true;
    m_Sem.Reset();  // a Close() leaves a wake-up behind, which is no request
    if (!CQRAThread::Create("PTP-SOURCE: PTPSourceThread")) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "PTP-SOURCE: Create thread fail.");
        return false;
    }
    return true;
}

bool CQRAPTPSource::Close() {
    m_bIsOpen = false;
    m_bIsExsit = false;
    {
        const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
        SetCallback(static_cast<qra_source_complete_cb>(nullptr), nullptr);
    }
    m_Sem.Give();
    CQRAThread::Destroy();
    return true;
}

bool CQRAPTPSource::SetCallback(qra_source_complete_cb cb, void* pUserData) {
    const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
    m_pUserData = pUserData;
    m_cbComplete = cb;
    return true;
}

bool CQRAPTPSource::SetCallback(qra_source_transfer_cb, void*) {
    return true;
}

bool CQRAPTPSource::UNSetCallback() {
    m_cbComplete = nullptr;
    m_pUserData = nullptr;
    return true;
}

void CQRAPTPSource::m_ClearVector() {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    m_vItems.clear();
}

bool CQRAPTPSource::Execute(qra_general_s* pParam) {
    QRA_ASSERT(pParam != NULL);
    m_ClearVector();
    if (!m_TakeParam(*pParam))
        return false;
    m_ExtensionList.ClearExtension();
    if (!m_ExtensionList.GetExtensionFromApp(CQRAUtil::CharToString(pParam->szExtension)))
        m_ExtensionList.SetDefaultExtension();
    _stPTPParam param;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
        param = m_Param;
    }
    if (!CQRAPTPManage::GetInstance()->InitParam(&param)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "PTP-SOURCE: PTPManage Init param failed.");
        return false;
    }
    m_Sem.Give();
    return true;
}

bool CQRAPTPSource::m_TakeParam(const qra_general_s& param) {
    const std::string strCategory = CQRAUtil::CharToString(param.szSortCategory);
    if (strCategory.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "PTP-SOURCE: Invalid SortCategory");
        return false;
    }
    const std::string strFolderId = CQRAUtil::CharToString(param.szFolderId);
    if (strCategory == kFolderView && strFolderId.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "PTP-SOURCE: Invalid FolderId");
        return false;
    }
    const std::string strContentType = CQRAUtil::CharToString(param.szContentType);
    if (!IsOneOf(strContentType, CONTENT_TYPES)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "PTP-SOURCE: Invalid ContentType");
        return false;
    }
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    if (strCategory == kFolderView)
        m_Param.nFolderId = CQRAUtil::str2int(strFolderId);
    m_Param.strSortCategory = strCategory;
    m_Param.strContentType = strContentType;
    m_Param.strModelName = CQRAUtil::CharToString(param.szModeName);
    m_Param.strExtension = CQRAUtil::CharToString(param.szExtension);
    m_Param.nBusValue = param.nBusValue;
    m_Param.nDeviceValue = param.nDeviceValue;
    return true;
}

void CQRAPTPSource::t_Process() {
    while (m_bIsExsit) {
        m_Sem.Take();
        if (!m_bIsExsit)
            break;
        m_Process();
    }
}

void CQRAPTPSource::m_Process() {
    m_ClearVector();  // what a request before left after this one was made
    _stPTPParam param;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
        param = m_Param;
    }
    const bool bDone = param.strSortCategory == kFolderView ? m_RequestOnFolderViewForPTP(param)
                                                            : m_RequestOnDCMViewForPTP(param);
    m_NotifyComplete(bDone ? QRA_EVENT_LIST_SUCCESS : QRA_EVENT_LIST_FAILED);
}

bool CQRAPTPSource::m_RequestOnFolderViewForPTP(const _stPTPParam& param) {
    _stPTPCamera camera;
    CQRAPTPManage* const pManage = CQRAPTPManage::GetInstance();
    if (!pManage->FindCamera(param.nBusValue, param.nDeviceValue, false, &camera)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "can not find camera");
        return false;
    }
    return pManage->RequestListofFolder(param, camera, &MediaCallBackForPTP, this);
}

bool CQRAPTPSource::m_RequestOnDCMViewForPTP(const _stPTPParam& param) {
    _stPTPCamera camera;
    CQRAPTPManage* const pManage = CQRAPTPManage::GetInstance();
    if (!pManage->FindCamera(param.nBusValue, param.nDeviceValue, false, &camera)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "can not find camera");
        return false;
    }
    return pManage->RequestListofDCM(camera, &MediaCallBackForPTP, this);
}

bool CQRAPTPSource::MediaCallBackForPTP(_stPtpContentItem& item, void* pUserData) {
    auto* const pThis = static_cast<CQRAPTPSource*>(pUserData);
    if (pThis == nullptr)
        return false;
    if (item.strFormat == kPTPFolderFormat)
        ++pThis->m_nFolderCount;
    const CQRALockGuard<CQRAGMutex> lock(pThis->m_WorkMutex);
    pThis->m_vItems.push_back(std::move(item));
    return true;
}

void CQRAPTPSource::m_NotifyComplete(qra_event_e eEvent) {
    const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
    qra_source_complete_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
        pUserData = m_pUserData;
        cb = m_cbComplete;
    }
    if (cb != nullptr)
        cb(eEvent, pUserData);
}

bool CQRAPTPSource::MoveToIndex(int nIndex) {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    if (nIndex < 0 || static_cast<size_t>(nIndex) >= m_vItems.size()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "nIndex is not in [0,len], nIndex = %d", nIndex);
        return false;
    }
    m_nIndex = nIndex;
    return true;
}

bool CQRAPTPSource::MoveToNext() {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    if (static_cast<size_t>(m_nIndex) + 1 >= m_vItems.size()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_nIndex > vector.size()");
        return false;
    }
    ++m_nIndex;
    return true;
}

bool CQRAPTPSource::MoveToPrevious() {
    if (m_nIndex - 1 < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_nIndex < 0");
        return false;
    }
    --m_nIndex;
    return true;
}

bool CQRAPTPSource::GetItemCount(int* pnCount) {
    if (IsNull(pnCount, "nCount is null"))
        return false;
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    *pnCount = static_cast<int>(m_vItems.size());
    return true;
}

bool CQRAPTPSource::GetItemCountByType(qra_media_type_e eType, int* pnCount) {
    if (!GetItemCount(pnCount))
        return false;
    if (eType != QRA_MEDIA_TYPE_IMAGE)
        *pnCount = 0;
    return true;
}

bool CQRAPTPSource::m_IsReadable(const void* pValue) const {
    if (IsNull(pValue, "pValue is null"))
        return false;
    if (!m_bIsOpen) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CQRAPTPSource is not Open");
        return false;
    }
    if (static_cast<size_t>(m_nIndex) >= m_vItems.size()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "nIndex is not in [0,len], nIndex = %d", m_nIndex);
        return false;
    }
    return true;
}

template <class Value, size_t nCount>
bool CQRAPTPSource::m_GetField(const _stPTPField<Value> (&fields)[nCount], const std::string& strField,
                               Value* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    if (!m_IsReadable(pValue))
        return false;
    const auto it = std::find_if(std::begin(fields), std::end(fields),
                                 [&strField](const auto& field) { return field.name == strField; });
    if (it == std::end(fields))
        return UnknownField(strField);
    *pValue = m_vItems[m_nIndex].*(it->value);
    return true;
}

bool CQRAPTPSource::GetValue(std::string strField, char** ppValue) {
    std::string strText;
    if (!m_GetField(kTextFields, strField, ppValue != nullptr ? &strText : nullptr))
        return false;
    CQRAUtil::AssignValueByCStyle(ppValue, strText.c_str());
    return true;
}

bool CQRAPTPSource::GetValue(std::string strField, int* pValue) {
    return strField == "MEDIA_TYPE" ? m_GetMediaType(pValue) : m_GetField(kNumberFields, strField, pValue);
}

bool CQRAPTPSource::GetValue(std::string strField, unsigned long long* pValue) {
    return m_GetField(kSizeFields, strField, pValue);
}

bool CQRAPTPSource::GetValue(std::string strField, bool* pValue) {
    return m_GetField(kFlagFields, strField, pValue);
}

bool CQRAPTPSource::GetValue(std::string strField, long* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    return m_IsReadable(pValue) && UnknownField(strField);
}

bool CQRAPTPSource::GetValue(std::string strField, double* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    return m_IsReadable(pValue) && UnknownField(strField);
}

bool CQRAPTPSource::m_GetMediaType(int* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    if (!m_IsReadable(pValue))
        return false;
    const _stPtpContentItem& item = m_vItems[m_nIndex];
    qra_media_type_e eType = QRA_MEDIA_TYPE_FOLDER;
    if (item.strFormat != kPTPFolderFormat && !m_GetFileType(item.strFormat, item.bIs360, eType)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Unkown format[%s].", item.strFormat.c_str());
        return false;
    }
    *pValue = eType;
    return true;
}

bool CQRAPTPSource::m_GetFileType(const std::string& strFormat, bool bIs360, qra_media_type_e& eType) {
    if (m_CompareExtension("CONTENT-IMAGE", strFormat))
        eType = bIs360 ? QRA_MEDIA_TYPE_IMAGE_EXT : QRA_MEDIA_TYPE_IMAGE;
    else if (m_CompareExtension("CONTENT-VIDEO", strFormat))
        eType = bIs360 ? QRA_MEDIA_TYPE_VIDEO_EXT : QRA_MEDIA_TYPE_VIDEO;
    else
        return false;
    return true;
}

bool CQRAPTPSource::m_CompareExtension(const char* szContentType, const std::string& strExtension) {
    std::vector<std::string> vExtension;
    m_ExtensionList.GetExtensionByType(szContentType, vExtension);
    return CQRAUtil::CompareMediaExtension(vExtension, strExtension);
}

bool CQRAPTPSource::SetValue(const char*, long) {
    return false;
}

bool CQRAPTPSource::SetValue(const char*, int) {
    return false;
}

bool CQRAPTPSource::SetValue(const char*, const char*) {
    return false;
}

bool CQRAPTPSource::GetDBIndex(char* szId, int* pnIndex) {
    if (IsNull(szId, "pValue is null") || IsNull(pnIndex, "pValue is null"))
        return false;
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    const auto it = std::find_if(m_vItems.begin(), m_vItems.end(),
                                 [szId](const _stPtpContentItem& item) { return item.strId == szId; });
    if (it == m_vItems.end()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Can't find mediaId[%s].", szId);
        return false;
    }
    *pnIndex = static_cast<int>(it - m_vItems.begin());
    return true;
}

CQRAGroupInfo* CQRAPTPSource::GetGroupInfo() {
    int nCount = 0;
    GetItemCount(&nCount);
    auto groups = std::make_unique<CQRAGroupInfo>();
    groups->AddGroup("PTP", nCount);
    return groups.release();
}
