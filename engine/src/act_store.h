#ifndef QRA_ENGINE_ACT_STORE_H
#define QRA_ENGINE_ACT_STORE_H

#include <sqlite3.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace engine {

/// Names an item for one user.
struct ItemKey {
    uid_t user;
    std::string account;
    std::string item_id;
};

/// What a user said about an item.
struct ItemOpinion {
    struct Comment {
        int64_t time;  ///< seconds of the Unix epoch
        std::string text;
    };
    bool like = false;
    std::vector<Comment> comments;  ///< oldest first
};

/**
 * Keeps likes and comments for services that have none, in a database of the engine's own. It is opened at
 * its first use. A failure is logged, and the next call tries again.
 */
class ActStore {
public:
    static constexpr size_t kLongestComment = 16 * 1024;
    static constexpr int kMostComments = 200;  ///< of an item; the oldest goes

    /// The file is made, with its directory, where there is none.
    explicit ActStore(std::string path) : path_(std::move(path)) {}

    bool set_like(const ItemKey& key, bool like);
    /// False also for a comment that is empty or too long.
    bool add_comment(const ItemKey& key, const std::string& text, int64_t time);
    /// Nothing if the database cannot be read.
    std::optional<ItemOpinion> opinion(const ItemKey& key);

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    class Query;

    bool open();
    bool prepare_schema();
    bool read_comments(const ItemKey& key, ItemOpinion& opinion);

    const std::string path_;
    std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace engine

#endif
