#ifndef QRA_AGENT_AGENT_SRC_QRA_LOCAL_AGENT_H
#define QRA_AGENT_AGENT_SRC_QRA_LOCAL_AGENT_H

#include <qra/qra_types.h>

#include <optional>
#include <string>

#include "libqra-agent/agent/src/qra_agent_base.h"

class CQRAMSCSource;
class CQRAValueTarget;

/**
 * Serves list requests on the sources of this process: mass storage, PTP, DLNA and playlists.
 *
 * One agent serves one handle for the handle's whole life, and the handle owns it. The agent prepares the
 * handle, opens a source and runs requests on it (qra_local_agent.cpp), then translates between the list
 * index of the client and the DB index of the source: cursor (qra_local_agent_cursor.cpp), values
 * (qra_local_agent_values.cpp), selection (qra_local_agent_selection.cpp), page (qra_local_agent_page.cpp),
 * and what goes to the media database without a list (qra_local_agent_mcf.cpp).
 *
 * Threads: everything runs on the client's thread, but for cb_request_list_complete(), which comes on a
 * thread of the source. One mutex for all local agents of the process, the agent mutex, is held through
 * RequestList(), through the client's list callback, and around the removal from the registry in
 * Disconnect(). It comes after the source's callback mutex and before the handle's and the registry's in the
 * lock order. Cursor and values do not take it.
 *
 * Every operation answers QRA_ERROR_INVALID_HANDLE when the handle lacks the part that it needs, and
 * QRA_ERROR_INVALID_PARAM for a null out argument; a failing source is QRA_ERROR_INTERNAL, with the out value
 * as it was.
 */
class CQRALocalAgent : public IQRAAgentBase {
public:
    // Requests.

    /// Prepares `*ppHandle`, opens its source and starts the request; the handle is in the registry when it
    /// succeeds.
    qra_error_code_e RequestList(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                 CQRAAgentHandle** ppHandle) override;
    /// Has the playlist manager scan the USB drive of a path for playlists, unless it did so before. What the
    /// drive's mount path is goes to `strMountPath`: the path up to the first "/" that lies 7 bytes or more
    /// behind the media root.
    static qra_error_code_e m_InitAllPlayList(const std::string& strPath, std::string& strMountPath);
    qra_error_code_e CancelRequestList(CQRAAgentHandle* pHandle) override;
    /// Closes the source and takes the handle out of the registry; the caller destroys it.
    qra_error_code_e Disconnect(CQRAAgentHandle* pHandle) override;
    qra_error_code_e RequestDetail(CQRAAgentHandle* pHandle, qra_detail_s* pParam, void* pUserData,
                                   on_detail_complete_cb cb) override;
    qra_error_code_e CancelDetailRequest(CQRAAgentHandle* pHandle) override;
    qra_error_code_e UploadComment(CQRAAgentHandle* pHandle, qra_comment_s* pParam, int nIndex,
                                   void* pUserData, on_detail_complete_cb cb) override;
    qra_error_code_e SetLike(CQRAAgentHandle* pHandle, qra_like_s* pParam, int nIndex, void* pUserData,
                             on_detail_complete_cb cb) override;
    qra_error_code_e GetGroupCount(CQRAAgentHandle* pHandle, int* pnCount) override;

    // The page.

    qra_error_code_e SetPageStyle(CQRAAgentHandle* pHandle, qra_page_style_s* pParam) override;
    qra_error_code_e SetExpandMode(CQRAAgentHandle* pHandle, int nGroupIndex, bool bExpand) override;
    qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, int* pnItemCount) override;
    qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType,
                                  int* pnCount) override;
    qra_error_code_e GetPageIndex(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex) override;

    // The cursor.

    qra_error_code_e SetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e eNavigation) override;
    qra_error_code_e GetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e* peNavigation) override;
    qra_error_code_e MoveToNext(CQRAAgentHandle* pHandle) override;
    qra_error_code_e MoveToPrevious(CQRAAgentHandle* pHandle) override;
    qra_error_code_e MoveToIndex(CQRAAgentHandle* pHandle, int nIndex) override;

    // Values at the cursor.

    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, char** ppValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, int* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, bool* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, double* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, long* pValue) override;
    qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                  unsigned long long* pValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, long nValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, int nValue) override;
    qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, char* pValue) override;
    qra_error_code_e GetItem(CQRAAgentHandle* pHandle, int nIndex, char** ppValue) override;
    qra_error_code_e GetItemBookMark(CQRAAgentHandle* pHandle, on_get_dlna_bookmark_cb cb,
                                     void* pUserData) override;
    qra_error_code_e GetRatingInfo(CQRAAgentHandle* pHandle, char** ppRating) override;

    // The selection.

    qra_error_code_e ToggleSelect(CQRAAgentHandle* pHandle, int nListIndex) override;
    qra_error_code_e GetSelectedState(CQRAAgentHandle* pHandle, int nListIndex, bool* pSelected) override;
    qra_error_code_e GetSelectionCount(CQRAAgentHandle* pHandle, int* pnCount) override;
    qra_error_code_e DeselectAll(CQRAAgentHandle* pHandle) override;
    qra_error_code_e SelectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) override;
    qra_error_code_e DeselectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) override;
    qra_error_code_e PreparePlayData(CQRAAgentHandle* pHandle, char** ppData) override;

    // The media database, without a list.

    qra_error_code_e GetStorageId(char* pPath, char** ppStorageId) override;
    qra_error_code_e SetItemValueMcf(const char* pId, const char* pField, int nValue);
    qra_error_code_e GetItemValueMcf(const char* pId, const char* pField, int* pnValue);
    /// Enters a file in, or removes a media id from, the media database of this agent's mass-storage source.
    virtual qra_error_code_e AddFile(const char* pPath);
    virtual qra_error_code_e DeleteFile(const char* pPath);

