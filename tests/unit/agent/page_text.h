#ifndef QRA_TESTS_UNIT_AGENT_PAGE_TEXT_H
#define QRA_TESTS_UNIT_AGENT_PAGE_TEXT_H

#include <string>

#include "libqra-agent/agent/src/qra_content_page.h"

/// The runs of a page in order, as "upfolder -1+1, contents 0+17, contents 17+3": kind, start, "+", count.
/// Pages are not told apart.
inline std::string page_text(const CQRAContentPage& page) {
    static const char* const kKinds[] = {"none", "empty", "contents", "cluster", "playlist", "upfolder"};
    std::string text;
    for (const _stQRAPageInfo& info : page.GetPageInfos()) {
        for (const _stQRAPageItem& run : info.Items) {
            if (!text.empty())
                text += ", ";
            text += std::string(kKinds[run.eType]) + " " + std::to_string(run.nStartIndex) + "+" +
                    std::to_string(run.nCount);
        }
    }
    return text;
}

#endif
