#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"

#include <cstring>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_folder_cache.h"
#include "libqra-agent/source/local-source/qra_mcf_group.h"
#include "libqra-agent/source/local-source/qra_mcf_result.h"
#include "libqra-agent/source/local-source/qra_mcf_row.h"
#include "libqra-agent/source/local-source/qra_mcf_value.h"
#include "libqra-agent/source/local-source/qra_msc_names.h"
#include "libqra-agent/source/local-source/qra_obj_manager.h"

namespace {

constexpr const char* FOLDER_CATEGORIES[] = {
    "CATEGORY-FOLDER",
    "CATEGORY-UHD-FOLDER",
    "CATEGORY-UHD-FOLDER-WITHUPFOLDER",
    "CATEGORY-FOLDER-TITLE",
    "CATEGORY-FOLDER-DATE",
    "CATEGORY-FOLDER-CHANNEL_NAME",
    "CATEGORY-FOLDER-CHANNEL_NUM",
};

constexpr const char* PVR_FOLDER_CATEGORIES[] = {
    "CATEGORY-FOLDER-CHANNEL_NAME",
    "CATEGORY-FOLDER-CHANNEL_NUM",
    "CATEGORY-FOLDER-TITLE",
    "CATEGORY-FOLDER-DATE",
};

}  // namespace

CQRAMCFWrapper::~CQRAMCFWrapper() {
    CQRAObjManager::GetInstance()->RemoveObj(m_GetAddress());
}

bool CQRAMCFWrapper::ConnectMCF() {
    return Succeeded(media_content_connect(), "media_content_connect");
}

bool CQRAMCFWrapper::DisconnectMCF() {
    return Succeeded(media_content_disconnect(), "media_content_disconnect");
}

bool CQRAMCFWrapper::InitParam(const _SMCFParam* pParam) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: pParam == NULL.");
        return false;
    }
    m_strRoot = pParam->strRootPath;
    m_strKeyword = pParam->strKeyword;
    m_strContentType = pParam->strContentType;
    m_strCategory = pParam->strCategory;
    bIsUHDDevice = pParam->bIsUHDDevice;
    m_strFolderId.clear();
    // A search of the request before must not decide what this one selects.
    m_eSearchType = SEARCH_NONE;
    m_ExtensionList.ClearExtension();
    if (!m_ExtensionList.GetExtensionFromApp(pParam->strExtension)) {
        m_ExtensionList.SetDefaultExtension();
    }
    if (!m_pFilterFactory) {
        m_pFilterFactory = std::make_unique<CQRAFilterFactory>();
    }
    return true;
}

bool CQRAMCFWrapper::RequestMCFMedia(mcf_scan_cb cbScan, mcf_media_cb cbMedia, void* pUserData) {
    CQRAObjManager::GetInstance()->AddObj(m_GetAddress());
    m_cbScan = cbScan;
    m_pScanUserData = pUserData;
    const SMediaUserData data{cbMedia, pUserData};
    if (m_strCategory == "CATEGORY-KEYWORD-SEARCH") {
        return m_RequestListOfKeyword(data);
    }
    if (IsOneOf(m_strCategory, FOLDER_CATEGORIES)) {
        return m_RequestListOfFolder(data);
    }
    if (m_strCategory == "CATEGORY-MSC-PHOTO") {
        return m_RequestListOfMSC(data);
    }
    return m_RequestListOfDCM(data);
}

bool CQRAMCFWrapper::m_CreateAndSetFilter(CFilter& filter, int nFilterType) {
    if (nFilterType == Filter_None) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper:nFilterType == Filter_None.");
        return false;
    }
    if (!m_GetStorageId()) {
        return false;
    }
    const std::unique_ptr<CQRAFilterProductBase> pFilterRequest(
        m_pFilterFactory ? m_pFilterFactory->CreateProduct(nFilterType) : nullptr);
    if (pFilterRequest == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: pFilterRequest == NULL.");
        return false;
    }
    _SFilterParam param;
    param.strContentType = m_strContentType;
    param.strCategory = m_strCategory;
    param.strPath = nFilterType == Filter_FolderID ? CQRAUtil::AddQuoteInPath(m_strRoot) : m_strRoot;
    param.strStorageId = m_strStorageId;
    param.strFolderId = m_strFolderId;
    param.strKeyword = m_strKeyword;
    param.nSearchType = m_eSearchType;
    param.bIsUHDDevice = bIsUHDDevice;
    param.pExtensionList = &m_ExtensionList;
    filter_h hFilter = nullptr;
    if (!pFilterRequest->InitParam(&param) || !pFilterRequest->CreateAndSetFilter(hFilter)) {
        return false;
    }
    filter.reset(hFilter);
    return true;
}

