#include "vconf.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/temp_dir.h"

namespace {

/// Each test has a configuration directory of its own.
class Vconf : public testing::Test {
protected:
    Vconf() { setenv("XDG_CONFIG_HOME", dir_.path("config").c_str(), 1); }

    void write_file(const std::string& content) {
        std::filesystem::create_directories(dir_.path("config/qra-content-agent"));
        dir_.write("config/qra-content-agent/vconf.ini", content);
    }

    TempDir dir_;
};

}  // namespace

TEST_F(Vconf, GivesBackWhatWasStored) {
    int value = 0;

    EXPECT_EQ(vconf_set_int("db/menu/mode", 3), VCONF_OK);
    EXPECT_EQ(vconf_set_int("db/menu/other", -2147483647), VCONF_OK);
    EXPECT_EQ(vconf_set_int("db/menu/mode", 4), VCONF_OK);

    EXPECT_EQ(vconf_get_int("db/menu/mode", &value), VCONF_OK);
    EXPECT_EQ(value, 4);
    EXPECT_EQ(vconf_get_int("db/menu/other", &value), VCONF_OK);
    EXPECT_EQ(value, -2147483647);
}

TEST_F(Vconf, TakesAnyTextForAName) {
    int expected = 0;
    for (const char* name :
         {"a=b", "[x]", " blank ", "line\nfeed", "#", "%41", "A", "\xff\xfe", "\xc3\xa9"}) {
        int value = -1;
        EXPECT_EQ(vconf_set_int(name, ++expected), VCONF_OK) << name;
        EXPECT_EQ(vconf_get_int(name, &value), VCONF_OK) << name;
        EXPECT_EQ(value, expected) << name;
    }
    int value = 0;
    EXPECT_EQ(vconf_get_int("%41", &value), VCONF_OK);
    EXPECT_EQ(value, 6) << "\"A\" must not have taken its place";
}

TEST_F(Vconf, AValueThatWasNeverSetIsNotThere) {
    int value = 7;

    EXPECT_EQ(vconf_get_int("absent", &value), VCONF_ERROR_NOT_SET);
    vconf_set_int("other", 1);
    EXPECT_EQ(vconf_get_int("absent", &value), VCONF_ERROR_NOT_SET);

    EXPECT_EQ(value, 7);
}

TEST_F(Vconf, RefusesNullAndEmptyArguments) {
    int value = 7;

    EXPECT_EQ(vconf_get_int(nullptr, &value), VCONF_ERROR_PARAM);
    EXPECT_EQ(vconf_get_int("", &value), VCONF_ERROR_PARAM);
    EXPECT_EQ(vconf_get_int("key", nullptr), VCONF_ERROR_PARAM);
    EXPECT_EQ(vconf_set_int(nullptr, 1), VCONF_ERROR_PARAM);
    EXPECT_EQ(vconf_set_int("", 1), VCONF_ERROR_PARAM);

    EXPECT_EQ(value, 7);
}

TEST_F(Vconf, ABrokenFileIsReportedAndLeftAsItIs) {
    write_file("no key file at all\n");
    int value = 7;

    EXPECT_EQ(vconf_get_int("key", &value), VCONF_ERROR_READ);
    EXPECT_EQ(vconf_set_int("key", 1), VCONF_ERROR_READ);

    EXPECT_EQ(value, 7);
    EXPECT_EQ(dir_.read("config/qra-content-agent/vconf.ini"), "no key file at all\n");
}

TEST_F(Vconf, AValueThatIsNoNumberIsReported) {
    write_file("[values]\nword=seven\nhuge=99999999999\n");
    int value = 7;

    EXPECT_EQ(vconf_get_int("word", &value), VCONF_ERROR_READ);
    EXPECT_EQ(vconf_get_int("huge", &value), VCONF_ERROR_READ);

    EXPECT_EQ(value, 7);
}

TEST_F(Vconf, KeepsWhatAPersonWroteIntoTheFile) {
    write_file("# a note\n[values]\nmine=1\n");

    EXPECT_EQ(vconf_set_int("other", 2), VCONF_OK);

    const std::string text = dir_.read("config/qra-content-agent/vconf.ini");
    EXPECT_NE(text.find("# a note"), std::string::npos) << text;
    EXPECT_NE(text.find("mine=1"), std::string::npos) << text;
}

TEST_F(Vconf, ADirectoryThatCannotBeMadeFailsTheStore) {
    dir_.write("config", "a file where the directory should be");

    EXPECT_EQ(vconf_set_int("key", 1), VCONF_ERROR_WRITE);
}

TEST_F(Vconf, ThreadsThatStoreAtOnceLoseNothing) {
    constexpr int kThreads = 4;
    constexpr int kValues = 10;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kValues; ++i) {
                EXPECT_EQ(vconf_set_int(("key" + std::to_string(t * kValues + i)).c_str(), i), VCONF_OK);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    for (int k = 0; k < kThreads * kValues; ++k) {
        int value = -1;
        EXPECT_EQ(vconf_get_int(("key" + std::to_string(k)).c_str(), &value), VCONF_OK) << k;
        EXPECT_EQ(value, k % kValues);
    }
}

TEST_F(Vconf, ProgramsThatStoreAtOnceLoseNothing) {
    const pid_t child = fork();
    if (child == 0) {
        int failed = 0;
        for (int i = 0; i < 20; ++i) {
            failed += vconf_set_int(("child" + std::to_string(i)).c_str(), i) != VCONF_OK;
        }
        _exit(failed);
    }
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(vconf_set_int(("parent" + std::to_string(i)).c_str(), i), VCONF_OK);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);

    for (int i = 0; i < 20; ++i) {
        int value = -1;
        EXPECT_EQ(vconf_get_int(("child" + std::to_string(i)).c_str(), &value), VCONF_OK);
        EXPECT_EQ(value, i);
        EXPECT_EQ(vconf_get_int(("parent" + std::to_string(i)).c_str(), &value), VCONF_OK);
        EXPECT_EQ(value, i);
    }
}
