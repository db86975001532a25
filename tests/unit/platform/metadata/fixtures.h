#ifndef QRA_TESTS_METADATA_FIXTURES_H
#define QRA_TESTS_METADATA_FIXTURES_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/media-content/host/metadata/metadata_reader.h"

namespace media_content {

/// What a MetadataReader tells about a file.
struct ReadResult {
    MediaRecord record;
    const char* problem = nullptr;
};

/// Reads a file as a scan does. @param path of the file
inline ReadResult read_metadata_of(const std::string& path) {
    ReadResult result;
    const std::string name = std::filesystem::path(path).filename();
    const int directory =
        open(std::filesystem::path(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const MediaType* type = find_media_type(name);
    EXPECT_GE(file, 0) << path;
    EXPECT_NE(type, nullptr) << path;
    if (file >= 0 && type) {
        MetadataReader reader;
        result.problem =
            reader.read(file, std::filesystem::file_size(path), directory, name, *type, result.record);
    }
    close(file);
    close(directory);
    return result;
}

/// Reads one of the committed sample files. @param name such as "pictures/photo.jpg"
inline ReadResult read_fixture(const std::string& name) {
    return read_metadata_of(std::string(QRA_FIXTURES) + "/" + name);
}

}  // namespace media_content

#endif
