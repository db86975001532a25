// Every view of a drive through the exported functions alone: pages, groups, counts and tiles.
#include <gtest/gtest.h>
#include <json/json.h>
#include <qra/qra_content_agent.h>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <sstream>

#include "tests/integration/browse_tree.h"

namespace {

using Names = std::vector<std::string>;

std::string take(char* text) {
    const std::string copy = text != nullptr ? text : "";
    free(text);
    return copy;
}

/// What a request asks for, and what the drive holds for it.
struct View {
    const char* name;
    const char* category;
    const char* content;
    const char* path;
    const char* keyword;
    Names folders;
    std::vector<std::pair<std::string, Names>> groups;
};

/// A list request on a drive, open from construction to destruction.
class OpenView {
public:
    OpenView(const BrowseTree& tree, const View& view) {
        qra_general_param_h param = nullptr;
        qra_create_general_param(&param);
        qra_param_set_general_source(param, "SOURCE_MSC");
        qra_param_set_general_path(param, tree.path(view.path).c_str());
        qra_param_set_general_content_type(param, view.content);
        qra_param_set_general_sort_category(param, view.category);
        qra_param_set_general_is_uhd_meta(param, true);
        if (view.keyword != nullptr)
            qra_param_set_general_key_word(param, view.keyword);
        EXPECT_EQ(qra_request_list_v2(param, &on_list, this, &handle_), QRA_ERROR_NONE);
        qra_destroy_general_param(param);
    }
    ~OpenView() { EXPECT_EQ(qra_disconnect_v2(handle_), QRA_ERROR_NONE); }
    OpenView(const OpenView&) = delete;
    OpenView& operator=(const OpenView&) = delete;

    qra_event_e wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        answered_.wait(lock, [&] { return event_ >= 0; });
        return static_cast<qra_event_e>(event_);
    }

    qra_error_code_e set_style(int mask, int group = -1, int rows = 2, int columns = 9) {
        qra_page_param_h style = nullptr;
        qra_create_page_param(&style);
        qra_param_set_page_style_mask(style, mask);
        qra_param_set_page_style_group_index(style, group);
        qra_param_set_page_style_row(style, rows);
        qra_param_set_page_style_column(style, columns);
        const qra_error_code_e code = qra_set_page_style_v2(handle_, style);
        qra_destroy_page_param(style);
        return code;
    }

    int count() const {
        int value = -1;
        EXPECT_EQ(qra_get_item_count_v2(handle_, &value), QRA_ERROR_NONE);
        return value;
    }
    int count(qra_media_type_e type) const {
        int value = -1;
        EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, type, &value), QRA_ERROR_NONE);
        return value;
    }

    Json::Value item(int index) const {
        char* text = nullptr;
        EXPECT_EQ(qra_get_item_v2(handle_, index, &text), QRA_ERROR_NONE) << index;
        std::istringstream stream(take(text));
        Json::Value value;
        std::string errors;
        EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << errors;
        return value;
    }

    /// All tiles: "..", "-" for an empty one, "#group", "folder/" or a file name.
    Names tiles() const {
        Names names;
        for (int i = 0; i < count(); ++i)
            names.push_back(tile(item(i)));
        return names;
    }

    qra_agent_handler_h handle() const { return handle_; }

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
        auto* view = static_cast<OpenView*>(self);
        const std::lock_guard<std::mutex> lock(view->mutex_);
        view->event_ = event;
        view->answered_.notify_all();
        return true;
    }

    static std::string tile(const Json::Value& item) {
        switch (item["MEDIA_TYPE"].asInt()) {
            case QRA_MEDIA_TYPE_UPFOLDER:
                return "..";
            case QRA_MEDIA_TYPE_EMPTY:
                return "-";
            case QRA_MEDIA_TYPE_GROUP:
                return "#" + item["DISPLAY_NAME"].asString();
            case QRA_MEDIA_TYPE_FOLDER:
                return item["DISPLAY_NAME"].asString() + "/";
            default:
                return std::filesystem::path(item["FILE_PATH"].asString()).filename().string();
        }
    }

    qra_agent_handler_h handle_ = nullptr;
    std::mutex mutex_;
    std::condition_variable answered_;
    int event_ = -1;
};

