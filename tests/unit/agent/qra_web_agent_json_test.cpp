#include "libqra-agent/agent/util/qra_web_agent_json.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <cstdlib>

#include "libqra-agent/agent/src/qra_type.h"
#include "tests/fakes/dlog_capture.h"

namespace {

using Names = std::vector<std::string>;

Json::Value parsed(const std::string& text) {
    Json::Value value;
    EXPECT_TRUE(Json::Reader().parse(text, value)) << text;
    return value;
}

Names names_in(const Json::Value& array) {
    Names names;
    for (const Json::Value& element : array)
        names.push_back(element.asString());
    return names;
}

TEST(CQRAWebAgentJson, ReadsABool) {
    bool value = false;

    EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldBool("{\"key\":true}", "key", &value));

    EXPECT_TRUE(value);
}

TEST(CQRAWebAgentJson, ABoolThatIsNotThereWritesNothing) {
    bool value = true;

    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("", "key", &value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("{\"key\":false}", "", &value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("{\"key\":false}", "key", nullptr));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("{\"other\":false}", "key", &value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("{\"key\":0}", "key", &value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldBool("no json", "key", &value));

    EXPECT_TRUE(value);
}

TEST(CQRAWebAgentJson, ReadsAText) {
    std::string value;

    EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldString("{\"key\":\"text\"}", "key", value));

    EXPECT_EQ(value, "text");
}

TEST(CQRAWebAgentJson, ATextThatIsNotThereWritesNothing) {
    std::string value = "untouched";

    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldString("", "key", value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldString("{\"key\":\"a\"}", "", value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldString("{\"other\":\"a\"}", "key", value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldString("{\"key\":1}", "key", value));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldString("[\"key\"]", "key", value));

    EXPECT_EQ(value, "untouched");
}

TEST(CQRAWebAgentJson, AListRequestCarriesEveryField) {
    char source[] = "CloudSource,second";
    char type[] = "CONTENT-IMAGE";
    char category[] = "CATEGORY-TITLE";
    char filter[] = "word";
    char filter_type[] = "kind";
    char user_data[] = "{\"container\":\"\u00e4\"}";
    qra_general_s param;
    param.pSource = source;
    param.szContentType = type;
    param.szSortCategory = category;
    param.szFilter = filter;
    param.szFilterDataType = filter_type;
    param.szUserData = user_data;
    param.nDataStyle = 3;
    std::string text;
    const LogCapture log;

    ASSERT_TRUE(
        CQRAWebAgentJson::GeneralParamToJson(&param, 4294967294u, "qra_requestlist", 200, 399, 1, text));

    const Json::Value json = parsed(text);
    EXPECT_EQ(json.size(), 12u);
    EXPECT_EQ(names_in(json["qra_source"]), (Names{"CloudSource", "second"}));
    EXPECT_EQ(json["qra_command"], "qra_requestlist");
    EXPECT_EQ(json["qra_contenttype"], "CONTENT-IMAGE");
    EXPECT_EQ(json["qra_category"], "CATEGORY-TITLE");
    EXPECT_EQ(json["qra_filter"], "word");
    EXPECT_EQ(json["qra_filter_data_type"], "kind");
    EXPECT_EQ(json["qra_data_style"], 3);
    EXPECT_EQ(json["qra_source_user_data"], user_data);
    EXPECT_EQ(json["qra_startindex"], 200);
    EXPECT_EQ(json["qra_endindex"], 399);
    EXPECT_EQ(json["qra_sectionindex"], 1);
    EXPECT_EQ(json["qra_agent_handle"].asUInt(), 4294967294u);
    EXPECT_TRUE(log.contains("strRequestParam [" + text + "]"));
}

TEST(CQRAWebAgentJson, WhatTheClientDidNotGiveIsSentAsAWord) {
    qra_general_s general;
    qra_detail_s detail;
    qra_comment_s comment;
    std::string text;

    ASSERT_TRUE(CQRAWebAgentJson::GeneralParamToJson(&general, 1, "qra_requestlist", 0, -1, 0, text));
    for (const char* key :
         {"qra_contenttype", "qra_category", "qra_filter", "qra_filter_data_type", "qra_source_user_data"})
        EXPECT_EQ(parsed(text)[key], "QRA_NULL") << key;
    EXPECT_EQ(names_in(parsed(text)["qra_source"]), Names{""});
    EXPECT_EQ(parsed(text)["qra_data_style"], 1);

    ASSERT_TRUE(CQRAWebAgentJson::DetailParamToJson(&detail, "qra_requestdetail", text, "id"));
    EXPECT_EQ(parsed(text)["qra_source_user_data"], "QRA_NULL");
    text.clear();
    ASSERT_TRUE(CQRAWebAgentJson::CommentParamToJson(&comment, "qra_uploadcomment", text, "id"));
    EXPECT_EQ(parsed(text)["qra_comment"], "QRA_NULL");
    EXPECT_EQ(parsed(text)["qra_source_user_data"], "QRA_NULL");
}

TEST(CQRAWebAgentJson, ADetailRequestCarriesEveryField) {
    char source[] = "a";
    char user_data[] = "more";
    qra_detail_s param;
    param.source = source;
    param.user_data = user_data;
    param.page_index = 12;
    std::string text;

    ASSERT_TRUE(CQRAWebAgentJson::DetailParamToJson(&param, "qra_requestdetail", text, "some-id"));

    const Json::Value json = parsed(text);
    EXPECT_EQ(json.size(), 5u);
    EXPECT_EQ(names_in(json["qra_source"]), Names{"a"});
    EXPECT_EQ(json["qra_command"], "qra_requestdetail");
    EXPECT_EQ(json["qra_item_index"], 12);
    EXPECT_EQ(json["qra_source_user_data"], "more");
    EXPECT_EQ(json["qra_detail_request_times"], "some-id");
}

TEST(CQRAWebAgentJson, ACommentTakesTheItemsTextAndGivesTheRequest) {
    char comment[] = "nice";
    qra_comment_s param;
    param.comment = comment;
    std::string text = R"({"TITLE":"x"})";

    ASSERT_TRUE(CQRAWebAgentJson::CommentParamToJson(&param, "qra_uploadcomment", text, "some-id"));

    const Json::Value json = parsed(text);
    EXPECT_EQ(json.size(), 6u);
    EXPECT_EQ(json["qra_command"], "qra_uploadcomment");
    EXPECT_EQ(json["qra_item_content"], R"({"TITLE":"x"})");
    EXPECT_EQ(json["qra_comment"], "nice");
    EXPECT_EQ(json["qra_act_request_times"], "some-id");
}

TEST(CQRAWebAgentJson, ALikeTakesTheItemsTextAndGivesTheRequest) {
    qra_like_s param;
    param.is_like = true;
    std::string text = R"({"TITLE":"x"})";

    ASSERT_TRUE(CQRAWebAgentJson::LikeParamToJson(&param, "qra_setlike", text, "some-id"));

    const Json::Value json = parsed(text);
    EXPECT_EQ(json.size(), 6u);
    EXPECT_EQ(json["qra_command"], "qra_setlike");
    EXPECT_EQ(json["qra_item_content"], R"({"TITLE":"x"})");
    EXPECT_EQ(json["qra_like"], true);
    EXPECT_EQ(json["qra_source_user_data"], "QRA_NULL");
    EXPECT_EQ(json["qra_act_request_times"], "some-id");
}

TEST(CQRAWebAgentJson, AnEmptyItemIsAWordInACommentAndEmptyInALike) {
    qra_comment_s comment;
    qra_like_s like;
    std::string comment_text;
    std::string like_text;

    ASSERT_TRUE(CQRAWebAgentJson::CommentParamToJson(&comment, "qra_uploadcomment", comment_text, "id"));
    ASSERT_TRUE(CQRAWebAgentJson::LikeParamToJson(&like, "qra_setlike", like_text, "id"));

    EXPECT_EQ(parsed(comment_text)["qra_item_content"], "QRA_NULL");
    EXPECT_EQ(parsed(like_text)["qra_item_content"], "");
}

TEST(CQRAWebAgentJsonDeathTest, ANullRecordIsAnAssertion) {
    std::string text;

    EXPECT_DEATH(CQRAWebAgentJson::GeneralParamToJson(nullptr, 1, "c", 0, 0, 0, text), "pParam != __null");
    EXPECT_DEATH(CQRAWebAgentJson::DetailParamToJson(nullptr, "c", text, "id"), "pParam != __null");
    EXPECT_DEATH(CQRAWebAgentJson::CommentParamToJson(nullptr, "c", text, "id"), "pParam != __null");
    EXPECT_DEATH(CQRAWebAgentJson::LikeParamToJson(nullptr, "c", text, "id"), "pParam != __null");
}

TEST(CQRAWebAgentJson, SourcesAreCutAtEveryDelimiter) {
    const auto split = [](std::string text) { return CQRAWebAgentJson::SplitSource(text, ","); };

    EXPECT_EQ(split("a,b"), (Names{"a", "b"}));
    EXPECT_EQ(split("a,,b"), (Names{"a", "", "b"}));
    EXPECT_EQ(split("a"), Names{"a"});
    EXPECT_EQ(split("a,"), (Names{"a", ""}));
    EXPECT_EQ(split(""), Names{""});
    std::string text = "a";
    EXPECT_EQ(CQRAWebAgentJson::SplitSource(text, ""), Names{});
}

TEST(CQRAWebAgentJson, ReadsNumbers) {
    const std::string json = R"({"int":-5,"uint":4294967295,"long":-5000000000})";
    int number = 0;
    unsigned int unsigned_number = 0;
    long long long_number = 0;

    EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldInt(json, "int", &number));
    EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldUInt(json, "uint", &unsigned_number));
    EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldLongLong(json, "long", &long_number));

    EXPECT_EQ(number, -5);
    EXPECT_EQ(unsigned_number, 4294967295u);
    EXPECT_EQ(long_number, -5000000000);
}

