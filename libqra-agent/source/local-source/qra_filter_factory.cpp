#include "libqra-agent/source/local-source/qra_filter_factory.h"

#include <cstddef>
#include <iterator>

#include "libqra-agent/source/local-source/qra_filter_product.h"

namespace {

template <class Product>
CQRAFilterProductBase* Create() {
    return new Product;
}

CQRAFilterProductBase* CreateNone() {
    return nullptr;
}

// By EFilterType.
constexpr CQRAFilterProductBase* (*FILTER_PRODUCTS[])() = {
    CreateNone,
    Create<CQRAFilterDateGroup>,
    Create<CQRAFilterPVRDateGroup>,
    Create<CQRAFilterChannelGroup>,
    Create<CQRAFilterChannelNumGroup>,
    Create<CQRAFilterPVRDateDCMGroup>,
    Create<CQRAFilterChannelDCMGroup>,
    Create<CQRAFilterChannelNumDCMGroup>,
    Create<CQRAFilterFolderID>,
    Create<CQRAFilterFolderList>,
    Create<CQRAFilterMediaList>,
    Create<CQRAFilterPVRList>,
    Create<CQRAFilterUHDList>,
    Create<CQRAFilterUHDUpdate>,
    Create<CQRAFilterMediaSearch>,
    Create<CQRAFilterPVRSearch>,
    Create<CQRAFilterUHDSearch>,
    Create<CQRAFilterMediaDCM>,
    Create<CQRAFilterPVRDCM>,
    Create<CQRAFilterUHDDCM>,
    Create<CQRAFilterFolderThumbFolderCount>,
    Create<CQRAFilterFolderThumbMediaCount>,
    Create<CQRAFilterFolderThumbMediaList>,
    Create<CQRAFilterLargePhotoList>,
};

}  // namespace

CQRAFilterProductBase* CQRAFilterFactory::CreateProduct(int nFilterType) {
    if (nFilterType < 0 || nFilterType >= static_cast<int>(std::size(FILTER_PRODUCTS))) {
        return nullptr;
    }
    return FILTER_PRODUCTS[nFilterType]();
}
