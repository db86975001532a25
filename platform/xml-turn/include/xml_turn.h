/**
 * @file xml_turn.h
 * One lock for all of a process that reads XML with libxml2.
 *
 * The agent ends each reading of a package's XML with xmlCleanupParser(), which takes libxml2's global state
 * from under every other thread that parses at that moment: the process crashes. So the agent holds the turn
 * from its first call of libxml2 to the cleanup, and whoever else uses libxml2 in the same process, on a
 * thread of its own, holds it through each use: from the first call of libxml2 to the last, with the
 * documents and the parsers of one use freed before its end.
 *
 * The turn is no recursive lock. Whoever holds it calls nothing that may wait for another thread, takes no
 * other lock and calls back nobody but itself.
 */
#ifndef QRA_PLATFORM_XML_TURN_H
#define QRA_PLATFORM_XML_TURN_H

#ifdef __cplusplus
extern "C" {
#endif

/** Waits for the turn and takes it. Any thread; not one that has it. */
void xml_turn_begin(void) __attribute__((visibility("default")));

/** Gives the turn back. The thread that took it. */
void xml_turn_end(void) __attribute__((visibility("default")));

#ifdef __cplusplus
}
#endif

#endif
