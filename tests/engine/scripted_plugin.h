#ifndef QRA_TESTS_ENGINE_SCRIPTED_PLUGIN_H
#define QRA_TESTS_ENGINE_SCRIPTED_PLUGIN_H

#include <memory>

#include "engine/src/plugin.h"

/*
 * A plug-in whose account address is a script, a JSON object, and that answers as it says:
 *
 *   folders, media       how many items come; a folder's texts name "folder N", a medium's "medium N"
 *   announced_folders,   what is announced instead; "announce": false announces nothing
 *   announced_media
 *   text_bytes           the least length of an item text
 *   step                 items for each turn of the main loop (50)
 *   hold_at, gate        goes on beyond that many items only when the file `gate` is there
 *   fail_at              fails after that many items
 *   silent_at            says nothing any more after that many items
 *   detail               "item" (the item's own text and "DETAIL": true), "empty", "fail", "silent",
 * "garbage", "none" acts                 acts that the service has: "echo" ends with its parameters, "count"
 * tells three updates before that, "fail" fails, "silent" says nothing open                 false: the
 * account cannot be opened
 */
std::unique_ptr<engine::Plugin> make_scripted_plugin();

#endif
