#ifndef QRA_AGENT_AGENT_SRC_QRA_DEVICE_CHECK_H
#define QRA_AGENT_AGENT_SRC_QRA_DEVICE_CHECK_H

#include <thread>
#include <vector>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "libqra-agent/agent/src/qra_handler.h"

/**
 * Lets device checks begin and end while their signals are being delivered on other threads.
 *
 * Clients start and stop checks on any thread; the engine's signals come on the threads that run a main loop.
 * A signal of a scanner that no handle has waits while checks are being started, since the engine may be
 * faster than the reply that names the scanner. A handle that is being delivered to is destroyed by its last
 * delivery.
 *
 * The mutex covers all fields. It comes before the registry's, and is not held while a client's callback
 * runs.
 */
class CQRADeviceChecks : public CQRASingleton<CQRADeviceChecks> {
public:
    /// Lives while a check is being started, until its handle is in the registry.
    class CStarting {
    public:
        CStarting();
        ~CStarting();
        CStarting(const CStarting&) = delete;
        CStarting& operator=(const CStarting&) = delete;
    };

    /// Lives while a signal is being delivered to the handle of its scanner.
    class CDelivery {
    public:
        explicit CDelivery(unsigned int nScannerId);
        ~CDelivery();
        CDelivery(const CDelivery&) = delete;
        CDelivery& operator=(const CDelivery&) = delete;
        /// Null if no handle has the scanner.
        CQRAHandleBase* GetHandle() const { return m_pHandle; }

    private:
        CQRAHandleBase* const m_pHandle;
    };

    /// Takes a check out of the registry and destroys it, on this thread once no other one delivers to it;
    /// from inside a delivery it waits for nobody. False if it is none.
    bool Remove(CQRADeviceCheckHandle* pHandle, unsigned int& nScannerId) QRA_EXCLUDES(m_Mutex);

private:
    struct SDelivery {
        CQRAHandleBase* pHandle;
        std::thread::id thread;
    };

    void m_Starting(int nChange) QRA_EXCLUDES(m_Mutex);
    CQRAHandleBase* m_BeginDelivery(unsigned int nScannerId) QRA_EXCLUDES(m_Mutex);
    void m_EndDelivery(CQRAHandleBase* pHandle) QRA_EXCLUDES(m_Mutex);
    bool m_IsDeliveredTo(const CQRAHandleBase* pHandle) const QRA_REQUIRES(m_Mutex);
    bool m_DeliversOn(std::thread::id thread) const QRA_REQUIRES(m_Mutex);

    CQRAGMutex m_Mutex;
    CQRAGCondition m_Changed;
    int m_nStarting QRA_GUARDED_BY(m_Mutex) = 0;
    std::vector<SDelivery> m_Deliveries QRA_GUARDED_BY(m_Mutex);
    std::vector<CQRAHandleBase*> m_Ended QRA_GUARDED_BY(m_Mutex);  ///< left to their last delivery
};

#endif
