#include "libqra-agent/share/src/qra_share_thread_factory.h"

#include "common/util/qra_log.h"
#include "libqra-agent/share/src/qra_copy_thread.h"
#include "libqra-agent/share/src/qra_delete_thread.h"

IQRAShareThread* CQRAShareThreadFactory::GetShareThread(qra_processor_type_e eType) {
    switch (eType) {
        case QRA_PROCESSOR_TYPE_DELETE:
            return new CQRADeleteThread;
        case QRA_PROCESSOR_TYPE_COPY:
            return new CQRACopyThread;
        case QRA_PROCESSOR_TYPE_DLNA:
        case QRA_PROCESSOR_TYPE_RESERVED:
        case QRA_PROCESSOR_TYPE_LOCK:
            return nullptr;
        default:
            QRA_LOG_WARNING(QRA_TAG_SEND, "Unkown share type.");
            return nullptr;
    }
}
