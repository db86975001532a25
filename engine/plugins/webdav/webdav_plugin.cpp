#include "engine/plugins/webdav/webdav_plugin.h"

#include <string>
#include <utility>

#include "engine/plugins/webdav/webdav_detail.h"
#include "engine/plugins/webdav/webdav_list.h"

namespace engine {

namespace {

class WebDavSession : public PluginSession {
public:
    WebDavSession(const Account& account, const HttpLimits& limits)
        : http_(std::make_shared<HttpSession>(account, limits)), top_(account.address) {
        top_.erase(std::min(top_.find_first_of("?#"), top_.size()));
        if (top_.back() != '/') {
            top_ += '/';
        }
    }

    RequestPtr list(const ListQuery& query, ListAnswer& answer) override {
        auto list = std::make_shared<WebDavList>(http_, top_, query, answer);
        list->start();
        return request_for(std::move(list));
    }

    RequestPtr describe(const std::string& item_id, ItemDone done) override {
        auto detail = std::make_shared<WebDavDetail>(http_, top_, item_id, std::move(done));
        detail->start();
        return request_for(std::move(detail));
    }

    RequestPtr act(const std::string&, const std::string&, ItemDone) override { return nullptr; }

private:
    const std::shared_ptr<HttpSession> http_;
    std::string top_;  ///< the account's address, with a slash at its end
};

class WebDavPlugin : public Plugin {
public:
    explicit WebDavPlugin(const HttpLimits& limits) : limits_(limits) {}

    const char* name() const override { return "webdav"; }

    std::unique_ptr<PluginSession> open(const Account& account, std::string& reason) override {
        reason = wrong_address(account.address);
        return reason.empty() ? std::make_unique<WebDavSession>(account, limits_) : nullptr;
    }

private:
    const HttpLimits limits_;
};

}  // namespace

std::unique_ptr<Plugin> make_webdav_plugin(const HttpLimits& limits) {
    return std::make_unique<WebDavPlugin>(limits);
}

}  // namespace engine
