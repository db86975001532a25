#include "libqra-agent/source/local-source/qra_media.h"

#include <utility>

#include "libqra-agent/source/local-source/qra_mcf_row.h"
#include "libqra-agent/source/local-source/qra_media_cursor.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

/// A list of entries that need no platform, named "0", "1" and so on.
MCContentList list_of(int count) {
    MCContentList list;
    for (int i = 0; i < count; ++i) {
        list.emplace_back(MC_TYPE_GROUP, std::to_string(i).c_str(), false, nullptr);
    }
    return list;
}

class CMediaOnDrive : public SampleDrive {
protected:
    CMediaOnDrive() {
        write("folder/a.jpg");
        write_recording("folder/b", "program_title=News\n");
        write("folder/c.um4");
        scan();
    }

    /// All rows of the drive: a folder, and one row of each kind of file.
    std::vector<CMedia> rows() {
        std::vector<CMedia> all;
        media_folder_foreach_folder_from_db(
            nullptr, [](media_folder_h row, void* list) { return add(CQRAMCFRow::FromFolder, row, list); },
            &all);
        media_info_foreach_media_from_db(
            nullptr, [](media_info_h row, void* list) { return add(CQRAMCFRow::FromMedia, row, list); },
            &all);
        return all;
    }

private:
    template <class Handle>
    static bool add(bool (*make)(Handle, std::string&, CMedia&), Handle row, void* list) {
        std::string id;
        CMedia media;
        EXPECT_TRUE(make(row, id, media));
        EXPECT_FALSE(id.empty());
        static_cast<std::vector<CMedia>*>(list)->push_back(std::move(media));
        return true;
    }
};

int count_all(const char* operation) {
    int sum = 0;
    for (const char* const kind : {"media_folder_", "media_info_", "media_pvr_", "media_uhd_"}) {
        sum += faults::count(std::string(kind) + operation);
    }
    return sum;
}

}  // namespace

TEST_F(CMediaOnDrive, ACopyClonesTheHandleOfEachKindAndBothAreDestroyed) {
    {
        const std::vector<CMedia> all = rows();
        ASSERT_GE(all.size(), 4u);
        faults::reset();
        const std::vector<CMedia> copies = all;
        EXPECT_EQ(count_all("clone"), static_cast<int>(all.size()));
        for (size_t i = 0; i < all.size(); ++i) {
            EXPECT_EQ(copies[i].GetType(), all[i].GetType());
            EXPECT_STREQ(copies[i].GetName(), all[i].GetName());
            EXPECT_TRUE(copies[i].HasHandle());
        }
        EXPECT_EQ(count_all("destroy"), 0);
        faults::reset();
    }
    EXPECT_GE(faults::count("media_folder_destroy"), 2);
    EXPECT_EQ(faults::count("media_info_destroy"), 2);
    EXPECT_EQ(faults::count("media_pvr_destroy"), 2);
    EXPECT_EQ(faults::count("media_uhd_destroy"), 2);
}

TEST_F(CMediaOnDrive, AMoveTakesTheHandleOver) {
    std::vector<CMedia> all = rows();
    faults::reset();
    const CMedia moved = std::move(all[0]);
    EXPECT_TRUE(moved.HasHandle());
    EXPECT_FALSE(all[0].HasHandle());
    EXPECT_EQ(count_all("clone"), 0);
}

TEST_F(CMediaOnDrive, ACloneThatFailsLeavesACopyWithoutAHandle) {
    const std::vector<CMedia> all = rows();
    faults::fail("media_folder_clone");
    const CMedia copy = all[0];
    EXPECT_EQ(copy.GetType(), MC_TYPE_FOLDER);
    EXPECT_FALSE(copy.HasHandle());
    EXPECT_TRUE(log.contains("clone of a row failed, ret[4711]."));
}

