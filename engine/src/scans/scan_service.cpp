#include "engine/src/scans/scan_service.h"

#include <qra/qra_types.h>

#include <algorithm>
#include <climits>
#include <tuple>
#include <utility>

#include "common/util/json_value.h"
#include "engine/src/engine_log.h"
#include "engine/src/scans/folder_thumb.h"
#include "media_content_type.h"

namespace engine {

namespace {

constexpr char kCheckDevice[] = "check_device";
// More than any view shows at once; what a client asks beyond this is refused.
constexpr size_t kMostScansOfAClient = 256;

std::string done_text(const std::string& path, int error) {
    CJsonValue json;
    json.Set("path", path);
    json.Set("error", error);
    return json.ToString();
}

}  // namespace

ScanService::ScanService(const EngineParts& parts)
    : clients_(parts.clients),
      signals_(parts.signals),
      scans_([this](const ScanPlace& place, int error) { on_done(place, error); }) {
    parts.methods.serve("start_scanner", this, &ScanService::start_scanner);
    parts.methods.serve("stop_scanner", this, &ScanService::stop_scanner);
    parts.methods.serve("start_scanner_thumb", this, &ScanService::start_scanner_thumb);
    parts.methods.serve("stop_scanner_thumb", this, &ScanService::stop_scanner_thumb);
    clients_.subscribe([this](const std::string& client) { stop_all_of(client); });
}

void ScanService::start_scanner(MethodCall call) {
    const char* kind = nullptr;
    const char* path = nullptr;
    g_variant_get(call.arguments(), "(&s&s)", &kind, &path);
    if (std::string(kind) != kCheckDevice || !may_ask(call.client()) || !scans_.ask({path, true})) {
        call.answer(g_variant_new("(bu)", FALSE, 0U));
        return;
    }
    // 0 is the id of no scanner, and ids come round again only after all the others.
    while (++last_id_ == 0 || checks_.count(last_id_) > 0) {
    }
    checks_.emplace(last_id_, Check{clients_.hold(call.client()), path});
    call.answer(g_variant_new("(bu)", TRUE, last_id_));
}

void ScanService::stop_scanner(MethodCall call) {
    uint32_t id = 0;
    g_variant_get(call.arguments(), "(u)", &id);
    const auto check = checks_.find(id);
    if (check != checks_.end() && check->second.client.client() == call.client()) {
        scans_.leave({check->second.path, true});
        checks_.erase(check);
    }
    call.answer();
}

void ScanService::start_scanner_thumb(MethodCall call) {
    Thumb thumb = read_thumb(call.arguments());
    // A client that asks twice is told once, as it can tell the two answers apart by nothing.
    bool started = find_thumb(call.client(), thumb) != thumbs_.end();
    if (!started && thumb.count > 0 && thumb.count <= INT_MAX && may_ask(call.client()) &&
        scans_.ask({thumb.path, false})) {
        thumbs_.push_back({clients_.hold(call.client()), std::move(thumb)});
        started = true;
    }
    call.answer(g_variant_new("(b)", started ? TRUE : FALSE));
}

void ScanService::stop_scanner_thumb(MethodCall call) {
    const auto request = find_thumb(call.client(), read_thumb(call.arguments()));
    if (request != thumbs_.end()) {
        scans_.leave({request->thumb.path, false});
        thumbs_.erase(request);
    }
    call.answer();
}

bool ScanService::may_ask(const std::string& client) const {
    const auto checks = std::count_if(checks_.begin(), checks_.end(), [&](const auto& check) {
        return check.second.client.client() == client;
    });
    const auto thumbs = std::count_if(thumbs_.begin(), thumbs_.end(), [&](const ThumbRequest& request) {
        return request.client.client() == client;
    });
    return static_cast<size_t>(checks + thumbs) < kMostScansOfAClient;
}

ScanService::Thumb ScanService::read_thumb(GVariant* arguments) {
    const char* path = nullptr;
    const char* content_type = nullptr;
    Thumb thumb = {};
    g_variant_get(arguments, "(&s&suu)", &path, &content_type, &thumb.count, &thumb.process_id);
    thumb.path = path;
    thumb.content_type = content_type;
    return thumb;
}

ScanService::ThumbRequests::iterator ScanService::find_thumb(const std::string& client, const Thumb& thumb) {
    const auto tied = [](const Thumb& one) {
        return std::tie(one.path, one.content_type, one.count, one.process_id);
    };
    return std::find_if(thumbs_.begin(), thumbs_.end(), [&](const ThumbRequest& request) {
        return request.client.client() == client && tied(request.thumb) == tied(thumb);
    });
}

void ScanService::stop_all_of(const std::string& client) {
    for (auto check = checks_.begin(); check != checks_.end();) {
        if (check->second.client.client() == client) {
            scans_.leave({check->second.path, true});
            check = checks_.erase(check);
        } else {
            ++check;
        }
    }
    for (auto request = thumbs_.begin(); request != thumbs_.end();) {
        if (request->client.client() == client) {
            scans_.leave({request->thumb.path, false});
            request = thumbs_.erase(request);
        } else {
            ++request;
        }
    }
}

void ScanService::on_done(const ScanPlace& place, int error) {
    if (place.recursive) {
        tell_checks(place.path, error);
    } else {
        tell_thumbs(place.path, error);
    }
}

void ScanService::tell_checks(const std::string& path, int error) {
    const uint32_t event = error == MEDIA_CONTENT_ERROR_NONE ? QRA_EVENT_LIST_SUCCESS : QRA_EVENT_LIST_FAILED;
    const std::string text = done_text(path, error);
    for (auto check = checks_.begin(); check != checks_.end();) {
        if (check->second.path != path) {
            ++check;
            continue;
        }
        signals_.send_to(check->second.client.client(), "qra_scanner_done",
                         g_variant_new("(uuusss)", check->first, event, static_cast<uint32_t>(error),
                                       kCheckDevice, path.c_str(), text.c_str()));
        check = checks_.erase(check);
    }
}

void ScanService::tell_thumbs(const std::string& path, int error) {
    for (auto request = thumbs_.begin(); request != thumbs_.end();) {
        const Thumb& thumb = request->thumb;
        if (thumb.path != path) {
            ++request;
            continue;
        }
        const std::string data = error == MEDIA_CONTENT_ERROR_NONE
                                     ? folder_thumb_text(path, thumb.content_type, thumb.count)
                                     : failed_folder_thumb_text();
        CJsonValue json;
        json.Set("qra_folder_thumbnail_error_code", error == MEDIA_CONTENT_ERROR_NONE ? 0 : 1);
        json.Set("qra_folder_thumbnail_path", path);
        json.Set("qra_folder_thumbnail_content_type", thumb.content_type);
        json.Set("qra_folder_thumbnail_request_num", static_cast<int>(thumb.count));
        json.Set("qra_folder_thumbnail_data", data);
        signals_.send_to(request->client.client(), "qra_folder_thumb_done",
                         g_variant_new("(s)", json.ToString().c_str()));
        request = thumbs_.erase(request);
    }
}

}  // namespace engine
