#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_OBJ_MANAGER_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_OBJ_MANAGER_H

#include <functional>
#include <list>

#include "common/util/qra_handle_value.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"

/**
 * Which objects are alive, for callbacks of the platform that can come after their object has gone.
 *
 * Knows addresses only and owns nothing. Any thread may call anything; one mutex covers the list. It is held
 * through the action of RunIfFound(), so that the object cannot be taken out while it is being touched.
 */
class CQRAObjManager : public CQRASingleton<CQRAObjManager> {
public:
    /// Enters an address, once more if it is there already.
    void AddObj(qra_handle_value_t nObj) QRA_EXCLUDES(m_Mutex);
    /// Takes out every entry of the address; waits for a RunIfFound() that runs.
    void RemoveObj(qra_handle_value_t nObj) QRA_EXCLUDES(m_Mutex);
    bool FindObj(qra_handle_value_t nObj) const QRA_EXCLUDES(m_Mutex);
    /// Runs the action if the address is there, and keeps it there until the action is done. The action must
    /// not call back into this class, nor wait for anything.
    bool RunIfFound(qra_handle_value_t nObj, const std::function<void()>& action) const QRA_EXCLUDES(m_Mutex);

private:
    bool m_FindObj(qra_handle_value_t nObj) const QRA_REQUIRES(m_Mutex);

    mutable CQRAGMutex m_Mutex;
    std::list<qra_handle_value_t> m_Objs QRA_GUARDED_BY(m_Mutex);
};

#endif
