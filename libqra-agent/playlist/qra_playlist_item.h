#ifndef QRA_AGENT_PLAYLIST_QRA_PLAYLIST_ITEM_H
#define QRA_AGENT_PLAYLIST_QRA_PLAYLIST_ITEM_H

#include <cstdint>
#include <string>

/// An item of a playlist, as all but the file's reader and writer see it. A value, copied whole.
class CQRAPlayListItem {
public:
    CQRAPlayListItem() = default;
    CQRAPlayListItem(const CQRAPlayListItem&) = default;
    CQRAPlayListItem& operator=(const CQRAPlayListItem&) = default;
    virtual ~CQRAPlayListItem() = default;

    std::string m_strMediaId;  ///< identifies the item inside the list
    std::string m_strName;     ///< file name, for display
    std::string m_strTitle;
    std::string m_strPath;  ///< the media file with its directory
    std::string m_strMimeType;
    std::string m_strArtist;
    std::string m_strAlbum;
    std::string m_strGenre;
    std::string m_strYear;
    std::string m_strThumbnailPath;
    std::string m_strLocationTag;
    std::string m_strFormat;
    uint64_t m_nDuration = 0;
    int32_t m_nAddTime = 0;
    int32_t m_nModTime = 0;
    int64_t m_nSize = 0;
    int32_t m_nPlayCount = 0;
    int32_t m_nSampleRate = 0;
    int32_t m_nBitResolution = 0;
    int32_t m_nBitRate = 0;
    int32_t m_nMediaType = 0;  ///< a qra_media_type_e
    bool m_bDrm = false;
};

#endif
