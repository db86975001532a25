// A content engine that knows some odd devices, starts every scan and never tells the end of one. It ends
// with its bus, as the tool that started both stops the bus only.
#include <glib-unix.h>

#include <csignal>
#include <cstdlib>

#include "tests/fakes/fake_engine.h"

namespace {

constexpr const char* kUsb =
    R"((uint32 0, '{"devices":[)"
    R"({"id":"u1","name":"Stick\\u001b[2J","mountPath":"/media/USBDrive1","fileSystem":"NTFS","type":"msc",)"
    R"("totalSize":"1000000","availableSize":"500000","deviceIndex":1},)"
    R"({"id":"c1","name":"Camera","vendor":"Acme","type":"ptp","deviceBus":"2","deviceAddress":"7"},)"
    R"({"id":"o1","name":"Other","type":"mtp"}]}'))";
constexpr const char* kOptical =
    R"((uint32 0, '{"devices":[{"id":"b1","name":"Disc","mountPath":"/media/disc"}]}'))";

gboolean end_on_signal(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_CONTINUE;
}

}  // namespace

int main() {
    // A bus tells the services that it starts where it is by a name of its own.
    if (const char* address = std::getenv("DBUS_STARTER_ADDRESS")) {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
    }
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    g_unix_signal_add(SIGTERM, end_on_signal, loop);
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (bus == nullptr) {
        return 1;
    }
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    g_signal_connect_swapped(bus, "closed", G_CALLBACK(g_main_loop_quit), loop);

    FakeEngine engine;
    engine.answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"});
    engine.answer("check_folder_path", {"('',)"});
    engine.answer("get_usb_storages", {kUsb});
    engine.answer("get_bd_storages", {kOptical});
    engine.answer("bind_usb_event", {"(uint32 0,)"});
    engine.answer("bind_bd_event", {"(uint32 20,)"});
    engine.answer("start_scanner", {"(true, uint32 1)"});
    engine.answer("stop_scanner", {"()"});
    engine.answer("start_scanner_thumb", {"(true,)"});
    engine.answer("stop_scanner_thumb", {"()"});
    g_main_loop_run(loop);
    g_object_unref(bus);
    g_main_loop_unref(loop);
    return 0;
}