Names numbered(const std::string& head, int count, const std::string& tail) {
    Names names;
    for (int i = 1; i <= count; ++i)
        names.push_back(head + std::to_string(i) + tail);
    return names;
}

Names joined(std::initializer_list<Names> parts) {
    Names all;
    for (const Names& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// "show" as a page builds it from a mask: U the up-folder tile, E an empty tile, F the folders, M the media
// of all groups, P the same with each group padded to an even count, G the group headers, X each header with
// its media.
Names laid_out(const View& view, const std::string& layout) {
    Names tiles;
    const auto add = [&](const Names& names) { tiles.insert(tiles.end(), names.begin(), names.end()); };
    for (const char part : layout) {
        if (part == 'U')
            add({".."});
        if (part == 'E')
            add({"-"});
        if (part == 'F')
            add(view.folders);
        for (const auto& [name, names] : view.groups) {
            if (part == 'G' || part == 'X')
                add({"#" + name});
            if (part == 'M' || part == 'P' || part == 'X')
                add(names);
            if (part == 'P' && names.size() % 2 != 0)
                add({"-"});
        }
    }
    return tiles;
}

const Names kFolders = {"album 2/", "album 10/", "empty/", "Zoo/"};
// Folders first, then the media of the folder, all by name.
const View kFolderByTitle = {
    "FolderByTitle",
    "CATEGORY-FOLDER-TITLE",
    "CONTENT-FOLDER",
    "show",
    nullptr,
    kFolders,
    {{"CATEGORY-FOLDER-TITLE",
      {"clip 1.mp4", "clip 2.mp4", "IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg", "news.srf", "old.jpg", "Song.mp3",
       "sport.srf", "weather.srf", "zebra.png"}}}};
// Media first, the latest day on top.
const View kFolderByDate = {"FolderByDate",
                            "CATEGORY-FOLDER-DATE",
                            "CONTENT-IMAGE",
                            "show",
                            nullptr,
                            kFolders,
                            {{"2021-05-07", {"zebra.png"}},
                             {"2021-05-06", {"IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg"}},
                             {"2020-01-02", {"old.jpg"}}}};
const View kFolderView = {"FolderView",
                          "CATEGORY-FOLDER",
                          "CONTENT-IMAGE",
                          "show",
                          nullptr,
                          kFolders,
                          {{"", {"IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg", "old.jpg", "zebra.png"}}}};
const View kRecordingsByChannel = {"RecordingsByChannel",
                                   "CATEGORY-FOLDER-CHANNEL_NAME",
                                   "CONTENT-PVR",
                                   "show",
                                   nullptr,
                                   kFolders,
                                   {{"alpha TV", {"sport.srf"}}, {"Beta TV", {"news.srf", "weather.srf"}}}};
const View kRecordingsByNumber = {"RecordingsByNumber",
                                  "CATEGORY-FOLDER-CHANNEL_NUM",
                                  "CONTENT-PVR",
                                  "show",
                                  nullptr,
                                  kFolders,
                                  {{"7-1", {"news.srf", "weather.srf"}}, {"12-1", {"sport.srf"}}}};
const View kUhd = {"Uhd",
                   "CATEGORY-UHD-FOLDER-WITHUPFOLDER",
                   "CONTENT-UHD",
                   "show",
                   nullptr,
                   kFolders,
                   {{"CATEGORY-UHD-FOLDER-WITHUPFOLDER", {"film.um4", "show.km4"}}}};
// The whole drive.
const View kPicturesByTitle = {
    "PicturesByTitle",
    "CATEGORY-TITLE",
    "CONTENT-IMAGE",
    "show",
    nullptr,
    {},
    {{"CATEGORY-TITLE", joined({{"IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg", "old.jpg"},
                                numbered("photo ", 120, ".jpg"),
                                {"zebra.png"}})}}};
const View kMusicByTitle = {"MusicByTitle",
                            "CATEGORY-TITLE",
                            "CONTENT-MUSIC",
                            "show",
                            nullptr,
                            {},
                            {{"CATEGORY-TITLE", joined({{"Song.mp3"}, numbered("track ", 80, ".mp3")})}}};
// The groups ascend while the recordings descend: the group table counts days, and the list is laid over it.
const View kRecordingsByDate = {"RecordingsByDate",
                                "CATEGORY-DATE",
                                "CONTENT-PVR",
                                "show",
                                nullptr,
                                {},
                                {{"2020-01-02", {"news.srf", "weather.srf"}}, {"2021-05-07", {"sport.srf"}}}};
// Media, then recordings, then UHD titles.
const View kKeyword = {"Keyword",
                       "CATEGORY-KEYWORD-SEARCH",
                       "CONTENT-FOLDER",
                       "show",
                       "S",
                       {},
                       {{"CATEGORY-KEYWORD-SEARCH", {"Song.mp3", "news.srf", "sport.srf", "show.km4"}}}};
// The latest first.
const View kPhotos = {"Photos",
                      "CATEGORY-MSC-PHOTO",
                      "CONTENT-IMAGE",
                      "show",
                      nullptr,
                      {},
                      {{"CATEGORY-MSC-PHOTO", joined({{"zebra.png", "IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg"},
                                                      numbered("photo ", 120, ".jpg"),
                                                      {"old.jpg"}})}}};

struct MaskRow {
    int mask;
    const char* layout;
};

// The masks of a view, each with the page that it gives. A null page is a refused mask.
const MaskRow kFoldersFirst[] = {
    {0x00, ""},      {0x02, "F"},     {0x04, "M"},     {0x06, "FM"},    {0x08, "G"},     {0x0A, "FG"},
    {0x20, "U"},     {0x22, "UF"},    {0x24, "UM"},    {0x26, "UFM"},   {0x28, "UG"},    {0x2A, "UFG"},
    {0xA6, "UFM"},   {0x36, "UFM"},   {0x40, ""},      {0x0C, nullptr}, {0x42, nullptr}, {0x44, nullptr},
    {0x48, nullptr}, {0x50, nullptr}, {0x60, nullptr}, {0xC0, nullptr}};
const MaskRow kFoldersLast[] = {{0x00, ""},   {0x02, "F"},     {0x04, "M"},     {0x06, "MF"},
                                {0x08, "G"},  {0x0A, "GF"},    {0x20, "U"},     {0x22, "UF"},
                                {0x24, "UM"}, {0x26, "UMF"},   {0x28, "UG"},    {0x2A, "UGF"},
                                {0x84, "P"},  {0xA4, "UEP"},   {0xA6, "UEPF"},  {0xA8, "UEG"},
                                {0x40, ""},   {0x0C, nullptr}, {0x44, nullptr}, {0xC0, nullptr}};
const MaskRow kFolderViewMasks[] = {{0x00, ""},  {0x02, "F"},  {0x04, "M"},     {0x06, "FM"},
                                    {0x0C, "M"}, {0x26, "FM"}, {0x0A, nullptr}, {0x44, nullptr}};
const MaskRow kLists[] = {{0x00, ""},      {0x02, ""},      {0x04, "M"},     {0x06, "M"},
                          {0x08, "G"},     {0x0C, "X"},     {0x24, "M"},     {0x2C, "X"},
                          {0x84, "M"},     {0x40, ""},      {0x0A, nullptr}, {0x42, nullptr},
                          {0x44, nullptr}, {0x48, nullptr}, {0x60, nullptr}};

template <size_t N>
std::vector<MaskRow> all(const MaskRow (&rows)[N]) {
    return {rows, rows + N};
}

struct ViewRow {
    const View* view;
    std::vector<MaskRow> masks;
};

class Browse : public testing::Test {
protected:
    BrowseTree tree_;
};

class EveryMask : public Browse, public testing::WithParamInterface<ViewRow> {};

TEST_P(EveryMask, GivesItsPage) {
    const View& view = *GetParam().view;
    OpenView open(tree_, view);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);

    for (const MaskRow& row : GetParam().masks) {
        SCOPED_TRACE(testing::Message() << "mask 0x" << std::hex << row.mask);
        if (row.layout == nullptr) {
            EXPECT_EQ(open.set_style(row.mask), QRA_ERROR_INVALID_PARAM);
            continue;
        }
        EXPECT_EQ(open.set_style(row.mask), QRA_ERROR_NONE);
        EXPECT_EQ(open.tiles(), laid_out(view, row.layout));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Browse, EveryMask,
    testing::Values(ViewRow{&kFolderByTitle, all(kFoldersFirst)}, ViewRow{&kUhd, all(kFoldersFirst)},
                    ViewRow{&kFolderByDate, all(kFoldersLast)},
                    ViewRow{&kRecordingsByChannel, all(kFoldersLast)},
                    ViewRow{&kRecordingsByNumber, all(kFoldersLast)},
                    ViewRow{&kFolderView, all(kFolderViewMasks)}, ViewRow{&kPicturesByTitle, all(kLists)},
                    ViewRow{&kMusicByTitle, all(kLists)}, ViewRow{&kRecordingsByDate, all(kLists)},
                    ViewRow{&kKeyword, all(kLists)}, ViewRow{&kPhotos, all(kLists)}),
    [](const auto& info) { return info.param.view->name; });

TEST_F(Browse, AGroupIndexShowsOneGroup) {
    OpenView open(tree_, kFolderByDate);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(open.set_style(0x04, 1), QRA_ERROR_NONE);
    EXPECT_EQ(open.tiles(), (Names{"IMG_1.jpg", "IMG_2.jpg", "IMG_10.jpg"}));
    EXPECT_EQ(open.set_style(0x08, 2), QRA_ERROR_NONE);
    EXPECT_EQ(open.tiles(), Names{"#2020-01-02"});
    EXPECT_EQ(open.set_style(0x04, 3), QRA_ERROR_NONE);
    EXPECT_EQ(open.tiles(), Names{});
}

TEST_F(Browse, AGroupHeaderTellsItsCount) {
    OpenView open(tree_, kFolderByDate);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x08), QRA_ERROR_NONE);

    const Json::Value header = open.item(1);

    EXPECT_EQ(header["DISPLAY_NAME"].asString(), "2021-05-06");
    EXPECT_EQ(header["GROUP_ITEM_COUNT"].asInt(), 3);
}

