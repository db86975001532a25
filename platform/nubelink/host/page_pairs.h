#ifndef QRA_NUBELINK_PAGE_PAIRS_H
#define QRA_NUBELINK_PAGE_PAIRS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/nubelink/host/page_loop.h"
#include "platform/nubelink/host/service.h"

namespace nbl {

/// A page of a folder.
struct PagePlace {
    nbl_provider_t provider;
    std::string folder_id;
    int64_t start;
    int64_t count;

    int64_t end() const { return start + count; }
    bool is_in_folder_of(const PagePlace& other) const {
        return provider == other.provider && folder_id == other.folder_id;
    }
};

/**
 * Asks for neighbouring pages that lie far inside a folder two at a time. Servers count their way to where a
 * page begins; from some thousand objects on that costs them more than the page.
 *
 * A page waits there for the one that follows it, while kAhead questions for the folder are under way: the
 * server is never without one, and whoever asks for fewer pages at a time is not held up. It waits until one
 * question is left, and no longer than kPatience. More than was asked for is never under way.
 *
 * That would slow down a server that is not busy but far away: one that takes more than kFarAway times as
 * long for a first answer, while it had nothing else to do, as lies between the ones that follow. From such a
 * server each page is asked for by itself.
 *
 * Where the answer is not all of both pages, or begins with a page that came before, each is asked for by
 * itself, and so is whatever else is asked of that server as long as it is there.
 *
 * Lives on the worker's thread, longer than its tickets.
 */
class PagePairs {
public:
    static constexpr int64_t kFar = 3000;          ///< where a page begins that may wait
    static constexpr int64_t kMostObjects = 1000;  ///< of a pair
    static constexpr size_t kAhead = 3;
    static constexpr unsigned kPatience = 1000;  ///< milliseconds
    static constexpr int kFarAway = 3;

    /// A page that is wanted; to be held until it has come, by whatever way. Its end calls it off.
    class Ticket;
    /// Called with the page, or without: it is to be asked for by itself. Called once, without a page also
    /// from inside ask(). May end the ticket.
    using Done = std::function<void(std::optional<Page>)>;

    explicit PagePairs(Session& session) : session_(session) {}
    PagePairs(const PagePairs&) = delete;
    PagePairs& operator=(const PagePairs&) = delete;

    std::shared_ptr<Ticket> ask(PagePlace place, Done done);

private:
    using TicketPtr = std::shared_ptr<Ticket>;
    using Clock = std::chrono::steady_clock;
    /// A question for two pages, until it is answered.
    struct Pair {
        PagePlace both;
        int64_t middle;  ///< where the second begins
        std::weak_ptr<Ticket> first;
        std::weak_ptr<Ticket> second;
        std::unique_ptr<PageCall> call;
    };
    using PairAt = std::list<Pair>::iterator;

    /// What a server is like, as far as was seen.
    struct Server {
        DevicePtr refuses_pairs;  ///< the device that did not give two pages at once; null for none
        bool is_far_away = false;
        // Of the first pages near the beginning of a folder, since it had nothing else to do.
        Clock::time_point asked;
        Clock::time_point first;
        int answers = 0;
    };

    void on_question(const PagePlace& place);
    void on_answer(const PagePlace& place);
    bool may_be_paired(const PagePlace& place) const;
    size_t under_way(const PagePlace& place) const;
    TicketPtr find_waiting_before(const PagePlace& place) const;
    void join(const TicketPtr& first, const TicketPtr& second);
    void take(PairAt at, Page page);
    void on_ticket_end(const PagePlace& place);
    void look_after_waiting();

    Session& session_;
    std::map<const nbl_provider_s*, Server> servers_;
    std::vector<std::weak_ptr<Ticket>> tickets_;
    std::list<Pair> pairs_;
    Timer look_;  ///< once all have ended that end together
};

}  // namespace nbl

#endif
