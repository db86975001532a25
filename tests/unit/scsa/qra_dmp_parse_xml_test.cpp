#include "libqra-agent/source/scsa/qra_dmp_parse_xml.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <atomic>
#include <climits>
#include <thread>

#include "tests/fakes/dlog_capture.h"
#include "tests/unit/scsa/package_xml.h"

namespace {

std::atomic<int> g_cleanups{0};

}  // namespace

// Stands before libxml2's own, and counts.
extern "C" void xmlCleanupParser() {
    ++g_cleanups;
    using Cleanup = void (*)();
    static const auto real = reinterpret_cast<Cleanup>(dlsym(RTLD_NEXT, "xmlCleanupParser"));
    real();
}

// The cleanup forgets the state of each thread but the one that used libxml2 first, with the key to it. Where
// that is another thread, each call leaves the state of its own thread behind.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:xmlGetGlobalState\n";
}

namespace {

class CQRADmpParseXmlTest : public ::testing::Test {
protected:
    _stDMPMETADATA parse(const std::string& xml) {
        _stDMPMETADATA data;
        result = CQRADmpParseXml().ParseDMPMetaData(xml, data);
        return data;
    }

    /// The entry that a table of contents picks; -7 if none, -8 on failure.
    int pick(const std::string& xml, std::vector<std::string> files) {
        int index = -7;
        return CQRADmpParseXml().ParseDMPTableOfContents(xml, files, index) ? index : -8;
    }

    LogCapture log;
    bool result = false;
};

/// A text of ASCII in UTF-16, with a mark in front.
std::string utf16(const std::string& text, bool big_end = false) {
    std::string wide = big_end ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) {
        wide += big_end ? std::string{'\0', c} : std::string{c, '\0'};
    }
    return wide;
}

std::string table_naming(const std::string& name) {
    return "<TOC><DescriptiveMetadata>" + name + "</DescriptiveMetadata></TOC>";
}

}  // namespace

TEST_F(CQRADmpParseXmlTest, EveryElementFillsItsField) {
    const _stDMPMETADATA data = parse(metadata_xml("Film"));
    EXPECT_FALSE(result);
    EXPECT_EQ(data.common.nIndex, 0);
    EXPECT_EQ(data.common.strContentID, "urn:dece:cid:1");
    EXPECT_EQ(data.common.strDECEMediaProfile, "hd");
    EXPECT_EQ(data.common.strRunLength, "PT1H30M");
    EXPECT_EQ(data.common.strPublisher, "Harbour & Sons");
    EXPECT_EQ(data.common.strTitleDisplay19, "Film 19");
    EXPECT_EQ(data.common.strTitleDisplay60, "Film 60");
    EXPECT_EQ(data.common.strTitleDisplayUnlimited, "Film without end");
    EXPECT_EQ(data.common.strTitleDisplaySort, "Film, sorted");
    EXPECT_EQ(data.common.strSummary190, "short");
    EXPECT_EQ(data.common.strSummary400, "longer");
    EXPECT_EQ(data.common.strSummary4000, "longest");
    EXPECT_EQ(data.common.strDescriptionLanguage, "en-GB");
}

TEST_F(CQRADmpParseXmlTest, TheRequiredImageComesFirstAndChaptersFollow) {
    const _stDMPMETADATA data = parse(metadata_xml("Film"));
    ASSERT_EQ(data.images.size(), 3u);
    EXPECT_EQ(data.images[0].nWidth, 1920);
    EXPECT_EQ(data.images[0].nHeight, 1080);
    EXPECT_EQ(data.images[0].strEncoding, "image/jpeg");
    EXPECT_EQ(data.images[0].strTrackReference, "2");
    EXPECT_EQ(data.images[0].strLocation, "cover.jpg");
    EXPECT_EQ(data.images[1].nWidth, 320);
    EXPECT_EQ(data.images[1].nHeight, 180);
    EXPECT_EQ(data.images[1].strEncoding, "image/png");
    EXPECT_EQ(data.images[1].strTrackReference, "3");
    EXPECT_EQ(data.images[1].strLocation, "") << "chapters have no location";
    EXPECT_EQ(data.images[2].nWidth, 0);
    EXPECT_EQ(data.images[2].strTrackReference, "4");
    EXPECT_TRUE(log.contains("image.nWidth = [1920], image.nHeight = [1080]"));
    EXPECT_TRUE(log.contains("image.strEncoding = [image/jpeg], image.strTrackReference = [2]"));
}

