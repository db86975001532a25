#include "platform/scsa-dmp/host/container_reader.h"

#include <archive.h>
#include <archive_entry.h>
#include <locale.h>
#include <clocale>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/media-content/host/metadata/byte_order.h"
#include "platform/scsa-dmp/host/entry_name.h"

namespace scsa_host {
namespace {

constexpr size_t kDirectoryBlock = 512;  // a header of a tar, and about what a file takes in a ZIP
constexpr size_t kZipHeader = 30;        // of a file, without its name
constexpr size_t kDataBlock = 4096;
constexpr uint64_t kFirstPiece = 64;
constexpr uint64_t kPieces = 16;
constexpr la_int64_t kZipTail = 16 << 10;  // where libarchive looks for the end of a ZIP

/// Makes the calling thread's texts UTF-8 for a scope: libarchive converts names by the locale, and a program
/// in the plain "C" locale would lose those with other letters.
class Utf8Names {
public:
    Utf8Names() : before_(utf8() != locale_t() ? uselocale(utf8()) : locale_t()) {}
    ~Utf8Names() {
        if (before_ != locale_t()) {
            uselocale(before_);
        }
    }
    Utf8Names(const Utf8Names&) = delete;
    Utf8Names& operator=(const Utf8Names&) = delete;

private:
    static locale_t utf8() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
        return locale;
    }

    locale_t before_;
};

/// The end of a ZIP, as far as it has no comment: it tells where the directory is, in 32 bits or in 64.
class ZipEnd {
public:
    static constexpr size_t kSize = 22;

    explicit ZipEnd(ByteSource& source);

    /// Whether nothing is in front of it.
    bool is_all() const { return is_all_; }
    /// Where the directory begins; 0 if that is not known.
    uint64_t directory() const { return directory_; }
    /// All from the directory on; empty if that is not known, or much.
    std::vector<uint8_t> tail(ByteSource& source) const;

private:
    static constexpr size_t kSize64 = 56 + 20;  // the same in 64 bits, and what tells where that is
    static constexpr size_t kMostTail = 64 << 10;

    uint64_t directory_in_64_bits(const uint8_t* end) const;

    bool is_all_ = false;
    uint64_t directory_ = 0;
    uint64_t last_at_ = 0;
    std::vector<uint8_t> last_;
};

ZipEnd::ZipEnd(ByteSource& source) {
    last_at_ = source.size() - std::min<uint64_t>(source.size(), kSize + kSize64);
    const size_t count = static_cast<size_t>(source.size() - last_at_);
    if (count < kSize || !source.read_block({last_at_, count}, count, last_)) {
        return;
    }
    const uint8_t* const end = &last_[count - kSize];
    if (!media_content::begins_with(end, "PK\5\6")) {
        return;
    }
    is_all_ = count == kSize && std::count(end + 4, end + kSize, 0) == kSize - 4;
    const uint32_t directory = media_content::little32(end + 16);
    directory_ = directory == UINT32_MAX ? directory_in_64_bits(end) : directory;
    if (directory_ >= source.size() - kSize) {
        directory_ = 0;
    }
}

uint64_t ZipEnd::directory_in_64_bits(const uint8_t* end) const {
    if (last_.size() < kSize + kSize64) {
        return 0;
    }
    const uint8_t* const end64 = end - kSize64;
    const uint8_t* const pointer = end - 20;
    const bool is_there = media_content::begins_with(end64, "PK\6\6") &&
                          media_content::begins_with(pointer, "PK\6\7") &&
                          media_content::little64(pointer + 8) == last_at_;
    return is_there ? media_content::little64(end64 + 48) : 0;
}

std::vector<uint8_t> ZipEnd::tail(ByteSource& source) const {
    std::vector<uint8_t> bytes;
    if (directory_ >= last_at_) {
        bytes.assign(last_.begin() + static_cast<ptrdiff_t>(directory_ - last_at_), last_.end());
    } else if (directory_ != 0 && source.read_block({directory_, last_at_ - directory_}, kMostTail, bytes)) {
        bytes.insert(bytes.end(), last_.begin(), last_.end());
    }
    return bytes;
}

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

/// Gives libarchive the bytes of the source, within a budget.
class ContainerReader::Input {
public:
    explicit Input(ByteSource& source) : source_(source), buffer_(kDataBlock) {}

