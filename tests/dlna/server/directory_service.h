#ifndef QRA_TESTS_DLNA_SERVER_DIRECTORY_SERVICE_H
#define QRA_TESTS_DLNA_SERVER_DIRECTORY_SERVICE_H

#include <libgupnp/gupnp.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "tests/dlna/server/content.h"
#include "tests/dlna/server/description.h"
#include "tests/dlna/server/didl.h"
#include "tests/dlna/server/faults.h"
#include "tests/dlna/server/journal.h"

/**
 * The actions of the content directory, done properly unless a switch "ACTION.FAULT" says otherwise:
 *
 *   error CODE       answers that SOAP error          hold            answers at release()
 *   delay MS         answers so much later            cut             breaks the connection amid the answer
 *   endless          answers without an end           broken-soap     answers with broken XML
 *   redirect URL     sends the client there           status CODE     answers with that HTTP status
 *
 * and for Browse and Search:
 *
 *   at-most N        fewer items than asked for       none-from N     nothing from that index on
 *   total N          tells that total                 grow N, shrink N   the total changes with each answer
 *   total-of-page    tells how many it gives as the total
 *   same-page        the first page always            duplicate-ids   all items of a page have one id
 *   child-count N    tells of each folder that it has so many
 *   invent N         as many objects as that: the true ones again and again, each with an id of its own
 *   fat N            titles that are longer by N letters    padded N   N blanks in each answer
 *   broken-didl, empty-didl, no-didl, not-utf8
 */
class DirectoryService {
public:
    DirectoryService(GUPnPRootDevice* device, const Identity& identity, Content& content, Faults& faults,
                     Journal& journal);
    ~DirectoryService();
    DirectoryService(const DirectoryService&) = delete;
    DirectoryService& operator=(const DirectoryService&) = delete;

    /// Answers what is held, in the order in which it came.
    void release();
    /// Tells subscribers that the content changed.
    void tell_change();

private:
    /// The object at a place of what is asked for.
    using ObjectAt = std::function<const Object*(std::size_t)>;

    static void on_action(GUPnPService* service, GUPnPServiceAction* action, void* self);
    static void on_query(GUPnPService* service, const char* variable, GValue* value, void* self);
    static void on_control(SoupServer* server, SoupServerMessage* message, const char* path,
                           GHashTable* query, void* self);
    /// One after the other, each when nothing else is to be done: the last answer is on its way before the
    /// next is worked out.
    void answer_in_turn(GUPnPServiceAction* action);
    static gboolean on_turn(void* self);
    void answer(GUPnPServiceAction* action);
    void browse(GUPnPServiceAction* action);
    void search(GUPnPServiceAction* action);
    void answer_page(GUPnPServiceAction* action, std::size_t total, const ObjectAt& object_at);
    std::string page_didl(const std::string& name, const std::vector<const Object*>& objects,
                          std::size_t start);
    unsigned total_of(const std::string& name, std::size_t true_total);
    void create_object(GUPnPServiceAction* action);
    void destroy_object(GUPnPServiceAction* action);
    void set_bookmark(GUPnPServiceAction* action);
    void update_object(GUPnPServiceAction* action);
    void give_text(GUPnPServiceAction* action, const char* argument, const std::string& text);
    std::string feature_list();

    Identity identity_;
    DidlStyle style_;
    Content& content_;
    Faults& faults_;
    Journal& journal_;
    GUPnPService* service_;
    std::vector<GUPnPServiceAction*> held_;
    std::deque<GUPnPServiceAction*> due_;
    unsigned turn_ = 0;  ///< the source of turns, while there are actions due
    int imported_ = 0;
};

#endif
