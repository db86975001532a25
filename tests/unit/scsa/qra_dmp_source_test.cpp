#include "libqra-agent/source/scsa/qra_dmp_source.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "libqra-agent/source/scsa/qra_dmp_data.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_extractor.h"
#include "tests/unit/scsa/package_xml.h"

namespace {

using Calls = std::vector<std::string>;

const std::string kTable = "<t><DescriptiveMetadata>/meta.xml</DescriptiveMetadata></t>";

class CQRADmpSourceTest : public ::testing::Test {
protected:
    CQRADmpSourceTest() {
        fake_extractor::reset();
        fake_extractor::types = {{"one.uvu", 0}, {"two.uvu", 0}, {"poster.jpg", 2}, {"still.jpg", 3}};
    }
    ~CQRADmpSourceTest() override {
        for (const auto& [path, package] : fake_extractor::packages) {
            CQRADmpData::GetInstance()->RemoveData(path);
        }
    }

    /// A container with a table of contents that names "meta.xml", and with these other entries.
    fake_extractor::Package& add_container(const std::string& path, Calls others) {
        fake_extractor::Package& package = fake_extractor::packages[path];
        others.insert(others.begin(), {"TableOfContents.xml", "meta.xml"});
        package.files = others;
        package.xml = {{"TableOfContents.xml", kTable}, {"meta.xml", metadata_xml("Described")}};
        package.sff_xml = {{"one.uvu", metadata_xml("One")}, {"two.uvu", metadata_xml("Two")}};
        return package;
    }

    std::string text(const std::string& field) {
        char* value = nullptr;
        if (!source.GetValue(field, &value)) {
            return "(failed)";
        }
        const std::string copy = value != nullptr ? value : "";
        std::free(value);
        return copy;
    }

    int number(const std::string& field) {
        int value = -1;
        return source.GetValue(field, &value) ? value : -9;
    }

    int contents(const std::string& path) {
        int count = 0;
        source.GetThumbCount(path, count);
        return count;
    }

    std::string image(const std::string& path, int content, int index) {
        unsigned long long size = 9;
        char* bytes = nullptr;
        if (!source.GetThumbImage(path, content, index, size, &bytes)) {
            EXPECT_EQ(size, 0u);
            return "(failed)";
        }
        const std::string copy(bytes, static_cast<size_t>(size));
        std::free(bytes);
        return copy;
    }

    CQRADmpSource source;
    LogCapture log;
};

}  // namespace

TEST_F(CQRADmpSourceTest, AStandAlonePackageIsReadAsOneSff) {
    fake_extractor::packages["/d/film.uvu"].sff_xml[""] = metadata_xml("Film");
    EXPECT_TRUE(source.MoveToIndex("/d/film.uvu"));
    EXPECT_EQ(fake_extractor::calls, Calls{"GetXMLFromSFF /d/film.uvu "});
    EXPECT_EQ(text("TITLE_60"), "Film 60");
    EXPECT_EQ(text("FILE_PATH"), "/d/film.uvu");
    EXPECT_EQ(text("STREAM_NAME"), "/d/film.uvu") << "its pictures lie in the file itself";
    EXPECT_EQ(text("TRACK_REFERENCE"), "2");
    EXPECT_EQ(number("WIDTH"), 1920);
    EXPECT_EQ(contents("/d/film.uvu"), 1);
    for (const char* const line :
         {"DmpSource: strFilePath = [/d/film.uvu]", "DmpSource: m_strCurFilePath = [/d/film.uvu]",
          "File Extension is [uvu]", "File Extension after CQRAUtil::ToLower [uvu]",
          "DmpSource: strField = [TITLE_60]", "DmpSource: bRet = [1], iContentCount = [1]"}) {
        EXPECT_TRUE(log.contains(line)) << line;
    }
}

TEST_F(CQRADmpSourceTest, FourExtensionsInAnyCaseStandAlone) {
    for (const char* const path :
         {"/a.uvu", "/a.uva", "/a.uvt", "/a.scsa", "/MOVIE.UVU", "/a.ScSa", "/dir.zip/b.x.uVt", "/d.uvu"}) {
        fake_extractor::calls.clear();
        source.MoveToIndex(path);
        EXPECT_EQ(fake_extractor::calls, Calls{std::string("GetXMLFromSFF ") + path + " "});
    }
    for (const char* const path : {"/movie", "/a.uvz", "/a.uvu.zip", "/a.uvv", "/a.", "/d.uvu/film", "/"}) {
        fake_extractor::calls.clear();
        source.MoveToIndex(path);
        EXPECT_EQ(fake_extractor::calls, Calls{std::string("GetFileList ") + path});
    }
}