TEST_F(CMediaOnDrive, AHandleOfAnotherKindIsRefused) {
    const std::vector<CMedia> all = rows();
    EXPECT_NE(all[0].GetFolder(), nullptr);
    EXPECT_EQ(all[0].GetMedia(), nullptr);
    EXPECT_EQ(all[0].GetPVR(), nullptr);
    EXPECT_EQ(all[0].GetUHD(), nullptr);
    EXPECT_EQ(all[0].GetSCSA(), nullptr);
    EXPECT_EQ(log.count("MCF_Wrapper: Unmatched EMCType[1]."), 4);
}

TEST(CMedia, ACopyOfAPackageHasARecordOfItsOwn) {
    auto* const info = new scsa_info_s;
    info->strPath = "/p";
    info->strMediaId = "7";
    const CMedia package(MC_TYPE_SCSA, "", false, info);
    const CMedia copy = package;
    ASSERT_NE(copy.GetSCSA(), nullptr);
    EXPECT_NE(copy.GetSCSA(), package.GetSCSA());
    EXPECT_EQ(copy.GetSCSA()->nMediaType, 11);
    EXPECT_EQ(copy.GetSCSA()->strPath, "/p");
    EXPECT_EQ(copy.GetSCSA()->strMediaId, "7");
}

TEST(CMedia, HandlesOfGroupsAreNeitherClonedNorDestroyed) {
    int group = 0;
    const CMedia entry(MC_TYPE_GROUP, "name", false, &group);
    const CMedia copy = entry;
    EXPECT_TRUE(copy.HasHandle());
    EXPECT_STREQ(copy.GetName(), "name");
}

TEST(CMedia, AssignmentReplacesEverything) {
    CMedia media(MC_TYPE_GROUP, "old", true, nullptr);
    media = CMedia(MC_TYPE_SCSA, "", false, new scsa_info_s);
    EXPECT_EQ(media.GetType(), MC_TYPE_SCSA);
    EXPECT_STREQ(media.GetName(), "");
    EXPECT_FALSE(media.Is360());
    EXPECT_TRUE(media.HasHandle());
}

TEST(CMedia, IsSmall) {
    EXPECT_LE(sizeof(CMedia), 3 * sizeof(void*));
}

TEST(MCCursor, StandsOnTheFirstEntryAfterAReset) {
    MCContentList list = list_of(3);
    MCCursor cursor;
    cursor.reset(&list);
    EXPECT_EQ(cursor.type(), MC_TYPE_GROUP);
    EXPECT_STREQ(cursor.get().GetName(), "0");
}

TEST(MCCursor, StaysWhereAMoveIsNotPossible) {
    MCContentList list = list_of(2);
    MCCursor cursor;
    cursor.reset(&list);
    EXPECT_FALSE(cursor.previous());
    EXPECT_TRUE(cursor.next());
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.toIndex(-1));
    EXPECT_FALSE(cursor.toIndex(2));
    EXPECT_STREQ(cursor.get().GetName(), "1");
    EXPECT_TRUE(cursor.previous());
    EXPECT_STREQ(cursor.get().GetName(), "0");
    EXPECT_TRUE(cursor.toIndex(1));
    EXPECT_STREQ(cursor.get().GetName(), "1");
}

TEST(MCCursor, StandsOnNothingInAnEmptyList) {
    MCContentList list;
    MCCursor cursor;
    cursor.reset(&list);
    EXPECT_EQ(cursor.type(), MC_TYPE_NONE);
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.previous());
    EXPECT_FALSE(cursor.toIndex(0));
}

TEST(MCCursorDeathTest, AnUnsetCursorOrANullListEndsTheProcess) {
    MCCursor cursor;
    EXPECT_DEATH(cursor.get(), "bSetted == true");
    EXPECT_DEATH(cursor.type(), "bSetted == true");
    EXPECT_DEATH(cursor.next(), "bSetted == true");
    EXPECT_DEATH(cursor.previous(), "bSetted == true");
    EXPECT_DEATH(cursor.toIndex(0), "bSetted == true");
    EXPECT_DEATH(cursor.reset(nullptr), "pList != __null");
}
