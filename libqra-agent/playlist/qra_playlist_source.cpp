#include "libqra-agent/playlist/qra_playlist_source.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>
#include <variant>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"

namespace {

constexpr char kThreadName[] = "qra_source_playlist";

struct NumberField {
    std::string_view name;
    std::variant<int32_t CQRAPlayListItem::*, int64_t CQRAPlayListItem::*, uint64_t CQRAPlayListItem::*,
                 bool CQRAPlayListItem::*>
        number;
};

constexpr NumberField kNumberFields[] = {
    {"MEDIA_TYPE", &CQRAPlayListItem::m_nMediaType},  {"PLAYED_COUNT", &CQRAPlayListItem::m_nPlayCount},
    {"SAMPLERATE", &CQRAPlayListItem::m_nSampleRate}, {"BIT_RESOLUTION", &CQRAPlayListItem::m_nBitResolution},
    {"BITRATE", &CQRAPlayListItem::m_nBitRate},       {"MODIFIED_TIME", &CQRAPlayListItem::m_nModTime},
    {"DURATION", &CQRAPlayListItem::m_nDuration},     {"SIZE", &CQRAPlayListItem::m_nSize},
    {"ADDED_TIME", &CQRAPlayListItem::m_nAddTime},    {"IS_DRM", &CQRAPlayListItem::m_bDrm},
};

struct TextField {
    std::string_view name;
    std::string CQRAPlayListItem::*text;
};

constexpr TextField kTextFields[] = {
    {"ID_QRA", &CQRAPlayListItem::m_strMediaId},
    {"TITLE", &CQRAPlayListItem::m_strTitle},
    {"DISPLAY_NAME", &CQRAPlayListItem::m_strName},
    {"FILE_PATH", &CQRAPlayListItem::m_strPath},
    {"MIME_TYPE", &CQRAPlayListItem::m_strMimeType},
    {"ARTIST", &CQRAPlayListItem::m_strArtist},
    {"ALBUM", &CQRAPlayListItem::m_strAlbum},
    {"GENRE", &CQRAPlayListItem::m_strGenre},
    {"YEAR", &CQRAPlayListItem::m_strYear},
    {"THUMBNAIL_PATH", &CQRAPlayListItem::m_strThumbnailPath},
    {"LOCATION_TAG", &CQRAPlayListItem::m_strLocationTag},
    {"FORMAT", &CQRAPlayListItem::m_strFormat},
};

/// The field of this name, or null.
template <class Field, size_t size>
const Field* Find(const Field (&fields)[size], const std::string& strName) {
    const auto it = std::find_if(std::begin(fields), std::end(fields),
                                 [&](const Field& field) { return field.name == strName; });
    return it != std::end(fields) ? it : nullptr;
}

bool IsNull(const void* pValue) {
    if (pValue == nullptr)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid param.");
    return pValue == nullptr;
}

bool UnknownField(const std::string& strField) {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Unkown field[%s].", strField.c_str());
    return false;
}

}  // namespace

CQRAPlaylistSource::~CQRAPlaylistSource() {
    QRA_ASSERT(m_bIsOpen == false);
}

