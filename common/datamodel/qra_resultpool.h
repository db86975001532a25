#ifndef QRA_COMMON_DATAMODEL_QRA_RESULTPOOL_H
#define QRA_COMMON_DATAMODEL_QRA_RESULTPOOL_H

#include <qra/qra_types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "common/datamodel/qra_resultlist.h"
#include "common/util/qra_mutex.h"

enum EQRAPrefetchType {
    QRA_PREFETCH_AUTO = 0,   ///< stream all sections in, one after the other, and drop none
    QRA_PREFETCH_WINDOW = 1  ///< hold the sections that a window around the cursor touches
};

enum EQRACursorMoveMent { QRA_CURSOR_MOVE_NEXT = 0, QRA_CURSOR_MOVE_PREVIOUS = 1 };

/// A window or section size equal to these turns the windowing off; below them it is refused by who asks for
/// a pool.
constexpr int QRA_UNPREFETCH_WINDOW_SIZE = 0;
constexpr int QRA_UNPREFETCH_PREFETCH_NUM = 0;

/// Asks for a section: first index, last index (not clipped at the end of the list), section number. Result
/// ignored.
using on_prefetch_cb = bool (*)(void* pUserData, int nFirst, int nLast, int nSection);
/// Gives a section up, by the name of its result list. Result ignored.
using on_drop_cb = bool (*)(void* pUserData, const std::string& strListName);

/**
 * The sections of one remote list that are held in this process, a cursor over them, and the decision which
 * sections to ask for and which to give up.
 *
 * A section is not requested, being fetched, or held. It leaves "being fetched" through Push() alone; one
 * whose answer never comes is never requested again.
 *
 * Threads: Push() comes on the thread that dispatches the engine's signals, everything else on the client's.
 * m_Mutex covers the sections and what is derived from them. The two cursors belong to the client's thread
 * alone, so that GetCursor() needs no lock. Both callbacks are called with the mutex held: they must not call
 * back into the pool.
 */
class CResultPool {
public:
    /// The client's cursor, filled when it is asked for.
    struct Cursor {
        int nListIndex = -1;       ///< -1 when there is none
        std::string strItem;       ///< the item's text
        std::string strBlockName;  ///< shared memory name of its block, NUL-padded
        int nBlockItem = -1;       ///< its number in that block

        /// Back to none. The texts keep their memory, for the next item.
        void Clear() {
            nListIndex = -1;
            strItem.clear();
            strBlockName.clear();
            nBlockItem = -1;
        }
    };

    /// The window is five times `nWindowSize` items wide; a section has `nPrefetchNum` items. With either
    /// number not above 0 there is no window.
    CResultPool(int nWindowSize, int nPrefetchNum, EQRAPrefetchType eType);
    ~CResultPool();
    CResultPool(const CResultPool&) = delete;
    CResultPool& operator=(const CResultPool&) = delete;

    /// Both callbacks are required, before the first Push().
    void SetCallBack(on_prefetch_cb func_prefetch, void* pPrefetchData, on_drop_cb func_drop,
                     void* pDropData);

    /// Takes over a section that arrived. A second list of a section already held is destroyed.
    void Push(CResultList* pList);

    /// QRA_ERROR_INVALID_PARAM outside the list; QRA_ERROR_WRITE_FAILED if the item's section has not arrived
    /// yet, with the cursor where it was.
    qra_error_code_e MoveToIndex(int nIndex);
    qra_error_code_e MoveToNext();
    qra_error_code_e MoveToPrevious();

    /// The item under the cursor. The result is the pool's and changes with the next call.
    const Cursor* GetCursor();
    /// Puts the cursor on the first item that is held.
    void ResetCursor();

    /// Items of the whole list; 0 before the first section came.
    int GetTotalCount();
    int GetGroupCount();
    bool GetGroup(int nIndex, int& nBegin, int& nEnd);

private:
    struct InternalCursor {
        CResultList* pCurrentList = nullptr;
        int nIndex = -1;
    };
    struct Section {
        int nFirst;
        int nLast;
    };

    qra_error_code_e m_MoveToIndex(int nIndex) QRA_REQUIRES(m_Mutex);
    qra_error_code_e m_Step(int nIndex, EQRACursorMoveMent eMoveMent) QRA_REQUIRES(m_Mutex);
    void m_MoveWindow(int nIndex) QRA_REQUIRES(m_Mutex);
    void m_CheckListStatus(EQRACursorMoveMent eMoveMent) QRA_REQUIRES(m_Mutex);
    void m_AutoPrefetch(const CResultList& list) QRA_REQUIRES(m_Mutex);
    void m_Prefetch(int nSection) QRA_REQUIRES(m_Mutex);
    bool m_IsPrefetchable(EQRACursorMoveMent eMoveMent, int& nStartSectionIndex, int& nSectionCount)
        QRA_REQUIRES(m_Mutex);
    bool m_IsDropable(EQRACursorMoveMent eMoveMent, CResultList** pList) QRA_REQUIRES(m_Mutex);
    bool m_IsNeeded(const CResultList& list) QRA_REQUIRES(m_Mutex);
    void m_Remove(CResultList* pList) QRA_REQUIRES(m_Mutex);
    void m_AddToIndex(CResultList* pList) QRA_REQUIRES(m_Mutex);
    CResultList* m_FindList(int nIndex) QRA_REQUIRES(m_Mutex);
    Section m_CalcSection(int nSection) const;
    void m_Clear() QRA_NO_THREAD_SAFETY_ANALYSIS;

    const bool m_bPrefetch;
    const EQRAPrefetchType m_ePrefetchType;
    const int m_nWindowSize;
    const int m_nPrefetchNum;

    on_prefetch_cb m_OnPrefetch = nullptr;
    void* m_pPrefetchData = nullptr;
    on_drop_cb m_OnDrop = nullptr;
    void* m_pDropData = nullptr;

    CQRAGMutex m_Mutex;
    int m_nTotalCount QRA_GUARDED_BY(m_Mutex) = 0;
    int m_nItemCount QRA_GUARDED_BY(m_Mutex) = 0;
    std::map<int, std::unique_ptr<CResultList>> m_Result QRA_GUARDED_BY(m_Mutex);  ///< by section number
    /// The lists that hold items, by their first index: finds an item's section without a walk over all.
    std::map<int, CResultList*> m_ByStart QRA_GUARDED_BY(m_Mutex);
    /// Two lists hold one index, which no sound engine writes: the first section wins, found by walking.
    bool m_bOverlap QRA_GUARDED_BY(m_Mutex) = false;
    int m_nWindowFirst QRA_GUARDED_BY(m_Mutex) = 0;
    int m_nWindowLast QRA_GUARDED_BY(m_Mutex) = -1;
    std::set<int> m_Fetching QRA_GUARDED_BY(m_Mutex);

    Cursor m_Cursor;
    InternalCursor m_InternalCursor;
};

#endif
