#include "common/util/json_value.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>

#include "tests/fakes/dlog_capture.h"

namespace {

template <class T>
std::string text_of(T value) {
    CJsonValue json;
    EXPECT_TRUE(json.Set("a", value));
    return json.ToString();
}

template <class T>
void expect_not(const CJsonValue& json, const char* key, T before) {
    T value = before;
    EXPECT_FALSE(json.Get(key, value)) << key;
    EXPECT_EQ(value, before) << key;
}

class CommaLocale : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
};

}  // namespace

TEST(CJsonValue, IsAnEmptyObjectAtFirst) {
    EXPECT_EQ(CJsonValue().ToString(), "{}\n");
}

TEST(CJsonValue, WritesEachTypeThatCanBeSet) {
    EXPECT_EQ(text_of(true), "{\"a\":true}\n");
    EXPECT_EQ(text_of(-5), "{\"a\":-5}\n");
    EXPECT_EQ(text_of(4294967295u), "{\"a\":4294967295}\n");
    EXPECT_EQ(text_of(std::numeric_limits<long long>::min()), "{\"a\":-9223372036854775808}\n");
    EXPECT_EQ(text_of(std::numeric_limits<unsigned long long>::max()), "{\"a\":18446744073709551615}\n");
    EXPECT_EQ(text_of(2.5), "{\"a\":2.5}\n");
    EXPECT_EQ(text_of(std::string("x")), "{\"a\":\"x\"}\n");
    EXPECT_EQ(text_of("x"), "{\"a\":\"x\"}\n");
    EXPECT_EQ(text_of(std::vector<std::string>{"x", "y"}), "{\"a\":[\"x\",\"y\"]}\n");
    EXPECT_EQ(text_of(std::vector<std::string>{}), "{\"a\":[]}\n");
}

TEST(CJsonValue, StoresANullTextAsAnEmptyOne) {
    EXPECT_EQ(text_of(static_cast<const char*>(nullptr)), "{\"a\":\"\"}\n");
}

TEST(CJsonValue, WritesTheMembersInTheOrderOfTheirKeys) {
    CJsonValue json;
    json.Set("b", 1);
    json.Set("a", 2);

    EXPECT_EQ(json.ToString(), "{\"a\":2,\"b\":1}\n");
}

TEST(CJsonValue, SetTakesThePlaceOfAMemberAndAppendsToAnArray) {
    CJsonValue json;
    json.Set("a", 1);
    json.Set("a", "x");
    json.Set("list", std::vector<std::string>{"1"});
    json.Set("list", std::vector<std::string>{"2"});

    EXPECT_EQ(json.ToString(), "{\"a\":\"x\",\"list\":[\"1\",\"2\"]}\n");
}

TEST(CJsonValue, AppendingToWhatIsNoArrayFails) {
    LogCapture log;
    CJsonValue json;
    json.Set("a", 1);

    EXPECT_FALSE(json.Set("a", std::vector<std::string>{"x"}));

    EXPECT_TRUE(log.contains("Exception Handled by[")) << log.text();
    EXPECT_EQ(json.ToString(), "{\"a\":1}\n");
}

TEST(CJsonValue, ReadsEachTypeBack) {
    const CJsonValue json(
        R"({"b":true,"i":-3,"u":4000000000,"l":9000000000,"d":1.5,"s":"x","ai":[1,2],"as":["x"]})");
    bool b = false;
    int i = 0;
    unsigned int u = 0;
    long long l = 0;
    double d = 0;
    std::string s;
    std::vector<int> ai = {9};
    std::vector<std::string> as;

    EXPECT_TRUE(json.Get("b", b) && b);
    EXPECT_TRUE(json.Get("i", i) && i == -3);
    EXPECT_TRUE(json.Get("u", u) && u == 4000000000u);
    EXPECT_TRUE(json.Get("l", l) && l == 9000000000LL);
    EXPECT_TRUE(json.Get("d", d) && d == 1.5);
    EXPECT_TRUE(json.Get("i", d) && d == -3);
    EXPECT_TRUE(json.Get("s", s) && s == "x");
    EXPECT_TRUE(json.Get("ai", ai) && ai == (std::vector<int>{1, 2}));
    EXPECT_TRUE(json.Get("as", as) && as == std::vector<std::string>{"x"});
}

