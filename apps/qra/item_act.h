#ifndef QRA_APPS_QRA_ITEM_ACT_H
#define QRA_APPS_QRA_ITEM_ACT_H

#include <gio/gio.h>
#include <json/value.h>

#include <chrono>
#include <string>

#include "apps/qra/answer_queue.h"
#include "apps/qra/glib_owner.h"

/// The texts of the engine's completion signals. They have to outlive the main loop that fills them.
using Completions = AnswerQueue<std::string>;

/// A connection of its own to an account of the engine, for acts on items. It speaks the engine's protocol
/// itself: the C interface's records of likes and comments have no setter that does anything. The engine's
/// signals come on the main loop's thread, which has to run.
class ItemActs {
public:
    /// @throws CommandError if there is no engine, or it does not take the account
    ItemActs(const std::string& account, Completions& completions);
    ~ItemActs();
    ItemActs(const ItemActs&) = delete;
    ItemActs& operator=(const ItemActs&) = delete;

    /// Sends an act and waits for its end. @throws CommandError if it fails or does not end in time
    void perform(Json::Value request, std::chrono::seconds longest_wait);

private:
    static void on_complete(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                            const char* signal, GVariant* arguments, gpointer completions);

    Completions& completions_;
    Owned<GDBusConnection> bus_;
    guint subscription_ = 0;
    guint32 id_ = 0;
};

/// Ends a command on an account that the engine does not take, with the engine's reason.
[[noreturn]] void fail_refused_account(const std::string& account);

#endif
