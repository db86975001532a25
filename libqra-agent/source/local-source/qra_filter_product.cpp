#include "libqra-agent/source/local-source/qra_filter_product.h"

#include <array>
#include <string_view>
#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_log.h"

namespace {

// Selects nothing.
constexpr const char* NOTHING = "( 0=1 )";

struct SOrder {
    const char* pCategory;
    const char* pKey;
    media_content_order_e eOrder;
};

constexpr SOrder MEDIA_LIST_ORDERS[] = {
    {"CATEGORY-FOLDER-TITLE", "MEDIA_DISPLAY_NAME", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-FOLDER-DATE", "MEDIA_MODIFIED_TIME", MEDIA_CONTENT_ORDER_DESC},
};

constexpr SOrder MEDIA_DCM_ORDERS[] = {
    {"CATEGORY-TITLE", "MEDIA_DISPLAY_NAME", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-DATE", "MEDIA_MODIFIED_TIME", MEDIA_CONTENT_ORDER_DESC},
};

constexpr SOrder PVR_LIST_ORDERS[] = {
    {"CATEGORY-FOLDER-TITLE", "PVR_PROGRAM_TITLE", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-FOLDER-DATE", "PVR_START_TIME", MEDIA_CONTENT_ORDER_DESC},
    {"CATEGORY-FOLDER-CHANNEL_NAME", "PVR_CHANNEL_NAME", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-FOLDER-CHANNEL_NUM", "PVR_MAJOR,PVR_MINOR", MEDIA_CONTENT_ORDER_ASC},
};

constexpr SOrder PVR_DCM_ORDERS[] = {
    {"CATEGORY-TITLE", "PVR_PROGRAM_TITLE", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-DATE", "PVR_START_TIME", MEDIA_CONTENT_ORDER_DESC},
    {"CATEGORY-CHANNEL_NAME", "PVR_CHANNEL_NAME", MEDIA_CONTENT_ORDER_ASC},
    {"CATEGORY-CHANNEL_NUM", "PVR_MAJOR,PVR_MINOR", MEDIA_CONTENT_ORDER_ASC},
};

template <size_t N>
void OrderByCategory(const SOrder (&orders)[N], const std::string& strCategory, std::string& strKey,
                     media_content_order_e& eOrder) {
    for (const SOrder& order : orders) {
        if (strCategory == order.pCategory) {
            strKey = order.pKey;
            eOrder = order.eOrder;
            return;
        }
    }
}

std::string Equals(const char* pColumn, const std::string& strText) {
    return std::string(pColumn) + " = '" + strText + "'";
}

std::string Contains(const char* pColumn, const std::string& strText) {
    return std::string(pColumn) + " LIKE '%" + strText + "%'";
}

// The content types whose extensions a content type stands for; SCSA only where the device shows UHD titles.
struct SContentTypes {
    std::string_view strContentType;
    std::array<const char*, 4> types;  ///< null behind the last
    bool bScsa;
};

const SContentTypes* FindContentTypes(ESearchType nSearchType, const std::string& strContentType) {
    static constexpr SContentTypes searchMedia{"", {"CONTENT-IMAGE", "CONTENT-VIDEO", "CONTENT-MUSIC"}, true};
    static constexpr SContentTypes searchPvr{"", {"CONTENT-PVR"}, false};
    static constexpr SContentTypes searchPhoto{"", {"CONTENT-IMAGE"}, false};
    static constexpr SContentTypes byContentType[] = {
        {"CONTENT-FOLDER", {"CONTENT-IMAGE", "CONTENT-VIDEO", "CONTENT-MUSIC", "CONTENT-PVR"}, true},
        {"CONTENT-IMAGE", {"CONTENT-IMAGE"}, false},
        {"CONTENT-360IMAGE", {"CONTENT-IMAGE"}, false},
        {"CONTENT-MUSIC", {"CONTENT-MUSIC"}, false},
        {"CONTENT-VIDEO", {"CONTENT-VIDEO"}, true},
        {"CONTENT-360VIDEO", {"CONTENT-VIDEO"}, true},
        {"CONTENT-PVR", {"CONTENT-PVR"}, false},
        {"CONTENT-PVR-SCHEDULED", {"CONTENT-PVR"}, false},
        {"CONTENT-PVR-UNWATCHED", {"CONTENT-PVR"}, false},
        {"CONTENT-SCSA", {}, true},
    };
    switch (nSearchType) {
        case SEARCH_MEDIA:
            return &searchMedia;
        case SEARCH_PVR:
            return &searchPvr;
        case SEARCH_PHOTO:
            return &searchPhoto;
        default:
            break;
    }
    for (const SContentTypes& types : byContentType) {
        if (types.strContentType == strContentType) {
            return &types;
        }
    }
    return nullptr;
}

}  // namespace

bool CQRAFilterProductBase::InitParam(const _SFilterParam* pParam) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pParam == NULL.");
        return false;
    }
    t_strContentType = pParam->strContentType;
    t_strCategory = pParam->strCategory;
    t_strPath = pParam->strPath;
    t_strStorageId = pParam->strStorageId;
    t_strFolderId = pParam->strFolderId;
    t_strKeyword = pParam->strKeyword;
    t_nSearchType = pParam->nSearchType;
    t_bIsUHDDevice = pParam->bIsUHDDevice;
    m_pExtensionList = pParam->pExtensionList;
    return true;
}

bool CQRAFilterProductBase::CreateAndSetFilter(filter_h& hFilter) {
    const int ret = media_filter_create(&hFilter);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_filter_create fail, ret[%d].", ret);
        hFilter = nullptr;
        return false;
    }
    if (!m_SetFilter(hFilter)) {
        media_filter_destroy(hFilter);
        hFilter = nullptr;
        return false;
    }
    return true;
}

bool CQRAFilterProductBase::m_SetFilter(filter_h hFilter) {
    int ret = media_filter_set_storage(hFilter, t_strStorageId.c_str());
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_filter_set_storage fail, ret[%d].", ret);
        return false;
    }
    const std::string strCondition = t_GetCondition();
    if (!strCondition.empty()) {
        ret = media_filter_set_condition(hFilter, strCondition.c_str(), MEDIA_CONTENT_COLLATE_NOCASE);
        if (ret != 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "media_filter_set_condition fail, ret[%d].", ret);
            return false;
        }
    }
    std::string strKey;
    media_content_order_e eOrder = MEDIA_CONTENT_ORDER_ASC;
    t_GetOrder(strKey, eOrder);
    if (!strKey.empty()) {
        ret = media_filter_set_order(hFilter, eOrder, strKey.c_str(), MEDIA_CONTENT_COLLATE_NOCASE);
        if (ret != 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "media_filter_set_order fail, ret[%d].", ret);
            return false;
        }
    }
    return true;
}

