// The folder thumbnail functions of the client interface, and what their handle does.
#include <qra/qra_folder_thumb.h>

#include <map>
#include <vector>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/source/folder_thumb/qra_folder_thumb_source.h"

namespace {

/**
 * Keeps the handles of open requests from being freed while the registry knows them, and gives a reference
 * for an address. The mutex comes before the registry's and after the thumbnail source's.
 */
class COpenRequests : public CQRASingleton<COpenRequests> {
public:
    void Add(const std::shared_ptr<CQRAFolderThumbHandle>& pHandle) {
        const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
        m_Handles.emplace(pHandle.get(), pHandle);
        CQRAHandlerMgr::GetInstance()->Add(pHandle->GetValue());
    }

    /// The caller holds a reference.
    void Delete(const CQRAFolderThumbHandle* pHandle) {
        const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
        CQRAHandlerMgr::GetInstance()->Delete(pHandle->GetValue());
        m_Handles.erase(pHandle);
    }

    std::shared_ptr<CQRAFolderThumbHandle> Find(const CQRAFolderThumbHandle* pHandle) {
        const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
        const auto it = m_Handles.find(pHandle);
        return it != m_Handles.end() ? it->second : nullptr;
    }

private:
    CQRAGMutex m_Mutex;
    std::map<const CQRAFolderThumbHandle*, std::shared_ptr<CQRAFolderThumbHandle>> m_Handles
        QRA_GUARDED_BY(m_Mutex);
};

qra_error_code_e Request(const char* pPath, const char* pContentType, const char* pExtension,
                         int nRequestCount, qra_folder_thumb_cb cb, void* pUserData,
                         CQRAFolderThumbHandle** ppHandle) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "start qra_request_folder_thumbnail_items...");
    qra_error_code_e eCode = QRA_ERROR_INVALID_PARAM;
    if (ppHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestFolderThumbItems param error");
    } else {
        const auto pHandle = std::make_shared<CQRAFolderThumbHandle>();
        // Stored before a callback can come, and not after: the callback may end the variable's life.
        CQRAFolderThumbHandle* const pBefore = *ppHandle;
        *ppHandle = pHandle.get();
        eCode =
            pHandle->RequestFolderThumbPath(pPath, pContentType, pExtension, nRequestCount, cb, pUserData);
        if (eCode != QRA_ERROR_NONE) {
            *ppHandle = pBefore;
        } else {
            QRA_LOG_INFO(QRA_TAG_LOCAL, "RequestFolderThumbItems success. Get agent[%p].",
                         static_cast<void*>(pHandle.get()));
        }
    }
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestFolderThumbItems faild.eCode[%d].", eCode);
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "qra_request_folder_thumbnail_items eCode[%d]", eCode);
    return eCode;
}

qra_error_code_e Cancel(const char* pPath, const char* pContentType, const char* pExtension,
                        int nRequestCount, const CQRAFolderThumbHandle* pHandle) {
    if (pHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "qra_cancel_request_folder_thumbnail_items handle is null");
        return QRA_ERROR_INVALID_PARAM;
    }
    const auto nValue = reinterpret_cast<qra_handle_value_t>(pHandle);
    const std::shared_ptr<CQRAFolderThumbHandle> pOpen = CQRAFolderThumbHandle::FindOpen(pHandle);
    if (!CQRAHandlerMgr::GetInstance()->CheckHandler(nValue, QRA_HANDLE_TYPE_FOLDER_THUMB) || !pOpen) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CheckHandler[%p] faild!!", static_cast<const void*>(pHandle));
        return QRA_ERROR_INVALID_HANDLE;
    }
    const qra_error_code_e eCode =
        pOpen->CancelRequestFolderThumbPath(pPath, pContentType, pExtension, nRequestCount);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "qra_cancel_request_folder_thumbnail_items eCode[%d]", eCode);
    return eCode;
}

}  // namespace

std::shared_ptr<CQRAFolderThumbHandle> CQRAFolderThumbHandle::FindOpen(const CQRAFolderThumbHandle* pHandle) {
    return COpenRequests::GetInstance()->Find(pHandle);
}

qra_error_code_e CQRAFolderThumbHandle::RequestFolderThumbPath(const char* pPath, const char* pContentType,
                                                               const char* pExtension, int nRequestCount,
                                                               qra_folder_thumb_cb cb, void* pUserData) {
    if (pPath == nullptr || pContentType == nullptr || nRequestCount <= 0 || cb == nullptr ||
        pUserData == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestFolderThumbItems param error");
        return QRA_ERROR_INVALID_PARAM;
    }
    m_cb = cb;
    m_pUserData = pUserData;
    COpenRequests::GetInstance()->Add(shared_from_this());
    if (!CQRAFolderThumbSource::GetInstance()->RequestFolderThumbPath(
            pPath, pContentType, pExtension, nRequestCount, cb_request_folder_thumb_path, this,
            shared_from_this())) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestFolderThumb failed");
        COpenRequests::GetInstance()->Delete(this);
        return QRA_ERROR_INTERNAL;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "RequestFolderThumbItems success");
    return QRA_ERROR_NONE;
}

