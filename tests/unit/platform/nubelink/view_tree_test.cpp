#include "platform/nubelink/host/view_tree.h"

#include <gmock/gmock.h>

namespace {

using nbl::ItemBuilder;
using nbl::ItemPtr;
using nbl::ViewTree;
using testing::ElementsAre;
using testing::IsEmpty;

using Values = std::vector<std::pair<std::string, std::string>>;

ItemPtr item(int type, const std::string& id, const Values& values) {
    ItemBuilder builder;
    builder.add("@id", id);
    for (const auto& [name, value] : values) {
        builder.add(name, value);
    }
    return builder.build(type);
}

ItemPtr picture(const std::string& title, const std::string& date = "") {
    return item(NBL_ITEM_TYPE_IMAGE, title, {{"dc:title", title}, {"dc:date", date}});
}

ItemPtr song(const std::string& title, const Values& values) {
    Values all = values;
    all.emplace_back("dc:title", title);
    return item(NBL_ITEM_TYPE_MUSIC, title, all);
}

template <typename... Items>
ViewTree tree(const char* id, Items... items) {
    std::vector<ItemPtr> all;
    (all.push_back(std::move(items)), ...);
    return ViewTree(*nbl::view_of(id), all);
}

std::vector<std::string> groups_of(const ViewTree& tree, const std::string& id) {
    std::vector<std::string> titles;
    if (const ViewTree::Node* node = tree.find(id)) {
        for (const auto& group : node->groups) {
            titles.push_back(group->title);
        }
    }
    return titles;
}

std::vector<std::string> items_of(const ViewTree& tree, const std::string& id) {
    std::vector<std::string> titles;
    if (const ViewTree::Node* node = tree.find(id)) {
        for (nbl_item_t one : node->items) {
            titles.emplace_back(one->text("dc:title"));
        }
    }
    return titles;
}

TEST(ViewOf, KnowsTheContainersOfAViewByTheirIds) {
    EXPECT_EQ(nbl::view_of("I_N")->item_type, NBL_ITEM_TYPE_IMAGE);
    EXPECT_EQ(nbl::view_of("A_A/pink")->item_type, NBL_ITEM_TYPE_MUSIC);
    EXPECT_EQ(nbl::view_of("V_L/2020/01")->id, "V_L");
    EXPECT_EQ(nbl::view_of("I_NN"), nullptr);
    EXPECT_EQ(nbl::view_of("0"), nullptr);
    EXPECT_EQ(nbl::view_of(""), nullptr);
    EXPECT_EQ(nbl::all_views().size(), 8U);
}

TEST(ViewTree, PutsTitlesBelowTheirFirstLetterAndTheirFirstTwo) {
    const ViewTree view = tree("I_N", picture("beach"), picture("Alps"), picture("apple"), picture("Bear"),
                               picture("BEE"), picture("b"));

    EXPECT_THAT(groups_of(view, "I_N"), ElementsAre("A", "B"));
    EXPECT_THAT(groups_of(view, "I_N/a"), ElementsAre("Al", "Ap"));
    EXPECT_THAT(groups_of(view, "I_N/b"), ElementsAre("B", "Be"));
    EXPECT_THAT(items_of(view, "I_N/b/be"), ElementsAre("beach", "Bear", "BEE"));
    EXPECT_THAT(items_of(view, "I_N/b/b"), ElementsAre("b"));
}

TEST(ViewTree, TakesLettersOfAnyScript) {
    const ViewTree view =
        tree("I_N", picture("\xC3\xA4hre"), picture("\xC3\x84pfel"), picture("\xE6\xB5\xB7"));

    EXPECT_THAT(groups_of(view, "I_N"), ElementsAre("\xC3\x84", "\xE6\xB5\xB7"));
    EXPECT_THAT(groups_of(view, "I_N/\xC3\xA4"), ElementsAre("\xC3\x84h", "\xC3\x84p"));
}

TEST(ViewTree, PutsDatesBelowTheirYearAndMonth) {
    const ViewTree view =
        tree("I_L", picture("c", "2021-05-06"), picture("a", "2021-05-07T10:00:00"),
             picture("b", "2019-12-01"), picture("d"), picture("e", "2021"), picture("f", "MMXX-01-01"));

    EXPECT_THAT(groups_of(view, "I_L"), ElementsAre("2019", "2021", "Unknown"));
    EXPECT_THAT(groups_of(view, "I_L/2021"), ElementsAre("05", "Unknown"));
    EXPECT_THAT(items_of(view, "I_L/2021/05"), ElementsAre("c", "a"));
    EXPECT_THAT(items_of(view, "I_L/2021/unknown"), ElementsAre("e"));
    EXPECT_THAT(groups_of(view, "I_L/unknown"), ElementsAre("01", "Unknown"));
}

TEST(ViewTree, PutsTracksBelowTheirFirstLetterAlone) {
    const ViewTree view = tree("A_M", song("two", {}), song("One", {}), song("three", {}));

    EXPECT_THAT(groups_of(view, "A_M"), ElementsAre("O", "T"));
    EXPECT_THAT(items_of(view, "A_M/t"), ElementsAre("three", "two"));
}

TEST(ViewTree, PutsMusicBelowItsArtistInTheOrderOfTheAlbums) {
    const auto of = [](const char* artist, const char* album, const char* track) {
        return Values{{"upnp:artist", artist}, {"upnp:album", album}, {"upnp:originalTrackNumber", track}};
    };
    const ViewTree view =
        tree("A_A", song("z", of("AC/DC", "Second", "1")), song("y", of("ac/dc", "First", "10")),
             song("x", of("AC/DC", "First", "9")), song("w", {}));

    EXPECT_THAT(groups_of(view, "A_A"), ElementsAre("AC/DC", "Unknown"));
    EXPECT_THAT(items_of(view, "A_A/ac/dc"), ElementsAre("x", "y", "z"));
}

TEST(ViewTree, PutsMusicBelowItsAlbumInTheOrderOfTheTracksAndBelowItsGenre) {
    const auto of = [](const char* track) {
        return Values{{"upnp:album", "Album"}, {"upnp:genre", "Jazz"}, {"upnp:originalTrackNumber", track}};
    };
    const auto songs = [&] { return tree("A_L", song("a", of("2")), song("b", of("1"))); };

    EXPECT_THAT(items_of(songs(), "A_L/album"), ElementsAre("b", "a"));
    const ViewTree genres = tree("A_G", song("b", of("1")), song("a", of("2")));
    EXPECT_THAT(items_of(genres, "A_G/jazz"), ElementsAre("a", "b"));
}

TEST(ViewTree, LeavesItemsOfOtherTypesOut) {
    const ViewTree view = tree("V_T", picture("a"), song("b", {}));

    ASSERT_NE(view.find("V_T"), nullptr);
    EXPECT_EQ(view.find("V_T")->size(), 0U);
    EXPECT_THAT(groups_of(view, "V_T"), IsEmpty());
    EXPECT_EQ(view.find("V_T/a"), nullptr);
}

TEST(ViewTree, KeepsTheLettersOfALevelFewAndLosesNoItem) {
    std::vector<ItemPtr> items;
    constexpr char32_t kFirstIdeograph = 0x4E00;
    constexpr size_t kCount = 500;
    for (size_t i = 0; i < kCount; ++i) {
        const char32_t c = kFirstIdeograph + static_cast<char32_t>(i);
        items.push_back(picture({static_cast<char>(0xE0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 0x3F)),
                                 static_cast<char>(0x80 | (c & 0x3F))}));
    }
    const ViewTree view(*nbl::view_of("I_N"), items);

