#ifndef QRA_APPS_QRA_GRID_VIEW_H
#define QRA_APPS_QRA_GRID_VIEW_H

#include <qra/qra_types.h>

#include <optional>
#include <string>
#include <vector>

/// What the grid shows of one tile. The texts are bytes as the library gave them; the view makes them
/// printable.
struct Tile {
    int media_type = QRA_MEDIA_TYPE_EMPTY;
    std::string title;
    std::string detail;  ///< size, duration, picture size, ...
    std::string date;
};

struct GridStyle {
    int rows = 2;
    int columns = 9;
    qra_page_order_e order = QRA_PAGE_ORDER_COLUMN;  ///< how list indices run over the page
    int width = 80;                                  ///< terminal cells of a line
    bool colour = false;
    bool unicode = false;  ///< marks and ellipsis beyond ASCII
};

/// Lays out pages of tiles as text. A page that is too wide for the line is shown in bands of columns, one
/// below the other, so that every tile keeps its row and column neighbours.
class GridView {
public:
    /// @param style          positive rows, columns and width
    /// @param largest_index  the highest list index that will be shown; it sets the width of the index column
    GridView(const GridStyle& style, int largest_index);

    int page_size() const { return style_.rows * style_.columns; }

    /// @param first_index  list index of the page's first slot
    /// @param slots        the page's tiles in list order; one that is not to be shown is absent
    /// @return the page's lines, each ended by a line feed; empty if no slot has a tile
    std::string page(int first_index, const std::vector<std::optional<Tile>>& slots) const;

private:
    struct Cell {
        int index;
        const Tile* tile;
    };

    int slot_of(int row, int column) const;
    std::vector<std::vector<Cell>> arranged(int first_index,
                                            const std::vector<std::optional<Tile>>& slots) const;
    std::string line_of(const Cell& cell, int line) const;
    std::string painted(const std::string& text, int media_type, int line) const;

    GridStyle style_;
    int index_width_;
    int band_columns_;  // columns side by side
    int tile_width_;
};

#endif