bool CQRAPlaylistSource::Open() {
    m_bRunning = true;
    m_bIsOpen = true;
    {
        // A Close() leaves a wake-up behind, which is no request.
        const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
        m_nWork = 0;
    }
    if (!CQRAThread::Create(kThreadName)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Create source thread[%s] fail!", kThreadName);
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Open success.");
    return true;
}

bool CQRAPlaylistSource::Close() {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Close playlist source begin.");
    {
        // No callback begins once this is held, and one that runs ends before. The thread may be waiting for
        // it, so that it is let go before the thread is waited for.
        const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
        m_bIsOpen = false;
        m_bRunning = false;
        const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
        ++m_nWork;
        m_WorkCondition.Signal();
    }
    CQRAThread::Destroy();
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Close playlist source begin.");
    return true;
}

bool CQRAPlaylistSource::SetCallback(qra_source_complete_cb cb, void* pUserData) {
    const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
    m_cbComplete = cb;
    m_pUserData = pUserData;
    return true;
}

bool CQRAPlaylistSource::SetCallback(qra_source_transfer_cb, void*) {
    return true;
}

bool CQRAPlaylistSource::UNSetCallback() {
    return true;
}

bool CQRAPlaylistSource::Execute(qra_general_s* pParam) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Execute playlist source.");
    QRA_ASSERT(pParam != NULL);
    QRA_ASSERT(pParam->szPath != NULL && pParam->szContentType != NULL && pParam->szSortCategory != NULL &&
               pParam->szPlayListName != NULL);
    Request request{pParam->szContentType, pParam->szSortCategory,
                    CQRAUtil::RemoveForwardSlashInPath(pParam->szPath), pParam->szPlayListName};
    QRA_LOG_INFO(QRA_TAG_LOCAL, "m_strContentType[%s]", request.strContentType.c_str());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "m_strCategory[%s]", request.strCategory.c_str());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "m_strMountPath[%s]", request.strMountPath.c_str());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "m_strPlayListName[%s]", request.strPlayListName.c_str());
    const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
    m_Snapshot = Snapshot();
    m_Request = std::move(request);
    ++m_nWork;
    m_WorkCondition.Signal();
    return true;
}

void CQRAPlaylistSource::t_Process() {
    while (m_bRunning) {
        Request request;
        {
            const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
            while (m_nWork <= 0)
                m_WorkCondition.Wait(m_WorkMutex);
            --m_nWork;
            request = m_Request;
        }
        if (!m_bRunning)
            break;
        m_Process(request);
    }
}

void CQRAPlaylistSource::m_Process(const Request& request) {
    Snapshot snapshot;
    const qra_event_e eEvent = m_Read(request, snapshot);
    {
        const CQRALockGuard<CQRAGMutex> lock(m_WorkMutex);
        m_Snapshot = std::move(snapshot);
    }
    m_NotifyComplete(eEvent);
}

qra_event_e CQRAPlaylistSource::m_Read(const Request& request, Snapshot& snapshot) {
    std::shared_ptr<M3UPlaylist> playList;
    const qra_error_code_e eCode = CQRAPlaylistManager::GetInstance()->GetPlayList(
        request.strMountPath, request.strPlayListName, &playList);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get playlist[%s] from[%s] faild, eCode[%d].",
                        request.strPlayListName.c_str(), request.strMountPath.c_str(), eCode);
        return QRA_EVENT_LIST_FAILED;
    }
    const int nCount = playList->GetItemCount();
    if (nCount == 0) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Get 0 items from playlist[%s].", request.strPlayListName.c_str());
        return QRA_EVENT_LIST_EMPTY;
    }
    snapshot.items.reserve(nCount);
    snapshot.positions.reserve(nCount);
    for (int i = 0; i < nCount && m_bRunning; ++i) {
        std::shared_ptr<const CQRAPlayListItem> item = playList->GetSharedItem(i);
        const CQRAPlayListItem* pItem = item.get();
        QRA_ASSERT(pItem != NULL);
        snapshot.positions.emplace(pItem->m_strMediaId, i);
        snapshot.items.push_back(std::move(item));
        QRA_LOG_DEBUG(QRA_TAG_LOCAL, "Get [%d] items from playlist[%s].", i + 1,
                      request.strPlayListName.c_str());
    }
    return QRA_EVENT_LIST_SUCCESS;
}

void CQRAPlaylistSource::m_NotifyComplete(qra_event_e eEvent) {
    const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
    qra_source_complete_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
        cb = m_cbComplete;
        pUserData = m_pUserData;
    }
    if (!m_bRunning || cb == nullptr)
        return;
    QRA_LOG_INFO(QRA_TAG_LOCAL, "plalist source, cb begin.");
    cb(eEvent, pUserData);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "plalist source, cb end.");
}