TEST(CJsonValue, AMemberOfAnotherTypeLeavesTheVariableAlone) {
    const CJsonValue json(
        R"({"b":true,"i":-3,"l":9000000000,"s":"x","mixed":[1,"x"],"null":null,"object":{}})");

    expect_not(json, "i", std::string("before"));
    expect_not(json, "b", 7);
    expect_not(json, "l", 7);
    expect_not(json, "i", 7u);
    expect_not(json, "s", 7.5);
    expect_not(json, "i", true);
    expect_not(json, "s", 7LL);
    expect_not(json, "null", std::string("before"));
    expect_not(json, "object", std::string("before"));
    expect_not(json, "mixed", std::vector<int>{7});
    expect_not(json, "mixed", std::vector<std::string>{"before"});
    expect_not(json, "s", std::vector<std::string>{"before"});
}

TEST(CJsonValue, AMissingMemberIsLogged) {
    LogCapture log;
    const CJsonValue json;

    expect_not(json, "absent", 7);

    EXPECT_TRUE(log.contains("NO strKey[absent] in josn."));
}

TEST(CJsonValue, IsInvalidWhenTheTextIsNoObject) {
    for (const char* text : {"", "no json", "[1]", "\"x\"", "1", "null", "{\"a\":1"}) {
        LogCapture log;
        CJsonValue json{std::string(text)};
        int value = 7;

        EXPECT_FALSE(json.Get("a", value)) << text;
        EXPECT_FALSE(json.Set("a", 1)) << text;
        EXPECT_FALSE(json.Set("a", std::vector<std::string>{"x"})) << text;
        EXPECT_FALSE(json.Has("a")) << text;
        EXPECT_FALSE(json.IsInt("a")) << text;
        EXPECT_EQ(json.ToString(), "") << text;
        EXPECT_EQ(value, 7) << text;
    }
}

TEST(CJsonValue, AnInvalidValueTellsWhatWasAskedOfIt) {
    LogCapture log;
    CJsonValue json(std::string("[1]"));
    std::vector<std::string> keys;
    int value = 0;

    json.Set("a", 1);
    json.Get("a", value);
    json.Clear();
    json.ToString();
    EXPECT_FALSE(json.GetKeys(keys));
    json.Remove("a");

    const std::string type = std::to_string(static_cast<int>(Json::arrayValue));
    EXPECT_EQ(log.count("Set fail. jsonvalue is invalid type[" + type + "]."), 1);
    EXPECT_EQ(log.count("Get fail. jsonvalue is invalid type[" + type + "]."), 1);
    EXPECT_EQ(log.count("Clear fail. jsonvalue is invalid type[" + type + "]."), 1);
    EXPECT_EQ(log.count("ToString fail. jsonvalue is invalid type[" + type + "]."), 1);
    EXPECT_EQ(log.count("GetKeys fail. jsonvalue is invalid type[" + type + "]."), 2);
    EXPECT_EQ(log.lines()[0].tag, "QRA-COMMON");
}

TEST(CJsonValue, AFailedParseShowsTheText) {
    LogCapture log;

    CJsonValue json(std::string("{\"a\":"));

    EXPECT_TRUE(log.contains("Json::Reader parse string[{\"a\":] faild."));
}

TEST(CJsonValue, TextThatIsNestedTooDeepIsInvalid) {
    LogCapture log;

    CJsonValue json("{\"a\":" + std::string(100000, '[') + std::string(100000, ']') + "}");

    EXPECT_FALSE(json.Has("a"));
    EXPECT_EQ(json.ToString(), "");
    EXPECT_TRUE(log.contains("Exception Handled by[m_Parse]: [")) << log.text();
}

TEST(CJsonValue, ReadsTextWithComments) {
    const CJsonValue json(std::string("// head\n{\"a\":1 /* one */}"));
    int value = 0;

    EXPECT_TRUE(json.Get("a", value));
    EXPECT_EQ(value, 1);
    EXPECT_EQ(json.ToString(), "{\"a\":1}\n");
}

TEST(CJsonValue, ClearLeavesAnEmptyObject) {
    CJsonValue json(std::string("{\"a\":1}"));

    json.Clear();

    EXPECT_EQ(json.ToString(), "{}\n");
    EXPECT_TRUE(json.Set("b", 1));
}

