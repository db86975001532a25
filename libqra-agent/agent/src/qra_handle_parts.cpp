#include "libqra-agent/agent/src/qra_handle_parts.h"

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_handler.h"

bool qra_has_parts(const CQRAAgentHandle* pHandle, unsigned parts) {
    const char* szMissing = nullptr;
    if (pHandle == nullptr)
        szMissing = "pHandle == NULL";
    else if ((parts & kPartSource) != 0 && pHandle->GetSource() == nullptr)
        szMissing = "pHandle->GetSource() == NULL";
    else if ((parts & kPartContentPage) != 0 && pHandle->GetContentPage() == nullptr)
        szMissing = "pHandle->GetContentPage() == NULL";
    else if ((parts & kPartSelectList) != 0 && pHandle->GetSelectList() == nullptr)
        szMissing = "pHandle->GetSelectList()== NULL";
    else if ((parts & kPartGroupInfo) != 0 && pHandle->GetGroupInfo() == nullptr)
        szMissing = "pHandle->GetGroupInfo() == NULL";
    else if ((parts & kPartItemBuilder) != 0 && pHandle->GetItemBuilder() == nullptr)
        szMissing = "pHandle->GetItemBuilder() == NULL";
    if (szMissing == nullptr)
        return true;
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "%s", szMissing);
    return false;
}
