#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_FILTER_FACTORY_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_FILTER_FACTORY_H

class CQRAFilterProductBase;

/// Makes the filter product for a kind of query.
class CQRAFilterFactory {
public:
    /// A new product, which the caller deletes; null for Filter_None and for a number that is no EFilterType.
    CQRAFilterProductBase* CreateProduct(int nFilterType);
};

#endif
