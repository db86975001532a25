// Browsing and searching a server that misbehaves in every way that the test knows.
#include <gmock/gmock.h>

#include <set>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr int kImages = 30;

struct BrowseTest : HomeNetworkTest {
    void start(const std::vector<std::string>& options = {}) {
        server = std::make_unique<MediaServer>(options);
        server->generate("p", "image", kImages);
        provider = wait_for();
        ASSERT_NE(provider, nullptr);
    }
    /// Children of the folder of pictures; the answer is awaited.
    void browse_pictures(Reply& reply, int start = 0, int count = 200) {
        browse(provider, "p", start, count, reply);
        reply.wait();
    }
    static std::vector<std::string> ids_from(int start, int end) {
        std::vector<std::string> ids;
        for (int i = start; i < end; ++i) {
            ids.push_back("p-" + std::to_string(i));
        }
        return ids;
    }

    std::unique_ptr<MediaServer> server;
    nbl_provider_t provider = nullptr;
};

TEST_F(BrowseTest, GivesTheChildrenOfAFolderInTheirOrder) {
    start();
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_TRUE(reply.had_device);
    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
    EXPECT_EQ(reply.total, kImages);
    EXPECT_EQ(reply.answers, 1);
    ASSERT_FALSE(reply.items.empty());
    EXPECT_EQ(reply.items[0].title(), "Aa 00000");
    EXPECT_EQ(reply.items[0].text(nbl_item_get_date), "2015-01-01");
    EXPECT_EQ(reply.items[0].text(nbl_item_get_resolution), "640x480");
    EXPECT_EQ(reply.items[0].uri(), server->url("/res/p-0"));
}

TEST_F(BrowseTest, GivesAPartOfAFolderAndNothingBeyondItsEnd) {
    start();
    Reply middle;
    Reply end;
    Reply beyond;
    browse_pictures(middle, 10, 5);
    browse_pictures(end, 28, 5);
    browse_pictures(beyond, 1000, 5);

    EXPECT_EQ(middle.ids(), ids_from(10, 15));
    EXPECT_EQ(end.ids(), ids_from(28, 30));
    EXPECT_EQ(beyond.error, NBL_ERROR_NONE);
    EXPECT_THAT(beyond.items, IsEmpty());
}

TEST_F(BrowseTest, AsksOnWhereTheServerGivesFewerThanItWasAskedFor) {
    start();
    server->set("Browse.at-most", "7");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
}

TEST_F(BrowseTest, EndsWhereTheServerGivesNoneWithMoreToCome) {
    start();
    server->set("Browse.at-most", "10");
    server->set("Browse.none-from", "10");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, 10));
    EXPECT_LE(server->count("Browse"), 4);
}

TEST_F(BrowseTest, GivesAllWhereTheServerSaysThatThereAreNone) {
    start();
    server->set("Browse.at-most", "10");
    server->set("Browse.total", "0");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
}

TEST_F(BrowseTest, CountsTheChildrenOfAFolderWhereTheServerDoesNot) {
    start();
    server->generate("one", "image", 1);
    server->set("Browse.child-count", "0");
    server->set("Browse.total", "0");

    EXPECT_EQ(item_of(provider, "one").number(nbl_item_get_child_count), 1);
    EXPECT_EQ(server->count("Browse"), 3);
    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), kImages);
    EXPECT_LE(server->count("Browse") - 3, 2 + 10);
}

TEST_F(BrowseTest, LooksForMoreChildrenThanTheServerSays) {
    start();
    server->generate("many", "image", 450);
    server->set("Browse.child-count", "7");
    for (const char* total : {"0", "8"}) {
        server->set("Browse.total", total);
        const long before = server->count("Browse");

        EXPECT_EQ(item_of(provider, "many").number(nbl_item_get_child_count), 450) << total;
        EXPECT_LE(server->count("Browse") - before, 2 + 16) << total;
    }
}