void CQRAFilterProductBase::m_GetDisplayNameFilter(const std::string& strType, std::string& strFilter) {
    if (m_pExtensionList == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_pExtensionList == NULL");
        return;
    }
    std::vector<std::string> vExtension;
    m_pExtensionList->GetExtensionByType(strType, vExtension);
    if (vExtension.empty()) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "vExtension.empty() == true");
        return;
    }
    const char* const pColumn = strType == "CONTENT-PVR" ? "MEDIA_PATH" : "MEDIA_DISPLAY_NAME";
    for (const std::string& strExtension : vExtension) {
        if (!strFilter.empty()) {
            strFilter += " or ";
        }
        strFilter += std::string(pColumn) + " LIKE '%." + strExtension + "'";
    }
}

std::string CQRAFilterProductBase::t_GetExtensionFilter() {
    // An empty list of extensions thus selects nothing.
    std::string strFilter = NOTHING;
    if (const SContentTypes* const pTypes = FindContentTypes(t_nSearchType, t_strContentType)) {
        for (const char* const pType : pTypes->types) {
            if (pType != nullptr) {
                m_GetDisplayNameFilter(pType, strFilter);
            }
        }
        if (pTypes->bScsa && t_bIsUHDDevice) {
            m_GetDisplayNameFilter("CONTENT-SCSA", strFilter);
        }
    } else {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: unknown type");
    }
    strFilter = "( " + strFilter + " )";
    if (t_strContentType == "CONTENT-360IMAGE" || t_strContentType == "CONTENT-360VIDEO") {
        strFilter += " AND MEDIA_360 = 1 ";
    }
    return strFilter;
}

