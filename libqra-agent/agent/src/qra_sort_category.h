#ifndef QRA_AGENT_AGENT_SRC_QRA_SORT_CATEGORY_H
#define QRA_AGENT_AGENT_SRC_QRA_SORT_CATEGORY_H

#include <string>

/// How the sort category of a request steers the layout of its page.
struct CategoryLayout {
    bool bFolderBuild;       ///< a view of one folder, with an up-folder tile
    bool bFolderView;        ///< folders first, then the media behind them, without groups
    bool bFolderViewExpand;  ///< the same, when a group was expanded
    bool bFoldersLast;       ///< in a view of one folder: folders behind the media
};

/// The layout of a category; a category that is not named here has none of these.
CategoryLayout qra_category_layout(const std::string& strCategory);

#endif
