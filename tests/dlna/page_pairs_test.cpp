// Pages far inside a folder, which the service asks for two at a time.
#include <gmock/gmock.h>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

using testing::Each;
using testing::IsEmpty;

constexpr int kFar = 3000;
constexpr int kPage = 5;
constexpr int kPages = 5;
/// The first three of five pages are asked for by themselves, the other two together.
constexpr int kAlone = 3;
constexpr int kQuestions = kAlone + 1;

struct PagePairsTest : HomeNetworkTest {
    void start(int items = kFar + kPage * kPages) {
        server.generate("p", "image", items);
        provider = wait_for();
        ASSERT_NE(provider, nullptr);
    }
    /// Asks for pages, all before the service looks at anything else. That takes a question for the root.
    void ask(int pages = kPages) {
        nbl_item_t root = nullptr;
        int token = 0;
        ASSERT_EQ(nbl_provider_get_root_folder(provider, &root), NBL_ERROR_NONE);
        replies.clear();
        for (int page = 0; page < pages; ++page) {
            replies.push_back(std::make_unique<Reply>());
        }
        before = server.count("Browse") + 1;
        has_asked = false;
        nbl_provider_browse(provider, root, 0, 1, &PagePairsTest::on_turn, this, &token);
        nbl_item_free(root);
        ASSERT_TRUE(signal.wait([this] { return has_asked; }));
    }
    /// Asks for pages that are not answered before release().
    void ask_and_hold(int pages, int expected_questions) {
        server.set("Browse.hold", "", -1, 1);
        ask(pages);
        server.await("Browse", before + expected_questions);
    }
    void release() {
        server.clear();
        server.release();
    }
    /// Those that came for the pages.
    long questions() { return server.count("Browse") - before; }

    std::vector<int> errors() {
        std::vector<int> errors;
        for (const auto& reply : replies) {
            reply->wait();
            EXPECT_EQ(reply->answers, 1);
            errors.push_back(reply->error);
        }
        return errors;
    }
    void expect_page(int page, int size = kPage) {
        Reply& reply = *replies[static_cast<size_t>(page)];
        std::vector<std::string> ids;
        for (int i = 0; i < size; ++i) {
            ids.push_back("p-" + std::to_string(kFar + page * kPage + i));
        }
        EXPECT_EQ(reply.wait(), NBL_ERROR_NONE) << "page " << page;
        EXPECT_EQ(reply.ids(), ids) << "page " << page;
        EXPECT_EQ(reply.answers, 1) << "page " << page;
    }
    void expect_pages(int from, int to) {
        for (int page = from; page < to; ++page) {
            expect_page(page);
        }
    }
    void cancel(int page) {
        Reply& reply = *replies[static_cast<size_t>(page)];
        EXPECT_EQ(nbl_provider_cancel_async_action(reply.token), NBL_ERROR_NONE);
        EXPECT_EQ(reply.wait(), NBL_ERROR_CANCELLED);
    }

    MediaServer server;
    nbl_provider_t provider = nullptr;
    long before = 0;
    std::vector<std::unique_ptr<Reply>> replies;  // Their ends wait for the answers.

private:
    static void on_turn(nbl_device_t, nbl_response*, int, void* self) {
        auto* test = static_cast<PagePairsTest*>(self);
        int start = kFar;
        for (const auto& reply : test->replies) {
            test->browse(test->provider, "p", start, kPage, *reply);
            start += kPage;
        }
        test->signal.change([test] { test->has_asked = true; });
    }

    Signal signal;
    bool has_asked = false;
};

TEST_F(PagePairsTest, AreOneQuestionWhereOthersAreUnderWay) {
    start();
    ask();

    expect_pages(0, kPages);
    EXPECT_EQ(replies.back()->total, kFar + kPage * kPages);
    EXPECT_EQ(questions(), kQuestions);
}

TEST_F(PagePairsTest, EndWhereTheFolderEnds) {
    start(kFar + kPage * kPages - 3);
    ask();

    expect_pages(0, kPages - 1);
    expect_page(kPages - 1, kPage - 3);
    EXPECT_EQ(questions(), kQuestions);
}

TEST_F(PagePairsTest, AreNotMadeNearTheBeginningOfAFolder) {
    start();
    for (int page = 0; page < kPages; ++page) {
        replies.push_back(std::make_unique<Reply>());
        browse(provider, "p", page * kPage, kPage, *replies.back());
    }

    EXPECT_THAT(errors(), Each(NBL_ERROR_NONE));
    EXPECT_EQ(questions(), kPages);
}

