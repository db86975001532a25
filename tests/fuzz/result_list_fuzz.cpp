// A result list and a block that the engine wrote to shared memory: whatever they hold, nothing outside of
// them is read. The input is a 16-bit length, a list of that length, and a block, which the list names
// "qra_fuzz_block". A short head and an index that points to no block or item are assertions, and are not
// asked for here.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/cache/cache_reader.h"
#include "common/datamodel/qra_resultlist.h"

namespace {

constexpr char kBlockName[] = "qra_fuzz_block";

/// A name as long as kBlockName that is this process's own.
std::string own_name(char kind) {
    const std::string number = std::to_string(getpid() % 10000);
    return std::string("qra_fuzz_") + kind + std::string(4 - number.size(), '0') + number;
}

void write_object(const std::string& name, const std::string& bytes) {
    const int fd = shm_open(name.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
    if (fd < 0 || write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        std::abort();
    close(fd);
}

void name_own_block(std::string& list, const std::string& name) {
    for (size_t at = list.find(kBlockName); at != std::string::npos; at = list.find(kBlockName, at))
        list.replace(at, name.size(), name);
}

void read_block(const CCacheReader& block, size_t size) {
    int begin = 0;
    int end = 0;
    std::string text;
    for (int i = 0; i < block.GetItemCount(); ++i) {
        if (block.GetItem(i, text) && text.size() > size)
            std::abort();
    }
    for (int i = -1; i <= block.GetGroupCount(); ++i)
        block.GetGroup(i, begin, end);
}

void read_list(CResultList& list, const std::string& bytes, const CCacheReader& block) {
    int number = 0;
    int end = 0;
    std::string text;
    std::string name;
    for (int i = -1; i <= list.GetGroupCount(); ++i)
        list.GetGroup(i, number, end);
    for (int i = -1; i <= list.GetBlockCount(); ++i)
        list.GetBlockName(i, name);
    int32_t table = 0;
    for (int i = 0; i < list.GetItemCount(); ++i) {
        int32_t entry[2];
        memcpy(&table, bytes.data() + 4, sizeof(table));
        memcpy(entry, bytes.data() + table + i * sizeof(entry), sizeof(entry));
        const bool is_block = entry[0] >= 0 && entry[0] < list.GetBlockCount() &&
                              list.GetBlockName(entry[0], name) && block.Name() == name.c_str();
        if (is_block && entry[1] >= 0 && entry[1] < block.GetItemCount())
            list.GetItem(list.StartIndex() + i, text, name, number);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    uint16_t list_size = 0;
    if (size < sizeof(list_size))
        return 0;
    memcpy(&list_size, data, sizeof(list_size));
    const std::string rest(reinterpret_cast<const char*>(data) + sizeof(list_size), size - sizeof(list_size));
    std::string list_bytes = rest.substr(0, list_size);
    const std::string block_bytes = rest.size() > list_size ? rest.substr(list_size) : "";
    if (list_bytes.size() < sizeof(_stQRAResultListHeader) || block_bytes.size() < sizeof(_stQRABlockHeader))
        return 0;

    const std::string list_name = own_name('l');
    const std::string block_name = own_name('b');
    name_own_block(list_bytes, block_name);
    write_object(list_name, list_bytes);
    write_object(block_name, block_bytes);
    {
        const CCacheReader block(block_name);
        read_block(block, block_bytes.size());
        CResultList list(list_name);
        read_list(list, list_bytes, block);
    }
    shm_unlink(list_name.c_str());
    shm_unlink(block_name.c_str());
    return 0;
}
