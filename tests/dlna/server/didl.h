#ifndef QRA_TESTS_DLNA_SERVER_DIDL_H
#define QRA_TESTS_DLNA_SERVER_DIDL_H

#include <string>

#include "tests/dlna/server/content.h"

/// How objects are written down.
struct DidlStyle {
    std::string base;      ///< of the addresses of resources, without a slash at the end
    std::string bookmark;  ///< as in Identity
};

constexpr char kDidlStart[] =
    "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" "
    "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\" "
    "xmlns:kvr=\"urn:kelvora:metadata\">";
constexpr char kDidlEnd[] = "</DIDL-Lite>";

/// One object's element.
std::string didl_of(const Object& object, const DidlStyle& style);

#endif
