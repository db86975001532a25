#ifndef QRA_TESTS_FAKES_TEMP_DIR_H
#define QRA_TESTS_FAKES_TEMP_DIR_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A directory of its own for a test, gone with it.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qra-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~TempDir() { std::filesystem::remove_all(path_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Path of an entry, whether it is there or not.
    std::string path(const std::string& name = "") const { return name.empty() ? path_ : path_ + "/" + name; }

    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string path_;
};

/// Number of descriptors of this process that point below a directory.
inline int descriptors_below(const std::string& directory) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(entry.path(), error).string();
        count += target.rfind(directory + "/", 0) == 0 ? 1 : 0;
    }
    return count;
}

#endif