TEST_F(BrowseTest, DoesNotTakeTheSizeOfAPageForTheWhole) {
    start();
    for (const char* action : {"Browse.", "Search."}) {
        server->set(std::string(action) + "total-of-page");
        server->set(std::string(action) + "child-count", "0");
    }
    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), kImages);
    Reply found;
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 10, found);
    EXPECT_EQ(found.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(found.ids(), ids_from(0, kImages));
    EXPECT_EQ(server->count("Search"), 4);
}

TEST_F(BrowseTest, AsksOnBehindAShortPageWhoseSizeIsGivenAsTheTotal) {
    start();
    for (const char* action : {"Browse.", "Search."}) {
        server->set(std::string(action) + "at-most", "7");
        server->set(std::string(action) + "total-of-page");
    }
    Reply children;
    Reply found;
    browse_pictures(children);
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, found);

    EXPECT_EQ(children.error, NBL_ERROR_NONE);
    EXPECT_EQ(children.ids(), ids_from(0, kImages));
    EXPECT_EQ(found.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(found.ids(), ids_from(0, kImages));
}

TEST_F(BrowseTest, ListsAllOfAFolderWhoseRecordAloneTellsItsCount) {
    start();
    server->set("Browse.at-most", "7");
    server->set("Browse.total-of-page");
    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), kImages);
    Reply children;
    browse_pictures(children);

    EXPECT_EQ(children.ids(), ids_from(0, kImages));
}

TEST_F(BrowseTest, AsksOnceMoreBehindATotalOnlyUntilTheServerHasToldALargerOne) {
    start();
    for (const long questions : {2, 1, 1}) {
        const long before = server->count("Search");
        Reply found;
        search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, found);

        EXPECT_EQ(found.wait(), NBL_ERROR_NONE);
        EXPECT_EQ(found.ids(), ids_from(0, kImages));
        EXPECT_EQ(server->count("Search") - before, questions);
    }
}

TEST_F(BrowseTest, AsksNoMoreBehindATotalThatTheFolderIsKnownToHave) {
    start();
    server->generate("one", "image", 1);
    ASSERT_EQ(item_of(provider, "one").number(nbl_item_get_child_count), 1);
    const long before = server->count("Browse");
    Reply children;
    browse(provider, "one", 0, 200, children);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(1));
    EXPECT_EQ(server->count("Browse") - before, 1);
}

TEST_F(BrowseTest, AsksNoMoreBehindATotalThatTheFoldersRecordTells) {
    start();
    Reply top;
    browse(provider, "0", 0, 200, top);
    ASSERT_EQ(top.wait(), NBL_ERROR_NONE);
    const auto folder =
        std::find_if(top.items.begin(), top.items.end(), [](const Item& item) { return item.id() == "p"; });
    ASSERT_NE(folder, top.items.end());
    const long before = server->count("Browse");
    Reply children;
    EXPECT_EQ(
        nbl_provider_browse(provider, folder->get(), 0, 200, &Reply::on_items, &children, &children.token),
        NBL_ERROR_NONE);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(kImages));
    EXPECT_EQ(server->count("Browse") - before, 1);
}

TEST_F(BrowseTest, TakesAnErrorBehindATotalForTheEnd) {
    start();
    server->generate("uncounted", "image", 3);
    server->set("Browse.error", "402", -1, 1);
    Reply children;
    browse(provider, "uncounted", 0, 200, children);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(3));
    EXPECT_EQ(server->count("Browse"), 2);
}

TEST_F(BrowseTest, BelievesACountWithNothingBehindIt) {
    start();
    server->set("Browse.child-count", "40");
    server->set("Browse.total", "0");

    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), 40);
    EXPECT_EQ(server->count("Browse"), 3);
}

TEST_F(BrowseTest, BelievesTheCountOfAServerThatGivesTheSameChildForAnyPlace) {
    start();
    server->set("Browse.child-count", "7");
    server->set("Browse.total", "0");
    server->set("Browse.same-page");

    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), 7);
    EXPECT_EQ(server->count("Browse"), 3);
}

TEST_F(BrowseTest, CountsNoMoreThanAMillionOfAServerThatNeverEnds) {
    start();
    server->set("Browse.child-count", "7");
    server->set("Browse.total", "0");
    server->set("Browse.invent", "2000000000");

    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), 1'000'000);
    EXPECT_LE(server->count("Browse"), 2 + 20);
}

