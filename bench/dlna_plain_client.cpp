#include "bench/dlna_plain_client.h"

#include <libgupnp-av/gupnp-av.h>
#include <libsoup/soup.h>
#include <libxml/parser.h>

#include <utility>

#include "bench/measure.h"
#include "platform/nubelink/host/soap_call.h"
#include "platform/support/glib_ptr.h"

namespace {

constexpr char kService[] = "urn:schemas-upnp-org:service:ContentDirectory:1";

using DocumentPtr = std::unique_ptr<xmlDoc, support::Release<xmlFreeDoc>>;

void release_text(xmlChar* text) {
    xmlFree(text);
}
using XmlTextPtr = std::unique_ptr<xmlChar, support::Release<release_text>>;

std::string page_question(const std::string& folder, int start, int count) {
    nbl::SoapQuestion question;
    question.action = "Browse";
    question.arguments = {{"ObjectID", folder},
                          {"BrowseFlag", "BrowseDirectChildren"},
                          {"Filter", "*"},
                          {"StartingIndex", std::to_string(start)},
                          {"RequestedCount", std::to_string(count)},
                          {"SortCriteria", ""}};
    return nbl::soap_question_body(kService, question);
}

xmlNode* find_element(xmlNode* from, const char* name) {
    for (xmlNode* node = from; node != nullptr; node = node->next) {
        if (xmlStrEqual(node->name, reinterpret_cast<const xmlChar*>(name)) != 0) {
            return node;
        }
        if (xmlNode* found = find_element(node->children, name)) {
            return found;
        }
    }
    return nullptr;
}

}  // namespace

struct PlainClient::Session {
    const glib::ObjectPtr<SoupSession> soup{soup_session_new()};
};

PlainClient::PlainClient(std::string url, std::string folder)
    : url_(std::move(url)), folder_(std::move(folder)), session_(std::make_unique<Session>()) {}

PlainClient::~PlainClient() = default;

std::string PlainClient::fetch(int start, int count) const {
    const glib::ObjectPtr<SoupMessage> message(soup_message_new("POST", url_.c_str()));
    const std::string body = page_question(folder_, start, count);
    const glib::BytesPtr bytes(g_bytes_new(body.data(), body.size()));
    soup_message_set_request_body_from_bytes(message.get(), "text/xml; charset=\"utf-8\"", bytes.get());
    soup_message_headers_append(soup_message_get_request_headers(message.get()), "SOAPAction",
                                (std::string("\"") + kService + "#Browse\"").c_str());
    const glib::BytesPtr answer(
        soup_session_send_and_read(session_->soup.get(), message.get(), nullptr, nullptr));
    if (answer == nullptr || soup_message_get_status(message.get()) != 200) {
        bench::give_up("the server does not answer the plain client");
    }
    size_t size = 0;
    const void* data = g_bytes_get_data(answer.get(), &size);
    return {static_cast<const char*>(data), size};
}

int PlainClient::read(const std::string& answer) {
    const DocumentPtr document(
        xmlReadMemory(answer.data(), static_cast<int>(answer.size()), nullptr, nullptr, XML_PARSE_NONET));
    xmlNode* result =
        document != nullptr ? find_element(xmlDocGetRootElement(document.get()), "Result") : nullptr;
    if (result == nullptr) {
        bench::give_up("the plain client does not understand the server");
    }
    const XmlTextPtr didl(xmlNodeGetContent(result));
    const glib::ObjectPtr<GUPnPDIDLLiteParser> parser(gupnp_didl_lite_parser_new());
    int count = 0;
    const auto take = [](GUPnPDIDLLiteParser*, GUPnPDIDLLiteObject* object, int* counted) {
        const bool has_both = gupnp_didl_lite_object_get_title(object) != nullptr &&
                              gupnp_didl_lite_object_get_upnp_class(object) != nullptr;
        *counted += has_both ? 1 : 0;
    };
    g_signal_connect(
        parser.get(), "object-available",
        G_CALLBACK(static_cast<void (*)(GUPnPDIDLLiteParser*, GUPnPDIDLLiteObject*, int*)>(take)), &count);
    gupnp_didl_lite_parser_parse_didl(parser.get(), reinterpret_cast<const char*>(didl.get()), nullptr);
    return count;
}
