#include "platform/nubelink/host/http_call.h"

#include <gtest/gtest.h>

#include <optional>

#include "nubelink.h"
#include "tests/fakes/web_server.h"
#include "tests/unit/platform/nubelink/main_context.h"

using namespace nbl;

namespace {

struct HttpCallTest : testing::Test {
    HttpAnswer ask(HttpQuestion question) {
        std::optional<HttpAnswer> answer;
        const HttpCall call(client, std::move(question), [&](HttpAnswer came) { answer = std::move(came); });
        EXPECT_FALSE(answer) << "answered from inside the call";
        EXPECT_TRUE(run_until([&] { return answer.has_value(); }));
        return answer.value_or(HttpAnswer{-1, 0, {}});
    }
    HttpQuestion question(const std::string& path) {
        HttpQuestion question;
        question.uri = server.url(path);
        return question;
    }

    WebServer server;
    HttpClient client;
};

TEST_F(HttpCallTest, GivesTheAnswerAndItsStatus) {
    server.on("/a", [](SoupServerMessage* message) { reply(message, 200, "hello"); });
    const HttpAnswer answer = ask(question("/a"));
    EXPECT_EQ(answer.error, NBL_ERROR_NONE);
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.body, "hello");
}

TEST_F(HttpCallTest, GivesAnswersThatAreNoSuccessToo) {
    server.on("/a", [](SoupServerMessage* message) { reply(message, 500, "fault"); });
    const HttpAnswer answer = ask(question("/a"));
    EXPECT_EQ(answer.error, NBL_ERROR_NONE);
    EXPECT_EQ(answer.status, 500U);
    EXPECT_EQ(answer.body, "fault");
}

