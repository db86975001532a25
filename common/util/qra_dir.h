#ifndef QRA_COMMON_UTIL_QRA_DIR_H
#define QRA_COMMON_UTIL_QRA_DIR_H

#include <dirent.h>

#include <cstddef>

/// A sorted listing of one directory, without "." and "..". Belongs to one thread at a time.
class CQRADir {
public:
    CQRADir() = default;
    virtual ~CQRADir();
    CQRADir(const CQRADir&) = delete;
    CQRADir& operator=(const CQRADir&) = delete;

    /// Opens a directory and reads its entries; false if that fails or one is open already.
    bool Open(const char* name);
    /// Reads the entries of the open directory again, and goes back to the first.
    bool Update();
    /// Goes back to the first entry; false without an open directory.
    bool SetPositionTop();
    virtual void Destroy();

    bool FlagCreate() const { return m_bCreated; }
    int GetEntryCount() const { return m_nEntryCount; }
    /// Name of an entry, null beyond the last; valid until the next Update() or Destroy().
    const char* GetEntryName(int nIndex) const;
    /// The open directory's name, cut to kMaxName bytes.
    const char* GetName() const { return m_szName; }

    /// Makes a directory; true also if it is there already.
    static bool Create(const char* name);
    static bool Remove(const char* name);
    static bool DirExists(const char* name);

    static constexpr size_t kMaxName = 255;

private:
    void m_FreeEntries();

    dirent** m_ppEntries = nullptr;
    bool m_bCreated = false;
    char m_szName[kMaxName + 1] = {};
    DIR* m_pDir = nullptr;
    int m_nPosition = 0;
    int m_nEntryCount = 0;
};

#endif
