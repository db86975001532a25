#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_selectlist_builder.h"
#include "tests/fakes/dlog_capture.h"

namespace {

/// The object that its writer cuts short as soon as a reader has mapped it; empty: none.
std::string g_cut_name;

}  // namespace

extern "C" {

void* __real_mmap64(void* address, size_t length, int protection, int flags, int fd, off_t offset);

void* __wrap_mmap64(void* address, size_t length, int protection, int flags, int fd, off_t offset) {
    void* mapping = __real_mmap64(address, length, protection, flags, fd, offset);
    if (!g_cut_name.empty()) {
        const int writer = shm_open(g_cut_name.c_str(), O_RDWR, 0);
        EXPECT_EQ(ftruncate(writer, 0), 0);
        close(writer);
    }
    return mapping;
}

}  // extern "C"

TEST(CSelectList, AnObjectThatIsCutShortWhileItIsReadIsNotLoaded) {
    LogCapture log;
    CSelectList selection;
    selection.AddItem(7);
    selection.AddItem(8);
    const std::string name = CSelectListBuilder(&selection).Build();
    g_cut_name = name;
    CSelectList loaded(name);

    EXPECT_FALSE(loaded.m_Load());
    EXPECT_FALSE(loaded.m_Load());

    EXPECT_EQ(loaded.GetItemCount(), 0);
    EXPECT_EQ(loaded.m_ePageItemType, QRA_PG_ITEM_NONE);
    EXPECT_EQ(log.count("Broken select list: shm name[" + name + "] was cut short."), 1) << log.text();
}
