#include "libqra-agent/agent/util/qra_web_agent_json.h"

#include <gtest/gtest.h>

namespace {

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

}  // namespace
