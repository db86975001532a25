#include "libqra-agent/source/local-source/qra_media.h"

#include <cstring>
#include <utility>

#include "common/util/qra_log.h"

namespace {

/// Clones a handle of the platform; null if the platform refuses.
template <class Handle>
media_h Clone(int (*pClone)(Handle*, Handle), media_h hMedia) {
    Handle hCopy = nullptr;
    const int ret = pClone(&hCopy, static_cast<Handle>(hMedia));
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: clone of a row failed, ret[%d].", ret);
        return nullptr;
    }
    return hCopy;
}

media_h CloneHandle(EMCType eType, media_h hMedia) {
    if (hMedia == nullptr) {
        return nullptr;
    }
    switch (eType) {
        case MC_TYPE_FOLDER:
            return Clone(media_folder_clone, hMedia);
        case MC_TYPE_MEDIA:
            return Clone(media_info_clone, hMedia);
        case MC_TYPE_PVR:
            return Clone(media_pvr_clone, hMedia);
        case MC_TYPE_UHD:
            return Clone(media_uhd_clone, hMedia);
        case MC_TYPE_SCSA:
            return new scsa_info_s(*static_cast<const scsa_info_s*>(hMedia));
        default:
            return hMedia;
    }
}

void DestroyHandle(EMCType eType, media_h hMedia) {
    if (hMedia == nullptr) {
        return;
    }
    switch (eType) {
        case MC_TYPE_FOLDER:
            media_folder_destroy(static_cast<media_folder_h>(hMedia));
            break;
        case MC_TYPE_MEDIA:
            media_info_destroy(static_cast<media_info_h>(hMedia));
            break;
        case MC_TYPE_PVR:
            media_pvr_destroy(static_cast<media_pvr_h>(hMedia));
            break;
        case MC_TYPE_UHD:
            media_uhd_destroy(static_cast<media_uhd_h>(hMedia));
            break;
        case MC_TYPE_SCSA:
            delete static_cast<scsa_info_s*>(hMedia);
            break;
        default:
            break;
    }
}

std::unique_ptr<char[]> CopyName(const char* pName) {
    if (pName[0] == '\0') {
        return nullptr;
    }
    const size_t nSize = std::strlen(pName) + 1;
    std::unique_ptr<char[]> pCopy(new char[nSize]);
    std::memcpy(pCopy.get(), pName, nSize);
    return pCopy;
}

}  // namespace

CMedia::CMedia(EMCType eType, const char* pName, bool bIs360, media_h hMedia)
    : m_pName(CopyName(pName)), m_hMedia(hMedia), m_eType(eType), m_bIs360(bIs360) {}

CMedia::CMedia(const CMedia& other)
    : m_pName(CopyName(other.GetName())),
      m_hMedia(CloneHandle(other.m_eType, other.m_hMedia)),
      m_eType(other.m_eType),
      m_bIs360(other.m_bIs360) {}

CMedia::CMedia(CMedia&& other) noexcept
    : m_pName(std::move(other.m_pName)),
      m_hMedia(std::exchange(other.m_hMedia, nullptr)),
      m_eType(other.m_eType),
      m_bIs360(other.m_bIs360) {}

CMedia& CMedia::operator=(CMedia other) noexcept {
    std::swap(m_pName, other.m_pName);
    std::swap(m_hMedia, other.m_hMedia);
    std::swap(m_eType, other.m_eType);
    std::swap(m_bIs360, other.m_bIs360);
    return *this;
}

CMedia::~CMedia() {
    DestroyHandle(m_eType, m_hMedia);
}

media_h CMedia::m_GetHandle(EMCType eType) const {
    if (m_eType != eType) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF_Wrapper: Unmatched EMCType[%d].", m_eType);
        return nullptr;
    }
    return m_hMedia;
}
