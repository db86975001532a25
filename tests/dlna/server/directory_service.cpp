#include "tests/dlna/server/directory_service.h"

#include <libgupnp-av/gupnp-av.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "tests/dlna/server/criteria.h"
#include "tests/fakes/web_server.h"

namespace {

constexpr char kServiceType[] = "urn:schemas-upnp-org:service:ContentDirectory:1";
constexpr char kControlPath[] = "/ContentDirectory/control";
constexpr char kAnyContainer[] = "DLNA.ORG_AnyContainer";
/// All that clients may try, also where the server does not know it.
constexpr const char* kActions[] = {
    "Browse",         "Search",           "GetSystemUpdateID", "GetSearchCapabilities", "GetSortCapabilities",
    "GetFeatureList", "X_GetFeatureList", "CreateObject",      "DestroyObject",         "UpdateObject",
    "X_SetBookmark",
};
constexpr unsigned kInvalidAction = 401;
constexpr unsigned kNoSuchObject = 701;
constexpr unsigned kBadCriteria = 708;
constexpr unsigned kRestricted = 713;

std::string text_argument(GUPnPServiceAction* action, const char* name) {
    char* value = nullptr;
    gupnp_service_action_get(action, name, G_TYPE_STRING, &value, nullptr);
    const std::string text = value ? value : "";
    g_free(value);
    return text;
}

unsigned number_argument(GUPnPServiceAction* action, const char* name) {
    guint value = 0;
    gupnp_service_action_get(action, name, G_TYPE_UINT, &value, nullptr);
    return value;
}

std::string action_of(SoupServerMessage* message) {
    const char* header =
        soup_message_headers_get_one(soup_server_message_get_request_headers(message), "SOAPAction");
    std::string text = header ? header : "";
    text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
    return text.substr(text.find('#') + 1);
}

/// Once the request is read whole, in place of the proper answer.
void when_read(SoupServerMessage* message, std::function<void(SoupServerMessage*)> then) {
    using Then = std::function<void(SoupServerMessage*)>;
    const auto run = [](SoupServerMessage* read, Then* what) { (*what)(read); };
    const auto free = [](void* what, GClosure*) { std::unique_ptr<Then>(static_cast<Then*>(what)); };
    soup_server_message_set_status(message, 200, nullptr);
    g_signal_connect_data(
        message, "got-body", G_CALLBACK(static_cast<void (*)(SoupServerMessage*, Then*)>(run)),
        std::make_unique<Then>(std::move(then)).release(), free, static_cast<GConnectFlags>(0));
}

constexpr char kHalfAnswer[] =
    "HTTP/1.1 200 OK\r\nContent-Type: text/xml; charset=\"utf-8\"\r\n"
    "Content-Length: 5000\r\n\r\n<?xml version=\"1.0\"?><s:Envelope ";
constexpr char kBrokenAnswer[] =
    "<?xml version=\"1.0\"?><s:Envelope xmlns:s=\"http://schemas.xmlsoap.org/soap/"
    "envelope/\"><s:Body><u:BrowseResponse></s:Body>";

std::string base_of(GUPnPRootDevice* device) {
    GUPnPContext* context = gupnp_device_info_get_context(GUPNP_DEVICE_INFO(device));
    return std::string("http://") + gssdp_client_get_host_ip(GSSDP_CLIENT(context)) + ":" +
           std::to_string(gupnp_context_get_port(context));
}

}  // namespace

DirectoryService::DirectoryService(GUPnPRootDevice* device, const Identity& identity, Content& content,
                                   Faults& faults, Journal& journal)
    : identity_(identity),
      style_{base_of(device), identity.bookmark},
      content_(content),
      faults_(faults),
      journal_(journal),
      service_(GUPNP_SERVICE(gupnp_device_info_get_service(GUPNP_DEVICE_INFO(device), kServiceType))) {
    for (const char* action : kActions) {
        g_signal_connect(service_, (std::string("action-invoked::") + action).c_str(), G_CALLBACK(on_action),
                         this);
    }
    g_signal_connect(service_, "query-variable", G_CALLBACK(on_query), this);
    GUPnPContext* context = gupnp_device_info_get_context(GUPNP_DEVICE_INFO(device));
    soup_server_add_early_handler(gupnp_context_get_server(context), kControlPath, on_control, this, nullptr);
}

