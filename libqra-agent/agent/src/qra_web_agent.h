#ifndef QRA_AGENT_AGENT_SRC_QRA_WEB_AGENT_H
#define QRA_AGENT_AGENT_SRC_QRA_WEB_AGENT_H

#include <qra/qra_types.h>

#include <string>

#include "common/util/qra_mutex.h"
#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/agent/src/qra_handler.h"

/**
 * Serves list requests on what the content engine reaches: cloud services, feeds and every other source that
 * is none of this process.
 *
 * It browses nothing itself. A request goes to the engine as JSON over the bus; the engine answers with
 * signals, and lists lie in shared memory, where the handle's result pool finds them. One agent serves one
 * handle, which owns it. Requests, and the pool's wishes for more sections, are in qra_web_agent.cpp, the
 * engine's signals in qra_web_agent_signal.cpp, cursor, values, page and selection in qra_web_agent_item.cpp,
 * details, comments, likes and other acts in qra_web_agent_act.cpp.
 *
 * Threads: the operations run on the client's threads, m_ProcessDbusSignal on whatever runs the main context
 * that was the thread's default at the process's first remote request. m_AgentMutex, one for all web agents
 * of the process, is held through RequestList(), through all of a signal with the client's callback in it,
 * and through Disconnect(): so a handle that a signal found stays until the signal is done, and a callback
 * must call neither of the two. It is the first in the lock order; the handle's map mutexes, the pool's and
 * the bus client's follow. The pool's callbacks run under the pool's mutex, on the signal's thread or the
 * client's.
 *
 * What a signal carries is never believed: what does not parse, is of a wrong type or names nobody is logged
 * and dropped.
 *
 * Every operation answers QRA_ERROR_INVALID_HANDLE when the handle lacks the part that it needs,
 * QRA_ERROR_INVALID_PARAM for a null out argument, and QRA_ERROR_INTERNAL for what the engine's lists do not
 * have. A null handle ends the process.
 */
class CQRAWebAgent : public IQRAAgentBase {
public:
    /// Connects to the engine, starting it if need be, and asks for the list's first section. Nothing ends
    /// the wait for the answer but a signal.
    qra_error_code_e RequestList(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                 CQRAAgentHandle** ppHandle) override QRA_EXCLUDES(m_AgentMutex);
    /// A remote list cannot be cancelled: QRA_ERROR_INTERNAL.
    qra_error_code_e CancelRequestList(CQRAAgentHandle* pHandle) override;
    /// Tells the engine and takes the handle out of the registry; the caller destroys it.
    qra_error_code_e Disconnect(CQRAAgentHandle* pHandle) override QRA_EXCLUDES(m_AgentMutex);

    // Details and acts. Each answer finds its callback by an id that the request carries.

    qra_error_code_e RequestDetail(CQRAAgentHandle* pHandle, qra_detail_s* pParam, void* pUserData,
                                   on_detail_complete_cb cb) override;
    /// Forgets the callbacks of all details of the handle.
    qra_error_code_e CancelDetailRequest(CQRAAgentHandle* pHandle) override;
    /// Both send the text of the item with the act; where no item can be reached at the index, because its
    /// section has not arrived or another tile stands there, they send none. The cursor moves to the item.
    qra_error_code_e UploadComment(CQRAAgentHandle* pHandle, qra_comment_s* pParam, int nIndex,
                                   void* pUserData, on_detail_complete_cb cb) override;
    qra_error_code_e SetLike(CQRAAgentHandle* pHandle, qra_like_s* pParam, int nIndex, void* pUserData,
                             on_detail_complete_cb cb) override;
    /**
     * Sends an act of the client's own, or ends it where `strParam` holds "qra_file_transfer_stop": true.
     * @param bConnected the handle has a list request; else it is entered in the registry for this act alone
     * @param strRequestId gets the act's id; names the act to end
     * @return what the engine answers to the end of an act; QRA_ERROR_INVALID_HANDLE for an unknown handle
     */
    qra_error_code_e Send(CQRAAgentHandle* pHandle, int bConnected, std::string strParam, void* pUserData,
                          on_act_complete_cb cb, std::string& strRequestId);
    qra_error_code_e PreparePlayData(CQRAAgentHandle* pHandle, char** ppData) override;

    // The page.

