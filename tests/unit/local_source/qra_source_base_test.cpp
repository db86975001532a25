#include "libqra-agent/source/qra_source_base.h"

#include <gtest/gtest.h>

#include "tests/unit/agent/minimal_source.h"

TEST(IQRASourceBase, RefusesWhatASourceDoesNotOverride) {
    MinimalSource fake;
    IQRASourceBase& source = fake;
    char text[] = "x";
    int number = 7;
    char* value = text;
    std::string id = "before";

    EXPECT_FALSE(source.Open(text));
    EXPECT_FALSE(source.GetDBIndex(text, &number));
    EXPECT_EQ(source.GetGroupInfo(), nullptr);
    EXPECT_FALSE(source.GetBookMark([](void*, int) { return true; }, nullptr));
    EXPECT_EQ(source.GetFolderCount(), 0);
    EXPECT_EQ(source.GetFolderVectorSize(), 0);
    EXPECT_FALSE(source.IndexSearch(text, &number, &number));
    EXPECT_FALSE(source.GetPlayIndexOnAllContent(text, &number));
    EXPECT_FALSE(source.GetItemCountOfGroup(text, &number));
    EXPECT_FALSE(source.GetBrowseIndex(0, text, &number));
    EXPECT_FALSE(source.Download(text, text, text));
    EXPECT_FALSE(source.Download(text, text, text, text));
    EXPECT_FALSE(source.UpLoad(text, text, text));
    EXPECT_FALSE(source.Stop(text));
    EXPECT_FALSE(source.GetGroupId(0, id));
    EXPECT_FALSE(source.GetRatingInfo(&value));
    EXPECT_FALSE(source.CancelAsync());

    EXPECT_EQ(number, 7);
    EXPECT_EQ(value, text);
    EXPECT_EQ(id, "before");
}