bool CQRAFolderThumbHandle::cb_request_folder_thumb_path(void* pThis, char* pPath) {
    if (pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pThis == NULL");
        return false;
    }
    if (!CQRAHandlerMgr::GetInstance()->Exists(reinterpret_cast<qra_handle_value_t>(pThis))) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CQRAFolderThumbHandle[%p] has been disconnected!", pThis);
        return false;
    }
    auto* const pHandle = static_cast<CQRAFolderThumbHandle*>(pThis);
    if (pHandle->m_cb == nullptr || pHandle->m_pUserData == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_cb or m_pUserData is NULL");
        return false;
    }
    pHandle->m_cb(pHandle->m_pUserData, pHandle, pPath);
    COpenRequests::GetInstance()->Delete(pHandle);
    return true;
}

qra_error_code_e CQRAFolderThumbHandle::CancelRequestFolderThumbPath(const char* pPath,
                                                                     const char* pContentType,
                                                                     const char* pExtension,
                                                                     int nRequestCount) {
    if (pPath == nullptr || pContentType == nullptr || nRequestCount <= 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CancelRequestFolderThumbItems param error");
        return QRA_ERROR_INVALID_PARAM;
    }
    COpenRequests::GetInstance()->Delete(this);
    if (!CQRAFolderThumbSource::GetInstance()->CancelRequestFolderThumbPath(
            pPath, pContentType, pExtension, nRequestCount, cb_request_folder_thumb_path, this)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CancelRequestFolderThumb param error");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAFolderThumbHandle::CancelAllRequestFolderThumbPath() {
    CQRAHandlerMgr* const pRegistry = CQRAHandlerMgr::GetInstance();
    std::vector<std::shared_ptr<CQRAFolderThumbHandle>> vHandles;
    const int nCount = pRegistry->GetCount();
    for (int i = 0; i < nCount; ++i) {
        const qra_handle_value_t nValue = pRegistry->GetHandler(i);
        if (auto pHandle = FindOpen(reinterpret_cast<CQRAFolderThumbHandle*>(nValue))) {
            vHandles.push_back(std::move(pHandle));
        }
    }
    for (const std::shared_ptr<CQRAFolderThumbHandle>& pHandle : vHandles) {
        COpenRequests::GetInstance()->Delete(pHandle.get());
    }
    if (!CQRAFolderThumbSource::GetInstance()->CancelAllRequestFolderThumbPath()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CancelAllRequestFolderThumbPath failed");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_request_folder_thumbnail_path(char* pPath, char* pContentType, int nRequestCount,
                                                   qra_folder_thumb_cb cb, void* pUserData,
                                                   CQRAFolderThumbHandle** ppHandle) {
    return Request(pPath, pContentType, nullptr, nRequestCount, cb, pUserData, ppHandle);
}

qra_error_code_e qra_request_folder_thumbnail_path_v2(char* pPath, char* pContentType, char* pExtension,
                                                      int nRequestCount, qra_folder_thumb_cb cb,
                                                      void* pUserData, CQRAFolderThumbHandle** ppHandle) {
    return Request(pPath, pContentType, pExtension, nRequestCount, cb, pUserData, ppHandle);
}

qra_error_code_e qra_cancel_request_folder_thumbnail_path(char* pPath, char* pContentType, int nRequestCount,
                                                          CQRAFolderThumbHandle* pHandle) {
    return Cancel(pPath, pContentType, nullptr, nRequestCount, pHandle);
}

qra_error_code_e qra_cancel_request_folder_thumbnail_path_v2(char* pPath, char* pContentType,
                                                             char* pExtension, int nRequestCount,
                                                             CQRAFolderThumbHandle* pHandle) {
    return Cancel(pPath, pContentType, pExtension, nRequestCount, pHandle);
}

qra_error_code_e qra_cancel_all_request_folder_thumbnail_path() {
    CQRAFolderThumbHandle temporary;
    const qra_error_code_e eCode = temporary.CancelAllRequestFolderThumbPath();
    QRA_LOG_INFO(QRA_TAG_LOCAL, "qra_cancel_all_request_folder_thumbnail_path eCode[%d]", eCode);
    return eCode;
}
