#include "platform/nubelink/host/request_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nubelink.h"
#include "tests/unit/platform/nubelink/main_context.h"

using namespace nbl;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Answers = std::vector<std::pair<int, int>>;  ///< token and error

/// Answers into a list, and does what the test wants beside that.
class Recorded : public Request {
public:
    Recorded(Answers& answers, const std::string& device_id, std::function<void()> beside = {})
        : Request(device_id), answers_(answers), beside_(std::move(beside)) {}
    void start(Session&) override {}
    void answer(int error) override {
        answers_.emplace_back(token(), error);
        if (beside_) {
            beside_();
        }
    }

private:
    Answers& answers_;
    const std::function<void()> beside_;
};

struct RequestTableTest : testing::Test {
    int start(const std::string& device_id = "d", unsigned deadline = RequestTable::kNoDeadline,
              std::function<void()> beside = {}) {
        const int token = table.new_token();
        // The request above does nothing with the session, but without one it would not be begun.
        table.start(token, std::make_unique<Recorded>(answers, device_id, std::move(beside)), session(),
                    deadline);
        return token;
    }
    Session* session() { return reinterpret_cast<Session*>(&table); }

    Answers answers;
    RequestTable table;
};

TEST_F(RequestTableTest, EndsARequestOnceWithItsError) {
    const int token = start();
    table.end(token, NBL_ERROR_CANCELLED);
    table.end(token, NBL_ERROR_TIMEOUT);
    EXPECT_THAT(answers, ElementsAre(Pair(token, NBL_ERROR_CANCELLED)));
    EXPECT_EQ(table.take(token), nullptr);
    EXPECT_EQ(table.size(), 0U);
}

TEST_F(RequestTableTest, LeavesTheAnswerToWhoeverTakesARequestOut) {
    const int token = start();
    EXPECT_NE(table.take(token), nullptr);
    table.end_all(NBL_ERROR_FAILED);
    EXPECT_THAT(answers, IsEmpty());
}

TEST_F(RequestTableTest, AnswersWithoutASession) {
    const int token = table.new_token();
    table.start(token, std::make_unique<Recorded>(answers, "d"), nullptr);
    EXPECT_THAT(answers, ElementsAre(Pair(token, NBL_ERROR_NOT_CONNECTED)));
}

TEST_F(RequestTableTest, EndsARequestWhoseDeadlineHasPassed) {
    const int token = start("d", 10);
    const int patient = start("d", 60'000);
    EXPECT_TRUE(run_until([&] { return !answers.empty(); }));
    EXPECT_THAT(answers, ElementsAre(Pair(token, NBL_ERROR_TIMEOUT)));
    EXPECT_NE(table.take(patient), nullptr);
}

TEST_F(RequestTableTest, EndsTheRequestsForOneServer) {
    const int first = start("a");
    const int other = start("b");
    const int second = start("a");
    table.end_all_of("a", NBL_ERROR_DEVICE_GONE);
    EXPECT_THAT(answers,
                ElementsAre(Pair(first, NBL_ERROR_DEVICE_GONE), Pair(second, NBL_ERROR_DEVICE_GONE)));
    EXPECT_NE(table.take(other), nullptr);
}

TEST_F(RequestTableTest, AnAnswerMayEndOtherRequestsAndItsOwn) {
    int second = 0;
    int first = 0;
    first = start("a", RequestTable::kNoDeadline, [&] {
        table.end(first, NBL_ERROR_CANCELLED);
        table.end(second, NBL_ERROR_CANCELLED);
    });
    second = start("a");
    table.end_all_of("a", NBL_ERROR_DEVICE_GONE);
    EXPECT_THAT(answers, ElementsAre(Pair(first, NBL_ERROR_DEVICE_GONE), Pair(second, NBL_ERROR_CANCELLED)));
}

TEST_F(RequestTableTest, KnowsTheTokensThatItGave) {
    EXPECT_FALSE(table.was_given(1));
    const int token = table.new_token();
    EXPECT_TRUE(table.was_given(token));
    EXPECT_FALSE(table.was_given(token + 1));
    EXPECT_FALSE(table.was_given(0));
    EXPECT_FALSE(table.was_given(-1));
}

}  // namespace
