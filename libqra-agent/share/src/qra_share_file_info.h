#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_FILE_INFO_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_FILE_INFO_H

#include <qra/qra_types.h>

#include <ctime>
#include <string>

class IQRAAgentBase;

/**
 * What a batch job knows of the selected item it is at: a cache of values, read through the agent.
 *
 * A getter gives the cache; a setter reads its value from the agent into the cache, and is false, with a log
 * line, where the agent has none. The cache is not cleared between items: a value that an item does not have
 * stays that of the item before it.
 *
 * The agent handle outlives this object. Belongs to the job's thread.
 */
class CQRAShareFileInfo {
public:
    /// A null handle, or one without an agent, ends the process.
    explicit CQRAShareFileInfo(CQRAAgentHandle* pHandle);
    virtual ~CQRAShareFileInfo() = default;
    CQRAShareFileInfo(const CQRAShareFileInfo&) = delete;
    CQRAShareFileInfo& operator=(const CQRAShareFileInfo&) = delete;

    /// Goes to a selected item, given that the agent's cursor walks the selection.
    bool MoveToIndex(int nIndex);

    bool SetFileName();
    bool SetFilePath();
    bool SetMediaId();
    bool SetThumbnailPath();
    bool SetTitle();
    bool SetMimeType();
    bool SetArtist();
    bool SetAlbum();
    bool SetGenre();
    bool SetYear();
    bool SetLocationTag();
    bool SetFormat();
    bool SetPlayCount();
    bool SetSamplerate();
    bool SetBitResolition();
    bool SetBitrate();
    bool SetFileType();
    bool SetModTime();
    bool SetDuration();
    bool SetAddTime();
    bool SetFileSize();
    bool SetLockStatus();
    bool SetIsDrm();

    const std::string& GetFileName() const { return m_strFileName; }
    const std::string& GetFilePath() const { return m_strFilePath; }
    const std::string& GetMediaId() const { return m_strMediaId; }
    const std::string& GetThumbnailPath() const { return m_strThumbnailPath; }
    const std::string& GetTitle() const { return m_strTitle; }
    const std::string& GetMimeType() const { return m_strMimeType; }
    const std::string& GetArtist() const { return m_strArtist; }
    const std::string& GetAlbum() const { return m_strAlbum; }
    const std::string& GetGenre() const { return m_strGenre; }
    const std::string& GetYear() const { return m_strYear; }
    const std::string& GetLocationTag() const { return m_strLocationTag; }
    const std::string& GetFormat() const { return m_strFormat; }
    int GetPlayCount() const { return m_nPlayCount; }
    int GetSamplerate() const { return m_nSamplerate; }
    int GetBitResolition() const { return m_nBitResolition; }
    int GetBitrate() const { return m_nBitrate; }
    /// A qra_media_type_e, or -1 as long as none was read.
    int GetFileType() const { return m_nFileType; }
    time_t GetModTime() const { return m_nModTime; }
    time_t GetAddTime() const { return m_nAddTime; }
    unsigned long long GetDuration() const { return m_llDuration; }
    unsigned long long GetFileSize() const { return m_llFileSize; }
    bool GetLockStatus() const { return m_bLockStatus; }
    bool GetIsDrm() const { return m_bIsDrm; }

private:
    bool m_ReadText(const char* szKey, std::string& strValue, const char* szFailure);
    template <class T>
    bool m_ReadNumber(const char* szKey, T& value, const char* szFailure);

    CQRAAgentHandle* const m_pHandle;
    IQRAAgentBase* const m_pAgent;
    std::string m_strFileName;
    std::string m_strFilePath;
    std::string m_strMediaId;
    std::string m_strThumbnailPath;
    std::string m_strTitle;
    std::string m_strMimeType;
    std::string m_strArtist;
    std::string m_strAlbum;
    std::string m_strGenre;
    std::string m_strYear;
    std::string m_strLocationTag;
    std::string m_strFormat;
    int m_nPlayCount = 0;
    int m_nSamplerate = 0;
    int m_nBitResolition = 0;
    int m_nBitrate = 0;
    int m_nFileType = -1;
    time_t m_nModTime = 0;
    time_t m_nAddTime = 0;
    unsigned long long m_llDuration = 0;
    unsigned long long m_llFileSize = 0;
    bool m_bLockStatus = false;
    bool m_bIsDrm = false;
};

/// Reads into a file info what a kind of job needs of an item, and nothing else.
class CQRAShareFileBuilder {
public:
    /// `pFileInfo` stays the caller's.
    explicit CQRAShareFileBuilder(CQRAShareFileInfo* pFileInfo) : m_pFileInfo(pFileInfo) {}

    /// False if a value that the job needs cannot be read, or for an unknown kind of job.
    bool Build(qra_processor_type_e eProcessType, qra_dev_type_e eDevType);

private:
    bool m_BuildDeleteFileInfo();
    bool m_BuildCopyFileInfo();
    bool m_BuildDLNAFileInfo(qra_dev_type_e eDevType);
    bool m_BuildLockFileInfo();
    bool m_BuildPlayListInfo();
    bool m_BuildDelPlayListItemInfo();
    bool m_BuildAddPlayListItemInfo();

    CQRAShareFileInfo* const m_pFileInfo;
};

#endif
