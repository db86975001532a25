#include "libqra-agent/playlist/m3u.h"

#include <gtest/gtest.h>

#include "tests/fakes/dlog_capture.h"
#include "tests/unit/playlist/m3u_text.h"

namespace {

/// Entries with the ids "0", "1" and so on.
M3U numbered(int count) {
    M3U m3u;
    for (int i = 0; i < count; ++i) {
        Segment segment;
        segment.fileId = std::to_string(i);
        segment.uri = "u" + segment.fileId;
        m3u.segments.push_back(segment);
    }
    return m3u;
}

std::string ids(const M3U& m3u) {
    std::string text;
    for (const Segment& segment : m3u.segments)
        text += segment.fileId;
    return text;
}

TEST(M3U, TellsNameAndCountOrThatThereAreNone) {
    M3U m3u;
    const LogCapture log;
    EXPECT_EQ(m3u.GetName(), "");
    EXPECT_EQ(m3u.GetCount(), 0);
    EXPECT_TRUE(log.contains("Not Find M3U Name!"));
    EXPECT_TRUE(log.contains("Not Find M3U count!"));

    m3u.SetCount(-7);
    EXPECT_EQ(m3u.GetCount(), -7);
    std::string value = "as it was";
    EXPECT_EQ(m3u.GetSimpleParam("#EXT-X-NAME", value), -1);
    EXPECT_EQ(value, "as it was");
    EXPECT_EQ(m3u.GetSimpleParam("#EXT-X-COUNT", value), 0);
    EXPECT_EQ(value, "-7");
}

TEST(M3U, GivesAndDeletesEntriesWithinItsBounds) {
    M3U m3u = numbered(3);
    Segment segment;
    for (const int index : {-1, 3}) {
        EXPECT_EQ(m3u.GetSegmentByIdx(index, segment), -1);
        EXPECT_EQ(m3u.DeleteSegmentByIdx(index), -1);
    }
    EXPECT_EQ(m3u.GetSegmentByIdx(2, segment), 0);
    EXPECT_EQ(segment.fileId, "2");
    EXPECT_EQ(m3u.DeleteSegmentByIdx(1), 0);
    EXPECT_EQ(ids(m3u), "02");
}

TEST(M3U, DeletesTheFirstEntryOfAnIdOrAUri) {
    M3U m3u = numbered(3);
    m3u.segments.push_back(m3u.segments.front());
    EXPECT_TRUE(m3u.DeleteSegmentByMediaId("0"));
    EXPECT_EQ(ids(m3u), "120");
    EXPECT_FALSE(m3u.DeleteSegmentByMediaId("00"));
    m3u.DeleteSegmentByUri("u2");
    m3u.DeleteSegmentByUri("nowhere");
    EXPECT_EQ(ids(m3u), "10");
}

TEST(M3U, DeletesSeveralEntriesInAnyOrder) {
    M3U m3u = numbered(6);
    EXPECT_EQ(m3u.DeleteSegments({}), 0);
    EXPECT_EQ(m3u.DeleteSegments({4, 0, 5, 2}), 0);
    EXPECT_EQ(ids(m3u), "13");
}

TEST(M3U, ABadIndexKeepsWhatWasDeletedBefore) {
    struct Row {
        std::vector<int> indices;
        std::string left;
    };
    for (const Row& row : {Row{{-1, 0}, "0123"}, Row{{4}, "0123"}, Row{{1, 1}, "023"}, Row{{0, 9}, "123"},
                           Row{{3, 4}, "012"}, Row{{3, 2147483647}, "012"}}) {
        M3U m3u = numbered(4);
        EXPECT_EQ(m3u.DeleteSegments(row.indices), -1);
        EXPECT_EQ(ids(m3u), row.left);
    }
}

TEST(M3U, WritesADurationWithAPointBehindIt) {
    const M3U m3u;
    EXPECT_EQ(m3u._float_to_string(0), ".");
    EXPECT_EQ(m3u._float_to_string(215000), "215000.");
    EXPECT_EQ(m3u._float_to_string(0.5), ".5");
    EXPECT_EQ(m3u._float_to_string(1.0625), "1.0625");
    EXPECT_EQ(m3u._float_to_string(1.03125), "1.0312");
    EXPECT_EQ(m3u._float_to_string(18446744073709551616.0F), "18446744073709551616.");
}

TEST(M3U, WritesTagsKeysAndStreamsInTheirOrder) {
    const std::string written =
        parse_m3u(
            "#EXT-X-VERSION:3\n#EXT-X-STREAM-INF:B=2,A='1'\nu:1\n#EXT-X-STREAM-INF:\n\n"
            "#EXT-X-KEY:Z=1,Y=2\n#EXT-X-NAME:n:m\n#EXT-X-ENDLIST\n#EXTINF:.5|t|\nx\n")
            .Dump();
    EXPECT_EQ(written, std::string("#EXTM3U\n#EXT-X-NAME:nm\n#EXT-X-VERSION:3\n#EXT-X-KEY:Y=2,Z=1\n"
                                   "#EXT-X-STREAM-INF:A=1,B=2\nu:1\n#EXT-X-STREAM-INF:=\n\n"
                                   "#EXTINF:.|t||||") +
                           '\0' + "|0|||0|0|||0||||0|0|0|0|0\nx\n#EXT-X-ENDLIST\n");
}

TEST(M3U, AKeyKeepsItsPairWithoutAName) {
    EXPECT_EQ(parse_m3u("#EXT-X-KEY:\n").Dump(), "#EXTM3U\n#EXT-X-KEY:=\n");
    EXPECT_EQ(parse_m3u("#EXT-X-KEY:A=1,\n").Dump(), "#EXTM3U\n#EXT-X-KEY:=,A=1\n");
    EXPECT_EQ(parse_m3u("#EXT-X-KEY:=x\n").Dump(), "#EXTM3U\n#EXT-X-KEY:=x\n");
}

TEST(M3U, AStreamWithoutAUriHasAnEmptyLine) {
    M3U m3u;
    m3u.variants = {{{"A", "1"}}};
    EXPECT_EQ(m3u.Dump(), "#EXTM3U\n");
    m3u.bVariant = true;
    EXPECT_EQ(m3u.Dump(), "#EXTM3U\n#EXT-X-STREAM-INF:A=1\n\n");
}

}  // namespace