    qra_error_code_e SetPageStyle(CQRAAgentHandle* pHandle, qra_page_style_s* pParam) override;
    qra_error_code_e GetGroupCount(CQRAAgentHandle* pHandle, int* pnCount) override;
    qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, int* pnItemCount) override;
    /// Counts nothing: QRA_ERROR_NONE with the count as it was.
    qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType,
                                  int* pnItemCount) override;
    qra_error_code_e GetPageIndex(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex) override;

    // The cursor. A move gives QRA_ERROR_WRITE_FAILED for an item whose section has not arrived.

    qra_error_code_e SetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e eNavigation) override;
    qra_error_code_e GetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e* peNavigation) override;
    qra_error_code_e MoveToNext(CQRAAgentHandle* pHandle) override;
    qra_error_code_e MoveToPrevious(CQRAAgentHandle* pHandle) override;
    qra_error_code_e MoveToIndex(CQRAAgentHandle* pHandle, int nIndex) override;

    // Values at the cursor, out of the item's text. A text that the item does not have is empty.

    qra_error_code_e GetItem(CQRAAgentHandle* pHandle, int nIndex, char** ppItem) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, char** ppValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, int* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, bool* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                  unsigned long long* pValue) override;

    // The selection, of DB indices.

    qra_error_code_e ToggleSelect(CQRAAgentHandle* pHandle, int nListIndex) override;
    qra_error_code_e GetSelectedState(CQRAAgentHandle* pHandle, int nListIndex, bool* pSelected) override;
    qra_error_code_e GetSelectionCount(CQRAAgentHandle* pHandle, int* pnCount) override;
    qra_error_code_e DeselectAll(CQRAAgentHandle* pHandle) override;

    // What the engine's lists do not have: QRA_ERROR_INTERNAL.

    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, double* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, long* pValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, long nValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, int nValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, char* pValue) override;
    qra_error_code_e GetItemBookMark(CQRAAgentHandle* pHandle, on_get_dlna_bookmark_cb cb,
                                     void* pUserData) override;
    qra_error_code_e SetExpandMode(CQRAAgentHandle* pHandle, int nGroupIndex, bool bExpand) override;
    qra_error_code_e SelectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) override;
    qra_error_code_e DeselectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) override;
    qra_error_code_e GetRatingInfo(CQRAAgentHandle* pHandle, char** ppRating) override;
    qra_error_code_e GetStorageId(char* pPath, char** ppStorageId) override;

    /// Takes a completion signal of the engine; `pUserData` plays no part.
    static void m_ProcessDbusSignal(const char* pSignal, void* pUserData, char* pPayload)
        QRA_EXCLUDES(m_AgentMutex);

private:
    /// True, with a log line, for an argument or a part of the handle that is not there.
    static bool m_IsNull(const void* pObject, const char* szName);
    /// The answer of an operation that no remote list has.
    static qra_error_code_e m_NotServed(const CQRAAgentHandle* pHandle);

    // Requests.
    qra_error_code_e m_InitHandler(on_list_complete_cb cb, CQRAAgentHandle** ppHandle, void* pUserData,
                                   qra_general_s* pParam) QRA_REQUIRES(m_AgentMutex);
    static qra_error_code_e m_CheckRequest(CQRAAgentHandle** ppHandle, const qra_general_s* pParam);
    static qra_error_code_e m_InitSelectList(CQRAAgentHandle* pHandle, const char* pPrepareData);
    static qra_error_code_e m_Connect(const qra_general_s* pParam, unsigned int& nId)
        QRA_REQUIRES(m_AgentMutex);
    static void m_TakeId(CQRAAgentHandle* pHandle, unsigned int nId) QRA_REQUIRES(m_AgentMutex);
    static unsigned int m_GetHitHandle(const char* pPrepareData, const CQRAAgentHandle* pHandle);
    qra_error_code_e m_RequestFirstSection(qra_general_s* pParam, CQRAAgentHandle* pHandle)
        QRA_REQUIRES(m_AgentMutex);
    static bool m_PrefetchPartialList(void* pUserData, int nFirst, int nLast, int nSection);
    static bool m_DropPartialList(void* pUserData, const std::string& strResultListName);
    static CQRAAgentHandle* m_HandleOfPool(void* pUserData);

    // Signals.
    static void m_Dispatch(int eType, CQRAAgentHandle* pHandle, const std::string& strPayload)
        QRA_REQUIRES(m_AgentMutex);
    static void m_ProcessRequestPartialSignal(int eType, CQRAAgentHandle* pHandle,
                                              const std::string& strPayload) QRA_REQUIRES(m_AgentMutex);
    static bool m_PushSection(CQRAAgentHandle* pHandle, const std::string& strPayload)
        QRA_REQUIRES(m_AgentMutex);
    static void m_ProcessRequestDetailSignal(int eType, CQRAAgentHandle* pHandle,
                                             const std::string& strPayload) QRA_REQUIRES(m_AgentMutex);
    static void m_ProcessRequestActSignal(int eType, CQRAAgentHandle* pHandle, const std::string& strPayload)
        QRA_REQUIRES(m_AgentMutex);

    // Acts.
    template <class Param>
    qra_error_code_e m_RequestAct(CQRAAgentHandle* pHandle, Param* pParam, int nIndex, void* pUserData,
                                  on_detail_complete_cb cb);
    std::string m_GetItemText(CQRAAgentHandle* pHandle, int nIndex);
    static std::string m_PushActData(CQRAAgentHandle* pHandle, void* pUserData, on_act_complete_cb cb);

    // Cursor and values.
    qra_error_code_e m_MoveCursor(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nPageIndex);
    static qra_error_code_e m_MoveOnSelectList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nPageIndex);
    static qra_error_code_e m_MoveOnResultList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);
    static int m_GetDBIndex(CQRAAgentHandle* pHandle, int nPageIndex, qra_navigation_e eNavigation);
    template <class T>
    static qra_error_code_e m_GetItemValue(CQRAAgentHandle* pHandle, const char* pField, T* pValue);

    static CQRAMutex& m_AgentMutex;

    CQRAAgentHandle* m_pHandle = nullptr;  ///< the handle that this agent serves, which owns it
};

#endif
