#include "libqra-agent/source/local-source/qra_msc_file_type.h"

#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_util.h"

void CQRAMSCFileType::Prepare(CQRAExtensionList& extensionList) {
    static constexpr struct {
        const char* pContentType;
        STypes types;
    } CONTENT_TYPES[] = {
        {"CONTENT-IMAGE", {QRA_MEDIA_TYPE_IMAGE, QRA_MEDIA_TYPE_IMAGE_EXT}},
        {"CONTENT-VIDEO", {QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_VIDEO_EXT}},
        {"CONTENT-MUSIC", {QRA_MEDIA_TYPE_MUSIC, QRA_MEDIA_TYPE_MUSIC}},
        {"CONTENT-PVR", {QRA_MEDIA_TYPE_PVR, QRA_MEDIA_TYPE_PVR}},
        {"CONTENT-UHD", {QRA_MEDIA_TYPE_UHD, QRA_MEDIA_TYPE_UHD}},
        {"CONTENT-SCSA", {QRA_MEDIA_TYPE_SCSA, QRA_MEDIA_TYPE_SCSA}},
    };
    m_Types.clear();
    for (const auto& content : CONTENT_TYPES) {
        std::vector<std::string> vExtensions;
        extensionList.GetExtensionByType(content.pContentType, vExtensions);
        for (const std::string& strExtension : vExtensions) {
            m_Types.emplace(strExtension, content.types);
        }
    }
}

bool CQRAMSCFileType::GetFileType(const std::string& strExtension, bool bIs360,
                                  qra_media_type_e& eType) const {
    // Only the file's extension counts in lower case: an upper-case entry of a list matches nothing.
    const auto it = m_Types.find(CQRAUtil::ToLower(strExtension));
    if (it == m_Types.end()) {
        return false;
    }
    eType = bIs360 ? it->second.e360Type : it->second.eType;
    return true;
}
