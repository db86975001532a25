#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_GROUP_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_GROUP_H

#include <string>

#include "libqra-agent/source/local-source/qra_filter_product.h"

/// Which group query a request's content type and category stand for. No state.
class CQRAMCFGroup {
public:
    /// The filter of the rows to group; Filter_None for the pairs that the database does not group.
    static EFilterType GetFilterType(const std::string& strContentType, const std::string& strCategory);
    /// The column to group by.
    static media_group_field_e GetField(const std::string& strContentType, const std::string& strCategory);
};

#endif