TEST_F(Browse, PagesOfAnyShapeShowTheSameTiles) {
    OpenView open(tree_, kFolderByTitle);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    for (const auto& [rows, columns] :
         std::vector<std::pair<int, int>>{{1, 1}, {1, 9}, {2, 3}, {7, 1}, {100, 100}}) {
        ASSERT_EQ(open.set_style(0x26, -1, rows, columns), QRA_ERROR_NONE);
        EXPECT_EQ(open.tiles(), laid_out(kFolderByTitle, "UFM")) << rows << " x " << columns;
    }
}

TEST_F(Browse, CountsByTypeFollowTheList) {
    OpenView open(tree_, kFolderByTitle);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x26), QRA_ERROR_NONE);

    EXPECT_EQ(open.count(), 16);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_FOLDER), 4);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_IMAGE), 5);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_VIDEO), 2);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_MUSIC), 1);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_PVR), 3);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_UHD), 0);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_PLAYLIST), 0);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_UPFOLDER), 1);
    EXPECT_EQ(open.count(QRA_MEDIA_TYPE_EMPTY), 0);
}

// Tiles.

/// The value of a field by the typed getter that belongs to the type which the text has.
Json::Value typed_value(qra_agent_handler_h handle, const std::string& field, const Json::Value& like) {
    if (like.isString()) {
        char* text = nullptr;
        qra_get_item_value_char_v2(handle, field.c_str(), &text);
        return take(text);
    }
    if (like.isBool()) {
        bool flag = false;
        qra_get_item_value_bool_v2(handle, field.c_str(), &flag);
        return flag;
    }
    unsigned long long number = 0;
    qra_get_item_value_lint_v2(handle, field.c_str(), &number);
    return Json::Value::UInt64(number);
}

