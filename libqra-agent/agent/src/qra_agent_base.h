#ifndef QRA_AGENT_AGENT_SRC_QRA_AGENT_BASE_H
#define QRA_AGENT_AGENT_SRC_QRA_AGENT_BASE_H

#include <qra/qra_types.h>

/// How a cursor moves.
enum MOVE_MODEL { MOVE_MODEL_PREVIOUS = 0, MOVE_MODEL_NEXT = 1, MOVE_MODEL_INDEX = 2 };

/**
 * What serves one list request: the local agent for the sources of this process, the web agent for the
 * content engine. Each operation stands behind the exported function of the same purpose, which has checked
 * the handle.
 */
class IQRAAgentBase {
public:
    virtual qra_error_code_e RequestList(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                         CQRAAgentHandle** ppHandle) = 0;
    virtual qra_error_code_e CancelRequestList(CQRAAgentHandle* pHandle) = 0;
    virtual qra_error_code_e RequestDetail(CQRAAgentHandle* pHandle, qra_detail_s* pParam, void* pUserData,
                                           on_detail_complete_cb cb) = 0;
    virtual qra_error_code_e CancelDetailRequest(CQRAAgentHandle* pHandle) = 0;

    virtual qra_error_code_e SetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e eNavigation) = 0;
    virtual qra_error_code_e GetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e* peNavigation) = 0;
    virtual qra_error_code_e MoveToNext(CQRAAgentHandle* pHandle) = 0;
    virtual qra_error_code_e MoveToPrevious(CQRAAgentHandle* pHandle) = 0;
    virtual qra_error_code_e MoveToIndex(CQRAAgentHandle* pHandle, int nIndex) = 0;
    virtual qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, int* pnItemCount) = 0;
    virtual qra_error_code_e GetItemCount(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType,
                                          int* pnItemCount) = 0;

    // Values of the item at the cursor. A text is malloc'ed, and freed by the client.
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, char** ppValue) = 0;
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, int* pValue) = 0;
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, bool* pValue) = 0;
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, double* pValue) = 0;
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField, long* pValue) = 0;
    virtual qra_error_code_e GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                          unsigned long long* pValue) = 0;
    virtual qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, long nValue) = 0;
    virtual qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, int nValue) = 0;
    virtual qra_error_code_e SetItemValue(CQRAAgentHandle* pHandle, const char* pField, char* pValue) = 0;

    virtual qra_error_code_e DeselectAll(CQRAAgentHandle* pHandle) = 0;
    virtual qra_error_code_e Disconnect(CQRAAgentHandle* pHandle) = 0;
    virtual qra_error_code_e GetSelectedState(CQRAAgentHandle* pHandle, int nListIndex, bool* pSelected) = 0;
    virtual qra_error_code_e GetSelectionCount(CQRAAgentHandle* pHandle, int* pnCount) = 0;
    virtual qra_error_code_e ToggleSelect(CQRAAgentHandle* pHandle, int nListIndex) = 0;
    virtual qra_error_code_e UploadComment(CQRAAgentHandle* pHandle, qra_comment_s* pParam, int nIndex,
                                           void* pUserData, on_detail_complete_cb cb) = 0;
    virtual qra_error_code_e SetLike(CQRAAgentHandle* pHandle, qra_like_s* pParam, int nIndex,
                                     void* pUserData, on_detail_complete_cb cb) = 0;
    virtual qra_error_code_e PreparePlayData(CQRAAgentHandle* pHandle, char** ppData) = 0;
    virtual qra_error_code_e SetPageStyle(CQRAAgentHandle* pHandle, qra_page_style_s* pParam) = 0;
    virtual qra_error_code_e GetGroupCount(CQRAAgentHandle* pHandle, int* pnCount) = 0;
    virtual qra_error_code_e GetItemBookMark(CQRAAgentHandle* pHandle, on_get_dlna_bookmark_cb cb,
                                             void* pUserData) = 0;
    virtual qra_error_code_e SetExpandMode(CQRAAgentHandle* pHandle, int nGroupIndex, bool bExpand) = 0;
    virtual qra_error_code_e GetItem(CQRAAgentHandle* pHandle, int nIndex, char** ppItem) = 0;
    virtual qra_error_code_e SelectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) = 0;
    virtual qra_error_code_e DeselectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) = 0;
    virtual qra_error_code_e GetPageIndex(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex) = 0;
    virtual qra_error_code_e GetRatingInfo(CQRAAgentHandle* pHandle, char** ppRating) = 0;
    virtual qra_error_code_e GetStorageId(char* pPath, char** ppStorageId) = 0;

    virtual ~IQRAAgentBase() = default;
};

#endif