std::string CQRAFilterProductBase::t_GetUHDExtensionFilter() {
    std::string strFilter;
    if (t_bIsUHDDevice) {
        m_GetDisplayNameFilter("CONTENT-UHD", strFilter);
    }
    return strFilter.empty() ? NOTHING : "( " + strFilter + " )";
}

std::string CQRAFilterDateGroup::t_GetCondition() {
    return t_GetExtensionFilter() + " AND " + Equals("MEDIA_FOLDER_ID", t_strFolderId);
}

void CQRAFilterDateGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "MEDIA_MODIFIED_DATE";
    eOrder = MEDIA_CONTENT_ORDER_DESC;
}

std::string CQRAFilterPVRDateGroup::t_GetCondition() {
    t_bPVR = true;
    return t_GetExtensionFilter() + " AND " + Equals("UHD_FOLDER_ID", t_strFolderId);
}

void CQRAFilterPVRDateGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "MEDIA_MODIFIED_DATE";
    eOrder = MEDIA_CONTENT_ORDER_DESC;
}

std::string CQRAFilterChannelGroup::t_GetCondition() {
    t_bPVR = true;
    return t_GetExtensionFilter() + " AND " + Equals("UHD_FOLDER_ID", t_strFolderId);
}

void CQRAFilterChannelGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_CHANNEL_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterChannelNumGroup::t_GetCondition() {
    t_bPVR = true;
    return t_GetExtensionFilter() + " AND " + Equals("UHD_FOLDER_ID", t_strFolderId);
}

void CQRAFilterChannelNumGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_MAJOR,PVR_MINOR";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

// The groups of a whole storage have no condition: they cover all its recordings.

std::string CQRAFilterPVRDateDCMGroup::t_GetCondition() {
    t_bPVR = true;
    return {};
}

void CQRAFilterPVRDateDCMGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_MODIFIED_DATE";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterChannelDCMGroup::t_GetCondition() {
    t_bPVR = true;
    return {};
}

void CQRAFilterChannelDCMGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_CHANNEL_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterChannelNumDCMGroup::t_GetCondition() {
    t_bPVR = true;
    return {};
}

void CQRAFilterChannelNumDCMGroup::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_MAJOR,PVR_MINOR";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterFolderID::t_GetCondition() {
    return Equals("FOLDER_PATH", t_strPath);
}

void CQRAFilterFolderID::t_GetOrder(std::string&, media_content_order_e&) {}

std::string CQRAFilterFolderList::t_GetCondition() {
    return Equals("FOLDER_PARENT_FOLDER_ID", t_strFolderId);
}

void CQRAFilterFolderList::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "FOLDER_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterMediaList::t_GetCondition() {
    return t_GetExtensionFilter();
}

void CQRAFilterMediaList::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    OrderByCategory(MEDIA_LIST_ORDERS, t_strCategory, strKey, eOrder);
}

std::string CQRAFilterPVRList::t_GetCondition() {
    t_bPVR = true;
    return t_GetExtensionFilter() + " AND " + Equals("UHD_FOLDER_ID", t_strFolderId);
}

void CQRAFilterPVRList::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    OrderByCategory(PVR_LIST_ORDERS, t_strCategory, strKey, eOrder);
}

