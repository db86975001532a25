#ifndef QRA_MEDIA_CONTENT_STORAGE_FILESYSTEM_IDENTITY_H
#define QRA_MEDIA_CONTENT_STORAGE_FILESYSTEM_IDENTITY_H

#include <optional>
#include <string>

namespace media_content {

/**
 * The id of a directory: the same wherever and whenever its file system is mounted, another one for each
 * other directory. It is made of the file system's UUID and the directory's path within it.
 *
 * @param directory  an absolute path without links
 * @return empty if there is no such directory
 */
std::optional<std::string> directory_id(const std::string& directory);

/**
 * The same, without reading the table of mounts and the device database again where neither has changed since
 * this process asked last. Two changes remain unseen until something is mounted or unmounted: a directory
 * that is mounted somewhere else gets another path within its file system, and a file system that the device
 * database does not know gets another UUID.
 *
 * Any thread may call it.
 */
std::optional<std::string> known_directory_id(const std::string& directory);

}  // namespace media_content

#endif
