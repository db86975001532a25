#include "libqra-agent/playlist/m3u_playlist.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>

#include "common/util/qra_assert.h"
#include "common/util/qra_dir.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/playlist/m3u.h"
#include "libqra-agent/playlist/m3u_parser.h"
#include "libqra-agent/playlist/qra_playlist_location.h"

namespace {

/// The one name that is also its file's.
constexpr char kBackgroundMusic[] = ".bgm";
constexpr char kExtension[] = ".m3u";

/// A link that leads nowhere takes the name too: what is created through it would lie where the link says.
bool IsLink(const std::string& strPath) {
    struct stat info {};
    return lstat(strPath.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

/// A number that two lists share only if they are made within the same millisecond.
std::string GenUUID() {
    return std::to_string(static_cast<uint32_t>(CQRAUtil::GetCurrentSystemTime()));
}

std::shared_ptr<CQRAPlayListItem> MakeItem(const Segment& segment) {
    auto item = std::make_shared<CQRAPlayListItem>();
    item->m_strMediaId = segment.fileId;
    item->m_strName = segment.fileName;
    item->m_strTitle = segment.title;
    item->m_strMimeType = segment.mimeType;
    item->m_strArtist = segment.artist;
    item->m_strAlbum = segment.album;
    item->m_strGenre = segment.genre;
    item->m_strYear = segment.year;
    item->m_strThumbnailPath = segment.thumbnailUri;
    item->m_strLocationTag = segment.locationTag;
    item->m_strFormat = segment.fileFormat;
    item->m_nDuration = segment.duration;
    item->m_nAddTime = segment.addedtime;
    item->m_nModTime = segment.modTime;
    item->m_nSize = segment.fileSize;
    item->m_nPlayCount = segment.playCount;
    item->m_nSampleRate = segment.sampleRate;
    item->m_nBitResolution = segment.bitResolution;
    item->m_nBitRate = segment.bitrate;
    item->m_nMediaType = segment.mediaType;
    item->m_bDrm = segment.drm;
    return item;
}

Segment MakeSegment(const CQRAPlayListItem& item) {
    Segment segment;
    segment.fileId = item.m_strMediaId;
    segment.fileName = item.m_strName;
    segment.title = item.m_strTitle;
    segment.path = item.m_strPath;
    segment.mimeType = item.m_strMimeType;
    segment.artist = item.m_strArtist;
    segment.album = item.m_strAlbum;
    segment.genre = item.m_strGenre;
    segment.year = item.m_strYear;
    segment.thumbnailUri = item.m_strThumbnailPath;
    segment.locationTag = item.m_strLocationTag;
    segment.fileFormat = item.m_strFormat;
    segment.duration = item.m_nDuration;
    segment.addedtime = item.m_nAddTime;
    segment.modTime = item.m_nModTime;
    segment.fileSize = item.m_nSize;
    segment.playCount = item.m_nPlayCount;
    segment.sampleRate = item.m_nSampleRate;
    segment.bitResolution = item.m_nBitResolution;
    segment.bitrate = item.m_nBitRate;
    segment.mediaType = item.m_nMediaType;
    segment.drm = item.m_bDrm;
    return segment;
}

/// Empties a file to write it. Never makes one: where its drive was pulled, it would lie in the mount point.
FILE* OpenExisting(const std::string& strPath) {
    const int nFd = open(strPath.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    FILE* const file = nFd >= 0 ? fdopen(nFd, "wb") : nullptr;
    if (file == nullptr && nFd >= 0)
        close(nFd);
    return file;
}

/// Writes a text to an open file in one block, past any buffer, so that a full disk shows at once. Closes it.
bool WriteAndClose(FILE* file, const std::string& strText) {
    setvbuf(file, nullptr, _IONBF, 0);
    const bool bWritten = fwrite(strText.data(), 1, strText.size(), file) == strText.size();
    if (!bWritten)
        QRA_LOG_WARNING(QRA_TAG_COMMON, "fwrite failed.");
    const bool bFlushed = fflush(file) == 0;
    const bool bClosed = fclose(file) == 0;
    return bWritten && bFlushed && bClosed;
}

}  // namespace

M3UPlaylist::M3UPlaylist() = default;

M3UPlaylist::~M3UPlaylist() = default;

bool M3UPlaylist::m_IsValidName(const std::string& strName) {
    return strName.size() <= kMaxNameLength && strName.find('/') == std::string::npos;
}

std::string M3UPlaylist::m_GetFinalPlayListName(const std::string& strName) {
    return (strName == kBackgroundMusic ? strName : GenUUID()) + kExtension;
}

void M3UPlaylist::m_SetFile(const std::string& strDir, const std::string& strFile) {
    m_strDir = strDir;
    m_strFile = strFile;
    m_strFullPath = strDir + "/" + strFile;
}

bool M3UPlaylist::CreateNew(const std::string& strDir, const std::string& strName, int nMaxItemCount) {
    QRA_ASSERT(m_pM3U.get() == NULL && m_Items.empty());
    if (!CQRADir::DirExists(strDir.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Dir [%s] not exist!!!", strDir.c_str());
        return false;
    }
    m_nMaxItem = nMaxItemCount;
    m_strName = strName;
    m_SetFile(strDir, m_GetFinalPlayListName(strName));
    if (!m_IsValidName(strName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Invalid strName[%s].", strName.c_str());
        return false;
    }
    if (CQRAFile64::FileExists(m_strFullPath.c_str()) || IsLink(m_strFullPath)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Already exist m3u file.path[%s], name[%s].", m_strFullPath.c_str(),
                        strName.c_str());
        return false;
    }
    m_pM3U = std::make_unique<M3U>();
    if (!CQRAFile64::Create(m_strFullPath.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Create m3u file [%s] faild.", m_strFullPath.c_str());
        return false;
    }
    m_pM3U->params["#EXT-X-NAME"] = strName;
    m_pM3U->SetCount(nMaxItemCount);
    return Flush();
}

bool M3UPlaylist::Load(const std::string& strDir, const std::string& strFile) {
    QRA_ASSERT(m_Items.empty());
    if (m_pM3U == nullptr) {
        m_pM3U = std::make_unique<M3U>();
        m_SetFile(strDir, strFile);
    }
    if (!CQRAFile64::FileExists(m_strFullPath.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Load error.");
        m_pM3U.reset();
        return false;
    }
    std::ifstream file(m_strFullPath, std::ios::in | std::ios::binary);
    if (!file.is_open()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Load err!! m3u [%s].", m_strFullPath.c_str());
        m_pM3U.reset();
        return false;
    }
    M3UParser().parse(file, m_pM3U.get());
    m_LoadItems();
    m_strName = m_pM3U->GetName();
    m_nMaxItem = m_pM3U->GetCount();
    return true;
}

void M3UPlaylist::m_LoadItems() {
    const bool bOnUsb = qra_is_on_usb(m_strDir);
    m_Items.reserve(m_pM3U->segments.size());
    for (const Segment& segment : m_pM3U->segments) {
        m_Items.push_back(MakeItem(segment));
        m_Items.back()->m_strPath = m_GetFinalItemPath(segment.path, bOnUsb);
    }
}

// A drive may come back under another mount path. Its items lie flat beside the list then. An entry without
// a path has none under any mount path either.
std::string M3UPlaylist::m_GetFinalItemPath(const std::string& strItemPath, bool bOnUsb) const {
    if (!bOnUsb || strItemPath.empty() || strItemPath.find(m_strDir) != std::string::npos)
        return strItemPath;
    return m_strDir + "/" + strItemPath.substr(strItemPath.rfind('/') + 1);
}

int M3UPlaylist::GetItemCount() const {
    return static_cast<int>(m_Items.size());
}

bool M3UPlaylist::AddItem(const CQRAPlayListItem* pDataItem) {
    QRA_ASSERT(m_pM3U.get() != NULL && pDataItem != NULL);
    if (GetItemCount() >= m_nMaxItem) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: count[%d] >= %d.", GetItemCount(), m_nMaxItem);
        return false;
    }
    m_pM3U->segments.push_back(MakeSegment(*pDataItem));
    m_Items.push_back(std::make_shared<CQRAPlayListItem>(*pDataItem));
    return true;
}

bool M3UPlaylist::AddItem(const std::vector<CQRAPlayListItem>& items) {
    const auto nTotal = static_cast<int64_t>(m_Items.size() + items.size());
    if (!items.empty() && nTotal > m_nMaxItem) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: count[%d] + %zu >= %d.", GetItemCount(), items.size(),
                        m_nMaxItem);
        return false;
    }
    return std::all_of(items.begin(), items.end(),
                       [this](const CQRAPlayListItem& item) { return AddItem(&item); });
}

bool M3UPlaylist::m_CheckIndex(int nIndex) const {
    if (nIndex >= 0 && nIndex < GetItemCount())
        return true;
    QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: Invalid index[%d], count[%d].", nIndex, GetItemCount());
    return false;
}

bool M3UPlaylist::DeleteItem(int nIndex) {
    if (!m_CheckIndex(nIndex))
        return false;
    if (m_pM3U->DeleteSegmentByIdx(nIndex) != 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: DeleteSegments failed, nIndex[%d].", nIndex);
        return false;
    }
    m_Items.erase(m_Items.begin() + nIndex);
    return true;
}

bool M3UPlaylist::DeleteItem(const std::string& strMediaId) {
    if (m_pM3U == nullptr || !m_pM3U->DeleteSegmentByMediaId(strMediaId)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "DeleteSegments[%s] failed.", strMediaId.c_str());
        return false;
    }
    const auto it = std::find_if(m_Items.begin(), m_Items.end(),
                                 [&](const auto& item) { return item->m_strMediaId == strMediaId; });
    if (it != m_Items.end())
        m_Items.erase(it);
    return true;
}

bool M3UPlaylist::DeleteItem(std::vector<int> indices) {
    if (indices.empty()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: Empty input.");
        return false;
    }
    std::sort(indices.begin(), indices.end());
    if (indices.front() < 0 || indices.back() >= GetItemCount()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: Exist invalid index, count[%d].", GetItemCount());
        return false;
    }
    // Half of the entries would be gone by the time that the second of two equal indices is met.
    const bool bUnique = std::adjacent_find(indices.begin(), indices.end()) == indices.end();
    if (!bUnique || m_pM3U->DeleteSegments(indices) != 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: DeleteSegments failed.");
        return false;
    }
    int nErased = 0;
    for (const int nIndex : indices)
        m_Items.erase(m_Items.begin() + (nIndex - nErased++));
    return true;
}

CQRAPlayListItem* M3UPlaylist::GetItem(int nIndex) const {
    return m_CheckIndex(nIndex) ? m_Items[nIndex].get() : nullptr;
}

std::shared_ptr<const CQRAPlayListItem> M3UPlaylist::GetSharedItem(int nIndex) const {
    return m_CheckIndex(nIndex) ? m_Items[nIndex] : nullptr;
}

bool M3UPlaylist::Flush() {
    QRA_ASSERT(m_pM3U.get() != NULL);
    const std::string strText = m_pM3U->Dump();
    if (!CQRAFile64::FileExists(m_strFullPath.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "m3u[%s] not exists!!", m_strFullPath.c_str());
        return false;
    }
    return m_Write(strText);
}

// The old content is gone once the file is open. Half a list would look like a whole one, so that a file that
// could not be written to its end goes too.
bool M3UPlaylist::m_Write(const std::string& strText) const {
    FILE* file = OpenExisting(m_strFullPath);
    if (file == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "fopen [%s] failed.", m_strFullPath.c_str());
        return false;
    }
    if (WriteAndClose(file, strText))
        return true;
    if (CQRAFile64::Remove(m_strFullPath.c_str()))
        QRA_LOG_TRACE(QRA_TAG_COMMON, "remove [%s] failed.", m_strFullPath.c_str());
    return false;
}

bool M3UPlaylist::Rename(const std::string& strName) {
    if (!m_IsValidName(strName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: Invalid name[%s].", strName.c_str());
        return false;
    }
    if (m_pM3U == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: m_pM3U is NULL.");
        return false;
    }
    m_pM3U->params["#EXT-X-NAME"] = strName;
    if (!Flush()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "M3U-PLAYLIST: m_Write failed.");
        return false;
    }
    m_strName = strName;
    return true;
}

bool M3UPlaylist::Remove() {
    if (CQRAFile64::FileExists(m_strFullPath.c_str())) {
        QRA_LOG_INFO(QRA_TAG_COMMON, "Remove m3u file [%s].", m_strFullPath.c_str());
        if (!CQRAFile64::Remove(m_strFullPath.c_str())) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Remove m3u file [%s] faild.", m_strFullPath.c_str());
            return false;
        }
    }
    m_ClearList();
    return true;
}

void M3UPlaylist::m_ClearList() {
    m_Items.clear();
}
