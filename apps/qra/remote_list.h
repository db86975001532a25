#ifndef QRA_APPS_QRA_REMOTE_LIST_H
#define QRA_APPS_QRA_REMOTE_LIST_H

#include <qra/qra_content_agent.h>

#include <chrono>
#include <optional>
#include <string>
#include <variant>

#include "apps/qra/answer_queue.h"
#include "apps/qra/engine_access.h"
#include "apps/qra/engine_watch.h"
#include "apps/qra/list_request.h"
#include "apps/qra/main_loop_thread.h"

/// A folder of an account of the content engine.
struct RemoteFolder {
    std::string plugin;     ///< the account
    std::string container;  ///< "ID_QRA" of the folder; empty: the account's top
};

/// One list of the content engine, from its request to its disconnect, for the thread that makes it. The
/// answers come on the main loop's thread, which only puts them into a queue.
///
/// The list arrives in sections, and it can be read while it does: what has not arrived yet is waited for. No
/// wait is longer than the time that the user gave, nor goes on when the engine has ended.
class RemoteList {
public:
    /// Sends the request and waits for the first section.
    /// @param options  source, content type, order, and the page; its keyword is a word that titles hold
    /// @param longest_wait  for each section
    /// @throws CommandError for all that keeps the list, or one of its sections, from coming. So do the
    /// functions below.
    RemoteList(const ListOptions& options, const RemoteFolder& folder, std::chrono::seconds longest_wait);
    ~RemoteList();
    RemoteList(const RemoteList&) = delete;
    RemoteList& operator=(const RemoteList&) = delete;

    /// Items of the whole list; 0 if it is empty.
    int count() const { return count_; }

    /// The item's text, one line with a line feed at its end.
    std::string item(int index);
    void move_to(int index);

    /// All that the service tells of the list's first item, as one line of JSON with a line feed at its end.
    std::string detail_of_first();

    /// For reading values at the cursor.
    qra_agent_handler_h handle() const { return handle_; }

private:
    struct Event {
        qra_event_e event;
        std::string text;
    };
    using Answer = std::variant<Event, EngineState>;

    static bool on_list(void* list, CQRAAgentHandle* handle, qra_event_e event, int id, const char* text);
    static bool on_detail(void* list, CQRAAgentHandle* handle, int id, qra_event_e event, const char* text);
    void send(const ListOptions& options, const RemoteFolder& folder);
    void lay_out(const ListOptions& options);
    void end();
    Event next_event();
    void wait_for_section();
    /// Calls until the item's section is there.
    template <typename Call>
    void once_arrived(int index, Call call);

    const std::chrono::seconds longest_wait_;
    AnswerQueue<Answer> answers_;  // outlives the loop whose thread fills it
    EngineAccess engine_;
    MainLoopThread loop_;
    std::optional<EngineWatch<Answer>> engine_watch_;
    qra_agent_handler_h handle_ = nullptr;
    int count_ = 0;
};

#endif
