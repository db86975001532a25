#include "engine/src/item_list.h"

#include <gtest/gtest.h>

namespace {

using engine::EngineLimits;
using engine::ItemList;
using State = engine::ItemList::State;

/// A session whose list the test answers by hand.
class ManualSession : public engine::PluginSession {
public:
    engine::RequestPtr list(const engine::ListQuery&, engine::ListAnswer& answer) override {
        answer_ = &answer;
        return lists_ ? std::make_unique<Run>(ended_) : nullptr;
    }
    engine::RequestPtr describe(const std::string&, engine::ItemDone) override { return nullptr; }
    engine::RequestPtr act(const std::string&, const std::string&, engine::ItemDone) override {
        return nullptr;
    }

    engine::ListAnswer& answer() { return *answer_; }
    bool lists_ = true;
    bool ended_ = false;

private:
    struct Run : engine::Request {
        explicit Run(bool& ended) : ended_(ended) {}
        ~Run() override { ended_ = true; }
        bool& ended_;
    };
    engine::ListAnswer* answer_ = nullptr;
};

class ItemListTest : public testing::Test {
protected:
    ItemListTest() : session_(std::make_shared<ManualSession>()), list_(session_, {}, limits_) {
        list_.load();
    }

    engine::ListAnswer& answer() { return session_->answer(); }

    EngineLimits limits_;
    std::shared_ptr<ManualSession> session_;
    ItemList list_;
};

TEST_F(ItemListTest, PutsFoldersBeforeMediaInWhateverOrderTheyCome) {
    answer().begin(2, 2);
    answer().add_medium("m0");
    answer().add_folder("f0");
    answer().add_medium("m1");
    EXPECT_TRUE(list_.has(0, 0));
    EXPECT_FALSE(list_.has(0, 1)) << "a folder is still to come";
    EXPECT_TRUE(list_.has(2, 3));
    answer().add_folder("f1");
    EXPECT_TRUE(list_.has(0, 3));
    EXPECT_EQ("f1", list_.text(1));
    EXPECT_EQ("m0", list_.text(2));
    ASSERT_EQ(2u, list_.groups().size());
    EXPECT_EQ(2, list_.groups()[1].nFirstIndex);
    EXPECT_EQ(3, list_.groups()[1].nLastIndex);
}

TEST_F(ItemListTest, HasNoTotalBeforeItIsAnnouncedOrAtItsEnd) {
    answer().add_medium("m0");
    EXPECT_FALSE(list_.has_total());
    answer().end();
    EXPECT_TRUE(list_.has_total());
    EXPECT_EQ(1u, list_.total());
}

TEST_F(ItemListTest, WaitsForTheEndBeforeItIsEmpty) {
    answer().begin(0, 0);
    EXPECT_FALSE(list_.has_total());
    answer().add_medium("m0");
    answer().end();
    EXPECT_EQ(1u, list_.total());
}

TEST_F(ItemListTest, KeepsTheTotalThatWasToldWhenMoreCome) {
    answer().begin(1, 1);
    answer().add_folder("f0");
    answer().add_folder("f1");
    list_.tell_total();
    answer().add_medium("m0");
    answer().add_medium("m1");
    answer().end();
    EXPECT_EQ(2u, list_.total());
    EXPECT_EQ("f0", list_.text(0));
    EXPECT_EQ("m0", list_.text(1));
}

TEST_F(ItemListTest, FillsTheTotalThatWasToldWhenFewerCome) {
    answer().begin(2, 1);
    answer().add_folder("f0");
    list_.tell_total();
    answer().end();
    EXPECT_TRUE(list_.has(0, 2));
    EXPECT_EQ("f0", list_.text(0));
    EXPECT_EQ("{\"MEDIA_TYPE\":14}", list_.text(1));
    EXPECT_EQ("{\"MEDIA_TYPE\":14}", list_.text(2));
}

TEST_F(ItemListTest, IsAsLongAsWhatCameIfNothingWasTold) {
    answer().begin(9, 9);
    answer().add_folder("f0");
    answer().add_medium("m0");
    answer().end();
    EXPECT_EQ(2u, list_.total());
    EXPECT_EQ("m0", list_.text(1));
}

TEST_F(ItemListTest, TellsItsWatchersOfEachStep) {
    int calls = 0;
    list_.watch(this, [&] { ++calls; });
    answer().begin(0, 2);
    answer().add_medium("m0");
    answer().end();
    EXPECT_EQ(3, calls);
    answer().add_medium("late");
    answer().fail("late");
    EXPECT_EQ(3, calls) << "what comes after the end is not heard";
    EXPECT_EQ(State::kComplete, list_.state());
}

TEST_F(ItemListTest, ListensToOneAnnouncementOnly) {
    answer().begin(1, 0);
    answer().begin(5, 5);
    EXPECT_EQ(1u, list_.total());
}

TEST_F(ItemListTest, EndsTheRequestAfterItsEndButNotFromWithin) {
    answer().end();
    EXPECT_FALSE(session_->ended_);
    while (!session_->ended_ && g_main_context_iteration(nullptr, TRUE)) {
    }
    EXPECT_TRUE(session_->ended_);
}

TEST(ItemList, CancelsTheRequestWithItsOwnEnd) {
    const auto session = std::make_shared<ManualSession>();
    const EngineLimits limits;
    {
        ItemList list(session, {}, limits);
        list.load();
    }
    EXPECT_TRUE(session->ended_);
}

TEST(ItemList, FailsForASessionThatListsNothing) {
    const auto session = std::make_shared<ManualSession>();
    session->lists_ = false;
    const EngineLimits limits;
    ItemList list(session, {}, limits);
    list.load();
    EXPECT_EQ(State::kFailed, list.state());
    EXPECT_FALSE(list.failure().empty());
}

TEST(ItemList, RefusesAnAnnouncementOfTooMany) {
    const auto session = std::make_shared<ManualSession>();
    const EngineLimits limits;
    for (const auto& [folders, media] :
         {std::pair<size_t, size_t>{SIZE_MAX, SIZE_MAX}, {limits.list_items, 1}}) {
        ItemList list(session, {}, limits);
        list.load();
        session->answer().begin(folders, media);
        EXPECT_EQ(State::kFailed, list.state());
    }
}

}  // namespace
