#include "libqra-agent/share/src/qra_share_file_info.h"

#include <cstdlib>
#include <memory>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/agent/src/qra_handler.h"

namespace {

constexpr char kAlbumFailure[] = "Get Album faild";
constexpr char kFileTypeFailure[] = "Get FileType faild";
constexpr char kModTimeFailure[] = "Get mod time faild";
constexpr char kLockStatusFailure[] = "Get lock status faild";

CQRAAgentHandle* Checked(CQRAAgentHandle* pHandle) {
    QRA_ASSERT(pHandle != NULL);
    return pHandle;
}

}  // namespace

CQRAShareFileInfo::CQRAShareFileInfo(CQRAAgentHandle* pHandle)
    : m_pHandle(Checked(pHandle)), m_pAgent(pHandle->GetAgentInstance()) {
    QRA_ASSERT(m_pAgent != NULL);
}

bool CQRAShareFileInfo::MoveToIndex(int nIndex) {
    const qra_error_code_e eCode = m_pAgent->MoveToIndex(m_pHandle, nIndex);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Move to selected item[%d] faild, error code[%d]!", nIndex, eCode);
        return false;
    }
    return true;
}

bool CQRAShareFileInfo::m_ReadText(const char* szKey, std::string& strValue, const char* szFailure) {
    char* pText = nullptr;
    const qra_error_code_e eCode = m_pAgent->GetItemValue(m_pHandle, szKey, &pText);
    const std::unique_ptr<char, decltype(&free)> text(pText, &free);
    if (eCode != QRA_ERROR_NONE || text == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "%s, error code[%d]!", szFailure, eCode);
        return false;
    }
    strValue = text.get();
    return true;
}

template <class T>
bool CQRAShareFileInfo::m_ReadNumber(const char* szKey, T& value, const char* szFailure) {
    const qra_error_code_e eCode = m_pAgent->GetItemValue(m_pHandle, szKey, &value);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "%s, error code[%d]!", szFailure, eCode);
        return false;
    }
    return true;
}

bool CQRAShareFileInfo::SetFileName() {
    return m_ReadText("DISPLAY_NAME", m_strFileName, "Get FileName faild ");
}

bool CQRAShareFileInfo::SetFilePath() {
    return m_ReadText("FILE_PATH", m_strFilePath, "Get FilePath faild");
}

bool CQRAShareFileInfo::SetMediaId() {
    return m_ReadText("ID_QRA", m_strMediaId, "Get mediaId faild");
}

bool CQRAShareFileInfo::SetThumbnailPath() {
    return m_ReadText("THUMBNAIL_PATH", m_strThumbnailPath, "Get ThumbnailPath faild");
}

bool CQRAShareFileInfo::SetTitle() {
    return m_ReadText("TITLE", m_strTitle, "Get Title faild");
}

bool CQRAShareFileInfo::SetMimeType() {
    return m_ReadText("MIME_TYPE", m_strMimeType, "Get MimeType faild");
}

bool CQRAShareFileInfo::SetArtist() {
    return m_ReadText("ARTIST", m_strArtist, "Get Artist faild");
}

bool CQRAShareFileInfo::SetAlbum() {
    return m_ReadText("ALBUM", m_strAlbum, kAlbumFailure);
}

bool CQRAShareFileInfo::SetGenre() {
    return m_ReadText("GENRE", m_strGenre, kAlbumFailure);
}

bool CQRAShareFileInfo::SetYear() {
    return m_ReadText("YEAR", m_strYear, kAlbumFailure);
}

bool CQRAShareFileInfo::SetLocationTag() {
    return m_ReadText("LOCATION_TAG", m_strLocationTag, kAlbumFailure);
}

bool CQRAShareFileInfo::SetFormat() {
    return m_ReadText("FORMAT", m_strFormat, kAlbumFailure);
}

bool CQRAShareFileInfo::SetPlayCount() {
    return m_ReadNumber("PLAYED_COUNT", m_nPlayCount, kFileTypeFailure);
}

bool CQRAShareFileInfo::SetSamplerate() {
    return m_ReadNumber("SAMPLERATE", m_nSamplerate, kFileTypeFailure);
}

bool CQRAShareFileInfo::SetBitResolition() {
    return m_ReadNumber("BIT_RESOLUTION", m_nBitResolition, kFileTypeFailure);
}

bool CQRAShareFileInfo::SetBitrate() {
    return m_ReadNumber("BITRATE", m_nBitrate, kFileTypeFailure);
}

bool CQRAShareFileInfo::SetFileType() {
    return m_ReadNumber("MEDIA_TYPE", m_nFileType, kFileTypeFailure);
}

bool CQRAShareFileInfo::SetModTime() {
    return m_ReadNumber("MODIFIED_TIME", m_nModTime, kModTimeFailure);
}

bool CQRAShareFileInfo::SetDuration() {
    return m_ReadNumber("DURATION", m_llDuration, kModTimeFailure);
}

