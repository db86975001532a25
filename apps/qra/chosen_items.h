#ifndef QRA_APPS_QRA_CHOSEN_ITEMS_H
#define QRA_APPS_QRA_CHOSEN_ITEMS_H

#include <vector>

#include "apps/qra/job_item.h"
#include "apps/qra/list_request.h"
#include "apps/qra/tile_choice.h"

/// The tiles of a list that are chosen, each once, in list order. The cursor and the selection are used for
/// it; the selection is empty afterwards.
/// @throws CommandError for a tile or a group that is not there
std::vector<JobItem> chosen_items(ListRequest& request, const ListOptions& options,
                                  const std::vector<TileChoice>& choices);

/// Makes these tiles the selection and lets the cursor walk it.
/// @return them in the order in which a job goes through them
std::vector<JobItem> select_for_job(ListRequest& request, const std::vector<JobItem>& items);

#endif
