#ifndef QRA_ENGINE_PLUGINS_HTTP_HTTP_REASON_H
#define QRA_ENGINE_PLUGINS_HTTP_HTTP_REASON_H

#include <gio/gio.h>

#include <string>

namespace engine {

// What went wrong with a server, in words for a person. `server` is how the server is called.

/// A status that is no success; `known` tells whether a user and a password were at hand.
std::string reason_of_status(const std::string& server, unsigned status, bool known);

/// A connection that failed.
std::string reason_of_error(const std::string& server, const GError& error);

/// A certificate that is not trusted.
std::string reason_of_certificate(const std::string& server, GTlsCertificateFlags errors);

}  // namespace engine

#endif