TEST_F(CQRADmpParseXmlTest, AReferenceThatIsNoNumberIsLoggedAsOneAndKeptAsText) {
    const auto data =
        parse("<m><RequiredImages><TrackReference>cover.jpg</TrackReference></RequiredImages></m>");
    ASSERT_EQ(data.images.size(), 1u);
    EXPECT_EQ(data.images[0].strTrackReference, "cover.jpg");
    EXPECT_TRUE(log.contains("image.strEncoding = [], image.strTrackReference = [0]"));
}

TEST_F(CQRADmpParseXmlTest, EveryRatingIsARecord) {
    const auto ratings = parse(metadata_xml("Film")).ratings;
    ASSERT_EQ(ratings.size(), 2u);
    EXPECT_EQ(ratings[0].strCountry, "GB");
    EXPECT_EQ(ratings[0].strSystem, "BBFC");
    EXPECT_EQ(ratings[0].strValue, "12A");
    EXPECT_EQ(ratings[0].strDescription, "mild peril");
    EXPECT_EQ(ratings[0].strAdultContent, "false");
    EXPECT_EQ(ratings[1].strCountry, "DE");
    EXPECT_EQ(ratings[1].strDescription, "");
}

TEST_F(CQRADmpParseXmlTest, ACountryIsFoundInLowerCaseOnly) {
    const auto ratings =
        parse("<m><Ratings><Rating><Country>GB</Country><system>BBFC</system></Rating></Ratings></m>")
            .ratings;
    ASSERT_EQ(ratings.size(), 1u);
    EXPECT_EQ(ratings[0].strCountry, "");
    EXPECT_EQ(ratings[0].strSystem, "");
}

TEST_F(CQRADmpParseXmlTest, TrailingNulsDoNotMatter) {
    const auto data = parse(metadata_xml("Film") + std::string(1000, '\0'));
    EXPECT_FALSE(result);
    EXPECT_EQ(data.common.strTitleDisplay19, "Film 19");
    EXPECT_EQ(data.images.size(), 3u);
    EXPECT_FALSE(log.contains("Fail to Parse XML"));
    EXPECT_EQ(pick(table_naming("b") + std::string(3, '\0'), {"a", "b"}), 1);
}

TEST_F(CQRADmpParseXmlTest, AnElementWithoutTextLeavesItsFieldAndTheNextIsRead) {
    for (const char* const element : {"<Summary190></Summary190>", "<Summary190/>", "<Summary190/>\n  "}) {
        const auto data = parse(std::string("<m><ContentMetadata>") + element +
                                "<Summary400>s</Summary400></ContentMetadata></m>");
        EXPECT_EQ(data.common.strSummary190, "") << element;
        EXPECT_EQ(data.common.strSummary400, "s") << element;
    }
    const auto data = parse(
        "<m><ContentMetadata><Summary190>kept</Summary190><Summary190/><Publisher>p</Publisher></"
        "ContentMetadata>"
        "<ContentMetadata><ContentID/></ContentMetadata><Ratings><Rating/></Ratings></m>");
    EXPECT_EQ(data.common.strSummary190, "kept");
    EXPECT_EQ(data.common.strPublisher, "p");
    EXPECT_EQ(data.ratings.size(), 1u);
}