class EveryTile : public Browse, public testing::WithParamInterface<const View*> {};

TEST_P(EveryTile, SaysWhatTheTypedGettersSay) {
    // These are written for the eye, or come from the recording's own file.
    const std::set<std::string> changed = {"EXPOSURE_TIME", "FNUMBER", "ISO", "CONTENT_VERSION",
                                           "INCOMPLETE_REASON"};
    OpenView open(tree_, *GetParam());
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x26), QRA_ERROR_NONE);
    int compared = 0;
    for (int i = 0; i < open.count(); ++i) {
        const Json::Value item = open.item(i);
        for (const std::string& field : item.getMemberNames()) {
            if (changed.count(field) != 0)
                continue;
            const Json::Value value = typed_value(open.handle(), field, item[field]);
            EXPECT_EQ(value.asString(), item[field].asString()) << field << " of tile " << i;
            ++compared;
        }
    }
    EXPECT_GT(compared, 0);
}

TEST_P(EveryTile, IsFoundByItsId) {
    OpenView open(tree_, *GetParam());
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x06), QRA_ERROR_NONE);
    std::set<std::string> ids;
    for (int i = 0; i < open.count(); ++i) {
        std::string id = open.item(i)["ID_QRA"].asString();
        int index = -1;
        EXPECT_EQ(qra_get_page_index_v2(open.handle(), id.data(), &index), QRA_ERROR_NONE) << id;
        EXPECT_EQ(index, i);
        ids.insert(id);
    }
    EXPECT_EQ(static_cast<int>(ids.size()), open.count());
}

