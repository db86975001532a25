// What is said to servers and what their answers say.
#include <gtest/gtest.h>

#include "nubelink.h"
#include "platform/nubelink/host/feature_request.h"
#include "platform/nubelink/host/search_criteria.h"
#include "platform/nubelink/host/soap_call.h"

using namespace nbl;

namespace {

SoapAnswer answer_to(std::string body, unsigned status = 200) {
    HttpAnswer http;
    http.status = status;
    http.body = std::move(body);
    return read_soap_answer(std::move(http));
}

std::string enveloped(const std::string& content) {
    return "<?xml version=\"1.0\"?><s:Envelope "
           "xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\"><s:Body>" +
           content + "</s:Body></s:Envelope>";
}

std::string fault(const std::string& code) {
    return enveloped(
        "<s:Fault><faultcode>s:Client</faultcode><faultstring>UPnPError</faultstring><detail><UPnPError>"
        "<errorCode>" +
        code + "</errorCode><errorDescription>no</errorDescription></UPnPError></detail></s:Fault>");
}

TEST(SoapQuestion, EscapesItsArguments) {
    SoapQuestion question;
    question.action = "Browse";
    question.arguments = {{"ObjectID", "<a>&\"\xFF"}, {"Filter", "*"}};
    const std::string body = soap_question_body("urn:x:1", question);
    EXPECT_NE(body.find("<u:Browse xmlns:u=\"urn:x:1\"><ObjectID>&lt;a&gt;&amp;&quot;\xEF\xBF\xBD</ObjectID>"
                        "<Filter>*</Filter></u:Browse>"),
              std::string::npos)
        << body;
}

TEST(SoapAnswer, GivesItsArgumentsUnescaped) {
    const SoapAnswer answer = answer_to(enveloped(
        "<u:BrowseResponse xmlns:u=\"x\"><Result>&lt;a&gt;K\xC3\xA4se &amp;amp; B\xE4r&lt;/a&gt;</Result>"
        "<NumberReturned>1</NumberReturned></u:BrowseResponse>"));
    EXPECT_EQ(answer.error, NBL_ERROR_NONE);
    EXPECT_EQ(answer.find("Result"), "<a>Käse &amp; B\xEF\xBF\xBDr</a>");
    EXPECT_EQ(answer.find("NumberReturned"), "1");
    EXPECT_EQ(answer.find("TotalMatches"), "");
}

/// An answer whose result is that text.
std::string answer_with(const std::string& result) {
    return enveloped("<u:BrowseResponse xmlns:u=\"x\"><Result>" + result +
                     "</Result><NumberReturned>1</NumberReturned></u:BrowseResponse>");
}

TEST(SoapAnswer, GivesALongResultAsItGivesAShortOne) {
    const std::pair<const char*, const char*> kTexts[] = {
        {"&lt;a b=&quot;c&quot;&gt;&apos;&amp;amp;&amp;#39;", "<a b=\"c\">'&amp;&#39;"},
        {"Tom & Jerry ?a=1&b=2&", "Tom & Jerry ?a=1&b=2&"},
        {"&nbsp;&ltx&amp", "&nbsp;&ltx&amp"},
        {"&#228;&#xE4;&#0;", "\xC3\xA4\xC3\xA4"},
        {"B\xE4r \x01 \xF0\x9F\x8E\xB5", "B\xEF\xBF\xBDr \xEF\xBF\xBD \xF0\x9F\x8E\xB5"},
        {"a\r\nb\rc", "a\nb\nc"},
        {"a > b ]] \"quoted\" 'text'", "a > b ]] \"quoted\" 'text'"},
        {"\xEF\xB7\x90", "\xEF\xB7\x90"},
        {"<![CDATA[<a>&amp;]]>", "<a>&amp;"},
        {"a<!-- no -->b<?no?>c", "abc"},
    };
    const std::string padding(10'000, 'x');
    for (const auto& [escaped, plain] : kTexts) {
        EXPECT_EQ(answer_to(answer_with(escaped)).find("Result"), plain) << escaped;
        const SoapAnswer answer = answer_to(answer_with(padding + escaped + padding));
        EXPECT_TRUE(answer.find("Result") == padding + plain + padding) << escaped;
        EXPECT_EQ(answer.find("NumberReturned"), "1") << escaped;
    }
}

TEST(SoapAnswer, GivesALongResultWhateverStandsAroundIt) {
    const std::string text(10'000, 'x');
    const std::string wanted = text + "<>" + text;
    const std::string escaped = text + "&lt;&gt;" + text;
    const auto result_of = [](const std::string& body) {
        return std::string(answer_to(body).find("Result"));
    };
    EXPECT_TRUE(result_of(enveloped("<r><Result a='>' b=\"'>\">" + escaped + "</Result></r>")) == wanted);
    EXPECT_TRUE(result_of(enveloped("<r><Other>" + escaped + "</Other><Result>" + escaped +
                                    "</Result></r>")) == wanted);
    EXPECT_EQ(result_of(enveloped("<r><!--<Result>" + escaped + "</Result>--><Result>y</Result></r>")), "y");
    EXPECT_EQ(result_of(enveloped("<r><![CDATA[<Result>" + escaped + "</Result>]]><Result>y</Result></r>")),
              "y");
    EXPECT_TRUE(result_of("<e><b><r><Result>" + escaped) == wanted) << "cut off";
    EXPECT_TRUE(result_of("<e><b><r><Result>" + escaped + "</Result>") == wanted) << "cut off behind it";
    EXPECT_EQ(result_of("<e><b><r><Result a='" + escaped + "</Result>"), "") << "no tag's end";
}

TEST(SoapAnswer, TellsTheServersErrorsApart) {
    EXPECT_EQ(answer_to(fault("401"), 500).error, NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(answer_to(fault("501"), 500).error, NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(answer_to(fault("602"), 500).error, NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(answer_to(fault("701"), 500).error, NBL_ERROR_ITEM_NOT_EXIST);
    EXPECT_EQ(answer_to(fault("710"), 500).error, NBL_ERROR_ITEM_NOT_EXIST);
    EXPECT_EQ(answer_to(fault("709"), 500).error, NBL_ERROR_REFUSED);
    EXPECT_EQ(answer_to(fault("709"), 500).upnp_error, 709);
    EXPECT_EQ(answer_to(fault("nonsense"), 500).error, NBL_ERROR_REFUSED);
    EXPECT_EQ(answer_to(fault("701"), 200).error, NBL_ERROR_ITEM_NOT_EXIST) << "whatever the status";
}

TEST(SoapAnswer, TakesTheStatusWhereTheBodySaysNothing) {
    EXPECT_EQ(answer_to("", 401).error, NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(answer_to("Not Implemented", 501).error, NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(answer_to("", 404).error, NBL_ERROR_REFUSED);
    EXPECT_EQ(answer_to("", 302).error, NBL_ERROR_REFUSED);
}

TEST(SoapAnswer, IsBadWithoutAResponse) {
    for (const char* body : {"", "<html/>", "garbage", "<s:Envelope><s:Body/></s:Envelope>"}) {
        EXPECT_EQ(answer_to(body).error, NBL_ERROR_BAD_ANSWER) << body;
    }
}

TEST(SoapAnswer, HoldsAFewArgumentsOnly) {
    std::string arguments;
    for (int i = 0; i < 10'000; ++i) {
        arguments += "<a>x</a>";
    }
    EXPECT_LE(answer_to(enveloped("<r>" + arguments + "</r>")).arguments.size(), 100U);
}

TEST(SoapAnswer, PassesTheCallsErrorOn) {
    HttpAnswer http;
    http.error = NBL_ERROR_TIMEOUT;
    EXPECT_EQ(read_soap_answer(http).error, NBL_ERROR_TIMEOUT);
}

TEST(SearchCriteria, AskForTypesAndAKeyword) {
    nbl_searchcriteria_s criteria{"say \"a\\b\"", NBL_ITEM_TYPE_IMAGE | NBL_ITEM_TYPE_VIDEO};
    EXPECT_EQ(search_text(criteria),
              "(upnp:class derivedfrom \"object.item.imageItem\" or upnp:class derivedfrom "
              "\"object.item.videoItem\") "
              "and dc:title contains \"say \\\"a\\\\b\\\"\"");
    EXPECT_EQ(search_text({"", NBL_ITEM_TYPE_MUSIC}), "(upnp:class derivedfrom \"object.item.audioItem\")");
    EXPECT_EQ(search_text({"", 0}), "upnp:class derivedfrom \"object.item\"");
}

TEST(SearchCapabilities, SayWhetherObjectsCanBeFoundByClass) {
    EXPECT_TRUE(can_search_by_class("dc:title, upnp:class ,dc:date"));
    EXPECT_TRUE(can_search_by_class("*"));
    EXPECT_FALSE(can_search_by_class("dc:title"));
    EXPECT_FALSE(can_search_by_class(""));
}

}  // namespace
