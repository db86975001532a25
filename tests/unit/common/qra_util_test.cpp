#include "common/util/qra_util.h"

#include <gtest/gtest.h>
#include <qra/qra_util.h>
#include <sys/time.h>

#include <csignal>
#include <cstdlib>
#include <locale>
#include <string>
#include <vector>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

/// A locale of its own that writes 2.5 as "2,5" and groups digits.
class CommaLocale : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

std::vector<double> split(const char* text) {
    double numbers[3] = {};
    int count = -1;
    CQRAUtil::SplitToDouble(text, numbers, &count);
    return {numbers, numbers + count};
}

bool is_uuid(const std::string& text, char version) {
    return text.size() == 36 && text.find_first_not_of("0123456789abcdef-") == std::string::npos &&
           text[8] == '-' && text[13] == '-' && text[18] == '-' && text[23] == '-' && text[14] == version;
}

}  // namespace

TEST(CQRAUtil, TellsTheTimeInMilliseconds) {
    const long long before = static_cast<long long>(time(nullptr)) * 1000;

    const long long now = CQRAUtil::GetCurrentSystemTime();

    EXPECT_GE(now, before);
    EXPECT_LT(now, before + 60000);
}

TEST(CQRAUtil, LowersAsciiLettersOnly) {
    EXPECT_EQ(CQRAUtil::ToLower("MiXeD.JPG"), "mixed.jpg");
    EXPECT_EQ(CQRAUtil::ToLower("\xc3\x84\xff"), "\xc3\x84\xff");
    EXPECT_EQ(CQRAUtil::ToLower(""), "");
}

TEST(CQRAUtil, AssignValueCopiesToANewBlock) {
    char* value = nullptr;

    CQRAUtil::AssignValue(&value, "text");

    EXPECT_STREQ(value, "text");
    delete[] value;
}

TEST(CQRAUtil, AssignValueLeavesTheTargetAloneWithoutAText) {
    char target[] = "before";
    char* value = target;

    CQRAUtil::AssignValue(&value, nullptr);
    CQRAUtil::AssignValue(&value, "");

    EXPECT_EQ(value, target);
}

TEST(CQRAUtil, AssignValueByCStyleCopiesToAMallocBlock) {
    char* value = nullptr;

    CQRAUtil::AssignValueByCStyle(&value, "text");

    EXPECT_STREQ(value, "text");
    free(value);
}

TEST(CQRAUtil, AssignValueByCStyleLeavesTheTargetAloneWithoutAText) {
    LogCapture log;
    char target[] = "before";
    char* value = target;

    CQRAUtil::AssignValueByCStyle(&value, "");
    EXPECT_FALSE(log.contains("src  == NULL"));
    CQRAUtil::AssignValueByCStyle(&value, nullptr);
    EXPECT_TRUE(log.contains("src  == NULL"));

    EXPECT_EQ(value, target);
}

TEST(CQRAUtilDeathTest, AssignValueNeedsATarget) {
    EXPECT_DEATH(CQRAUtil::AssignValue(nullptr, "x"), "dst != __null");
    EXPECT_DEATH(CQRAUtil::AssignValueByCStyle(nullptr, "x"), "dst != __null");
}

TEST(CQRAUtil, TakesNullForAnEmptyText) {
    EXPECT_EQ(CQRAUtil::CharToString(nullptr), "");
    EXPECT_EQ(CQRAUtil::CharToString("x"), "x");
}

TEST(CQRAUtil, ReadsNumbersAsAStreamDoes) {
    EXPECT_EQ(CQRAUtil::str2int(""), 0);
    EXPECT_EQ(CQRAUtil::str2int("42"), 42);
    EXPECT_EQ(CQRAUtil::str2int("  -7 rest"), -7);
    EXPECT_EQ(CQRAUtil::str2int("none"), 0);
    EXPECT_EQ(CQRAUtil::str2int("99999999999"), 2147483647);
}

TEST(CQRAUtil, WritesNumbersAsAStreamDoes) {
    EXPECT_EQ(CQRAUtil::int2str(-2147483647), "-2147483647");
    EXPECT_EQ(CQRAUtil::long2str(1234567L), "1234567");
    EXPECT_EQ(CQRAUtil::double2str(2.8), "2.8");
    EXPECT_EQ(CQRAUtil::double2str(3.0), "3");
    EXPECT_EQ(CQRAUtil::double2str(1.23456789), "1.23457");
    EXPECT_EQ(CQRAUtil::double2str(1e6), "1e+06");
}

