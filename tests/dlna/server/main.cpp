// A media server for tests. It runs until its standard input ends or a SIGTERM comes, and takes orders from
// there, one a line; each is answered by a line that begins with "ok" or "error". See commands() for what it
// understands.

#include <gio/gio.h>
#include <gio/gunixinputstream.h>
#include <glib-unix.h>
#include <libgupnp/gupnp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <memory>

#include "tests/dlna/server/directory_service.h"
#include "tests/dlna/server/file_service.h"
#include "tests/dlna/server/presence.h"
#include "tests/fakes/temp_dir.h"

namespace {

struct Options {
    Identity identity;
    std::string address = "127.0.0.1";
    int port = 0;
    int max_age = 1800;
};

[[noreturn]] void give_up(const char* what, GError* error) {
    std::fprintf(stderr, "media server: %s: %s\n", what, error ? error->message : "");
    std::exit(1);
}

class Server {
public:
    explicit Server(const Options& options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void run() { g_main_loop_run(loop_); }

private:
    using Words = std::vector<std::string>;
    struct Command {
        const char* name;
        std::size_t arguments;  ///< at least
        std::function<std::string(const Words&)> run;
    };

    static void on_line(GObject* stream, GAsyncResult* result, void* self);
    static gboolean on_signal(void* self);
    void read_line();
    void obey(const std::string& line);
    void say(const std::string& text);
    void check_waiting();
    std::vector<Command> commands();
    std::vector<Command> content_commands();
    std::string await(const Words& words);
    std::string announce(bool available, const char* heard_as);
    std::string flood(int count);
    std::string generate(const Words& words);

    TempDir directory_;
    Content content_;
    Faults faults_;
    Journal journal_;
    GMainLoop* loop_;
    GUPnPContext* context_ = nullptr;
    GUPnPRootDevice* device_;
    GUPnPServiceInfo* connection_manager_;
    GSSDPResourceGroup* flood_ = nullptr;
    std::unique_ptr<DirectoryService> browser_;
    std::unique_ptr<FileService> files_;
    std::unique_ptr<Presence> presence_;
    GDataInputStream* input_;
    std::string awaited_;
    long awaited_count_ = 0;
    std::string answer_;  ///< when that is there
};

Server::Server(const Options& options) : loop_(g_main_loop_new(nullptr, FALSE)) {
    GError* error = nullptr;
    GInetAddress* address = g_inet_address_new_from_string(options.address.c_str());
    // GUPnP chooses a port without looking whether it is free.
    constexpr int kTries = 20;
    for (int i = 0; i < kTries && !context_; ++i) {
        g_clear_error(&error);
        context_ = gupnp_context_new_for_address(address, static_cast<guint16>(options.port),
                                                 GSSDP_UDA_VERSION_1_0, &error);
    }
    g_object_unref(address);
    if (!context_) {
        give_up("network", error);
    }
    write_description(directory_.path(), options.identity);
    device_ = gupnp_root_device_new(context_, kDescriptionFile, directory_.path().c_str(), &error);
    if (!device_) {
        give_up("device", error);
    }
    browser_ = std::make_unique<DirectoryService>(device_, options.identity, content_, faults_, journal_);
    connection_manager_ = gupnp_device_info_get_service(GUPNP_DEVICE_INFO(device_),
                                                        "urn:schemas-upnp-org:service:ConnectionManager:1");
    files_ = std::make_unique<FileService>(gupnp_context_get_server(context_), directory_.path(), content_,
                                           faults_, journal_, [this] { browser_->tell_change(); });
    GSSDPResourceGroup* group = gupnp_root_device_get_ssdp_resource_group(device_);
    gssdp_resource_group_set_max_age(group, static_cast<guint>(options.max_age));
    gssdp_resource_group_set_message_delay(group, 1);
    presence_ = std::make_unique<Presence>(device_, options.identity.id, journal_);
    journal_.on_change = [this] { check_waiting(); };
    GInputStream* plain = g_unix_input_stream_new(STDIN_FILENO, FALSE);
    input_ = g_data_input_stream_new(plain);
    g_object_unref(plain);
    g_unix_signal_add(SIGTERM, on_signal, this);
    read_line();
    announce(true, "alive");
    answer_ = "ok " + std::to_string(gupnp_context_get_port(context_));
}

Server::~Server() {
    journal_.on_change = nullptr;
    presence_.reset();
    gupnp_root_device_set_available(device_, FALSE);
    files_.reset();
    browser_.reset();
    g_clear_object(&flood_);
    g_object_unref(connection_manager_);
    g_object_unref(device_);
    g_object_unref(context_);
    g_object_unref(input_);
    g_main_loop_unref(loop_);
}

gboolean Server::on_signal(void* self) {
    g_main_loop_quit(static_cast<Server*>(self)->loop_);
    return G_SOURCE_CONTINUE;
}

void Server::read_line() {
    g_data_input_stream_read_line_async(input_, G_PRIORITY_DEFAULT, nullptr, on_line, this);
}

void Server::on_line(GObject* stream, GAsyncResult* result, void* self) {
    auto* server = static_cast<Server*>(self);
    char* line = g_data_input_stream_read_line_finish(G_DATA_INPUT_STREAM(stream), result, nullptr, nullptr);
    if (!line) {
        g_main_loop_quit(server->loop_);
        return;
    }
    server->obey(line);
    g_free(line);
    server->read_line();
}

void Server::say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

void Server::obey(const std::string& line) {
    int count = 0;
    char** parts = nullptr;
    Words words;
    if (g_shell_parse_argv(line.c_str(), &count, &parts, nullptr)) {
        words.assign(parts, parts + count);
        g_strfreev(parts);
    }
    std::vector<Command> all = commands();
    for (Command& command : content_commands()) {
        all.push_back(std::move(command));
    }
    for (const Command& command : all) {
        if (!words.empty() && words[0] == command.name && words.size() > command.arguments) {
            const std::string answer = command.run(words);
            if (!answer.empty()) {
                say(answer);
            }
            return;
        }
    }
    say("error unknown: " + line);
}

void Server::check_waiting() {
    if (!awaited_.empty() && journal_.of(awaited_) >= awaited_count_) {
        awaited_.clear();
        say(answer_);
    }
}

std::string Server::await(const Words& words) {
    awaited_ = words[1];
    awaited_count_ = std::atol(words[2].c_str());
    answer_ = "ok";
    check_waiting();
    return "";
}

/// Answered when it was said, to everybody: GSSDP takes its time, and says goodbye before it says anything.
std::string Server::announce(bool available, const char* heard_as) {
    const std::string heard = std::to_string(journal_.of(heard_as) + 1);
    gupnp_root_device_set_available(device_, available ? TRUE : FALSE);
    return await({"await", heard_as, heard});
}

std::string Server::flood(int count) {
    flood_ = gssdp_resource_group_new(GSSDP_CLIENT(context_));
    gssdp_resource_group_set_message_delay(flood_, 0);
    const std::string base = std::string("http://") + gssdp_client_get_host_ip(GSSDP_CLIENT(context_)) + ":" +
                             std::to_string(gupnp_context_get_port(context_));
    constexpr char kType[] = "urn:schemas-upnp-org:device:MediaServer:1";
    for (int i = 0; i < count; ++i) {
        const std::string id = "uuid:flood-" + std::to_string(i);
        gssdp_resource_group_add_resource_simple(flood_, kType, (id + "::" + kType).c_str(),
                                                 (base + "/flood/" + std::to_string(i)).c_str());
    }
    gssdp_resource_group_set_available(flood_, TRUE);
    return "ok";
}

std::string Server::generate(const Words& words) {
    const std::pair<const char*, Kind> kKinds[] = {
        {"image", Kind::image}, {"video", Kind::video}, {"music", Kind::music}};
    for (const auto& [name, kind] : kKinds) {
        if (words[2] == name) {
            content_.generate(words[1], kind, std::atoi(words[3].c_str()));
            return "ok";
        }
    }
    return "error no such kind";
}

std::vector<Server::Command> Server::commands() {
    return {
        // set SWITCH [VALUE [TIMES [SPARED]]]
        {"set", 1,
         [this](const Words& words) {
             Faults::Switch fault;
             fault.value = words.size() > 2 ? words[2] : "";
             fault.left = words.size() > 3 ? std::atoi(words[3].c_str()) : -1;
             fault.spared = words.size() > 4 ? std::atoi(words[4].c_str()) : 0;
             faults_.set(words[1], fault);
             return std::string("ok");
         }},
        // clear [SWITCH]
        {"clear", 0,
         [this](const Words& words) {
             words.size() > 1 ? faults_.clear(words[1]) : faults_.clear();
             return std::string("ok");
         }},
        {"release", 0,
         [this](const Words&) {
             browser_->release();
             files_->release();
             return std::string("ok");
         }},
        // count NAME: how often that was asked for
        {"count", 1, [this](const Words& words) { return "ok " + std::to_string(journal_.of(words[1])); }},
        // noted NAME
        {"noted", 1, [this](const Words& words) { return "ok " + journal_.noted(words[1]); }},
        // await NAME COUNT: answered when it was asked for so often
        {"await", 2, [this](const Words& words) { return await(words); }},
        {"goodbye", 0, [this](const Words&) { return announce(false, "byebye"); }},
        {"hello", 0, [this](const Words&) { return announce(true, "alive"); }},
        // answer: to the search that came last, at once, also after a goodbye
        {"answer", 0,
         [this](const Words&) {
             return std::string(presence_->answer_search() ? "ok" : "error nobody has searched");
         }},
        // flood COUNT: announces so many devices that are none
        {"flood", 1, [this](const Words& words) { return flood(std::atoi(words[1].c_str())); }},
    };
}

std::vector<Server::Command> Server::content_commands() {
    return {
        // generate ID KIND COUNT
        {"generate", 3, [this](const Words& words) { return generate(words); }},
        // tree ID DEPTH WIDTH
        {"tree", 3,
         [this](const Words& words) {
             content_.generate_tree(words[1], std::atoi(words[2].c_str()), std::atoi(words[3].c_str()));
             return std::string("ok");
         }},
        // directory ID PATH
        {"directory", 2,
         [this](const Words& words) {
             return std::string(content_.add_directory(words[1], words[2]) ? "ok" : "error cannot be read");
         }},
        // views: containers of the server's own for the ordered views
        {"views", 0,
         [this](const Words&) {
             content_.add_views();
             return std::string("ok");
         }},
        // cycle ID: the container holds itself and its parent
        {"cycle", 1,
         [this](const Words& words) {
             Object* object = content_.find(words[1]);
             if (!object) {
                 return std::string("error no such object");
             }
             object->children.insert(object->children.end(), {object->id, object->parent});
             return std::string("ok");
         }},
        // change ID FIELD VALUE
        {"change", 3,
         [this](const Words& words) {
             Object* object = content_.find(words[1]);
             std::string* field = nullptr;
             if (object && words[2] == "title")
                 field = &object->title;
             if (object && words[2] == "artist")
                 field = &object->artist;
             if (object && words[2] == "date")
                 field = &object->date;
             if (object && words[2] == "mime")
                 field = &object->mime;
             if (!field) {
                 return std::string("error no such field");
             }
             *field = words[3];
             return std::string("ok");
         }},
        // size ID BYTES, position ID
        {"size", 2,
         [this](const Words& words) {
             Object* object = content_.find(words[1]);
             if (!object) {
                 return std::string("error no such object");
             }
             object->size = std::atoll(words[2].c_str());
             return std::string("ok");
         }},
        {"position", 1,
         [this](const Words& words) {
             const Object* object = content_.find(words[1]);
             return object ? "ok " + std::to_string(object->position) : std::string("error no such object");
         }},
        // remove ID
        {"remove", 1,
         [this](const Words& words) {
             content_.remove(words[1]);
             return std::string("ok");
         }},
        // changed: tells subscribers
        {"changed", 0,
         [this](const Words&) {
             browser_->tell_change();
             return std::string("ok");
         }},
    };
}

}  // namespace

int main(int argc, char** argv) {
    // Whatever becomes of the test, nothing of it stays.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    signal(SIGPIPE, SIG_IGN);
    Options options;
    CLI::App app("A media server for tests");
    app.add_option("--name", options.identity.name, "name for people");
    app.add_option("--id", options.identity.id, "id, with \"uuid:\"");
    app.add_option("--maker", options.identity.maker, "the manufacturer");
    app.add_flag("!--no-search", options.identity.search, "cannot search");
    app.add_flag("!--no-upload", options.identity.upload, "takes no files");
    app.add_flag("--feature-list", options.identity.feature_list, "has a feature list");
    app.add_option("--bookmark", options.identity.bookmark, "none, action or position");
    app.add_option("--address", options.address, "where it listens");
    app.add_option("--port", options.port, "where it listens, 0 for any");
    app.add_option("--max-age", options.max_age, "how long an announcement holds, in seconds");
    CLI11_PARSE(app, argc, argv);
    Server(options).run();
    return 0;
}
