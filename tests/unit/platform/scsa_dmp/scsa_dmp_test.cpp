#include "scsa_dmp.h"

#include <sys/stat.h>

#include "tests/unit/platform/scsa_dmp/packages_test.h"

namespace {

using package_maker::Entry;
using package_maker::Form;
using package_maker::Sff;
using package_maker::XmlPlace;

class ScsaDmp : public PackagesTest {
protected:
    std::string write_container(const std::string& name, const std::vector<Entry>& entries,
                                Form form = Form::kZip) {
        EXPECT_TRUE(package_maker::write_container(path(name), entries, form));
        return path(name);
    }
};

constexpr Form kForms[] = {Form::kZip, Form::kStoredZip, Form::kTar, Form::kCpio, Form::kTarGz};

}  // namespace

TEST_F(ScsaDmp, TheKindOfAnEntryIsInItsName) {
    const std::pair<const char*, int> kinds[] = {{"a.uvu", 0},
                                                 {"b/a.UVA", 0},
                                                 {"a.uvt", 0},
                                                 {"a.b.scsa", 0},
                                                 {"poster.jpg", 2},
                                                 {"a/Poster.PNG", 2},
                                                 {"my-poster-1.jpeg", 2},
                                                 {"TableOfContents.xml", 1},
                                                 {"still.jpg", 3},
                                                 {"poster/still.jpg", 3},
                                                 {"poster.xml", 1},
                                                 {"poster", 4},
                                                 {"a.poster", 4},
                                                 {"a.txt", 4},
                                                 {"", 4},
                                                 {".", 4},
                                                 {"uvu", 4},
                                                 {"a.uvu/b", 4},
                                                 {"jpg.poster.gif", 2}};
    for (const auto& [name, kind] : kinds) {
        EXPECT_EQ(SCSA_DMP::MetaDataExtractor::GetFileType(name), kind) << name;
    }
}

TEST_F(ScsaDmp, AContainerOfAnyFormIsListedAndItsFilesAreRead) {
    const std::string picture(300000, 'p');
    const std::vector<Entry> entries = {{"META-INF/TableOfContents.xml", "<t/>"},
                                        {"urn:a:b.xml", "<m>text</m>"},
                                        {"poster.jpg", picture},
                                        {"empty.xml", ""}};
    for (const Form form : kForms) {
        SCOPED_TRACE(static_cast<int>(form));
        const std::string package = write_container("c", entries, form);
        EXPECT_EQ(list(package),
                  (Names{"META-INF/TableOfContents.xml", "urn%3Aa%3Ab.xml", "poster.jpg", "empty.xml"}));
        EXPECT_EQ(xml(package, "META-INF/TableOfContents.xml"), "<t/>");
        EXPECT_EQ(xml(package, "urn%3Aa%3Ab.xml"), "<m>text</m>");
        EXPECT_EQ(xml(package, "urn:a:b.xml"), "<m>text</m>");
        EXPECT_EQ(xml(package, "empty.xml"), "");
        EXPECT_EQ(image(package, "poster.jpg"), picture);
        EXPECT_EQ(xml(package, "none.xml"), "(failed)");
        EXPECT_EQ(xml(package, ""), "(failed)");
        EXPECT_EQ(image(package, "empty.xml"), "(failed)");
    }
}

TEST_F(ScsaDmp, AnSffInAContainerOfAnyFormIsRead) {
    Sff sff;
    sff.xml = "<m>inside</m>";
    sff.items = {{7, "cover.jpg", std::string(50000, 'c')}};
    sff.tracks = {{2, {"picture"}}};
    for (const Form form : kForms) {
        SCOPED_TRACE(static_cast<int>(form));
        const std::string package = write_container(
            "c", {{"a.xml", "<a/>"}, {"parts/one.uvu", sff_bytes(sff)}, {"z.xml", "<z/>"}}, form);
        EXPECT_EQ(sff_xml(package, "parts/one.uvu"), "<m>inside</m>");
        EXPECT_EQ(sff_image(package, "parts/one.uvu", "cover.jpg"), std::string(50000, 'c'));
        EXPECT_EQ(sff_image(package, "parts/one.uvu", "2"), "picture");
        EXPECT_EQ(sff_image(package, "parts/one.uvu", "3"), "(failed)");
        EXPECT_EQ(sff_xml(package, "a.xml"), "(failed)");
        EXPECT_EQ(image(package, "parts/one.uvu"), "(failed)") << "an SFF is no picture";
    }
}

