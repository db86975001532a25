#ifndef QRA_NUBELINK_PAGE_MEMORY_H
#define QRA_NUBELINK_PAGE_MEMORY_H

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "platform/nubelink/host/item_record.h"

namespace nbl {

/// A number that pages of the same objects with the same properties have in common.
uint64_t fingerprint_of(const std::vector<ItemPtr>& page);

/**
 * Remembers which pages a server gave of its folders, to find out when it gives the same page for another
 * place: a server that takes no notice of where a page shall start. They are forgotten when the folder's
 * first page is asked for again. A folder is forgotten altogether when kFolders others were asked for after
 * it.
 */
class PageMemory {
public:
    static constexpr size_t kFolders = 8;

    /// A page is asked for.
    void on_question(const std::string& folder_id, int start);
    /// So many objects are in the folder, as far as was found out.
    void set_count(const std::string& folder_id, int64_t count) { folder(folder_id).count = count; }
    /// 0 for a folder that is not remembered.
    int64_t count_of(const std::string& folder_id) { return folder(folder_id).count; }
    /// A page has come. Whether it came before, for another place.
    bool is_repeated(const std::string& folder_id, int start, const std::vector<ItemPtr>& page);

private:
    struct Folder {
        std::string id;
        std::map<uint64_t, int> starts;  ///< by fingerprint
        int64_t count = 0;               ///< of its objects
    };
    Folder& folder(const std::string& folder_id);

    std::list<Folder> folders_;  ///< the latest first
};

}  // namespace nbl

#endif