bool CQRAShareFileInfo::SetAddTime() {
    unsigned long long llTime = 0;
    if (!m_ReadNumber("ADDED_TIME", llTime, kModTimeFailure)) {
        return false;
    }
    m_nAddTime = static_cast<time_t>(llTime);
    return true;
}

bool CQRAShareFileInfo::SetFileSize() {
    return m_ReadNumber("SIZE", m_llFileSize, "Get file size faild");
}

bool CQRAShareFileInfo::SetLockStatus() {
    return m_ReadNumber("CONTENT_LOCK", m_bLockStatus, kLockStatusFailure);
}

bool CQRAShareFileInfo::SetIsDrm() {
    return m_ReadNumber("IS_DRM", m_bIsDrm, kLockStatusFailure);
}

bool CQRAShareFileBuilder::Build(qra_processor_type_e eProcessType, qra_dev_type_e eDevType) {
    switch (eProcessType) {
        case QRA_PROCESSOR_TYPE_DELETE:
            return m_BuildDeleteFileInfo();
        case QRA_PROCESSOR_TYPE_COPY:
            return m_BuildCopyFileInfo();
        case QRA_PROCESSOR_TYPE_DLNA:
            return m_BuildDLNAFileInfo(eDevType);
        case QRA_PROCESSOR_TYPE_LOCK:
            return m_BuildLockFileInfo();
        case QRA_PROCESSOR_TYPE_PLAYLIST_DELETE:
            return m_BuildPlayListInfo();
        case QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_DELETE:
            return m_BuildDelPlayListItemInfo();
        case QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD:
            return m_BuildAddPlayListItemInfo();
        default:
            QRA_LOG_WARNING(QRA_TAG_SEND, "Unkown share type.");
            return false;
    }
}

bool CQRAShareFileBuilder::m_BuildDeleteFileInfo() {
    return m_pFileInfo->SetFileType() && m_pFileInfo->SetFileName() && m_pFileInfo->SetFilePath() &&
           m_pFileInfo->SetMediaId();
}

bool CQRAShareFileBuilder::m_BuildCopyFileInfo() {
    return m_pFileInfo->SetFileType() && m_pFileInfo->SetFileName() && m_pFileInfo->SetFilePath() &&
           m_pFileInfo->SetModTime() && m_pFileInfo->SetFileSize();
}

bool CQRAShareFileBuilder::m_BuildDLNAFileInfo(qra_dev_type_e eDevType) {
    if (!m_pFileInfo->SetFileType() || !m_pFileInfo->SetFileSize() || !m_pFileInfo->SetFileName()) {
        return false;
    }
    switch (eDevType) {
        case QRA_DEV_TYPE_DLNA_EXT:
            return m_pFileInfo->SetModTime() && m_pFileInfo->SetMediaId();
        case QRA_DEV_TYPE_DLNA:
            return m_pFileInfo->SetFilePath();
        case QRA_DEV_TYPE_PTP:
            return m_pFileInfo->SetThumbnailPath();
        default:
            return true;
    }
}

bool CQRAShareFileBuilder::m_BuildLockFileInfo() {
    return m_BuildDeleteFileInfo() && m_pFileInfo->SetLockStatus();
}

bool CQRAShareFileBuilder::m_BuildPlayListInfo() {
    return m_pFileInfo->SetFileType() && m_pFileInfo->SetFileName() && m_pFileInfo->SetFilePath();
}

bool CQRAShareFileBuilder::m_BuildDelPlayListItemInfo() {
    return m_BuildDeleteFileInfo();
}

// No failure counts: a piece of music has no width, a picture no artist, and an item is added with what it
// has.
bool CQRAShareFileBuilder::m_BuildAddPlayListItemInfo() {
    constexpr bool (CQRAShareFileInfo::*kSetters[])() = {
        &CQRAShareFileInfo::SetFileType,      &CQRAShareFileInfo::SetMediaId,
        &CQRAShareFileInfo::SetTitle,         &CQRAShareFileInfo::SetFileName,
        &CQRAShareFileInfo::SetFilePath,      &CQRAShareFileInfo::SetMimeType,
        &CQRAShareFileInfo::SetArtist,        &CQRAShareFileInfo::SetAlbum,
        &CQRAShareFileInfo::SetGenre,         &CQRAShareFileInfo::SetYear,
        &CQRAShareFileInfo::SetDuration,      &CQRAShareFileInfo::SetFileSize,
        &CQRAShareFileInfo::SetModTime,       &CQRAShareFileInfo::SetAddTime,
        &CQRAShareFileInfo::SetThumbnailPath, &CQRAShareFileInfo::SetPlayCount,
        &CQRAShareFileInfo::SetLocationTag,   &CQRAShareFileInfo::SetSamplerate,
        &CQRAShareFileInfo::SetBitResolition, &CQRAShareFileInfo::SetBitrate,
        &CQRAShareFileInfo::SetFormat,        &CQRAShareFileInfo::SetIsDrm,
    };
    for (const auto set : kSetters) {
        (m_pFileInfo->*set)();
    }
    return true;
}