TEST_F(CQRADmpSourceTest, APackageIsReadOnce) {
    fake_extractor::packages["/f.uvu"].sff_xml[""] = metadata_xml("Film");
    ASSERT_TRUE(source.MoveToIndex("/f.uvu"));
    fake_extractor::calls.clear();
    fake_extractor::packages["/f.uvu"] = {};
    EXPECT_TRUE(source.MoveToIndex("/f.uvu"));
    CQRADmpSource other;
    EXPECT_TRUE(other.MoveToIndex("/f.uvu"));
    EXPECT_EQ(log.count("DmpSource: Path Exists !"), 2);
    EXPECT_TRUE(fake_extractor::calls.empty());
    EXPECT_EQ(text("TITLE_19"), "Film 19");
}

TEST_F(CQRADmpSourceTest, APackageTellsNoMoreThanSixteenMegabytes) {
    const std::string blanks(9 << 20, ' ');
    fake_extractor::packages["/f.uvu"].sff_xml[""] = metadata_xml("Film") + blanks + blanks;
    EXPECT_FALSE(source.MoveToIndex("/f.uvu"));
    EXPECT_EQ(contents("/f.uvu"), 0);
    EXPECT_TRUE(log.contains("DmpSource: the XML is too large"));
    fake_extractor::types["three.uvu"] = 0;
    fake_extractor::Package& package = add_container("/c.zip", {"one.uvu", "two.uvu", "three.uvu"});
    package.xml["meta.xml"] += blanks + blanks;
    package.sff_xml["one.uvu"] += blanks;
    package.sff_xml["two.uvu"] += blanks;
    package.sff_xml["three.uvu"] = metadata_xml("Three");
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(contents("/c.zip"), 2) << "the first film and the third, which is small";
    EXPECT_EQ(text("TITLE_19"), "One 19");
}

TEST_F(CQRADmpSourceTest, APackageThatCannotBeReadIsTriedAgain) {
    EXPECT_FALSE(source.MoveToIndex("/f.uvu"));
    EXPECT_FALSE(source.MoveToIndex("/f.uvu"));
    EXPECT_EQ(fake_extractor::calls.size(), 2u);
    EXPECT_FALSE(source.MoveToIndex("/f.zip"));
    EXPECT_FALSE(source.MoveToIndex("/f.zip"));
    EXPECT_EQ(fake_extractor::calls.size(), 4u);
    EXPECT_EQ(log.count("DmpSource: GetFileList error!"), 2);
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: m_MetaDataMap is empty !"));
    EXPECT_TRUE(log.contains("DmpData: wrong file path = [/f.zip]"));
    fake_extractor::packages["/f.uvu"].sff_xml[""] = metadata_xml("Film");
    EXPECT_TRUE(source.MoveToIndex("/f.uvu"));
}

TEST_F(CQRADmpSourceTest, AContainerIsDescribedFirstAndItsSffFilesFollow) {
    add_container("/c.zip", {"one.uvu", "poster.jpg", "two.uvu", "text.txt"});
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(fake_extractor::calls,
              (Calls{"GetFileList /c.zip", "GetXML /c.zip TableOfContents.xml", "GetXML /c.zip meta.xml",
                     "GetXMLFromSFF /c.zip one.uvu", "GetXMLFromSFF /c.zip two.uvu"}));
    EXPECT_EQ(contents("/c.zip"), 3);
    EXPECT_EQ(text("TITLE_19"), "Described 19");
    EXPECT_TRUE(log.contains("vEmbeddedFileList[0] = [TableOfContents.xml]"));
    EXPECT_TRUE(log.contains("vEmbeddedFileList[5] = [text.txt]"));
    EXPECT_TRUE(log.contains("DmpSource: m_strCurFilePath = [/c.zip], vEmbeddedFileList.size() = [6]"));
    EXPECT_TRUE(log.contains("bRet1 = [1], bRet2 = [1]"));
    EXPECT_TRUE(log.contains("DmpSource: m_HasPoster index = [3]"));
    EXPECT_TRUE(log.contains("DmpSource: Poster Path = [poster.jpg]"));
}