// A step that fails does not keep the next one from running, and the last one decides.
bool CQRAMCFWrapper::m_RequestListOfKeyword(SMediaUserData data) {
    bool bResult = m_RequestListOfSearchAll(SEARCH_MEDIA, Filter_MediaSearch, data);
    if (!bResult) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: search of media fail.");
    }
    bResult = m_RequestListOfSearchAll(SEARCH_PVR, Filter_PVRSearch, data);
    if (!bResult) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: search of recordings fail.");
    }
    if (bIsUHDDevice) {
        bResult = m_RequestListOfSearchAll(SEARCH_UHD, Filter_UHDSearch, data);
    }
    return bResult;
}

bool CQRAMCFWrapper::m_RequestListOfSearchAll(ESearchType eSearchType, int nFilterType, SMediaUserData data) {
    m_eSearchType = eSearchType;
    CFilter filter;
    if (!m_CreateAndSetFilter(filter, nFilterType)) {
        return false;
    }
    int ret = 0;
    switch (m_eSearchType) {
        case SEARCH_MEDIA:
        case SEARCH_PHOTO:
            ret = media_info_foreach_media_from_db(filter.get(), cb_getMediaList, &data);
            break;
        case SEARCH_PVR:
            ret = media_pvr_foreach_media_from_db(filter.get(), cb_getPVRList, &data);
            break;
        case SEARCH_UHD:
            ret = media_uhd_foreach_media_from_db(filter.get(), cb_getUHDList, &data);
            break;
        default:
            break;
    }
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL,
                        "MCF-Wrapper: m_RequestListOfSearchAll fail, m_eSearchType[%d], ret[%d].",
                        m_eSearchType, ret);
    }
    return ret == 0;
}

bool CQRAMCFWrapper::m_RequestListOfMSC(SMediaUserData data) {
    return m_CheckScanStatus(true) && m_RequestListOfSearchAll(SEARCH_PHOTO, Filter_LargePhotoList, data);
}

bool CQRAMCFWrapper::m_RequestListOfDCM(SMediaUserData data) {
    CFilter filter;
    if (IsOneOf(m_strContentType, PVR_CONTENT_TYPES)) {
        return m_CreateAndSetFilter(filter, Filter_PVRDCM) &&
               Succeeded(media_pvr_foreach_media_from_db(filter.get(), cb_getPVRList, &data),
                         "m_RequestListOfDCM of recordings");
    }
    if (m_strContentType == "CONTENT-UHD") {
        return m_CreateAndSetFilter(filter, Filter_UHDDCM) &&
               Succeeded(media_uhd_foreach_media_from_db(filter.get(), cb_getUHDList, &data),
                         "m_RequestListOfDCM of UHD titles");
    }
    return m_CreateAndSetFilter(filter, Filter_MediaDCM) &&
           Succeeded(media_info_foreach_media_from_db(filter.get(), cb_getMediaList, &data),
                     "m_RequestListOfDCM of media");
}