    const ViewTree::Node* top = view.find("I_N");
    ASSERT_EQ(top->groups.size(), ViewTree::kMostLetters);
    EXPECT_EQ(top->groups.back()->title, "#");
    size_t held = 0;
    for (const auto& letter : top->groups) {
        EXPECT_LE(letter->groups.size(), ViewTree::kMostLetters);
        for (const auto& letters : letter->groups) {
            held += letters->items.size();
        }
    }
    EXPECT_EQ(held, kCount);
}

TEST(ViewTree, ShowsANodeAsAContainerOfTheServer) {
    const ViewTree view = tree("I_N", picture("beach"), picture("Bear"), picture("boat"));

    const ItemPtr shown = ViewTree::item_of(*view.find("I_N/b"), nullptr);

    EXPECT_EQ(shown->type(), NBL_ITEM_TYPE_FOLDER);
    EXPECT_EQ(shown->text("@id"), "I_N/b");
    EXPECT_EQ(shown->text("dc:title"), "B");
    EXPECT_EQ(shown->text("@parentID"), "I_N");
    EXPECT_EQ(shown->text("@childCount"), "2");
}

TEST(ViewTree, KeepsItsItemsAliveBeyondTheListTheyCameIn) {
    auto items = std::make_unique<std::vector<ItemPtr>>();
    items->push_back(picture("beach"));
    const ViewTree view(*nbl::view_of("I_N"), *items);
    items.reset();

    EXPECT_THAT(items_of(view, "I_N/b/be"), ElementsAre("beach"));
}

}  // namespace
