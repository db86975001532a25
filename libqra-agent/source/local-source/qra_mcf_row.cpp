#include "libqra-agent/source/local-source/qra_mcf_row.h"

#include <cstring>

#include "common/util/qra_log.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"
#include "libqra-agent/source/local-source/qra_mcf_result.h"

namespace {

template <class Handle>
bool ReadText(int (*pGet)(Handle, char**), Handle handle, const char* pOperation, CMallocText& text) {
    char* pText = nullptr;
    if (!Succeeded(pGet(handle, &pText), pOperation)) {
        return false;
    }
    text.reset(pText);
    return pText != nullptr;
}

/// What CQRAUtil::GetFileName() gives, without the copy: every row of a list asks.
const char* FileName(const char* pPath) {
    const char* const pSlash = std::strrchr(pPath, '/');
    return pSlash != nullptr ? pSlash + 1 : "";
}

template <class Handle>
bool MakeEntry(EMCType eType, const char* pName, bool bIs360, int (*pClone)(Handle*, Handle), Handle handle,
               CMedia& media) {
    Handle hClone = nullptr;
    if (!Succeeded(pClone(&hClone, handle), "clone of a row")) {
        return false;
    }
    media = CMedia(eType, pName, bIs360, hClone);
    return true;
}

bool MakePVREntry(const char* pId, CMedia& media) {
    media_pvr_h pvr = nullptr;
    const int ret = media_pvr_get_pvr_from_db(pId, &pvr);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: get pvr fail, ret[%d].", ret);
        return false;
    }
    if (pvr == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: pvr == NULL");
        return false;
    }
    // The handle is ours alone already: what a clone would be.
    media = CMedia(MC_TYPE_PVR, "", false, pvr);
    return true;
}

bool MakeUHDEntry(const char* pId, CMedia& media) {
    media_uhd_h uhd = nullptr;
    const int ret = media_uhd_get_uhd_from_db(pId, &uhd);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: get uhd fail, ret[%d].", ret);
        return false;
    }
    if (uhd == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: uhd == NULL");
        return false;
    }
    media = CMedia(MC_TYPE_UHD, "", false, uhd);
    return true;
}

CMedia MakeSCSAEntry(const char* pId, const char* pPath) {
    auto* const pInfo = new scsa_info_s;
    pInfo->strPath = pPath;
    pInfo->strMediaId = pId;
    return CMedia(MC_TYPE_SCSA, "", false, pInfo);
}

}  // namespace

bool CQRAMCFRow::FromFolder(media_folder_h hFolder, std::string& strId, CMedia& media) {
    CMallocText id;
    CMallocText name;
    if (!ReadText(media_folder_get_folder_id, hFolder, "media_folder_get_folder_id", id) ||
        !ReadText(media_folder_get_name, hFolder, "media_folder_get_name", name) ||
        !MakeEntry(MC_TYPE_FOLDER, name.get(), false, media_folder_clone, hFolder, media)) {
        return false;
    }
    strId = id.get();
    return true;
}

bool CQRAMCFRow::FromMedia(media_info_h hMedia, std::string& strId, CMedia& media) {
    int nType = MEDIA_CONTENT_TYPE_OTHERS;
    Succeeded(media_info_get_media_type(hMedia, &nType), "media_info_get_media_type");
    if (nType < MEDIA_CONTENT_TYPE_IMAGE || nType > MEDIA_CONTENT_TYPE_SCSA) {
        return false;
    }
    CMallocText id;
    CMallocText path;
    if (!ReadText(media_info_get_media_id, hMedia, "media_info_get_media_id", id) ||
        !ReadText(media_info_get_file_path, hMedia, "media_info_get_file_path", path)) {
        return false;
    }
    strId = id.get();
    switch (nType) {
        case MEDIA_CONTENT_TYPE_PVR:
            return MakePVREntry(id.get(), media);
        case MEDIA_CONTENT_TYPE_UHD:
            return MakeUHDEntry(id.get(), media);
        case MEDIA_CONTENT_TYPE_SCSA:
            media = MakeSCSAEntry(id.get(), path.get());
            return true;
        default:
            break;
    }
    bool bIs360 = false;
    Succeeded(media_info_is_360_content(hMedia, &bIs360), "media_info_is_360_content");
    return MakeEntry(MC_TYPE_MEDIA, FileName(path.get()), bIs360, media_info_clone, hMedia, media);
}

bool CQRAMCFRow::FromPVR(media_pvr_h hPVR, std::string& strId, CMedia& media) {
    CMallocText id;
    if (!ReadText(media_pvr_get_media_id, hPVR, "media_pvr_get_media_id", id) ||
        !MakeEntry(MC_TYPE_PVR, "", false, media_pvr_clone, hPVR, media)) {
        return false;
    }
    strId = id.get();
    return true;
}

bool CQRAMCFRow::FromUHD(media_uhd_h hUHD, std::string& strId, CMedia& media) {
    CMallocText id;
    if (!ReadText(media_uhd_get_media_id, hUHD, "media_uhd_get_media_id", id) ||
        !MakeEntry(MC_TYPE_UHD, "", false, media_uhd_clone, hUHD, media)) {
        return false;
    }
    strId = id.get();
    return true;
}
