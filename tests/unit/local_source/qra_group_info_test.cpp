#include "libqra-agent/source/local-source/qra_group_info.h"

#include <gtest/gtest.h>

namespace {

struct Group {
    int start;
    int count;
    std::string name;
    bool operator==(const Group& other) const {
        return start == other.start && count == other.count && name == other.name;
    }
};

Group at(const CQRAGroupInfo& groups, int index) {
    Group group = {-1, -1, ""};
    groups.GetGroup(index, group.start, group.count, group.name);
    return group;
}

}  // namespace

TEST(CQRAGroupInfo, IsEmptyAtFirst) {
    const CQRAGroupInfo groups;

    EXPECT_EQ(groups.GetGroupCount(), 0);
    EXPECT_EQ(groups.GetItemCount(), 0);
}

TEST(CQRAGroupInfo, LaysGroupsOutBehindEachOtherFromTheOffset) {
    CQRAGroupInfo groups;
    groups.SetStartDBIndexOffset(10);

    groups.AddGroup("a", 3);
    groups.AddGroup("b", 2);

    EXPECT_EQ(groups.GetGroupCount(), 2);
    EXPECT_EQ(groups.GetItemCount(), 5);
    EXPECT_EQ(at(groups, 0), (Group{10, 3, "a"}));
    EXPECT_EQ(at(groups, 1), (Group{13, 2, "b"}));
}

TEST(CQRAGroupInfo, AnEmptyGroupTakesAPlace) {
    CQRAGroupInfo groups;

    groups.AddGroup("a", 0);
    groups.AddGroup("b", 2);

    EXPECT_EQ(groups.GetGroupCount(), 2);
    EXPECT_EQ(at(groups, 0), (Group{0, 0, "a"}));
    EXPECT_EQ(at(groups, 1), (Group{0, 2, "b"}));
}

TEST(CQRAGroupInfo, KeepsNamesAndIds) {
    CQRAGroupInfo groups;

    groups.AddGroup("a", 1);
    groups.AddGroup("b", 1, "id-b");

    EXPECT_EQ(groups.GetGroupName(0), "a");
    EXPECT_EQ(groups.GetGroupId(0), "");
    EXPECT_EQ(groups.GetGroupName(1), "b");
    EXPECT_EQ(groups.GetGroupId(1), "id-b");
}

TEST(CQRAGroupInfo, GroupsAreCollapsedUntilTheyAreExpanded) {
    CQRAGroupInfo groups;
    groups.AddGroup("a", 1);
    groups.AddGroup("b", 1);
    EXPECT_FALSE(groups.IsExpanded(1));

    groups.ExpandGroup(1, true);
    EXPECT_FALSE(groups.IsExpanded(0));
    EXPECT_TRUE(groups.IsExpanded(1));

    groups.ExpandGroup(1, false);
    EXPECT_FALSE(groups.IsExpanded(1));
}

TEST(CQRAGroupInfo, StartsAtZeroAgainAfterReset) {
    CQRAGroupInfo groups;
    groups.SetStartDBIndexOffset(10);
    groups.AddGroup("a", 3);

    groups.Reset();
    EXPECT_EQ(groups.GetGroupCount(), 0);
    EXPECT_EQ(groups.GetItemCount(), 0);
    groups.AddGroup("b", 2);

    EXPECT_EQ(at(groups, 0), (Group{0, 2, "b"}));
}

TEST(CQRAGroupInfo, ACopyDoesNotSeeLaterGroups) {
    CQRAGroupInfo groups;
    groups.AddGroup("a", 3);
    const CQRAGroupInfo copy(groups);

    groups.AddGroup("b", 2);

    EXPECT_EQ(copy.GetGroupCount(), 1);
    EXPECT_EQ(copy.GetItemCount(), 3);
    EXPECT_EQ(groups.GetGroupCount(), 2);
}

TEST(CQRAGroupInfo, ACopySharesTheExpansion) {
    CQRAGroupInfo groups;
    groups.AddGroup("a", 3);
    CQRAGroupInfo copy;
    copy = groups;

    copy.ExpandGroup(0, true);

    EXPECT_TRUE(groups.IsExpanded(0));
}

TEST(CQRAGroupInfo, ACopyGoesOnFromItsOwnEnd) {
    CQRAGroupInfo groups;
    groups.SetStartDBIndexOffset(10);
    groups.AddGroup("a", 3);
    CQRAGroupInfo copy(groups);

    copy.AddGroup("b", 1);

    EXPECT_EQ(at(copy, 1), (Group{13, 1, "b"}));
}

TEST(CQRAGroupInfoDeathTest, AnIndexOutOfRangeEndsTheProcess) {
    CQRAGroupInfo groups;
    groups.AddGroup("a", 1);
    const char* condition = "nIndex >= 0 && nIndex < \\(int\\)m_GroupInfos.size\\(\\)";

    EXPECT_DEATH(at(groups, 1), condition);
    EXPECT_DEATH(at(groups, -1), condition);
    EXPECT_DEATH(groups.GetGroupName(1), condition);
    EXPECT_DEATH(groups.GetGroupId(-1), condition);
    EXPECT_DEATH(groups.IsExpanded(1), condition);
    EXPECT_DEATH(groups.ExpandGroup(1, true), condition);
}
