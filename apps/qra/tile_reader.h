#ifndef QRA_APPS_QRA_TILE_READER_H
#define QRA_APPS_QRA_TILE_READER_H

#include <string>

#include "apps/qra/grid_view.h"
#include "apps/qra/list_request.h"

/// Reads what the grid shows of the tile at the cursor, by its kind.
Tile read_tile(qra_agent_handler_h list);

/// "3 folders, 12 pictures, 1 video" of the whole list.
std::string summary(const ListRequest& request);

/// How list indices run over a page: only pages that the content engine serves obey the wish for row order.
qra_page_order_e page_order(const ListOptions& options);

#endif
