#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_MIME_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_MIME_H

#include <string>
#include <unordered_map>

/// Content types by extension, in lower case without the dot.
using qra_dlna_mime_map = std::unordered_map<std::string, const char*>;

/// The content types under which files are sent to servers.
qra_dlna_mime_map qra_dlna_make_mime_map();

#endif
