#ifndef QRA_NUBELINK_FEATURE_READER_H
#define QRA_NUBELINK_FEATURE_READER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nubelink.h"

/// A container of a feature: its id.
struct nbl_container_s {
    std::string id;
};

/// A feature that a server announces.
struct nbl_feature_s {
    std::string name;
    std::vector<std::unique_ptr<nbl_container_s>> containers;
    std::vector<nbl_container_t> container_list;  ///< the same, for C
};

namespace nbl {

using FeaturePtr = std::unique_ptr<nbl_feature_s>;

/// Adds a container to a feature.
void add_container(nbl_feature_s& feature, std::string_view id);

/// The most features, and containers of one, that are read.
constexpr size_t kMostFeatures = 64;
constexpr size_t kMostContainers = 256;

/**
 * Reads a document of features: <Feature name="..."> with <container id="..."> in it, or with a list of ids
 * in <objectIDs>. It comes from a stranger: what cannot be understood is left out, and texts are cut at 1,024
 * bytes.
 *
 * @param document  UTF-8 as mend_xml() leaves it
 */
std::vector<FeaturePtr> read_features(std::string_view document);

}  // namespace nbl

#endif
