#include "libqra-agent/source/local-source/qra_mcf_value.h"

#include <glib.h>
#include <qra/qra_types.h>
#include <sys/stat.h>

#include <cstring>

#include "common/util/qra_log.h"
#include "libqra-agent/source/local-source/qra_mcf_value_table.h"

namespace {

bool InvalidField(const std::string& strField) {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: Invalid field[%s].", strField.c_str());
    return false;
}

bool InvalidHandle() {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: Invalid handle.");
    return false;
}

bool InvalidFuncType(size_t nFuncType) {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: Invalid func type[%d].", static_cast<int>(nFuncType));
    return false;
}

bool GetSucceeded(int ret) {
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: GetValue failed with[%d].", ret);
    }
    return ret == 0;
}

bool SetSucceeded(int ret) {
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: SetValue failed with[%d].", ret);
    }
    return ret == 0;
}

bool CopyText(const mcf_out& out, const char* pText) {
    return WantsText(out) && StoreText(out, CMallocText(strdup(pText)));
}

/// Calls a getter with a handle; one for handles of another kind does not belong into the handle's table.
template <class Handle>
struct SGetter {
    Handle handle;
    const mcf_out& out;
    size_t nFuncType;

    bool operator()(int (*pFunction)(Handle, char**)) const {
        char* pText = nullptr;
        return WantsText(out) && GetSucceeded(pFunction(handle, &pText)) &&
               StoreText(out, CMallocText(pText));
    }

    template <class Number>
    bool operator()(int (*pFunction)(Handle, Number*)) const {
        Number value{};
        return !WantsText(out) && GetSucceeded(pFunction(handle, &value)) && StoreNumber(out, value);
    }

    template <class Other, class Value>
    bool operator()(int (*)(Other, Value*)) const {
        return InvalidFuncType(nFuncType);
    }
};

template <class Handle>
bool CallGetter(const mcf_get_function& function, Handle handle, const mcf_out& out) {
    return std::visit(SGetter<Handle>{handle, out, function.index()}, function);
}

/// The same for a setter. A number is clamped to what the setter takes; text and number do not become each
/// other.
template <class Handle>
struct SSetter {
    Handle handle;
    const mcf_in& in;
    size_t nFuncType;

    bool operator()(int (*pFunction)(Handle, const char*)) const {
        const char* const* const ppText = std::get_if<const char*>(&in);
        return ppText != nullptr && SetSucceeded(pFunction(handle, *ppText));
    }

    template <class Number>
    bool operator()(int (*pFunction)(Handle, Number)) const {
        if (const int* const pValue = std::get_if<int>(&in)) {
            return SetSucceeded(pFunction(handle, ClampNumber<Number>(*pValue)));
        }
        const long* const pValue = std::get_if<long>(&in);
        return pValue != nullptr && SetSucceeded(pFunction(handle, ClampNumber<Number>(*pValue)));
    }

    template <class Other, class Value>
    bool operator()(int (*)(Other, Value)) const {
        return InvalidFuncType(nFuncType);
    }
};

template <class Handle>
bool GetFromTable(const mcf_get_table& table, Handle handle, const std::string& strField,
                  const mcf_out& out) {
    const auto it = table.find(strField);
    return it != table.end() ? CallGetter(it->second, handle, out) : InvalidField(strField);
}

template <class Handle>
bool SetThroughTable(const mcf_set_table& table, Handle handle, const std::string& strField, const mcf_in& in,
                     int (*pUpdate)(Handle)) {
    if (handle == nullptr) {
        return InvalidHandle();
    }
    const auto it = table.find(strField);
    if (it == table.end()) {
        return InvalidField(strField);
    }
    return std::visit(SSetter<Handle>{handle, in, it->second.index()}, it->second) &&
           SetSucceeded(pUpdate(handle));
}

