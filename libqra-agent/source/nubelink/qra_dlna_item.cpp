#include "libqra-agent/source/nubelink/qra_dlna_item.h"

#include <cstdlib>

namespace {

/// Moves a text that the service made to `strText`.
bool take_text(int nCode, char* szText, std::string& strText) {
    const bool bText = nCode == NBL_ERROR_NONE && szText != nullptr;
    if (bText) {
        strText = szText;
    }
    free(szText);
    return bText;
}

}  // namespace

CQRADlnaItem CQRADlnaItem::Copy(nbl_item_t hItem) {
    CQRADlnaItem copy;
    if (hItem != nullptr && nbl_item_copy(hItem, copy.Receive()) != NBL_ERROR_NONE) {
        copy.m_hItem = nullptr;
    }
    return copy;
}

bool qra_dlna_read_text(int (*get)(nbl_item_t, char**), const CQRADlnaItem& item, std::string& strText) {
    char* szText = nullptr;
    const int nCode = get(item.Get(), &szText);
    return take_text(nCode, szText, strText);
}

bool qra_dlna_read_property(const CQRADlnaItem& item, const char* szName, std::string& strText) {
    char* szText = nullptr;
    const int nCode = nbl_item_get_property_value_by_name(item.Get(), szName, &szText);
    return take_text(nCode, szText, strText);
}
