#ifndef QRA_ENGINE_PLUGIN_H
#define QRA_ENGINE_PLUGIN_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace engine {

/*
 * What a plug-in is to the engine: a kind of service (WebDAV, feeds, ...) that opens accounts, and sessions
 * on them that list containers, describe items and act on them.
 *
 * All of it lives on the engine's one thread and never blocks it: a request returns at once, its answer comes
 * later from the thread's main context, never from inside the call that began it. Every request has a
 * deadline of the plug-in's own and is answered exactly once, unless it was cancelled.
 *
 * Item texts are JSON objects with the agent's own field names ("TITLE", "DISPLAY_NAME", "MEDIA_TYPE",
 * "SIZE", "MODIFIED_TIME", "MIME_TYPE", "URL", "THUMBNAIL_PATH", "ID_QRA", ...), so that a client reads a
 * remote item as it reads a file. "ID_QRA" is the text by which the plug-in knows the item again: a folder's
 * is what `list` takes, and a medium's gives a list of it alone. No text of a plug-in holds credentials.
 */

/// One account as its owner wrote it down. The name is what clients connect to.
struct Account {
    std::string name;
    std::string plugin;
    std::string address;
    std::string user;      ///< empty: anonymous
    std::string password;  ///< never logged
};

/// What a client asks a list for. Texts that it left out are empty.
struct ListQuery {
    std::string container;     ///< "ID_QRA" of a folder, or of a medium: that alone; empty: the account's top
    std::string content_type;  ///< which media are wanted: "image", "video", "audio"; empty: all
    std::string category;      ///< the order
    std::string filter;        ///< a word that titles hold
};

inline bool operator==(const ListQuery& left, const ListQuery& right) {
    return left.container == right.container && left.content_type == right.content_type &&
           left.category == right.category && left.filter == right.filter;
}

/// Takes the answer of one list request. Folders and media are the list's two groups, folders first.
class ListAnswer {
public:
    virtual ~ListAnswer() = default;

    /// How many items of each group come; once, before the first item.
    virtual void begin(size_t folders, size_t media) = 0;
    /// The next folder, and the next medium, as item texts. The two may come in any mixture.
    virtual void add_folder(std::string text) = 0;
    virtual void add_medium(std::string text) = 0;
    /// The end of the answer: all is there, or, with a reason that a person understands, it failed.
    virtual void end() = 0;
    virtual void fail(std::string reason) = 0;
};

/// The answer to a request for one item.
struct ItemAnswer {
    /// An act may tell of itself any number of times, with kUpdate, before it ends with one of the others.
    enum class Outcome { kDone, kEmpty, kFailed, kUpdate };
    Outcome outcome;
    std::string text;  ///< done, update: the item's text or what the act gave; failed: the reason
};
using ItemDone = std::function<void(ItemAnswer)>;

/// A request under way; its end cancels it, and nothing more is answered.
class Request {
public:
    virtual ~Request() = default;
};
using RequestPtr = std::unique_ptr<Request>;

/// One account, opened for one client. Requests end before their session.
class PluginSession {
public:
    virtual ~PluginSession() = default;

    /// `answer` outlives the request.
    virtual RequestPtr list(const ListQuery& query, ListAnswer& answer) = 0;
    /// All that the service tells of the item with that "ID_QRA".
    virtual RequestPtr describe(const std::string& item_id, ItemDone done) = 0;
    /// An act of the service's own on an item, with the client's JSON as it came. A null request: the service
    /// has no such act.
    virtual RequestPtr act(const std::string& command, const std::string& parameters, ItemDone done) = 0;
};

/// One kind of service.
class Plugin {
public:
    virtual ~Plugin() = default;
    virtual const char* name() const = 0;  ///< as accounts name it: "webdav", "feed"
    /// Null, with `reason` set, if the account cannot be used as it stands. Asks no server.
    virtual std::unique_ptr<PluginSession> open(const Account& account, std::string& reason) = 0;
};

}  // namespace engine

#endif