TEST_F(HttpCallTest, FollowsNoRedirect) {
    server.on("/a", [&](SoupServerMessage* message) { redirect(message, 302, server.url("/b")); });
    EXPECT_EQ(ask(question("/a")).status, 302U);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpCallTest, EndsWithAnAnswerThatIsLargerThanAnyHonestOne) {
    server.on("/a", [](SoupServerMessage* message) {
        reply_endlessly(message, 200, "<a>", std::string(100'000, 'x'));
    });
    HttpQuestion asked = question("/a");
    asked.largest_answer = 1 << 20;
    EXPECT_EQ(ask(asked).error, NBL_ERROR_BAD_ANSWER);
}

TEST_F(HttpCallTest, EndsWhenAServerSaysNothing) {
    server.on("/a", [](SoupServerMessage* message) { fall_silent(message, 200, ""); });
    HttpQuestion asked = question("/a");
    asked.milliseconds = 50;
    EXPECT_EQ(ask(asked).error, NBL_ERROR_TIMEOUT);
}

TEST_F(HttpCallTest, EndsWhenAServerFallsSilentInTheMiddle) {
    server.on("/a", [](SoupServerMessage* message) { fall_silent(message, 200, "beginning"); });
    HttpQuestion asked = question("/a");
    asked.milliseconds = 200;
    EXPECT_EQ(ask(asked).error, NBL_ERROR_TIMEOUT);
}

TEST_F(HttpCallTest, TellsAnAnswerThatIsCutOff) {
    server.on("/a", [](SoupServerMessage* message) {
        reply_raw(message, "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this");
    });
    EXPECT_EQ(ask(question("/a")).error, NBL_ERROR_NETWORK);
}

/// So many answers that say that another one is to come, and then that one.
std::string answer_after(int preliminary_answers) {
    std::string bytes;
    for (int i = 0; i < preliminary_answers; ++i) {
        bytes += "HTTP/1.1 102 Processing\r\n\r\n";
    }
    return bytes + "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nat";
}

TEST_F(HttpCallTest, WaitsForAnAnswerThatIsSaidToComeAFewTimes) {
    server.on("/a", [](SoupServerMessage* message) { reply_raw(message, answer_after(5)); });
    const HttpAnswer answer = ask(question("/a"));
    EXPECT_EQ(answer.error, NBL_ERROR_NONE);
    EXPECT_EQ(answer.body, "at");
}

TEST_F(HttpCallTest, EndsWhereAnAnswerIsSaidToComeAgainAndAgain) {
    server.on("/a", [](SoupServerMessage* message) { reply_raw(message, answer_after(100)); });
    EXPECT_EQ(ask(question("/a")).error, NBL_ERROR_NETWORK);
}

TEST_F(HttpCallTest, TellsWhereNobodyListens) {
    HttpQuestion asked;
    asked.uri = "http://127.0.0.1:1/";
    EXPECT_EQ(ask(asked).error, NBL_ERROR_NETWORK);
}

TEST_F(HttpCallTest, SpeaksToAddressesOfTheWebOnly) {
    for (const char* uri : {"", "file:///etc/passwd", "ftp://127.0.0.1/", "http://", "nonsense", "data:,x"}) {
        HttpQuestion asked;
        asked.uri = uri;
        EXPECT_EQ(ask(asked).error, NBL_ERROR_NETWORK) << uri;
        EXPECT_FALSE(is_web_address(uri)) << uri;
    }
    EXPECT_TRUE(is_web_address("HTTP://10.0.0.5:80/x"));
    EXPECT_TRUE(is_web_address("https://[fe80::1]/"));
}

TEST_F(HttpCallTest, AnswersNobodyAfterItsEnd) {
    server.on("/a", [](SoupServerMessage* message) { fall_silent(message, 200, "beginning"); });
    const auto token = std::make_shared<int>(0);
    {
        const HttpCall call(client, question("/a"), [token](const HttpAnswer&) { ++*token; });
        run_until([&] { return !server.requests().empty(); });
    }
    EXPECT_EQ(token.use_count(), 1) << "what the callback held is released";
    server.on("/b", [](SoupServerMessage* message) { reply(message, 200, ""); });
    ask(question("/b"));
    EXPECT_EQ(*token, 0);
}

TEST_F(HttpCallTest, MayBeEndedByItsOwnAnswer) {
    server.on("/a", [](SoupServerMessage* message) { reply(message, 200, "x"); });
    std::unique_ptr<HttpCall> call;
    bool came = false;
    call = std::make_unique<HttpCall>(client, question("/a"), [&](const HttpAnswer&) {
        call.reset();
        came = true;
    });
    EXPECT_TRUE(run_until([&] { return came; }));
}

TEST_F(HttpCallTest, IsNotAnsweredWhereAnotherAnswerHasEndedIt) {
    std::vector<SoupServerMessage*> waiting;
    server.on("/a", [&](SoupServerMessage* message) {
        waiting.push_back(message);
        fall_silent(message, 200, "");
    });
    int answered = 0;
    std::vector<std::unique_ptr<HttpCall>> calls;
    for (int i = 0; i < 5; ++i) {
        calls.push_back(std::make_unique<HttpCall>(client, question("/a"), [&](const HttpAnswer&) {
            ++answered;
            calls.clear();
        }));
    }
    EXPECT_TRUE(run_until([&] { return waiting.size() == 5; }));
    for (SoupServerMessage* message : waiting) {
        end_silence(message, "x");
    }
    EXPECT_TRUE(run_until([&] { return calls.empty(); }));
    server.on("/b", [](SoupServerMessage* message) { reply(message, 200, "y"); });
    EXPECT_EQ(ask(question("/b")).body, "y");
    EXPECT_EQ(answered, 1);
}

TEST_F(HttpCallTest, HasFiveQuestionsToOneServerUnderWayAtATime) {
    std::vector<SoupServerMessage*> waiting;
    server.on("/a", [&](SoupServerMessage* message) {
        waiting.push_back(message);
        fall_silent(message, 200, "");
    });
    size_t ended = 0;
    std::vector<std::unique_ptr<HttpCall>> calls;
    for (int i = 0; i < 5; ++i) {
        calls.push_back(
            std::make_unique<HttpCall>(client, question("/a"), [&](const HttpAnswer&) { ++ended; }));
    }
    EXPECT_TRUE(run_until([&] { return waiting.size() == 5; }));
    for (SoupServerMessage* message : waiting) {
        end_silence(message, "x");
    }
    EXPECT_TRUE(run_until([&] { return ended == 5; }));
}

}  // namespace
