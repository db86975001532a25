#include "apps/qra/engine_access.h"

#include <glib-unix.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <system_error>

#include "apps/qra/glib_owner.h"
#include "apps/qra/interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kEngineFile = "qra-content-engine";
constexpr const char* kAddressVariable = "DBUS_SYSTEM_BUS_ADDRESS";
constexpr int kBusTimeoutMs = 2000;

/// %s: the directory
constexpr const char* kBusConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <keep_umask/>
  <listen>unix:path=%s/socket</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%s</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)";

using OwnedText = std::unique_ptr<char, decltype(&g_free)>;

bool bus_lists_engine(GDBusConnection* bus, const char* method) {
    const Owned<GVariant> reply(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, nullptr,
        G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, kBusTimeoutMs, nullptr, nullptr));
    if (!reply) {
        return false;
    }
    const char** names = nullptr;
    g_variant_get(reply.get(), "(^a&s)", &names);
    const std::unique_ptr<const char*, decltype(&g_free)> names_owner(names, &g_free);
    return g_strv_contains(names, kEngineName) != FALSE;
}

/// Whether one of the bus daemon's lists of names has the engine's.
bool system_bus_lists_engine(std::initializer_list<const char*> methods) {
    const OwnedText address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr), &g_free);
    if (!address) {
        return false;
    }
    // A connection of our own: the shared one would keep this address after the environment has changed.
    const Owned<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        address.get(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    if (!bus) {
        return false;
    }
    const bool found = std::any_of(methods.begin(), methods.end(), [&bus](const char* method) {
        return bus_lists_engine(bus.get(), method);
    });
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    return found;
}

/// $QRA_ENGINE (empty: none), else beside this program, where it is installed, or where it is built; "" if
/// nowhere.
std::string find_engine() {
    if (const char* named = std::getenv("QRA_ENGINE")) {
        return named;
    }
    std::error_code error;
    const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* place : {".", "../libexec", "../../engine"}) {
        const fs::path candidate = here / place / kEngineFile;
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate.lexically_normal();
        }
    }
    return {};
}

/// In the child that becomes the bus daemon: it must not outlive this process, nor get the terminal's Ctrl-C.
void prepare_daemon(void*) {
    interrupt::restore_signals_in_child();
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

std::string make_directory() {
    std::error_code error;
    std::string name = (fs::temp_directory_path(error) / "qra-bus-XXXXXX").string();
    return mkdtemp(name.data()) != nullptr ? name : std::string();
}

bool write_file(const std::string& path, const char* text) {
    return g_file_set_contents(path.c_str(), text, -1, nullptr) != FALSE;
}

bool write_configuration(const std::string& directory, const std::string& engine) {
    const OwnedText configuration(
        g_markup_printf_escaped(kBusConfiguration, directory.c_str(), directory.c_str()), &g_free);
    const OwnedText command(g_shell_quote(engine.c_str()), &g_free);
    const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> service(g_key_file_new(), &g_key_file_unref);
    g_key_file_set_string(service.get(), "D-BUS Service", "Name", kEngineName);
    g_key_file_set_string(service.get(), "D-BUS Service", "Exec", command.get());
    return write_file(directory + "/bus.conf", configuration.get()) &&
           g_key_file_save_to_file(service.get(), (directory + "/" + kEngineName + ".service").c_str(),
                                   nullptr) != FALSE;
}

/// The address that the daemon prints once it listens; "" if it ended instead.
std::string read_address(GSubprocess* daemon) {
    const Owned<GDataInputStream> output(g_data_input_stream_new(g_subprocess_get_stdout_pipe(daemon)));
    const OwnedText line(g_data_input_stream_read_line(output.get(), nullptr, nullptr, nullptr), &g_free);
    return line ? line.get() : "";
}

}  // namespace

bool engine_runs() {
    return system_bus_lists_engine({"ListNames"});
}

EngineAccess::EngineAccess() {
    if (system_bus_lists_engine({"ListNames", "ListActivatableNames"})) {
        return;
    }
    const std::string engine = find_engine();
    if (!engine.empty()) {
        start_private_bus(engine);
    }
    if (daemon_ == nullptr) {
        setenv(kAddressVariable, "unix:path=/nonexistent", 1);
    }
}

EngineAccess::~EngineAccess() {
    end_private_bus();
}

void EngineAccess::start_private_bus(const std::string& engine) {
    directory_ = make_directory();
    if (directory_.empty() || !write_configuration(directory_, engine)) {
        end_private_bus();
        return;
    }
    const Owned<GSubprocessLauncher> launcher(g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
    g_subprocess_launcher_set_child_setup(launcher.get(), prepare_daemon, nullptr, nullptr);
    const std::string configuration = "--config-file=" + directory_ + "/bus.conf";
    daemon_ = g_subprocess_launcher_spawn(launcher.get(), nullptr, "dbus-daemon", configuration.c_str(),
                                          "--nofork", "--nopidfile", "--print-address=1", nullptr);
    const std::string address = daemon_ != nullptr ? read_address(daemon_) : "";
    if (address.empty()) {
        end_private_bus();
        return;
    }
    setenv(kAddressVariable, address.c_str(), 1);
}

void EngineAccess::end_private_bus() {
    if (daemon_ != nullptr) {
        g_subprocess_send_signal(daemon_, SIGTERM);
        g_subprocess_wait(daemon_, nullptr, nullptr);
        g_clear_object(&daemon_);
    }
    if (!directory_.empty()) {
        std::error_code error;
        fs::remove_all(directory_, error);
        directory_.clear();
    }
}
