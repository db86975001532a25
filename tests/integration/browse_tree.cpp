#include "tests/integration/browse_tree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

#include "media_content.h"
#include "media_content_admin.h"

namespace fs = std::filesystem;

BrowseTree::BrowseTree() {
    std::string pattern = (fs::temp_directory_path() / "qra-browse-XXXXXX").string();
    root_ = fs::canonical(mkdtemp(pattern.data()));
    setenv("QRA_DATA_DIR", (root_ / "data").c_str(), 1);
    setenv("QRA_MEDIA_ROOT", (root_ / "media").c_str(), 1);
    setenv("QRA_LOG", "off", 1);
    setenv("TZ", "UTC", 1);
    tzset();
    fill_show();
    fill_albums();
    EXPECT_EQ(media_content_connect(), 0);
    char* drive = nullptr;
    EXPECT_EQ(media_content_admin_attach((root_ / "stick").c_str(), nullptr, &drive), 0);
    drive_ = drive != nullptr ? drive : "";
    free(drive);
    EXPECT_EQ(media_content_admin_scan(drive_.c_str(), true, nullptr, nullptr), 0);
}

BrowseTree::~BrowseTree() {
    media_content_disconnect();
    fs::remove_all(root_);
}

void BrowseTree::add(const std::string& fixture, const std::string& relative, long time) const {
    fs::create_directories(target(relative).parent_path());
    fs::copy_file(fs::path(QRA_TEST_FIXTURES) / fixture, target(relative));
    const timespec times[2] = {{time, 0}, {time, 0}};
    EXPECT_EQ(utimensat(AT_FDCWD, target(relative).c_str(), times, 0), 0);
}

void BrowseTree::add_recording(const std::string& name, const std::string& channel, int major,
                               long time) const {
    add("recordings/news.srf", "show/" + name + ".srf", time);
    std::ofstream(target("show/" + name + ".inf"))
        << "[recording]\nprogram_title=" << name << "\nchannel_name=" << channel << "\nmajor=" << major
        << "\nminor=1\nstart_time=" << time << "\ncontent_version=2\nincomplete_reason=3\n";
}

void BrowseTree::fill_show() const {
    add("pictures/photo.jpg", "show/IMG_10.jpg");
    add("pictures/photo.jpg", "show/IMG_2.jpg");
    add("pictures/photo.jpg", "show/IMG_1.jpg");
    add("video/clip.mp4", "show/clip 1.mp4");
    add("video/clip.mp4", "show/clip 2.mp4");
    add("music/song.mp3", "show/Song.mp3", kMay7);
    add("pictures/drawing.png", "show/zebra.png", kMay7);
    add("pictures/plain.jpg", "show/old.jpg", kJanuary2);
    add("uhd/film.um4", "show/film.um4", kJanuary2);
    add("uhd/film.km4", "show/show.km4", kJanuary2);
    add_recording("news", "Beta TV", 7, kMay7);
    add_recording("sport", "alpha TV", 12, kJanuary2);
    add_recording("weather", "Beta TV", 7, kJanuary2 + 60);
    fs::create_directories(target("show/lost+found"));
    fs::create_directories(target("show/empty"));
}

void BrowseTree::fill_albums() const {
    for (int i = 1; i <= 120; ++i)
        add("pictures/photo.jpg", "show/album 2/photo " + std::to_string(i) + ".jpg");
    for (int i = 1; i <= 80; ++i)
        add("music/song.mp3", "show/album 10/track " + std::to_string(i) + ".mp3");
    for (int i = 1; i <= 40; ++i)
        add("video/clip.mp4", "show/Zoo/clip " + std::to_string(i) + ".mp4");
}
