// The walks through a camera's objects.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"

namespace {

constexpr mtp_object_h kRoot = 0;
/// More than any card holds: a camera that tells of more never comes to an end.
constexpr size_t kMostObjects = 1000000;

bool IsFolder(const _stPtpContentItem& item) {
    return item.strFormat == kPTPFolderFormat;
}

bool ComesBefore(const _stPtpContentItem& one, const _stPtpContentItem& other) {
    if (IsFolder(one) != IsFolder(other))
        return IsFolder(one);
    return one.strDisplayName < other.strDisplayName;
}

std::string ToUpper(std::string strText) {
    for (char& c : strText) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return strText;
}

/// The direct children of a folder; the service's code if it fails.
int GetChildren(mtp_device_h hDevice, mtp_storage_h hStorage, mtp_object_h hParent,
                std::vector<mtp_object_h>& children) {
    mtp_object_h* pHandles = nullptr;
    int nCount = 0;
    const int nResult =
        mtp_get_object_handles(hDevice, hStorage, MTP_FILETYPE_ALL, hParent, &pHandles, &nCount);
    const std::unique_ptr<mtp_object_h, MallocFree> handles(pHandles);
    if (nResult >= 0 && pHandles != nullptr && nCount > 0)
        children.insert(children.end(), pHandles, pHandles + nCount);
    return nResult;
}

std::string ThumbnailPath(const _stPTPCamera& camera, mtp_object_h hObject) {
    char szPath[64];
    std::snprintf(szPath, sizeof szPath, "ptp://%03d;%03d;%d", camera.nBusValue, camera.nDeviceValue,
                  hObject);
    return szPath;
}

}  // namespace

bool CQRAPTPManage::RequestListofFolder(qra_ptp_item_cb cb, void* pUserData) {
    Wish wish;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_StateMutex);
        wish = m_Wish;
    }
    return m_WalkFolder(std::move(wish), m_GetHeldCamera(), cb, pUserData);
}

bool CQRAPTPManage::RequestListofFolder(const _stPTPParam& param, const _stPTPCamera& camera,
                                        qra_ptp_item_cb cb, void* pUserData) {
    return m_WalkFolder(m_MakeWish(param), camera, cb, pUserData);
}

bool CQRAPTPManage::RequestListofDCM(qra_ptp_item_cb cb, void* pUserData) {
    return RequestListofDCM(m_GetHeldCamera(), cb, pUserData);
}

void CQRAPTPManage::m_BeginWalk(const _stPTPCamera& camera) {
    m_WalkCamera = camera;
    m_vFileTypes.clear();
    m_vItems.clear();
}

bool CQRAPTPManage::m_WalkFolder(Wish wish, const _stPTPCamera& camera, qra_ptp_item_cb cb, void* pUserData) {
    QRA_ASSERT(cb != NULL);
    const CQRALockGuard<CQRAMutex> lock(m_CameraMutex);
    m_BeginWalk(camera);
    if (wish.nFolderId < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "error parameter folderid");
        return false;
    }
    m_SetFileTypeList(wish);
    if (m_vFileTypes.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "File Type Error");
        return false;
    }
    std::vector<mtp_object_h> handles;
    if (!m_GetObjectHandles(wish.nFolderId, handles)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "GetObjectHandle failed");
        return false;
    }
    for (const mtp_object_h hObject : handles) {
        if (!m_GetObjectInfo(hObject))
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "GetObjectInfo failed");
    }
    return m_GiveItems(cb, pUserData);
}

void CQRAPTPManage::m_SetFileTypeList(Wish& wish) {
    if (wish.strSortCategory == "CATEGORY-FOLDER-TITLE")
        m_vFileTypes.push_back(MTP_FILETYPE_FOLDER);
    const bool bAll = wish.strContentType == "CONTENT-FOLDER";
    if (bAll || wish.strContentType == "CONTENT-IMAGE")
        m_AddFileTypes(wish, "CONTENT-IMAGE");
    if (bAll || wish.strContentType == "CONTENT-VIDEO")
        m_AddFileTypes(wish, "CONTENT-VIDEO");
}

void CQRAPTPManage::m_AddFileTypes(Wish& wish, const char* szContentType) {
    std::vector<std::string> vExtension;
    wish.extensions.GetExtensionByType(szContentType, vExtension);
    if (vExtension.empty())
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "vExtension.empty() == true");
    for (const std::string& strExtension : vExtension) {
        const auto it = m_ExtensionConvert.find(ToUpper(strExtension));
        if (it != m_ExtensionConvert.end())
            m_vFileTypes.push_back(it->second);
    }
}