TEST_F(CQRADmpSourceTest, ThePosterTakesTheFirstPicturesPlace) {
    add_container("/c.zip", {"still.jpg", "poster.jpg"});
    ASSERT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(text("STREAM_NAME"), "poster.jpg");
    EXPECT_EQ(text("TRACK_REFERENCE"), "");
    EXPECT_EQ(number("WIDTH"), 1920);
    int images = 0;
    EXPECT_TRUE(source.GetThumbImageCount("/c.zip", 0, images));
    EXPECT_EQ(images, 3);
    EXPECT_TRUE(log.contains("DmpSource: bRet = [1], iImageCount = [3]"));
}

TEST_F(CQRADmpSourceTest, WithoutAPosterADescriptionHasNoPictures) {
    add_container("/c.zip", {"still.jpg"});
    ASSERT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(number("WIDTH"), -9);
    EXPECT_EQ(text("TITLE_19"), "Described 19");
    int images = 7;
    EXPECT_FALSE(source.GetThumbImageCount("/c.zip", 0, images));
    EXPECT_EQ(images, 0);
}

TEST_F(CQRADmpSourceTest, WithoutAPosterThePicturesOfAnSffAreTheFirst) {
    add_container("/c.zip", {"two.uvu"});
    ASSERT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(number("WIDTH"), 1920);
    EXPECT_EQ(text("STREAM_NAME"), "two.uvu");
}

TEST_F(CQRADmpSourceTest, AContainerWithoutATableHasItsSffFiles) {
    fake_extractor::Package& package = add_container("/c.zip", {"one.uvu", "two.uvu", "poster.jpg"});
    package.files = Calls{"meta.xml", "one.uvu", "two.uvu"};
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("DmpSource: /c.zip has not TableOfContents.XML file"));
    EXPECT_TRUE(log.contains("bRet1 = [0], bRet2 = [1]"));
    EXPECT_EQ(contents("/c.zip"), 2);
    EXPECT_EQ(text("TITLE_19"), "One 19");
}

TEST_F(CQRADmpSourceTest, AnSffThatCannotBeReadIsSkipped) {
    fake_extractor::Package& package = add_container("/c.zip", {"one.uvu", "two.uvu"});
    package.sff_xml.erase("one.uvu");
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(contents("/c.zip"), 2);
}

TEST_F(CQRADmpSourceTest, AContainerWithNothingToTellIsKnownAndEmpty) {
    fake_extractor::packages["/c.zip"].files = Calls{"readme.txt"};
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("bRet1 = [0], bRet2 = [1]"));
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: file /c.zip has no data"));
    fake_extractor::calls.clear();
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(fake_extractor::calls.empty());
}

TEST_F(CQRADmpSourceTest, AnEmptyContainerIsKnownAndEmpty) {
    fake_extractor::packages["/c.zip"].files = Calls{};
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("DmpSource: GetFileList no data, vEmbeddedFileList.empty()!"));
    EXPECT_FALSE(log.contains("bRet1"));
    EXPECT_TRUE(CQRADmpData::GetInstance()->FindPathExist("/c.zip"));
    EXPECT_EQ(fake_extractor::calls.size(), 1u);
}

TEST_F(CQRADmpSourceTest, ATableThatCannotBeReadDescribesNothing) {
    fake_extractor::Package& package = add_container("/c.zip", {"one.uvu"});
    package.xml.erase("TableOfContents.xml");
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("DmpSource: iMetadataXML is not exist"));
    EXPECT_EQ(contents("/c.zip"), 1);
    EXPECT_EQ(text("TITLE_19"), "One 19");
}

TEST_F(CQRADmpSourceTest, ATableThatNamesNoEntryDescribesNothing) {
    fake_extractor::Package& package = add_container("/c.zip", {});
    package.files = Calls{"x/TableOfContents.XML", "other.xml"};
    package.xml["x/TableOfContents.XML"] = kTable;
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("DmpSource: iMetadataXML is not exist"));
}