TEST_F(BrowseTest, CountsWhatThereMayBeWhereTheServerStopsAnsweringMeanwhile) {
    start();
    server->set("Browse.child-count", "7");
    server->set("Browse.total", "0");
    server->set("Browse.cut", "", -1, 3);

    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), 1'000'000);
}

TEST_F(BrowseTest, CountsToWhereTheServerAnswersWithAnError) {
    start();
    server->set("Browse.child-count", "7");
    server->set("Browse.total", "0");
    server->set("Browse.error", "402", -1, 3);

    // The first question behind what is said is answered, those after it are not.
    EXPECT_EQ(item_of(provider, "p").number(nbl_item_get_child_count), 8);
}

TEST_F(BrowseTest, GivesWhatThereIsWhereTheTotalGrowsWithEachAnswer) {
    start();
    server->set("Browse.at-most", "10");
    server->set("Browse.grow", "1000");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
    EXPECT_LE(server->count("Browse"), 8);
}

TEST_F(BrowseTest, GivesWhatComesWhereTheTotalShrinksWithEachAnswer) {
    start();
    server->set("Browse.at-most", "10");
    server->set("Browse.shrink", "8");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
    EXPECT_LE(server->count("Browse"), 8);
}

TEST_F(BrowseTest, EndsWhereTheServerGivesTheSamePageAgain) {
    start();
    server->set("Browse.at-most", "10");
    server->set("Browse.same-page");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, 10));
    EXPECT_LE(server->count("Browse"), 4);
}

TEST_F(BrowseTest, GivesNothingForALaterPageThatIsTheFirstOneAgain) {
    start();
    server->set("Browse.same-page");
    Reply first;
    Reply second;
    browse_pictures(first, 0, 10);
    browse_pictures(second, 10, 10);

    EXPECT_EQ(first.ids(), ids_from(0, 10));
    EXPECT_EQ(second.error, NBL_ERROR_NONE);
    EXPECT_THAT(second.items, IsEmpty());
}

TEST_F(BrowseTest, ListsItemsOfOneIdAllTheSame) {
    start();
    server->set("Browse.duplicate-ids");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_THAT(reply.items, SizeIs(kImages));
    EXPECT_EQ(reply.items.back().id(), "p-0");
}

TEST_F(BrowseTest, ListsAFolderThatHoldsItself) {
    start();
    server->tell({"tree", "t", "2", "2"});
    server->tell({"cycle", "t"});
    Reply reply;
    browse(provider, "t", 0, 200, reply);
    reply.wait();

    EXPECT_THAT(reply.ids(), ElementsAre("t-item", "t.0", "t.1", "t", "0"));
    Reply again;
    browse(provider, "t", 0, 200, again);
    again.wait();
    EXPECT_EQ(again.ids(), reply.ids());
}

TEST_F(BrowseTest, WaitsForALateAnswer) {
    start();
    server->set("Browse.hold");
    Reply reply;
    browse(provider, "p", 0, 200, reply);
    server->await("Browse", 1);
    EXPECT_FALSE(reply.has_ended());
    server->release();

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(reply.items, SizeIs(kImages));
}

