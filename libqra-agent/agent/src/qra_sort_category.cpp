#include "libqra-agent/agent/src/qra_sort_category.h"

namespace {

struct CategoryRow {
    const char* szCategory;
    CategoryLayout layout;
};

constexpr CategoryRow kCategories[] = {
    // folder build, folder view, folder view on expand, folders last
    {"CATEGORY-FOLDER", {false, true, true, false}},
    {"CATEGORY-UHD-FOLDER", {false, true, false, false}},
    {"CATEGORY-FOLDER-TITLE", {true, false, false, false}},
    {"CATEGORY-UHD-FOLDER-WITHUPFOLDER", {true, false, false, false}},
    {"CATEGORY-FOLDER-DATE", {true, false, false, true}},
    {"CATEGORY-FOLDER-CHANNEL_NAME", {true, false, false, true}},
    {"CATEGORY-FOLDER-CHANNEL_NUM", {true, false, false, true}},
};

}  // namespace

CategoryLayout qra_category_layout(const std::string& strCategory) {
    for (const CategoryRow& row : kCategories) {
        if (strCategory == row.szCategory)
            return row.layout;
    }
    return {};
}