TEST(CQRAUtil, NumbersInTextsDoNotDependOnTheLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaLocale));

    EXPECT_EQ(CQRAUtil::double2str(2.5), "2.5");
    EXPECT_EQ(CQRAUtil::int2str(1234567), "1234567");
    EXPECT_EQ(CQRAUtil::str2int("1234567"), 1234567);
    EXPECT_EQ(split("2.5 1.25"), (std::vector<double>{2.5, 1.25}));

    std::locale::global(before);
}

TEST(CQRAUtil, SplitsUpToThreeNumbersAtBlanks) {
    EXPECT_EQ(split("1 2.5 -3"), (std::vector<double>{1, 2.5, -3}));
    EXPECT_EQ(split("1 2 3 4"), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(split("1    2"), (std::vector<double>{1, 2}));
    EXPECT_EQ(split("7"), (std::vector<double>{7}));
    EXPECT_EQ(split("7   "), (std::vector<double>{7}));
    EXPECT_EQ(split("  7 8"), (std::vector<double>{7, 8}));
}

TEST(CQRAUtil, SplitsNothingOutOfBlanks) {
    EXPECT_TRUE(split("").empty());
    EXPECT_TRUE(split("    ").empty());
}

TEST(CQRAUtil, SplitTakesAWordForZeroAndCutsALongNumber) {
    EXPECT_EQ(split("x 2"), (std::vector<double>{0, 2}));
    const std::string longer = "1." + std::string(1000, '0') + " 2";
    EXPECT_EQ(split(longer.c_str()), (std::vector<double>{1, 2}));
    const std::string beyond = std::string(255, '0') + "9 2";
    EXPECT_EQ(split(beyond.c_str()), (std::vector<double>{0, 2}));
}

TEST(CQRAUtil, FindsTheExtensionBehindTheLastDotOfTheWholePath) {
    EXPECT_EQ(CQRAUtil::GetFileExtension("/x/a.b.C"), "C");
    EXPECT_EQ(CQRAUtil::GetFileExtension("/x/name"), "");
    EXPECT_EQ(CQRAUtil::GetFileExtension("/x.d/name"), "d/name");
    EXPECT_EQ(CQRAUtil::GetFileExtension("name."), "");
}

TEST(CQRAUtil, HasNoExtensionForANullPath) {
    LogCapture log;

    EXPECT_EQ(CQRAUtil::GetFileExtension(nullptr), "");

    EXPECT_TRUE(log.contains("szPath == NULL"));
}

TEST(CQRAUtil, FindsTheFileNameBehindTheLastSlash) {
    EXPECT_EQ(CQRAUtil::GetFileName("/x/y.jpg"), "y.jpg");
    EXPECT_EQ(CQRAUtil::GetFileName("y.jpg"), "");
    EXPECT_EQ(CQRAUtil::GetFileName("/x/"), "");
    EXPECT_EQ(CQRAUtil::GetFileName(nullptr), "");
}

TEST(CQRAUtil, CutsTheExtension) {
    EXPECT_EQ(CQRAUtil::GetFileNameWithoutExt("/x/y.a.jpg"), "/x/y.a");
    EXPECT_EQ(CQRAUtil::GetFileNameWithoutExt("/x/y"), "");
    EXPECT_EQ(CQRAUtil::GetFileNameWithoutExt(nullptr), "");
}

TEST(CQRAUtil, DoublesQuotesOfAPathOfAnyLength) {
    EXPECT_EQ(CQRAUtil::AddQuoteInPath("/it's"), "/it''s");
    EXPECT_EQ(CQRAUtil::AddQuoteInPath("/plain"), "/plain");
    EXPECT_EQ(CQRAUtil::AddQuoteInPath(""), "");
    EXPECT_EQ(CQRAUtil::AddQuoteInPath(std::string(4000, '\'')), std::string(8000, '\''));
}

TEST(CQRAUtil, DropsAllTrailingSlashes) {
    EXPECT_EQ(CQRAUtil::RemoveForwardSlashInPath("/a/b///"), "/a/b");
    EXPECT_EQ(CQRAUtil::RemoveForwardSlashInPath("/a/b"), "/a/b");
    EXPECT_EQ(CQRAUtil::RemoveForwardSlashInPath("/"), "");
    EXPECT_EQ(CQRAUtil::RemoveForwardSlashInPath(""), "");
}

TEST(CQRAUtil, AppendsToThePlatformsDirectories) {
    setenv("QRA_MEDIA_ROOT", "/media-root", 1);
    setenv("QRA_APP_DIR", "/app-dir", 1);

    EXPECT_EQ(CQRAUtil::GetStoragePath("/USBDrive"), "/media-root/USBDrive");
    EXPECT_EQ(CQRAUtil::GetUserAppPath("/x"), "/app-dir/x");
}

TEST(CQRAUtil, ComparesWithATableInLowerCase) {
    const char* const table[] = {"jpg", "PNG"};

    EXPECT_TRUE(CQRAUtil::CompareExtension(table, 2, "JPG"));
    EXPECT_FALSE(CQRAUtil::CompareExtension(table, 2, "PNG"));
    EXPECT_FALSE(CQRAUtil::CompareExtension(table, 0, "jpg"));
    EXPECT_TRUE(CQRAUtil::CompareField(table, 2, "jpg"));
    EXPECT_FALSE(CQRAUtil::CompareField(table, 2, "gif"));
}

TEST(CQRAUtil, ComparesAMediaExtensionAsAWhole) {
    EXPECT_TRUE(CQRAUtil::CompareMediaExtension({"png", "jpg"}, "JPG"));
    EXPECT_FALSE(CQRAUtil::CompareMediaExtension({"JPG"}, "JPG"));
    EXPECT_FALSE(CQRAUtil::CompareMediaExtension({"jpg"}, "jp"));
    EXPECT_FALSE(CQRAUtil::CompareMediaExtension({"jp"}, "jpg"));
    EXPECT_FALSE(CQRAUtil::CompareMediaExtension({}, "jpg"));
}

TEST(CQRAUtil, KeepsConfigurationValues) {
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.path().c_str(), 1);
    int value = 0;

    EXPECT_TRUE(CQRAUtil::SetVConfigValueInt("db/test/key", 7));
    EXPECT_TRUE(CQRAUtil::GetVConfigValueInt("db/test/key", &value));

    EXPECT_EQ(value, 7);
}

