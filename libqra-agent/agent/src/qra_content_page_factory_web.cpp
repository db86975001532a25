#include <algorithm>

#include "common/datamodel/qra_resultpool.h"
#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_content_page_factory.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_selectlist.h"

// The build for lists of the content engine. The result of an add is not looked at: an empty pool is an empty
// page.

namespace {

constexpr unsigned long kRowPageStyle = 0x01 | CQRAContentPage::kStyleRowOrder;
constexpr unsigned long kColumnPageStyle = 0x01 | CQRAContentPage::kStyleColumnOrder;

/// No list is longer. A page costs memory for its tiles, so that a number that an engine made up is not laid
/// out.
constexpr int kMostItems = 10000000;

int TotalOf(CResultPool& pool) {
    const int nTotal = pool.GetTotalCount();
    if (nTotal <= kMostItems)
        return nTotal;
    QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid total count[%d].", nTotal);
    return 0;
}

/// Checks what the build needs, and logs what is missing.
qra_error_code_e CheckWebBuild(const CQRAAgentHandle* pHandle, int nRow, int nCol) {
    const char* szMissing = nullptr;
    if (nCol == 0)
        szMissing = "nCol == 0";
    else if (nRow == 0)
        szMissing = "nRow == 0";
    if (szMissing != nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s", szMissing);
        return QRA_ERROR_INVALID_PARAM;
    }
    if (pHandle->GetResultPool() == nullptr)
        szMissing = "pHandle->GetResultPool()== NULL";
    else if (pHandle->GetSelectList() == nullptr)
        szMissing = "pHandle->GetSelectList()== NULL";
    if (szMissing != nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s", szMissing);
        return QRA_ERROR_INVALID_HANDLE;
    }
    return QRA_ERROR_NONE;
}

}  // namespace

qra_error_code_e CQRAContentPageFactory::Build(CQRAAgentHandle* pHandle, qra_page_order_e eOrder, int nMask,
                                               int nGroupIndex, int nRow, int nCol, bool) {
    qra_error_code_e eCode = CheckWebBuild(pHandle, nRow, nCol);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    if (eOrder != QRA_PAGE_ORDER_ROW && eOrder != QRA_PAGE_ORDER_COLUMN) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid page order[%d].", eOrder);
        return QRA_ERROR_INVALID_PARAM;
    }
    eCode = m_CreatePage(pHandle, nRow, nCol, eOrder == QRA_PAGE_ORDER_ROW ? kRowPageStyle : kColumnPageStyle,
                         nMask);
    if (eCode != QRA_ERROR_NONE)
        return eCode;

    const bool bSelected = (nMask & kMaskSelected) != 0;
    const bool bGroupedFolders = (nMask & kMaskGroup) != 0 && (nMask & kMaskFolder) != 0;
    if (bSelected ? (nMask & kMaskAllContent) != 0 : bGroupedFolders) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid ePageStyle[%d].", nMask);
        return QRA_ERROR_INVALID_PARAM;
    }
    if (bSelected)
        return m_AddSelectedItem(pHandle) ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;

    const std::string strSource = pHandle->GetSourceName();
    if (strSource == "CloudSource")
        m_AddCloudSource(pHandle, nMask);
    else if (strSource == "qra_ra_source")
        pHandle->GetContentPage()->AddContentsItem(0, TotalOf(*pHandle->GetResultPool()) - 1);
    else
        m_AddWebSource(pHandle, nMask, nGroupIndex);
    return QRA_ERROR_NONE;
}

void CQRAContentPageFactory::m_AddCloudSource(CQRAAgentHandle* pHandle, int nMask) {
    CResultPool* pPool = pHandle->GetResultPool();
    if ((nMask & kMaskFolder) != 0) {
        pHandle->GetContentPage()->AddContentsItem(0, TotalOf(*pPool));
        return;
    }
    int nBegin = 0;
    int nEnd = 0;
    if ((nMask & kMaskMedia) != 0)
        pPool->GetGroup(1, nBegin, nEnd);
    m_AddRange(pHandle, nBegin, nEnd);
}

void CQRAContentPageFactory::m_AddWebSource(CQRAAgentHandle* pHandle, int nMask, int nGroupIndex) {
    const bool bFolder = (nMask & kMaskFolder) != 0;
    QRA_ASSERT(bFolder == false);
    const bool bMedia = (nMask & kMaskMedia) != 0;
    CResultPool* pPool = pHandle->GetResultPool();
    if ((nMask & kMaskGroup) != 0) {
        const int nCount = nGroupIndex < 0 ? pPool->GetGroupCount() : 1;
        for (int i = 0; i < nCount; ++i) {
            const int nGroup = nGroupIndex < 0 ? i : nGroupIndex;
            pHandle->GetContentPage()->AddClusterItem(nGroup, 1);
            if (bMedia)
                m_AddPoolGroup(pHandle, nGroup);
        }
    } else if (bMedia && nGroupIndex == -1) {
        pHandle->GetContentPage()->AddContentsItem(0, TotalOf(*pPool));
    } else if (bMedia) {
        m_AddPoolGroup(pHandle, nGroupIndex);
    }
}

void CQRAContentPageFactory::m_AddPoolGroup(CQRAAgentHandle* pHandle, int nGroup) {
    int nBegin = 0;
    int nEnd = 0;
    if (pHandle->GetResultPool()->GetGroup(nGroup, nBegin, nEnd))
        m_AddRange(pHandle, nBegin, nEnd);
}

// The range comes from the engine: one that does not lie in its list is not laid out, nor is that of a group
// without items.
void CQRAContentPageFactory::m_AddRange(CQRAAgentHandle* pHandle, int nBegin, int nEnd) {
    if (nBegin >= 0 && nBegin <= nEnd && nEnd <= std::max(0, TotalOf(*pHandle->GetResultPool()) - 1))
        pHandle->GetContentPage()->AddContentsItem(nBegin, nEnd - nBegin + 1);
    else if (nBegin < 0 || nEnd != nBegin - 1)
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid range[%d, %d].", nBegin, nEnd);
}