DirectoryService::~DirectoryService() {
    if (turn_ != 0) {
        g_source_remove(turn_);
    }
    for (GUPnPServiceAction* action : due_) {
        answer(action);
    }
    release();
    g_object_unref(service_);
}

void DirectoryService::release() {
    std::vector<GUPnPServiceAction*> held;
    held.swap(held_);
    for (GUPnPServiceAction* action : held) {
        answer(action);
    }
}

void DirectoryService::tell_change() {
    content_.changed();
    gupnp_service_notify(service_, "SystemUpdateID", G_TYPE_UINT, content_.update_id(), nullptr);
}

void DirectoryService::on_query(GUPnPService*, const char* variable, GValue* value, void* self) {
    if (g_str_equal(variable, "SystemUpdateID")) {
        g_value_init(value, G_TYPE_UINT);
        g_value_set_uint(value, static_cast<DirectoryService*>(self)->content_.update_id());
    } else {
        g_value_init(value, G_TYPE_STRING);
        g_value_set_string(value, "");
    }
}

void DirectoryService::on_control(SoupServer*, SoupServerMessage* message, const char*, GHashTable*,
                                  void* self) {
    auto* service = static_cast<DirectoryService*>(self);
    const std::string name = action_of(message);
    Faults& faults = service->faults_;
    if (faults.is_on(name, "cut")) {
        when_read(message, [](SoupServerMessage* read) { reply_raw(read, kHalfAnswer); });
    } else if (faults.is_on(name, "endless")) {
        when_read(message, [](SoupServerMessage* read) {
            reply_endlessly(read, 200, "<?xml version=\"1.0\"?><s:Envelope ", std::string(60000, ' '));
        });
    } else if (faults.is_on(name, "broken-soap")) {
        when_read(message, [](SoupServerMessage* read) { reply(read, 200, kBrokenAnswer, "text/xml"); });
    } else if (const auto url = faults.take(name, "redirect")) {
        when_read(message, [to = *url](SoupServerMessage* read) { redirect(read, 307, to); });
    } else if (const auto status = faults.take_number(name, "status")) {
        when_read(message, [code = *status](SoupServerMessage* read) {
            reply(read, static_cast<unsigned>(code), "no");
        });
    } else {
        return;
    }
    service->journal_.count(name);
}

