#ifndef QRA_TESTS_UNIT_ENGINE_TEMP_FOLDER_H
#define QRA_TESTS_UNIT_ENGINE_TEMP_FOLDER_H

#include <fcntl.h>
#include <sys/stat.h>

#include "tests/fakes/temp_dir.h"

/// Lets a directory look as if it was last changed long ago, as the folders of a drive were.
inline void age(const std::string& folder) {
    const timespec long_ago[2] = {{1600000000, 0}, {1600000000, 0}};
    utimensat(AT_FDCWD, folder.c_str(), long_ago, 0);
}

/// A temporary directory with folders that are not new.
class TempFolder : public TempDir {
public:
    /// Makes a directory that was last changed long ago; gives its path.
    std::string old_folder(const std::string& name) const {
        std::filesystem::create_directory(path(name));
        age(path(name));
        return path(name);
    }
};

#endif
