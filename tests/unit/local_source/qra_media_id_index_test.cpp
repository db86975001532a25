#include "libqra-agent/source/local-source/qra_media_id_index.h"

#include <gtest/gtest.h>

namespace {

/// An index with the rows that it asks.
struct Rows {
    void add(const std::string& id) {
        index.Append(id);
        ids.push_back(id);
    }

    int find(const std::string& id) {
        return index.Find(id, [&](int i) { return ids[i] == id; });
    }

    CQRAMediaIdIndex index;
    std::vector<std::string> ids;
};

}  // namespace

TEST(CQRAMediaIdIndex, FindsNothingWhenEmpty) {
    Rows rows;
    EXPECT_EQ(rows.find("a"), -1);
}

TEST(CQRAMediaIdIndex, FindsEachOfManyIds) {
    Rows rows;
    for (int i = 0; i < 10000; ++i) {
        rows.add("id-" + std::to_string(i));
    }
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(rows.find("id-" + std::to_string(i)), i);
    }
    EXPECT_EQ(rows.find("id-10000"), -1);
    EXPECT_EQ(rows.find(""), -1);
}

TEST(CQRAMediaIdIndex, AnIdThatIsThereKeepsItsFirstIndex) {
    Rows rows;
    rows.add("a");
    rows.add("b");
    rows.add("a");
    EXPECT_EQ(rows.find("a"), 0);
    EXPECT_EQ(rows.find("b"), 1);
}

TEST(CQRAMediaIdIndex, AsksOnlyTheRowsWhoseHashFits) {
    Rows rows;
    for (int i = 0; i < 1000; ++i) {
        rows.add(std::to_string(i));
    }
    int asked = 0;
    EXPECT_EQ(rows.index.Find("999",
                              [&](int i) {
                                  ++asked;
                                  return rows.ids[i] == "999";
                              }),
              999);
    EXPECT_LE(asked, 3);
}

TEST(CQRAMediaIdIndex, ClearForgetsEverything) {
    Rows rows;
    rows.add("a");
    rows.index.Clear();
    EXPECT_EQ(rows.find("a"), -1);
    rows.ids.clear();
    rows.add("b");
    EXPECT_EQ(rows.find("b"), 0);
}