TEST(CQRAWebAgentJson, ANumberThatIsNotThereWritesNothing) {
    int number = 1;
    unsigned int unsigned_number = 2;
    long long long_number = 3;

    for (const char* json : {"", "no json", "[1]", "{}", R"({"key":"1"})", R"({"key":1.5})",
                             R"({"key":null})", R"({"key":1e30})"}) {
        EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldInt(json, "key", &number)) << json;
        EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldUInt(json, "key", &unsigned_number)) << json;
        EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldLongLong(json, "key", &long_number)) << json;
    }
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldInt(R"({"key":4294967296})", "key", &number));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldUInt(R"({"key":-1})", "key", &unsigned_number));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldInt(R"({"key":1})", "", &number));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldInt(R"({"key":1})", "key", nullptr));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldUInt(R"({"key":1})", "key", nullptr));
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldLongLong(R"({"key":1})", "key", nullptr));

    EXPECT_EQ(number, 1);
    EXPECT_EQ(unsigned_number, 2u);
    EXPECT_EQ(long_number, 3);
}

TEST(CQRAWebAgentJson, HandsOutACopyOfATextOrAnEmptyOne) {
    const auto text_of = [](const std::string& json, const std::string& key) {
        char* text = nullptr;
        EXPECT_TRUE(CQRAWebAgentJson::GetJsonFieldChar(json, key, &text));
        const std::string result = text;
        free(text);
        return result;
    };

    EXPECT_EQ(text_of(R"({"key":"text"})", "key"), "text");
    EXPECT_EQ(text_of(R"({"key":"text"})", "other"), "");
    EXPECT_EQ(text_of(R"({"key":5})", "key"), "");
    EXPECT_EQ(text_of("", "key"), "");
    EXPECT_EQ(text_of("no json", ""), "");
    EXPECT_FALSE(CQRAWebAgentJson::GetJsonFieldChar(R"({"key":"text"})", "key", nullptr));
}