bool CQRAPlaylistSource::GetItemCount(int* pnCount) {
    QRA_ASSERT(pnCount != NULL);
    *pnCount = static_cast<int>(m_Snapshot.items.size());
    return true;
}

bool CQRAPlaylistSource::GetItemCountByType(qra_media_type_e eType, int* pnCount) {
    QRA_ASSERT(pnCount != NULL);
    *pnCount = eType == QRA_MEDIA_TYPE_MUSIC ? static_cast<int>(m_Snapshot.items.size()) : 0;
    return true;
}

bool CQRAPlaylistSource::MoveToIndex(int nIndex) {
    if (nIndex < 0 || static_cast<size_t>(nIndex) >= m_Snapshot.items.size()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid index[%d].", nIndex);
        return false;
    }
    m_nCursor = nIndex;
    return true;
}

const CQRAPlayListItem& CQRAPlaylistSource::m_GetCurrentItem() const {
    const CQRAPlayListItem* pItem = static_cast<size_t>(m_nCursor) < m_Snapshot.items.size()
                                        ? m_Snapshot.items[m_nCursor].get()
                                        : nullptr;
    QRA_ASSERT(pItem != NULL);
    return *pItem;
}

template <class T>
bool CQRAPlaylistSource::m_GetNumber(const std::string& strField, T* pValue) const {
    if (IsNull(pValue))
        return false;
    const CQRAPlayListItem& item = m_GetCurrentItem();
    const NumberField* pField = Find(kNumberFields, strField);
    if (pField == nullptr)
        return UnknownField(strField);
    *pValue = std::visit([&item](auto number) { return ClampNumber<T>(item.*number); }, pField->number);
    return true;
}

bool CQRAPlaylistSource::GetValue(std::string strField, char** ppValue) {
    if (IsNull(ppValue))
        return false;
    const CQRAPlayListItem& item = m_GetCurrentItem();
    const TextField* pField = Find(kTextFields, strField);
    if (pField == nullptr)
        return UnknownField(strField);
    // The client frees the text with free().
    CQRAUtil::AssignValueByCStyle(ppValue, (item.*pField->text).c_str());
    return true;
}

bool CQRAPlaylistSource::GetValue(std::string strField, int* pValue) {
    return m_GetNumber(strField, pValue);
}

bool CQRAPlaylistSource::GetValue(std::string strField, unsigned long long* pValue) {
    return m_GetNumber(strField, pValue);
}

bool CQRAPlaylistSource::GetValue(std::string strField, long* pValue) {
    return m_GetNumber(strField, pValue);
}

bool CQRAPlaylistSource::GetValue(std::string strField, bool* pValue) {
    return m_GetNumber(strField, pValue);
}

bool CQRAPlaylistSource::GetValue(std::string, double*) {
    return true;
}

bool CQRAPlaylistSource::SetValue(const char*, long) {
    return true;
}

bool CQRAPlaylistSource::SetValue(const char*, int) {
    return true;
}

bool CQRAPlaylistSource::SetValue(const char*, const char*) {
    return true;
}

bool CQRAPlaylistSource::GetDBIndex(char* szId, int* pnIndex) {
    if (IsNull(szId) || IsNull(pnIndex))
        return false;
    const auto it = m_Snapshot.positions.find(szId);
    if (it == m_Snapshot.positions.end()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Can't find mediaId[%s].", szId);
        return false;
    }
    *pnIndex = it->second;
    return true;
}

CQRAGroupInfo* CQRAPlaylistSource::GetGroupInfo() {
    auto groups = std::make_unique<CQRAGroupInfo>();
    if (!m_Snapshot.items.empty())
        groups->AddGroup("PlayList Group", static_cast<int>(m_Snapshot.items.size()));
    return groups.release();
}
