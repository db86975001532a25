#ifndef QRA_AGENT_PLAYLIST_M3U_PLAYLIST_H
#define QRA_AGENT_PLAYLIST_M3U_PLAYLIST_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "libqra-agent/playlist/qra_playlist_item.h"

class M3U;

/**
 * One playlist file, its display name and its items.
 *
 * Every change goes to two mirrors, the entries of the file and the items that others see. They differ in the
 * paths: items of a list that lies on a USB drive have the drive's present mount path, the file keeps what it
 * says. Nothing reaches the disk before Flush(), which CreateNew() and Rename() call themselves. A write is
 * not atomic: one that fails leaves no file.
 *
 * Failures are false with a log line. No lock: one playlist may be held by the manager, by open handles and
 * by sources at once, and who changes it must know that nobody else uses it meanwhile. Only an item itself
 * may be read while the list changes, by who holds it through GetSharedItem().
 */
class M3UPlaylist {
public:
    M3UPlaylist();
    /// Writes nothing.
    virtual ~M3UPlaylist();
    M3UPlaylist(const M3UPlaylist&) = delete;
    M3UPlaylist& operator=(const M3UPlaylist&) = delete;

    /// Makes the file of a new, empty list. A name has at most 256 bytes and no "/". A list has one file:
    /// a second CreateNew() ends the process.
    bool CreateNew(const std::string& strDir, const std::string& strName, int nMaxItemCount);
    /// Reads a file, once.
    bool Load(const std::string& strDir, const std::string& strFile);

    /// Adds a copy at the end; false for a full list. Only after CreateNew() or Load(), and not null:
    /// anything else ends the process.
    bool AddItem(const CQRAPlayListItem* pDataItem);
    /// Adds all or, where they do not all fit, none.
    bool AddItem(const std::vector<CQRAPlayListItem>& items);
    bool DeleteItem(int nIndex);
    /// Deletes the first item with this media id.
    bool DeleteItem(const std::string& strMediaId);
    bool DeleteItem(std::vector<int> indices);
    /// An item, until it is deleted; null out of range.
    CQRAPlayListItem* GetItem(int nIndex) const;
    /// An item for as long as the caller wants it; null out of range.
    std::shared_ptr<const CQRAPlayListItem> GetSharedItem(int nIndex) const;

    /// Brings the list to its file, which has to be there.
    bool Flush();
    /// Changes the display name and writes the list. The file keeps its own name.
    bool Rename(const std::string& strName);
    /// Removes the file, if it is there, and the items.
    bool Remove();

    // What those need that show the list as a tile.

    /// Number of items.
    virtual int GetItemCount() const;
    /// The directory that holds the file; on a USB drive, its mount path.
    virtual std::string GetDir() const { return m_strDir; }
    /// The name for display.
    virtual std::string GetName() const { return m_strName; }
    /// The file with its directory.
    virtual std::string GetFullPath() const { return m_strFullPath; }

    /// The file's name.
    std::string GetFile() const { return m_strFile; }
    /// The most items that the list may hold.
    int GetMaxItemCount() const { return m_nMaxItem; }

    static constexpr size_t kMaxNameLength = 256;

private:
    static bool m_IsValidName(const std::string& strName);
    static std::string m_GetFinalPlayListName(const std::string& strName);
    void m_SetFile(const std::string& strDir, const std::string& strFile);
    void m_LoadItems();
    std::string m_GetFinalItemPath(const std::string& strItemPath, bool bOnUsb) const;
    bool m_CheckIndex(int nIndex) const;
    bool m_Write(const std::string& strText) const;
    void m_ClearList();

    std::string m_strDir;
    std::string m_strFile;
    std::string m_strName;
    std::string m_strFullPath;
    std::unique_ptr<M3U> m_pM3U;  ///< null until the file was made or read
    std::vector<std::shared_ptr<CQRAPlayListItem>> m_Items;
    int m_nMaxItem = 0;
};

#endif
