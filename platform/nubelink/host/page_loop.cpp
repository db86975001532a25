#include "platform/nubelink/host/page_loop.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "platform/nubelink/host/didl_reader.h"
#include "platform/nubelink/host/item_memory.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/ordered_views.h"
#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

SoapQuestion question_for(const PageSource& source, int64_t start, int64_t count) {
    SoapQuestion question;
    const SoapArguments range = {{"Filter", "*"},
                                 {"StartingIndex", std::to_string(start)},
                                 {"RequestedCount", std::to_string(count)},
                                 {"SortCriteria", ""}};
    if (source.kind == PageSource::Kind::kSearch) {
        question.action = "Search";
        question.arguments = {{"ContainerID", source.id}, {"SearchCriteria", source.criteria}};
    } else {
        const bool children = source.kind == PageSource::Kind::kChildren;
        question.action = "Browse";
        question.arguments = {{"ObjectID", source.id},
                              {"BrowseFlag", children ? "BrowseDirectChildren" : "BrowseMetadata"}};
    }
    question.arguments.insert(question.arguments.end(), range.begin(), range.end());
    return question;
}

DevicePtr& teller_of_total(nbl_provider_t provider, PageSource::Kind kind) {
    return kind == PageSource::Kind::kSearch ? provider->tells_total_of_search
                                             : provider->tells_total_of_folder;
}

int64_t count_in(const SoapAnswer& answer, std::string_view name) {
    const uint64_t number = number_of(trimmed(answer.find(name))).value_or(0);
    return static_cast<int64_t>(std::min<uint64_t>(number, INT_MAX));
}

Page read_page(const SoapAnswer& answer, nbl_provider_t provider, size_t most) {
    Page page;
    page.error = answer.error;
    page.bytes = answer.bytes;
    if (answer.error == NBL_ERROR_NONE && ItemMemory::is_full()) {
        NBL_LOG_WARNING("items of media servers take %zu bytes: no more are read", ItemMemory::bytes());
        page.error = NBL_ERROR_OUT_OF_MEMORY;
    }
    if (page.error != NBL_ERROR_NONE) {
        return page;
    }
    // References to characters can bring in again what the envelope was freed of.
    std::string document(answer.find("Result"));
    mend_xml(document);
    page.is_whole = read_didl(document, provider, page.items, most);
    page.total = count_in(answer, "TotalMatches");
    page.returned = count_in(answer, "NumberReturned");
    const bool says_something = page.is_whole && !answer.arguments.empty();
    if (!says_something && page.items.empty() && page.returned == 0) {
        page.error = NBL_ERROR_BAD_ANSWER;
    }
    return page;
}

}  // namespace

bool is_unanswered(int error) {
    return error == NBL_ERROR_NETWORK || error == NBL_ERROR_TIMEOUT || error == NBL_ERROR_DEVICE_GONE ||
           error == NBL_ERROR_OUT_OF_MEMORY;
}

PageCall::PageCall(Session& session, nbl_provider_t provider, const PageSource& source, int64_t start,
                   int64_t count, Done done) {
    const DevicePtr device = session.device(provider->id);
    if (device == nullptr) {
        gone_.start(0, [done = std::move(done)] {
            Page page;
            page.error = NBL_ERROR_DEVICE_GONE;
            done(std::move(page));
        });
        return;
    }
    const int64_t most = source.kind == PageSource::Kind::kObject ? 1 : count;
    call_.emplace(
        session.http(), device->description.content_directory, question_for(source, start, count),
        [&session, provider, kind = source.kind, most, done = std::move(done)](const SoapAnswer& answer) {
            session.on_call_error(provider->id, answer.error);
            if (ItemMemory::is_full()) {
                session.views().forget_unused();
            }
            Page page = read_page(answer, provider, static_cast<size_t>(most));
            // What is as many as were asked for may be no more than that.
            const auto given = static_cast<int64_t>(page.items.size());
            if (kind != PageSource::Kind::kObject && page.total > given && page.total != most) {
                teller_of_total(provider, kind) = session.device(provider->id);
            }
            done(std::move(page));
        });
}

PageLoop::PageLoop(Session& session, nbl_provider_t provider, PageSource source, Range range, OnPage on_page,
                   OnEnd on_end)
    : session_(session),
      provider_(provider),
      source_(std::move(source)),
      range_(range),
      on_page_(std::move(on_page)),
      on_end_(std::move(on_end)) {
    ask();
}

void PageLoop::ask() {
    asked_ = std::min(range_.page, range_.most - got_);
    call_ = std::make_unique<PageCall>(session_, provider_, source_, range_.start + got_, asked_,
                                       [this](Page page) { take(std::move(page)); });
}

void PageLoop::ask_in_doubt() {
    is_in_doubt_ = true;
    doubt_.start(kDoubt, [this] {
        call_.reset();
        const OnEnd on_end = on_end_;
        on_end(NBL_ERROR_NONE);
    });
    ask();
}

/// Whether the total of a page that brings all up to it is that of the source, not of the page.
bool PageLoop::is_total_of_all(const Page& page) const {
    if (page.total != static_cast<int64_t>(page.items.size()) || page.total == range_.expected) {
        return true;
    }
    return page.total != asked_ && teller_of_total(provider_, source_.kind) == session_.device(provider_->id);
}

void PageLoop::take(Page page) {
    const std::unique_ptr<PageCall> ended = std::move(call_);
    const bool was_in_doubt = std::exchange(is_in_doubt_, false);
    doubt_.stop();
    // Copies: either may end the loop, and with it what it was given.
    const OnPage on_page = on_page_;
    const OnEnd on_end = on_end_;
    read_ += page.bytes;
    if (page.error == NBL_ERROR_NONE &&
        read_ > kMostBytes + static_cast<size_t>(got_ + asked_) * kMostBytesOfObject) {
        page.error = NBL_ERROR_BAD_ANSWER;
    }
    if (page.error != NBL_ERROR_NONE) {
        on_end(was_in_doubt ? NBL_ERROR_NONE : page.error);
        return;
    }
    const auto count = static_cast<int64_t>(page.items.size());
    // Of a broken page the objects that could not be read are passed over too.
    const int64_t passed = page.is_whole ? count : std::max(count, std::min(page.returned, asked_));
    const bool is_new = count == 0 || seen_.insert(fingerprint_of(page.items)).second;
    const int64_t place = range_.start + got_;
    got_ += passed;
    // A total below what has come already is wrong.
    const bool is_all = page.total > 0 && range_.start + got_ == page.total;
    const bool is_last = passed == 0 || !is_new || got_ >= range_.most || (is_all && is_total_of_all(page));
    const std::weak_ptr<bool> alive = alive_;
    if (count > 0 && is_new) {
        on_page(std::move(page.items), place, page.total);
    }
    if (alive.expired()) {
        return;
    }
    if (is_last) {
        on_end(NBL_ERROR_NONE);
    } else if (is_all) {
        ask_in_doubt();
    } else {
        ask();
    }
}

}  // namespace nbl
