#ifndef QRA_AGENT_AGENT_SRC_QRA_HANDLER_MGR_H
#define QRA_AGENT_AGENT_SRC_QRA_HANDLER_MGR_H

#include <set>

#include "common/util/qra_handle_value.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "libqra-agent/agent/src/qra_handler.h"

/**
 * The registry that tells live handles from stale addresses. It stores addresses only and owns nothing.
 *
 * A handle is taken out before it is destroyed: that makes CheckHandler(), which reads the handle's kind
 * through its address, safe. Where an entry has to outlive its handle it is marked dead first; a dead entry
 * counts and is walked by ordinal, but is absent to every question and never read through.
 *
 * All operations may be called from any thread. The mutex is the last in the lock order and never held across
 * a call to a handle's own operations or to a client.
 */
class CQRAHandlerMgr : public CQRASingleton<CQRAHandlerMgr> {
public:
    /// Enters a value, alive; nothing is read through it.
    void Add(qra_handle_value_t nHandler);
    /// Takes a value out, alive or dead.
    void Delete(qra_handle_value_t nHandler);
    /// Marks an entry dead: from here on its handle may be destroyed. An absent value stays absent.
    void MarkDead(qra_handle_value_t nHandler);
    /// Takes a value out if it is still dead: a new handle at the same address has made it live again.
    void DeleteIfDead(qra_handle_value_t nHandler);

    bool Exists(qra_handle_value_t nHandler);
    /// True for a live handle of this kind.
    bool CheckHandler(qra_handle_value_t nHandler, QRA_HANDLE_TYPE eType);
    /// Number of entries, the dead ones included.
    int GetCount();
    /// The first live handle, by address, of this kind and id, or null.
    CQRAHandleBase* GetHandler(QRA_HANDLE_TYPE eType, unsigned int nId);
    /// The value at an ordinal position, also of a dead entry, or 0.
    qra_handle_value_t GetHandler(int nHandlerIndex);

private:
    friend class CQRASingleton<CQRAHandlerMgr>;
    CQRAHandlerMgr() = default;

    bool m_IsAlive(qra_handle_value_t nHandler) const QRA_REQUIRES(m_Mutex);

    CQRAMutex m_Mutex;
    std::set<qra_handle_value_t> m_Handlers QRA_GUARDED_BY(m_Mutex);
    std::set<qra_handle_value_t> m_DeadHandlers QRA_GUARDED_BY(m_Mutex);  ///< a subset of m_Handlers
};

#endif
