#include "platform/nubelink/host/page_pairs.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace nbl {

namespace {

/// Whether it has all that there is of a place, and nothing else.
bool has_all(const Page& page, const PagePlace& place) {
    const int64_t end = place.start + static_cast<int64_t>(page.items.size());
    const bool is_last = page.total > 0 && end == page.total && end < place.end();
    return page.error == NBL_ERROR_NONE && page.is_whole && (end == place.end() || is_last);
}

/// Takes from a page what comes after its first items.
Page split(Page& page, size_t count) {
    Page rest;
    rest.total = page.total;
    if (page.items.size() > count) {
        const auto from = page.items.begin() + static_cast<ptrdiff_t>(count);
        rest.items.assign(std::make_move_iterator(from), std::make_move_iterator(page.items.end()));
        page.items.resize(count);
    }
    return rest;
}

}  // namespace

class PagePairs::Ticket {
public:
    Ticket(PagePairs& pairs, PagePlace place, Done done)
        : place_(std::move(place)), pairs_(pairs), done_(std::move(done)) {}
    ~Ticket() { pairs_.on_ticket_end(place_); }
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;

    const PagePlace& place() const { return place_; }
    bool waits() const { return state_ == State::kWaiting; }
    bool is_alone() const { return state_ == State::kAlone; }

    void wait() {
        patience_.start(kPatience, [this] { go_alone(); });
    }
    void enter_pair() {
        state_ = State::kInPair;
        patience_.stop();
    }
    void go_alone() {
        state_ = State::kAlone;
        patience_.stop();
        tell(std::nullopt);
    }
    void hand_over(Page page) { tell(std::move(page)); }

private:
    enum class State { kWaiting, kInPair, kAlone };

    void tell(std::optional<Page> page) {
        const Done done = done_;  // A copy: it may end this object.
        done(std::move(page));
    }

    const PagePlace place_;
    PagePairs& pairs_;
    const Done done_;
    State state_ = State::kWaiting;
    Timer patience_;
};

PagePairs::TicketPtr PagePairs::ask(PagePlace place, Done done) {
    on_question(place);
    const bool may_wait = may_be_paired(place) && under_way(place) >= kAhead;
    const TicketPtr before = find_waiting_before(place);
    const auto ticket = std::make_shared<Ticket>(*this, std::move(place), std::move(done));
    tickets_.push_back(ticket);
    if (before != nullptr) {
        join(before, ticket);
    } else if (may_wait) {
        ticket->wait();
    } else {
        ticket->go_alone();
    }
    return ticket;
}

void PagePairs::on_question(const PagePlace& place) {
    const bool is_busy = std::any_of(tickets_.begin(), tickets_.end(), [&](const auto& held) {
        const TicketPtr ticket = held.lock();
        return ticket != nullptr && ticket->place().provider == place.provider;
    });
    Server& server = servers_[place.provider];
    if (!is_busy && place.start < kFar) {
        server.asked = Clock::now();
        server.answers = 0;
    }
}

void PagePairs::on_answer(const PagePlace& place) {
    constexpr int kFewest = 5;
    constexpr int kMost = 10;
    Server& server = servers_[place.provider];
    if (place.start >= kFar || server.answers == kMost) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (server.answers == 0) {
        server.first = now;
    }
    ++server.answers;
    if (server.answers >= kFewest) {
        const Clock::duration between = (now - server.first) / (server.answers - 1);
        server.is_far_away = server.first - server.asked > between * kFarAway;
    }
}

bool PagePairs::may_be_paired(const PagePlace& place) const {
    const Server& server = servers_.at(place.provider);
    return place.start >= kFar && !server.is_far_away &&
           session_.device(place.provider->id) != server.refuses_pairs;
}

size_t PagePairs::under_way(const PagePlace& place) const {
    const auto is_alone = [&](const std::weak_ptr<Ticket>& held) {
        const TicketPtr ticket = held.lock();
        return ticket != nullptr && ticket->is_alone() && ticket->place().is_in_folder_of(place);
    };
    const auto is_there = [&](const Pair& pair) { return pair.both.is_in_folder_of(place); };
    return static_cast<size_t>(std::count_if(tickets_.begin(), tickets_.end(), is_alone) +
                               std::count_if(pairs_.begin(), pairs_.end(), is_there));
}

PagePairs::TicketPtr PagePairs::find_waiting_before(const PagePlace& place) const {
    for (const std::weak_ptr<Ticket>& held : tickets_) {
        const TicketPtr ticket = held.lock();
        if (ticket != nullptr && ticket->waits() && ticket->place().is_in_folder_of(place) &&
            ticket->place().end() == place.start && ticket->place().count + place.count <= kMostObjects) {
            return ticket;
        }
    }
    return nullptr;
}

void PagePairs::join(const TicketPtr& first, const TicketPtr& second) {
    first->enter_pair();
    second->enter_pair();
    PagePlace both = first->place();
    both.count += second->place().count;
    const PairAt at = pairs_.insert(pairs_.end(), {both, second->place().start, first, second, nullptr});
    at->call = std::make_unique<PageCall>(
        session_, both.provider, PageSource{PageSource::Kind::kChildren, both.folder_id, {}}, both.start,
        both.count, [this, at](Page page) { take(at, std::move(page)); });
}

void PagePairs::take(PairAt at, Page page) {
    const Pair pair = std::move(*at);
    pairs_.erase(at);
    // Held until the end of this, whatever the clients do.
    const TicketPtr tickets[] = {pair.first.lock(), pair.second.lock()};
    const PagePlace& both = pair.both;
    const bool is_complete = has_all(page, both);
    Page pages[] = {{}, split(page, static_cast<size_t>(pair.middle - both.start))};
    pages[0] = std::move(page);
    const bool is_good = is_complete && !both.provider->pages.is_repeated(
                                            both.folder_id, static_cast<int>(both.start), pages[0].items);
    if (!is_good && !is_unanswered(pages[0].error)) {
        servers_[both.provider].refuses_pairs = session_.device(both.provider->id);
    }
    for (size_t i = 0; i < std::size(tickets); ++i) {
        if (tickets[i] != nullptr && is_good) {
            tickets[i]->hand_over(std::move(pages[i]));
        } else if (tickets[i] != nullptr) {
            tickets[i]->go_alone();
        }
    }
}

void PagePairs::on_ticket_end(const PagePlace& place) {
    on_answer(place);
    pairs_.remove_if([](const Pair& pair) { return pair.first.expired() && pair.second.expired(); });
    const auto is_over = [](const std::weak_ptr<Ticket>& ticket) { return ticket.expired(); };
    tickets_.erase(std::remove_if(tickets_.begin(), tickets_.end(), is_over), tickets_.end());
    if (!tickets_.empty()) {
        look_.start(0, [this] { look_after_waiting(); });
    }
}

void PagePairs::look_after_waiting() {
    const std::vector<std::weak_ptr<Ticket>> tickets = tickets_;
    for (const std::weak_ptr<Ticket>& held : tickets) {
        const TicketPtr ticket = held.lock();
        if (ticket != nullptr && ticket->waits() && under_way(ticket->place()) <= 1) {
            ticket->go_alone();
        }
    }
}

}  // namespace nbl