TEST_F(BrowseTest, AnswersARequestThatAnEarlierOneOvertook) {
    start();
    server->set("Browse.hold", "", 1);
    Reply held;
    Reply quick;
    browse(provider, "p", 0, 5, held);
    server->await("Browse", 1);
    browse_pictures(quick, 5, 5);
    EXPECT_FALSE(held.has_ended());
    server->release();

    EXPECT_EQ(held.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(held.ids(), ids_from(0, 5));
    EXPECT_EQ(quick.ids(), ids_from(5, 10));
}

TEST_F(BrowseTest, AnswersManyRequestsEachWithItsOwnPart) {
    start();
    constexpr int kRequests = 30;
    std::vector<std::unique_ptr<Reply>> replies;
    for (int i = 0; i < kRequests; ++i) {
        replies.push_back(std::make_unique<Reply>());
        browse(provider, "p", i, 1, *replies.back());
    }
    for (int i = 0; i < kRequests; ++i) {
        EXPECT_EQ(replies[static_cast<size_t>(i)]->wait(), NBL_ERROR_NONE);
        EXPECT_EQ(replies[static_cast<size_t>(i)]->ids(), ids_from(i, i + 1));
    }
}

/// A misbehaviour, and the error that a request is answered with.
struct Failure {
    const char* fault;
    const char* value;
    int error;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.fault << " " << failure.value;
}

struct BrowseFailureTest : BrowseTest, testing::WithParamInterface<Failure> {};

TEST_P(BrowseFailureTest, EndsEachKindOfRequestWithAnErrorAndNothingElse) {
    start();
    for (const char* action : {"Browse.", "Search."}) {
        server->set(std::string(action) + GetParam().fault, GetParam().value);
    }
    Reply children;
    Reply item;
    Reply found;
    browse_pictures(children);
    browse_item(provider, "p-0", item);
    search(provider, "Aa", {NBL_ITEM_TYPE_IMAGE}, 200, found);

    for (Reply* reply : {&children, &item, &found}) {
        EXPECT_EQ(reply->wait(), GetParam().error);
        EXPECT_EQ(reply->answers, 1);
        EXPECT_THAT(reply->items, IsEmpty());
    }
    // The server is as it was for whoever asks properly.
    server->clear();
    Reply after;
    browse_pictures(after);
    EXPECT_THAT(after.items, SizeIs(kImages));
}

INSTANTIATE_TEST_SUITE_P(Faults, BrowseFailureTest,
                         testing::Values(Failure{"error", "401", NBL_ERROR_NOT_SUPPORTED},
                                         Failure{"error", "501", NBL_ERROR_NOT_SUPPORTED},
                                         Failure{"error", "709", NBL_ERROR_REFUSED},
                                         Failure{"error", "701", NBL_ERROR_ITEM_NOT_EXIST},
                                         Failure{"cut", "", NBL_ERROR_NETWORK},
                                         Failure{"endless", "", NBL_ERROR_BAD_ANSWER},
                                         Failure{"broken-soap", "", NBL_ERROR_BAD_ANSWER},
                                         Failure{"status", "404", NBL_ERROR_REFUSED}));

TEST_F(BrowseTest, EndsWhereTheAnswersAreLargerThanTheirObjectsCanBe) {
    start();
    server->set("Browse.at-most", "1");
    server->set("Browse.padded", "5000000");
    Reply reply;
    browse_pictures(reply, 0, 20);

    EXPECT_EQ(reply.error, NBL_ERROR_BAD_ANSWER);
    EXPECT_LE(server->count("Browse"), 3);
}

/// A service that may hold a megabyte of items.
struct BrowseMemoryTest : BrowseTest {
    BrowseMemoryTest() { setenv("QRA_DLNA_MEMORY", "1", 1); }
    ~BrowseMemoryTest() override { unsetenv("QRA_DLNA_MEMORY"); }
};

TEST_F(BrowseMemoryTest, ReadsNoMoreWhileTheItemsThatAreHeldTakeTooMuch) {
    start();
    server->set("Search.invent", "100000");
    server->set("Search.fat", "10000");
    {
        Reply flood;
        search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 20, flood);
        EXPECT_EQ(flood.wait(), NBL_ERROR_OUT_OF_MEMORY);
        EXPECT_GT(flood.items.size(), 80U);
        EXPECT_LE(flood.items.size(), 140U);
        Reply more;
        browse_pictures(more);
        EXPECT_EQ(more.error, NBL_ERROR_OUT_OF_MEMORY);
    }
    Reply after;
    browse_pictures(after);
    EXPECT_EQ(after.error, NBL_ERROR_NONE);
    EXPECT_THAT(after.items, SizeIs(kImages));
}

