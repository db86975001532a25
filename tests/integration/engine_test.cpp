// The content engine as a client sees it, on a bus of its own (scripts/with-bus).

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "platform/support/glib_ptr.h"
#include "tests/integration/engine_bus.h"
#include "tests/unit/engine/temp_folder.h"

namespace {

pid_t start_engine(const std::vector<std::string>& options) {
    std::vector<char*> arguments = {const_cast<char*>(QRA_TEST_ENGINE)};
    for (const std::string& option : options) {
        arguments.push_back(const_cast<char*>(option.c_str()));
    }
    arguments.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        execv(QRA_TEST_ENGINE, arguments.data());
        _exit(127);
    }
    return pid;
}

/// The exit status of a process; negative for the signal that ended it.
int status_of(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void wait_until_up(const Bus& bus) {
    while (!bus.owner().error.empty()) {
        usleep(1000);
    }
}

struct NodeInfoRelease {
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};
using NodeInfoPtr = std::unique_ptr<GDBusNodeInfo, NodeInfoRelease>;

/// The interface description that the engine itself gives over the bus.
NodeInfoPtr introspect(const Bus& bus) {
    const Answer answer =
        bus.call(kEngineName, kEnginePath, "org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
    EXPECT_EQ("", answer.error) << answer.text;
    const glib::VariantPtr reply(
        g_variant_parse(G_VARIANT_TYPE("(s)"), answer.text.c_str(), nullptr, nullptr, nullptr));
    const char* xml = nullptr;
    g_variant_get(reply.get(), "(&s)", &xml);
    return NodeInfoPtr(g_dbus_node_info_new_for_xml(xml, nullptr));
}

std::string signature(GDBusArgInfo** arguments) {
    std::string types;
    for (; arguments && *arguments; ++arguments) {
        types += (*arguments)->signature;
    }
    return types;
}

/// Arguments of a method's signature, each of them zero or empty.
GVariant* empty_arguments(const std::string& types) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    for (const char type : types) {
        g_variant_builder_add_value(&builder,
                                    type == 's' ? g_variant_new_string("") : g_variant_new_uint32(0));
    }
    return g_variant_builder_end(&builder);
}

TEST(Engine, OffersTheMethodsAndSignalsOfTheProtocol) {
    const std::map<std::string, std::string> methods = {
        {"start_server", "s>s"},
        {"connect", "s>u"},
        {"disconnect", "u>"},
        {"get_partial_list", "uuus>"},
        {"drop_partial_list", "us>"},
        {"request_detail", "us>"},
        {"request_cancel_detail", "u>"},
        {"request_act", "uss>"},
        {"stop_act", "us>u"},
        {"check_folder_path", "s>s"},
        {"start_scanner", "ss>bu"},
        {"stop_scanner", "u>"},
        {"start_scanner_thumb", "ssuu>b"},
        {"stop_scanner_thumb", "ssuu>"},
        {"get_usb_storages", "u>us"},
        {"get_bd_storages", "u>us"},
        {"bind_usb_event", "u>u"},
        {"bind_bd_event", "u>u"},
    };
    const std::map<std::string, std::string> signals = {
        {"qra_request_normal_complete", "s"}, {"qra_usb_notification", "s"},  {"qra_bd_notification", "s"},
        {"qra_folder_thumb_done", "s"},       {"qra_scanner_done", "uuusss"},
    };

    const NodeInfoPtr node = introspect(Bus());
    const GDBusInterfaceInfo* interface = g_dbus_node_info_lookup_interface(node.get(), kEngineName);
    ASSERT_TRUE(interface);
    std::map<std::string, std::string> found_methods;
    for (GDBusMethodInfo** method = interface->methods; *method; ++method) {
        found_methods[(*method)->name] = signature((*method)->in_args) + ">" + signature((*method)->out_args);
    }
    std::map<std::string, std::string> found_signals;
    for (GDBusSignalInfo** signal = interface->signals; *signal; ++signal) {
        found_signals[(*signal)->name] = signature((*signal)->args);
    }
    EXPECT_EQ(methods, found_methods);
    EXPECT_EQ(signals, found_signals);
}

TEST(Engine, AnswersStartServer) {
    EXPECT_EQ(kUp, Bus().start_server());
}

TEST(Engine, ServesEveryMethodOfItsInterface) {
    const Bus bus;
    const NodeInfoPtr node = introspect(bus);
    GDBusMethodInfo** method = g_dbus_node_info_lookup_interface(node.get(), kEngineName)->methods;
    for (; *method; ++method) {
        const std::string name = (*method)->name;
        const Answer answer = bus.engine(name.c_str(), empty_arguments(signature((*method)->in_args)));
        for (const std::string error : {"UnknownMethod", "NoReply", "NotSupported"}) {
            EXPECT_NE("org.freedesktop.DBus.Error." + error, answer.error) << name << ": " << answer.text;
        }
    }
}

TEST(Engine, RefusesAMethodThatDoesNotExist) {
    EXPECT_EQ("org.freedesktop.DBus.Error.UnknownMethod", Bus().engine("format_disk", nullptr).error);
}

TEST(Engine, RefusesArgumentsOfAnotherType) {
    const Bus bus;
    EXPECT_EQ("org.freedesktop.DBus.Error.InvalidArgs", bus.engine("start_server", nullptr).error);
    EXPECT_EQ("org.freedesktop.DBus.Error.InvalidArgs", bus.engine("connect", g_variant_new("(u)", 1)).error);
    EXPECT_EQ("org.freedesktop.DBus.Error.InvalidArgs",
              bus.engine("check_folder_path", g_variant_new("(ss)", "a", "b")).error);
}

TEST(Engine, IsNowhereElse) {
    const Bus bus;
    EXPECT_EQ("org.freedesktop.DBus.Error.UnknownMethod",
              bus.call(kEngineName, "/com/morva/qra", kEngineName, "start_server",
                       g_variant_new("(s)", "start_server"))
                  .error);
    EXPECT_EQ("org.freedesktop.DBus.Error.UnknownMethod",
              bus.call(kEngineName, kEnginePath, "com.morva.other", "start_server",
                       g_variant_new("(s)", "start_server"))
                  .error);
}

TEST(Engine, RemembersAFolderId) {
    const TempFolder temp;
    const std::string key = temp.old_folder("ä folder") + "/storage-1";
    const Bus bus;
    EXPECT_EQ(id(""), bus.find(key));
    EXPECT_EQ(id("12"), bus.add(key, "12"));
    EXPECT_EQ(id("12"), bus.find(key));
    EXPECT_EQ(id("12"), Bus().find(key)) << "for every client of the same user";
    EXPECT_EQ(id(""), bus.find(temp.path("ä folder/storage-2")));
}

TEST(Engine, ForgetsTheIdOfAFolderThatIsGone) {
    const TempFolder temp;
    const std::string folder = temp.old_folder("folder");
    const Bus bus;
    ASSERT_EQ(id("12"), bus.add(folder + "/storage-1", "12"));
    std::filesystem::remove(folder);
    EXPECT_EQ(id(""), bus.find(folder + "/storage-1"));
    EXPECT_EQ(id(""), bus.add(folder + "/storage-1", "13"));
}

TEST(Engine, SurvivesHostileFolderRequests) {
    const Bus bus;
    ASSERT_EQ(kUp, bus.start_server());
    const Answer owner = bus.owner();
    for (const std::string& request :
         {std::string(), std::string("{"), std::string("[]"), std::string("null"), std::string("{}"),
          std::string(100000, '['), std::string(20 << 20, 'x'),
          std::string(R"({"OPERATION_TYPE":2,"FOLDER_PATH":"/a/b"})"),
          std::string(R"({"OPERATION_TYPE":1,"FOLDER_PATH":["/a/b"]})"),
          std::string(R"({"OPERATION_TYPE":0,"FOLDER_PATH":"/a/b","FOLDER_ID":{}})")}) {
        EXPECT_EQ("org.freedesktop.DBus.Error.InvalidArgs", bus.check_folder(request).error);
    }
    EXPECT_EQ(owner, bus.owner()) << "still the same engine";
}

TEST(Engine, EndsWhenItIsNotUsed) {
    EXPECT_EQ(0, status_of(start_engine({"--idle-timeout", "0.05"})));
    EXPECT_EQ("org.freedesktop.DBus.Error.NameHasNoOwner", Bus().owner().error);
    EXPECT_EQ(kUp, Bus().start_server()) << "started anew by the bus";
}

TEST(Engine, EndsAtASignal) {
    const Bus bus;
    for (const int signal : {SIGTERM, SIGINT}) {
        const pid_t pid = start_engine({"--idle-timeout", "0"});
        wait_until_up(bus);
        ASSERT_EQ(kUp, bus.start_server()) << "so that its signal handlers stand";
        kill(pid, signal);
        EXPECT_EQ(0, status_of(pid));
    }
}

TEST(Engine, DoesNotStartTwice) {
    const Bus bus;
    ASSERT_EQ(kUp, bus.start_server());
    const Answer owner = bus.owner();
    EXPECT_EQ(1, status_of(start_engine({})));
    EXPECT_EQ(owner, bus.owner());
}

TEST(Engine, DoesNotStartWithoutABus) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    EXPECT_EQ(1, status_of(start_engine({})));
}

TEST(Engine, EndsWithTheBus) {
    GTestDBus* other_bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_up(other_bus);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", g_test_dbus_get_bus_address(other_bus), 1);
    const pid_t pid = start_engine({"--idle-timeout", "0"});
    wait_until_up(Bus());
    g_test_dbus_stop(other_bus);
    EXPECT_EQ(0, status_of(pid));
    g_object_unref(other_bus);
}

TEST(Engine, RefusesWrongOptions) {
    for (const std::string option :
         {"--idle-timeout=-1", "--idle-timeout=nan", "--idle-timeout=1e9", "--what", "file"}) {
        EXPECT_EQ(1, status_of(start_engine({option}))) << option;
    }
}

}  // namespace
