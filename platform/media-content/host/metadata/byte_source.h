#ifndef QRA_MEDIA_CONTENT_METADATA_BYTE_SOURCE_H
#define QRA_MEDIA_CONTENT_METADATA_BYTE_SOURCE_H

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace media_content {

/// A run of bytes in a file; empty when its length is 0.
struct ByteRange {
    uint64_t offset = 0;
    uint64_t length = 0;

    bool empty() const { return length == 0; }
    uint64_t end() const { return offset + length; }
};

/**
 * The bytes of one file, read at any offset.
 *
 * Readers take everything through it, so that a file is opened once, and so that no reader, be it ours or a
 * library's, reads for longer than the source allows: a read beyond the end, beyond the appetite or after a
 * stop gives what there is, at last nothing. For one thread at a time.
 */
class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// Size of the file in bytes.
    virtual uint64_t size() const = 0;

    /// Copies up to `length` bytes at `offset` to `out`; gives how many were copied.
    virtual size_t read(uint64_t offset, void* out, size_t length) = 0;

    /// Copies exactly `length` bytes at `offset`; false when they are not to be had.
    bool read_exactly(uint64_t offset, void* out, size_t length) {
        return read(offset, out, length) == length;
    }

    /// Reads a block of at most `limit` bytes whole; false, with an empty block, when it is longer or cut
    /// off.
    bool read_block(ByteRange range, size_t limit, std::vector<uint8_t>& out);
};

/// Bytes in memory; they belong to the caller and must outlive the source.
class MemorySource final : public ByteSource {
public:
    MemorySource(const void* bytes, size_t size) : bytes_(static_cast<const uint8_t*>(bytes)), size_(size) {}

    uint64_t size() const override { return size_; }
    size_t read(uint64_t offset, void* out, size_t length) override;

private:
    const uint8_t* bytes_;
    size_t size_;
};

/**
 * An open file, read with pread through a small window that is kept from file to file.
 *
 * The descriptor belongs to the caller. `stop`, where given, ends all reading as soon as it is true.
 */
class FileSource final : public ByteSource {
public:
    /// No reader needs more of one file than this: what asks for more is lost in broken data.
    static constexpr uint64_t kAppetite = 32U << 20;

    explicit FileSource(const std::atomic<bool>* stop = nullptr);

    /// Turns to another open file.
    void open(int descriptor, uint64_t size);

    /// Whether the device refused a read: what was read of this file says nothing about it.
    bool failed() const { return failed_; }

    uint64_t size() const override { return size_; }
    size_t read(uint64_t offset, void* out, size_t length) override;

private:
    size_t fetch(uint64_t offset, void* out, size_t length);

    static constexpr size_t kWindowSize = 16U << 10;

    const std::atomic<bool>* stop_;
    int descriptor_ = -1;
    bool failed_ = false;
    uint64_t size_ = 0;
    uint64_t appetite_ = 0;  ///< bytes that may still be read of this file
    std::vector<uint8_t> window_;
    ByteRange windowed_;  ///< the part of the file that the window holds
};

}  // namespace media_content

#endif
