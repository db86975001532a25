#ifndef QRA_PLATFORM_FILES_KEY_FILE_H
#define QRA_PLATFORM_FILES_KEY_FILE_H

#include <glib.h>
#include <sys/types.h>

#include <string>

namespace files {

/**
 * Puts a key file in the place of the file at `path`, or makes one, so that readers at any moment and whoever
 * comes after a loss of power find the old content or the new one, whole: a new file beside the old one is
 * written, flushed and renamed, and the directory is flushed. It is on the disk when this returns.
 *
 * Writers that first read have to hold a FileLock meanwhile.
 *
 * @param mode  rights of the new file, less the process' umask
 * @return false if the system refuses a step: the old file is unharmed, and nothing else stays
 */
bool replace_key_file(GKeyFile* file, const std::string& path, mode_t mode);

}  // namespace files

#endif