TEST_F(CQRADmpParseXmlTest, TheNodeBehindAStartIsTheText) {
    const auto data = parse(
        "<m><ContentMetadata><Publisher><![CDATA[a<b]]></Publisher><RunLength><!-- c -->later</RunLength>"
        "<ContentID><x>inner</x></ContentID><Summary400> </Summary400></ContentMetadata></m>");
    EXPECT_EQ(data.common.strPublisher, "a<b");
    EXPECT_EQ(data.common.strRunLength, " c ");
    EXPECT_EQ(data.common.strContentID, "");
    EXPECT_EQ(data.common.strSummary400, " ");
}

TEST_F(CQRADmpParseXmlTest, ALongTextComesWhole) {
    std::string summary;
    while (summary.size() < 20000) {
        summary += "All that happens, & more. ";
    }
    std::string escaped = summary;
    for (size_t at = 0; (at = escaped.find('&', at)) != std::string::npos; ++at) {
        escaped.replace(at, 1, "&amp;");
    }
    EXPECT_EQ(parse("<m><ContentMetadata><Summary4000>" + escaped + "</Summary4000></ContentMetadata></m>")
                  .common.strSummary4000,
              summary);
}

TEST_F(CQRADmpParseXmlTest, ALaterElementOfTheSameNameOverwrites) {
    const auto data =
        parse("<m><RequiredImages><Width>1</Width><Width>2</Width><Unknown>9</Unknown></RequiredImages></m>");
    ASSERT_EQ(data.images.size(), 1u);
    EXPECT_EQ(data.images[0].nWidth, 2);
}

TEST_F(CQRADmpParseXmlTest, NumbersAreReadUpToWhatIsNone) {
    const auto image = [&](const std::string& width) {
        return parse("<m><RequiredImages><Width>" + width + "</Width></RequiredImages></m>")
            .images.at(0)
            .nWidth;
    };
    EXPECT_EQ(image(" 12px"), 12);
    EXPECT_EQ(image("-3"), -3);
    EXPECT_EQ(image("wide"), 0);
    EXPECT_EQ(image("0x10"), 0);
    EXPECT_EQ(image("99999999999999999999"), INT_MAX);
    EXPECT_EQ(image("-99999999999"), INT_MIN);
}

TEST_F(CQRADmpParseXmlTest, ARequiredImageThatDoesNotEndIsNone) {
    const auto data = parse("<m><RequiredImages><Width>1</Width>");
    EXPECT_TRUE(result);
    EXPECT_TRUE(data.images.empty());
    EXPECT_TRUE(log.contains("CQRADmpParseXml: Fail to Parse XML"));
}

TEST_F(CQRADmpParseXmlTest, AChapterThatDoesNotEndIsOne) {
    const auto data = parse("<m><Chapters><Chapter><Width>1</Width><Height>2</Height>");
    EXPECT_TRUE(result);
    ASSERT_EQ(data.images.size(), 1u);
    EXPECT_EQ(data.images[0].nWidth, 1);
    EXPECT_EQ(parse("<m><Ratings><Rating><System>s</System>").ratings.size(), 1u);
}

TEST_F(CQRADmpParseXmlTest, ASectionInTheShortFormIsOneWithoutElements) {
    const auto data = parse(
        "<m><ContentMetadata/><RequiredImages/><Ratings/><Chapters><Chapter/><Chapter><Width>5</Width></"
        "Chapter>"
        "</Chapters><ContentMetadata><Publisher>p</Publisher></ContentMetadata></m>");
    ASSERT_EQ(data.images.size(), 3u);
    EXPECT_EQ(data.images[0].nWidth, 0);
    EXPECT_EQ(data.images[1].nWidth, 0);
    EXPECT_EQ(data.images[2].nWidth, 5);
    EXPECT_EQ(data.common.strPublisher, "p");
}

TEST_F(CQRADmpParseXmlTest, ASectionInsideAnotherIsPassedOver) {
    const auto data = parse(
        "<m><ContentMetadata><RequiredImages><Width>1</Width></RequiredImages><Publisher>p</Publisher>"
        "</ContentMetadata></m>");
    EXPECT_TRUE(data.images.empty());
    EXPECT_EQ(data.common.strPublisher, "p");
}

