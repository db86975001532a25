#include "platform/nubelink/host/soap_call.h"

#include "nubelink.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"

namespace nbl {

namespace {

/// Where in the envelope the reader is: <Envelope><Body><ActionResponse><argument>, or a <Fault> in place of
/// the response, with the error number somewhere inside.
constexpr int kResponseDepth = 3;
constexpr int kArgumentDepth = 4;
constexpr size_t kMostArguments = 32;

class AnswerReader : public XmlHandler {
public:
    explicit AnswerReader(SoapArguments& arguments) : arguments_(arguments) {}

    void open(const XmlName& name, const XmlAttributes&) override {
        ++depth_;
        if (depth_ == kResponseDepth) {
            has_response_ = true;
            is_fault_ = name.local == "Fault";
        }
        in_argument_ = depth_ == kArgumentDepth && !is_fault_ && arguments_.size() < kMostArguments;
        if (in_argument_) {
            arguments_.emplace_back(name.local, std::string());
        }
        in_error_number_ = is_fault_ && name.local == "errorCode";
    }

    void text(std::string_view piece) override {
        if (in_error_number_) {
            error_number_ += piece;
        } else if (in_argument_) {
            arguments_.back().second += piece;
        }
    }

    void close() override {
        --depth_;
        in_argument_ = false;
        in_error_number_ = false;
    }

    bool has_response() const { return has_response_; }
    bool is_fault() const { return is_fault_; }
    int error_number() const {
        const auto number = number_of(trimmed(error_number_));
        return number && *number <= 9999 ? static_cast<int>(*number) : 0;
    }

private:
    SoapArguments& arguments_;
    std::string error_number_;
    int depth_ = 0;
    bool has_response_ = false;
    bool is_fault_ = false;
    bool in_argument_ = false;
    bool in_error_number_ = false;
};

int error_of_upnp(int number) {
    switch (number) {
        case 401:
        case 501:
        case 602:
            return NBL_ERROR_NOT_SUPPORTED;
        case 701:
        case 710:
            return NBL_ERROR_ITEM_NOT_EXIST;
        default:
            return NBL_ERROR_REFUSED;
    }
}

int error_of_status(unsigned status) {
    return status == 401 || status == 501 ? NBL_ERROR_NOT_SUPPORTED : NBL_ERROR_REFUSED;
}

HttpQuestion http_question(const ServiceAddress& service, const SoapQuestion& question) {
    HttpQuestion http;
    http.method = "POST";
    http.uri = service.control_url;
    http.headers = {{"SOAPAction", '"' + service.type + '#' + question.action + '"'}};
    http.body_type = "text/xml; charset=\"utf-8\"";
    http.body = soap_question_body(service.type, question);
    http.milliseconds = question.milliseconds;
    http.repeatable = question.repeatable;
    return http;
}

}  // namespace

std::string_view SoapAnswer::find(std::string_view name) const {
    for (const auto& [key, value] : arguments) {
        if (key == name) {
            return value;
        }
    }
    return {};
}

std::string soap_question_body(const std::string& service_type, const SoapQuestion& question) {
    std::string body =
        "<?xml version=\"1.0\"?>"
        "<s:Envelope xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\" "
        "s:encodingStyle=\"http://schemas.xmlsoap.org/soap/encoding/\"><s:Body><u:";
    body += question.action + " xmlns:u=\"" + xml_escaped(service_type) + "\">";
    for (const auto& [name, value] : question.arguments) {
        std::string text = value;
        repair_text(text);
        body += '<' + name + '>' + xml_escaped(text) + "</" + name + '>';
    }
    return body + "</u:" + question.action + "></s:Body></s:Envelope>";
}

SoapAnswer read_soap_answer(HttpAnswer http) {
    SoapAnswer answer;
    answer.error = http.error;
    answer.bytes = http.body.size();
    if (http.error != NBL_ERROR_NONE) {
        return answer;
    }
    mend_document(http.body);
    AnswerReader reader(answer.arguments);
    read_xml(http.body, reader);
    if (reader.is_fault()) {
        answer.upnp_error = reader.error_number();
        answer.error = error_of_upnp(answer.upnp_error);
    } else if (http.status < 200 || http.status > 299) {
        answer.error = error_of_status(http.status);
    } else if (!reader.has_response()) {
        answer.error = NBL_ERROR_BAD_ANSWER;
    }
    return answer;
}

SoapCall::SoapCall(const HttpClient& client, const ServiceAddress& service, const SoapQuestion& question,
                   Done done)
    : call_(client, http_question(service, question),
            [done = std::move(done)](HttpAnswer answer) { done(read_soap_answer(std::move(answer))); }) {}

}  // namespace nbl
