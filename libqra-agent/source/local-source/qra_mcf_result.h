#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_RESULT_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_RESULT_H

#include "common/util/qra_log.h"

/// Whether a call of the media database succeeded; one that did not is logged with its number.
inline bool Succeeded(int ret, const char* pOperation) {
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: %s fail, ret[%d].", pOperation, ret);
    }
    return ret == 0;
}

#endif
