#include "common/util/qra_extensionlist.h"

#include "common/util/json_value.h"
#include "common/util/qra_log.h"

void CQRAExtensionList::ClearExtension() {
    m_Extensions.clear();
}

void CQRAExtensionList::SetDefaultExtension() {
    SetExtension("CONTENT-IMAGE", {"jpg", "jpeg", "mpo", "bmp", "png", "gif"});
    SetExtension("CONTENT-VIDEO",
                 {"avi", "mpg", "mpeg", "mp4", "vob",  "vro", "ts",  "trp",  "tp",   "svi",  "mkv", "wmv",
                  "asf", "3gp", "divx", "flv", "m2ts", "mov", "mts", "webm", "s4ud", "rmvb", "rm"});
    SetExtension("CONTENT-MUSIC", {"mp3", "wma", "wav", "m4a", "aac", "mpa", "flac", "ogg", "mid", "midi",
                                   "ape", "aif", "aiff"});
    SetExtension("CONTENT-PVR", {"srf"});
    SetExtension("CONTENT-UHD", {"um4", "km4", "sum4"});
}

bool CQRAExtensionList::GetExtensionFromApp(const std::string& strExtension) {
    QRA_LOG_TRACE(QRA_TAG_COMMON, "CQRAExtensionList: strExtension[%s].", strExtension.c_str());
    if (strExtension.empty()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON,
                        "CQRAExtensionList: get extension from App fail, use default extension.");
        return false;
    }
    static constexpr struct {
        const char* key;
        const char* type;
    } kLists[] = {
        {"param_media_extension_image", "CONTENT-IMAGE"}, {"param_media_extension_video", "CONTENT-VIDEO"},
        {"param_media_extension_music", "CONTENT-MUSIC"}, {"param_media_extension_pvr", "CONTENT-PVR"},
        {"param_media_extension_uhd", "CONTENT-UHD"},
    };
    const CJsonValue json(strExtension);
    for (const auto& list : kLists) {
        std::vector<std::string> extensions;
        json.Get(list.key, extensions);
        SetExtension(list.type, extensions);
    }
    return true;
}

void CQRAExtensionList::SetExtension(const std::string& type, const std::vector<std::string>& extensions) {
    m_Extensions.emplace(type, extensions);
}

void CQRAExtensionList::GetExtensionByType(const std::string& type, std::vector<std::string>& out) {
    out = m_Extensions[type];
}

int CQRAExtensionList::GetExtensionCountByType(const std::string& type) const {
    const auto it = m_Extensions.find(type);
    return it == m_Extensions.end() ? 0 : static_cast<int>(it->second.size());
}
