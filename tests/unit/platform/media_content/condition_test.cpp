#include "platform/media-content/host/condition/condition.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/media-content/host/condition/condition_sql.h"

namespace media_content {
namespace {

std::string sql_of(const std::string& text, RowKind kind = RowKind::kMedia) {
    Sql sql;
    append_condition(sql, parse_condition(text), kind);
    return sql.text;
}

std::vector<Sql::Value> values_of(const std::string& text, RowKind kind = RowKind::kMedia) {
    Sql sql;
    append_condition(sql, parse_condition(text), kind);
    return sql.values;
}

bool is_refused(const std::string& text) {
    try {
        parse_condition(text);
        return false;
    } catch (const ConditionError&) {
        return true;
    }
}

TEST(ParseCondition, AndBindsMoreTightlyThanOr) {
    const Condition tree = parse_condition("MEDIA_360 = 1 or MEDIA_360 = 2 AND MEDIA_360 = 3");
    ASSERT_EQ(tree.op, Condition::Op::kOr);
    ASSERT_EQ(tree.children.size(), 2u);
    EXPECT_EQ(tree.children[0].op, Condition::Op::kEquals);
    EXPECT_EQ(tree.children[1].op, Condition::Op::kAnd);
}

TEST(ParseCondition, AChainIsOneNode) {
    const Condition tree =
        parse_condition("( 0=1 ) or MEDIA_DISPLAY_NAME LIKE '%.jpg' OR MEDIA_PATH like '%.srf'");
    EXPECT_EQ(tree.op, Condition::Op::kOr);
    EXPECT_EQ(tree.children.size(), 3u);
}

TEST(ParseCondition, ADoubledQuoteIsOne) {
    const Condition tree = parse_condition("FOLDER_PATH = '/it''s'''");
    EXPECT_EQ(std::get<std::string>(tree.value), "/it's'");
}

TEST(ParseCondition, NumbersMayBeNegative) {
    EXPECT_EQ(std::get<int64_t>(parse_condition("UHD_SUB_TYPE = -1").value), -1);
}

TEST(ParseCondition, TheConstantIsWhatItSays) {
    EXPECT_FALSE(parse_condition("0=1").constant);
    EXPECT_TRUE(parse_condition("1 = 1").constant);
}

TEST(ParseCondition, WhatIsNoConditionIsRefused) {
    for (const char* text : {"",
                             " ",
                             "(",
                             ")",
                             "()",
                             "0=",
                             "=1",
                             "MEDIA_360",
                             "MEDIA_360 =",
                             "MEDIA_360 = ",
                             "MEDIA_360 1",
                             "NO_SUCH_COLUMN = 1",
                             "MEDIA_360 = 1 AND",
                             "MEDIA_360 = 1 OR OR MEDIA_360 = 2",
                             "(MEDIA_360 = 1",
                             "MEDIA_360 = 1)",
                             "MEDIA_PATH LIKE 1",
                             "MEDIA_PATH LIKE",
                             "MEDIA_PATH = 'open",
                             "MEDIA_360 = 1; DROP TABLE media",
                             "MEDIA_360 = 1 -- rest",
                             "MEDIA_360 = (SELECT 1)",
                             "'a' = 'a'",
                             "MEDIA_PATH = \"a\"",
                             "MEDIA_360 = -",
                             "MEDIA_360 = 99999999999999999999",
                             "MEDIA_360 = 1 /* */",
                             "id = 1",
                             "m.id = 1"}) {
        EXPECT_TRUE(is_refused(text)) << text;
    }
}

TEST(ParseCondition, AByteOfZeroIsNoCondition) {
    EXPECT_TRUE(is_refused(std::string("MEDIA_360 = 1\0 OR 1=1", 21)));
}

TEST(ParseCondition, TellsWhereItStopped) {
    try {
        parse_condition("MEDIA_360 = 1 AND x = 2");
        FAIL() << "was taken for a condition";
    } catch (const ConditionError& error) {
        EXPECT_EQ(error.at(), 18u);
    }
}

TEST(ParseCondition, DepthIsLimited) {
    const auto nested = [](int depth) {
        return std::string(static_cast<size_t>(depth), '(') + "0=1" +
               std::string(static_cast<size_t>(depth), ')');
    };
    EXPECT_FALSE(is_refused(nested(kDeepestCondition)));
    EXPECT_TRUE(is_refused(nested(kDeepestCondition + 1)));
    EXPECT_TRUE(is_refused(nested(50000)));
}

TEST(ParseCondition, LengthsAndNumbersAreLimited) {
    EXPECT_TRUE(is_refused("MEDIA_PATH = '" + std::string(kLongestLiteral + 1, 'a') + "'"));
    EXPECT_FALSE(is_refused("MEDIA_PATH = '" + std::string(kLongestLiteral, 'a') + "'"));
    EXPECT_TRUE(is_refused("0=1" + std::string(kLongestCondition, ' ')));
    std::string many = "0=1";
    for (size_t i = 1; i < kMostComparisons; ++i) {
        many += " or 0=1";
    }
    EXPECT_FALSE(is_refused(many));
    EXPECT_TRUE(is_refused(many + " or 0=1"));
}

TEST(ParseCondition, NoBytesDoAnyHarm) {
    std::mt19937 random(4711);
    const std::string pieces[] = {"(",    ")",          "'",           "''",  "=",  "AND", " or ",
                                  "LIKE", "MEDIA_PATH", "%",           "_",   "-",  "1",   "\xff",
                                  "\n",   " ",          "FOLDER_PATH", "'a'", "0=1"};
    size_t accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (unsigned i = random() % 12; i > 0; --i) {
            text += random() % 8 == 0 ? std::string(1, static_cast<char>(random()))
                                      : pieces[random() % std::size(pieces)];
        }
        accepted += is_refused(text) ? 0 : 1;
    }
    EXPECT_GT(accepted, 0u);
}

TEST(ConditionSql, NoByteOfALiteralBecomesPartOfTheStatement) {
    const std::string hostile = "x') OR 1=1; DROP TABLE media; --";
    std::string quoted = hostile;
    quoted.insert(quoted.find('\''), "'");
    for (const char* column :
         {"MEDIA_DISPLAY_NAME", "FOLDER_PATH", "STORAGE_PATH", "STORAGE_ID", "MEDIA_ARTIST"}) {
        for (const char* op : {" = '", " LIKE '"}) {
            EXPECT_EQ(sql_of(std::string(column) + op + quoted + "'").find("DROP"), std::string::npos)
                << column;
        }
    }
}

TEST(ConditionSql, AChainOfExtensionsBecomesOneSet) {
    const std::string text =
        "( ( 0=1 ) or MEDIA_DISPLAY_NAME LIKE '%.JPG' or MEDIA_DISPLAY_NAME LIKE '%.png' or MEDIA_PATH LIKE "
        "'%.srf' )";
    EXPECT_EQ(sql_of(text), "(m.extension IN (?,?,?))");
    EXPECT_EQ(std::get<std::string>(values_of(text)[0]), "jpg");
}

TEST(ConditionSql, APatternThatIsNoExtensionIsASearch) {
    EXPECT_EQ(sql_of("MEDIA_DISPLAY_NAME LIKE '%.tar.gz'"), "qra_like(m.name, ?)");
    EXPECT_EQ(sql_of("MEDIA_DISPLAY_NAME LIKE '%.j_g'"), "qra_like(m.name, ?)");
    EXPECT_EQ(sql_of("MEDIA_DISPLAY_NAME LIKE '%sea%'"), "qra_contains(m.name, ?)");
    EXPECT_EQ(sql_of("MEDIA_DISPLAY_NAME LIKE '%s_a%'"), "qra_like(m.name, ?)");
    EXPECT_EQ(sql_of("PVR_PROGRAM_TITLE LIKE '%.jpg'", RowKind::kRecording), "qra_like(p.program_title, ?)");
}

TEST(ConditionSql, AnIdIsANumberWrittenAsOne) {
    EXPECT_EQ(sql_of("MEDIA_FOLDER_ID = '12'"), "m.folder = ?");
    for (const char* text : {"''", "'12 '", "'012'", "'0x1'", "'12a'", "'99999999999999999999'"}) {
        EXPECT_EQ(sql_of(std::string("MEDIA_FOLDER_ID = ") + text), "0") << text;
    }
}

TEST(ConditionSql, AColumnThatARowDoesNotHaveMatchesNothing) {
    EXPECT_EQ(sql_of("MEDIA_DISPLAY_NAME = 'a'", RowKind::kFolder), "0");
    EXPECT_EQ(sql_of("PVR_MAJOR = 1", RowKind::kStorage), "0");
}

TEST(ConditionSql, EveryColumnHasAnExpressionForEveryKindOfRow) {
    for (const char* column : {"STORAGE_PATH",
                               "MEDIA_FOLDER_ID",
                               "UHD_FOLDER_ID",
                               "FOLDER_PATH",
                               "FOLDER_PARENT_FOLDER_ID",
                               "MEDIA_DISPLAY_NAME",
                               "MEDIA_PATH",
                               "MEDIA_360",
                               "PVR_PROGRAM_TITLE",
                               "PVR_CONTENT_WATCH",
                               "PVR_TIMER_RECORD",
                               "UHD_FILE_NAME",
                               "UHD_SUB_TYPE",
                               "MEDIA_MODIFIED_DATE",
                               "PVR_CHANNEL_NAME",
                               "PVR_MAJOR",
                               "PVR_MINOR",
                               "PVR_MODIFIED_DATE",
                               "FOLDER_NAME",
                               "MEDIA_MODIFIED_TIME",
                               "PVR_START_TIME"}) {
        ASSERT_NE(find_column(column), nullptr) << column;
        for (const RowKind kind : {RowKind::kMedia, RowKind::kRecording, RowKind::kUhd}) {
            EXPECT_FALSE(order_of(*find_column(column), kind).empty()) << column;
        }
    }
}

TEST(Printable, IsOneLineOfVisibleCharacters) {
    EXPECT_EQ(printable("a\nb\xff"), "a\\x0ab\\xff");
    EXPECT_EQ(printable(std::string(5000, 'x')).size(), 3003u);
}

}  // namespace
}  // namespace media_content