    /// The directory of a ZIP, read already where it is small. libarchive looks for its end in the last 16
    /// KiB, and what lies there before the directory are files, of which nothing is wanted then.
    void set_directory(uint64_t begin, std::vector<uint8_t> tail) {
        directory_ = begin;
        tail_ = std::move(tail);
        budget_ -= std::min<uint64_t>(tail_.size(), budget_);
        is_zip_ = !tail_.empty();
    }
    /// Whether it was asked for more than the budget has.
    bool is_exhausted() const { return exhausted_; }

    /// A wanted file may be larger than all names before it, and how much of it there is nobody knows: pieces
    /// grow with what was read, so that the last one is hardly too long.
    void turn_to_data() {
        if (most_unpacked_ != 0) {
            return;
        }
        is_data_ = true;
        budget_ = kLargestEntry + kLargestDirectory;
    }
    /// Where all is compressed, what precedes a file has to be read.
    void turn_to_compressed() {
        block_ = kDataBlock;
        budget_ = kLargestEntry;
        most_unpacked_ = kMostUnpacked;
    }

    static la_ssize_t read(archive* archive, void* input, const void** bytes) {
        return static_cast<Input*>(input)->read_next(archive, bytes);
    }
    static la_int64_t seek(archive*, void* input, la_int64_t offset, int whence) {
        return static_cast<Input*>(input)->seek_to(offset, whence);
    }
    static la_int64_t skip(archive*, void* input, la_int64_t count) {
        return static_cast<Input*>(input)->skip_over(count);
    }

private:
    la_ssize_t read_next(archive* archive, const void** bytes) {
        const bool unpacked_too_much =
            most_unpacked_ != 0 && static_cast<uint64_t>(archive_filter_bytes(archive, 0)) > most_unpacked_;
        *bytes = buffer_.data();
        if (offset_ < blank_until_) {
            return give_blanks();
        }
        if (budget_ == 0 || unpacked_too_much) {
            exhausted_ = true;
            return ARCHIVE_FATAL;
        }
        const uint64_t tail_begin = source_.size() - tail_.size();
        if (offset_ >= tail_begin && !tail_.empty()) {
            return give_tail(tail_begin, bytes);
        }
        const size_t count =
            source_.read(offset_, buffer_.data(), std::min({next_block(), budget_, tail_begin - offset_}));
        data_read_ += is_data_ ? count : 0;
        look_at_header(count);
        offset_ += count;
        budget_ -= count;
        return static_cast<la_ssize_t>(count);
    }

    la_ssize_t give_blanks() {
        const size_t count = std::min<uint64_t>(buffer_.size(), blank_until_ - offset_);
        std::fill_n(buffer_.begin(), count, '\0');
        offset_ += count;
        return static_cast<la_ssize_t>(count);
    }

    uint64_t next_block() const {
        if (is_data_) {
            return std::clamp<uint64_t>(data_read_ / kPieces, kFirstPiece, kDataBlock);
        }
        return is_zip_ ? header_left_ : block_;
    }

    /// A file of a ZIP begins with a header that tells how long its rest is.
    void look_at_header(size_t count) {
        const auto* const header = reinterpret_cast<const uint8_t*>(buffer_.data());
        const bool is_header = count == kZipHeader && media_content::begins_with(header, "PK\3\4");
        const size_t rest =
            is_header ? media_content::little16(header + 26) + media_content::little16(header + 28) : 0;
        header_left_ = rest != 0 ? rest : kZipHeader;
    }

    la_ssize_t give_tail(uint64_t tail_begin, const void** bytes) {
        const size_t at = static_cast<size_t>(std::min(offset_ - tail_begin, uint64_t{tail_.size()}));
        *bytes = &tail_[0] + at;
        offset_ = source_.size();
        return static_cast<la_ssize_t>(tail_.size() - at);
    }

