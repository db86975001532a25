#ifndef QRA_AGENT_PLAYLIST_M3U_H
#define QRA_AGENT_PLAYLIST_M3U_H

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

/// One entry of a playlist file: the private record of its "#EXTINF" line, and the line behind it.
struct Segment {
    int32_t bitrate = 0;
    int32_t sampleRate = 0;
    int32_t playCount = 0;
    int32_t bitResolution = 0;
    int32_t mediaType = 0;
    int32_t modTime = 0;
    int32_t addedtime = 0;
    bool drm = false;
    int64_t fileSize = 0;
    uint64_t duration = 0;
    std::string fileFormat;
    std::string thumbnailUri;
    std::string fileName;
    std::string year;    ///< of a loaded entry the number's low byte, whatever it is, also NUL
    std::string fileId;  ///< the media id, by which an entry is found
    std::string path;
    std::string mimeType;
    std::string locationTag;
    std::string title;
    std::string uri;  ///< the line behind the record; empty for what this system writes
    std::string artist;
    std::string album;
    std::string genre;
};

/**
 * A playlist file in memory, and its writer. M3UParser is the reader; docs/playlist-format.md tells the
 * format.
 *
 * Texts are bytes: nothing is escaped, checked or converted, and nothing is limited but by the file's size.
 * Values only, no lock: belongs to one thread at a time.
 */
class M3U {
public:
    using Attributes = std::map<std::string, std::string>;

    /// The display name, the value of "#EXT-X-NAME"; "" without one.
    std::string GetName() const;
    /// The most items that the list may hold, the value of "#EXT-X-COUNT"; 0 without one.
    int GetCount() const;
    void SetCount(int nCount);
    /// The value of a simple tag by its full name. 0, or -1 if the file has no such tag.
    int GetSimpleParam(const std::string& key, std::string& value) const;

    // Entries by their position. -1, and nothing changed, for one that is out of range; else 0.

    int GetSegmentByIdx(int index, Segment& out) const;
    int DeleteSegmentByIdx(int index);
    /// Removes the first entry with this media id; false if there is none.
    bool DeleteSegmentByMediaId(const std::string& id);
    /// Removes the first entry with this line behind its record, if there is one.
    void DeleteSegmentByUri(const std::string& uri);
    /// Removes several entries. -1 at the first index that is out of range or comes twice; what was removed
    /// before it stays removed.
    int DeleteSegments(std::vector<int> indices);

    /// The whole file as text.
    std::string Dump() const;
    /// The form of a duration: integer digits, of which zero has none, a point, and up to four digits of the
    /// fraction. For finite values that are not negative.
    std::string _float_to_string(float value) const;

    bool bVariant = false;          ///< `variants` is worth writing
    bool bEndList = false;          ///< ends with "#EXT-X-ENDLIST"
    bool bMediaSequence = false;    ///< "#EXT-X-MEDIA-SEQUENCE" was seen
    bool bVersion = false;          ///< "#EXT-X-VERSION" was seen
    bool bKey = false;              ///< `key` is worth writing
    bool bTargetDuration = false;   ///< "#EXT-X-TARGETDURATION" was seen
    bool bAllowCache = false;       ///< "#EXT-X-ALLOW-CACHE" was seen
    bool bByteRange = false;        ///< "#EXT-X-BYTERANGE" was handled
    bool bProgramDateTime = false;  ///< "#EXT-X-PROGRAM-DATE-TIME" was handled
    bool bPlaylistType = false;     ///< "#EXT-X-PLAYLIST-TYPE" was handled
    std::list<Segment> segments;    ///< in file order
    Attributes key;                 ///< attributes of all "#EXT-X-KEY" lines
    std::vector<Attributes> variants;
    Attributes params;  ///< every simple tag as written: what the writer writes, unlike the numbers below
    int32_t byteRangeLength = 0;
    int32_t byteRangeOffset = 0;
    int32_t targetDuration = 0;
    int32_t mediaSequence = 0;
    std::string programDateTime;
    std::string allowCache;
    std::string playlistType;
    int32_t version = 0;

private:
    std::list<Segment>::iterator m_At(int index);
};

#endif
