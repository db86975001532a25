#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_CALL_TABLE_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_CALL_TABLE_H

#include <glib.h>

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"

class CQRADLNAWrapper;

/**
 * Which wrapper each call that the home network service still has to answer belongs to.
 *
 * The service is handed a number in place of an address. An answer that comes when its call, or its whole
 * wrapper, is gone finds nothing here, whenever it comes and however often; and a wrapper that goes waits for
 * the answers that are inside it on other threads.
 *
 * Safe to use from any thread. The table's mutex is held across no call.
 */
class CQRADlnaCallTable : public CQRASingleton<CQRADlnaCallTable> {
public:
    /// A new call of a wrapper, as the service's user data.
    void* Add(CQRADLNAWrapper* pOwner) QRA_EXCLUDES(m_Mutex);
    /// Forgets a call: its answer is dropped from now on.
    void Remove(void* pCall) QRA_EXCLUDES(m_Mutex);
    /// Forgets all calls of a wrapper, and returns when no other thread is inside it any more.
    void RemoveOwner(const CQRADLNAWrapper* pOwner) QRA_EXCLUDES(m_Mutex);

    /// The wrapper that a call belongs to, which stays until Leave(); null if the call is forgotten.
    CQRADLNAWrapper* Enter(void* pCall) QRA_EXCLUDES(m_Mutex);
    void Leave(const CQRADLNAWrapper* pOwner) QRA_EXCLUDES(m_Mutex);

private:
    bool m_IsOtherInside(const CQRADLNAWrapper* pOwner) const QRA_REQUIRES(m_Mutex);

    CQRAGMutex m_Mutex;
    CQRAGCondition m_Left;
    std::uintptr_t m_nLast QRA_GUARDED_BY(m_Mutex) = 0;
    std::map<std::uintptr_t, CQRADLNAWrapper*> m_Calls QRA_GUARDED_BY(m_Mutex);
    std::vector<std::pair<const CQRADLNAWrapper*, GThread*>> m_Inside QRA_GUARDED_BY(m_Mutex);
};

/// An answer on its way in: holds the wrapper of a call for a scope.
class CQRADlnaAnswer {
public:
    explicit CQRADlnaAnswer(void* pCall) : m_pWrapper(CQRADlnaCallTable::GetInstance()->Enter(pCall)) {}
    ~CQRADlnaAnswer() {
        if (m_pWrapper != nullptr) {
            CQRADlnaCallTable::GetInstance()->Leave(m_pWrapper);
        }
    }
    CQRADlnaAnswer(const CQRADlnaAnswer&) = delete;
    CQRADlnaAnswer& operator=(const CQRADlnaAnswer&) = delete;

    /// Null if nobody waits for this answer.
    CQRADLNAWrapper* GetWrapper() const { return m_pWrapper; }

private:
    CQRADLNAWrapper* const m_pWrapper;
};

#endif
