#include "apps/qra/dlna_service.h"

#include <json/value.h>
#include <json/writer.h>
#include <qra/qra_content_agent.h>

#include <chrono>
#include <memory>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/json_text.h"
#include "apps/qra/request_error.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr std::chrono::seconds kLongestStart{20};
constexpr std::chrono::seconds kLongestSearch{10};

/// Never destroyed: an answer to a connection that was given up may come late.
AnswerQueue<int>& states() {
    static auto* const states = new AnswerQueue<int>;
    return *states;
}

void on_connected(qra_nbl_serviceconnector_state_e state, void*) {
    states().give(state);
}

void disconnect() {
    const auto nobody = [](qra_nbl_serviceconnector_state_e, void*) {};
    qra_finalize_dlna_service(nobody, nullptr);
}

ServerLine server_line(const std::string& event, qra_storage_h storage) {
    return {event, qra_storage_get_id(storage), qra_storage_get_name(storage), qra_storage_get_ip(storage),
            qra_storage_get_bKelvoraDevice(storage)};
}

void on_server(void* events, int event, qra_storage_h storage) {
    static_cast<AnswerQueue<ServerLine>*>(events)->give(
        server_line(event == QRA_STORAGE_EVENT_ATTACHED ? kAttached : "detached", storage));
}

[[noreturn]] void fail(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

}  // namespace

DlnaService::DlnaService() {
    check("home network service", qra_Init_dlna_service(on_connected, nullptr));
    try {
        if (states().next_within(kLongestStart) != QRA_NBL_SERVICECONNECTOR_ENABLED) {
            throw CommandError(ExitStatus::ServiceMissing, "the home network service cannot run here");
        }
        // Before any list, so that nothing is missed between the two.
        check("servers", qra_set_dlna_callback(on_server, &events_));
    } catch (...) {
        disconnect();
        throw;
    }
}

DlnaService::~DlnaService() {
    qra_unset_dlna_callback();
    disconnect();
}

std::vector<ServerLine> DlnaService::servers() {
    qra_storage_list_h list = nullptr;
    check("servers", qra_get_dlna_list(&list));
    const std::unique_ptr<_qra_storage_list_s, decltype(&qra_storage_list_destory)> owner(
        list, &qra_storage_list_destory);
    std::vector<ServerLine> servers;
    for (int i = 0; i < qra_storage_get_list_count(list); ++i) {
        servers.push_back(server_line("present", qra_storage_get_storage(i, list)));
    }
    return servers;
}

std::optional<std::string> DlnaService::id_of(const std::vector<ServerLine>& servers,
                                              const std::string& server) {
    std::optional<std::string> id;
    for (const ServerLine& line : servers) {
        if (line.id == server) {
            return line.id;
        }
        if (line.name == server && id) {
            fail("several servers are called " + printable_text(server) + ": name one by its id");
        }
        if (line.name == server) {
            id = line.id;
        }
    }
    return id;
}

std::string DlnaService::find(const std::string& server) {
    const auto end = std::chrono::steady_clock::now() + kLongestSearch;
    while (true) {
        if (const std::optional<std::string> id = id_of(servers(), server)) {
            return *id;
        }
        const auto left = std::chrono::ceil<std::chrono::seconds>(end - std::chrono::steady_clock::now());
        try {
            events_.next_within(left);
        } catch (const CommandError&) {
            if (interrupt::requested()) {
                throw;
            }
            fail("there is no media server " + printable_text(server) + " in the home network");
        }
    }
}

std::string server_text(const ServerLine& server, bool with_event) {
    return (with_event ? server.event + "  " : std::string()) + printable_text(server.name) + "  " +
           printable_text(server.address) + "  " + printable_text(server.id) + "\n";
}

std::string server_json(const ServerLine& server) {
    Json::Value object(Json::objectValue);
    object["event"] = server.event;
    object["id"] = server.id;
    object["name"] = server.name;
    object["address"] = server.address;
    object["own_maker"] = server.own_maker;
    return json_text(object) + "\n";
}
