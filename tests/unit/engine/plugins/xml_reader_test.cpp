#include "engine/plugins/support/xml_reader.h"

#include <gtest/gtest.h>

#include <string>

using namespace engine;

namespace {

/// Writes down what it is handed.
class Script : public XmlHandler {
public:
    void open(std::string_view space, std::string_view name, const XmlAttributes& attributes) override {
        text_of_all += "<" + (space.empty() ? "" : "{" + std::string(space) + "}") + std::string(name);
        const std::string value = attributes.find("a");
        text_of_all += value.empty() ? ">" : " " + value + ">";
    }
    void text(std::string_view piece) override { text_of_all += piece; }
    void close() override { text_of_all += "</>"; }

    std::string text_of_all;
};

std::string script_of(const std::string& document, std::string* reason = nullptr) {
    Script script;
    XmlReader reader(script);
    const bool good = reader.read(document.data(), document.size()) && reader.finish();
    EXPECT_EQ(good, reader.reason().empty()) << document;
    if (reason != nullptr) {
        *reason = reader.reason();
    }
    return script.text_of_all;
}

}  // namespace

TEST(XmlReader, HandsElementsOverWithTheirNamespaceWhateverThePrefix) {
    EXPECT_EQ(script_of(R"(<x:a xmlns:x="u:1" a="v"><b xmlns="u:2">t</b><c/></x:a>)"),
              "<{u:1}a v><{u:2}b>t</><c></></>");
}

TEST(XmlReader, AnAttributeOfAnotherNamespaceIsAnotherOne) {
    EXPECT_EQ(script_of(R"(<e xmlns:x="u:1" x:a="no"/>)"), "<e></>");
}

TEST(XmlReader, ReadsCharacterReferencesAndSections) {
    EXPECT_EQ(script_of("<a>&lt;&#228;<![CDATA[<b>]]></a>"), "<a><\xc3\xa4<b></>");
}

TEST(XmlReader, ATagWithoutAnEndIsRefusedBeforeAllOfItIsTaken) {
    Script script;
    XmlReader reader(script);
    std::string tag = "<a";
    int pieces = 0;
    for (int i = 0; reader.read(tag.data(), tag.size()) && pieces < 1000; ++pieces) {
        tag.clear();
        for (const int end = i + 100; i < end; ++i) {
            tag += " a" + std::to_string(i) + "=''";
        }
    }
    EXPECT_EQ(reader.reason(), "one of its tags is too long");
    EXPECT_LT(pieces, 150) << "of about a thousand bytes";
    EXPECT_EQ(script.text_of_all, "");
}

TEST(XmlReader, AVeryLongTextIsNoLongTag) {
    const std::string text(size_t{1} << 20, 'x');
    EXPECT_EQ(script_of("<a>" + text + "</a>"), "<a>" + text + "</>");
}

TEST(XmlReader, PiecesMakeNoDifference) {
    const std::string document = "<a a=\"\xc3\xa4\">\xe2\x82\xac<b/>&amp;</a>";
    Script script;
    XmlReader reader(script);
    for (const char& byte : document) {
        ASSERT_TRUE(reader.read(&byte, 1)) << reader.reason();
    }
    ASSERT_TRUE(reader.finish()) << reader.reason();
    EXPECT_EQ(script.text_of_all, script_of(document));
}

TEST(XmlReader, RefusesWhatIsBroken) {
    for (const char* document :
         {"", "x", "<a>", "<a></b>", "<a/><b/>", "<a>&no;</a>", "<a b=c/>", "<a>\xff</a>"}) {
        std::string reason;
        script_of(document, &reason);
        EXPECT_EQ(reason, "its XML is broken") << document;
    }
}

TEST(XmlReader, RefusesEachDocumentType) {
    for (const char* type :
         {"<!DOCTYPE a>", "<!DOCTYPE a [<!ENTITY b \"c\">]>", "<!DOCTYPE a SYSTEM \"b\">"}) {
        std::string reason;
        EXPECT_EQ(script_of(std::string(type) + "<a/>", &reason), "");
        EXPECT_NE(reason.find("document type"), std::string::npos) << type;
    }
}

TEST(XmlReader, RefusesWhatLiesDeeperThanItsBound) {
    const auto nested = [](int depth) {
        std::string document;
        for (int i = 0; i < depth; ++i) {
            document += "<a>";
        }
        for (int i = 0; i < depth; ++i) {
            document += "</a>";
        }
        return document;
    };
    std::string reason;
    script_of(nested(XmlReader::kDeepest), &reason);
    EXPECT_EQ(reason, "");
    script_of(nested(XmlReader::kDeepest + 1), &reason);
    EXPECT_NE(reason.find("too deep"), std::string::npos);
}

TEST(XmlReader, HandsNothingOverAfterAStop) {
    class Stopper : public Script {
    public:
        void text(std::string_view piece) override {
            Script::text(piece);
            reader->stop();
        }
        XmlReader* reader = nullptr;
    } script;
    XmlReader reader(script);
    script.reader = &reader;
    const std::string document = "<a>1<b>2</b></a>";

    EXPECT_TRUE(reader.read(document.data(), document.size()));

    EXPECT_EQ(script.text_of_all, "<a>1");
}
