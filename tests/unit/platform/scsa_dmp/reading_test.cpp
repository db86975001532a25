#include <filesystem>

#include "tests/unit/platform/scsa_dmp/counted_reads.h"
#include "tests/unit/platform/scsa_dmp/packages_test.h"

namespace {

using package_maker::Sff;
using package_maker::sff_bytes;
using package_maker::XmlPlace;

constexpr uint64_t kFilm = uint64_t{4} << 30U;

class Reading : public PackagesTest {
protected:
    /// Asks, and expects that hardly more is read than `needed` bytes.
    template <class Ask>
    void expect_reads(uint64_t needed, Ask ask) {
        forget_reads();
        ask();
        EXPECT_LE(bytes_read() * 10, needed * 11) << bytes_read() << " bytes read for " << needed;
        EXPECT_GT(bytes_read(), 0u);
        const std::string question = std::to_string(++questions_);
        RecordProperty("bytes_read_" + question, std::to_string(bytes_read()));
        RecordProperty("bytes_needed_" + question, std::to_string(needed));
    }

    int questions_ = 0;
    const std::string cover = std::string(300000, 'c');
    const std::string xml_text = "<m>" + std::string(4000, 'x') + "</m>";
};

}  // namespace

TEST_F(Reading, AFilmOfFourGigabytesIsSteppedOver) {
    for (const XmlPlace place : {XmlPlace::kBox, XmlPlace::kItem}) {
        for (const bool in_meta : {false, true}) {
            Sff sff;
            sff.xml = xml_text;
            sff.xml_place = place;
            sff.items_in_meta = in_meta;
            sff.items = {{3, "cover.jpg", cover}, {4, "other.jpg", std::string(400000, 'o')}};
            sff.tracks = {{2, {cover}, 1, true}, {5, {std::string(500000, 'o')}, 1, true}};
            const uint64_t headers = sff_bytes(sff).size() - 2 * cover.size() - 900000 - xml_text.size();
            sff.film = kFilm;
            const std::string package = write_sff("f.uvu", sff);
            expect_reads(headers + xml_text.size(), [&] { EXPECT_EQ(sff_xml(package), xml_text); });
            expect_reads(headers + cover.size(),
                         [&] { EXPECT_TRUE(sff_image(package, "", "cover.jpg") == cover); });
            expect_reads(headers + cover.size(), [&] { EXPECT_TRUE(sff_image(package, "", "2") == cover); });
        }
    }
}

TEST_F(Reading, AFilmInATarIsSteppedOver) {
    Sff sff;
    sff.xml = xml_text;
    sff.items = {{3, "cover.jpg", cover}};
    std::string bytes = sff_bytes(sff);
    const uint64_t headers = bytes.size() - cover.size() - xml_text.size();
    bytes += package_maker::be32(0) + "mdat";
    const std::string poster(200 * 512, 'p');
    const std::string package =
        write("c.tar", package_maker::tar_header("poster.jpg", poster.size()) + poster +
                           package_maker::tar_header("film.uvu", kFilm) + bytes);
    std::filesystem::resize_file(package, 512 + poster.size() + 512 + kFilm + 1024);
    const uint64_t tar_headers = 2 * 512;
    expect_reads(tar_headers + headers + xml_text.size(),
                 [&] { EXPECT_EQ(sff_xml(package, "film.uvu"), xml_text); });
    expect_reads(tar_headers + headers + cover.size(),
                 [&] { EXPECT_TRUE(sff_image(package, "film.uvu", "cover.jpg") == cover); });
    expect_reads(tar_headers + poster.size(), [&] { EXPECT_TRUE(image(package, "poster.jpg") == poster); });
    expect_reads(tar_headers + 1024, [&] { EXPECT_EQ(list(package), (Names{"poster.jpg", "film.uvu"})); });
}

TEST_F(Reading, AFilmInAZipIsSteppedOver) {
    Sff sff;
    sff.xml = xml_text;
    sff.items = {{3, "cover.jpg", cover}};
    std::string bytes = sff_bytes(sff);
    const uint64_t headers = bytes.size() - cover.size() - xml_text.size();
    bytes += package_maker::be32(0) + "mdat";
    const std::string poster(300000, 'p');
    const std::string table(500, 't');
    for (const bool in_64_bits : {false, true}) {
        SCOPED_TRACE(in_64_bits);
        const uint64_t film = in_64_bits ? 2 * kFilm : 4200000000U;
        const std::vector<package_maker::ZipEntry> entries = {{"meta.xml", xml_text},
                                                              {"film.uvu", bytes, 0, 0, 0, film},
                                                              {"poster.jpg", poster},
                                                              {"toc.xml", table}};
        ASSERT_TRUE(package_maker::write_zip(path("c.zip"), entries, in_64_bits));
        const std::string package = path("c.zip");
        const uint64_t names = 8 + 8 + 10 + 7;
        // A file has a header in the directory and one of its own.
        const uint64_t zip_headers =
            2 * names + 4 * (in_64_bits ? 46 + 28 + 30 + 20 : 46 + 30) + (in_64_bits ? 98 : 22);
        expect_reads(zip_headers, [&] {
            EXPECT_EQ(list(package), (Names{"meta.xml", "film.uvu", "poster.jpg", "toc.xml"}));
        });
        expect_reads(zip_headers + table.size(), [&] { EXPECT_EQ(xml(package, "toc.xml"), table); });
        expect_reads(zip_headers + xml_text.size(), [&] { EXPECT_EQ(xml(package, "meta.xml"), xml_text); });
        expect_reads(zip_headers + headers + xml_text.size(),
                     [&] { EXPECT_EQ(sff_xml(package, "film.uvu"), xml_text); });
        expect_reads(zip_headers + headers + cover.size(),
                     [&] { EXPECT_TRUE(sff_image(package, "film.uvu", "cover.jpg") == cover); });
        expect_reads(zip_headers + poster.size(),
                     [&] { EXPECT_TRUE(image(package, "poster.jpg") == poster); });
    }
}
