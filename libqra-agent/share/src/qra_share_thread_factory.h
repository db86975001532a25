#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_FACTORY_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_FACTORY_H

#include <qra/qra_types.h>

#include "common/util/qra_singleton.h"

class IQRAShareThread;

/// Makes batch jobs. No state; any thread may ask.
class CQRAShareThreadFactory : public CQRASingleton<CQRAShareThreadFactory> {
public:
    /// A new job, which the caller owns; null for a kind that clients cannot start.
    IQRAShareThread* GetShareThread(qra_processor_type_e eType);

private:
    friend class CQRASingleton<CQRAShareThreadFactory>;
    CQRAShareThreadFactory() = default;
};

#endif
