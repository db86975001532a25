#include "apps/qra/grid_view.h"

#include <gtest/gtest.h>

namespace {

GridStyle style(int rows, int columns, int width) {
    GridStyle style;
    style.rows = rows;
    style.columns = columns;
    style.width = width;
    return style;
}

std::optional<Tile> tile(const std::string& title, int media_type = QRA_MEDIA_TYPE_IMAGE) {
    Tile tile;
    tile.media_type = media_type;
    tile.title = title;
    return tile;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

}  // namespace

TEST(GridView, ColumnOrderRunsDownTheRowsFirst) {
    const GridView view(style(2, 2, 80), 3);
    const auto lines = lines_of(view.page(0, {tile("a"), tile("b"), tile("c"), tile("d")}));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "0 o a" + std::string(36, ' ') + "2 o c");
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(lines[2], "1 o b" + std::string(36, ' ') + "3 o d");
}

TEST(GridView, RowOrderRunsAlongTheRowFirst) {
    GridStyle by_row = style(2, 2, 80);
    by_row.order = QRA_PAGE_ORDER_ROW;
    const auto lines = lines_of(GridView(by_row, 3).page(0, {tile("a"), tile("b"), tile("c"), tile("d")}));
    EXPECT_NE(lines[0].find("0 o a"), std::string::npos);
    EXPECT_NE(lines[0].find("1 o b"), std::string::npos);
    EXPECT_NE(lines[2].find("2 o c"), std::string::npos);
}

TEST(GridView, PageThatIsTooWideIsShownInBandsOfColumns) {
    const GridView view(style(1, 4, 50), 3);
    const auto lines = lines_of(view.page(0, {tile("a"), tile("b"), tile("c"), tile("d")}));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "0 o a" + std::string(21, ' ') + "1 o b");
    EXPECT_EQ(lines[2], "2 o c" + std::string(21, ' ') + "3 o d");
}

TEST(GridView, NoLineIsWiderThanTheTerminal) {
    for (int width = 20; width <= 240; width += 7) {
        const GridView view(style(2, 9, width), 17);
        std::vector<std::optional<Tile>> slots(18, tile(std::string(300, 'x')));
        for (const std::string& line : lines_of(view.page(0, slots))) {
            EXPECT_LE(line.size(), static_cast<std::size_t>(width));
        }
    }
}

TEST(GridView, IndicesCountOnFromPageToPage) {
    const GridView view(style(1, 1, 80), 120);
    EXPECT_EQ(lines_of(view.page(7, {tile("a")}))[0], "  7 o a");
}

TEST(GridView, AbsentTilesLeaveTheirPlaceEmpty) {
    const GridView view(style(1, 2, 80), 1);
    EXPECT_EQ(lines_of(view.page(0, {std::nullopt, tile("b")}))[0], std::string(41, ' ') + "1 o b");
    EXPECT_EQ(view.page(0, {std::nullopt, std::nullopt}), "");
}

TEST(GridView, DetailAndDateStandBelowTheTitle) {
    Tile picture = *tile("a.jpg");
    picture.detail = "4.2 MB  4000x3000";
    picture.date = "2021-05-06 10:20";
    const auto lines = lines_of(GridView(style(1, 1, 80), 0).page(0, {picture}));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "0 o a.jpg");
    EXPECT_EQ(lines[1], "    4.2 MB  4000x3000");
    EXPECT_EQ(lines[2], "    2021-05-06 10:20");
}

TEST(GridView, NamesNeverReachTheTerminalRaw) {
    const GridView view(style(1, 1, 80), 0);
    EXPECT_EQ(lines_of(view.page(0, {tile("\033]0;x\a\nb\xff")}))[0], "0 o \\x1b]0;x\\x07\\nb\\xff");
}

TEST(GridView, EachKindHasItsMark) {
    const GridView view(style(1, 1, 80), 0);
    EXPECT_EQ(view.page(0, {tile("x", QRA_MEDIA_TYPE_FOLDER)}), "0 / x\n\n");
    EXPECT_EQ(view.page(0, {tile("x", QRA_MEDIA_TYPE_VIDEO)}), "0 > x\n\n");
    EXPECT_EQ(view.page(0, {tile("x", QRA_MEDIA_TYPE_MUSIC)}), "0 ~ x\n\n");
    EXPECT_EQ(view.page(0, {tile("x", QRA_MEDIA_TYPE_UPFOLDER)}), "0 ^ x\n\n");
    EXPECT_EQ(view.page(0, {tile("x", 4)}), "0 ? x\n\n");
}

TEST(GridView, UnicodeMarksOnlyWhereTheLocaleHasThem) {
    GridStyle unicode = style(1, 1, 80);
    unicode.unicode = true;
    EXPECT_EQ(GridView(unicode, 0).page(0, {tile("x", QRA_MEDIA_TYPE_MUSIC)}), "0 ♪ x\n\n");
}

TEST(GridView, EscapeSequencesOnlyWithColour) {
    EXPECT_EQ(GridView(style(1, 1, 80), 0).page(0, {tile("x")}).find('\033'), std::string::npos);
    GridStyle coloured = style(1, 1, 80);
    coloured.colour = true;
    EXPECT_NE(GridView(coloured, 0).page(0, {tile("x")}).find("\033[35mo x"), std::string::npos);
}