TEST_F(ScsaDmp, NamesComeAsTheyAreInAnyLocaleAndAreNeverPaths) {
    const std::string outside = write("outside.xml", "<outside/>");
    const Names names = {"M\xC3\xA4rchen.xml", "\xE6\x98\xA0\xE7\x94\xBB.xml", "../outside.xml", outside,
                         "a b%20c.xml"};
    std::vector<Entry> entries;
    for (const std::string& name : names) {
        entries.push_back({name, "<inside/>"});
    }
    for (const Form form : {Form::kTar, Form::kCpio}) {
        const std::string package = write_container("c", entries, form);
        for (const std::string& name : list(package)) {
            EXPECT_EQ(xml(package, name), "<inside/>") << name;
        }
    }
    std::vector<package_maker::ZipEntry> zip_entries;
    for (const std::string& name : names) {
        zip_entries.push_back({name, "<inside/>", 0, 0x800});
    }
    ASSERT_TRUE(package_maker::write_zip(path("c.zip"), zip_entries));
    EXPECT_EQ(list(path("c.zip")), names);
    EXPECT_EQ(xml(path("c.zip"), names[1]), "<inside/>");
    EXPECT_EQ(xml(path("c.zip"), "../outside.xml"), "<inside/>");
}

TEST_F(ScsaDmp, AZipMayCountIn64BitsAtAnySize) {
    const std::string film = package_maker::sff_bytes({"<m/>"});
    for (const size_t size : {10, 100000}) {
        const std::string package = path("c.zip");
        const std::string picture(size, 'p');
        ASSERT_TRUE(package_maker::write_zip(
            package, {{"a.xml", "<a/>"}, {"poster.jpg", picture}, {"f.uvu", film}}, true));
        EXPECT_EQ(list(package), (Names{"a.xml", "poster.jpg", "f.uvu"}));
        EXPECT_EQ(xml(package, "a.xml"), "<a/>");
        EXPECT_EQ(image(package, "poster.jpg"), picture);
        EXPECT_EQ(sff_xml(package, "f.uvu"), "<m/>");
    }
}

TEST_F(ScsaDmp, TheEndOfAZipIn64BitsIsNotBelieved) {
    ASSERT_TRUE(package_maker::write_zip(path("c.zip"), {{"a.xml", std::string(20000, 'a')}}, true));
    const std::string whole = read("c.zip");
    for (size_t at = whole.size() - 98; at < whole.size(); ++at) {
        for (const char byte : {'\0', '\x7f', '\xff'}) {
            std::string changed = whole;
            changed[at] = byte;
            const std::string package = write("changed.zip", changed);
            list(package);
            xml(package, "a.xml");
        }
    }
    EXPECT_EQ(xml(write("moved.zip", whole.substr(0, whole.size() - 22) + std::string(50, '\0') +
                                         whole.substr(whole.size() - 22)),
                  "a.xml"),
              "(failed)")
        << "the locator stands in front of the end";
}

TEST_F(ScsaDmp, OnlyFilesAreListed) {
    const std::string tar =
        package_maker::tar_header("folder/", 0, '5') + package_maker::tar_header("link", 0, '2') +
        package_maker::tar_header("hardlink", 0, '1') + package_maker::tar_header("pipe", 0, '6') +
        package_maker::tar_header("folder/a.xml", 3) + "<a/" + std::string(509, '\0') +
        std::string(1024, '\0');
    EXPECT_EQ(list(write("c.tar", tar)), Names{"folder/a.xml"});
}

TEST_F(ScsaDmp, OfTwoFilesOfOneNameTheFirstIsRead) {
    const std::string package =
        write_container("c.tar", {{"a.xml", "first"}, {"a.xml", "second"}}, Form::kTar);
    EXPECT_EQ(list(package), (Names{"a.xml", "a.xml"}));
    EXPECT_EQ(xml(package, "a.xml"), "first");
}

TEST_F(ScsaDmp, AnEmptyContainerHasAnEmptyList) {
    EXPECT_EQ(list(write_container("c.tar", {}, Form::kTar)), Names{});
    EXPECT_EQ(list(write_container("c.zip", {}, Form::kZip)), Names{});
}

