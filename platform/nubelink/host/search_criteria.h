#ifndef QRA_NUBELINK_SEARCH_CRITERIA_H
#define QRA_NUBELINK_SEARCH_CRITERIA_H

#include <string>

#include "nubelink.h"

/// What a search asks for. Belongs to the client, and is used by one thread at a time.
struct nbl_searchcriteria_s {
    std::string keyword;
    int types = 0;  ///< bits of nbl_item_type_e
};

namespace nbl {

/// The criteria in the language of servers: items of the types whose title holds the keyword.
std::string search_text(const nbl_searchcriteria_s& criteria);

}  // namespace nbl

#endif
