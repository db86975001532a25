#include "libqra-agent/source/scsa/qra_dmp_data.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "tests/fakes/dlog_capture.h"

namespace {

using Contents = std::vector<_stDMPMETADATA>;

/// A store of its own: the process's is never emptied.
class CQRADmpDataTest : public ::testing::Test {
protected:
    std::string text(const std::string& path, const std::string& field) {
        char* value = nullptr;
        if (!store.GetValue(path, field, &value)) {
            return "(failed)";
        }
        const std::string copy = value != nullptr ? value : "(left alone)";
        std::free(value);
        return copy;
    }

    int number(const std::string& path, const std::string& field) {
        int value = -1;
        return store.GetValue(path, field, &value) ? value : -9;
    }

    void insert(const std::string& path, Contents contents) { store.InsertData(path, contents); }

    CQRADmpData store;
    LogCapture log;
};

_stDMPMETADATA titled(const std::string& title) {
    _stDMPMETADATA content;
    content.common.strTitleDisplay19 = title;
    return content;
}

_stDMPMETADATA pictured(int width, const std::string& location = "") {
    _stDMPMETADATA content;
    content.images.push_back({width, width / 2, "image/png", "2", location});
    return content;
}

}  // namespace

TEST_F(CQRADmpDataTest, TheProcessHasOneStore) {
    EXPECT_EQ(CQRADmpData::GetInstance(), CQRADmpData::GetInstance());
}

TEST_F(CQRADmpDataTest, APathIsKnownOnceItIsInserted) {
    EXPECT_FALSE(store.FindPathExist("/p"));
    EXPECT_TRUE(log.contains("DmpData: bFind = [0]"));
    insert("/p", {});
    EXPECT_TRUE(store.FindPathExist("/p"));
    EXPECT_TRUE(log.contains("DmpData: bFind = [1]"));
    store.RemoveData("/p");
    EXPECT_FALSE(store.FindPathExist("/p"));
    EXPECT_FALSE(log.contains("DmpData: Can not find path !"));
    store.RemoveData("/p");
    EXPECT_TRUE(log.contains("DmpData: Can not find path !"));
}

