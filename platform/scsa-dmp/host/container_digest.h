#ifndef QRA_SCSA_DMP_CONTAINER_DIGEST_H
#define QRA_SCSA_DMP_CONTAINER_DIGEST_H

#include <map>
#include <string>
#include <vector>

#include "platform/scsa-dmp/host/container_reader.h"

namespace scsa_host {

/// A text that was found on the way, or the reason why there is none.
struct KeptText {
    std::string text;
    std::string reason;
};

/// What one walk over a container brings.
struct ContainerDigest {
    /// The names of all files, as URIs.
    std::vector<std::string> names;
    // Of a container that is compressed, by names: what could be kept of its texts and of those in its SFF
    // files.
    std::map<std::string, KeptText> texts;
    std::map<std::string, KeptText> sff_texts;
};

/// Walks over a container that was opened. Where all of it is compressed the texts come along, up to
/// kMostKeptText: each one later would cost one more walk. False, with the reader's reason, if it is broken.
bool take_digest(ContainerReader& container, ContainerDigest& digest);

}  // namespace scsa_host

#endif
