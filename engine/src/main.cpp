#include <qra/qra_types.h>

#include <cstdio>

#include "engine/plugins/feed/feed_plugin.h"
#include "engine/plugins/webdav/webdav_plugin.h"
#include "engine/src/engine_daemon.h"
#include "engine/src/user_accounts.h"
#include "platform/support/glib_ptr.h"

namespace {

constexpr double kDefaultIdleSeconds = 300;
constexpr double kLongestIdleSeconds = 7 * 24 * 3600;

struct Options {
    double idle_seconds = kDefaultIdleSeconds;
    gboolean version = FALSE;
};

/// False, after a line on standard error, if the arguments are wrong.
bool parse_options(int argc, char** argv, Options& options) {
    const GOptionEntry entries[] = {
        {"idle-timeout", 0, G_OPTION_FLAG_NONE, G_OPTION_ARG_DOUBLE, &options.idle_seconds,
         "End after this time without a call, 0 for never (300)", "SECONDS"},
        {"version", 0, G_OPTION_FLAG_NONE, G_OPTION_ARG_NONE, &options.version, "Show the version and end",
         nullptr},
        {},
    };
    const std::unique_ptr<GOptionContext, support::Release<g_option_context_free>> context(
        g_option_context_new("- serve content to the QRA content agent"));
    g_option_context_add_main_entries(context.get(), entries, nullptr);
    glib::ErrorOut error;
    const char* wrong = nullptr;
    if (!g_option_context_parse(context.get(), &argc, &argv, error)) {
        wrong = error.message();
    } else if (argc > 1) {
        wrong = "arguments are not expected";
    } else if (!(options.idle_seconds >= 0 && options.idle_seconds <= kLongestIdleSeconds)) {
        wrong = "--idle-timeout must be between 0 and a week";
    }
    if (wrong) {
        std::fprintf(stderr, "qra-content-engine: %s\n", wrong);
    }
    return !wrong;
}

engine::EngineSetup setup() {
    engine::EngineSetup setup;
    setup.plugins.add(engine::make_webdav_plugin());
    setup.plugins.add(engine::make_feed_plugin());
    setup.accounts = engine::user_accounts();
    return setup;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse_options(argc, argv, options)) {
        return 1;
    }
    if (options.version) {
        std::printf("qra-content-engine %d.%d.%d\n", QRA_CONTENT_AGENT_VERSION_MAJOR,
                    QRA_CONTENT_AGENT_VERSION_MINOR, QRA_CONTENT_AGENT_VERSION_PATCH);
        return 0;
    }
    return engine::EngineDaemon(setup(), options.idle_seconds).run();
}
