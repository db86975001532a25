#include "platform/nubelink/host/ordered_views.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "platform/nubelink/host/page_loop.h"

namespace nbl {

namespace {

constexpr int64_t kPage = 500;

std::string criteria_for(int item_type) {
    const char* kind = item_type == NBL_ITEM_TYPE_IMAGE   ? "imageItem"
                       : item_type == NBL_ITEM_TYPE_VIDEO ? "videoItem"
                                                          : "audioItem";
    return std::string("upnp:class derivedfrom \"object.item.") + kind + "\"";
}

/// One and the same item may lie in many places of a server, as references to it.
std::string_view original_of(const nbl_item_s& item) {
    const std::string_view original = item.text("@refID");
    return original.empty() ? item.text("@id") : original;
}

}  // namespace

/// The items of one kind of one server, with the views made of them, and whoever waits for them.
class OrderedViews::Pass {
public:
    Pass(Session& session, nbl_provider_t provider, int item_type)
        : session_(session), provider_(provider), item_type_(item_type) {}

    void join(Question& question, bool fresh);
    void leave(Question& question);
    bool is_unused() const { return questions_.empty(); }

private:
    bool is_busy() const { return check_ != nullptr || search_ != nullptr || soon_pending_; }
    void soon(std::function<void()> what);
    void check();
    void take_check(const SoapAnswer& answer);
    void search();
    void take_page(std::vector<ItemPtr> items);
    void take_end(int error);
    void answer(int error);
    const ViewTree& tree(const View& view);

    Session& session_;
    nbl_provider_t const provider_;
    const int item_type_;

    bool complete_ = false;
    std::string update_id_;  ///< at which the items were searched; empty: not known
    std::vector<ItemPtr> items_;
    std::map<std::string_view, std::unique_ptr<ViewTree>> trees_;

    std::vector<Question*> questions_;
    Timer soon_;
    bool soon_pending_ = false;
    std::unique_ptr<SoapCall> check_;
    std::unique_ptr<PageLoop> search_;
    std::string new_update_id_;
    std::vector<ItemPtr> new_items_;
    std::set<std::string, std::less<>> seen_;
};

void OrderedViews::Pass::join(Question& question, bool fresh) {
    questions_.push_back(&question);
    if (is_busy()) {
        return;
    }
    if (complete_ && !fresh) {
        soon([this] { answer(NBL_ERROR_NONE); });
    } else {
        soon([this] { check(); });
    }
}

void OrderedViews::Pass::leave(Question& question) {
    questions_.erase(std::remove(questions_.begin(), questions_.end(), &question), questions_.end());
    if (questions_.empty()) {
        soon_.stop();
        soon_pending_ = false;
        check_.reset();
        search_.reset();
        new_items_.clear();
        seen_.clear();
    }
}

void OrderedViews::Pass::soon(std::function<void()> what) {
    soon_pending_ = true;
    soon_.start(0, [this, what = std::move(what)] {
        soon_pending_ = false;
        what();
    });
}

void OrderedViews::Pass::check() {
    const DevicePtr device = session_.device(provider_->id);
    if (device == nullptr) {
        answer(NBL_ERROR_DEVICE_GONE);
        return;
    }
    check_ = std::make_unique<SoapCall>(session_.http(), device->description.content_directory,
                                        SoapQuestion{"GetSystemUpdateID", {}},
                                        [this](const SoapAnswer& answer) { take_check(answer); });
}

void OrderedViews::Pass::take_check(const SoapAnswer& found) {
    check_.reset();
    session_.on_call_error(provider_->id, found.error);
    if (found.error == NBL_ERROR_NETWORK || found.error == NBL_ERROR_TIMEOUT) {
        answer(found.error);
        return;
    }
    new_update_id_ = found.error == NBL_ERROR_NONE ? found.find("Id") : std::string_view();
    if (complete_ && !new_update_id_.empty() && new_update_id_ == update_id_) {
        answer(NBL_ERROR_NONE);
    } else {
        search();
    }
}

void OrderedViews::Pass::search() {
    new_items_.clear();
    seen_.clear();
    PageLoop::Range range;
    range.page = kPage;
    search_ = std::make_unique<PageLoop>(
        session_, provider_, PageSource{PageSource::Kind::kSearch, "0", criteria_for(item_type_)}, range,
        [this](std::vector<ItemPtr> items, int64_t, int64_t) { take_page(std::move(items)); },
        [this](int error) { take_end(error); });
}

void OrderedViews::Pass::take_page(std::vector<ItemPtr> items) {
    for (ItemPtr& item : items) {
        if (seen_.emplace(original_of(*item)).second) {
            new_items_.push_back(std::move(item));
        }
    }
    for (Question* question : questions_) {
        question->progress_();
    }
}

void OrderedViews::Pass::take_end(int error) {
    search_.reset();
    seen_.clear();
    if (error == NBL_ERROR_NONE) {
        trees_.clear();
        items_ = std::move(new_items_);
        update_id_ = new_update_id_;
        complete_ = true;
    }
    new_items_.clear();
    answer(error);
}

void OrderedViews::Pass::answer(int error) {
    // Whoever asks anew from inside an answer waits for the next one.
    std::vector<Question*> answered = questions_;
    while (!answered.empty()) {
        Question* question = answered.front();
        answered.erase(answered.begin());
        const auto waiting = std::find(questions_.begin(), questions_.end(), question);
        if (waiting == questions_.end()) {
            continue;  // An earlier answer has ended it.
        }
        questions_.erase(waiting);
        const Question::Done done = question->done_;
        done(error, error == NBL_ERROR_NONE ? &tree(question->view_) : nullptr);
    }
}

const ViewTree& OrderedViews::Pass::tree(const View& view) {
    std::unique_ptr<ViewTree>& made = trees_[view.id];
    if (made == nullptr) {
        made = std::make_unique<ViewTree>(view, items_);
    }
    return *made;
}

OrderedViews::Question::Question(OrderedViews& views, nbl_provider_t provider, const View& view, bool fresh,
                                 Done done, Progress progress)
    : pass_(views.pass(provider, view.item_type)),
      view_(view),
      done_(std::move(done)),
      progress_(std::move(progress)) {
    pass_->join(*this, fresh);
}

OrderedViews::Question::~Question() {
    pass_->leave(*this);
}

OrderedViews::OrderedViews(Session& session) : session_(session) {}

OrderedViews::~OrderedViews() = default;

std::unique_ptr<OrderedViews::Question> OrderedViews::ask(nbl_provider_t provider, const View& view,
                                                          bool fresh, Question::Done done,
                                                          Question::Progress progress) {
    return std::make_unique<Question>(*this, provider, view, fresh, std::move(done), std::move(progress));
}

void OrderedViews::forget_unused() {
    for (auto entry = passes_.begin(); entry != passes_.end();) {
        entry = entry->second->is_unused() ? passes_.erase(entry) : std::next(entry);
    }
}

std::shared_ptr<OrderedViews::Pass> OrderedViews::pass(nbl_provider_t provider, int item_type) {
    std::shared_ptr<Pass>& found = passes_[{provider, item_type}];
    if (found == nullptr) {
        found = std::make_shared<Pass>(session_, provider, item_type);
    }
    return found;
}

}  // namespace nbl
