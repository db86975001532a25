#include "apps/qra/grid_view.h"

#include <algorithm>
#include <string_view>

#include "apps/qra/terminal_text.h"

namespace {

constexpr int kGap = 2;
constexpr int kSmallestTile = 22;
constexpr int kLargestTile = 40;
constexpr int kLinesOfTile = 3;

struct Look {
    int media_type;
    std::string_view mark;        // one cell
    std::string_view plain_mark;  // the same in ASCII
    std::string_view colour;
};

constexpr Look kLooks[] = {
    {QRA_MEDIA_TYPE_FOLDER, "▸", "/", "\033[1;34m"},  {QRA_MEDIA_TYPE_IMAGE, "▣", "o", "\033[35m"},
    {QRA_MEDIA_TYPE_VIDEO, "▶", ">", "\033[32m"},     {QRA_MEDIA_TYPE_MUSIC, "♪", "~", "\033[36m"},
    {QRA_MEDIA_TYPE_PVR, "●", "@", "\033[31m"},       {QRA_MEDIA_TYPE_PLAYLIST, "≡", "=", "\033[36m"},
    {QRA_MEDIA_TYPE_GROUP, "■", "#", "\033[1;33m"},   {QRA_MEDIA_TYPE_UHD, "◆", "+", "\033[32m"},
    {QRA_MEDIA_TYPE_SCSA, "◇", "*", "\033[32m"},      {QRA_MEDIA_TYPE_UPFOLDER, "↑", "^", "\033[1;34m"},
    {QRA_MEDIA_TYPE_EMPTY, "·", ".", "\033[2m"},      {QRA_MEDIA_TYPE_IMAGE_EXT, "◉", "O", "\033[35m"},
    {QRA_MEDIA_TYPE_VIDEO_EXT, "◎", "0", "\033[32m"},
};
constexpr Look kUnknownLook = {0, "?", "?", ""};
constexpr std::string_view kFaint = "\033[2m";
constexpr std::string_view kReset = "\033[0m";

const Look& look_of(int media_type) {
    const auto* look = std::find_if(std::begin(kLooks), std::end(kLooks), [&](const Look& candidate) {
        return candidate.media_type == media_type;
    });
    return look == std::end(kLooks) ? kUnknownLook : *look;
}

}  // namespace

GridView::GridView(const GridStyle& style, int largest_index)
    : style_(style), index_width_(static_cast<int>(std::to_string(std::max(largest_index, 0)).size())) {
    const int fitting = std::clamp((style.width + kGap) / (kSmallestTile + kGap), 1, style.columns);
    const int bands = (style.columns + fitting - 1) / fitting;
    band_columns_ = (style.columns + bands - 1) / bands;
    tile_width_ = std::clamp((style.width + kGap) / band_columns_ - kGap, index_width_ + 4, kLargestTile);
}

int GridView::slot_of(int row, int column) const {
    return style_.order == QRA_PAGE_ORDER_COLUMN ? column * style_.rows + row : row * style_.columns + column;
}

std::vector<std::vector<GridView::Cell>> GridView::arranged(
    int first_index, const std::vector<std::optional<Tile>>& slots) const {
    std::vector<std::vector<Cell>> rows(static_cast<std::size_t>(style_.rows));
    for (int row = 0; row < style_.rows; ++row) {
        for (int column = 0; column < style_.columns; ++column) {
            const auto slot = static_cast<std::size_t>(slot_of(row, column));
            const bool shown = slot < slots.size() && slots[slot].has_value();
            rows[static_cast<std::size_t>(row)].push_back(
                {first_index + static_cast<int>(slot), shown ? &*slots[slot] : nullptr});
        }
    }
    return rows;
}

std::string GridView::page(int first_index, const std::vector<std::optional<Tile>>& slots) const {
    const auto rows = arranged(first_index, slots);
    const auto is_shown = [](const Cell& cell) { return cell.tile != nullptr; };
    std::string text;
    for (int band = 0; band < style_.columns; band += band_columns_) {
        const int end = std::min(band + band_columns_, style_.columns);
        for (const std::vector<Cell>& row : rows) {
            if (std::none_of(row.begin() + band, row.begin() + end, is_shown)) {
                continue;
            }
            for (int line = 0; line < kLinesOfTile; ++line) {
                std::string whole;
                for (int column = band; column < end; ++column) {
                    whole += line_of(row[static_cast<std::size_t>(column)], line);
                    whole.append(kGap, ' ');
                }
                whole.erase(whole.find_last_not_of(' ') + 1);
                text += whole.empty() ? "" : whole + "\n";
            }
            text += "\n";
        }
    }
    return text;
}

std::string GridView::line_of(const Cell& cell, int line) const {
    if (cell.tile == nullptr) {
        return std::string(static_cast<std::size_t>(tile_width_), ' ');
    }
    const Tile& tile = *cell.tile;
    const Look& look = look_of(tile.media_type);
    const auto text_width = static_cast<std::size_t>(tile_width_ - index_width_ - 3);
    const std::string index = std::to_string(cell.index);
    const std::string number =
        line == 0 ? std::string(static_cast<std::size_t>(index_width_) - index.size(), ' ') + index
                  : std::string(static_cast<std::size_t>(index_width_), ' ');
    const std::string_view mark = line != 0 ? " " : style_.unicode ? look.mark : look.plain_mark;
    const std::string& content = line == 0 ? tile.title : line == 1 ? tile.detail : tile.date;
    const std::string_view ellipsis = style_.unicode ? "…" : "~";
    return painted(number + " ", 0, 1) +
           painted(std::string(mark) + " " + fit_to_cells(printable_text(content), text_width, ellipsis),
                   tile.media_type, line);
}

std::string GridView::painted(const std::string& text, int media_type, int line) const {
    if (!style_.colour || text.find_first_not_of(' ') == std::string::npos) {
        return text;
    }
    const std::string_view colour = line == 0 ? look_of(media_type).colour : kFaint;
    return std::string(colour) + text + std::string(kReset);
}
