#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_H

#include <deque>
#include <memory>
#include <string>

#include "media_content.h"

/// Which kind of handle a CMedia holds.
enum EMCType {
    MC_TYPE_NONE = 0,
    MC_TYPE_FOLDER = 1,
    MC_TYPE_MEDIA = 2,
    MC_TYPE_PVR = 3,
    MC_TYPE_UHD = 4,
    MC_TYPE_SCSA = 5,
    MC_TYPE_GROUP = 6
};

/// A platform handle, or an scsa_info_s.
using media_h = void*;

/// What is known of packaged content, for which the platform has no handle.
struct scsa_info_s {
    int nMediaType = 11;
    std::string strPath;
    std::string strMediaId;
};

/**
 * One entry of a list: a kind, a name, and the platform's handle of the row.
 *
 * Owns its handle; a copy holds a clone of it. The handles of MC_TYPE_NONE and MC_TYPE_GROUP are neither
 * cloned nor destroyed. A list has one for each of its rows, so the object is kept small. Belongs to one
 * thread at a time.
 */
class CMedia {
public:
    CMedia() = default;
    /// Takes over the handle, which is of the kind that eType names, and copies the name.
    CMedia(EMCType eType, const char* pName, bool bIs360, media_h hMedia);
    /// A handle that the platform does not clone is logged, and the copy holds none.
    CMedia(const CMedia& other);
    CMedia(CMedia&& other) noexcept;
    CMedia& operator=(CMedia other) noexcept;
    ~CMedia();

    EMCType GetType() const { return m_eType; }
    /// File name of a media item, name of a folder or group, else empty.
    const char* GetName() const { return m_pName ? m_pName.get() : ""; }
    bool Is360() const { return m_bIs360; }
    bool HasHandle() const { return m_hMedia != nullptr; }

    // The handle, still owned by this object. One of another kind is logged and null.
    media_folder_h GetFolder() const { return static_cast<media_folder_h>(m_GetHandle(MC_TYPE_FOLDER)); }
    media_info_h GetMedia() const { return static_cast<media_info_h>(m_GetHandle(MC_TYPE_MEDIA)); }
    media_pvr_h GetPVR() const { return static_cast<media_pvr_h>(m_GetHandle(MC_TYPE_PVR)); }
    media_uhd_h GetUHD() const { return static_cast<media_uhd_h>(m_GetHandle(MC_TYPE_UHD)); }
    const scsa_info_s* GetSCSA() const { return static_cast<const scsa_info_s*>(m_GetHandle(MC_TYPE_SCSA)); }

private:
    media_h m_GetHandle(EMCType eType) const;

    std::unique_ptr<char[]> m_pName;
    media_h m_hMedia = nullptr;
    EMCType m_eType = MC_TYPE_NONE;
    bool m_bIs360 = false;
};

/// The rows of a list, in the order in which they came; an entry's key is its position.
using MCContentList = std::deque<CMedia>;

#endif
