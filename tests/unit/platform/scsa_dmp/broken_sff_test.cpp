#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/fakes/heap_watch.h"
#include "tests/unit/platform/scsa_dmp/counted_reads.h"
#include "tests/unit/platform/scsa_dmp/packages_test.h"

namespace {

using namespace package_maker;

const std::string kFileType = box("ftyp", "iso6");

class BrokenSff : public PackagesTest {
protected:
    /// What is read of a file of these bytes; it must not cost many reads.
    std::string xml_of(const std::string& bytes) {
        forget_reads();
        const std::string result = sff_xml(write("f.uvu", bytes));
        EXPECT_LT(reads(), 70000u);
        EXPECT_LT(bytes_read(), bytes.size() + (1U << 20U));
        return result;
    }

    std::string picture_of(const std::string& bytes, const std::string& reference) {
        return sff_image(write("f.uvu", bytes), "", reference);
    }
};

/// A "meta" box with one item, number 1, named "p"; its places are given as they stand in the box.
std::string with_places(int version, const std::string& places, const std::string& data = "picture") {
    return kFileType + meta_box(full_box("iinf", 0, be16(1) + item_info(1, "jpeg", "p")) +
                                full_box("iloc", version, places) + box("idat", data));
}

/// One item with one piece in the item data.
std::string place(uint64_t item, uint64_t method, uint64_t other_file, uint64_t offset, uint64_t length) {
    return be16(0x4400) + be16(1) + be16(item) + be16(method) + be16(other_file) + be16(1) + be32(offset) +
           be32(length);
}

/// A movie with track 1 and these tables.
std::string with_tables(const std::string& tables) {
    const std::string header = full_box("tkhd", 0, be64(0) + be32(1));
    return kFileType + box("moov", box("trak", header + box("mdia", box("minf", box("stbl", tables)))));
}

std::string runs(const std::string& entries, uint64_t count) {
    return full_box("stsc", 0, be32(count) + entries);
}

std::string sizes(uint64_t same, uint64_t count, const std::string& entries = "") {
    return full_box("stsz", 0, be32(same) + be32(count) + entries);
}

std::string offsets(uint64_t count, const std::string& entries) {
    return full_box("stco", 0, be32(count) + entries);
}

}  // namespace

TEST_F(BrokenSff, BytesThatAreNoBoxesFail) {
    for (const std::string& bytes :
         {std::string(), std::string("short"), std::string(5000, '\0'), std::string(5000, '\xff'),
          std::string("<?xml version='1.0'?><m/>"), kFileType, kFileType + meta_box(""), box("meta", "")}) {
        EXPECT_EQ(xml_of(bytes), "(failed)");
        EXPECT_EQ(picture_of(bytes, "1"), "(failed)");
    }
}

TEST_F(BrokenSff, ABoxOfAnImpossibleSizeEndsTheReading) {
    const std::string meta = meta_box(full_box("xml ", 0, "<m/>"));
    for (uint64_t size = 2; size < 8; ++size) {
        EXPECT_EQ(xml_of(kFileType + be32(size) + "free" + meta), "(failed)") << size;
        EXPECT_EQ(xml_of(kFileType + meta_box(be32(size) + "free" + full_box("xml ", 0, "<m/>"))), "(failed)")
            << size;
    }
    for (const uint64_t size : {uint64_t{0}, uint64_t{1}, uint64_t{15}, uint64_t{1} << 40U, UINT64_MAX}) {
        EXPECT_EQ(xml_of(kFileType + be32(1) + "free" + be64(size) + meta), "(failed)") << size;
    }
    EXPECT_EQ(xml_of(kFileType + be32(0xfffffff0) + "free" + meta), "(failed)");
    EXPECT_EQ(xml_of(kFileType + be32(meta.size() + 1) + meta.substr(4)), "(failed)");
    EXPECT_EQ(xml_of(kFileType + be32(1) + "free"), "(failed)");
}

TEST_F(BrokenSff, SizesOfAllKindsThatAreRightAreRead) {
    const std::string xml = full_box("xml ", 0, "<m/>");
    const std::string meta = meta_box(xml);
    EXPECT_EQ(xml_of(kFileType + be32(1) + "free" + be64(20) + "free" + meta), "<m/>");
    EXPECT_EQ(xml_of(kFileType + be32(0) + meta.substr(4)), "<m/>") << "a size of 0 is all the rest";
    EXPECT_EQ(xml_of(kFileType + be32(1) + "meta" + be64(meta.size() + 8) + meta.substr(8)), "<m/>");
    EXPECT_EQ(xml_of(kFileType + meta_box(be32(0) + xml.substr(4))), "<m/>");
    EXPECT_EQ(xml_of(kFileType + meta_box(full_box("xml ", 0, "<m/>" + std::string(9, '\0')))), "<m/>");
    EXPECT_EQ(xml_of(kFileType + be32(0) + "free" + meta), "(failed)") << "and what it covers is no box";
}

