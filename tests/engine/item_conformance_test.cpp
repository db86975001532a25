// The content engine through its bus interface alone: details and acts.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/support/glib_ptr.h"
#include "tests/engine/protocol_client.h"

namespace {

class EngineItems : public testing::Test {
protected:
    void start(const std::vector<std::string>& limits = {}) {
        engine_ = std::make_unique<EngineProcess>(limits);
        ASSERT_TRUE(client_.wait_for_engine());
    }

    void ask_detail(uint32_t id, const Json::Value& request) {
        client_.call("request_detail", g_variant_new("(us)", id, request.toStyledString().c_str()));
    }
    Json::Value detail(uint32_t id, const Json::Value& request) {
        ask_detail(id, request);
        return client_.next();
    }
    Json::Value detail_of(uint32_t id, const std::string& item) { return detail(id, detail_request(item)); }

    static Json::Value detail_request(const std::string& item, int index = 0) {
        Json::Value request(Json::objectValue);
        request["qra_source"].append("CloudSource");
        request["qra_command"] = "qra_requestdetail";
        request["qra_item_index"] = index;
        request["qra_source_user_data"] = item.empty() ? "QRA_NULL" : item;
        request["qra_detail_request_times"] = "detail-" + std::to_string(index);
        return request;
    }

    static Json::Value act_request(const std::string& command, const std::string& item) {
        Json::Value request(Json::objectValue);
        request["qra_source"].append("CloudSource");
        request["qra_command"] = command;
        request["qra_item_content"] = R"({"ID_QRA":")" + item + R"(","TITLE":"x"})";
        request["qra_source_user_data"] = "QRA_NULL";
        request["qra_act_request_times"] = "act-" + command;
        return request;
    }
    void ask_act(uint32_t id, const std::string& command, const Json::Value& request) {
        client_.call("request_act",
                     g_variant_new("(uss)", id, command.c_str(), request.toStyledString().c_str()));
    }
    Json::Value act(uint32_t id, const Json::Value& request) {
        ask_act(id, "", request);
        return client_.next();
    }
    Json::Value like(uint32_t id, const std::string& item, bool is_liked) {
        Json::Value request = act_request("qra_setlike", item);
        request["qra_like"] = is_liked;
        return act(id, request);
    }
    Json::Value comment(uint32_t id, const std::string& item, const std::string& text) {
        Json::Value request = act_request("qra_uploadcomment", item);
        request["qra_comment"] = text;
        return act(id, request);
    }
    uint32_t stop(uint32_t id, const std::string& request) {
        const glib::VariantPtr reply = client_.call("stop_act", g_variant_new("(us)", id, request.c_str()));
        uint32_t result = UINT32_MAX;
        if (reply) {
            g_variant_get(reply.get(), "(u)", &result);
        }
        return result;
    }

