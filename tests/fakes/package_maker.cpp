#include "tests/fakes/package_maker.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>

namespace package_maker {
namespace {

std::string big_endian(uint64_t number, int width) {
    std::string bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        bytes += static_cast<char>(number >> shift & 255U);
    }
    return bytes;
}

std::string little_endian(uint64_t number, int width) {
    const std::string bytes = big_endian(number, width);
    return {bytes.rbegin(), bytes.rend()};
}

std::string le16(uint64_t number) {
    return little_endian(number, 2);
}
std::string le32(uint64_t number) {
    return little_endian(number, 4);
}

std::string le64(uint64_t number) {
    return little_endian(number, 8);
}

/// What stands behind the directory of a ZIP.
std::string zip_end(uint64_t count, uint64_t begin, uint64_t size, bool in_64_bits) {
    const std::string end = "PK\5\6" + le32(0);
    if (!in_64_bits) {
        return end + le16(count) + le16(count) + le32(size) + le32(begin) + le16(0);
    }
    return "PK\6\6" + le64(44) + le16(45) + le16(45) + le64(0) + le64(count) + le64(count) + le64(size) +
           le64(begin) + "PK\6\7" + le32(0) + le64(begin + size) + le32(1) + end + le16(UINT16_MAX) +
           le16(UINT16_MAX) + le32(UINT32_MAX) + le32(UINT32_MAX) + le16(0);
}

/// A file that is written from front to back; zeros become holes.
class Writer {
public:
    explicit Writer(const std::string& path)
        : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {}
    ~Writer() {
        if (file_ >= 0) {
            close(file_);
        }
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void add(const std::string& bytes) {
        ok_ = ok_ && pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(at_)) ==
                         static_cast<ssize_t>(bytes.size());
        at_ += bytes.size();
    }
    void add_hole(uint64_t size) { at_ += size; }
    uint64_t at() const { return at_; }
    bool finish() { return ok_ && file_ >= 0 && ftruncate(file_, static_cast<off_t>(at_)) == 0; }

private:
    int file_;
    uint64_t at_ = 0;
    bool ok_ = true;
};

/// Bytes in the media data, and where they will lie in the file.
class MediaData {
public:
    explicit MediaData(uint64_t begin) : begin_(begin) {}
    uint64_t add(const std::string& bytes) {
        const uint64_t at = begin_ + bytes_.size();
        bytes_ += bytes;
        return at;
    }
    const std::string& bytes() const { return bytes_; }

private:
    uint64_t begin_;
    std::string bytes_;
};

struct Piece {
    uint64_t offset;
    uint64_t length;
};

/// The "iloc" box, all numbers in 64 bits.
std::string places_box(const std::map<uint32_t, std::vector<Piece>>& places, bool in_meta) {
    std::string payload = be16(0x8880) + be16(places.size());
    for (const auto& [number, pieces] : places) {
        payload += be16(number) + be16(in_meta ? 1 : 0) + be16(0) + be64(0) + be16(pieces.size());
        for (const Piece& piece : pieces) {
            payload += be64(piece.offset) + be64(piece.length);
        }
    }
    return full_box("iloc", 1, payload);
}

std::vector<Piece> lay(const std::string& bytes, size_t count, MediaData& data) {
    std::vector<Piece> pieces;
    for (size_t i = 0; i < count; ++i) {
        const size_t begin = bytes.size() * i / count;
        const std::string part = bytes.substr(begin, bytes.size() * (i + 1) / count - begin);
        pieces.push_back({data.add(part), part.size()});
        if (i + 1 < count) {
            data.add("between the pieces");
        }
    }
    return pieces;
}

std::string make_meta(const Sff& sff, MediaData& media) {
    MediaData inside(0);
    MediaData& data = sff.items_in_meta ? inside : media;
    std::vector<std::string> infos;
    std::map<uint32_t, std::vector<Piece>> places;
    for (const SffItem& item : sff.items) {
        infos.push_back(item_info(item.number, "jpeg", item.name));
        places[item.number] = lay(item.bytes, item.pieces, data);
    }
    std::string boxes = full_box("hdlr", 0, be32(0) + "cfmd" + std::string(13, '\0'));
    if (sff.xml_place == XmlPlace::kBox) {
        boxes += full_box("xml ", 0, sff.xml + '\0');
    } else if (sff.xml_place == XmlPlace::kItem) {
        infos.push_back(item_info(9999, "mime", "metadata", "application/xml"));
        places[9999] = lay(sff.xml, 1, data);
    }
    std::string info_boxes;
    for (const std::string& info : infos) {
        info_boxes += info;
    }
    if (!infos.empty()) {
        boxes += full_box("iinf", 0, be16(infos.size()) + info_boxes);
        boxes += places_box(places, sff.items_in_meta);
    }
    return meta_box(boxes + (sff.items_in_meta ? box("idat", inside.bytes()) : ""));
}

std::string make_track(const SffTrack& track, MediaData& data) {
    std::string sizes, offsets;
    size_t chunks = 0;
    for (size_t i = 0; i < track.samples.size(); ++i) {
        if (i % track.per_chunk == 0) {
            data.add("between the chunks");
        }
        const uint64_t at = data.add(track.samples[i]);
        sizes += be32(track.samples[i].size());
        if (i % track.per_chunk == 0) {
            offsets += track.large_offsets ? be64(at) : be32(at);
            ++chunks;
        }
    }
    const std::string table = full_box("stsd", 0, be32(0)) +
                              full_box("stsc", 0, be32(1) + be32(1) + be32(track.per_chunk) + be32(1)) +
                              full_box("stsz", 0, be32(0) + be32(track.samples.size()) + sizes) +
                              full_box(track.large_offsets ? "co64" : "stco", 0, be32(chunks) + offsets);
    const std::string header =
        full_box("tkhd", 0, be32(0) + be32(0) + be32(track.number) + std::string(68, '\0'));
    return box("trak", header + box("mdia", full_box("hdlr", 0, be32(0) + "pict" + std::string(13, '\0')) +
                                                box("minf", box("stbl", table))));
}

/// A file in its parts: what precedes the film, and what follows it.
struct Parts {
    std::string before;
    std::string after;
};

Parts make_parts(const Sff& sff) {
    Parts parts;
    parts.before = box("ftyp", "iso6" + be32(0) + "iso6ccff");
    if (sff.film != 0) {
        parts.before += be32(1) + "mdat" + be64(sff.film + 16);
    }
    MediaData media(parts.before.size() + sff.film + 8);
    std::string movie = full_box("mvhd", 0, std::string(96, '\0'));
    for (const SffTrack& track : sff.tracks) {
        movie += make_track(track, media);
    }
    if (sff.xml_place == XmlPlace::kMovie) {
        movie += meta_box(full_box("xml ", 0, sff.xml));
    }
    const std::string meta = make_meta(sff, media);
    parts.after = box("mdat", media.bytes()) + box("moov", movie) + meta;
    return parts;
}

uint32_t crc_of(const std::string& bytes) {
    uint32_t crc = ~0U;
    for (const char byte : bytes) {
        crc ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1U ^ (crc & 1U ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

bool choose_form(archive* out, Form form) {
    int result = ARCHIVE_OK;
    switch (form) {
        case Form::kZip:
        case Form::kStoredZip:
            result = archive_write_set_format_zip(out);
            if (form == Form::kStoredZip) {
                result |= archive_write_zip_set_compression_store(out);
            }
            break;
        case Form::kTarGz:
            result = archive_write_add_filter_gzip(out);
            [[fallthrough]];
        case Form::kTar:
            result |= archive_write_set_format_pax_restricted(out);
            break;
        case Form::kCpio:
            result = archive_write_set_format_cpio_newc(out);
            break;
    }
    return result == ARCHIVE_OK;
}

bool write_entry(archive* out, const Entry& entry) {
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> head(archive_entry_new(),
                                                                             archive_entry_free);
    archive_entry_set_pathname(head.get(), entry.name.c_str());
    archive_entry_set_filetype(head.get(), AE_IFREG);
    archive_entry_set_perm(head.get(), 0644);
    archive_entry_set_size(head.get(), static_cast<la_int64_t>(entry.bytes.size()));
    return archive_write_header(out, head.get()) >= ARCHIVE_WARN &&
           archive_write_data(out, entry.bytes.data(), entry.bytes.size()) ==
               static_cast<la_ssize_t>(entry.bytes.size());
}

}  // namespace

std::string be16(uint64_t number) {
    return big_endian(number, 2);
}
std::string be32(uint64_t number) {
    return big_endian(number, 4);
}
std::string be64(uint64_t number) {
    return big_endian(number, 8);
}

std::string box(const std::string& type, const std::string& payload) {
    return be32(payload.size() + 8) + type + payload;
}

std::string full_box(const std::string& type, int version, const std::string& payload) {
    return box(type, be32(static_cast<uint64_t>(version) << 24U) + payload);
}

std::string meta_box(const std::string& boxes) {
    return full_box("meta", 0, boxes);
}

std::string item_info(uint32_t number, const std::string& type, const std::string& name,
                      const std::string& content_type, uint16_t protection) {
    std::string payload = be16(number) + be16(protection) + type + name + '\0';
    if (type == "mime") {
        payload += content_type + '\0';
    }
    return full_box("infe", 2, payload);
}

std::string sff_bytes(const Sff& sff) {
    const Parts parts = make_parts(sff);
    return parts.before + std::string(sff.film, '\0') + parts.after;
}

bool write_sff(const std::string& path, const Sff& sff) {
    const Parts parts = make_parts(sff);
    Writer out(path);
    out.add(parts.before);
    out.add_hole(sff.film);
    out.add(parts.after);
    return out.finish();
}

bool write_container(const std::string& path, const std::vector<Entry>& entries, Form form) {
    const std::unique_ptr<archive, decltype(&archive_write_free)> out(archive_write_new(),
                                                                      archive_write_free);
    if (!choose_form(out.get(), form) || archive_write_open_filename(out.get(), path.c_str()) != ARCHIVE_OK) {
        return false;
    }
    for (const Entry& entry : entries) {
        if (!write_entry(out.get(), entry)) {
            return false;
        }
    }
    return archive_write_close(out.get()) == ARCHIVE_OK;
}

bool write_zip(const std::string& path, const std::vector<ZipEntry>& entries, bool in_64_bits) {
    Writer out(path);
    std::string directory;
    for (const ZipEntry& entry : entries) {
        const uint64_t packed = entry.bytes.size() + entry.hole;
        const uint64_t size = entry.size != 0 ? entry.size : packed;
        const std::string common = le16(in_64_bits ? 45 : 20) + le16(entry.flags) + le16(entry.method) +
                                   le32(0x58210000) + le32(entry.hole != 0 ? 0 : crc_of(entry.bytes)) +
                                   le32(in_64_bits ? UINT32_MAX : packed) +
                                   le32(in_64_bits ? UINT32_MAX : size) + le16(entry.name.size());
        const std::string sizes = le64(size) + le64(packed);
        const std::string extra = in_64_bits ? le16(1) + le16(24) + sizes + le64(out.at()) : "";
        directory += "PK\1\2" + le16(0x0314) + common + le16(extra.size()) + le16(0) + le16(0) + le16(0) +
                     le32(0x81A40000U) + le32(in_64_bits ? UINT32_MAX : out.at()) + entry.name + extra;
        const std::string local_extra = in_64_bits ? le16(1) + le16(16) + sizes : "";
        out.add("PK\3\4" + common + le16(local_extra.size()) + entry.name + local_extra);
        out.add(entry.bytes);
        out.add_hole(entry.hole);
    }
    const uint64_t begin = out.at();
    out.add(directory);
    out.add(zip_end(entries.size(), begin, directory.size(), in_64_bits));
    return out.finish() && (in_64_bits || (out.at() <= UINT32_MAX && entries.size() <= UINT16_MAX));
}

std::string tar_header(const std::string& name, uint64_t size, char type) {
    std::array<char, 512> head{};
    std::snprintf(head.data(), 100, "%s", name.c_str());
    std::snprintf(&head[100], 8, "%07o", 0644U);
    std::snprintf(&head[124], 12, "%011llo", static_cast<unsigned long long>(size));
    head[156] = type;
    std::snprintf(&head[257], 8, "ustar");
    head[263] = head[264] = '0';
    std::string(8, ' ').copy(&head[148], 8);
    unsigned sum = 0;
    for (const char byte : head) {
        sum += static_cast<uint8_t>(byte);
    }
    std::snprintf(&head[148], 8, "%06o", sum);
    return {head.data(), head.size()};
}

}  // namespace package_maker
