#include "tests/unit/local_source/msc_source_fixture.h"

namespace {

class CQRAMSCSourceWithPackages : public CQRAMSCSourceOnDrive {
protected:
    CQRAMSCSourceWithPackages() {
        write("show/a.jpg");
        write("show/f.uvu");
        scan();
        fake_extractor::reset();
        fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = metadata_xml("Film");
        open();
        EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    }

    const std::vector<std::string> read_once{"GetXMLFromSFF " + path("show/f.uvu") + " "};
};

}  // namespace

TEST_F(CQRAMSCSourceWithPackages, AMoveByIndexReadsThePackageOnce) {
    EXPECT_TRUE(source.MoveToIndex(0));
    EXPECT_TRUE(fake_extractor::calls.empty());
    EXPECT_TRUE(source.MoveToNext());
    EXPECT_TRUE(fake_extractor::calls.empty()) << "only a move by index selects a package";
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[TITLE_19]."));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(fake_extractor::calls, read_once);
    EXPECT_TRUE(source.MoveToPrevious());
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(fake_extractor::calls, read_once);
}

TEST_F(CQRAMSCSourceWithPackages, AMissSelectsThePackageThatTheCursorStaysOn) {
    EXPECT_FALSE(source.MoveToIndex(9));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_TRUE(source.MoveToIndex(9));
    EXPECT_EQ(log.count("DmpSource: Path Exists !"), 1);
    EXPECT_TRUE(source.MoveToIndex(-1));
    EXPECT_EQ(fake_extractor::calls, read_once);
}

TEST_F(CQRAMSCSourceWithPackages, APackageThatCannotBeReadCannotBeMovedTo) {
    fake_extractor::packages.clear();
    EXPECT_FALSE(source.MoveToIndex(1));
    EXPECT_FALSE(source.MoveToIndex(9));
    EXPECT_EQ(log.count("MSC-SOURCE: m_pDmpSource->MoveToIndex failed."), 2);
    EXPECT_EQ(text("FILE_PATH"), path("show/f.uvu")) << "the cursor stands on it all the same";
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_EQ(number("WIDTH"), -1);
    EXPECT_TRUE(source.MoveToIndex(0));
}

TEST_F(CQRAMSCSourceWithPackages, PackageFieldsComeFromThePackage) {
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(number("INDEX"), 0);
    EXPECT_EQ(number("WIDTH"), 1920);
    EXPECT_EQ(number("HEIGHT"), 1080);
    const std::pair<const char*, std::string> texts[] = {{"CONTENT_ID", "urn:dece:cid:1"},
                                                         {"PROFILE", "hd"},
                                                         {"RUNLENGTH", "PT1H30M"},
                                                         {"PUBLISHER", "Harbour & Sons"},
                                                         {"TITLE_19", "Film 19"},
                                                         {"TITLE_60", "Film 60"},
                                                         {"TITLE_UNLIMITED", "Film without end"},
                                                         {"TITLE_SORT", "Film, sorted"},
                                                         {"SUMMARY_190", "short"},
                                                         {"SUMMARY_400", "longer"},
                                                         {"SUMMARY_4000", "longest"},
                                                         {"DESC_LANGUAGE", "en-GB"},
                                                         {"ENCODING", "image/jpeg"},
                                                         {"TRACK_REFERENCE", "2"},
                                                         {"STREAM_NAME", path("show/f.uvu")},
                                                         {"COUNTRY", "GB"},
                                                         {"SYSTEM", "BBFC"},
                                                         {"RATING_VALUE", "12A"},
                                                         {"RATING_DESC", "mild peril"},
                                                         {"ADULT_CONTENT", "false"}};
    for (const auto& [field, value] : texts) {
        EXPECT_EQ(text(field), value) << field;
    }
    EXPECT_EQ(text("FILE_PATH"), path("show/f.uvu"));
    EXPECT_EQ(text("FORMAT"), "uvu");
    EXPECT_EQ(text("INDEX"), "(failed)");
    EXPECT_EQ(number("COUNTRY"), -1);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid field[INDEX]."));
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid field[COUNTRY]."));
}

TEST_F(CQRAMSCSourceWithPackages, AFieldThatThePackageDoesNotHaveFails) {
    fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = "<m><ContentMetadata/></m>";
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(text("COUNTRY"), "(failed)");
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[COUNTRY]."));
    EXPECT_EQ(number("WIDTH"), -1);
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[WIDTH]."));
    EXPECT_EQ(text("TITLE_19"), "(none)") << "an empty text is a value";
}

TEST_F(CQRAMSCSourceWithPackages, APackageWhoseDriveWentAnswersFromMemory) {
    ASSERT_TRUE(source.MoveToIndex(1));
    fake_extractor::packages.clear();
    std::filesystem::remove(root() + "/stick/show/f.uvu");
    EXPECT_TRUE(source.MoveToIndex(0));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(text("TITLE_19"), "Film 19");
}

TEST_F(CQRAMSCSourceWithPackages, APackageCountsAsPackageAndHasTheTypeOfTheListThatNamesIt) {
    int count = 0;
    EXPECT_TRUE(source.GetItemCountByType(QRA_MEDIA_TYPE_SCSA, &count));
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(source.GetItemCountByType(QRA_MEDIA_TYPE_VIDEO, &count));
    EXPECT_EQ(count, 0);
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(number("MEDIA_TYPE"), QRA_MEDIA_TYPE_VIDEO);
}

TEST_F(CQRAMSCSourceWithPackages, OtherEntriesAskNoPackage) {
    ASSERT_TRUE(source.MoveToIndex(0));
    EXPECT_EQ(text("COUNTRY"), "(failed)");
    EXPECT_FALSE(log.contains("MSC-SOURCE: Invalid field["));
}
