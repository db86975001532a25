// Which of the two answers of a large WebDAV folder is read when: the full one, that tells the items, and the
// lean one, that tells how many come.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/plugins/webdav/webdav_plugin.h"
#include "tests/fakes/plugin_answers.h"
#include "tests/fakes/web_server.h"
#include "tests/fakes/webdav_answers.h"

using testing::HasSubstr;

namespace {

constexpr size_t kPictures = 4000;
constexpr size_t kFirstPart = 1000;
constexpr size_t kSection = 200;

/// A server that is asked for a folder of many pictures. The handlers decide on the two answers.
class Counting : public testing::Test {
protected:
    using Handler = std::function<void(SoupServerMessage* message)>;

    Counting() {
        server_.on("/dav/", [this](SoupServerMessage* message) {
            if (is_lean(message)) {
                ++lean_questions_;
                answer_lean_(message);
            } else {
                answer_full_(message);
            }
        });
    }

    static bool is_lean(SoupServerMessage* message) {
        const SoupMessageBody* body = soup_server_message_get_request_body(message);
        const std::string_view question(body->data, static_cast<size_t>(body->length));
        return question.find("getlastmodified") == std::string_view::npos;
    }
    static Handler reply_with(const std::string& body) {
        return [body](SoupServerMessage* message) { reply(message, 207, body); };
    }
    /// Keeps the message, which has been answered up to here.
    static void keep_for_later(std::vector<SoupServerMessage*>& kept, SoupServerMessage* message,
                               const std::string& body) {
        fall_silent(message, 207, body);
        kept.push_back(message);
    }
    /// Runs the main context until neither the server nor the plug-in has anything that it could go on with.
    static void run_until_idle() {
        bool idle = false;
        g_idle_add_full(
            G_PRIORITY_LOW,
            [](void* flag) -> gboolean {
                *static_cast<bool*>(flag) = true;
                return G_SOURCE_REMOVE;
            },
            &idle, nullptr);
        ASSERT_TRUE(run_until([&idle] { return idle; }));
    }

    const std::string all_ = answer_of(pictures(0, kPictures));
    Handler answer_full_ = reply_with(all_);
    Handler answer_lean_ = reply_with(all_);
    size_t lean_questions_ = 0;
    WebServer server_;
    const OpenAccount account_{engine::make_webdav_plugin(), server_.url("/dav/")};
};

}  // namespace

TEST_F(Counting, TheFirstSectionIsThereBeforeTheServerHasSentAllOfTheAnswer) {
    std::vector<SoupServerMessage*> full;
    answer_full_ = [&full](SoupServerMessage* message) {
        keep_for_later(full, message, kWebDavHead + pictures(0, kFirstPart));
    };
    ListRecord list;

    const engine::RequestPtr request = account_.session->list({}, list);

    ASSERT_TRUE(run_until([&list] { return list.media.size() >= kSection || list.is_over(); }));
    EXPECT_EQ(list.failure, "");
    EXPECT_FALSE(list.ended);
    EXPECT_EQ(list.announced_media, kPictures);
    ASSERT_EQ(full.size(), 1U);
    end_silence(full[0], pictures(kFirstPart, kPictures) + kWebDavEnd);
    ASSERT_TRUE(list.wait());
    EXPECT_TRUE(list.ended) << list.failure;
    EXPECT_EQ(list.broken_rules, "");
}

TEST_F(Counting, TheAnswerIsNotReadOnUntilTheItemsAreCounted) {
    std::vector<SoupServerMessage*> lean;
    answer_lean_ = [&lean](SoupServerMessage* message) { keep_for_later(lean, message, ""); };
    ListRecord list;

    const engine::RequestPtr request = account_.session->list({}, list);
    ASSERT_TRUE(run_until([&lean] { return !lean.empty(); }));

    // All of the answer is on its way, whose end would tell the numbers too.
    ASSERT_FALSE(run_until([&list] { return list.begun || list.is_over(); }, G_USEC_PER_SEC / 2));
    end_silence(lean[0], all_);
    ASSERT_TRUE(run_until([&list] { return list.begun; }));
    // What was held is handed over at once; what is still to be read is not.
    EXPECT_GE(list.media.size(), kSection);
    EXPECT_LT(list.media.size(), kPictures / 2);
    ASSERT_TRUE(list.wait());
    EXPECT_EQ(list.media.size(), kPictures) << list.failure;
    EXPECT_EQ(list.broken_rules, "");
}