TEST_F(BrowseMemoryTest, GivesItemsOfViewsBackForOthers) {
    start();
    server->set("Search.invent", "150");
    server->set("Search.fat", "10000");
    Reply view;
    browse(provider, "I_N", 0, 200, view);
    EXPECT_EQ(view.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(view.items, Not(IsEmpty()));
    Reply children;
    browse_pictures(children);
    EXPECT_EQ(children.error, NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(kImages));
}

TEST_F(BrowseTest, FollowsNoRedirectOfAnAction) {
    start();
    MediaServer other({"--id=uuid:other"});
    server->set("Browse.redirect", other.url("/ContentDirectory/control"));
    Reply reply;
    browse_pictures(reply);

    EXPECT_NE(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(other.count("Browse"), 0);
}

TEST_F(BrowseTest, TellsThatAnObjectIsNotThere) {
    start();
    Reply children;
    Reply item;
    browse(provider, "nothing", 0, 200, children);
    browse_item(provider, "nothing", item);

    EXPECT_EQ(children.wait(), NBL_ERROR_ITEM_NOT_EXIST);
    EXPECT_EQ(item.wait(), NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(BrowseTest, TakesAnEmptyDocumentForAnEmptyFolder) {
    start();
    server->set("Browse.empty-didl");
    server->set("Browse.total", "0");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_THAT(reply.items, IsEmpty());
}

TEST_F(BrowseTest, ListsAnItemWhoseTitleIsNoUtf8AndItsNeighbours) {
    start();
    server->set("Browse.not-utf8", "1");
    Reply reply;
    browse_pictures(reply);

    ASSERT_EQ(reply.ids(), ids_from(0, kImages));
    EXPECT_EQ(reply.items[0].title(), "Aa 00000");
    EXPECT_EQ(reply.items[1].title(), "caf\xEF\xBF\xBD au lait");
    EXPECT_EQ(reply.items[2].title(), "Ba 00002");
}

TEST_F(BrowseTest, ListsWhatCanBeUnderstoodOfABrokenDocument) {
    start();
    server->set("Browse.broken-didl");
    Reply reply;
    browse_pictures(reply);

    EXPECT_EQ(reply.error, NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, kImages));
}

TEST_F(BrowseTest, CountsTheChildrenOfAFolder) {
    start();
    Reply reply;
    browse_item(provider, "p", reply);

    ASSERT_EQ(reply.wait(), NBL_ERROR_NONE);
    ASSERT_THAT(reply.items, SizeIs(1));
    EXPECT_EQ(reply.items[0].number(nbl_item_get_type), NBL_ITEM_TYPE_FOLDER);
    EXPECT_EQ(reply.items[0].number(nbl_item_get_child_count), kImages);
}

TEST_F(BrowseTest, SearchesForTypesAndAKeywordInPages) {
    start();
    server->generate("m", "music", 20);
    Reply all;
    Reply images;
    Reply keyword;
    search(provider, "", {NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_MUSIC, NBL_ITEM_TYPE_VIDEO}, 8, all);
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, images);
    search(provider, "00001", {NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_MUSIC}, 200, keyword);

    EXPECT_EQ(all.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(all.items, SizeIs(kImages + 20));
    EXPECT_GT(all.answers, 1);
    EXPECT_EQ(images.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(images.items, SizeIs(kImages));
    EXPECT_EQ(keyword.wait(), NBL_ERROR_NONE);
    const std::vector<std::string> found = keyword.ids();
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), (std::set<std::string>{"m-1", "p-1"}));
}

TEST_F(BrowseTest, TakesAKeywordForTextWhateverIsInIt) {
    start();
    server->tell({"change", "p-3", "title", "a \"quoted\" \\ title"});
    Reply reply;
    search(provider, "\"quoted\" \\", {NBL_ITEM_TYPE_IMAGE}, 200, reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(reply.ids(), ElementsAre("p-3"));
}

TEST_F(BrowseTest, EndsASearchThatTheServerLeadsInACircle) {
    start();
    server->set("Search.at-most", "10");
    server->set("Search.same-page");
    Reply reply;
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(reply.ids(), ids_from(0, 10));
    EXPECT_LE(server->count("Search"), 4);
}

TEST_F(BrowseTest, TellsThatAServerCannotSearch) {
    start({"--no-search"});
    Reply reply;
    search(provider, "x", {NBL_ITEM_TYPE_IMAGE}, 200, reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NOT_SUPPORTED);
}

}  // namespace