std::string CQRAFilterUHDList::t_GetCondition() {
    return Equals("UHD_FOLDER_ID", t_strFolderId) + " AND " + t_GetUHDExtensionFilter();
}

void CQRAFilterUHDList::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "UHD_SUB_TYPE,UHD_FILE_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterUHDUpdate::t_GetCondition() {
    return Equals("UHD_FOLDER_ID", t_strFolderId) + " AND UHD_SUB_TYPE = -1 AND " + t_GetUHDExtensionFilter();
}

void CQRAFilterUHDUpdate::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "UHD_SUB_TYPE";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterMediaSearch::t_GetCondition() {
    return Contains("MEDIA_DISPLAY_NAME", t_strKeyword) + " AND " + t_GetExtensionFilter();
}

void CQRAFilterMediaSearch::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "MEDIA_DISPLAY_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterPVRSearch::t_GetCondition() {
    t_bPVR = true;
    return Contains("PVR_PROGRAM_TITLE", t_strKeyword) + " AND " + t_GetExtensionFilter();
}

void CQRAFilterPVRSearch::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "PVR_PROGRAM_TITLE";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterUHDSearch::t_GetCondition() {
    return Contains("UHD_FILE_NAME", t_strKeyword) + " AND " + t_GetUHDExtensionFilter();
}

void CQRAFilterUHDSearch::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "UHD_FILE_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterMediaDCM::t_GetCondition() {
    return t_GetExtensionFilter();
}

void CQRAFilterMediaDCM::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    OrderByCategory(MEDIA_DCM_ORDERS, t_strCategory, strKey, eOrder);
}

std::string CQRAFilterPVRDCM::t_GetCondition() {
    t_bPVR = true;
    if (t_strContentType == "CONTENT-PVR") {
        return t_GetExtensionFilter();
    }
    if (t_strContentType == "CONTENT-PVR-UNWATCHED") {
        return "PVR_CONTENT_WATCH = 0 AND " + t_GetExtensionFilter();
    }
    if (t_strContentType == "CONTENT-PVR-SCHEDULED") {
        return "PVR_TIMER_RECORD = 1 AND " + t_GetExtensionFilter();
    }
    return {};
}

void CQRAFilterPVRDCM::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    OrderByCategory(PVR_DCM_ORDERS, t_strCategory, strKey, eOrder);
}

std::string CQRAFilterUHDDCM::t_GetCondition() {
    return t_GetUHDExtensionFilter();
}

void CQRAFilterUHDDCM::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "UHD_SUB_TYPE,UHD_FILE_NAME";
    eOrder = MEDIA_CONTENT_ORDER_ASC;
}

std::string CQRAFilterFolderThumbFolderCount::t_GetCondition() {
    return Equals("FOLDER_PARENT_FOLDER_ID", t_strFolderId);
}

void CQRAFilterFolderThumbFolderCount::t_GetOrder(std::string&, media_content_order_e&) {}

std::string CQRAFilterFolderThumbMediaCount::t_GetCondition() {
    return t_GetExtensionFilter();
}

void CQRAFilterFolderThumbMediaCount::t_GetOrder(std::string&, media_content_order_e&) {}

std::string CQRAFilterFolderThumbMediaList::t_GetCondition() {
    return t_GetExtensionFilter();
}

void CQRAFilterFolderThumbMediaList::t_GetOrder(std::string&, media_content_order_e&) {}

std::string CQRAFilterLargePhotoList::t_GetCondition() {
    const std::string strCondition = t_GetExtensionFilter();
    QRA_LOG_INFO(QRA_TAG_LOCAL, "CONDITION: %s", strCondition.c_str());
    return strCondition;
}

void CQRAFilterLargePhotoList::t_GetOrder(std::string& strKey, media_content_order_e& eOrder) {
    strKey = "MEDIA_MODIFIED_TIME";
    eOrder = MEDIA_CONTENT_ORDER_DESC;
}
