#include "engine/plugins/http/http_reason.h"

#include <algorithm>

namespace engine {

namespace {

struct StatusReason {
    unsigned status;
    const char* text;
};
constexpr StatusReason kStatusReasons[] = {
    {403, "does not allow this"},
    {404, "has nothing at this address"},
    {405, "does not offer this kind of service at this address"},
    {407, "is reached through a proxy that wants a password"},
    {408, "got tired of waiting for us"},
    {410, "has nothing at this address any more"},
    {423, "has locked this"},
    {429, "wants to be asked less often; try again later"},
    {501, "does not offer this kind of service at this address"},
    {503, "is too busy; try again later"},
    {507, "has no room left"},
};

struct IoReason {
    int code;
    const char* text;
};
constexpr IoReason kIoReasons[] = {
    {G_IO_ERROR_CONNECTION_REFUSED, "answers no calls: nothing listens at this address"},
    {G_IO_ERROR_HOST_NOT_FOUND, "is not known by this name"},
    {G_IO_ERROR_HOST_UNREACHABLE, "cannot be reached"},
    {G_IO_ERROR_NETWORK_UNREACHABLE, "cannot be reached: there is no way into the network"},
    {G_IO_ERROR_TIMED_OUT, "did not answer in time"},
    {G_IO_ERROR_PARTIAL_INPUT, "broke its answer off"},
    {G_IO_ERROR_CONNECTION_CLOSED, "broke its answer off"},
    {G_IO_ERROR_CANCELLED, "says again and again that its answer is to come"},
    {G_IO_ERROR_PROXY_FAILED, "is reached through a proxy that fails"},
};

struct CertificateReason {
    GTlsCertificateFlags flag;
    const char* text;
};
// The first that is set tells most.
constexpr CertificateReason kCertificateReasons[] = {
    {G_TLS_CERTIFICATE_EXPIRED, "it has expired"},
    {G_TLS_CERTIFICATE_NOT_ACTIVATED, "it is not valid yet"},
    {G_TLS_CERTIFICATE_REVOKED, "it was revoked"},
    {G_TLS_CERTIFICATE_BAD_IDENTITY, "it belongs to another server"},
    {G_TLS_CERTIFICATE_UNKNOWN_CA, "nobody whom this system trusts has signed it"},
    {G_TLS_CERTIFICATE_INSECURE, "its signature is too weak"},
};

}  // namespace

std::string reason_of_status(const std::string& server, unsigned status, bool known) {
    const std::string number = " (" + std::to_string(status) + ")";
    if (status == 401) {
        return server +
               (known ? " does not accept the user name or the password"
                      : " wants a user name and a password") +
               number;
    }
    const auto* const reason =
        std::find_if(std::begin(kStatusReasons), std::end(kStatusReasons),
                     [status](const StatusReason& row) { return row.status == status; });
    if (reason != std::end(kStatusReasons)) {
        return server + " " + reason->text + number;
    }
    return server + (status >= 500 ? " has a fault of its own" : " refuses the request") + number;
}

std::string reason_of_error(const std::string& server, const GError& error) {
    if (error.domain == G_RESOLVER_ERROR) {
        return server + (error.code == G_RESOLVER_ERROR_TEMPORARY_FAILURE
                             ? " cannot be looked up at the moment"
                             : " is not known by this name");
    }
    if (error.domain == G_TLS_ERROR) {
        return server + " cannot be spoken to over a safe connection";
    }
    if (error.domain == G_IO_ERROR) {
        const auto* const reason =
            std::find_if(std::begin(kIoReasons), std::end(kIoReasons),
                         [&error](const IoReason& row) { return row.code == error.code; });
        if (reason != std::end(kIoReasons)) {
            return server + " " + reason->text;
        }
    }
    return server + " gave no answer that can be understood";
}

std::string reason_of_certificate(const std::string& server, GTlsCertificateFlags errors) {
    const auto* const reason =
        std::find_if(std::begin(kCertificateReasons), std::end(kCertificateReasons),
                     [errors](const CertificateReason& row) { return (errors & row.flag) != 0; });
    const char* text = reason != std::end(kCertificateReasons) ? reason->text : "it is not in order";
    return server + " shows a certificate that is not trusted: " + text;
}

}  // namespace engine