    la_int64_t seek_to(la_int64_t offset, int whence) {
        const la_int64_t size = static_cast<la_int64_t>(source_.size());
        const la_int64_t base = whence == SEEK_END   ? size
                                : whence == SEEK_CUR ? static_cast<la_int64_t>(offset_)
                                                     : 0;
        if (offset < -base || offset > size - base) {
            return ARCHIVE_FATAL;
        }
        offset_ = static_cast<uint64_t>(base + offset);
        const bool looks_for_end =
            whence == SEEK_SET && offset == size - std::min<la_int64_t>(size, kZipTail);
        blank_until_ = looks_for_end ? std::exchange(directory_, 0) : 0;
        return base + offset;
    }

    la_int64_t skip_over(la_int64_t count) {
        const uint64_t left = source_.size() - std::min(offset_, source_.size());
        const uint64_t skipped = count > 0 ? std::min(static_cast<uint64_t>(count), left) : 0;
        offset_ += skipped;
        return static_cast<la_int64_t>(skipped);
    }

    ByteSource& source_;
    std::vector<char> buffer_;
    uint64_t offset_ = 0;
    size_t block_ = kDirectoryBlock;
    bool is_zip_ = false;     ///< one whose directory was read
    size_t header_left_ = 1;  ///< libarchive begins with a look whether there is anything
    bool is_data_ = false;
    uint64_t data_read_ = 0;
    uint64_t budget_ = kLargestDirectory;
    uint64_t most_unpacked_ = 0;
    uint64_t directory_ = 0;
    std::vector<uint8_t> tail_;
    uint64_t blank_until_ = 0;
    bool exhausted_ = false;
};

ContainerReader::ContainerReader(ByteSource& source)
    : source_(source), input_(std::make_unique<Input>(source)), archive_(nullptr, archive_read_free) {}

ContainerReader::~ContainerReader() = default;

// Each format that is tried reads something, the ZIP at the end of the file.
void ContainerReader::choose_formats() {
    constexpr std::string_view kZipMark = "PK";
    std::array<char, kZipMark.size()> begin{};
    if (source_.read_exactly(0, begin.data(), begin.size()) &&
        std::string_view(begin.data(), begin.size()) == kZipMark) {
        const ZipEnd end(source_);
        input_->set_directory(end.directory(), end.tail(source_));
        archive_read_support_format_zip_seekable(archive_.get());
        return;
    }
    archive_read_support_filter_gzip(archive_.get());
    archive_read_support_format_tar(archive_.get());
    archive_read_support_format_cpio(archive_.get());
}

bool ContainerReader::open() {
    const Utf8Names utf8;
    if (source_.size() == ZipEnd::kSize && ZipEnd(source_).is_all()) {
        is_empty_ = true;  // a ZIP without any file, which libarchive does not know as one
        return true;
    }
    archive_.reset(archive_read_new());
    archive* const handle = archive_.get();
    if (!handle) {
        return fail("there is not enough memory");
    }
    choose_formats();
    archive_read_set_callback_data(handle, input_.get());
    archive_read_set_read_callback(handle, Input::read);
    archive_read_set_seek_callback(handle, Input::seek);
    archive_read_set_skip_callback(handle, Input::skip);
    if (archive_read_open1(handle) != ARCHIVE_OK) {
        return fail("it is no container");
    }
    if (is_compressed()) {
        input_->turn_to_compressed();
    }
    return true;
}

bool ContainerReader::is_compressed() const {
    return archive_ && archive_filter_code(archive_.get(), 0) != ARCHIVE_FILTER_NONE;
}

bool ContainerReader::next() {
    const Utf8Names utf8;
    reason_.clear();
    while (!is_empty_) {
        const int result = archive_read_next_header(archive_.get(), &entry_);
        if (result == ARCHIVE_EOF) {
            return false;
        }
        // A name that no locale knows comes with a warning, and as it is.
        if (result != ARCHIVE_OK && result != ARCHIVE_WARN) {
            return fail("it is no container that is whole");
        }
        if (++entries_ > kMostEntries) {
            return fail("it has too many files");
        }
        const bool is_file = archive_entry_filetype(entry_) == AE_IFREG && !archive_entry_hardlink(entry_);
        if (is_file && !name().empty()) {
            return true;
        }
    }
    return false;
}

std::string ContainerReader::name() const {
    const Utf8Names utf8;
    const char* const name = archive_entry_pathname(entry_);
    return uri_of(name ? name : "");
}

bool ContainerReader::find(const std::string& wanted) {
    if (!open()) {
        return false;
    }
    const std::string uri = uri_of(wanted);
    while (next()) {
        if (name() == uri) {
            return is_readable();
        }
    }
    return reason_.empty() ? fail("it has no such file") : false;
}

bool ContainerReader::is_readable() {
    if (archive_entry_is_data_encrypted(entry_) || archive_entry_is_metadata_encrypted(entry_)) {
        return fail("the file is encrypted");
    }
    const bool known_method = archive_format(archive_.get()) != ARCHIVE_FORMAT_ZIP ||
                              ends_with(archive_format_name(archive_.get()), "(uncompressed)") ||
                              ends_with(archive_format_name(archive_.get()), "(deflation)");
    return known_method || fail("the file is compressed in a way that is not read");
}

bool ContainerReader::read(ImageBytes& bytes) {
    const Utf8Names utf8;
    if (archive_entry_size_is_set(entry_) &&
        static_cast<uint64_t>(archive_entry_size(entry_)) > kLargestEntry) {
        return fail("the file is too large");
    }
    input_->turn_to_data();
    size_t done = 0;
    // What a container says of sizes is a hint: room grows with what really comes.
    for (size_t room = kDataBlock;; room = std::min<size_t>(2 * room, kLargestEntry + 1)) {
        if (!bytes.resize(room)) {
            return fail("there is not enough memory");
        }
        const la_ssize_t count = archive_read_data(archive_.get(), bytes.data() + done, room - done);
        if (count < 0) {
            return fail("the file is broken");
        }
        done += static_cast<size_t>(count);
        unpacked_files_ += static_cast<uint64_t>(count);
        if (done < room) {
            break;
        }
        if (done > kLargestEntry) {
            return fail("the file is too large");
        }
    }
    return bytes.resize(done);
}

uint64_t ContainerReader::unpacked() const {
    return is_compressed() ? static_cast<uint64_t>(archive_filter_bytes(archive_.get(), 0)) : unpacked_files_;
}

bool ContainerReader::is_stored() const {
    archive* const handle = archive_.get();
    return !is_compressed() && archive_entry_size_is_set(entry_) && archive_entry_sparse_count(entry_) == 0 &&
           (archive_format(handle) != ARCHIVE_FORMAT_ZIP ||
            ends_with(archive_format_name(handle), "(uncompressed)"));
}

std::optional<ByteRange> ContainerReader::stored_place() {
    const Utf8Names utf8;
    archive* const handle = archive_.get();
    const ByteRange place{static_cast<uint64_t>(archive_filter_bytes(handle, 0)),
                          static_cast<uint64_t>(archive_entry_size(entry_))};
    if (!is_stored() || place.offset > source_.size() || place.length > source_.size() - place.offset) {
        return std::nullopt;
    }
    // The place is where libarchive stands; that the file's bytes begin there is better seen than believed.
    std::array<char, 16> begin{};
    std::array<char, 16> told{};
    const size_t length = std::min<size_t>(begin.size(), place.length);
    const bool same = archive_read_data(handle, told.data(), length) == static_cast<la_ssize_t>(length) &&
                      source_.read_exactly(place.offset, begin.data(), length) && begin == told;
    return same ? std::optional(place) : std::nullopt;
}

bool ContainerReader::fail(const char* reason) {
    reason_ = input_->is_exhausted() ? "it asks for too much" : reason;
    const char* const told = archive_ ? archive_error_string(archive_.get()) : nullptr;
    if (told && !input_->is_exhausted()) {
        reason_ += std::string(" (") + told + ")";
    }
    return false;
}

}  // namespace scsa_host
