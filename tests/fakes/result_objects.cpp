#include "tests/fakes/result_objects.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/datamodel/result_list_layout.h"

namespace {

/// Without its objects nothing can be tested.
void require(bool done, const char* what) {
    if (!done) {
        std::perror(what);
        std::abort();
    }
}

void append_word(std::string& bytes, size_t value) {
    const auto word = static_cast<int32_t>(value);
    bytes.append(reinterpret_cast<const char*>(&word), sizeof(word));
}

void append_pairs(std::string& bytes, const IndexPairs& pairs) {
    for (const auto& [first, second] : pairs) {
        append_word(bytes, first);
        append_word(bytes, second);
    }
}

}  // namespace

ShmFile::ShmFile(const std::string& bytes) {
    static int counter = 0;
    name_ = "qra_test_" + std::to_string(getpid()) + "_" + std::to_string(++counter);
    write(bytes);
}

ShmFile::~ShmFile() {
    shm_unlink(name_.c_str());
}

void ShmFile::write(const std::string& bytes) const {
    const int descriptor = shm_open(name_.c_str(), O_CREAT | O_RDWR, 0600);
    require(descriptor >= 0, "shm_open");
    require(::write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "write");
    close(descriptor);
}

void ShmFile::truncate(size_t length) const {
    const int descriptor = shm_open(name_.c_str(), O_RDWR, 0600);
    require(ftruncate(descriptor, static_cast<off_t>(length)) == 0, "ftruncate");
    close(descriptor);
}

std::string BlockObject::bytes() const {
    const size_t header = sizeof(_stQRABlockHeader);
    const size_t item_table = header;
    size_t offset = item_table + texts.size() * 4;
    std::string offsets;
    std::string all_texts;
    for (const std::string& text : texts) {
        append_word(offsets, offset);
        offset += text.size();
        all_texts += text;
    }
    std::string bytes;
    append_word(bytes, offset);
    append_word(bytes, item_table);
    append_word(bytes, start_index);
    append_word(bytes, start_index + texts.size() - 1);
    append_word(bytes, total_count);
    append_word(bytes, groups.size());
    append_word(bytes, offset + groups.size() * 8);
    bytes += offsets + all_texts;
    append_pairs(bytes, groups);
    return bytes;
}

std::string ResultListObject::bytes() const {
    const size_t header = sizeof(_stQRAResultListHeader);
    const size_t index_table = header + groups.size() * 8;
    const size_t block_names_offset = index_table + items.size() * 8;
    std::string bytes;
    append_word(bytes, block_names_offset);
    append_word(bytes, index_table);
    append_word(bytes, start_index);
    append_word(bytes, start_index + items.size() - 1);
    append_word(bytes, section_index);
    append_word(bytes, total_count);
    append_word(bytes, groups.size());
    append_word(bytes, block_names.size());
    append_word(bytes, block_names_offset + block_names.size() * kQRABlockNameLength);
    append_pairs(bytes, groups);
    append_pairs(bytes, items);
    for (const std::string& name : block_names) {
        bytes += name;
        bytes.append(kQRABlockNameLength - name.size(), '\0');
    }
    return bytes;
}

std::string with_word(std::string bytes, size_t offset, int32_t value) {
    memcpy(&bytes.at(offset), &value, sizeof(value));
    return bytes;
}