bool CQRAMCFWrapper::m_RequestListOfFolder(SMediaUserData data) {
    m_FindFolderCache();
    if (m_strFolderId.empty()) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "MCF-Wrapper: m_FindFolderCache failed. Get folder id by path");
        if (!m_CheckScanStatus(false) || !m_GetFolderId()) {
            return false;
        }
    }
    if (!m_RequestFolderList(data)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_RequestFolderList fail.");
        return false;
    }
    if (IsOneOf(m_strCategory, UHD_FOLDER_CATEGORIES) && !m_RequestUHDList(data)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_RequestUHDList fail.");
        return false;
    }
    if (m_strContentType == "CONTENT-PVR" && IsOneOf(m_strCategory, PVR_FOLDER_CATEGORIES)) {
        if (!m_RequestPVRList(data)) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_RequestPVRList fail.");
            return false;
        }
    } else if (!m_RequestMediaList(data)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_RequestMediaList fail.");
        return false;
    }
    m_AddFolderCache();
    return true;
}

bool CQRAMCFWrapper::m_RequestFolderList(SMediaUserData data) {
    CFilter filter;
    return m_CreateAndSetFilter(filter, Filter_FolderList) &&
           Succeeded(media_folder_foreach_folder_from_db(filter.get(), cb_getFolderList, &data),
                     "media_folder_foreach_folder_from_db");
}

bool CQRAMCFWrapper::m_RequestUHDList(SMediaUserData data) {
    CFilter filter;
    return m_CreateAndSetFilter(filter, Filter_UHDList) &&
           Succeeded(media_uhd_foreach_media_from_db(filter.get(), cb_getUHDList, &data),
                     "media_uhd_foreach_media_from_db");
}

bool CQRAMCFWrapper::m_RequestPVRList(SMediaUserData data) {
    CFilter filter;
    return m_CreateAndSetFilter(filter, Filter_PVRList) &&
           Succeeded(media_pvr_foreach_media_from_db(filter.get(), cb_getPVRList, &data),
                     "media_pvr_foreach_media_from_db");
}

bool CQRAMCFWrapper::m_RequestMediaList(SMediaUserData data) {
    CFilter filter;
    return m_CreateAndSetFilter(filter, Filter_MediaList) &&
           Succeeded(media_folder_foreach_media_from_db(m_strFolderId.c_str(), filter.get(), cb_getMediaList,
                                                        &data),
                     "media_folder_foreach_media_from_db");
}

bool CQRAMCFWrapper::m_GetFolderId() {
    if (!m_strFolderId.empty()) {
        return true;
    }
    CFilter filter;
    if (!m_CreateAndSetFilter(filter, Filter_FolderID) ||
        !Succeeded(media_folder_foreach_folder_from_db(filter.get(), cb_getFolderId, this),
                   "media_folder_foreach_folder_from_db")) {
        return false;
    }
    if (m_strFolderId.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_strFolderId.empty() == true.");
        return false;
    }
    return true;
}

bool CQRAMCFWrapper::m_FindFolderCache() {
    return CQRAMCFFolderCache::Find(m_strRoot, m_strStorageId, m_strFolderId);
}

bool CQRAMCFWrapper::m_AddFolderCache() {
    return CQRAMCFFolderCache::Add(m_strRoot, m_strStorageId, m_strFolderId);
}

bool CQRAMCFWrapper::RequestMCFGroup(mcf_group_cb cbGroup, void* pUserData) {
    CFilter filter;
    if (!m_CreateAndSetFilter(filter, CQRAMCFGroup::GetFilterType(m_strContentType, m_strCategory))) {
        return false;
    }
    SGroupUserData data{cbGroup, pUserData};
    const int ret = media_group_foreach_group_and_count_from_db(
        filter.get(), CQRAMCFGroup::GetField(m_strContentType, m_strCategory), cb_getGroupInfo, &data);
    if (ret != 0) {
        QRA_LOG_WARNING(
            QRA_TAG_LOCAL,
            "MCF-Wrapper: media_group_foreach_group_and_count_from_db fail, m_strCategory[%s], ret[%d].",
            m_strCategory.c_str(), ret);
    }
    return ret == 0;
}

// Every row callback answers true, since false would end the list.

bool CQRAMCFWrapper::cb_getFolderId(media_folder_h hFolder, void* pUserData) {
    char* pId = nullptr;
    if (Succeeded(media_folder_get_folder_id(hFolder, &pId), "media_folder_get_folder_id")) {
        const CMallocText id(pId);
        static_cast<CQRAMCFWrapper*>(pUserData)->m_strFolderId = CQRAUtil::CharToString(pId);
    }
    return true;
}

