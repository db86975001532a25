#ifndef QRA_APPS_QRA_SERVER_QUESTIONS_H
#define QRA_APPS_QRA_SERVER_QUESTIONS_H

#include <string>

#include "nubelink.h"

struct ListOptions;

// What the library tells of a list of a media server that failed is that it failed. The home network service,
// which has to be connected, knows why: it is asked the same once more. Each call waits for the server's
// answer, as long as the service does; a signal that ends the tool ends the wait.

/// The way to the server of that id; an nbl_error_e.
int find_provider(const std::string& server_id, nbl_provider_t& provider);

/// Why a list failed, as a sentence without its end.
std::string list_failure(const std::string& server_id, const ListOptions& options);

/// Why an item cannot be asked for; empty if it can.
std::string item_failure(const std::string& server_id, const std::string& item_id);

#endif
