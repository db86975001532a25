#include <algorithm>
#include <utility>

#include "platform/nubelink/host/discovery.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/text.h"
#include "platform/support/glib_ptr.h"

namespace nbl {

namespace {

constexpr size_t kLargestDescription = 256 * 1024;
constexpr unsigned kDescriptionTime = 10'000;
constexpr unsigned kMostFailures = 3;
constexpr unsigned kFirstPause = 300;  // Doubled with each failure.

std::string host_of(const std::string& location) {
    const glib::UriPtr uri(g_uri_parse(location.c_str(), G_URI_FLAGS_PARSE_RELAXED, nullptr));
    const char* host = uri != nullptr ? g_uri_get_host(uri.get()) : nullptr;
    return host != nullptr ? host : std::string();
}

/// Host and port, as the location writes them.
std::string_view authority_of(std::string_view location) {
    const size_t begin = std::min(location.find("//") + 2, location.size());
    return location.substr(begin, location.find('/', begin) - begin);
}

}  // namespace

Announcements::Announcements(const HttpClient& http, DeviceTable& table, Report report)
    : http_(http), table_(table), report_(std::move(report)) {}

Announcements::~Announcements() = default;

void Announcements::on_alive(const std::string& device_id, const std::string& location, const void* network) {
    auto found = known_.find(device_id);
    if (found == known_.end()) {
        const bool was_full = std::exchange(full_, !has_room_for(location));
        if (full_) {
            if (!was_full) {
                NBL_LOG_WARNING("too many media servers: %s is not looked at", printable(location).c_str());
            }
            return;
        }
        found = known_.emplace(device_id, std::make_unique<Known>()).first;
    }
    Known& known = *found->second;
    std::string& here = known.locations[network];
    const bool is_new = here != location;
    here = location;
    const bool gave_up = known.failures >= kMostFailures;
    if (is_new || gave_up) {
        known.failures = 0;
        update(device_id);
    }
}

bool Announcements::has_room_for(std::string_view location) const {
    const auto unread = std::count_if(known_.begin(), known_.end(), [&](const auto& entry) {
        const Known& known = *entry.second;
        return known.used.empty() && authority_of(known.asked) == authority_of(location);
    });
    return known_.size() < kMostDevices && static_cast<size_t>(unread) < kMostUnread;
}

void Announcements::on_gone(const std::string& device_id, const void* network) {
    const auto found = known_.find(device_id);
    if (found == known_.end() || found->second->locations.erase(network) == 0) {
        return;
    }
    update(device_id);
}

void Announcements::on_network_gone(const void* network) {
    std::vector<std::string> ids;
    for (const auto& [device_id, known] : known_) {
        ids.push_back(device_id);
    }
    for (const std::string& device_id : ids) {
        on_gone(device_id, network);
    }
}

/// Makes the device in the table what its locations say, or begins to.
void Announcements::update(const std::string& device_id) {
    const auto found = known_.find(device_id);
    Known& known = *found->second;
    if (known.locations.empty()) {
        forget(found);
        return;
    }
    const auto has = [&](const std::string& location) {
        return std::any_of(known.locations.begin(), known.locations.end(),
                           [&](const auto& here) { return here.second == location; });
    };
    if (const DevicePtr device = table_.find(device_id); device != nullptr && has(known.used)) {
        put(device_id, device->description);
    } else if (known.call == nullptr || !has(known.asked)) {
        ask(device_id, known.locations.begin()->second);
    }
}

void Announcements::forget(KnownMap::iterator found) {
    const std::string device_id = found->first;
    known_.erase(found);
    if (const DevicePtr removed = table_.remove(device_id)) {
        NBL_LOG_INFO("media server %s is gone", printable(removed->description.name).c_str());
        report_(NBL_DEVICE_EVENT_REMOVED, removed.get());
    }
}

void Announcements::check(const std::string& device_id) {
    const auto found = known_.find(device_id);
    if (found != known_.end() && found->second->call == nullptr) {
        ask(device_id, found->second->used);
        found->second->in_doubt = true;
    }
}

void Announcements::ask(const std::string& device_id, const std::string& location) {
    Known& known = *known_.at(device_id);
    known.in_doubt = false;
    known.asked = location;
    known.again.stop();
    HttpQuestion question;
    question.uri = location;
    question.largest_answer = kLargestDescription;
    question.milliseconds = kDescriptionTime;
    known.call = std::make_unique<HttpCall>(http_, std::move(question), [this, device_id](HttpAnswer answer) {
        on_description(std::string(device_id), std::move(answer));
    });
}

void Announcements::on_description(const std::string& device_id, HttpAnswer answer) {
    Known& known = *known_.at(device_id);
    known.call.reset();
    DeviceDescription description;
    if (answer.error != NBL_ERROR_NONE || answer.status != 200 ||
        !read_device_description(std::move(answer.body), known.asked, device_id, description)) {
        on_failure(device_id);
        return;
    }
    known.used = known.asked;
    known.failures = 0;
    known.in_doubt = false;
    put(device_id, std::move(description));
}

void Announcements::on_failure(const std::string& device_id) {
    const auto found = known_.find(device_id);
    Known& known = *found->second;
    NBL_LOG_WARNING("no description of a media server at %s", printable(known.asked).c_str());
    if (!known.in_doubt && ++known.failures < kMostFailures) {
        known.again.start(kFirstPause << known.failures,
                          [this, device_id] { update(std::string(device_id)); });
    } else if (known.in_doubt || table_.find(device_id) == nullptr) {
        forget(found);  // The next announcement brings it back.
    }
}

void Announcements::put(const std::string& device_id, DeviceDescription description) {
    const Known& known = *known_.at(device_id);
    std::vector<std::string> addresses = {host_of(known.used)};
    for (const auto& [network, location] : known.locations) {
        std::string host = host_of(location);
        if (std::find(addresses.begin(), addresses.end(), host) == addresses.end()) {
            addresses.push_back(std::move(host));
        }
    }
    const DevicePtr before = table_.find(device_id);
    const auto device =
        std::make_shared<nbl_device_s>(device_id, std::move(description), std::move(addresses));
    const bool added = table_.put(device);
    if (added) {
        NBL_LOG_INFO("media server %s is there", printable(device->description.name).c_str());
        report_(NBL_DEVICE_EVENT_ADDED, device.get());
    } else if (before->addresses != device->addresses ||
               before->description.name != device->description.name) {
        report_(NBL_DEVICE_EVENT_CHANGED, device.get());
    }
}

}  // namespace nbl