TEST_F(BrokenSff, BoxesNestedWithoutEndAreNotFollowed) {
    for (const std::string type : {"moov", "meta", "trak", "free"}) {
        std::string nested;
        for (int depth = 0; depth < 2000; ++depth) {
            nested = type == "meta" ? meta_box(nested) : box(type, nested);
        }
        EXPECT_EQ(xml_of(kFileType + nested), "(failed)");
        EXPECT_EQ(picture_of(kFileType + nested, "1"), "(failed)");
    }
}

TEST_F(BrokenSff, MoreBoxesThanAnyFileHasEndTheReading) {
    std::string many;
    for (int i = 0; i < 100000; ++i) {
        many += box("free", "");
    }
    const std::string meta = meta_box(full_box("xml ", 0, "<m/>"));
    EXPECT_EQ(xml_of(kFileType + many + meta), "(failed)");
    std::string tracks;
    for (int i = 0; i < 1000; ++i) {
        tracks += box("trak", many.substr(0, 800));
    }
    EXPECT_EQ(xml_of(kFileType + box("moov", tracks)), "(failed)");
    EXPECT_EQ(picture_of(kFileType + box("moov", tracks), "1"), "(failed)");
    EXPECT_LT(reads(), 140000u);
}

TEST_F(BrokenSff, EveryCutOfAFileIsReadOrFails) {
    Sff sff;
    sff.xml = "<m/>";
    sff.xml_place = XmlPlace::kItem;
    sff.items = {{2, "p", "item"}};
    sff.tracks = {{1, {"track", "one"}}};
    const std::string whole = sff_bytes(sff);
    for (size_t size = 0; size < whole.size(); size += 3) {
        const std::string package = write("f.uvu", whole.substr(0, size));
        EXPECT_THAT(sff_xml(package), testing::AnyOf("(failed)", "<m/>")) << size;
        EXPECT_THAT(sff_image(package, "", "p"), testing::AnyOf("(failed)", "item")) << size;
        EXPECT_THAT(sff_image(package, "", "1"), testing::AnyOf("(failed)", "trackone")) << size;
    }
    EXPECT_EQ(sff_xml(write("f.uvu", whole)), "<m/>");
}

TEST_F(BrokenSff, EveryByteOfAFileMayBeAnother) {
    Sff sff;
    sff.xml = "<m/>";
    sff.items = {{2, "p", "item"}};
    sff.tracks = {{1, {"track", "one"}}};
    const std::string whole = sff_bytes(sff);
    for (size_t at = 0; at < whole.size(); at += 3) {
        std::string changed = whole;
        changed[at] = '\xff';
        const std::string package = write("f.uvu", changed);
        sff_xml(package);
        sff_image(package, "", "p");
        sff_image(package, "", "1");
    }
    EXPECT_EQ(sff_image(write("f.uvu", whole), "", "1"), "trackone");
}

TEST_F(BrokenSff, PlacesThatLieFail) {
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 0, 0, 7)), "p"), "picture");
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 0, 3, 0)), "p"), "ture") << "no length is all the rest";
    EXPECT_EQ(picture_of(with_places(1, place(1, 0, 0, 4, 4)), "p"), "ftyp");
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 0, 0, 8)), "p"), "(failed)") << "beyond the item data";
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 0, 7, 0)), "p"), "(failed)");
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 0, 0xffffffff, 0xffffffff)), "p"), "(failed)");
    EXPECT_EQ(picture_of(with_places(1, place(1, 0, 0, 0, 100000)), "p"), "(failed)") << "beyond the file";
    EXPECT_EQ(picture_of(with_places(1, place(1, 2, 0, 0, 7)), "p"), "(failed)") << "counts from an item";
    EXPECT_EQ(picture_of(with_places(1, place(1, 1, 1, 0, 7)), "p"), "(failed)") << "in another file";
    EXPECT_EQ(picture_of(with_places(1, place(2, 1, 0, 0, 7)), "p"), "(failed)") << "of another item";
    EXPECT_EQ(picture_of(with_places(1, be16(0x4400) + be16(1)), "p"), "(failed)");
    EXPECT_EQ(picture_of(with_places(1, be16(0xff00) + be16(1) + std::string(99, '\1')), "p"), "(failed)");
    EXPECT_EQ(picture_of(with_places(1, ""), "p"), "(failed)");
    const std::string wide =
        be16(0x8880) + be16(1) + be16(1) + be16(0) + be16(0) + be64(UINT64_MAX) + be16(1) + be64(8) + be64(4);
    EXPECT_EQ(picture_of(with_places(1, wide), "p"), "(failed)") << "base and offset wrap around";
}