TEST_F(CQRADmpSourceTest, ADescriptionThatCannotBeReadIsNone) {
    fake_extractor::Package& package = add_container("/c.zip", {});
    package.xml.erase("meta.xml");
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_TRUE(log.contains("DmpSource: GetMetaData has failed"));
    EXPECT_TRUE(log.contains("bRet1 = [0], bRet2 = [1]"));
}

TEST_F(CQRADmpSourceTest, ADescriptionThatIsNoXmlIsAContentWithoutTexts) {
    fake_extractor::Package& package = add_container("/c.zip", {"one.uvu"});
    package.xml["meta.xml"] = "no XML";
    EXPECT_TRUE(source.MoveToIndex("/c.zip"));
    EXPECT_EQ(contents("/c.zip"), 2);
    EXPECT_EQ(text("TITLE_19"), "");
    EXPECT_EQ(number("WIDTH"), 1920) << "the SFF has pictures";
}

TEST_F(CQRADmpSourceTest, PicturesComeByThreeRoutes) {
    fake_extractor::Package& container = add_container("/c.zip", {"one.uvu", "poster.jpg"});
    container.images["poster.jpg"] = "poster";
    container.sff_images[{"one.uvu", "2"}] = "cover of one";
    container.sff_images[{"one.uvu", "3"}] = "chapter of one";
    fake_extractor::Package& alone = fake_extractor::packages["/f.uvu"];
    alone.sff_xml[""] = metadata_xml("Film");
    alone.sff_images[{"/f.uvu", "2"}] = "cover of the film";
    ASSERT_TRUE(source.MoveToIndex("/c.zip"));
    ASSERT_TRUE(source.MoveToIndex("/f.uvu"));
    EXPECT_EQ(image("/c.zip", 0, 0), "poster");
    EXPECT_EQ(image("/c.zip", 1, 0), "cover of one");
    EXPECT_EQ(image("/c.zip", 1, 1), "chapter of one");
    EXPECT_EQ(image("/f.uvu", 0, 0), "cover of the film");
    EXPECT_TRUE(log.contains("DmpSource: MetaDataExtractor::GetImageBuffer strImgFilePath = [poster.jpg]"));
    EXPECT_TRUE(
        log.contains("DmpSource: MetaDataExtractor::GetImageBufferFromSFF strImgFilePath = [/f.uvu]"));
    EXPECT_TRUE(log.contains("DmpSource: ullBuffSize = [6], pImageBuf = [0x"));
}

TEST_F(CQRADmpSourceTest, APictureThatIsNotThereFails) {
    fake_extractor::packages["/f.uvu"].sff_xml[""] = metadata_xml("Film");
    ASSERT_TRUE(source.MoveToIndex("/f.uvu"));
    EXPECT_EQ(image("/f.uvu", 0, 0), "(failed)");
    EXPECT_TRUE(log.contains("DmpSource: dmp-manager get image buffer fail"));
    EXPECT_EQ(image("/f.uvu", 0, 9), "(failed)");
    EXPECT_EQ(image("/other", 0, 0), "(failed)");
    EXPECT_EQ(log.count("DmpSource: Get thumbnai data failed"), 2);
}

TEST_F(CQRADmpSourceTest, AnEmptyPathHasNoPictures) {
    int count = 5;
    EXPECT_FALSE(source.GetThumbCount("", count));
    EXPECT_EQ(count, 0);
    count = 5;
    EXPECT_FALSE(source.GetThumbImageCount("", 0, count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(image("", 0, 0), "(failed)");
    EXPECT_EQ(log.count("DmpSource: strFilePath is empty(), no metedata"), 3);
}

TEST_F(CQRADmpSourceTest, ValuesBeforeAnySelectionFail) {
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: wrong file path = []"));
}

TEST_F(CQRADmpSourceTest, TheLastSelectionCountsAlsoWhenItFailed) {
    fake_extractor::packages["/f.uvu"].sff_xml[""] = metadata_xml("Film");
    ASSERT_TRUE(source.MoveToIndex("/f.uvu"));
    EXPECT_FALSE(source.MoveToIndex("/gone.uvu"));
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("DmpData: wrong file path = [/gone.uvu]"));
}