INSTANTIATE_TEST_SUITE_P(Browse, EveryTile,
                         testing::Values(&kFolderByTitle, &kFolderByDate, &kRecordingsByChannel, &kUhd,
                                         &kPicturesByTitle, &kKeyword),
                         [](const auto& info) { return info.param->name; });

class Tile : public Browse {
protected:
    Json::Value show(const View& view, const std::string& name) {
        OpenView open(tree_, view);
        EXPECT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(open.set_style(0x26), QRA_ERROR_NONE);
        const Names tiles = open.tiles();
        const auto it = std::find(tiles.begin(), tiles.end(), name);
        EXPECT_NE(it, tiles.end()) << name;
        return it != tiles.end() ? open.item(static_cast<int>(it - tiles.begin())) : Json::Value();
    }
    Json::Value::UInt64 size(const std::string& relative) const {
        return std::filesystem::file_size(tree_.target(relative));
    }
};

TEST_F(Tile, OfAFolderHasNameAndPath) {
    const Json::Value item = show(kFolderByTitle, "album 2/");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_FOLDER);
    EXPECT_EQ(item["TITLE"].asString(), "album 2");
    EXPECT_EQ(item["FILE_PATH"].asString(), tree_.path("show/album 2"));
    EXPECT_GT(item["MODIFIED_TIME"].asInt(), 0);
}