/// Reads a key of one kind of media, through a handle that lives for this read only.
template <class Handle>
bool GetKindValue(const mcf_get_table& table, media_info_h hMedia, const std::string& strField,
                  const mcf_out& out, int (*pGetHandle)(media_info_h, Handle*), int (*pDestroy)(Handle)) {
    const auto it = table.find(strField);
    Handle handle = nullptr;
    if (it == table.end() || !GetSucceeded(pGetHandle(hMedia, &handle))) {
        return false;
    }
    const bool bResult = CallGetter(it->second, handle, out);
    pDestroy(handle);
    return bResult;
}

bool GetImageValue(media_info_h hMedia, const std::string& strField, const mcf_out& out) {
    return strField == "MEDIA_TYPE" ? StoreNumber<int>(out, QRA_MEDIA_TYPE_IMAGE)
                                    : GetKindValue(CQRAMCFValueTable::GetImage(), hMedia, strField, out,
                                                   media_info_get_image, image_meta_destroy);
}

bool GetVideoValue(media_info_h hMedia, const std::string& strField, const mcf_out& out) {
    return strField == "MEDIA_TYPE" ? StoreNumber<int>(out, QRA_MEDIA_TYPE_VIDEO)
                                    : GetKindValue(CQRAMCFValueTable::GetVideo(), hMedia, strField, out,
                                                   media_info_get_video, video_meta_destroy);
}

bool GetAudioValue(media_info_h hMedia, const std::string& strField, const mcf_out& out) {
    return strField == "MEDIA_TYPE" ? StoreNumber<int>(out, QRA_MEDIA_TYPE_MUSIC)
                                    : GetKindValue(CQRAMCFValueTable::GetAudio(), hMedia, strField, out,
                                                   media_info_get_audio, audio_meta_destroy);
}

bool GetValueOfKind(media_info_h hMedia, const std::string& strField, const mcf_out& out) {
    int nType = MEDIA_CONTENT_TYPE_OTHERS;
    if (!GetSucceeded(media_info_get_media_type(hMedia, &nType))) {
        return false;
    }
    switch (nType) {
        case MEDIA_CONTENT_TYPE_IMAGE:
            return GetImageValue(hMedia, strField, out);
        case MEDIA_CONTENT_TYPE_VIDEO:
            return GetVideoValue(hMedia, strField, out);
        case MEDIA_CONTENT_TYPE_SOUND:
        case MEDIA_CONTENT_TYPE_MUSIC:
            return GetAudioValue(hMedia, strField, out);
        default:
            return false;
    }
}

CMallocText GetPVRPath(media_pvr_h hPVR) {
    char* pPath = nullptr;
    return CMallocText(GetSucceeded(media_pvr_get_path(hPVR, &pPath)) ? pPath : nullptr);
}

/// A recording's name is that of its file.
bool GetPVRName(media_pvr_h hPVR, const mcf_out& out) {
    const CMallocText path = WantsText(out) ? GetPVRPath(hPVR) : CMallocText();
    if (path == nullptr) {
        return false;
    }
    gchar* const pName = g_path_get_basename(path.get());
    const bool bResult = CopyText(out, pName);
    g_free(pName);
    return bResult;
}

/// The database has no time of change for a recording; its file has.
bool GetPVRModifiedTime(media_pvr_h hPVR, const mcf_out& out) {
    const CMallocText path = WantsText(out) ? CMallocText() : GetPVRPath(hPVR);
    struct stat64 status {};
    return path != nullptr && stat64(path.get(), &status) == 0 && StoreNumber(out, status.st_mtime);
}

}  // namespace

bool CQRAMCFValue::GetFieldValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    switch (media.GetType()) {
        case MC_TYPE_FOLDER:
            return m_GetFolderValue(media, strField, out);
        case MC_TYPE_MEDIA:
            return m_GetMediaValue(media, strField, out);
        case MC_TYPE_PVR:
            return m_GetPVRValue(media, strField, out);
        case MC_TYPE_UHD:
            return m_GetUHDValue(media, strField, out);
        case MC_TYPE_SCSA:
            return m_GetSCSAValue(media, strField, out);
        case MC_TYPE_GROUP:
            return m_GetGroupValue(media, strField, out);
        default:
            return false;
    }
}

