#include "libqra-agent/agent/src/qra_selectlist_builder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <set>
#include <thread>
#include <vector>

#include "tests/fakes/dlog_capture.h"

namespace {

/// All words of a shared memory object.
std::vector<int32_t> words_of(const std::string& name) {
    const int fd = shm_open(name.c_str(), O_RDONLY, 0);
    struct stat info = {};
    fstat(fd, &info);
    std::vector<int32_t> words(static_cast<size_t>(info.st_size) / sizeof(int32_t));
    EXPECT_EQ(read(fd, words.data(), static_cast<size_t>(info.st_size)), info.st_size);
    close(fd);
    return words;
}

class SelectListBuilder : public testing::Test {
protected:
    SelectListBuilder() {
        list_.AddItem(30);
        list_.AddItem(10);
        list_.AddItem(20);
        list_.m_ePageItemType = QRA_PG_ITEM_CONTENTS;
    }
    ~SelectListBuilder() override {
        for (const std::string& name : names_) {
            shm_unlink(name.c_str());
        }
    }

    static int number_of(const std::string& name) {
        EXPECT_EQ(name.rfind(kSelectListShmPrefix, 0), 0u) << name;
        return std::stoi(name.substr(sizeof kSelectListShmPrefix - 1));
    }
    std::string build() {
        names_.push_back(CSelectListBuilder(&list_).Build());
        return names_.back();
    }

    CSelectList list_;
    std::vector<std::string> names_;
};

}  // namespace

TEST_F(SelectListBuilder, WritesTheItemsInAscendingOrderBehindTheHead) {
    EXPECT_EQ(words_of(build()), (std::vector<int32_t>{3, 16, 28, QRA_PG_ITEM_CONTENTS, 10, 20, 30}));
}

TEST_F(SelectListBuilder, WhatItWroteCanBeLoaded) {
    CSelectList loaded(build());

    ASSERT_TRUE(loaded.m_Load());

    EXPECT_EQ(loaded.GetItems(), list_.GetItems());
    EXPECT_EQ(loaded.m_ePageItemType, QRA_PG_ITEM_CONTENTS);
}

TEST_F(SelectListBuilder, WritesOverALongerObjectThatWasLeftBehind) {
    const std::string name = kSelectListShmPrefix + std::to_string(number_of(build()) + 1);
    const int fd = shm_open(name.c_str(), O_CREAT | O_RDWR, 0600);
    ASSERT_EQ(ftruncate(fd, 4096), 0);
    close(fd);

    ASSERT_EQ(build(), name);

    EXPECT_EQ(words_of(name).size(), 7u);
}

TEST_F(SelectListBuilder, SelectionsThatAreHandedOnAtOnceHaveObjectsOfTheirOwn) {
    constexpr int kEach = 20;
    std::vector<std::string> others;
    CSelectList other_list;
    other_list.AddItem(1);

    std::thread other([&] {
        for (int i = 0; i < kEach; ++i) {
            others.push_back(CSelectListBuilder(&other_list).Build());
        }
    });
    for (int i = 0; i < kEach; ++i) {
        build();
    }
    other.join();

    names_.insert(names_.end(), others.begin(), others.end());
    EXPECT_EQ(std::set<std::string>(names_.begin(), names_.end()).size(), 2u * kEach);
}

TEST_F(SelectListBuilder, NumbersTheObjectsOfAProcess) {
    const int before = number_of(build());
    LogCapture log;

    const int number = number_of(build());

    EXPECT_EQ(number, before + 1);
    const std::string text = std::to_string(number);
    EXPECT_TRUE(log.contains("called the " + text + " times, shm name is qra_selectedlist_" + text));
}

using SelectListBuilderDeathTest = SelectListBuilder;

TEST_F(SelectListBuilderDeathTest, TheFirstObjectsOfAProcessAreNumberedOneAndTwo) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has made none
    EXPECT_EXIT(
        {
            const bool counted = build() == "qra_selectedlist_1" && build() == "qra_selectedlist_2";
            for (const std::string& name : names_) {
                shm_unlink(name.c_str());
            }
            std::_Exit(counted ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(SelectListBuilderDeathTest, AnEmptySelectionEndsTheProcess) {
    list_.RemoveAll();

    EXPECT_DEATH(build(), "m_SelctList->GetItemCount\\(\\) > 0");
}

TEST_F(SelectListBuilderDeathTest, AnObjectThatCannotBeOpenedEndsTheProcess) {
    const rlimit none = {0, 0};

    EXPECT_DEATH(
        {
            setrlimit(RLIMIT_NOFILE, &none);
            build();
        },
        "m_pAddr != __null");
}

TEST_F(SelectListBuilderDeathTest, AnObjectThatCannotBeSizedEndsTheProcess) {
    for (int i = 0; i < 5000; ++i) {
        list_.AddItem(i);
    }
    const rlimit less_than_the_object = {4096, 4096};

    EXPECT_DEATH(
        {
            signal(SIGXFSZ, SIG_IGN);
            setrlimit(RLIMIT_FSIZE, &less_than_the_object);
            build();
        },
        "m_pAddr != __null");

    build();  // takes over what the other process has left, so that it is removed
}