    DataDirectory data_;
    ProtocolClient client_;
    std::unique_ptr<EngineProcess> engine_;
};

void expect_event(int event, const Json::Value& completion) {
    EXPECT_EQ(event, completion["qra_event_type"].asInt()) << completion;
}

void expect_detail_failure(const Json::Value& completion) {
    expect_event(5, completion);
    EXPECT_FALSE(completion["qra_error_text"].asString().empty()) << completion;
    EXPECT_EQ(completion["qra_error_text"],
              json_of(completion["qra_result_detail_json"].asString())["ERROR_TEXT"]);
}

void expect_act_failure(const Json::Value& completion) {
    expect_event(7, completion);
    EXPECT_EQ(0, completion["qra_file_transfer_signal"].asInt());
    EXPECT_FALSE(completion["qra_error_text"].asString().empty()) << completion;
}

Json::Value detail_text(const Json::Value& completion) {
    expect_event(3, completion);
    return json_of(completion["qra_result_detail_json"].asString());
}

TEST_F(EngineItems, DescribesTheItemAtAnIndexOfTheList) {
    start();
    const uint32_t id = client_.connect(R"({"folders":1,"media":2})");
    client_.ask_range(id, 0, 9);
    const Json::Value answer = detail(id, detail_request("", 2));
    EXPECT_EQ(id, answer["qra_handle_id"].asUInt());
    EXPECT_EQ("detail-2", answer["qra_detail_request_times"].asString());
    const Json::Value item = detail_text(answer);
    EXPECT_EQ("/medium-1", item["ID_QRA"].asString());
    EXPECT_TRUE(item["DETAIL"].asBool());
}

TEST_F(EngineItems, DescribesTheItemOfAnIdWithoutAList) {
    start();
    const uint32_t id = client_.connect("{}");
    EXPECT_EQ("/a/b", detail_text(detail_of(id, "/a/b"))["ID_QRA"].asString());
}

TEST_F(EngineItems, FailsADetailOfNoItem) {
    start();
    const uint32_t id = client_.connect(R"({"media":2})");
    expect_detail_failure(detail(id, detail_request("", 0)));
    client_.ask_range(id, 0, 9);
    expect_detail_failure(detail(id, detail_request("", 2)));
    expect_detail_failure(detail(id, detail_request("", -1)));
    for (const char* text : {"", "[]", "{", "{}"}) {
        client_.call("request_detail", g_variant_new("(us)", id, text));
        expect_detail_failure(client_.next());
    }
}

TEST_F(EngineItems, TellsEmptyAndFailedDetails) {
    start({"item_answer=100"});
    const Json::Value empty = detail_of(client_.connect(R"({"detail":"empty"})"), "/a");
    expect_event(4, empty);
    EXPECT_EQ("", empty["qra_result_detail_json"].asString());
    for (const char* kind : {"fail", "silent", "garbage", "none"}) {
        SCOPED_TRACE(kind);
        expect_detail_failure(detail_of(client_.connect(std::string(R"({"detail":")") + kind + "\"}"), "/a"));
    }
}

TEST_F(EngineItems, SaysNothingOfADetailThatWasCancelled) {
    start();
    const uint32_t id = client_.connect(R"({"detail":"silent"})");
    ask_detail(id, detail_request("/a"));
    client_.call("request_cancel_detail", g_variant_new("(u)", id));
    EXPECT_EQ("", client_.error());
    EXPECT_TRUE(client_.is_quiet());
}

TEST_F(EngineItems, KeepsALikeForAServiceThatHasNone) {
    start();
    const uint32_t id = client_.connect("{}");
    EXPECT_FALSE(detail_text(detail_of(id, "/a"))["LIKE"].asBool());
    const Json::Value answer = like(id, "/a", true);
    expect_event(6, answer);
    EXPECT_EQ("act-qra_setlike", answer["qra_act_request_times"].asString());
    EXPECT_EQ(0, answer["qra_file_transfer_signal"].asInt());
    EXPECT_TRUE(detail_text(detail_of(id, "/a"))["LIKE"].asBool());
    EXPECT_FALSE(detail_text(detail_of(id, "/b"))["LIKE"].asBool());
    const uint32_t other = client_.connect(R"({"folders":1})");
    EXPECT_FALSE(detail_text(detail_of(other, "/a"))["LIKE"].asBool()) << "another account";
    like(id, "/a", false);
    EXPECT_FALSE(detail_text(detail_of(id, "/a"))["LIKE"].asBool());
}

TEST_F(EngineItems, KeepsCommentsOverItsOwnEnd) {
    start();
    uint32_t id = client_.connect("{}");
    expect_event(6, comment(id, "/a", "first"));
    expect_event(6, comment(id, "/a", "zweiter \xc3\xa4"));
    like(id, "/a", true);
    engine_->kill_now();
    start();
    id = client_.connect("{}");
    const Json::Value item = detail_text(detail_of(id, "/a"));
    ASSERT_EQ(2u, item["COMMENTS"].size());
    EXPECT_EQ("first", item["COMMENTS"][0]["TEXT"].asString());
    EXPECT_EQ("zweiter \xc3\xa4", item["COMMENTS"][1]["TEXT"].asString());
    EXPECT_GT(item["COMMENTS"][0]["TIME"].asInt64(), 0);
    EXPECT_TRUE(item["LIKE"].asBool());
}

TEST_F(EngineItems, RefusesActsThatMakeNoSense) {
    start();
    const uint32_t id = client_.connect("{}");
    expect_act_failure(act(id, act_request("qra_fly", "/a")));
    expect_act_failure(comment(id, "/a", ""));
    expect_act_failure(comment(id, "/a", "QRA_NULL"));
    expect_act_failure(comment(id, "/a", std::string(100000, 'x')));
    expect_act_failure(like(id, "", true));
    for (const char* text : {"", "[]", "{", "{}"}) {
        client_.call("request_act", g_variant_new("(uss)", id, "", text));
        expect_act_failure(client_.next());
    }
}

TEST_F(EngineItems, LeavesAnActToAServiceThatHasIt) {
    start();
    const uint32_t id = client_.connect(R"({"acts":["qra_setlike","echo"]})");
    expect_event(6, like(id, "/a", true));
    EXPECT_FALSE(detail_text(detail_of(id, "/a"))["LIKE"].asBool()) << "not kept by the engine";
    ask_act(id, "echo", act_request("other", "/a"));
    const Json::Value answer = client_.next();
    expect_event(6, answer);
    EXPECT_EQ("other", json_of(answer["act_command_and_return_data"].asString())["qra_command"].asString());
}

TEST_F(EngineItems, TellsTheProgressOfAnAct) {
    start();
    const uint32_t id = client_.connect(R"({"acts":["count"]})");
    ask_act(id, "count", act_request("count", "/a"));
    for (const char* text : {"1", "2", "3"}) {
        const Json::Value update = client_.next();
        expect_event(12, update);
        EXPECT_EQ(text, update["act_command_and_return_data"].asString());
        EXPECT_NE(0, update["qra_file_transfer_signal"].asInt());
    }
    expect_event(6, client_.next());
    EXPECT_TRUE(client_.is_quiet());
}

TEST_F(EngineItems, FailsActsThatFailOrFallSilent) {
    start({"item_answer=100"});
    const uint32_t id = client_.connect(R"({"acts":["fail","silent"]})");
    expect_act_failure(act(id, act_request("fail", "/a")));
    expect_act_failure(act(id, act_request("silent", "/a")));
}

TEST_F(EngineItems, StopsAnAct) {
    start();
    const uint32_t id = client_.connect(R"({"acts":["silent"]})");
    ask_act(id, "", act_request("silent", "/a"));
    const std::string request = R"({"qra_file_transfer_stop":true,"qra_act_request_times":"act-silent"})";
    EXPECT_EQ(2u, stop(id, "nonsense"));
    EXPECT_EQ(1u, stop(id + 1, request));
    EXPECT_EQ(0u, stop(id, request));
    EXPECT_EQ(18u, stop(id, request)) << "it is stopped already";
    EXPECT_TRUE(client_.is_quiet());
}

TEST_F(EngineItems, RefusesDetailsAndActsOnTheConnectionOfAnotherClient) {
    start();
    ProtocolClient other;
    const uint32_t id = other.connect(R"({"detail":"silent"})");
    ask_detail(id, detail_request("/a"));
    EXPECT_NE("", client_.error());
    ask_act(id, "", act_request("qra_setlike", "/a"));
    EXPECT_NE("", client_.error());
    client_.call("request_cancel_detail", g_variant_new("(u)", id));
    EXPECT_NE("", client_.error());
    EXPECT_EQ(1u, stop(id, "{}"));
    EXPECT_TRUE(client_.is_quiet());
}

TEST_F(EngineItems, AnswersADetailAlsoWithADatabaseThatIsBroken) {
    start();
    engine_->end();
    {
        glib::ErrorOut error;
        ASSERT_TRUE(g_file_set_contents(data_.path("likes-and-comments.db").c_str(),
                                        std::string(8192, 'x').c_str(), 8192, error));
    }
    start();
    const uint32_t id = client_.connect("{}");
    EXPECT_TRUE(detail_text(detail_of(id, "/a"))["DETAIL"].asBool());
    expect_act_failure(like(id, "/a", true));
}

}  // namespace
