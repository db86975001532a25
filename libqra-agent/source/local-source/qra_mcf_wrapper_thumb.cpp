// What the thumbnail of a folder shows.
#include "common/util/json_value.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_result.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"

namespace {

constexpr const char* ERROR_CODE = "qra_folder_thumbnail_error_code";
constexpr const char* TYPE = "qra_folder_thumbnail_type";
constexpr const char* ITEMS = "qra_folder_thumbnail_items";
constexpr const char* ITEM_TYPES = "qra_folder_thumbnail_itemstype";

constexpr int TYPE_MEDIA = 0;
constexpr int TYPE_FOLDERS = 1;
constexpr int TYPE_EMPTY = 2;

}  // namespace

bool CQRAMCFWrapper::GetFolderThumbPath(int nRequestNum, char** ppThumbPath) {
    if (!m_CheckFolderScanStatus()) {
        return false;
    }
    CQRAUtil::AssignValueByCStyle(ppThumbPath, m_BuildFolderThumb(nRequestNum).c_str());
    return true;
}

bool CQRAMCFWrapper::GetScannedFolderThumbPath(int nRequestNum, std::string& strThumbPath) {
    if (!m_GetStorageId() || !m_GetFolderId()) {
        return false;
    }
    strThumbPath = m_BuildFolderThumb(nRequestNum);
    return true;
}

bool CQRAMCFWrapper::m_CheckFolderScanStatus() {
    if (!m_GetStorageId()) {
        return false;
    }
    int nStatus = MEDIA_SCAN_STATUS_NONE;
    if (!Succeeded(media_folder_get_scan_status(m_strStorageId.c_str(), m_strRoot.c_str(), &nStatus),
                   "media_folder_get_scan_status") ||
        nStatus != MEDIA_SCAN_STATUS_FOLDER_SCANNED) {
        return false;
    }
    return m_FindFolderCache() || m_GetFolderId();
}

std::string CQRAMCFWrapper::m_BuildFolderThumb(int nRequestNum) {
    CJsonValue json;
    if (m_GetFolderThumbMediaCount() == 0) {
        json.Set(ERROR_CODE, 0);
        json.Set(TYPE, m_GetFolderThumbFolderCount() > 0 ? TYPE_FOLDERS : TYPE_EMPTY);
        return json.ToString();
    }
    if (!m_GetFolderThumbMediaList(nRequestNum)) {
        json.Set(ERROR_CODE, 1);
        return json.ToString();
    }
    std::vector<std::string> vPaths;
    std::vector<std::string> vTypes;
    for (const CMedia& media : m_FolderThumbMediaList) {
        char* pPath = nullptr;
        int nType = 0;
        if (GetFieldValue(media, "FILE_PATH", &pPath) && GetFieldValue(media, "MEDIA_TYPE", &nType)) {
            vPaths.push_back(CQRAUtil::CharToString(pPath));
            vTypes.push_back(CQRAUtil::int2str(nType));
        }
        const CMallocText path(pPath);
    }
    json.Set(ERROR_CODE, 0);
    json.Set(TYPE, TYPE_MEDIA);
    json.Set(ITEMS, vPaths);
    json.Set(ITEM_TYPES, vTypes);
    return json.ToString();
}

int CQRAMCFWrapper::m_GetFolderThumbMediaCount() {
    CFilter filter;
    int nCount = 0;
    if (!m_CreateAndSetFilter(filter, Filter_FolderThumbMediaCount) ||
        !Succeeded(media_folder_get_media_count_from_db(m_strFolderId.c_str(), filter.get(), &nCount),
                   "media_folder_get_media_count_from_db")) {
        return 0;
    }
    return nCount;
}

int CQRAMCFWrapper::m_GetFolderThumbFolderCount() {
    CFilter filter;
    int nCount = 0;
    if (!m_CreateAndSetFilter(filter, Filter_FolderThumbFolderCount) ||
        !Succeeded(media_folder_get_folder_count_from_db(filter.get(), &nCount),
                   "media_folder_get_folder_count_from_db")) {
        return 0;
    }
    return nCount;
}

bool CQRAMCFWrapper::m_GetFolderThumbMediaList(int nRequestNum) {
    m_FolderThumbMediaList.clear();
    CFilter filter;
    SMediaUserData data{cb_getFolderThumbMediaList, this};
    return m_CreateAndSetFilter(filter, Filter_FolderThumbMediaList) &&
           Succeeded(media_filter_set_offset(filter.get(), 0, nRequestNum), "media_filter_set_offset") &&
           Succeeded(media_folder_foreach_media_from_db(m_strFolderId.c_str(), filter.get(), cb_getMediaList,
                                                        &data),
                     "media_folder_foreach_media_from_db");
}

bool CQRAMCFWrapper::cb_getFolderThumbMediaList(const std::string&, CMedia& media, void* pUserData) {
    static_cast<CQRAMCFWrapper*>(pUserData)->m_FolderThumbMediaList.push_back(media);
    return true;
}