bool CQRAPTPManage::m_GetObjectHandles(mtp_object_h hParent, std::vector<mtp_object_h>& handles) {
    std::vector<mtp_object_h> all;
    for (const mtp_storage_h hStorage : m_WalkCamera.vStorageIds) {
        const int nResult = GetChildren(m_WalkCamera.hDevice, hStorage, hParent, all);
        if (nResult < 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_object_handles , ret : %d", nResult);
            return false;
        }
    }
    // A folder below the root lies on one storage, but its children may be told for each.
    std::unordered_set<mtp_object_h> seen;
    std::copy_if(all.begin(), all.end(), std::back_inserter(handles),
                 [&seen](mtp_object_h hObject) { return seen.insert(hObject).second; });
    return true;
}

bool CQRAPTPManage::m_GetObjectInfo(mtp_object_h hObject) {
    mtp_object_info info{};
    if (mtp_objectinfo_get_object_info(m_WalkCamera.hDevice, hObject, &info) != 0)
        return false;
    if (std::find(m_vFileTypes.begin(), m_vFileTypes.end(), info.file_type) == m_vFileTypes.end())
        return true;
    _stPtpContentItem item = m_MakeItem(hObject, info);
    if (m_WalkCamera.b360Model)
        m_Check360(hObject, info, item);
    m_vItems.push_back(std::move(item));
    return true;
}

_stPtpContentItem CQRAPTPManage::m_MakeItem(mtp_object_h hObject, const mtp_object_info& info) const {
    const std::string strObject = CQRAUtil::int2str(hObject);
    const std::string strBoth = CQRAUtil::int2str(m_WalkCamera.hDevice) + "/" + strObject;
    _stPtpContentItem item;
    item.strDisplayName = info.file_name;
    item.strFilePath = strBoth;
    item.strThumbnailPath = ThumbnailPath(m_WalkCamera, hObject);
    item.strPlayPath = "ptp://" + strBoth;
    item.strId = strObject;
    item.uSize = info.size;
    item.nWidth = info.width;
    item.nHeight = info.height;
    item.nModifiedTime = info.modified_time;
    if (info.file_type == MTP_FILETYPE_FOLDER) {
        item.strTitle = item.strDisplayName;
        item.strFormat = kPTPFolderFormat;
    } else {
        const size_t nDot = item.strDisplayName.rfind('.');
        item.strTitle = item.strDisplayName.substr(0, nDot);
        if (nDot != std::string::npos)
            item.strFormat = item.strDisplayName.substr(nDot + 1);
    }
    return item;
}

bool CQRAPTPManage::m_GiveItems(qra_ptp_item_cb cb, void* pUserData) {
    std::vector<_stPtpContentItem> items;
    items.swap(m_vItems);
    std::stable_sort(items.begin(), items.end(), ComesBefore);
    for (_stPtpContentItem& item : items) {
        if (!cb(item, pUserData)) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "Error in CallBack");
            return false;
        }
    }
    return true;
}

bool CQRAPTPManage::RequestListofDCM(const _stPTPCamera& camera, qra_ptp_item_cb cb, void* pUserData) {
    QRA_ASSERT(cb != NULL);
    const CQRALockGuard<CQRAMutex> lock(m_CameraMutex);
    m_BeginWalk(camera);
    if (camera.vStorageIds.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "The camera has no storage.");
        return true;
    }
    std::vector<mtp_object_h> parents = {kRoot};
    std::unordered_set<mtp_object_h> seen = {kRoot};
    while (!parents.empty()) {
        if (!m_WalkLevel(parents, seen)) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "The camera tells of more than %zu objects.", kMostObjects);
            break;
        }
    }
    return m_GiveItems(cb, pUserData);
}

// Replaces the parents by the folders among their children. An object that was seen already is not looked at
// again: a folder may tell that it lies in itself.
bool CQRAPTPManage::m_WalkLevel(std::vector<mtp_object_h>& parents, std::unordered_set<mtp_object_h>& seen) {
    std::vector<mtp_object_h> folders;
    for (const mtp_object_h hParent : parents) {
        std::vector<mtp_object_h> children;
        const int nResult =
            GetChildren(m_WalkCamera.hDevice, m_WalkCamera.vStorageIds.front(), hParent, children);
        if (nResult != 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_object_handles failed : %d", nResult);
            continue;
        }
        for (const mtp_object_h hChild : children) {
            bool bIsFolder = false;
            if (seen.insert(hChild).second && m_TakeChild(hChild, &bIsFolder) && bIsFolder)
                folders.push_back(hChild);
            if (seen.size() > kMostObjects)
                return false;
        }
    }
    parents = std::move(folders);
    return true;
}

bool CQRAPTPManage::m_TakeChild(mtp_object_h hObject, bool* pIsFolder) {
    mtp_object_info info{};
    const int nResult = mtp_objectinfo_get_object_info(m_WalkCamera.hDevice, hObject, &info);
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_objectinfo_get_object_info failed : %d", nResult);
        return false;
    }
    *pIsFolder = info.file_type == MTP_FILETYPE_FOLDER;
    if (info.file_type == MTP_FILETYPE_JPG || info.file_type == MTP_FILETYPE_BMP ||
        info.file_type == MTP_FILETYPE_PNG)
        m_vItems.push_back(m_MakeItem(hObject, info));
    return true;
}