TEST_F(Counting, ListsThatWaitForTheirCountsDoNotKeepEachOtherWaiting) {
    constexpr size_t kLists = 8;
    std::vector<SoupServerMessage*> full;
    answer_full_ = [&full](SoupServerMessage* message) {
        keep_for_later(full, message, kWebDavHead + pictures(0, kFirstPart));
    };
    ListRecord lists[kLists];
    std::vector<engine::RequestPtr> requests;

    for (ListRecord& list : lists) {
        requests.push_back(account_.session->list({}, list));
    }

    size_t ended = 0;
    while (ended < kLists) {
        // As many as the plug-in asks at once have begun before the first of them may end.
        const auto have_begun = [&] {
            return static_cast<size_t>(std::count_if(std::begin(lists), std::end(lists),
                                                     [](const ListRecord& list) { return list.begun; }));
        };
        run_until_idle();
        ASSERT_TRUE(run_until([&] { return !full.empty() && have_begun() == ended + full.size(); }));
        for (SoupServerMessage* message : std::exchange(full, {})) {
            end_silence(message, pictures(kFirstPart, kPictures) + kWebDavEnd);
            ++ended;
        }
    }
    for (ListRecord& list : lists) {
        ASSERT_TRUE(list.wait());
        EXPECT_EQ(list.media.size(), kPictures) << list.failure;
        EXPECT_EQ(list.broken_rules, "");
    }
}

TEST_F(Counting, AFolderThatHasLostItemsMeanwhileIsNoList) {
    answer_lean_ = reply_with(answer_of(picture("/dav/0.jpg")));

    const ListRecord list = account_.list();

    EXPECT_THAT(list.failure, HasSubstr("changed while it was read"));
    EXPECT_FALSE(list.begun);
}

TEST_F(Counting, AFolderThatHasAnotherNumberOfItemsInTheEndIsNoList) {
    for (const size_t counted : {kPictures - 1, kPictures + 1}) {
        answer_lean_ = reply_with(answer_of(pictures(0, counted)));

        const ListRecord list = account_.list();

        EXPECT_THAT(list.failure, HasSubstr("changed while it was read")) << counted;
        EXPECT_EQ(list.broken_rules, "") << counted;
    }
}

TEST_F(Counting, ACountThatFailsCostsOnlyTime) {
    const Handler failures[] = {
        [](SoupServerMessage* message) { reply(message, 503, ""); },
        [](SoupServerMessage* message) { reply_raw(message, "HTTP/1.1 207 Multi-Status\r\n"); },
        reply_with("<html/>"),
        reply_with(kWebDavHead + pictures(0, kPictures)),
    };
    for (const Handler& failure : failures) {
        answer_lean_ = failure;

        const ListRecord list = account_.list();

        EXPECT_EQ(list.media.size(), kPictures) << list.failure;
        EXPECT_EQ(list.broken_rules, "");
    }
    EXPECT_EQ(lean_questions_, std::size(failures));
}

TEST_F(Counting, AListThatIsEndedWhileItWaitsAnswersNothing) {
    std::vector<SoupServerMessage*> lean;
    answer_lean_ = [&lean](SoupServerMessage* message) { keep_for_later(lean, message, ""); };
    ListRecord list;
    engine::RequestPtr request = account_.session->list({}, list);
    ASSERT_TRUE(run_until([&lean] { return !lean.empty(); }));

    request.reset();
    run_until_idle();

    EXPECT_FALSE(list.begun || list.is_over());
}

TEST_F(Counting, ASmallFolderIsAskedForOnce) {
    answer_full_ = reply_with(answer_of(pictures(0, kSection)));

    const ListRecord list = account_.list();

    EXPECT_EQ(list.media.size(), kSection) << list.failure;
    EXPECT_EQ(lean_questions_, 0U);
}

TEST_F(Counting, AnotherOrderNeedsTheItemsThemselves) {
    engine::ListQuery query;
    query.category = "CATEGORY-TITLE";

    const ListRecord list = account_.list(query);

    EXPECT_EQ(list.media.size(), kPictures) << list.failure;
    EXPECT_EQ(lean_questions_, 0U);
}