TEST_F(Tile, OfAPictureHasItsExif) {
    const Json::Value item = show(kFolderByTitle, "IMG_1.jpg");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_IMAGE);
    EXPECT_EQ(item["DISPLAY_NAME"].asString(), "IMG_1.jpg");
    EXPECT_EQ(item["FILE_PATH"].asString(), tree_.path("show/IMG_1.jpg"));
    EXPECT_EQ(item["THUMBNAIL_PATH"].asString(), tree_.path("show/IMG_1.jpg"));
    EXPECT_EQ(item["FORMAT"].asString(), "jpg");
    EXPECT_EQ(item["MIME_TYPE"].asString(), "image/jpeg");
    EXPECT_EQ(item["SIZE"].asUInt64(), size("show/IMG_1.jpg"));
    EXPECT_EQ(item["MODIFIED_TIME"].asInt(), 1620302400);
    EXPECT_EQ(item["DATE_TAKEN"].asString(), "2021:05:06 10:20:30");
    EXPECT_EQ(item["EXPOSURE_TIME"].asString(), "1/60s");
    EXPECT_EQ(item["FNUMBER"].asString(), "f/2.8");
    EXPECT_EQ(item["ISO"].asString(), "ISO200");
    EXPECT_GT(item["WIDTH"].asInt(), 0);
    EXPECT_GT(item["HEIGHT"].asInt(), 0);
    EXPECT_FALSE(item["IS_360"].asBool());
}

TEST_F(Tile, OfAPictureWithoutExifHasNone) {
    const Json::Value item = show(kFolderByTitle, "zebra.png");

    EXPECT_EQ(item["FORMAT"].asString(), "png");
    EXPECT_EQ(item["EXPOSURE_TIME"].asString(), "");
    EXPECT_EQ(item["FNUMBER"].asString(), "");
    EXPECT_EQ(item["ISO"].asString(), "");
}

TEST_F(Tile, OfAVideoHasLengthAndSize) {
    const Json::Value item = show(kFolderByTitle, "clip 1.mp4");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_VIDEO);
    EXPECT_EQ(item["THUMBNAIL_PATH"].asString(),
              item["ID_QRA"].asString() + ";" + item["FILE_PATH"].asString());
    EXPECT_EQ(item["SIZE"].asUInt64(), size("show/clip 1.mp4"));
    EXPECT_GT(item["DURATION"].asUInt64(), 0u);
    EXPECT_GT(item["WIDTH"].asInt(), 0);
}

TEST_F(Tile, OfASongHasItsTags) {
    const Json::Value item = show(kFolderByTitle, "Song.mp3");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_MUSIC);
    EXPECT_FALSE(item["ARTIST"].asString().empty());
    EXPECT_FALSE(item["ALBUM"].asString().empty());
    EXPECT_GT(item["DURATION"].asUInt64(), 0u);
    EXPECT_GT(item["SAMPLERATE"].asInt(), 0);
}

TEST_F(Tile, OfARecordingHasItsInfoFile) {
    const Json::Value item = show(kRecordingsByChannel, "sport.srf");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_PVR);
    EXPECT_EQ(item["PROGRAM_TITLE"].asString(), "sport");
    EXPECT_EQ(item["CHANNEL_NAME"].asString(), "alpha TV");
    EXPECT_EQ(item["MAJOR"].asInt(), 12);
    EXPECT_EQ(item["MINOR"].asInt(), 1);
    EXPECT_EQ(item["START_TIME"].asInt(), 1577966400);
    EXPECT_EQ(item["CONTENT_VERSION"].asInt(), 2);
    EXPECT_EQ(item["INCOMPLETE_REASON"].asInt(), 3);
}

TEST_F(Tile, OfAUhdTitleHasFileAndTitle) {
    const Json::Value item = show(kUhd, "film.um4");

    EXPECT_EQ(item["MEDIA_TYPE"].asInt(), QRA_MEDIA_TYPE_UHD);
    EXPECT_EQ(item["DISPLAY_NAME"].asString(), "film.um4");
    EXPECT_EQ(item["FORMAT"].asString(), "um4");
    EXPECT_EQ(item["SIZE"].asUInt64(), size("show/film.um4"));
}

