#include "engine/plugins/feed/feed_plugin.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "engine/plugins/feed/feed_items.h"
#include "engine/plugins/feed/feed_reader.h"
#include "engine/plugins/support/held_items.h"
#include "engine/plugins/support/job.h"
#include "engine/plugins/support/media_kind.h"

namespace engine {

namespace {

constexpr unsigned kMillisecondsForAFeed = 60'000;
constexpr uint64_t kLargestFeed = uint64_t{32} << 20;

/// Fetches a feed and tells its items, or why there are none.
class FeedFetch : public HttpSink {
public:
    using Items = std::function<void(std::vector<Item> items)>;
    using Failure = std::function<void(const std::string& reason)>;

    FeedFetch(HttpSession& http, const std::string& url, Items items, Failure failure)
        : items_(std::move(items)), failure_(std::move(failure)) {
        HttpQuestion question;
        question.method = "GET";
        question.url = url;
        question.headers = {
            {"Accept", "application/rss+xml, application/atom+xml, application/xml, text/xml, */*;q=0.1"}};
        question.wrong_status = "has no feed at this address";
        transfer_ = http.start(std::move(question), *this);
    }

    void cancel() { transfer_.reset(); }

private:
    void on_begin(const std::string& url) override { url_ = url; }
    void on_bytes(const char* bytes, size_t size) override {
        if (!reader_.read(bytes, size)) {
            refuse();
        }
    }
    void on_end() override {
        if (reader_.finish()) {
            items_(feed_items(reader_, url_));
        } else {
            refuse();
        }
    }
    void on_failure(const std::string& reason) override { failure_(reason); }
    void refuse() {
        transfer_.reset();
        failure_("the feed is not accepted: " + reader_.reason());
    }

    const Items items_;
    const Failure failure_;
    FeedReader reader_;
    std::string url_;
    std::unique_ptr<HttpTransfer> transfer_;
};

class FeedList : public Job {
public:
    FeedList(std::shared_ptr<HttpSession> http, std::string url, ListQuery query, ListAnswer& answer)
        : http_(std::move(http)), url_(std::move(url)), query_(std::move(query)), answer_(&answer) {}

    void start() {
        fetch_.emplace(
            *http_, url_, [this](const std::vector<Item>& items) { show(items); },
            [this](const std::string& reason) { fail(reason); });
    }

    void cancel() override {
        answer_ = nullptr;
        if (fetch_) {
            fetch_->cancel();
        }
    }

private:
    /// All of a feed, or the one entry that was asked for: a feed has no folders.
    void show(const std::vector<Item>& items) {
        const std::string& wanted = query_.container;
        if (!wanted.empty() && std::none_of(items.begin(), items.end(),
                                            [&wanted](const Item& one) { return one.id == wanted; })) {
            fail("a feed has no folders, and this one no such entry");
            return;
        }
        const TitleFilter filter(query_.filter);
        HeldItems held(item_order_of(query_.category));
        for (Item item : items) {
            if ((wanted.empty() || item.id == wanted) && is_wanted(item.media_type, query_.content_type) &&
                filter.lets_pass(item.title)) {
                item.details.clear();
                held.add(item);
            }
        }
        answer_->begin(held.folders(), held.media());
        if (answer_) {
            held.hand_to(*answer_, [this] { return answer_ != nullptr; });
        }
        if (ListAnswer* answer = std::exchange(answer_, nullptr)) {
            answer->end();
        }
    }

    void fail(const std::string& reason) {
        if (ListAnswer* answer = answer_) {
            cancel();
            answer->fail(reason);
        }
    }

    const std::shared_ptr<HttpSession> http_;
    const std::string url_;
    const ListQuery query_;
    ListAnswer* answer_;  ///< null when nothing is answered any more
    std::optional<FeedFetch> fetch_;
};

class FeedDetail : public Job {
public:
    FeedDetail(std::shared_ptr<HttpSession> http, std::string url, std::string item_id, ItemDone done)
        : http_(std::move(http)),
          url_(std::move(url)),
          item_id_(std::move(item_id)),
          done_(std::move(done)) {}

    void start() {
        fetch_.emplace(
            *http_, url_, [this](const std::vector<Item>& items) { show(items); },
            [this](const std::string& reason) {
                answer({ItemAnswer::Outcome::kFailed, reason});
            });
    }

    void cancel() override {
        done_ = nullptr;
        if (fetch_) {
            fetch_->cancel();
        }
    }

private:
    void show(const std::vector<Item>& items) {
        const auto item =
            std::find_if(items.begin(), items.end(), [this](const Item& one) { return one.id == item_id_; });
        if (item == items.end()) {
            answer({ItemAnswer::Outcome::kEmpty, ""});
        } else {
            answer({ItemAnswer::Outcome::kDone, item_text(*item)});
        }
    }

    void answer(const ItemAnswer& found) {
        if (const ItemDone done = std::exchange(done_, nullptr)) {
            cancel();
            done(found);
        }
    }

    const std::shared_ptr<HttpSession> http_;
    const std::string url_;
    const std::string item_id_;
    ItemDone done_;  ///< empty when nothing is answered any more
    std::optional<FeedFetch> fetch_;
};

class FeedSession : public PluginSession {
public:
    FeedSession(const Account& account, const HttpLimits& limits)
        : http_(std::make_shared<HttpSession>(account, limits)), url_(account.address) {}

    RequestPtr list(const ListQuery& query, ListAnswer& answer) override {
        auto list = std::make_shared<FeedList>(http_, url_, query, answer);
        list->start();
        return request_for(std::move(list));
    }

    RequestPtr describe(const std::string& item_id, ItemDone done) override {
        auto detail = std::make_shared<FeedDetail>(http_, url_, item_id, std::move(done));
        detail->start();
        return request_for(std::move(detail));
    }

    RequestPtr act(const std::string&, const std::string&, ItemDone) override { return nullptr; }

private:
    const std::shared_ptr<HttpSession> http_;
    const std::string url_;
};

class FeedPlugin : public Plugin {
public:
    explicit FeedPlugin(const HttpLimits& limits) : limits_(limits) {}

    const char* name() const override { return "feed"; }

    std::unique_ptr<PluginSession> open(const Account& account, std::string& reason) override {
        reason = wrong_address(account.address);
        return reason.empty() ? std::make_unique<FeedSession>(account, limits_) : nullptr;
    }

private:
    const HttpLimits limits_;
};

}  // namespace

HttpLimits feed_limits() {
    HttpLimits limits;
    limits.milliseconds_in_all = kMillisecondsForAFeed;
    limits.bytes = kLargestFeed;
    return limits;
}

std::unique_ptr<Plugin> make_feed_plugin(const HttpLimits& limits) {
    return std::make_unique<FeedPlugin>(limits);
}

}  // namespace engine
