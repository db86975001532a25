#ifndef QRA_TESTS_FAKES_OWN_MOUNTS_H
#define QRA_TESTS_FAKES_OWN_MOUNTS_H

#include <string>

/// Gives the process mounts of its own, as root or through a user namespace. False where it may not have any,
/// or where it has more than one thread and is not root.
bool have_own_mounts();

/// Mounts a file system that lives in memory, with options such as "size=16m".
bool mount_memory(const std::string& directory, const char* options);

/// Lets nobody write to what mount_memory() mounted any more, root included.
bool make_mount_read_only(const std::string& directory);

#endif
