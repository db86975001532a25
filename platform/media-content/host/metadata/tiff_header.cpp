#include "platform/media-content/host/metadata/tiff_header.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {
namespace {

enum Tag : uint16_t {
    kPanasonicLeft = 0x0005,
    kPanasonicTop = 0x0004,
    kPanasonicBottom = 0x0006,
    kPanasonicRight = 0x0007,
    kNewSubfileType = 0x00FE,
    kImageWidth = 0x0100,
    kImageLength = 0x0101,
    kSubDirectories = 0x014A,
    kXmp = 0x02BC,
    kExifDirectory = 0x8769,
    kPixelXDimension = 0xA002,
    kPixelYDimension = 0xA003,
};

constexpr size_t kEntrySize = 12;
constexpr uint16_t kMostEntries = 1024;
constexpr size_t kMostDirectories = 24;
constexpr size_t kMostSubDirectories = 8;

struct Entry {
    uint16_t tag;
    uint16_t type;
    uint32_t count;
    const uint8_t* value;  ///< four bytes: the value, or where it is
};

struct Size {
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t area() const { return width * height; }
};

/// Walks the directories and keeps the best size that it meets.
class TiffWalker {
public:
    TiffWalker(ByteSource& source, ByteRange file) : source_(source), file_(file) {}

    void walk(PictureHeader& header);

private:
    uint16_t u16(const uint8_t* p) const { return little_ ? little16(p) : big16(p); }
    uint32_t u32(const uint8_t* p) const { return little_ ? little32(p) : big32(p); }

    /// The value of an entry that holds one whole number.
    uint32_t number(const Entry& entry) const {
        constexpr uint16_t kShort = 3;
        return entry.type == kShort ? u16(entry.value) : u32(entry.value);
    }

    void enqueue(uint64_t offset);
    void read_directory(uint64_t offset, PictureHeader& header);
    void note_entry(const Entry& entry, PictureHeader& header);
    void enqueue_sub_directories(const Entry& entry);
    void end_directory();

    ByteSource& source_;
    const ByteRange file_;
    bool little_ = true;
    bool panasonic_ = false;
    std::vector<uint64_t> directories_;  ///< those met so far; each is read once
    std::vector<uint8_t> bytes_;

    // The directory at hand.
    Size size_, pixels_;
    uint32_t border_[4] = {};  ///< top, left, bottom, right
    bool preview_ = false;

    Size best_, best_preview_, best_pixels_;
};

void TiffWalker::walk(PictureHeader& header) {
    std::array<uint8_t, 8> start;
    if (file_.length < start.size() || !source_.read_exactly(file_.offset, start.data(), start.size())) {
        return;
    }
    little_ = start[0] == 'I';
    panasonic_ = start[2] == 'U';
    enqueue(u32(&start[4]));
    for (size_t i = 0; i < directories_.size(); ++i) {
        read_directory(directories_[i], header);
    }
    for (const Size& size : {best_, best_pixels_, best_preview_}) {
        if (!header.has_size()) {
            header.set_size(size.width, size.height);
        }
    }
}

void TiffWalker::enqueue(uint64_t offset) {
    const bool known = std::find(directories_.begin(), directories_.end(), offset) != directories_.end();
    if (offset != 0 && offset < file_.length && !known && directories_.size() < kMostDirectories) {
        directories_.push_back(offset);
    }
}

void TiffWalker::read_directory(uint64_t offset, PictureHeader& header) {
    std::array<uint8_t, 2> head;
    if (!source_.read_exactly(file_.offset + offset, head.data(), head.size())) {
        return;
    }
    const size_t count = std::min(u16(head.data()), kMostEntries);
    bytes_.resize(count * kEntrySize + 4);
    const size_t got = source_.read(file_.offset + offset + 2, bytes_.data(), bytes_.size());
    for (size_t at = 0; at < count * kEntrySize && at + kEntrySize <= got; at += kEntrySize) {
        const uint8_t* p = &bytes_[at];
        note_entry({u16(p), u16(p + 2), u32(p + 4), p + 8}, header);
    }
    end_directory();
    if (got == bytes_.size()) {
        enqueue(u32(&bytes_[got - 4]));
    }
}

void TiffWalker::note_entry(const Entry& entry, PictureHeader& header) {
    switch (entry.tag) {
        case kImageWidth:
            size_.width = number(entry);
            break;
        case kImageLength:
            size_.height = number(entry);
            break;
        case kPixelXDimension:
            pixels_.width = number(entry);
            break;
        case kPixelYDimension:
            pixels_.height = number(entry);
            break;
        case kNewSubfileType:
            preview_ = (number(entry) & 1) != 0;
            break;
        case kSubDirectories:
            enqueue_sub_directories(entry);
            break;
        case kExifDirectory:
            enqueue(number(entry));
            break;
        case kXmp:
            if (header.xmp.empty() && entry.count > 4) {
                header.xmp = {file_.offset + u32(entry.value), entry.count};
            }
            break;
        case kPanasonicTop:
        case kPanasonicLeft:
        case kPanasonicBottom:
        case kPanasonicRight:
            border_[entry.tag - kPanasonicTop] = panasonic_ ? number(entry) : 0;
            break;
        default:
            break;
    }
}

void TiffWalker::enqueue_sub_directories(const Entry& entry) {
    if (entry.count == 1) {
        enqueue(u32(entry.value));
        return;
    }
    std::array<uint8_t, kMostSubDirectories * 4> offsets{};
    const size_t wanted = std::min<size_t>(entry.count, kMostSubDirectories) * 4;
    const size_t got = source_.read(file_.offset + u32(entry.value), offsets.data(), wanted);
    for (size_t at = 0; at + 4 <= got; at += 4) {
        enqueue(u32(&offsets[at]));
    }
}

void TiffWalker::end_directory() {
    if (border_[3] > border_[1] && border_[2] > border_[0]) {
        size_ = {border_[3] - border_[1], border_[2] - border_[0]};
    }
    Size& best = preview_ ? best_preview_ : best_;
    if (size_.area() > best.area()) {
        best = size_;
    }
    if (pixels_.area() > best_pixels_.area()) {
        best_pixels_ = pixels_;
    }
    size_ = pixels_ = {};
    std::fill(std::begin(border_), std::end(border_), 0);
    preview_ = false;
}

}  // namespace

void read_tiff_header(ByteSource& source, ByteRange file, PictureHeader& header) {
    header.exif.push_back(file);
    TiffWalker(source, file).walk(header);
}

}  // namespace media_content