TEST_F(CQRADmpDataTest, TheFirstContentsOfAPathStay) {
    insert("/p", {titled("first")});
    insert("/p", {titled("second"), titled("third")});
    int count = 0;
    EXPECT_TRUE(store.GetThumbCount("/p", count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(text("/p", "TITLE_19"), "first");
}

TEST_F(CQRADmpDataTest, ASingleContentIsAppendedAndMakesTheEntry) {
    _stDMPMETADATA content = titled("a");
    store.InsertData("/p", content);
    content = pictured(640);
    store.InsertData("/p", content);
    EXPECT_EQ(text("/p", "TITLE_19"), "a");
    EXPECT_EQ(number("/p", "WIDTH"), 640);
}

TEST_F(CQRADmpDataTest, EveryFieldHasItsValue) {
    _stDMPMETADATA content;
    content.common = {7,           "id",   "profile", "run",  "publisher", "t19",     "t60",
                      "unlimited", "sort", "s190",    "s400", "s4000",     "language"};
    content.images.push_back({1920, 1080, "encoding", "track", "location"});
    content.images.push_back({1, 2, "x", "x", "x"});
    content.ratings.push_back({"country", "system", "value", "description", "adult"});
    content.ratings.push_back({"x", "x", "x", "x", "x"});
    insert("/p", {content, titled("x")});
    const std::pair<const char*, const char*> expected[] = {
        {"FILE_PATH", "/p"},           {"CONTENT_ID", "id"},
        {"PROFILE", "profile"},        {"RUNLENGTH", "run"},
        {"PUBLISHER", "publisher"},    {"TITLE_19", "t19"},
        {"TITLE_60", "t60"},           {"TITLE_UNLIMITED", "unlimited"},
        {"TITLE_SORT", "sort"},        {"SUMMARY_190", "s190"},
        {"SUMMARY_400", "s400"},       {"SUMMARY_4000", "s4000"},
        {"DESC_LANGUAGE", "language"}, {"ENCODING", "encoding"},
        {"TRACK_REFERENCE", "track"},  {"STREAM_NAME", "location"},
        {"COUNTRY", "country"},        {"SYSTEM", "system"},
        {"RATING_VALUE", "value"},     {"RATING_DESC", "description"},
        {"ADULT_CONTENT", "adult"}};
    for (const auto& [field, value] : expected) {
        EXPECT_EQ(text("/p", field), value) << field;
        EXPECT_EQ(number("/p", field), -9) << field;
    }
    EXPECT_EQ(number("/p", "INDEX"), 7);
    EXPECT_EQ(number("/p", "WIDTH"), 1920);
    EXPECT_EQ(number("/p", "HEIGHT"), 1080);
    EXPECT_TRUE(log.contains("DmpData: Get int type data: strField = [WIDTH], iValue = [1920]"));
    EXPECT_TRUE(log.contains("DmpData: Get int type data: strField = [COUNTRY], strValue = [country]"));
    EXPECT_TRUE(log.contains("DmpData: Exists File path [/p]!"));
}

TEST_F(CQRADmpDataTest, TheFirstContentThatCanAnswerDoes) {
    _stDMPMETADATA rated;
    rated.ratings.push_back({"GB", "", "", "", ""});
    insert("/p", {titled("first"), pictured(320, "second.uvu"), pictured(640), rated});
    EXPECT_EQ(number("/p", "WIDTH"), 320);
    EXPECT_EQ(number("/p", "HEIGHT"), 160);
    EXPECT_EQ(text("/p", "STREAM_NAME"), "second.uvu");
    EXPECT_EQ(text("/p", "COUNTRY"), "GB");
    EXPECT_EQ(text("/p", "TITLE_19"), "first");
}

TEST_F(CQRADmpDataTest, AnEmptyTextIsAValueAndHidesLaterOnes) {
    insert("/p", {titled(""), titled("second")});
    EXPECT_EQ(text("/p", "TITLE_19"), "(left alone)");
}

TEST_F(CQRADmpDataTest, WhatNoContentHasIsNotFound) {
    insert("/p", {titled("a")});
    EXPECT_EQ(text("/p", "COUNTRY"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: Do not find data strField = [COUNTRY]"));
    EXPECT_EQ(number("/p", "WIDTH"), -9);
    EXPECT_TRUE(log.contains("DmpData: Do not find data strField = [WIDTH]"));
}

TEST_F(CQRADmpDataTest, AnUnknownFieldIsWrong) {
    insert("/p", {titled("a")});
    EXPECT_EQ(text("/p", "TITLE"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: wrong strField = [TITLE]"));
    EXPECT_EQ(text("/p", "WIDTH"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: wrong strField = [WIDTH]"));
    EXPECT_EQ(number("/p", "TITLE_19"), -9);
    EXPECT_TRUE(log.contains("DmpData: wrong strField = [TITLE_19]"));
}

TEST_F(CQRADmpDataTest, AnUnknownPathFailsAndIsNotAdded) {
    EXPECT_EQ(text("/p", "TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: m_MetaDataMap is empty !"));
    insert("/q", {});
    EXPECT_EQ(text("/p", "FILE_PATH"), "(failed)");
    EXPECT_EQ(number("/p", "INDEX"), -9);
    EXPECT_EQ(log.count("DmpData: Can not find path, New File path !"), 2);
    EXPECT_EQ(log.count("DmpData: wrong file path = [/p]"), 3);
    EXPECT_FALSE(store.FindPathExist("/p"));
}

TEST_F(CQRADmpDataTest, APackageThatHoldsNothingHasNotEvenAPath) {
    insert("/p", {});
    EXPECT_EQ(text("/p", "FILE_PATH"), "(failed)");
    EXPECT_EQ(number("/p", "INDEX"), -9);
    EXPECT_EQ(log.count("DmpData: file /p has no data"), 2);
    EXPECT_EQ(text("/p", "NO_FIELD"), "(failed)");
    EXPECT_FALSE(log.contains("DmpData: wrong strField"));
}

TEST_F(CQRADmpDataTest, NullPointersFailBeforeAllElse) {
    EXPECT_FALSE(store.GetValue("/p", "INDEX", static_cast<int*>(nullptr)));
    EXPECT_FALSE(store.GetValue("/p", "TITLE_19", static_cast<char**>(nullptr)));
    EXPECT_EQ(log.count("NULL == pValue"), 2);
    EXPECT_FALSE(log.contains("m_MetaDataMap is empty"));
}

TEST_F(CQRADmpDataTest, ContentsAreCounted) {
    int count = 5;
    EXPECT_FALSE(store.GetThumbCount("/p", count));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(log.contains("DmpData: m_MetaDataMap.empty() || m_MetaDataMap[/p].empty()"));
    EXPECT_FALSE(store.FindPathExist("/p")) << "nothing comes into being in an empty store";
    insert("/p", {titled("a"), titled("b")});
    EXPECT_TRUE(store.GetThumbCount("/p", count));
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(log.contains("DmpData: Content Size = [2]"));
}

TEST_F(CQRADmpDataTest, CountingInAnUnknownPathMakesItKnown) {
    insert("/p", {titled("a")});
    int count = 0;
    EXPECT_FALSE(store.GetThumbCount("/q", count));
    EXPECT_TRUE(store.FindPathExist("/q"));
    EXPECT_FALSE(store.GetThumbDataCount("/r", 0, count));
    EXPECT_TRUE(store.FindPathExist("/r"));
    std::string location = "x";
    std::string track = "x";
    EXPECT_FALSE(store.GetThumbnailData("/s", 0, 0, location, track));
    EXPECT_FALSE(store.FindPathExist("/s"));
    EXPECT_EQ(location + track, "");
}

TEST_F(CQRADmpDataTest, PicturesOfAContentAreCounted) {
    insert("/p", {titled("a"), pictured(1)});
    int count = 5;
    EXPECT_FALSE(store.GetThumbDataCount("/p", 0, count));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(log.contains("DmpData: iThumbSize = [0]"));
    EXPECT_TRUE(store.GetThumbDataCount("/p", 1, count));
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(log.contains("DmpData: iThumbSize = [1]"));
    EXPECT_FALSE(store.GetThumbDataCount("/p", 2, count));
    EXPECT_FALSE(store.GetThumbDataCount("/p", -1, count));
    EXPECT_EQ(log.count("DmpData: iContentsIndex is Out of Range!! iCountSize = [2]"), 2);
}

TEST_F(CQRADmpDataTest, APictureIsToldByWhereItLies) {
    insert("/p", {pictured(1, "part.uvu")});
    std::string location = "x";
    std::string track = "x";
    EXPECT_TRUE(store.GetThumbnailData("/p", 0, 0, location, track));
    EXPECT_EQ(location, "part.uvu");
    EXPECT_EQ(track, "2");
    EXPECT_TRUE(log.contains("strImgPath = [part.uvu], strTrackReference = [2]"));
    EXPECT_FALSE(store.GetThumbnailData("/p", 1, 0, location, track));
    EXPECT_EQ(location + track, "");
    EXPECT_FALSE(store.GetThumbnailData("/p", -1, 0, location, track));
    EXPECT_EQ(log.count("DmpData: iContentsIndex is Out of Range!! iCountSize = [1]"), 2);
    EXPECT_FALSE(store.GetThumbnailData("/p", 0, 1, location, track));
    EXPECT_FALSE(store.GetThumbnailData("/p", 0, -1, location, track));
    EXPECT_EQ(log.count("DmpData: iContentsIndex is Out of Range!! iThumbSize = [1]"), 2);
    insert("/empty", {});
    EXPECT_FALSE(store.GetThumbnailData("/empty", 0, 0, location, track));
    EXPECT_TRUE(log.contains("DmpData: m_MetaDataMap.empty() || m_MetaDataMap[/empty].empty()"));
}

TEST_F(CQRADmpDataTest, SeveralThreadsReadAndInsert) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < 100; ++i) {
                const std::string path = "/p" + std::to_string(i);
                insert(path, {pictured(thread + 1)});
                EXPECT_GE(number(path, "WIDTH"), 1);
                _stDMPMETADATA content = titled("x");
                store.InsertData(path, content);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    int count = 0;
    EXPECT_TRUE(store.GetThumbCount("/p0", count));
    EXPECT_EQ(count, 5);
}