TEST_F(CQRADmpParseXmlTest, WhatIsNoXmlIsFalseWithAnEmptyRecord) {
    for (const std::string& text : {std::string(), std::string(5, '\0'), std::string("this is no XML"),
                                    std::string("\x89PNG\r\n\x1a\n\0\0", 10), std::string("{\"a\":1}")}) {
        const auto data = parse(text);
        EXPECT_FALSE(result) << text;
        EXPECT_TRUE(data.images.empty());
        EXPECT_TRUE(data.ratings.empty());
        EXPECT_EQ(data.common.strContentID, "");
        EXPECT_TRUE(log.contains("CQRADmpParseXml: Fail to Parse XML") ||
                    log.contains("CQRADmpParseXml: XML String from DMP is not xml !!!"));
    }
}

TEST_F(CQRADmpParseXmlTest, ADocumentThatBreaksOffGivesWhatWasReached) {
    const std::string whole = metadata_xml("Film");
    const auto data = parse(whole.substr(0, whole.find("<mddece:Ratings>")));
    EXPECT_TRUE(result);
    EXPECT_EQ(data.common.strTitleDisplay19, "Film 19");
    EXPECT_EQ(data.images.size(), 1u);
    EXPECT_TRUE(data.ratings.empty());
    EXPECT_EQ(log.count("CQRADmpParseXml: Fail to Parse XML"), 1);
}

TEST_F(CQRADmpParseXmlTest, AnyCutOfADocumentEndsTheReading) {
    const std::string whole = metadata_xml("Film");
    for (size_t size = 0; size < whole.size(); ++size) {
        parse(whole.substr(0, size));
    }
    EXPECT_EQ(parse(whole).images.size(), 3u);
}

TEST_F(CQRADmpParseXmlTest, RecordsAreAddedToAndFieldsOverwritten) {
    _stDMPMETADATA data;
    CQRADmpParseXml parser;
    parser.ParseDMPMetaData(metadata_xml("A"), data);
    parser.ParseDMPMetaData(
        "<m><ContentMetadata><Publisher>p</Publisher></ContentMetadata><Ratings><Rating/>"
        "</Ratings></m>",
        data);
    EXPECT_EQ(data.common.strPublisher, "p");
    EXPECT_EQ(data.common.strTitleDisplay19, "A 19");
    EXPECT_EQ(data.ratings.size(), 3u);
}

// Hostile documents.

namespace {

std::atomic<int> g_fetches{0};

xmlParserInputPtr count_fetch(const char*, const char*, xmlParserCtxtPtr) {
    ++g_fetches;
    return nullptr;
}

}  // namespace

TEST_F(CQRADmpParseXmlTest, NothingIsFetchedAndNoEntityIsExpanded) {
    const xmlExternalEntityLoader before = xmlGetExternalEntityLoader();
    xmlSetExternalEntityLoader(count_fetch);
    const auto data = parse(
        "<!DOCTYPE m SYSTEM \"http://127.0.0.1:9/m.dtd\" [<!ENTITY f SYSTEM \"file:///etc/hostname\">"
        "<!ENTITY t \"expanded\"><!ENTITY % p SYSTEM \"file:///etc/hostname\"> %p;]>"
        "<m><ContentMetadata><Publisher>a&f;b</Publisher><RunLength>&t;</RunLength></ContentMetadata></m>");
    xmlSetExternalEntityLoader(before);
    EXPECT_EQ(g_fetches, 0);
    EXPECT_EQ(data.common.strPublisher, "a");
    EXPECT_EQ(data.common.strRunLength, "");
}

TEST_F(CQRADmpParseXmlTest, EntitiesThatMultiplyStayWhatTheyAre) {
    std::string xml = "<!DOCTYPE m [<!ENTITY e0 \"ha\">";
    for (int i = 1; i < 30; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        xml += "<!ENTITY e" + std::to_string(i) + " \"" + inner + inner + inner + inner + "\">";
    }
    const auto data = parse(xml +
                            "]><m><ContentMetadata><Publisher>&e29;</Publisher><ContentID a=\"&e29;\">i"
                            "</ContentID></ContentMetadata></m>");
    EXPECT_LT(data.common.strPublisher.size() + data.common.strContentID.size(), 100u);
}

