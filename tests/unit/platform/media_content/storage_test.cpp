#include "platform/media-content/host/storage/storage.h"

#include <sys/mount.h>

#include <algorithm>
#include <map>

#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

/// Attaching and detaching through the C interface.
class Drives : public TemporaryDirectories {
protected:
    Drives() { EXPECT_EQ(media_content_connect(), 0); }
    ~Drives() override { media_content_disconnect(); }

    /// The path that attach answers, or "error N".
    static std::string attached(const std::string& directory, const char* wanted = nullptr) {
        char* path = nullptr;
        const int result = media_content_admin_attach(directory.c_str(), wanted, &path);
        if (result != 0) {
            return "error " + std::to_string(result);
        }
        const std::string copy = path;
        std::free(path);
        return copy;
    }

    struct Drive {
        std::string id, link_path, target;
        bool mounted;
        int scan_status;
    };
    static std::map<std::string, Drive> drives() {
        std::map<std::string, Drive> all;
        const auto add = [](const media_content_drive_s* drive, void* map) {
            (*static_cast<std::map<std::string, Drive>*>(map))[drive->name] = {
                drive->id, drive->link_path, drive->target, drive->mounted, drive->scan_status};
            return true;
        };
        EXPECT_EQ(media_content_admin_foreach_drive(add, &all), 0);
        return all;
    }

    std::string media(const std::string& name) const { return root() + "/media/" + name; }
};

TEST_F(Drives, AttachingMakesALinkBelowTheMediaRoot) {
    const std::string stick = directory("stick");
    EXPECT_EQ(attached(stick), media("USBDrive1"));
    EXPECT_EQ(std::filesystem::read_symlink(media("USBDrive1")), stick);
    EXPECT_EQ(drives().at("USBDrive1").target, stick);
    EXPECT_TRUE(drives().at("USBDrive1").mounted);
    EXPECT_EQ(drives().at("USBDrive1").scan_status, MEDIA_SCAN_STATUS_NONE);
}

TEST_F(Drives, TheSameFolderTwiceIsTheSameDrive) {
    const std::string stick = directory("stick");
    attached(stick);
    EXPECT_EQ(attached(stick + "/."), media("USBDrive1"));
    EXPECT_EQ(attached(stick, "USBDrive9"), media("USBDrive1"));
    EXPECT_EQ(drives().size(), 1u);
}

TEST_F(Drives, AFolderInsideAnAttachedOneIsThatDrive) {
    attached(directory("stick"));
    EXPECT_EQ(attached(directory("stick/a/b")), media("USBDrive1/a/b"));
    EXPECT_EQ(attached(media("USBDrive1/a")), media("USBDrive1/a"));
    EXPECT_EQ(drives().size(), 1u);
}

TEST_F(Drives, AFolderWhoseNameBeginsAlikeIsAnotherDrive) {
    attached(directory("stick"));
    EXPECT_EQ(attached(directory("stick2")), media("USBDrive2"));
}

TEST_F(Drives, ALinkToAFolderIsThatFolder) {
    attached(directory("stick"));
    std::filesystem::create_symlink(root() + "/stick", root() + "/link");
    EXPECT_EQ(attached(root() + "/link"), media("USBDrive1"));
}

TEST_F(Drives, AWantedNameIsUsed) {
    EXPECT_EQ(attached(directory("stick"), "USBDrive7"), media("USBDrive7"));
    EXPECT_EQ(attached(directory("other")), media("USBDrive1"));
}

TEST_F(Drives, AWantedNameThatIsInUseIsRefused) {
    attached(directory("stick"));
    EXPECT_EQ(attached(directory("other"), "USBDrive1"),
              "error " + std::to_string(MEDIA_CONTENT_ERROR_ALREADY_EXISTS));
}

TEST_F(Drives, NamesOfAnotherFormAreRefused) {
    for (const char* name :
         {"USBDrive", "USBDrive01", "USBDrive-1", "usbdrive1", "USBDrive1/..", "../x", "Stick"}) {
        EXPECT_EQ(attached(directory("stick"), name),
                  "error " + std::to_string(MEDIA_CONTENT_ERROR_INVALID_PARAMETER))
            << name;
    }
}