private:
    // Requests.
    static void m_InitPlayListsOf(const qra_general_s& param);
    qra_error_code_e m_InitHandler(on_list_complete_cb cb, void* pUserData, qra_general_s* pParam,
                                   CQRAAgentHandle** ppHandle);
    qra_error_code_e m_CheckRequest(CQRAAgentHandle* pHandle, const qra_general_s* pParam) const;
    void m_InitPage(CQRAAgentHandle* pHandle);
    void m_InitSource(CQRAAgentHandle* pHandle);
    qra_error_code_e m_OpenSource(CQRAAgentHandle* pHandle, qra_general_s* pParam);
    bool m_Execute(qra_general_s* pParam);
    qra_error_code_e m_InitSelectList(CQRAAgentHandle* pHandle, char* pPrepareData);
    void m_ClearRepeatAgent(CQRAAgentHandle* pHandle, const char* pSource);
    static bool cb_request_list_complete(qra_event_e eEvent, void* pThis);
    bool m_Complete(qra_event_e eEvent);

    // The page.
    qra_error_code_e m_BuildFolderPage(CQRAAgentHandle* pHandle);
    qra_error_code_e m_BuildListPage(CQRAAgentHandle* pHandle, int nGroupIndex, int nPlayListCount,
                                     bool bExpandMode, bool bIsFolderView);
    qra_error_code_e m_CountInSource(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType, int* pnCount);
    qra_error_code_e m_GetPageIndexOfPlayList(CQRAAgentHandle* pHandle, const std::string& strId,
                                              int* pnPageIndex);
    qra_error_code_e m_GetPageIndexOfContents(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex);

    // The cursor.
    int m_GetDBIndex(CQRAAgentHandle* pHandle, int nListIndex, qra_navigation_e eNavigation);
    qra_page_item_type_e m_GetPageItemType(CQRAAgentHandle* pHandle, int nListIndex);
    qra_error_code_e m_MoveCursor(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);
    qra_error_code_e m_MoveOnPage(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);
    qra_error_code_e m_MoveOnResultList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);
    qra_error_code_e m_MoveOnSelectList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);
    bool m_CheckListIndex(CQRAAgentHandle* pHandle, int nIndex);
    void m_SetPageIndex(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex);

    // Values.
    qra_error_code_e m_GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                    const CQRAValueTarget& target);
    qra_error_code_e m_GetFixedInfo(const char* pField, int nMediaType, const CQRAValueTarget& target);
    qra_error_code_e m_GetEmptyItemInfo(const char* pField, const CQRAValueTarget& target);
    qra_error_code_e m_GetUpFolderInfo(const char* pField, const CQRAValueTarget& target);
    qra_error_code_e m_GetNormalContentsInfo(CQRAAgentHandle* pHandle, const char* pField,
                                             const CQRAValueTarget& target);
    qra_error_code_e m_GetGroupInfo(CQRAAgentHandle* pHandle, const char* pField,
                                    const CQRAValueTarget& target);
    qra_error_code_e m_GetGroupId(CQRAAgentHandle* pHandle, int nGroup, const CQRAValueTarget& target);
    qra_error_code_e m_GetPlayListInfo(CQRAAgentHandle* pHandle, const char* pField,
                                       const CQRAValueTarget& target);
    qra_error_code_e m_GetMediaFocusID(CQRAAgentHandle* pHandle, char** ppValue);
    template <class T>
    qra_error_code_e m_SetItemValue(CQRAAgentHandle* pHandle, const char* pField, T value);

    CQRAMSCSource* m_GetMSCSource() const;

    CQRAAgentHandle* m_pHandle = nullptr;   ///< the handle that this agent serves, which owns it
    std::optional<std::string> m_LastPath;  ///< of the latest request, for a repeat that brings none
};

#endif
