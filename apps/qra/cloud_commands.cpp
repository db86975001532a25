#include <chrono>
#include <string>

#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/list_output.h"
#include "apps/qra/output.h"
#include "apps/qra/remote_list.h"
#include "apps/qra/terminal_text.h"
#include "apps/qra/tile_reader.h"

namespace {

std::string headline(const CommandLine& line, int count) {
    const std::string items = count == 1 ? "1 item" : std::to_string(count) + " items";
    return printable_text(line.account.name + ":/" + line.path) + "  " +
           (count == 0 ? "nothing to show" : items) + "\n";
}

}  // namespace

void run_remote_list(const CommandLine& line) {
    RemoteList list(line.list, {line.account.name, line.path}, std::chrono::seconds(line.cloud_timeout));
    const TileRange range = tile_range(line, list.count());
    if (line.json) {
        for (int index = range.begin; index < range.end; ++index) {
            check_interrupt();
            print(list.item(index));
        }
        return;
    }
    print(headline(line, list.count()));
    if (list.count() == 0) {
        return;
    }
    print("\n");
    print_grid(line.list, range, list.count(), [&list](int index) {
        list.move_to(index);
        return read_tile(list.handle());
    });
}
