#ifndef QRA_APPS_QRA_LIST_OUTPUT_H
#define QRA_APPS_QRA_LIST_OUTPUT_H

#include <functional>

#include "apps/qra/grid_view.h"

struct CommandLine;
struct ListOptions;

/// @throws CommandError if a signal that ends the tool has come
void check_interrupt();

/// Tiles of a list, the last one excluded.
struct TileRange {
    int begin;
    int end;
};

/// What --offset and --limit leave of a list.
TileRange tile_range(const CommandLine& line, int tile_count);

/// Prints the pages that hold a range of a list's tiles, each one as soon as its tiles are read.
/// @throws CommandError as the reader of tiles does, if printing fails, or a signal ends the tool
void print_grid(const ListOptions& options, const TileRange& range, int tile_count,
                const std::function<Tile(int index)>& tile);

#endif