bool CQRAMCFWrapper::cb_getFolderList(media_folder_h hFolder, void* pUserData) {
    const auto* const pData = static_cast<const SMediaUserData*>(pUserData);
    std::string strId;
    CMedia media;
    if (CQRAMCFRow::FromFolder(hFolder, strId, media)) {
        pData->cb(strId, media, pData->pUserData);
    }
    return true;
}

bool CQRAMCFWrapper::cb_getMediaList(media_info_h hMedia, void* pUserData) {
    const auto* const pData = static_cast<const SMediaUserData*>(pUserData);
    std::string strId;
    CMedia media;
    if (CQRAMCFRow::FromMedia(hMedia, strId, media)) {
        pData->cb(strId, media, pData->pUserData);
    }
    return true;
}

bool CQRAMCFWrapper::cb_getPVRList(media_pvr_h hPVR, void* pUserData) {
    const auto* const pData = static_cast<const SMediaUserData*>(pUserData);
    std::string strId;
    CMedia media;
    if (CQRAMCFRow::FromPVR(hPVR, strId, media)) {
        pData->cb(strId, media, pData->pUserData);
    }
    return true;
}

bool CQRAMCFWrapper::cb_getUHDList(media_uhd_h hUHD, void* pUserData) {
    const auto* const pData = static_cast<const SMediaUserData*>(pUserData);
    std::string strId;
    CMedia media;
    if (CQRAMCFRow::FromUHD(hUHD, strId, media)) {
        pData->cb(strId, media, pData->pUserData);
    }
    return true;
}

bool CQRAMCFWrapper::cb_getGroupInfo(const char* pName, int nCount, void* pUserData) {
    const auto* const pData = static_cast<const SGroupUserData*>(pUserData);
    pData->cb(pName != nullptr ? pName : "", nCount, pData->pUserData);
    return true;
}

bool CQRAMCFWrapper::GetStorageId(char** ppStorageId) {
    if (ppStorageId == nullptr || !m_GetStorageId()) {
        return false;
    }
    *ppStorageId = strdup(m_strStorageId.c_str());
    return *ppStorageId != nullptr;
}

bool CQRAMCFWrapper::InsertToDB(const char* pPath) {
    media_info_h hMedia = nullptr;
    if (!Succeeded(media_info_insert_to_db(pPath, &hMedia), "media_info_insert_to_db")) {
        return false;
    }
    return Succeeded(media_info_destroy(hMedia), "media_info_destroy");
}

bool CQRAMCFWrapper::RemoveFromDB(const char* pMediaId) {
    return Succeeded(media_info_delete_from_db(pMediaId), "media_info_delete_from_db");
}

bool CQRAMCFWrapper::GetFieldValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    return CQRAMCFValue::GetFieldValue(media, strField, out);
}

bool CQRAMCFWrapper::SetFieldValue(const CMedia& media, const std::string& strField, const mcf_in& in) {
    return CQRAMCFValue::SetFieldValue(media, strField, in);
}

bool CQRAMCFWrapper::GetItemValueMcf(const char* pId, const char* pField, int* pValue) {
    if (pId == nullptr || pField == nullptr || pValue == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: SetItemValueMcf param error ");
        return false;
    }
    media_info_h hMedia = nullptr;
    if (!Succeeded(media_info_get_media_from_db(pId, &hMedia), "media_info_get_media_from_db")) {
        return false;
    }
    return GetFieldValue(CMedia(MC_TYPE_MEDIA, "", false, hMedia), pField, pValue);
}

bool CQRAMCFWrapper::SetItemValueMcf(const char* pId, const char* pField, int nValue) {
    if (pId == nullptr || pField == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: SetItemValueMcf param error ");
        return false;
    }
    media_info_h hMedia = nullptr;
    if (!Succeeded(media_info_get_media_from_db(pId, &hMedia), "media_info_get_media_from_db")) {
        return false;
    }
    return SetFieldValue(CMedia(MC_TYPE_MEDIA, "", false, hMedia), pField, nValue);
}
