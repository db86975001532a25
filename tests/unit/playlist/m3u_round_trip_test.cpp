// What is written and read again has exactly the fields that the format keeps, whatever the list was.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/unit/playlist/m3u_text.h"

namespace {

class RandomList {
public:
    explicit RandomList(unsigned seed) : random_(seed) {}

    M3U list() {
        M3U m3u;
        m3u.params["#EXT-X-NAME"] = text();
        m3u.SetCount(number<int32_t>());
        m3u.bEndList = random_() % 2 == 0;
        for (size_t i = random_() % 8; i > 0; --i)
            m3u.segments.push_back(segment());
        return m3u;
    }

private:
    /// Bytes that the format keeps: no bar, colon or line feed, nothing blank at the ends of the line.
    std::string text() {
        std::string text;
        for (size_t i = random_() % 30; i > 0; --i) {
            const char c = static_cast<char>(random_());
            text += c == '|' || c == ':' || c == '\n' ? '.' : c;
        }
        return "<" + text + ">";
    }

    template <class T>
    T number() {
        return static_cast<T>(random_() >> (random_() % 64));
    }

    Segment segment() {
        Segment segment;
        segment.duration = number<uint64_t>();
        segment.title = text();
        segment.artist = text();
        segment.album = text();
        segment.genre = text();
        segment.year = std::to_string(1900 + random_() % 200);
        segment.fileSize = number<int64_t>();
        segment.fileFormat = text();
        segment.thumbnailUri = text();
        segment.bitrate = number<int32_t>();
        segment.sampleRate = number<int32_t>();
        segment.fileId = text();
        segment.path = text();
        segment.addedtime = number<int32_t>();
        segment.fileName = text();
        segment.mimeType = text();
        segment.locationTag = text();
        segment.modTime = number<int32_t>();
        segment.playCount = number<int32_t>();
        segment.bitResolution = number<int32_t>();
        segment.mediaType = number<int32_t>();
        segment.drm = random_() % 2 == 0;
        return segment;
    }

    std::mt19937_64 random_;
};

void expect_texts_kept(const Segment& written, const Segment& read) {
    EXPECT_EQ(read.title, written.title);
    EXPECT_EQ(read.artist, written.artist);
    EXPECT_EQ(read.album, written.album);
    EXPECT_EQ(read.genre, written.genre);
    EXPECT_EQ(read.fileFormat, written.fileFormat);
    EXPECT_EQ(read.thumbnailUri, written.thumbnailUri);
    EXPECT_EQ(read.fileId, written.fileId);
    EXPECT_EQ(read.path, written.path);
    EXPECT_EQ(read.fileName, written.fileName);
    EXPECT_EQ(read.mimeType, written.mimeType);
    EXPECT_EQ(read.locationTag, written.locationTag);
    EXPECT_EQ(read.uri, "");
}

void expect_numbers_kept(const Segment& written, const Segment& read) {
    EXPECT_EQ(read.fileSize, written.fileSize);
    EXPECT_EQ(read.bitrate, written.bitrate);
    EXPECT_EQ(read.sampleRate, written.sampleRate);
    EXPECT_EQ(read.addedtime, written.addedtime);
    EXPECT_EQ(read.modTime, written.modTime);
    EXPECT_EQ(read.playCount, written.playCount);
    EXPECT_EQ(read.bitResolution, written.bitResolution);
    EXPECT_EQ(read.mediaType, written.mediaType);
    EXPECT_EQ(read.drm, written.drm);
    const auto rounded = static_cast<float>(written.duration);
    EXPECT_EQ(read.duration,
              rounded >= 18446744073709551616.0F ? UINT64_MAX : static_cast<uint64_t>(rounded));
    EXPECT_EQ(read.year, std::string(1, static_cast<char>(std::stoi(written.year) & 0xFF)));
}

TEST(M3URoundTrip, KeepsWhatTheFormatKeeps) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        const M3U written = RandomList(seed).list();
        const M3U read = parse_m3u(written.Dump());
        EXPECT_EQ(read.params, written.params);
        EXPECT_EQ(read.bEndList, written.bEndList);
        ASSERT_EQ(read.segments.size(), written.segments.size());
        auto it = read.segments.begin();
        for (const Segment& segment : written.segments) {
            expect_texts_kept(segment, *it);
            expect_numbers_kept(segment, *it++);
        }
    }
}

/// A second save of what was loaded changes the year's byte to that of a number that it is not, and no more.
TEST(M3URoundTrip, TheYearsByteIsWrittenByItsLength) {
    const std::string first = parse_m3u("#EXTINF:1|t|a|b|g|1792|5|\n\n#EXTINF:2|t|a|b|g|2015|6|\n\n").Dump();
    EXPECT_NE(first.find(std::string("|g|") + '\0' + "|5|"), std::string::npos);
    EXPECT_NE(first.find("|g|\xDF|6|"), std::string::npos);
    const M3U second = parse_m3u(first);
    EXPECT_EQ(second.segments.front().fileSize, 5);
    EXPECT_EQ(second.segments.back().year, std::string(1, '\0'));
}

/// A year whose byte is a bar, a colon or a line feed breaks the record that the next save writes.
TEST(M3URoundTrip, AYearsByteCanBreakTheRecord) {
    const auto saved_and_read = [](const std::string& year) {
        return parse_m3u(parse_m3u("#EXTINF:1|t|a|b|g|" + year + "|5|mp3|\n\n").Dump()).segments.front();
    };
    EXPECT_EQ(saved_and_read("1916").fileSize, 0);  // "|": what follows is one field further
    EXPECT_EQ(saved_and_read("1916").thumbnailUri, "mp3");
    EXPECT_EQ(saved_and_read("1850").fileSize, 5);  // ":": dropped, and the field is empty
    EXPECT_EQ(saved_and_read("1802").fileSize, 0);  // line feed: the rest is the line behind the record
    EXPECT_EQ(saved_and_read("1802").uri.substr(0, 6), "|5|mp3");
}

}  // namespace