TEST_F(CQRADmpParseXmlTest, ElementsNestedWithoutEndAreGivenUp) {
    std::string xml;
    for (int i = 0; i < 100000; ++i) {
        xml += "<a>";
    }
    parse(xml);
    EXPECT_TRUE(result);
    EXPECT_TRUE(log.contains("CQRADmpParseXml: Fail to Parse XML"));
}

TEST_F(CQRADmpParseXmlTest, AnElementWithAttributesWithoutEndIsNoXml) {
    std::string attributes;
    std::string namespaces;
    for (int i = 0; i < 200000; ++i) {
        attributes += " a" + std::to_string(i) + "='>'";
        namespaces += "<x xmlns='u'/>";
    }
    const std::string blanks(40000, ' ');
    const std::string list = "<!DOCTYPE m [<!ATTLIST m" + std::string(" a CDATA ''", 11) + ">]>";
    std::string wide;
    for (const char c : "<m a=''>" + blanks + "</m>") {
        wide += {c, '\0'};
    }
    std::string names;
    for (int i = 0; i < 500; ++i) {
        names += " xmlns:n" + std::to_string(i) + "='u'" + (i % 100 == 99 ? "><m" : "");
    }
    names = "<m" + names + ">";
    for (int i = 0; i < 140000; ++i) {
        names += "<n0:b/>";
    }
    const std::string short_type =
        "<!DOCTYPE m [<!ATTLIST m a CDATA ''>]><m>" + std::string(4100, ' ') + "</m>";
    const std::pair<const char*, std::string> texts[] = {
        {"many names in many namespaces", names},
        {"a document type that declares", short_type},
        {"a document type that declares, of two bytes a letter", utf16(short_type)},
        {"attributes of two bytes a letter", utf16("<m" + attributes + "/>")},
        {"another encoding behind UTF-16",
         utf16("<?xml version='1.0' encoding='UTF-7'?><m>" + blanks + "</m>")},
        {"attributes", "<m" + attributes + "/>"},
        {"in the middle", "<m><!-- \" --><b \"><b" + attributes + "/></m>"},
        {"a long tag", "<m a='>" + blanks + "'/>"},
        {"namespaces", "<m>" + namespaces + "</m>"},
        {"a document type", list + "<m>" + blanks + "</m>"},
        {"two bytes a letter", wide},
        {"letters in disguise", "<?xml version='1.0' encoding='UTF-7'?><m>" + blanks + "</m>"},
        {"a quote that does not end", "<?xml version='1.0 encoding=?><m>" + blanks + "</m>"},
        {"a declaration that does not end", "<?xml version='1.0'><m>" + blanks + "</m>"}};
    for (const auto& [why, text] : texts) {
        const auto refused = log.count("CQRADmpParseXml: XML String from DMP is not xml !!!");
        EXPECT_EQ(parse(text).images.size(), 0u);
        EXPECT_FALSE(result) << why;
        EXPECT_EQ(pick(text, {"a"}), -8) << why;
        EXPECT_EQ(log.count("CQRADmpParseXml: XML String from DMP is not xml !!!"), refused + 2) << why;
    }
}

