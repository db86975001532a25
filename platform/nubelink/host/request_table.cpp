#include "platform/nubelink/host/request_table.h"

#include <climits>
#include <vector>

#include "nubelink.h"

namespace nbl {

int RequestTable::new_token() {
    int token = last_token_.load();
    while (!last_token_.compare_exchange_weak(token, token == INT_MAX ? 1 : token + 1)) {
    }
    return token == INT_MAX ? 1 : token + 1;
}

bool RequestTable::was_given(int token) const {
    return token > 0 && token <= last_token_.load();
}

void RequestTable::start(int token, std::unique_ptr<Request> request, Session* session, unsigned deadline) {
    Request& started = *request;
    started.token_ = token;
    open_[token] = {std::move(request), std::make_unique<Timer>()};
    if (session == nullptr) {
        end(token, NBL_ERROR_NOT_CONNECTED);
        return;
    }
    extend(token, deadline);
    started.start(*session);
}

void RequestTable::extend(int token, unsigned deadline) {
    const auto found = open_.find(token);
    if (found != open_.end() && deadline != kNoDeadline) {
        found->second.deadline->start(deadline, [this, token] { end(token, NBL_ERROR_TIMEOUT); });
    }
}

std::unique_ptr<Request> RequestTable::take(int token) {
    const auto found = open_.find(token);
    if (found == open_.end()) {
        return nullptr;
    }
    std::unique_ptr<Request> request = std::move(found->second.request);
    open_.erase(found);
    return request;
}

void RequestTable::end(int token, int error) {
    if (const std::unique_ptr<Request> request = take(token)) {
        request->answer(error);
    }
}

void RequestTable::end_all(int error) {
    // What an answer starts is behind a post, so the table only shrinks here.
    while (!open_.empty()) {
        end(open_.begin()->first, error);
    }
}

void RequestTable::end_all_of(const std::string& device_id, int error) {
    std::vector<int> tokens;
    for (const auto& [token, open] : open_) {
        if (open.request->device_id() == device_id) {
            tokens.push_back(token);
        }
    }
    for (const int token : tokens) {
        end(token, error);
    }
}

}  // namespace nbl
