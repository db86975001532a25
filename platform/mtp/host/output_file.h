#ifndef QRA_PLATFORM_MTP_HOST_OUTPUT_FILE_H
#define QRA_PLATFORM_MTP_HOST_OUTPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/files/descriptor.h"

namespace mtp {

/// A file that is being written, and goes away unless it is kept.
class OutputFile {
public:
    /// Creates it, or empties what is there.
    explicit OutputFile(const char* path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool is_open() const { return static_cast<bool>(file_); }
    bool write(const void* bytes, size_t length);
    /// False if the system had taken the bytes and could not write them.
    bool keep();

private:
    const std::string path_;
    files::Descriptor file_;
    bool kept_ = false;
};

/// An open file without a name in the directory of `path`; not open if that cannot be.
files::Descriptor nameless_file_beside(const std::string& path);

bool write_all(int file, const void* bytes, size_t length);

}  // namespace mtp

#endif