TEST_F(BrokenSff, PlacesWithoutBytesForThemAreNotCountedThrough) {
    // Each of these items claims 65535 pieces, which take no room in the table.
    std::string places = be16(0x0000) + be16(0xffff);
    for (int i = 0; i < 0xffff; ++i) {
        places += be16(1) + be16(1) + be16(0) + be16(0xffff);
    }
    const heap_watch::Count heap;
    EXPECT_EQ(picture_of(with_places(1, places), "p"), "(failed)");
    EXPECT_LT(heap.bytes(), size_t{8} << 20U);
}

TEST_F(BrokenSff, APictureOfMoreThan64MegabytesIsRefused) {
    const std::string data(1 << 20, 'x');
    std::string places = be16(0x4400) + be16(1) + be16(1) + be16(1) + be16(0) + be16(65);
    for (int i = 0; i < 65; ++i) {
        places += be32(0) + be32(1 << 20);
    }
    EXPECT_EQ(picture_of(with_places(1, places, data), "p"), "(failed)");
    EXPECT_TRUE(log.contains("it is too large"));
    const std::string whole_film =
        with_tables(runs(be32(1) + be32(1) + be32(1), 1) + sizes(80U << 20U, 1) + offsets(1, be32(0)));
    ASSERT_EQ(truncate(write("big.uvu", whole_film).c_str(), 100 << 20), 0);
    EXPECT_EQ(sff_image(path("big.uvu"), "", "1"), "(failed)");
    EXPECT_EQ(log.count("it is too large"), 2);
}

TEST_F(BrokenSff, ItemsThatAreEncryptedOrEncodedFail) {
    const auto file = [](const std::string& info) {
        return kFileType + meta_box(full_box("iinf", 0, be16(1) + info) +
                                    full_box("iloc", 1, place(1, 1, 0, 0, 4)) + box("idat", "<m/>"));
    };
    EXPECT_EQ(xml_of(file(item_info(1, "mime", "x", "text/xml"))), "<m/>");
    EXPECT_EQ(xml_of(file(item_info(1, "mime", "x", "text/xml", 1))), "(failed)");
    const std::string encoded = be16(1) + be16(0) + "mime" + "x" + '\0' + "text/xml" + '\0' + "gzip" + '\0';
    EXPECT_EQ(xml_of(file(full_box("infe", 2, encoded))), "(failed)");
    EXPECT_EQ(xml_of(file(full_box("infe", 2, "a"))), "(failed)");
    const std::string old = be16(1) + be16(0) + "x" + '\0' + "text/xml" + '\0';
    EXPECT_EQ(xml_of(file(full_box("infe", 0, old))), "<m/>");
    const std::string newer = be32(1) + be16(0) + "mime" + "x" + '\0' + "text/xml" + '\0';
    EXPECT_EQ(xml_of(file(full_box("infe", 3, newer))), "<m/>");
}

TEST_F(BrokenSff, TablesOfATrackThatDoNotAgreeFail) {
    const std::string run = be32(1) + be32(2) + be32(1);
    const std::string two = sizes(0, 2, be32(4) + be32(4));
    EXPECT_EQ(picture_of(with_tables(runs(run, 1) + two + offsets(1, be32(4))), "1"), "ftypiso6");
    EXPECT_EQ(picture_of(with_tables(runs(run, 1) + sizes(2, 2) + offsets(1, be32(4))), "1"), "ftyp");
    const std::pair<const char*, std::string> broken[] = {
        {"no tables", ""},
        {"no sizes", runs(run, 1) + offsets(1, be32(4))},
        {"no offsets", runs(run, 1) + two},
        {"no runs", two + offsets(1, be32(4))},
        {"too few sizes", runs(run, 1) + sizes(0, 2, be32(4)) + offsets(1, be32(4))},
        {"too few offsets", runs(run, 1) + sizes(0, 4, std::string(16, '\1')) + offsets(2, be32(4))},
        {"too few chunks", runs(run, 1) + sizes(0, 3, std::string(12, '\0')) + offsets(1, be32(4))},
        {"no samples in a chunk", runs(be32(1) + be32(0) + be32(1), 1) + two + offsets(1, be32(4))},
        {"runs from the second chunk on", runs(be32(2) + be32(2) + be32(1), 1) + two + offsets(1, be32(4))},
        {"a run that is cut", runs(be32(1), 1) + two + offsets(1, be32(4))},
        {"more chunks than anything has", runs(be32(1) + be32(1) + be32(1), 1) + sizes(1, 0xffffffff) +
                                              offsets(0xffffffff, std::string(80000, '\0'))},
        {"nothing in the samples", runs(run, 1) + sizes(0, 2, be64(0)) + offsets(1, be32(4))},
        {"beyond the file", runs(run, 1) + sizes(4, 2) + offsets(1, be32(0x7fffffff))},
        {"sizes that cannot be", runs(be32(1) + be32(0xffffffff) + be32(1), 1) +
                                     sizes(0xffffffff, 0xffffffff) + offsets(1, be32(4))}};
    for (const auto& [why, tables] : broken) {
        EXPECT_EQ(picture_of(with_tables(tables), "1"), "(failed)") << why;
    }
}
