#ifndef QRA_SCSA_DMP_PACKAGE_FILE_H
#define QRA_SCSA_DMP_PACKAGE_FILE_H

#include <array>
#include <cstdint>
#include <string>

#include "platform/files/descriptor.h"
#include "platform/media-content/host/metadata/byte_source.h"
#include "platform/scsa-dmp/host/limits.h"

namespace scsa_host {

using media_content::ByteRange;
using media_content::ByteSource;
using media_content::MemorySource;

/// Tells a file from all others, and from itself before a change.
struct FileState {
    std::string path;
    /// Device, inode, size, and when it was changed: its bytes and it itself.
    std::array<uint64_t, 7> facts{};

    bool operator==(const FileState& other) const { return path == other.path && facts == other.facts; }
};

/// A package on a drive, read with pread and without a window: a film of many gigabytes is asked for the few
/// bytes that are wanted. Past the limits on reads it gives nothing any more.
class PackageFile final : public ByteSource {
public:
    explicit PackageFile(const std::string& path);

    /// False if the path is no file that can be read.
    bool is_open() const { return static_cast<bool>(file_); }
    uint64_t size() const override { return size_; }
    size_t read(uint64_t offset, void* out, size_t length) override;

    /// Which state of which file it is.
    const FileState& state() const { return state_; }
    /// What its reads have cost.
    uint64_t cost() const;

private:
    files::Descriptor file_;
    FileState state_;
    uint64_t size_ = 0;
    int reads_left_ = kMostReads;
    uint64_t bytes_left_ = kMostBytes;
};

/// A part of another source, such as an SFF that lies in a container as it is.
class PartSource final : public ByteSource {
public:
    /// The part must lie within the whole, which must outlive it.
    PartSource(ByteSource& whole, ByteRange part) : whole_(whole), part_(part) {}

    uint64_t size() const override { return part_.length; }
    size_t read(uint64_t offset, void* out, size_t length) override;

private:
    ByteSource& whole_;
    ByteRange part_;
};

}  // namespace scsa_host

#endif
