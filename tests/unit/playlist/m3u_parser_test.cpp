#include "libqra-agent/playlist/m3u_parser.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "tests/unit/playlist/m3u_text.h"

/// The steps that no line of a file reaches.
struct M3UParserPeer {
    static int string_to_int(const std::string& text) { return M3UParser::_string_to_int(text); }
    static void simple_parameter(const std::string& line, M3U* m3u) {
        M3UParser()._parse_simple_parameter(line, m3u);
    }
};

namespace {

constexpr char kRecord[] =
    "#EXTINF:215.7|Hey|Band|Disc|Pop|2015|4096|mp3|/t.jpg|320|44100|42|/m/a.mp3|1500000000|a.mp3|audio/"
    "mpeg|loc|"
    "1500000001|3|16|5|1\nuri\n";

Segment only_segment(const std::string& text) {
    const M3U m3u = parse_m3u(text);
    EXPECT_EQ(m3u.segments.size(), 1U) << text;
    return m3u.segments.empty() ? Segment() : m3u.segments.front();
}

TEST(M3UParser, AnEmptyFileHasNothing) {
    const M3U m3u = parse_m3u("");
    EXPECT_TRUE(m3u.segments.empty());
    EXPECT_TRUE(m3u.params.empty());
    EXPECT_EQ(m3u.GetName(), "");
    EXPECT_EQ(m3u.GetCount(), 0);
}

TEST(M3UParser, ARecordFillsEveryField) {
    const Segment segment = only_segment(kRecord);
    EXPECT_EQ(segment.duration, 215U);
    EXPECT_EQ(segment.title, "Hey");
    EXPECT_EQ(segment.artist, "Band");
    EXPECT_EQ(segment.album, "Disc");
    EXPECT_EQ(segment.genre, "Pop");
    EXPECT_EQ(segment.year, "\xDF");
    EXPECT_EQ(segment.fileSize, 4096);
    EXPECT_EQ(segment.fileFormat, "mp3");
    EXPECT_EQ(segment.thumbnailUri, "/t.jpg");
    EXPECT_EQ(segment.bitrate, 320);
    EXPECT_EQ(segment.sampleRate, 44100);
    EXPECT_EQ(segment.fileId, "42");
    EXPECT_EQ(segment.path, "/m/a.mp3");
    EXPECT_EQ(segment.addedtime, 1500000000);
    EXPECT_EQ(segment.fileName, "a.mp3");
    EXPECT_EQ(segment.mimeType, "audio/mpeg");
    EXPECT_EQ(segment.locationTag, "loc");
    EXPECT_EQ(segment.modTime, 1500000001);
    EXPECT_EQ(segment.playCount, 3);
    EXPECT_EQ(segment.bitResolution, 16);
    EXPECT_EQ(segment.mediaType, 5);
    EXPECT_TRUE(segment.drm);
    EXPECT_EQ(segment.uri, "uri");
}

TEST(M3UParser, ARecordAsLastLineIsNone) {
    EXPECT_TRUE(parse_m3u("#EXTINF:1|a|\n").segments.empty());
    EXPECT_TRUE(parse_m3u("#EXTINF:1|a|").segments.empty());
}

TEST(M3UParser, ALineWithoutALineFeedCounts) {
    EXPECT_EQ(only_segment("#EXTINF:1|a|\nlast").uri, "last");
    EXPECT_EQ(parse_m3u("#EXT-X-NAME:end").GetName(), "end");
}

TEST(M3UParser, TheLineBehindARecordIsItsUriWhateverItSays) {
    EXPECT_EQ(only_segment("#EXTINF:1|a|\n\n").uri, "");
    const M3U m3u = parse_m3u("#EXTINF:1|a|\n#EXT-X-ENDLIST\n");
    EXPECT_EQ(m3u.segments.front().uri, "#EXT-X-ENDLIST");
    EXPECT_FALSE(m3u.bEndList);
}

TEST(M3UParser, EveryColonBehindTheFirstIsLost) {
    EXPECT_EQ(parse_m3u("#EXT-X-NAME:Party: Summer\n").GetName(), "Party Summer");
    EXPECT_EQ(parse_m3u("#EXT-X-NAME:a:b\n").GetName(), "ab");
    EXPECT_EQ(only_segment("#EXTINF:1|C:\\x:y|\n\n").title, "C\\xy");
}

TEST(M3UParser, ATagThatOnlyBeginsLikeOneIsKeptUnderItsOwnName) {
    const M3U m3u = parse_m3u("#EXT-X-COUNTER:3\n#EXT-X-NAMES\n");
    EXPECT_EQ(m3u.GetCount(), 0);
    EXPECT_EQ(m3u.params, (M3U::Attributes{{"#EXT-X-COUNTER", "3"}, {"#EXT-X-NAMES", ""}}));
}

TEST(M3UParser, SimpleTagsSetTheirFieldsAndFlags) {
    const M3U m3u = parse_m3u(
        "#EXT-X-TARGETDURATION:12\n#EXT-X-MEDIA-SEQUENCE:7\n#EXT-X-VERSION:3\n#EXT-X-ALLOW-CACHE:YES\n"
        "#EXT-X-COUNT: 100 songs\n#EXT-X-ENDLIST\n");
    EXPECT_EQ(m3u.targetDuration, 12);
    EXPECT_EQ(m3u.mediaSequence, 7);
    EXPECT_EQ(m3u.version, 3);
    EXPECT_EQ(m3u.allowCache, "YES");
    EXPECT_EQ(m3u.GetCount(), 100);
    EXPECT_EQ(m3u.params.at("#EXT-X-COUNT"), "100");
    EXPECT_TRUE(m3u.bTargetDuration && m3u.bMediaSequence && m3u.bVersion && m3u.bAllowCache && m3u.bEndList);
    EXPECT_FALSE(m3u.bKey || m3u.bVariant || m3u.bByteRange || m3u.bProgramDateTime || m3u.bPlaylistType);
}

TEST(M3UParser, ACountThatIsNoNumberIsZero) {
    EXPECT_EQ(parse_m3u("#EXT-X-COUNT:many\n").params.at("#EXT-X-COUNT"), "0");
}

TEST(M3UParser, OtherLinesAreIgnored) {
    const M3U m3u = parse_m3u(
        "#EXTM3U\nsong.mp3\n#EXT-X-BYTERANGE:1@2\n#EXT-X-PROGRAM-DATE-TIME:now\n#EXT-X-PLAYLIST-TYPE:VOD\n"
        "#ext-x-name:lower\n#EXT-X-NAM\n# remark\n");
    EXPECT_TRUE(m3u.params.empty());
    EXPECT_TRUE(m3u.segments.empty());
    EXPECT_FALSE(m3u.bByteRange || m3u.bProgramDateTime || m3u.bPlaylistType);
}

TEST(M3UParser, AttributesAreSplitAtEveryComma) {
    const M3U m3u = parse_m3u("#EXT-X-KEY:METHOD=AES-128,URI='a,b'\n");
    EXPECT_TRUE(m3u.bKey);
    EXPECT_EQ(m3u.key, (M3U::Attributes{{"METHOD", "AES-128"}, {"URI", "'a"}, {"b'", ""}}));
}

TEST(M3UParser, KeysOfSeveralLinesAreMerged) {
    const M3U m3u = parse_m3u("#EXT-X-KEY:A='1',B=2=3\n#EXT-X-KEY:A=\"x\",C='\n");
    EXPECT_EQ(m3u.key, (M3U::Attributes{{"A", "x"}, {"B", "2=3"}, {"C", ""}}));
}

TEST(M3UParser, QuotesGoInPairsAndOneLayerOnly) {
    const M3U m3u = parse_m3u("#EXT-X-KEY:A='x\",B=''y'',C=z'\n");
    EXPECT_EQ(m3u.key, (M3U::Attributes{{"A", "'x\""}, {"B", "'y'"}, {"C", "z'"}}));
}

TEST(M3UParser, AnEmptyAttributeListIsAnEmptyNameWithAnEmptyValue) {
    EXPECT_EQ(parse_m3u("#EXT-X-KEY\n").key, (M3U::Attributes{{"", ""}}));
}

TEST(M3UParser, AStreamTakesTheLineBehindItAsUri) {
    const M3U m3u = parse_m3u("#EXT-X-STREAM-INF:BANDWIDTH=1,X=a:b\n#EXTINF:1|a|\n#EXT-X-STREAM-INF:A=1\n");
    EXPECT_TRUE(m3u.bVariant);
    ASSERT_EQ(m3u.variants.size(), 1U);
    EXPECT_EQ(m3u.variants[0], (M3U::Attributes{{"BANDWIDTH", "1"}, {"X", "ab"}, {"uri", "#EXTINF:1|a|"}}));
    EXPECT_TRUE(m3u.segments.empty());
}

TEST(M3UParser, CarriageReturnsAndBlanksAtTheEndsOfALineGo) {
    const M3U m3u = parse_m3u("\t #EXT-X-NAME:My songs \r\n#EXTINF:1|a|\r\n \t\v\f\r\n");
    EXPECT_EQ(m3u.GetName(), "My songs");
    EXPECT_EQ(m3u.segments.front().uri, "");
}

TEST(M3UParser, BytesOfAnyEncodingPass) {
    EXPECT_EQ(parse_m3u("#EXT-X-NAME:caf\xE9 \xC3\xA0\x85\xA0\n").GetName(), "caf\xE9 \xC3\xA0\x85\xA0");
    // The mark in front of the tag makes it another one.
    EXPECT_EQ(parse_m3u("\xEF\xBB\xBF#EXT-X-NAME:a\n").GetName(), "");
}

TEST(M3UParser, AStandardRecordHasNoFields) {
    const Segment segment = only_segment("#EXTINF:123,Song\nsong.mp3\n");
    EXPECT_EQ(segment.duration, 0U);
    EXPECT_EQ(segment.title, "");
    EXPECT_EQ(segment.path, "");
    EXPECT_EQ(segment.year, std::string(1, '\0'));
    EXPECT_EQ(segment.uri, "song.mp3");
}

TEST(M3UParser, WhatNoBarClosesDoesNotExist) {
    std::string line = "#EXTINF:";
    for (int i = 1; i <= 20; ++i)
        line += std::to_string(i) + "|";
    const Segment segment = only_segment(line + "21\n\n");
    EXPECT_EQ(segment.bitResolution, 20);
    EXPECT_EQ(segment.mediaType, 0);
    EXPECT_FALSE(segment.drm);
}

TEST(M3UParser, TheLastFieldTakesTheRestOfTheLine) {
    std::string line = "#EXTINF:";
    for (int i = 1; i <= 21; ++i)
        line += std::to_string(i) + "|";
    EXPECT_TRUE(only_segment(line + "1|x|y|z\n\n").drm);
    EXPECT_FALSE(only_segment(line + "x|1\n\n").drm);
    EXPECT_EQ(only_segment(line + "\n\n").mediaType, 21);
}

/// A record whose every field is this text.
std::string record_of(const std::string& field) {
    std::string line = "#EXTINF:";
    for (int i = 1; i <= 21; ++i)
        line += field + "|";
    return line + field + "\n\n";
}

TEST(M3UParser, NumbersAreReadUpToWhereTheyEnd) {
    const Segment segment = only_segment(record_of(" -12.9kg"));
    EXPECT_EQ(segment.fileSize, -12);
    EXPECT_EQ(segment.bitrate, -12);
    EXPECT_EQ(segment.sampleRate, -12);
    EXPECT_EQ(segment.addedtime, -12);
    EXPECT_EQ(segment.modTime, -12);
    EXPECT_EQ(segment.playCount, -12);
    EXPECT_EQ(segment.bitResolution, -12);
    EXPECT_EQ(segment.mediaType, -12);
    EXPECT_TRUE(segment.drm);
}

TEST(M3UParser, WhatIsNoNumberIsZero) {
    for (const char* text : {"", "x", "-", "+", "|", "nan"}) {
        const Segment segment = only_segment(record_of(text));
        EXPECT_EQ(segment.duration, 0U) << text;
        EXPECT_EQ(segment.fileSize, 0) << text;
        EXPECT_EQ(segment.bitrate, 0) << text;
        EXPECT_EQ(segment.addedtime, 0) << text;
        EXPECT_EQ(segment.modTime, 0) << text;
        EXPECT_EQ(segment.year, std::string(1, '\0')) << text;
        EXPECT_FALSE(segment.drm) << text;
    }
}

TEST(M3UParser, ADurationHasThePrecisionOfAFloat) {
    const auto duration = [](const std::string& text) {
        return only_segment("#EXTINF:" + text + "|\n\n").duration;
    };
    EXPECT_EQ(duration("16777217"), 16777216U);
    EXPECT_EQ(duration("9.99"), 9U);
    EXPECT_EQ(duration("."), 0U);
    EXPECT_EQ(duration("1e19"), 9999999980506447872U);
    EXPECT_EQ(duration("9223372036854775808"), 9223372036854775808U);
    EXPECT_EQ(duration("1e30"), UINT64_MAX);
    EXPECT_EQ(duration("inf"), UINT64_MAX);
    EXPECT_EQ(duration("-1"), UINT64_MAX);
    EXPECT_EQ(duration("-1e30"), 9223372036854775808U);
}

TEST(M3UParser, AYearIsOneByte) {
    const auto year = [](const std::string& text) {
        return only_segment("#EXTINF:1|t|a|b|g|" + text + "|\n\n").year;
    };
    EXPECT_EQ(year("2015"), "\xDF");
    EXPECT_EQ(year("2000"), "\xD0");
    EXPECT_EQ(year("1802"), "\x0A");
    EXPECT_EQ(year("1916"), "|");
    EXPECT_EQ(year("1792"), std::string(1, '\0'));
    EXPECT_EQ(year(""), std::string(1, '\0'));
    EXPECT_EQ(year("MMXV"), std::string(1, '\0'));
}

TEST(M3UParser, WholeNumbersOfTagsAreSummedUpUnchecked) {
    EXPECT_EQ(M3UParserPeer::string_to_int(""), 0);
    EXPECT_EQ(M3UParserPeer::string_to_int("120"), 120);
    EXPECT_EQ(M3UParserPeer::string_to_int("-5"), ('-' - '0') * 10 + 5);
    EXPECT_EQ(M3UParserPeer::string_to_int("a"), 'a' - '0');
    EXPECT_EQ(M3UParserPeer::string_to_int("4294967297"), 1);
}

TEST(M3UParser, TheTagsThatNoFileReachesKeepTheirRules) {
    M3U m3u;
    M3UParserPeer::simple_parameter("#EXT-X-BYTERANGE:12@3@4", &m3u);
    M3UParserPeer::simple_parameter("#EXT-X-PROGRAM-DATE-TIME:10:30", &m3u);
    M3UParserPeer::simple_parameter("#EXT-X-PLAYLIST-TYPE:VOD", &m3u);
    EXPECT_EQ(m3u.byteRangeLength, 12);
    EXPECT_EQ(m3u.byteRangeOffset, 34);
    EXPECT_EQ(m3u.programDateTime, "1030");
    EXPECT_EQ(m3u.playlistType, "VOD");
    EXPECT_TRUE(m3u.bByteRange && m3u.bProgramDateTime && m3u.bPlaylistType);
    M3UParserPeer::simple_parameter("#EXT-X-BYTERANGE", &m3u);
    EXPECT_EQ(m3u.byteRangeLength, 0);
    EXPECT_EQ(m3u.byteRangeOffset, 0);
}

TEST(M3UParser, ReadingAgainStartsTheFlagsOfVariantsAndEndAnew) {
    M3U m3u = parse_m3u("#EXT-X-STREAM-INF:A=1\nu\n#EXT-X-KEY:A=1\n#EXT-X-ENDLIST\n");
    std::istringstream empty("");
    M3UParser().parse(empty, &m3u);
    EXPECT_FALSE(m3u.bVariant);
    EXPECT_FALSE(m3u.bEndList);
    EXPECT_TRUE(m3u.bKey);
}

TEST(M3UParser, ALocaleChangesNothing) {
    const bool comma = setlocale(LC_ALL, "de_DE.UTF-8") != nullptr || setlocale(LC_ALL, "C.UTF-8") != nullptr;
    EXPECT_TRUE(comma);
    EXPECT_EQ(only_segment("#EXTINF:2.75|a|\n\n").duration, 2U);
    EXPECT_EQ(M3U()._float_to_string(2.75F), "2.75");
    setlocale(LC_ALL, "C");
}

}  // namespace
