#include "apps/qra/list_output.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "apps/qra/command_line.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal.h"
#include "apps/qra/tile_reader.h"

namespace {

GridStyle grid_style(const ListOptions& options) {
    GridStyle style;
    style.rows = options.rows;
    style.columns = options.columns;
    style.order = page_order(options);
    style.width = terminal_width(STDOUT_FILENO);
    style.colour = wants_colour(STDOUT_FILENO);
    style.unicode = locale_is_utf8();
    return style;
}

}  // namespace

void check_interrupt() {
    if (interrupt::requested()) {
        throw CommandError(ExitStatus::RequestFailed, "interrupted");
    }
}

TileRange tile_range(const CommandLine& line, int tile_count) {
    const int begin = std::min(line.offset, tile_count);
    const int rest = tile_count - begin;
    return {begin, begin + (line.limit < 0 ? rest : std::min(line.limit, rest))};
}

void print_grid(const ListOptions& options, const TileRange& range, int tile_count,
                const std::function<Tile(int index)>& tile) {
    const GridView view(grid_style(options), range.end - 1);
    const int size = view.page_size();
    const int pages = (tile_count + size - 1) / size;
    for (int page = range.begin / size; page * size < range.end; ++page) {
        check_interrupt();
        std::vector<std::optional<Tile>> slots(static_cast<std::size_t>(size));
        for (int index = std::max(range.begin, page * size); index < std::min(range.end, (page + 1) * size);
             ++index) {
            slots[static_cast<std::size_t>(index - page * size)] = tile(index);
        }
        print(pages == 1 ? "" : "page " + std::to_string(page + 1) + " of " + std::to_string(pages) + "\n\n");
        print(view.page(page * size, slots));
        flush_output();
    }
}