TEST_F(PagePairsTest, AreNotMadeOfAServerThatIsSlowToAnswerRatherThanBusy) {
    start();
    // As many as it takes to tell, all under way at once: a pause of this machine between their answers must
    // not look like a busy server.
    server.set("Browse.delay", "2000");
    constexpr int kNear = 5;
    {
        Reply near[kNear];
        for (int page = 0; page < kNear; ++page) {
            browse(provider, "p", page * kPage, kPage, near[page]);
        }
    }
    server.clear();
    ask();

    expect_pages(0, kPages);
    EXPECT_EQ(questions(), kPages);
}

TEST_F(PagePairsTest, DoNotHoldUpAPageThatHasNoNeighbour) {
    start();
    ask_and_hold(kAlone + 1, kAlone);
    release();

    expect_pages(0, kAlone + 1);
    EXPECT_EQ(questions(), kAlone + 1);
}

TEST_F(PagePairsTest, DoNotHoldUpAPageWhileOthersAreNotAnswered) {
    start();
    ask_and_hold(kAlone + 1, kAlone + 1);
    release();

    expect_pages(0, kAlone + 1);
}

TEST_F(PagePairsTest, AreAskedForOneByOneWhereAServerGivesFewer) {
    start();
    server.set("Browse.at-most", "7");
    ask();
    expect_pages(0, kPages);
    EXPECT_EQ(questions(), kQuestions + 2);

    // It is not tried again.
    server.clear();
    ask();
    expect_pages(0, kPages);
    EXPECT_EQ(questions(), kPages);
}

TEST_F(PagePairsTest, AreAskedForOneByOneWhereTheAnswerIsBroken) {
    start();
    server.set("Browse.broken-didl");
    ask();

    expect_pages(0, kPages);
    EXPECT_EQ(questions(), kQuestions + 2);
}

TEST_F(PagePairsTest, GiveNothingWhereTheServerGivesTheFirstPageAgain) {
    start();
    server.set("Browse.same-page");
    Reply first;
    browse(provider, "p", 0, kPage, first);
    first.wait();
    ask();

    EXPECT_THAT(errors(), Each(NBL_ERROR_NONE));
    for (const auto& reply : replies) {
        EXPECT_THAT(reply->items, IsEmpty());
    }
    EXPECT_EQ(questions(), kQuestions + 2);
}

/// A misbehaviour, and the error that both pages are answered with.
struct Failure {
    const char* fault;
    const char* value;
    int error;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.fault << " " << failure.value;
}

struct PagePairsFailureTest : PagePairsTest, testing::WithParamInterface<Failure> {};

TEST_P(PagePairsFailureTest, AnswerEachPageWithTheError) {
    start();
    server.set(std::string("Browse.") + GetParam().fault, GetParam().value);
    ask();
    EXPECT_THAT(errors(), Each(GetParam().error));

    server.clear();
    ask();
    expect_pages(0, kPages);
}

INSTANTIATE_TEST_SUITE_P(Faults, PagePairsFailureTest,
                         testing::Values(Failure{"error", "701", NBL_ERROR_ITEM_NOT_EXIST},
                                         Failure{"broken-soap", "", NBL_ERROR_BAD_ANSWER},
                                         Failure{"cut", "", NBL_ERROR_NETWORK}));

TEST_F(PagePairsTest, AnswerOnePageWhereTheOtherIsCancelled) {
    for (const int cancelled : {kAlone, kAlone + 1}) {
        if (provider == nullptr) {
            start();
        }
        ask_and_hold(kPages, kQuestions);
        cancel(cancelled);
        release();
        expect_page(cancelled == kAlone ? kAlone + 1 : kAlone);
        expect_pages(0, kAlone);
    }
}

TEST_F(PagePairsTest, EndWithBothOfTheirPages) {
    start();
    ask_and_hold(kPages, kQuestions);
    cancel(kAlone);
    cancel(kAlone + 1);
    release();

    expect_pages(0, kAlone);
    EXPECT_EQ(questions(), kQuestions);
}

TEST_F(PagePairsTest, AreNotMadeOfAPageThatIsCancelledWhileItWaits) {
    start();
    ask_and_hold(kAlone + 1, kAlone);
    cancel(kAlone);
    release();

    expect_pages(0, kAlone);
}

TEST_F(PagePairsTest, EndWithTheService) {
    start();
    ask_and_hold(kPages, kQuestions);
    disconnect();

    EXPECT_THAT(errors(), Each(NBL_ERROR_NOT_CONNECTED));
}

}  // namespace
