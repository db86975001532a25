#include "platform/nubelink/host/page_memory.h"

#include <algorithm>
#include <functional>

namespace nbl {

uint64_t fingerprint_of(const std::vector<ItemPtr>& page) {
    uint64_t fingerprint = page.size();
    for (const ItemPtr& item : page) {
        fingerprint = fingerprint * 1'099'511'628'211U + std::hash<std::string_view>()(item->bytes());
    }
    return fingerprint;
}

PageMemory::Folder& PageMemory::folder(const std::string& folder_id) {
    const auto found = std::find_if(folders_.begin(), folders_.end(),
                                    [&](const Folder& folder) { return folder.id == folder_id; });
    if (found == folders_.end()) {
        folders_.push_front({folder_id, {}, 0});
        folders_.resize(std::min(folders_.size(), kFolders));
    } else {
        folders_.splice(folders_.begin(), folders_, found);
    }
    return folders_.front();
}

void PageMemory::on_question(const std::string& folder_id, int start) {
    if (start == 0) {
        folder(folder_id).starts.clear();
    }
}

bool PageMemory::is_repeated(const std::string& folder_id, int start, const std::vector<ItemPtr>& page) {
    if (page.empty()) {
        return false;
    }
    const auto [entry, is_new] = folder(folder_id).starts.emplace(fingerprint_of(page), start);
    return !is_new && entry->second != start;
}

}  // namespace nbl
