#ifndef QRA_NUBELINK_SOAP_CALL_H
#define QRA_NUBELINK_SOAP_CALL_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/nubelink/host/http_call.h"

namespace nbl {

/// Where a server takes the actions of one of its services.
struct ServiceAddress {
    std::string type;             ///< "urn:schemas-upnp-org:service:ContentDirectory:1"
    std::string control_url;      ///< absolute, http or https
    std::string description_url;  ///< of the actions that it announces; empty without one
};

using SoapArguments = std::vector<std::pair<std::string, std::string>>;

struct SoapQuestion {
    std::string action;
    SoapArguments arguments;
    unsigned milliseconds = 14'000;  ///< until NBL_ERROR_TIMEOUT
    bool repeatable = true;          ///< false for an action that must not be carried out twice
};

struct SoapAnswer {
    int error = 0;       ///< an nbl_error_e
    int upnp_error = 0;  ///< the server's own error number, where it gave one
    size_t bytes = 0;    ///< of the whole answer, as it came
    SoapArguments arguments;

    /// The out argument of that name; empty for none.
    std::string_view find(std::string_view name) const;
};

/**
 * One action of a server. Errors of the server become errors of ours: an action that it does not know (401,
 * 501, 602, as errors of UPnP or of HTTP) is NBL_ERROR_NOT_SUPPORTED, an object that it does not have (701,
 * 710) NBL_ERROR_ITEM_NOT_EXIST, all others NBL_ERROR_REFUSED.
 *
 * libgupnp's own calls are not used: they read an answer to its end however long it is, and mix up the
 * letters of the whole answer where one byte of it is not UTF-8.
 *
 * Lives on the worker's thread; `done` is called there once, never from inside the constructor, and may end
 * the call. The call's end before that cancels it.
 */
class SoapCall {
public:
    using Done = std::function<void(SoapAnswer)>;
    SoapCall(const HttpClient& client, const ServiceAddress& service, const SoapQuestion& question,
             Done done);

private:
    HttpCall call_;
};

/// The body that asks for the action.
std::string soap_question_body(const std::string& service_type, const SoapQuestion& question);

/// What a server's answer says.
SoapAnswer read_soap_answer(HttpAnswer answer);

}  // namespace nbl

#endif
