#include "platform/nubelink/host/download_paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace nbl {

namespace {

/// One name for a file, however its directory is written.
std::string name_of(const std::string& path) {
    std::error_code error;
    const std::filesystem::path given(path);
    const std::filesystem::path directory = given.has_parent_path() ? given.parent_path() : ".";
    const std::filesystem::path real = std::filesystem::weakly_canonical(directory, error);
    return error ? path : (real / given.filename()).string();
}

}  // namespace

DownloadPaths& DownloadPaths::instance() {
    static auto* const paths = new DownloadPaths;  // Downloads may end after the statics do.
    return *paths;
}

std::shared_ptr<DownloadPaths::Hold> DownloadPaths::hold(const std::string& path) {
    std::string name = name_of(path);
    const std::lock_guard<std::mutex> lock(mutex_);
    Hold*& holder = held_[name];
    if (holder != nullptr) {
        return nullptr;
    }
    auto hold = std::make_shared<Hold>(*this, std::move(name));
    holder = hold.get();
    return hold;
}

void DownloadPaths::name(Hold& hold, int token) {
    const std::lock_guard<std::mutex> lock(mutex_);
    hold.token_ = token;
}

void DownloadPaths::give_up(int token) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find_if(held_.begin(), held_.end(),
                                    [token](const auto& entry) { return entry.second->token_ == token; });
    if (found != held_.end()) {
        held_.erase(found);
    }
}

void DownloadPaths::release(const Hold& hold) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = held_.find(hold.path_);
    if (found != held_.end() && found->second == &hold) {
        held_.erase(found);
    }
}

}  // namespace nbl
