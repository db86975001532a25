#ifndef QRA_TESTS_DLNA_SERVER_FILE_SERVICE_H
#define QRA_TESTS_DLNA_SERVER_FILE_SERVICE_H

#include <libsoup/soup.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/dlna/server/content.h"
#include "tests/dlna/server/faults.h"
#include "tests/dlna/server/journal.h"

/**
 * Gives the content of items, and takes that of new ones. Switches for GET:
 *
 *   status CODE      hold         answers at release()      redirect URL   "#" in it becomes the asked path
 *   cut N            breaks the connection after N bytes    silent N       says nothing more after N bytes
 *   no-length        does not tell the size                 endless        never ends
 *   type TEXT        another content type
 *
 * and for POST, which includes PUT: status CODE, hold, cut (before the content is read).
 */
class FileService {
public:
    /// `directory` takes what is sent; `on_import` is called when something has come.
    FileService(SoupServer* server, std::string directory, Content& content, Faults& faults, Journal& journal,
                std::function<void()> on_import);
    ~FileService();
    FileService(const FileService&) = delete;
    FileService& operator=(const FileService&) = delete;

    void release();

private:
    static void on_get(SoupServer* server, SoupServerMessage* message, const char* path, GHashTable* query,
                       void* self);
    static void on_import_head(SoupServer* server, SoupServerMessage* message, const char* path,
                               GHashTable* query, void* self);
    static void on_import_body(SoupServer* server, SoupServerMessage* message, const char* path,
                               GHashTable* query, void* self);
    void give(SoupServerMessage* message, const Object& object);
    void import(SoupServerMessage* message, const std::string& id);
    void hold(SoupServerMessage* message, std::function<void(SoupServerMessage*)> then);

    SoupServer* server_;
    std::string directory_;
    Content& content_;
    Faults& faults_;
    Journal& journal_;
    std::function<void()> on_import_;
    struct Held {
        SoupServerMessage* message;
        std::function<void(SoupServerMessage*)> then;
    };
    std::vector<Held> held_;
};

#endif