// Requests.

TEST_F(Browse, PicturesByDateAreNoView) {
    const View by_date = {"", "CATEGORY-DATE", "CONTENT-IMAGE", "show", nullptr, {}, {}};

    OpenView open(tree_, by_date);

    EXPECT_EQ(open.wait(), QRA_EVENT_LIST_FAILED);
}

TEST_F(Browse, AFolderThatIsNotThereFails) {
    const View missing = {"", "CATEGORY-FOLDER-TITLE", "CONTENT-FOLDER", "no such folder", nullptr, {}, {}};

    OpenView open(tree_, missing);

    EXPECT_EQ(open.wait(), QRA_EVENT_LIST_FAILED);
}

TEST_F(Browse, AnEmptyFolderIsAnUpFolderTile) {
    const View empty = {"", "CATEGORY-FOLDER-TITLE", "CONTENT-FOLDER", "show/empty", nullptr, {}, {}};
    OpenView open(tree_, empty);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(open.set_style(0x26), QRA_ERROR_NONE);

    EXPECT_EQ(open.tiles(), Names{".."});
}

TEST_F(Browse, SelectedItemsAreShownAlone) {
    OpenView open(tree_, kFolderByTitle);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x06), QRA_ERROR_NONE);
    for (const int index : {9, 5})
        ASSERT_EQ(qra_toggle_select_v2(open.handle(), index), QRA_ERROR_NONE);

    ASSERT_EQ(open.set_style(0x40), QRA_ERROR_NONE);

    EXPECT_EQ(open.tiles(), (Names{"clip 2.mp4", "news.srf"}));
}

TEST_F(Browse, AnItemCanBePlayedAndCounted) {
    OpenView open(tree_, kFolderByTitle);
    ASSERT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(open.set_style(0x04), QRA_ERROR_NONE);
    const std::string id = open.item(0)["ID_QRA"].asString();

    EXPECT_EQ(qra_set_item_value_int_v2(open.handle(), "PLAYED_COUNT", 3), QRA_ERROR_NONE);

    EXPECT_EQ(open.item(0)["PLAYED_COUNT"].asInt(), 3);
    int count = 0;
    EXPECT_EQ(qra_get_item_value_int_mcf(id.c_str(), "PLAYED_COUNT", &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(qra_set_item_value_int_mcf(id.c_str(), "PLAYED_COUNT", 4), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_int_mcf(id.c_str(), "PLAYED_COUNT", &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(qra_get_item_value_int_mcf("no such id", "PLAYED_COUNT", &count), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_int_mcf("no such id", "PLAYED_COUNT", 1), QRA_ERROR_INTERNAL);
    EXPECT_EQ(count, 4);
}

TEST_F(Browse, AStorageHasAnIdWithoutARequest) {
    std::string path = tree_.path("show/album 2");
    std::string outside = "/nowhere/on/a/drive";
    char* id = nullptr;

    EXPECT_EQ(qra_get_storage_id_v2(path.data(), &id), QRA_ERROR_NONE);
    const std::string text = take(id);
    EXPECT_FALSE(text.empty());

    char* none = nullptr;
    EXPECT_EQ(qra_get_storage_id_v2(outside.data(), &none), QRA_ERROR_INTERNAL);
    EXPECT_EQ(none, nullptr);
}

TEST_F(Browse, FiveHundredRoundsOfRequestAndDisconnectWithACallbackInFlight) {
    const View empty = {"", "CATEGORY-FOLDER-TITLE", "CONTENT-FOLDER", "show", nullptr, {}, {}};
    for (int i = 0; i < 500; ++i) {
        OpenView open(tree_, empty);
        if (i % 2 == 0) {
            EXPECT_EQ(open.wait(), QRA_EVENT_LIST_SUCCESS);
        }
    }
}

}  // namespace
