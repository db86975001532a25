#include "platform/nubelink/host/bookmark_request.h"

#include <algorithm>
#include <utility>

#include "platform/nubelink/host/item_values.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"
#include "platform_paths.h"

namespace nbl {

namespace {

constexpr size_t kMostActions = 256;
constexpr size_t kMostArguments = 64;
constexpr size_t kLongestName = 256;
constexpr std::string_view kPosition = "upnp:lastPlaybackPosition";
constexpr std::string_view kBookmarkAction = "SetBookmark";
constexpr std::string_view kUpdateAction = "UpdateObject";

class ActionsHandler : public XmlHandler {
public:
    void open(const XmlName& name, const XmlAttributes&) override {
        text_.clear();
        if (name.local == "action" && actions.size() < kMostActions) {
            actions.emplace_back();
        } else if (name.local == "argument") {
            argument_.clear();
        }
        names_.emplace_back(name.local);
    }

    void text(std::string_view piece) override {
        if (text_.size() + piece.size() <= kLongestName) {
            text_ += piece;
        }
    }

    void close() override {
        const std::string name = std::move(names_.back());
        names_.pop_back();
        const std::string parent = names_.empty() ? "" : names_.back();
        if (name == "name" && parent == "action" && !actions.empty()) {
            actions.back().name = trimmed(text_);
        } else if (name == "name" && parent == "argument") {
            argument_ = trimmed(text_);
        } else if (name == "direction" && parent == "argument") {
            is_in_ = trimmed(text_) == "in";
        } else if (name == "argument" && is_in_ && !actions.empty() &&
                   actions.back().in_arguments.size() < kMostArguments) {
            actions.back().in_arguments.push_back(argument_);
        }
        text_.clear();
    }

    std::vector<AnnouncedAction> actions;

private:
    std::vector<std::string> names_;
    std::string text_;
    std::string argument_;
    bool is_in_ = false;
};

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string clock_of(int seconds) {
    const auto two_digits = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return std::to_string(seconds / 3600) + ":" + two_digits(seconds / 60 % 60) + ":" +
           two_digits(seconds % 60);
}

std::string position_tag(std::string_view value) {
    const std::string name(kPosition);
    return "<" + name + ">" + xml_escaped(value) + "</" + name + ">";
}

/// The vendors' action: whatever else it wants to know is left at 0.
SoapArguments bookmark_arguments(const AnnouncedAction& action, const nbl_item_s& item, int seconds) {
    SoapArguments arguments;
    for (const std::string& name : action.in_arguments) {
        arguments.emplace_back(name, name == "ObjectID"    ? std::string(item.text("@id"))
                                     : name == "PosSecond" ? std::to_string(seconds)
                                                           : "0");
    }
    return arguments;
}

SoapArguments update_arguments(const nbl_item_s& item, int seconds) {
    const auto current = item.find(kPosition);
    return {{"ObjectID", std::string(item.text("@id"))},
            {"CurrentTagValue", current ? position_tag(*current) : std::string()},
            {"NewTagValue", position_tag(clock_of(seconds))}};
}

}  // namespace

std::vector<AnnouncedAction> read_announced_actions(std::string document) {
    mend_document(document);
    ActionsHandler handler;
    read_xml(trimmed(document), handler);
    return std::move(handler.actions);
}

SoapQuestion position_question(const std::vector<AnnouncedAction>& actions, const nbl_item_s& item,
                               int seconds) {
    SoapQuestion question;
    for (const AnnouncedAction& action : actions) {
        if (ends_with(action.name, kBookmarkAction)) {
            question.action = action.name;
            question.arguments = bookmark_arguments(action, item, seconds);
            return question;
        }
        if (action.name == kUpdateAction) {
            question.action = action.name;
            question.arguments = update_arguments(item, seconds);
        }
    }
    return question;
}

PositionStore& kept_positions() {
    static auto* const store =
        new PositionStore(std::string(platform_path_get(PLATFORM_PATH_DATA)) + "/nubelink-positions");
    return *store;
}

int kept_position_of(const nbl_item_s& item) {
    return kept_positions().find(item.provider()->id, item.text("@id"));
}

BookmarkRequest::BookmarkRequest(nbl_provider_t provider, nbl_item_t item, int seconds,
                                 nbl_bookmark_cb callback, int tag)
    : Request(provider->id), item_(share(item)), seconds_(seconds), callback_(callback), tag_(tag) {}

void BookmarkRequest::start(Session& session) {
    session_ = &session;
    const DevicePtr device = session.device(device_id());
    if (device == nullptr || device->description.content_directory.description_url.empty()) {
        keep(seconds_);
        return;
    }
    HttpQuestion question;
    question.uri = device->description.content_directory.description_url;
    description_call_ = std::make_unique<HttpCall>(
        session.http(), question, [this](HttpAnswer answer) { take_description(std::move(answer)); });
}

void BookmarkRequest::take_description(HttpAnswer answer) {
    constexpr unsigned kGood = 200;
    const DevicePtr device = session_->device(device_id());
    SoapQuestion question;
    if (answer.error == NBL_ERROR_NONE && answer.status == kGood) {
        question = position_question(read_announced_actions(std::move(answer.body)), *item_, seconds_);
    }
    if (device == nullptr || question.action.empty()) {
        keep(seconds_);
        return;
    }
    action_ = question.action;
    call_ = std::make_unique<SoapCall>(session_->http(), device->description.content_directory, question,
                                       [this](const SoapAnswer& found) { take_answer(found); });
}

void BookmarkRequest::take_answer(const SoapAnswer& found) {
    if (found.error == NBL_ERROR_ITEM_NOT_EXIST) {
        session_->requests().end(token(), found.error);
        return;
    }
    // Some servers take an update of an object and keep nothing of it; one with an action for positions does.
    keep(found.error == NBL_ERROR_NONE && action_ != kUpdateAction ? 0 : seconds_);
}

void BookmarkRequest::keep(int seconds) {
    session_->requests().end(token(), keep_here(seconds) ? NBL_ERROR_NONE : NBL_ERROR_FILE);
}

bool BookmarkRequest::keep_here(int seconds) const {
    const std::string_view id = item_->text("@id");
    const bool needless = seconds == 0 && kept_positions().find(device_id(), id) == 0;
    return needless || kept_positions().keep(device_id(), id, seconds);
}

void BookmarkRequest::answer(int error) {
    // Whether the server has kept it will not be known any more.
    const bool is_gone = error == NBL_ERROR_DEVICE_GONE || error == NBL_ERROR_TIMEOUT;
    if ((is_gone || error == NBL_ERROR_NOT_CONNECTED) && keep_here(seconds_) && is_gone) {
        error = NBL_ERROR_NONE;
    }
    if (callback_ != nullptr) {
        const DevicePtr device = session_ != nullptr ? session_->device(device_id()) : nullptr;
        callback_(device.get(), error, tag_);
    }
}

}  // namespace nbl
