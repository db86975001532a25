// A source whose thread cannot be made. Alone in its program: it stands in for GLib's threads.
#include "libqra-agent/source/local-source/qra_msc_source.h"
#include "libqra-agent/source/local-source/qra_obj_manager.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

class CQRAMSCSourceWithoutThreads : public SampleDrive {};

}  // namespace

GThread* g_thread_try_new(const gchar*, GThreadFunc, gpointer, GError** error) {
    g_set_error_literal(error, G_THREAD_ERROR, G_THREAD_ERROR_AGAIN, "no more threads");
    return nullptr;
}

TEST_F(CQRAMSCSourceWithoutThreads, DoesNotOpenAndHasToBeClosed) {
    faults::reset();
    CQRAMSCSource source;

    EXPECT_FALSE(source.Open());

    EXPECT_TRUE(log.contains("Create thread fail."));
    EXPECT_TRUE(source.IsOpen());
    EXPECT_EQ(faults::count("media_content_connect"), 1);
    EXPECT_EQ(faults::count("media_content_disconnect"), 1);
    EXPECT_FALSE(CQRAObjManager::GetInstance()->FindObj(reinterpret_cast<qra_handle_value_t>(&source)));
    EXPECT_TRUE(source.Close());
    EXPECT_FALSE(source.IsOpen());
}