bool CQRAMCFValue::m_GetFolderValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    const media_folder_h hFolder = media.GetFolder();
    if (hFolder == nullptr) {
        return InvalidHandle();
    }
    return strField == "MEDIA_TYPE" ? StoreNumber<int>(out, QRA_MEDIA_TYPE_FOLDER)
                                    : GetFromTable(CQRAMCFValueTable::GetFolder(), hFolder, strField, out);
}

bool CQRAMCFValue::m_GetMediaValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    const media_info_h hMedia = media.GetMedia();
    if (hMedia == nullptr) {
        return InvalidHandle();
    }
    return GetValueOfKind(hMedia, strField, out) ||
           GetFromTable(CQRAMCFValueTable::GetCommon(), hMedia, strField, out);
}

bool CQRAMCFValue::m_GetPVRValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    const media_pvr_h hPVR = media.GetPVR();
    if (hPVR == nullptr) {
        return InvalidHandle();
    }
    if (strField == "MEDIA_TYPE") {
        return StoreNumber<int>(out, QRA_MEDIA_TYPE_PVR);
    }
    if (strField == "MODIFIED_TIME") {
        return GetPVRModifiedTime(hPVR, out);
    }
    return strField == "DISPLAY_NAME" ? GetPVRName(hPVR, out)
                                      : GetFromTable(CQRAMCFValueTable::GetPVR(), hPVR, strField, out);
}

bool CQRAMCFValue::m_GetUHDValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    const media_uhd_h hUHD = media.GetUHD();
    if (hUHD == nullptr) {
        return InvalidHandle();
    }
    return strField == "MEDIA_TYPE" ? StoreNumber<int>(out, QRA_MEDIA_TYPE_UHD)
                                    : GetFromTable(CQRAMCFValueTable::GetUHD(), hUHD, strField, out);
}

bool CQRAMCFValue::m_GetSCSAValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    const scsa_info_s* const pInfo = media.GetSCSA();
    if (pInfo == nullptr) {
        return InvalidHandle();
    }
    if (strField == "MEDIA_TYPE") {
        return StoreNumber(out, pInfo->nMediaType);
    }
    if (strField == "FILE_PATH") {
        return CopyText(out, pInfo->strPath.c_str());
    }
    return strField == "ID_QRA" ? CopyText(out, pInfo->strMediaId.c_str()) : InvalidField(strField);
}

bool CQRAMCFValue::m_GetGroupValue(const CMedia& media, const std::string& strField, const mcf_out& out) {
    if (strField == "MEDIA_TYPE") {
        return StoreNumber<int>(out, QRA_MEDIA_TYPE_GROUP);
    }
    return strField == "DISPLAY_NAME" ? CopyText(out, media.GetName()) : InvalidField(strField);
}

bool CQRAMCFValue::SetFieldValue(const CMedia& media, const std::string& strField, const mcf_in& in) {
    switch (media.GetType()) {
        case MC_TYPE_MEDIA:
            return SetThroughTable(CQRAMCFValueTable::SetMedia(), media.GetMedia(), strField, in,
                                   media_info_update_to_db);
        case MC_TYPE_PVR:
            return SetThroughTable(CQRAMCFValueTable::SetPVR(), media.GetPVR(), strField, in,
                                   media_pvr_update_to_db);
        case MC_TYPE_UHD:
            return SetThroughTable(CQRAMCFValueTable::SetUHD(), media.GetUHD(), strField, in,
                                   media_uhd_update_to_db);
        case MC_TYPE_FOLDER:
        case MC_TYPE_GROUP:
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_IsFolder() or m_IsGroup().");
            return false;
        default:
            return false;
    }
}