TEST(CQRAWebAgentJson, EditsMembersInPlace) {
    std::string json = R"({"a":1})";
    const LogCapture log;

    EXPECT_TRUE(CQRAWebAgentJson::AddMemberChar("b", "text", json));
    EXPECT_TRUE(CQRAWebAgentJson::AddMemberInt("a", 2, json));
    EXPECT_TRUE(CQRAWebAgentJson::AddMemberString("c", "more", json));
    EXPECT_TRUE(CQRAWebAgentJson::RemoveMember("b", json));
    EXPECT_TRUE(CQRAWebAgentJson::RemoveMember("absent", json));

    EXPECT_EQ(json, "{\"a\":2,\"c\":\"more\"}\n");
    EXPECT_TRUE(log.contains("Add member[c], final json["));
    EXPECT_TRUE(log.contains("Remove member[b], final json["));
}

TEST(CQRAWebAgentJson, AnEditWithoutAKeyOrAnObjectChangesNothing) {
    std::string json = R"({"a":1})";
    std::string none = "[1]";

    EXPECT_FALSE(CQRAWebAgentJson::AddMemberChar("", "text", json));
    EXPECT_FALSE(CQRAWebAgentJson::AddMemberInt("", 2, json));
    EXPECT_FALSE(CQRAWebAgentJson::AddMemberString("", "more", json));
    EXPECT_FALSE(CQRAWebAgentJson::RemoveMember("", json));
    EXPECT_FALSE(CQRAWebAgentJson::AddMemberInt("a", 2, none));
    EXPECT_FALSE(CQRAWebAgentJson::RemoveMember("a", none));
    CQRAWebAgentJson::UpdateItemIndex(none, 1, 2, 3);

    EXPECT_EQ(json, R"({"a":1})");
    EXPECT_EQ(none, "[1]");
}

TEST(CQRAWebAgentJson, AnotherRangeKeepsEveryOtherKey) {
    qra_general_s param;
    std::string json;
    ASSERT_TRUE(CQRAWebAgentJson::GeneralParamToJson(&param, 7, "qra_requestlist", 0, 9, 0, json));
    Json::Value expected = parsed(json);
    expected["qra_startindex"] = 20;
    expected["qra_endindex"] = 29;
    expected["qra_sectionindex"] = 2;

    CQRAWebAgentJson::UpdateItemIndex(json, 20, 29, 2);

    EXPECT_EQ(parsed(json), expected);
    std::string empty;
    CQRAWebAgentJson::UpdateItemIndex(empty, 20, 29, 2);
    EXPECT_EQ(empty, "");
}

}  // namespace
