#include "engine/src/client_request.h"

#include <gtest/gtest.h>

namespace {

using engine::parse_act_request;
using engine::parse_detail_request;
using engine::parse_list_request;

TEST(ClientRequest, ReadsAListRequest) {
    const auto request = parse_list_request(
        R"({"qra_source":["CloudSource"],"qra_contenttype":"CONTENT-IMAGE","qra_category":"CATEGORY-DATE",)"
        R"("qra_filter":"cat","qra_source_user_data":"/a","qra_sectionindex":3,"qra_agent_handle":4294967295})");
    ASSERT_TRUE(request);
    EXPECT_EQ("/a", request->query.container);
    EXPECT_EQ("image", request->query.content_type);
    EXPECT_EQ("CATEGORY-DATE", request->query.category);
    EXPECT_EQ("cat", request->query.filter);
    EXPECT_EQ(3, request->section);
    EXPECT_EQ(4294967295u, request->list_owner);
}

TEST(ClientRequest, ReadsWhatIsLeftOutAsEmpty) {
    for (const char* text :
         {"{}",
          R"({"qra_contenttype":"QRA_NULL","qra_category":"QRA_NULL","qra_filter":"QRA_NULL",)"
          R"("qra_source_user_data":"QRA_NULL"})",
          R"({"qra_contenttype":1,"qra_category":[],"qra_filter":{},"qra_agent_handle":"1"})",
          R"({"qra_agent_handle":-1,"qra_filter":"a\u0000b"})"}) {
        const auto request = parse_list_request(text);
        ASSERT_TRUE(request) << text;
        EXPECT_EQ(engine::ListQuery(), request->query) << text;
        EXPECT_EQ(0, request->section);
        EXPECT_EQ(0u, request->list_owner);
    }
}

TEST(ClientRequest, KnowsTheMediaOfContentTypes) {
    const std::pair<const char*, const char*> types[] = {
        {"CONTENT-IMAGE", "image"}, {"CONTENT-360IMAGE", "image"},
        {"CONTENT-VIDEO", "video"}, {"CONTENT-360VIDEO", "video"},
        {"CONTENT-MUSIC", "audio"}, {"CONTENT-FOLDER", ""},
        {"CONTENT-PVR", ""},        {"anything", ""}};
    for (const auto& [type, media] : types) {
        const auto request = parse_list_request(std::string(R"({"qra_contenttype":")") + type + "\"}");
        ASSERT_TRUE(request);
        EXPECT_EQ(media, request->query.content_type) << type;
    }
}

TEST(ClientRequest, RefusesWhatIsNoRequest) {
    for (const std::string& text :
         {std::string(), std::string("null"), std::string("[]"), std::string("1"), std::string("{} {}"),
          std::string("{\"a\":1,\"a\":2}"), std::string(100000, '['),
          std::string("{\"a\":" + std::string(50, '[')), "{\"a\":\"" + std::string(2 << 20, 'x') + "\"}"}) {
        EXPECT_FALSE(parse_list_request(text)) << text.substr(0, 20);
        EXPECT_FALSE(parse_detail_request(text)) << text.substr(0, 20);
        EXPECT_FALSE(parse_act_request("", text)) << text.substr(0, 20);
    }
    for (const char* section : {"-1", "2147483648", "1.5", "\"0\"", "true", "[]"}) {
        EXPECT_FALSE(parse_list_request(std::string(R"({"qra_sectionindex":)") + section + "}")) << section;
    }
}

TEST(ClientRequest, ReadsADetailRequest) {
    const auto by_index = parse_detail_request(
        R"({"qra_item_index":7,"qra_source_user_data":"QRA_NULL","qra_detail_request_times":"id"})");
    ASSERT_TRUE(by_index);
    EXPECT_EQ(7u, by_index->index);
    EXPECT_EQ("", by_index->item_id);
    EXPECT_EQ("id", by_index->request_id);
    const auto by_id = parse_detail_request(R"({"qra_item_index":-1,"qra_source_user_data":"/a"})");
    ASSERT_TRUE(by_id);
    EXPECT_FALSE(by_id->index);
    EXPECT_EQ("/a", by_id->item_id);
}

TEST(ClientRequest, ReadsALikeAndAComment) {
    const auto like = parse_act_request(
        "", R"({"qra_command":"qra_setlike","qra_item_content":"{\"ID_QRA\":\"/a\"}","qra_like":true,)"
            R"("qra_act_request_times":"id"})");
    ASSERT_TRUE(like);
    EXPECT_EQ("qra_setlike", like->command);
    EXPECT_EQ("/a", like->item_id);
    EXPECT_TRUE(like->like);
    EXPECT_EQ("id", like->request_id);
    const auto comment = parse_act_request(
        "", R"({"qra_command":"qra_uploadcomment","qra_item_content":"QRA_NULL","qra_comment":"text"})");
    ASSERT_TRUE(comment);
    EXPECT_EQ("", comment->item_id);
    EXPECT_EQ("text", comment->comment);
}

TEST(ClientRequest, TakesTheCommandOfTheMethodBeforeThatOfTheText) {
    const auto request = parse_act_request("rename", R"({"qra_command":"qra_setlike"})");
    ASSERT_TRUE(request);
    EXPECT_EQ("rename", request->command);
}

TEST(ClientRequest, FindsNoItemInATextThatIsNone) {
    for (const char* text : {"", "QRA_NULL", "[]", "{}", R"({"ID_QRA":1})", R"({"ID_QRA":"a\u0000b"})"}) {
        EXPECT_EQ("", engine::item_id_of(text)) << text;
    }
}

}  // namespace