TEST(CQRAUtil, AnAbsentConfigurationValueIsAQuietFailure) {
    LogCapture log;
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.path().c_str(), 1);
    int value = 5;

    EXPECT_FALSE(CQRAUtil::GetVConfigValueInt("absent", &value));

    EXPECT_EQ(value, 5);
    EXPECT_TRUE(log.lines().empty()) << log.text();
}

TEST(CQRAUtil, AnUnexpectedCodeOfTheConfigurationIsLogged) {
    LogCapture log;
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.path().c_str(), 1);
    int value = 5;

    EXPECT_FALSE(CQRAUtil::GetVConfigValueInt("", &value));
    EXPECT_FALSE(CQRAUtil::SetVConfigValueInt("", 1));

    EXPECT_EQ(log.count("Unexpected error code: -2"), 2) << log.text();
}

TEST(CQRAUtil, ConfigurationNeedsANameAndATarget) {
    LogCapture log;
    int value = 0;

    EXPECT_FALSE(CQRAUtil::GetVConfigValueInt(nullptr, &value));
    EXPECT_FALSE(CQRAUtil::GetVConfigValueInt("key", nullptr));
    EXPECT_FALSE(CQRAUtil::SetVConfigValueInt(nullptr, 1));

    EXPECT_EQ(log.count("Arguments key or value is NULL"), 3);
}

TEST(CQRAUtil, MakesRandomUuids) {
    const std::string first = CQRAUtil::GetUUID();

    EXPECT_TRUE(is_uuid(first, '4')) << first;
    EXPECT_NE(first, CQRAUtil::GetUUID());
}

TEST(QraUuid, WritesTextsOfTheirVersion) {
    char time_based[QRA_UUID_TEXT_SIZE];
    char random[QRA_UUID_TEXT_SIZE];

    EXPECT_EQ(qra_uuid_time(time_based), QRA_ERROR_NONE);
    EXPECT_EQ(qra_uuid_random(random), QRA_ERROR_NONE);

    EXPECT_TRUE(is_uuid(time_based, '1')) << time_based;
    EXPECT_TRUE(is_uuid(random, '4')) << random;
}

TEST(QraUuid, RefusesANullBuffer) {
    EXPECT_EQ(qra_uuid_time(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_uuid_random(nullptr), QRA_ERROR_INVALID_PARAM);
}

TEST(QraBacktraceHandler, LeavesTheSignalHandlersAsTheyAre) {
    struct sigaction before = {};
    struct sigaction after = {};
    sigaction(SIGSEGV, nullptr, &before);

    register_backtrace_handler();
    sigaction(SIGSEGV, nullptr, &after);
    unregister_backtrace_handler();

    EXPECT_EQ(before.sa_handler, after.sa_handler);
}