TEST_F(Drives, WhatIsNoDirectoryIsRefused) {
    write_file("file");
    const std::string not_found = "error " + std::to_string(MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(attached(root() + "/file"), not_found);
    EXPECT_EQ(attached(root() + "/nothing"), not_found);
    EXPECT_EQ(attached(""), not_found);
    EXPECT_EQ(attached("/" + std::string(4000, 'x')), not_found);
}

TEST_F(Drives, NothingBelowTheMediaRootIsOverwritten) {
    directory("media/USBDrive1");
    EXPECT_EQ(attached(directory("stick")), media("USBDrive2"));
    EXPECT_EQ(attached(directory("other"), "USBDrive1"),
              "error " + std::to_string(MEDIA_CONTENT_ERROR_ALREADY_EXISTS));
}

TEST_F(Drives, DetachingTakesTheLinkAway) {
    attached(directory("stick"));
    EXPECT_EQ(media_content_admin_detach("USBDrive1"), 0);
    EXPECT_FALSE(std::filesystem::is_symlink(media("USBDrive1")));
    EXPECT_TRUE(drives().empty());
    EXPECT_EQ(media_content_admin_detach("USBDrive1"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_content_admin_detach("x"), MEDIA_CONTENT_ERROR_NOT_FOUND);
}

TEST_F(Drives, AFolderThatComesBackHasItsIdAndItsName) {
    attached(directory("first"));
    attached(directory("stick"));
    const std::string id = drives().at("USBDrive2").id;
    media_content_admin_detach("USBDrive2");
    media_content_admin_detach("USBDrive1");
    EXPECT_EQ(attached(directory("stick")), media("USBDrive2"));
    EXPECT_EQ(drives().at("USBDrive2").id, id);
}

TEST_F(Drives, AFolderThatComesBackUnderAnotherNameHasItsId) {
    attached(directory("stick"));
    const std::string id = drives().at("USBDrive1").id;
    media_content_admin_detach("USBDrive1");
    EXPECT_EQ(attached(directory("stick"), "USBDrive5"), media("USBDrive5"));
    EXPECT_EQ(drives().at("USBDrive5").id, id);
}

TEST_F(Drives, IdsTellFoldersApart) {
    attached(directory("a"));
    attached(directory("b"));
    EXPECT_NE(drives().at("USBDrive1").id, drives().at("USBDrive2").id);
}

TEST_F(Drives, ADriveWhoseFolderIsGoneIsNotMounted) {
    attached(directory("stick"));
    const std::string id = drives().at("USBDrive1").id;
    std::filesystem::remove_all(root() + "/stick");
    int status = 0;
    EXPECT_FALSE(drives().at("USBDrive1").mounted);
    EXPECT_EQ(media_storage_get_scan_status(id.c_str(), &status), 0);
    EXPECT_EQ(status, MEDIA_SCAN_STATUS_INVALID);
    EXPECT_EQ(storage_names(nullptr), Names{});
}

TEST_F(Drives, TheCallbackMayEndTheList) {
    attached(directory("a"));
    attached(directory("b"));
    int calls = 0;
    const auto stop = [](const media_content_drive_s*, void* count) {
        return ++*static_cast<int*>(count) > 1;
    };
    EXPECT_EQ(media_content_admin_foreach_drive(stop, &calls), 0);
    EXPECT_EQ(calls, 1);
}

TEST_F(Drives, NullArgumentsAreRefused) {
    char* path = nullptr;
    EXPECT_EQ(media_content_admin_attach(nullptr, nullptr, &path), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_admin_attach("/", nullptr, nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_admin_detach(nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_admin_foreach_drive(nullptr, nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_admin_database_path(nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
}

TEST_F(Drives, TheDatabaseFileLiesInTheDataDirectory) {
    char* path = nullptr;
    ASSERT_EQ(media_content_admin_database_path(&path), 0);
    EXPECT_EQ(path, root() + "/data/media.db");
    std::free(path);
}

/// A drive with rows that goes away and comes back.
class StorageRows : public TemporaryDatabase {};

TEST_F(StorageRows, SurviveTheDrivesAbsenceAndFollowItsName) {
    const int64_t id = put_file("/photos", "a.jpg", MediaKind::kImage);
    {
        const MediaHandle media = media_by_id(id);
        media_info_set_played_count(media.get(), 7);
        ASSERT_EQ(media_info_update_to_db(media.get()), 0);
    }
    ASSERT_EQ(media_content_admin_detach("USBDrive1"), 0);
    EXPECT_EQ(media_names(nullptr), Names{});
    EXPECT_EQ(media_names(TestFilter(drive().id)), Names{});
    EXPECT_EQ(folder_names(nullptr), Names{});
    EXPECT_EQ(media_by_id(id), nullptr);

    attach(database(), root() + "/stick", "USBDrive3");
    const MediaHandle media = media_by_id(id);
    ASSERT_NE(media, nullptr);
    EXPECT_EQ(text_of(media_info_get_file_path, media.get()), root() + "/media/USBDrive3/photos/a.jpg");
    EXPECT_EQ(int_of(media_info_get_played_count, media.get()), 7);
}

TEST_F(StorageRows, HaveToBeScannedAgainWhenTheDriveComesBack) {
    put_folder("/photos");
    {
        Database::WriteLease write(database());
        write.connection().execute("UPDATE storage SET scan_status = 7; UPDATE folder SET scan_status = 4");
        write.commit();
    }
    int status = 0;
    EXPECT_EQ(media_storage_get_scan_status(drive().id.c_str(), &status), 0);
    EXPECT_EQ(status, MEDIA_SCAN_STATUS_FULLY_SCANNED);
    detach(database(), "USBDrive1");
    EXPECT_EQ(media_storage_get_scan_status(drive().id.c_str(), &status), 0);
    EXPECT_EQ(status, MEDIA_SCAN_STATUS_INVALID);
    attach(database(), root() + "/stick", "");
    EXPECT_EQ(media_storage_get_scan_status(drive().id.c_str(), &status), 0);
    EXPECT_EQ(status, MEDIA_SCAN_STATUS_NONE);
    EXPECT_EQ(
        media_folder_get_scan_status(drive().id.c_str(), (drive().link_path() + "/photos").c_str(), &status),
        0);
    EXPECT_EQ(status, MEDIA_SCAN_STATUS_NONE);
}

TEST_F(StorageRows, TellWhichFoldersAreScanned) {
    const int64_t folder = put_folder("/photos");
    {
        MediaWriter writer(database());
        writer.set_folder_status(folder, MEDIA_SCAN_STATUS_FOLDER_SCANNED);
        writer.commit();
    }
    const auto status_of = [&](const std::string& storage, const std::string& path) {
        int status = -1;
        EXPECT_EQ(media_folder_get_scan_status(storage.c_str(), path.c_str(), &status), 0);
        return status;
    };
    EXPECT_EQ(status_of(drive().id, drive().link_path() + "/photos"), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    EXPECT_EQ(status_of(drive().id, drive().link_path() + "/photos/"), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    EXPECT_EQ(status_of(drive().id, drive().link_path() + "/nothing"), MEDIA_SCAN_STATUS_NONE);
    EXPECT_EQ(status_of(drive().id, "/photos"), MEDIA_SCAN_STATUS_NONE);
    EXPECT_EQ(status_of("another", drive().link_path() + "/photos"), MEDIA_SCAN_STATUS_NONE);
}

TEST_F(StorageRows, AreFoundByEveryPathOfTheirPlace) {
    Database::ReadLease lease(database());
    const auto relative = [&](const std::string& path) {
        const std::optional<StoragePath> place = locate(lease.connection(), path);
        return place ? place->relative : "(nowhere)";
    };
    directory("stick/a");
    EXPECT_EQ(relative(drive().link_path() + "/a"), "/a");
    EXPECT_EQ(relative(drive().link_path() + "//a/"), "/a");
    EXPECT_EQ(relative(drive().link_path()), "");
    EXPECT_EQ(relative(root() + "/stick/a"), "/a");
    EXPECT_EQ(relative(drive().link_path() + "/.."), "(nowhere)");
    EXPECT_EQ(relative(drive().link_path() + "0"), "(nowhere)");
    EXPECT_EQ(relative(root()), "(nowhere)");
    EXPECT_EQ(relative(""), "(nowhere)");
}

TEST_F(StorageRows, AnOpenListOutlivesItsDrive) {
    put_file("", "a.jpg", MediaKind::kImage);
    put_file("", "b.jpg", MediaKind::kImage);
    const std::vector<MediaHandle> rows = kept_media(nullptr);
    ASSERT_EQ(rows.size(), 2u);
    detach(database(), "USBDrive1");
    EXPECT_EQ(text_of(media_info_get_display_name, rows[0].get()), "a.jpg");
    EXPECT_EQ(text_of(media_info_get_title, rows[1].get()), "b");
}

}  // namespace
}  // namespace media_content
