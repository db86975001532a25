#include "platform/nubelink/host/text.h"

#include <gtest/gtest.h>

using namespace nbl;

namespace {

std::string repaired(std::string text) {
    repair_text(text);
    return text;
}

std::string mended(std::string text) {
    mend_document(text);
    return text;
}

TEST(RepairText, LeavesGoodTextAlone) {
    const std::string good = "Käse \xF0\x9F\x8E\xB5\n\t\r <a>&amp;</a>";
    EXPECT_EQ(repaired(good), good);
    EXPECT_EQ(repaired(""), "");
}

TEST(RepairText, ReplacesEachByteThatIsNotUtf8AndNothingElse) {
    EXPECT_EQ(repaired("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(repaired("ä\xE4ä"), "ä\xEF\xBF\xBDä");
    EXPECT_EQ(repaired("cut\xC3"), "cut\xEF\xBF\xBD");
    EXPECT_EQ(repaired("\xC0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "an overlong NUL";
    EXPECT_EQ(repaired("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "half of a pair";
}

TEST(RepairText, ReplacesCharactersThatXmlForbids) {
    EXPECT_EQ(repaired(std::string("a\0b\x01", 4)),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
    EXPECT_EQ(repaired("\xEF\xBF\xBF"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(RepairText, FindsAByteWhereverItStands) {
    const std::string good = "0123456789 abcdefghijklm";
    for (size_t at = 0; at < good.size(); ++at) {
        for (const char bad : {'\x00', '\x1F', '\x80', '\xFF'}) {
            std::string text = good;
            text[at] = bad;
            const std::string expected = good.substr(0, at) + "\xEF\xBF\xBD" + good.substr(at + 1);
            EXPECT_EQ(repaired(text), expected) << at << " " << static_cast<int>(bad);
        }
        for (const char fine : {'\t', ' ', '\x7F'}) {
            std::string text = good;
            text[at] = fine;
            EXPECT_EQ(repaired(text), text) << at;
        }
        std::string text = good;
        text.insert(at, "\xE2\x82\xAC");
        EXPECT_EQ(repaired(text), text) << at;
    }
}

TEST(MendDocument, ConvertsWhatDeclaresAnotherEncoding) {
    EXPECT_EQ(mended("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>K\xE4se</a>"),
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>Käse</a>");
}

TEST(MendDocument, RepairsWhatDeclaresAnEncodingThatNobodyKnows) {
    EXPECT_EQ(mended("<?xml version='1.0' encoding='nonsense'?><a>K\xE4se</a>"),
              "<?xml version='1.0' encoding='nonsense'?><a>K\xEF\xBF\xBDse</a>");
}

TEST(MendDocument, EscapesAmpersandsThatBeginNoReference) {
    EXPECT_EQ(mended("Tom & Jerry &amp; ?a=1&b=2&"), "Tom &amp; Jerry &amp; ?a=1&amp;b=2&amp;");
    EXPECT_EQ(mended("&lt;&gt;&quot;&apos;&#228;&#xE4;"), "&lt;&gt;&quot;&apos;&#228;&#xE4;");
    EXPECT_EQ(mended("&nbsp;&#12345678901;"), "&amp;nbsp;&amp;#12345678901;");
    EXPECT_EQ(mended("<![CDATA[a & b]]>"), "<![CDATA[a & b]]>");
}

TEST(WithoutEntities, GivesWhatXmlsOwnReferencesStandFor) {
    EXPECT_EQ(without_entities("&lt;a b=&quot;c&quot;&gt;&apos;&amp;amp;"), "<a b=\"c\">'&amp;");
    EXPECT_EQ(without_entities("&nbsp;&#228;& &"), "&nbsp;&#228;& &");
    EXPECT_EQ(without_entities(""), "");
}

TEST(CutAtCharacter, CutsBetweenTwoCharacters) {
    EXPECT_EQ(cut_at_character("abc", 3), 3U);
    EXPECT_EQ(cut_at_character("abcd", 3), 3U);
    EXPECT_EQ(cut_at_character("aää", 2), 1U);
    EXPECT_EQ(cut_at_character("aää", 3), 3U);
}

TEST(NumberOf, TakesWholeDecimalNumbersOnly) {
    EXPECT_EQ(number_of("0"), 0U);
    EXPECT_EQ(number_of("18446744073709551615"), UINT64_MAX);
    for (const char* wrong : {"", "-1", "+1", " 1", "1 ", "1x", "18446744073709551616", "0x10"}) {
        EXPECT_FALSE(number_of(wrong)) << wrong;
    }
}

TEST(Printable, ShowsOneLineOfModestLength) {
    EXPECT_EQ(printable("a\nb\x1b[31m"), "a b\xEF\xBF\xBD[31m");
    EXPECT_LE(printable(std::string(1000, 'x')).size(), 200U);
}

TEST(XmlEscaped, EscapesWhatXmlGivesAMeaning) {
    EXPECT_EQ(xml_escaped("a<b>&\"c\""), "a&lt;b&gt;&amp;&quot;c&quot;");
}

}  // namespace
