#ifndef QRA_ENGINE_PLUGINS_WEBDAV_PROPFIND_H
#define QRA_ENGINE_PLUGINS_WEBDAV_PROPFIND_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/plugins/http/http_session.h"
#include "engine/plugins/webdav/multistatus_reader.h"
#include "engine/plugins/webdav/webdav_path.h"

namespace engine {

enum class PropfindDepth { kItself, kChildren };
enum class PropfindWish {
    kKinds,       ///< what is needed to tell folders and media apart; asked beside all other questions
    kNamedKinds,  ///< the same, and how they are called to people
    kItems,       ///< what an item of a list tells
    kAll          ///< all that the server has
};

/// One PROPFIND, its answer read as it comes. Its end cancels it; it must outlive the call that it makes.
class Propfind : private HttpSink {
public:
    struct Calls {
        /// A resource, in the folder where the answer came from.
        std::function<void(WebDavEntry& entry, const WebDavFolder& folder)> entry;
        std::function<void()> end;
        std::function<void(const std::string& reason)> failure;
    };

    Propfind(HttpSession& http, const std::string& url, PropfindDepth depth, PropfindWish wish, Calls calls);
    ~Propfind() override = default;
    Propfind(const Propfind&) = delete;
    Propfind& operator=(const Propfind&) = delete;

    /// Nothing more is called.
    void cancel();
    /// From inside the call of an entry: what has been read is still called, then no more is read until
    /// go_on().
    void hold() { transfer_->hold(); }
    void go_on();

private:
    void on_begin(const std::string& url) override;
    void on_bytes(const char* bytes, size_t size) override;
    void on_end() override;
    void on_failure(const std::string& reason) override;
    void refuse();

    const Calls calls_;
    std::optional<WebDavFolder> folder_;
    MultistatusReader reader_;
    std::unique_ptr<HttpTransfer> transfer_;
};

}  // namespace engine

#endif