TEST(CJsonValue, HasDoesNotAddWhatItAsksFor) {
    CJsonValue json;

    EXPECT_FALSE(json.Has("a"));
    EXPECT_FALSE(json.IsInt("a"));
    EXPECT_FALSE(json.IsString("a"));

    EXPECT_EQ(json.ToString(), "{}\n");
}

TEST(CJsonValue, TellsTheTypeOfAMember) {
    CJsonValue json;
    json.Set("i", 1);
    json.Set("s", "x");

    EXPECT_TRUE(json.Has("i") && json.IsInt("i") && !json.IsString("i"));
    EXPECT_TRUE(json.Has("s") && json.IsString("s") && !json.IsInt("s"));
}

TEST(CJsonValue, RemovesAMemberAndIgnoresAnAbsentOne) {
    CJsonValue json;
    json.Set("a", 1);
    json.Set("b", 2);

    json.Remove("a");
    json.Remove("a");

    EXPECT_EQ(json.ToString(), "{\"b\":2}\n");
}

TEST(CJsonValue, GivesTheNamesOfItsMembers) {
    CJsonValue json;
    json.Set("b", 1);
    json.Set("a", 1);
    std::vector<std::string> keys;

    EXPECT_TRUE(json.GetKeys(keys));

    EXPECT_EQ(keys, (std::vector<std::string>{"a", "b"}));
}

TEST(CJsonValue, EscapesWhatIsNotAscii) {
    EXPECT_EQ(text_of("\xc3\xa9\xf0\x9f\x98\x80\"\n\x01"),
              "{\"a\":\"\\u00e9\\ud83d\\ude00\\\"\\n\\u0001\"}\n");
}

TEST(CJsonValue, ABrokenCharacterHarmsNoneOfItsNeighbours) {
    EXPECT_EQ(text_of("a\xe9"
                      "bc"),
              "{\"a\":\"a\\ufffdbc\"}\n");
    EXPECT_EQ(text_of(std::string("a\xf0"
                                  "bcd")),
              "{\"a\":\"a\\ufffdbcd\"}\n");
    EXPECT_EQ(text_of("a\xff\xfe"
                      "b"),
              "{\"a\":\"a\\ufffd\\ufffdb\"}\n");
    EXPECT_EQ(text_of("end\xc3"), "{\"a\":\"end\\ufffd\"}\n");
    EXPECT_EQ(text_of("\xed\xa0\x80"), "{\"a\":\"\\ufffd\\ufffd\\ufffd\"}\n");
    EXPECT_EQ(text_of(std::vector<std::string>{"a\xe9"
                                               "bc",
                                               "\xc3\xa9"}),
              "{\"a\":[\"a\\ufffdbc\",\"\\u00e9\"]}\n");
}

TEST(CJsonValue, ABrokenCharacterStaysAsItIsInTheValue) {
    CJsonValue json;
    json.Set("a", "x\xe9y");
    json.Set("b", "\xc3\xa9");
    json.Set("n", 5);
    std::string value;

    EXPECT_EQ(json.ToString(), "{\"a\":\"x\\ufffdy\",\"b\":\"\\u00e9\",\"n\":5}\n");
    EXPECT_TRUE(json.Get("a", value));
    EXPECT_EQ(value, "x\xe9y");
}

TEST(CJsonValue, ABrokenCharacterOfAParsedTextIsMendedInKeysAndDepths) {
    const CJsonValue json(std::string("{\"k\xff\":[{\"b\":\"x\xe9yz\"},1.5,null,true]}"));

    EXPECT_EQ(json.ToString(), "{\"k\\ufffd\":[{\"b\":\"x\\ufffdyz\"},1.5,null,true]}\n");
}

TEST(CJsonValue, ABrokenCharacterOfAKeyThatWasSetIsMended) {
    const std::string key = std::string("k\xe9") + "bc";
    CJsonValue number;
    number.Set(key, 1);
    CJsonValue list;
    list.Set(key, std::vector<std::string>{"a"});

    EXPECT_EQ(number.ToString(), "{\"k\\ufffdbc\":1}\n");
    EXPECT_EQ(list.ToString(), "{\"k\\ufffdbc\":[\"a\"]}\n");
}

TEST(CJsonValue, WritesNumbersTheSameInEveryLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaLocale));

    EXPECT_EQ(text_of(2.5), "{\"a\":2.5}\n");

    std::locale::global(before);
}
