// A select list that another process wrote to shared memory: whatever it holds, nothing outside of it is
// read.
#include "libqra-agent/agent/src/qra_selectlist.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string name = kSelectListShmPrefix + ("fuzz_" + std::to_string(getpid()));
    const int fd = shm_open(name.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
    if (fd < 0 || write(fd, data, size) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    close(fd);

    CSelectList list(name);
    const bool loaded = list.m_Load();
    const int count = list.GetItemCount();
    if ((!loaded && count != 0) || static_cast<size_t>(count) * sizeof(int32_t) > size) {
        std::abort();
    }
    for (int i = 0; i < count; ++i) {
        list.MoveToIndex(i);
        list.GetCurrentDBIndex();
    }
    return 0;
}