void DirectoryService::on_action(GUPnPService*, GUPnPServiceAction* action, void* self) {
    auto* service = static_cast<DirectoryService*>(self);
    const std::string name = gupnp_service_action_get_name(action);
    service->journal_.count(name);
    if (service->faults_.is_on(name, "hold")) {
        service->held_.push_back(action);
        return;
    }
    const auto delay = service->faults_.take_number(name, "delay");
    if (!delay) {
        service->answer_in_turn(action);
        return;
    }
    using Later = std::pair<DirectoryService*, GUPnPServiceAction*>;
    const auto run = [](void* data) -> gboolean {
        const std::unique_ptr<Later> later(static_cast<Later*>(data));
        later->first->answer_in_turn(later->second);
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(static_cast<guint>(*delay), run, std::make_unique<Later>(service, action).release());
}

void DirectoryService::answer_in_turn(GUPnPServiceAction* action) {
    due_.push_back(action);
    if (turn_ == 0) {
        turn_ = g_idle_add(on_turn, this);
    }
}

gboolean DirectoryService::on_turn(void* self) {
    auto* service = static_cast<DirectoryService*>(self);
    GUPnPServiceAction* action = service->due_.front();
    service->due_.pop_front();
    service->answer(action);
    if (!service->due_.empty()) {
        return G_SOURCE_CONTINUE;
    }
    service->turn_ = 0;
    return G_SOURCE_REMOVE;
}

void DirectoryService::answer(GUPnPServiceAction* action) {
    using Handler = void (DirectoryService::*)(GUPnPServiceAction*);
    struct Known {
        const char* name;
        Handler handler;
        bool there;
    };
    const Known actions[] = {
        {"Browse", &DirectoryService::browse, true},
        {"Search", &DirectoryService::search, identity_.search},
        {"CreateObject", &DirectoryService::create_object, identity_.upload},
        {"DestroyObject", &DirectoryService::destroy_object, identity_.upload},
        {"X_SetBookmark", &DirectoryService::set_bookmark, identity_.bookmark == "action"},
        {"UpdateObject", &DirectoryService::update_object, identity_.bookmark == "position"},
    };
    const std::string name = gupnp_service_action_get_name(action);
    if (const auto code = faults_.take_number(name, "error")) {
        gupnp_service_action_return_error(action, static_cast<guint>(*code), "as the test wants it");
        return;
    }
    for (const Known& known : actions) {
        if (known.there && name == known.name) {
            (this->*known.handler)(action);
            return;
        }
    }
    if (name == "GetSystemUpdateID") {
        give_text(action, "Id", std::to_string(content_.update_id()));
    } else if (name == "GetSearchCapabilities") {
        give_text(action, "SearchCaps", identity_.search ? "*" : "");
    } else if (name == "GetSortCapabilities") {
        give_text(action, "SortCaps", "");
    } else if (name == "X_GetFeatureList" && identity_.feature_list) {
        give_text(action, "FeatureList", feature_list());
    } else {
        gupnp_service_action_return_error(action, kInvalidAction, "no such action");
    }
}

void DirectoryService::give_text(GUPnPServiceAction* action, const char* argument, const std::string& text) {
    gupnp_service_action_set(action, argument, G_TYPE_STRING, text.c_str(), nullptr);
    gupnp_service_action_return_success(action);
}

std::string DirectoryService::feature_list() {
    const auto broken = faults_.take("X_GetFeatureList", "text");
    if (broken) {
        return *broken;
    }
    static const std::pair<const char*, const char*> kViews[] = {
        {"I_N", "imageItem"}, {"I_L", "imageItem"}, {"V_T", "videoItem"}, {"V_L", "videoItem"},
        {"A_M", "audioItem"}, {"A_A", "audioItem"}, {"A_L", "audioItem"}, {"A_G", "audioItem"},
    };
    std::string containers;
    for (const auto& [id, type] : kViews) {
        if (content_.find(id)) {
            containers += std::string("<container id=\"") + id + "\" type=\"object.item." + type + "\"/>";
        }
    }
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Features xmlns=\"urn:schemas-upnp-org:av:avs\">"
        "<Feature name=\"kelvora.com_BASIC\" version=\"1\"><container id=\"0\" type=\"object\"/>"
        "</Feature>";
    if (!containers.empty()) {
        text += "<Feature name=\"kelvora.com_DCM10\" version=\"1\">" + containers + "</Feature>";
    }
    return text + "</Features>";
}

void DirectoryService::browse(GUPnPServiceAction* action) {
    const Object* object = content_.find(text_argument(action, "ObjectID"));
    if (!object) {
        gupnp_service_action_return_error(action, kNoSuchObject, "no such object");
        return;
    }
    if (text_argument(action, "BrowseFlag") == "BrowseMetadata") {
        answer_page(action, 1, [object](std::size_t) { return object; });
        return;
    }
    answer_page(action, object->children.size(),
                [&](std::size_t i) { return content_.find(object->children[i]); });
}

void DirectoryService::search(GUPnPServiceAction* action) {
    const std::string text = text_argument(action, "SearchCriteria");
    journal_.note("Search", text);
    const std::optional<Criteria> criteria = Criteria::parse(text);
    if (!criteria) {
        gupnp_service_action_return_error(action, kBadCriteria, "bad search criteria");
        return;
    }
    std::vector<const Object*> objects;
    for (const Object* object : content_.below(text_argument(action, "ContainerID"), true)) {
        if (criteria->fits(*object)) {
            objects.push_back(object);
        }
    }
    answer_page(action, objects.size(), [&](std::size_t i) { return objects[i]; });
}

unsigned DirectoryService::total_of(const std::string& name, std::size_t true_total) {
    int total = static_cast<int>(true_total);
    if (const auto told = faults_.take_number(name, "total")) {
        total = *told;
    }
    const auto answered = static_cast<int>(journal_.of(name));
    if (const auto step = faults_.take_number(name, "grow")) {
        total += *step * answered;
    }
    if (const auto step = faults_.take_number(name, "shrink")) {
        total -= *step * answered;
    }
    return static_cast<unsigned>(std::max(total, 0));
}

std::string DirectoryService::page_didl(const std::string& name, const std::vector<const Object*>& objects,
                                        std::size_t start) {
    if (faults_.is_on(name, "no-didl")) {
        return "";
    }
    if (faults_.is_on(name, "empty-didl")) {
        return "<DIDL-Lite/>";
    }
    const bool one_id = faults_.is_on(name, "duplicate-ids");
    const auto child_count = faults_.take_number(name, "child-count");
    const auto bad_bytes = faults_.take_number(name, "not-utf8");
    const bool invented = faults_.is_on(name, "invent");
    const auto fat = faults_.take_number(name, "fat");
    std::string text = kDidlStart;
    text.append(static_cast<std::size_t>(faults_.take_number(name, "padded").value_or(0)), ' ');
    for (std::size_t i = 0; i < objects.size(); ++i) {
        Object object = *objects[i];
        if (invented) {
            object.id = "invented-" + std::to_string(start + i);
        }
        object.title.append(static_cast<std::size_t>(fat.value_or(0)), 'x');
        if (one_id) {
            object.id = objects[0]->id;
        }
        if (child_count) {
            object.children.resize(static_cast<std::size_t>(*child_count));
        }
        if (bad_bytes == static_cast<int>(i)) {
            object.title = "caf\xE9 au lait";
        }
        text += didl_of(object, style_);
    }
    return faults_.is_on(name, "broken-didl") ? text + "<item id=\"broken\"" : text + kDidlEnd;
}

void DirectoryService::answer_page(GUPnPServiceAction* action, std::size_t total, const ObjectAt& object_at) {
    const std::string name = gupnp_service_action_get_name(action);
    std::size_t start = number_argument(action, "StartingIndex");
    std::size_t count = number_argument(action, "RequestedCount");
    if (faults_.is_on(name, "same-page")) {
        start = 0;
    }
    if (count == 0) {
        count = total;
    }
    if (const auto most = faults_.take_number(name, "at-most")) {
        count = std::min(count, static_cast<std::size_t>(*most));
    }
    const auto none_from = faults_.take_number(name, "none-from");
    const auto invented = faults_.take_number(name, "invent");
    const std::size_t all = invented ? static_cast<std::size_t>(*invented) : total;
    if (total == 0 || start >= all || (none_from && start >= static_cast<std::size_t>(*none_from))) {
        count = 0;
        start = 0;
    }
    count = std::min(count, all - start);
    std::vector<const Object*> page;
    for (std::size_t i = start; i < start + count; ++i) {
        page.push_back(object_at(i % total));
    }
    const unsigned told =
        faults_.is_on(name, "total-of-page") ? static_cast<unsigned>(count) : total_of(name, all);
    gupnp_service_action_set(action, "Result", G_TYPE_STRING, page_didl(name, page, start).c_str(),
                             "NumberReturned", G_TYPE_UINT, static_cast<guint>(count), "TotalMatches",
                             G_TYPE_UINT, told, "UpdateID", G_TYPE_UINT, content_.update_id(), nullptr);
    gupnp_service_action_return_success(action);
}

void DirectoryService::create_object(GUPnPServiceAction* action) {
    const std::string container = text_argument(action, "ContainerID");
    const Object* parent = content_.find(container);
    if (container != kAnyContainer && (!parent || container == "0")) {
        gupnp_service_action_return_error(action, parent ? kRestricted : kNoSuchObject, "not there");
        return;
    }
    if (container == kAnyContainer && !content_.find("uploads")) {
        content_.add_container("uploads", "0", "Uploads");
    }
    Object object;
    object.parent = parent ? container : "uploads";
    object.id = "upload-" + std::to_string(imported_++);
    object.imported = false;
    const auto take = [](GUPnPDIDLLiteParser*, GUPnPDIDLLiteObject* told, Object* into) {
        const char* title = gupnp_didl_lite_object_get_title(told);
        const char* upnp_class = gupnp_didl_lite_object_get_upnp_class(told);
        into->title = title ? title : "";
        into->upnp_class = upnp_class ? upnp_class : "";
        GList* resources = gupnp_didl_lite_object_get_resources(told);
        if (resources) {
            GUPnPProtocolInfo* info =
                gupnp_didl_lite_resource_get_protocol_info(GUPNP_DIDL_LITE_RESOURCE(resources->data));
            into->mime = info && gupnp_protocol_info_get_mime_type(info)
                             ? gupnp_protocol_info_get_mime_type(info)
                             : "";
        }
        g_list_free_full(resources, g_object_unref);
    };
    GUPnPDIDLLiteParser* parser = gupnp_didl_lite_parser_new();
    g_signal_connect(
        parser, "object-available",
        G_CALLBACK(static_cast<void (*)(GUPnPDIDLLiteParser*, GUPnPDIDLLiteObject*, Object*)>(take)),
        &object);
    gupnp_didl_lite_parser_parse_didl(parser, text_argument(action, "Elements").c_str(), nullptr);
    g_object_unref(parser);
    if (object.title.empty() || object.upnp_class.empty()) {
        gupnp_service_action_return_error(action, 712, "bad metadata");
        return;
    }
    const Object& added = content_.add(std::move(object));
    gupnp_service_action_set(action, "ObjectID", G_TYPE_STRING, added.id.c_str(), "Result", G_TYPE_STRING,
                             (kDidlStart + didl_of(added, style_) + kDidlEnd).c_str(), nullptr);
    gupnp_service_action_return_success(action);
    tell_change();
}

void DirectoryService::destroy_object(GUPnPServiceAction* action) {
    const std::string id = text_argument(action, "ObjectID");
    if (!content_.find(id)) {
        gupnp_service_action_return_error(action, kNoSuchObject, "no such object");
        return;
    }
    content_.remove(id);
    gupnp_service_action_return_success(action);
    tell_change();
}

void DirectoryService::set_bookmark(GUPnPServiceAction* action) {
    Object* object = content_.find(text_argument(action, "ObjectID"));
    if (!object) {
        gupnp_service_action_return_error(action, kNoSuchObject, "no such object");
        return;
    }
    object->position = static_cast<int>(number_argument(action, "PosSecond"));
    gupnp_service_action_return_success(action);
}

void DirectoryService::update_object(GUPnPServiceAction* action) {
    Object* object = content_.find(text_argument(action, "ObjectID"));
    if (!object) {
        gupnp_service_action_return_error(action, kNoSuchObject, "no such object");
        return;
    }
    const std::string value = text_argument(action, "NewTagValue");
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (std::sscanf(value.c_str(), "<upnp:lastPlaybackPosition>%d:%d:%d", &hours, &minutes, &seconds) != 3) {
        gupnp_service_action_return_error(action, 703, "invalid new tag value");
        return;
    }
    object->position = hours * 3600 + minutes * 60 + seconds;
    gupnp_service_action_return_success(action);
}