TEST_F(ScsaDmp, TheXmlOfAnSffLiesInABoxOrInAnItemOrInTheMovie) {
    for (const XmlPlace place : {XmlPlace::kBox, XmlPlace::kItem, XmlPlace::kMovie}) {
        for (const bool items_in_meta : {false, true}) {
            Sff sff;
            sff.xml = "<m>where</m>";
            sff.xml_place = place;
            sff.items_in_meta = items_in_meta;
            sff.items = {{3, "a.jpg", "picture"}};
            EXPECT_EQ(sff_xml(write_sff("f.uvu", sff)), "<m>where</m>") << static_cast<int>(place);
            EXPECT_EQ(sff_image(path("f.uvu"), path("f.uvu"), "a.jpg"), "picture");
        }
    }
    Sff sff;
    sff.xml_place = XmlPlace::kNowhere;
    EXPECT_EQ(sff_xml(write_sff("f.uvu", sff)), "(failed)");
    EXPECT_TRUE(log.contains("f.uvu], entry []: it has no metadata XML"));
}

TEST_F(ScsaDmp, ThePrimaryXmlItemComesBeforeOthers) {
    using namespace package_maker;
    const auto file = [](uint32_t primary) {
        const std::string infos = item_info(1, "mime", "first", "application/dece+xml") +
                                  item_info(2, "mime", "second", "text/xml") +
                                  item_info(3, "mime", "text", "text/plain");
        const auto place = [](int item, int offset) {
            return be16(item) + be16(1) + be16(0) + be16(1) + be32(offset) + be32(4);
        };
        return box("ftyp", "iso6") +
               meta_box(
                   full_box("iinf", 0, be16(3) + infos) +
                   full_box("iloc", 1, be16(0x4400) + be16(3) + place(1, 0) + place(2, 4) + place(3, 8)) +
                   full_box("pitm", 0, be16(primary)) + box("idat", "<a/><b/>text"));
    };
    EXPECT_EQ(sff_xml(write("f.uvu", file(1))), "<a/>");
    EXPECT_EQ(sff_xml(write("f.uvu", file(2))), "<b/>");
    EXPECT_EQ(sff_xml(write("f.uvu", file(3))), "<a/>");
}

TEST_F(ScsaDmp, APictureIsFoundByItsReference) {
    Sff sff;
    sff.items = {{2, "5", "the item named 5"}, {6, "six.jpg", "item six"}, {9, "nine.jpg", "item nine", 3}};
    sff.tracks = {{5, {"track five"}}, {7, {"se", "", "ven", "!"}, 2}, {9, {"track ", "nine"}, 1, true}};
    const std::string package = write_sff("f.uvu", sff);
    const std::pair<const char*, const char*> pictures[] = {
        {"5", "the item named 5"}, {"six.jpg", "item six"},    {"6", "item six"},
        {"7", "seven!"},           {"9", "track nine"},        {"urn:dece:track:9", "track nine"},
        {"nine.jpg", "item nine"}, {"urn:item:6", "item six"}, {"", "(failed)"},
        {"0", "(failed)"},         {"8", "(failed)"},          {"-7", "(failed)"},
        {"7x", "(failed)"},        {"7:", "(failed)"},         {"99999999999999999999", "(failed)"},
        {"seven", "(failed)"}};
    for (const auto& [reference, picture] : pictures) {
        EXPECT_EQ(sff_image(package, "", reference), picture) << reference;
        EXPECT_EQ(sff_image(package, package, reference), picture) << reference;
    }
}

TEST_F(ScsaDmp, WhatIsNoFileThatCanBeReadFails) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    for (const std::string& package : {path("none"), path(""), path("pipe"), std::string()}) {
        EXPECT_EQ(list(package), Names{"(failed)"});
        EXPECT_EQ(xml(package, "a.xml"), "(failed)");
        EXPECT_EQ(sff_xml(package), "(failed)");
        EXPECT_EQ(image(package, "poster.jpg"), "(failed)");
        EXPECT_EQ(sff_image(package, "", "2"), "(failed)");
    }
    EXPECT_TRUE(log.contains("none], entry [a.xml]: it cannot be opened as a file"));
}

TEST_F(ScsaDmp, AFileOfTheOtherFormFails) {
    const std::string container = write_container("c.zip", {{"a.xml", "<a/>"}});
    const std::string alone = write_sff("f.uvu", {"<m/>"});
    EXPECT_EQ(sff_xml(container), "(failed)");
    EXPECT_EQ(list(alone), Names{"(failed)"});
    EXPECT_EQ(image(alone, alone), "(failed)");
}