TEST_F(CQRADmpParseXmlTest, ALongDocumentIsReadWhole) {
    const std::string signs = "a=\"b\"='c'=" + std::string(100000, '=');
    std::string body = "<m:Set xmlns:m='u'><ContentMetadata><Summary4000>" + signs +
                       "</Summary4000></ContentMetadata><Chapters>";
    for (int i = 0; i < 3000; ++i) {
        body += "<Chapter id=\"1>2\" of='x'><Width>" + std::to_string(i) + "</Width></Chapter>";
    }
    body += "<!--" + signs + "--><![CDATA[" + signs + "]]>";
    body += "</Chapters></m:Set>";
    for (const std::string begin :
         {"", "\xEF\xBB\xBF", "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes'?>",
          "<?xml version='1.0' encoding='iso-8859-1'?>", "<?xml-stylesheet href='style'?>"}) {
        const auto data = parse(begin + body);
        EXPECT_EQ(data.common.strSummary4000, signs) << begin;
        ASSERT_EQ(data.images.size(), 3000u) << begin;
        EXPECT_EQ(data.images.back().nWidth, 2999) << begin;
    }
}

TEST_F(CQRADmpParseXmlTest, ALongDocumentInUtf16IsReadWhole) {
    const std::string body = metadata_xml("Film") + "<!--" + std::string(40000, '=') + "-->";
    const std::string bare = body.substr(body.find("<mddece:MetadataSet"));
    for (const std::string& text :
         {bare + "<!-- encoding='x' ?> -->", "<?xml version='1.0' encoding='utf-16'?>" + bare,
          "<?xml version='1.0'?><!DOCTYPE m SYSTEM 'm.dtd'>" + bare}) {
        EXPECT_EQ(parse(utf16(text)).common.strTitleDisplay60, "Film 60");
        EXPECT_EQ(parse(utf16(text, true)).common.strTitleDisplay60, "Film 60");
        EXPECT_FALSE(result);
    }
}

TEST_F(CQRADmpParseXmlTest, ADocumentTypeThatDeclaresNothingIsRead) {
    const std::string xml =
        "<!DOCTYPE m PUBLIC '-//x' \"m.dtd\" ><m><ContentMetadata><Publisher>[p]</Publisher>"
        "</ContentMetadata>" +
        std::string(5000, ' ') + "</m>";
    EXPECT_EQ(parse(xml).common.strPublisher, "[p]");
}

TEST_F(CQRADmpParseXmlTest, NothingIsWrittenToTheStandardError) {
    testing::internal::CaptureStderr();
    parse("<m><a></b></m>");
    parse("no XML");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Tables of contents.

TEST_F(CQRADmpParseXmlTest, ATableOfContentsPicksTheEntryThatHoldsTheName) {
    EXPECT_EQ(pick(table_naming("/urn:a:b"), {"x", "dir/urn%3Aa%3Ab.xml", "urn%3Aa%3Ab"}), 1);
    EXPECT_TRUE(log.contains("CQRADmpParseXml: DescriptiveMetadata = [/urn:a:b]"));
    EXPECT_TRUE(log.contains("> "));
    EXPECT_TRUE(log.contains("DescriptiveMetadata = [urn%3Aa%3Ab]"));
    EXPECT_TRUE(log.contains("TableOfContents strXML : \n" + table_naming("/urn:a:b") + "\n"));
}

TEST_F(CQRADmpParseXmlTest, MillionsOfColonsAreEscapedAtOnce) {
    const size_t count = 2000000;
    std::string path;
    EXPECT_TRUE(CQRADmpParseXml().ParseDMPTableOfContents(table_naming(std::string(count, ':')), path));
    EXPECT_EQ(path.size(), 3 * count);
    EXPECT_EQ(path.substr(0, 9), "%3A%3A%3A");
}

TEST_F(CQRADmpParseXmlTest, OnlyOneLeadingSlashIsDropped) {
    EXPECT_EQ(pick(table_naming("//a"), {"a", "x/a"}), 1);
}

TEST_F(CQRADmpParseXmlTest, ANameThatNoEntryHoldsLeavesTheIndex) {
    EXPECT_EQ(pick(table_naming("c"), {"a", "b"}), -7);
    EXPECT_EQ(pick(table_naming("c"), {}), -7);
}

TEST_F(CQRADmpParseXmlTest, OnlyTheFirstNameCounts) {
    EXPECT_EQ(
        pick("<t><DescriptiveMetadata>b</DescriptiveMetadata><DescriptiveMetadata>a</DescriptiveMetadata>"
             "</t>",
             {"a", "b"}),
        1);
    const std::string blanks(10000, ' ');
    EXPECT_EQ(
        pick("<t><x:DescriptiveMetadata xmlns:x='u'>b</x:DescriptiveMetadata>" + blanks + "<cut", {"a", "b"}),
        1)
        << "what follows the first is not looked at";
}

TEST_F(CQRADmpParseXmlTest, ANameThatBreaksOffIsAnEmptyOne) {
    EXPECT_EQ(pick("<t><DescriptiveMetadata>b", {"a", "b"}), 0);
}

TEST_F(CQRADmpParseXmlTest, ATableWithoutANamePicksTheFirstEntry) {
    EXPECT_EQ(pick("<TOC/>", {"a", "b"}), 0);
    EXPECT_EQ(pick(table_naming(""), {"a", "b"}), 0);
    EXPECT_EQ(pick("<TOC><DescriptiveMetadata/>b</TOC>", {"a", "b"}), 0);
    EXPECT_EQ(pick("<TOC/>", {}), -7);
}

TEST_F(CQRADmpParseXmlTest, ABrokenTableFails) {
    EXPECT_EQ(pick("<TOC><a>", {"a"}), -8);
    EXPECT_TRUE(log.contains("CQRADmpParseXml: Fail to Parse XML = [-1]"));
    EXPECT_EQ(pick("no XML", {"a"}), -8);
    EXPECT_EQ(pick("", {"a"}), -8);
}

TEST_F(CQRADmpParseXmlTest, TheSecondFormGivesTheNameWithItsSlash) {
    std::string path = "before";
    EXPECT_TRUE(CQRADmpParseXml().ParseDMPTableOfContents(table_naming("/urn:a"), path));
    EXPECT_EQ(path, "/urn%3Aa");
    EXPECT_FALSE(CQRADmpParseXml().ParseDMPTableOfContents("<a", path));
    EXPECT_EQ(path, "/urn%3Aa");
}

// The global state of libxml2.

TEST_F(CQRADmpParseXmlTest, EachEntryPointCleansUpOnce) {
    std::string path;
    g_cleanups = 0;
    parse(metadata_xml("Film"));
    EXPECT_EQ(g_cleanups, 1);
    parse("");
    EXPECT_EQ(g_cleanups, 2);
    pick("<TOC/>", {"a"});
    EXPECT_EQ(g_cleanups, 3);
    pick("no XML", {"a"});
    EXPECT_EQ(g_cleanups, 4);
    CQRADmpParseXml().ParseDMPTableOfContents("<TOC/>", path);
    EXPECT_EQ(g_cleanups, 5);
}

TEST_F(CQRADmpParseXmlTest, ParsesOfSeveralThreadsTakeTurns) {
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&right, thread] {
            const std::string title = "Film of thread " + std::to_string(thread);
            for (int round = 0; round < 25; ++round) {
                _stDMPMETADATA data;
                CQRADmpParseXml().ParseDMPMetaData(metadata_xml(title), data);
                right += data.common.strTitleDisplay19 == title + " 19" && data.images.size() == 3;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 100);
}

TEST_F(CQRADmpParseXmlTest, AnotherUserOfLibxml2SurvivesTheCallsBetweenItsOwn) {
    for (int round = 0; round < 20; ++round) {
        bool other_read = false;
        std::thread([&] {
            const std::string text = "<?xml version='1.0' encoding='ISO-8859-1'?><r><b>\xE9</b></r>";
            xmlDocPtr document = xmlReadMemory(text.data(), static_cast<int>(text.size()), "", nullptr, 0);
            other_read = document != nullptr && xmlDocGetRootElement(document) != nullptr;
            xmlFreeDoc(document);
        }).join();
        EXPECT_TRUE(other_read);
        EXPECT_EQ(parse(metadata_xml("Film")).common.strTitleDisplay19, "Film 19");
    }
}
