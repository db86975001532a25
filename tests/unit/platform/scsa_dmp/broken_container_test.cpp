#include <gmock/gmock.h>

#include "tests/fakes/heap_watch.h"
#include "tests/unit/platform/scsa_dmp/counted_reads.h"
#include "tests/unit/platform/scsa_dmp/packages_test.h"

namespace {

using package_maker::Entry;
using package_maker::Form;
using package_maker::write_container;
using package_maker::write_zip;
using package_maker::ZipEntry;

class BrokenContainer : public PackagesTest {
protected:
    void make(const std::vector<Entry>& entries, Form form) {
        ASSERT_TRUE(write_container(path("c"), entries, form));
    }
    void make_zip(const std::vector<ZipEntry>& entries) { ASSERT_TRUE(write_zip(path("c"), entries)); }

    /// The bytes of the package.
    std::string bytes() const { return read("c"); }
};

constexpr Form kForms[] = {Form::kZip, Form::kStoredZip, Form::kTar, Form::kCpio, Form::kTarGz};
constexpr size_t kMegabyte = 1 << 20;

}  // namespace

TEST_F(BrokenContainer, BytesThatAreNoArchiveFail) {
    for (const std::string& bytes : {std::string(), std::string("x"), std::string(100000, 'x'),
                                     std::string("PK\3\4") + std::string(1000, '\xff'),
                                     std::string("PK\5\6") + std::string(18, '\xff')}) {
        const std::string package = write("c", bytes);
        EXPECT_EQ(list(package), Names{"(failed)"});
        EXPECT_EQ(xml(package, "a.xml"), "(failed)");
        EXPECT_EQ(sff_xml(package, "a.uvu"), "(failed)");
    }
}

TEST_F(BrokenContainer, EveryCutIsReadOrFails) {
    for (const Form form : kForms) {
        make({{"a.xml", "<a/>"},
              {"poster.jpg", std::string(2000, 'p')},
              {"f.uvu", package_maker::sff_bytes({"<m/>"})}},
             form);
        const std::string whole = bytes();
        const size_t step = whole.size() > 4000 ? 211 : 31;
        for (size_t size = 0; size < whole.size(); size += step) {
            const std::string package = write("cut", whole.substr(0, size));
            list(package);
            EXPECT_THAT(xml(package, "a.xml"), testing::AnyOf("(failed)", "<a/>"));
            EXPECT_THAT(image(package, "poster.jpg"), testing::AnyOf("(failed)", std::string(2000, 'p')));
            EXPECT_THAT(sff_xml(package, "f.uvu"), testing::AnyOf("(failed)", "<m/>"));
        }
    }
}

TEST_F(BrokenContainer, EveryByteMayBeAnother) {
    for (const Form form : {Form::kZip, Form::kStoredZip, Form::kTar, Form::kTarGz}) {
        make({{"a.xml", "<a/>"}, {"f.uvu", package_maker::sff_bytes({"<m/>"})}}, form);
        const std::string whole = bytes();
        const size_t step = whole.size() > 2000 ? 53 : 7;
        for (size_t at = 0; at < whole.size(); at += step) {
            std::string changed = whole;
            changed[at] = static_cast<char>(~changed[at]);
            const std::string package = write("changed", changed);
            list(package);
            xml(package, "a.xml");
            sff_xml(package, "f.uvu");
        }
        EXPECT_EQ(xml(path("c"), "a.xml"), "<a/>");
    }
}

TEST_F(BrokenContainer, TenThousandFilesAreTooMany) {
    std::vector<Entry> entries;
    for (int i = 0; i < 10000; ++i) {
        entries.push_back({"f" + std::to_string(i) + ".xml", "<a/>"});
    }
    entries.push_back({"last.xml", "<a/>"});
    for (const Form form : {Form::kZip, Form::kTar}) {
        make(entries, form);
        forget_reads();
        EXPECT_EQ(list(path("c")), Names{"(failed)"});
        EXPECT_TRUE(log.contains("it has too many files"));
        EXPECT_EQ(xml(path("c"), "last.xml"), "(failed)");
        EXPECT_EQ(xml(path("c"), "f5.xml"), "<a/>");
        EXPECT_LT(reads(), 3 * 10000u);
        EXPECT_LT(bytes_read(), 12 * kMegabyte);
    }
}

TEST_F(BrokenContainer, AThousandFilesAreNot) {
    std::vector<Entry> entries;
    for (int i = 0; i < 1024; ++i) {
        entries.push_back({"f" + std::to_string(i) + ".xml", "<a/>"});
    }
    make(entries, Form::kTar);
    EXPECT_EQ(list(path("c")).size(), 1024u);
    EXPECT_EQ(xml(path("c"), "f1023.xml"), "<a/>");
}

TEST_F(BrokenContainer, ADirectoryWithoutEndIsNotReadToItsEnd) {
    std::vector<ZipEntry> entries;
    for (int i = 0; i < 300; ++i) {
        entries.push_back({std::string(60000, 'n') + std::to_string(i), ""});
    }
    make_zip(entries);
    forget_reads();
    const heap_watch::Count heap;
    EXPECT_EQ(list(path("c")), Names{"(failed)"});
    EXPECT_LT(heap.bytes(), 64 * kMegabyte);
    EXPECT_TRUE(log.contains("it asks for too much")) << log.text();
    EXPECT_LT(bytes_read(), 5 * kMegabyte);
}

TEST_F(BrokenContainer, FilesThatAreEncryptedFailAndOthersAreRead) {
    make_zip(
        {{"a.xml", "<a/>"}, {"b.xml", "twelve bytes and more", 0, 1}, {"f.uvu", "encrypted SFF..", 0, 1}});
    EXPECT_EQ(list(path("c")), (Names{"a.xml", "b.xml", "f.uvu"}));
    EXPECT_EQ(xml(path("c"), "a.xml"), "<a/>");
    EXPECT_EQ(xml(path("c"), "b.xml"), "(failed)");
    EXPECT_TRUE(log.contains("entry [b.xml]: the file is encrypted"));
    EXPECT_EQ(image(path("c"), "b.xml"), "(failed)");
    EXPECT_EQ(sff_xml(path("c"), "f.uvu"), "(failed)");
}

TEST_F(BrokenContainer, FilesThatAreCompressedInOddWaysFail) {
    for (const uint16_t method : {1, 9, 12, 14, 95, 98, 99, 777}) {
        make_zip({{"a.xml", "<a/>"}, {"b.xml", std::string(99, 'b'), method}, {"f.uvu", "x", method}});
        EXPECT_EQ(xml(path("c"), "a.xml"), "<a/>");
        EXPECT_EQ(xml(path("c"), "b.xml"), "(failed)");
        EXPECT_EQ(sff_xml(path("c"), "f.uvu"), "(failed)");
    }
    EXPECT_TRUE(log.contains("the file is compressed in a way that is not read"));
}

TEST_F(BrokenContainer, SizesThatLieFail) {
    make_zip({{"a.xml", "<a/>", 0, 0, 1000000}, {"b.xml", "<b/>", 0, 0, 2}});
    EXPECT_THAT(xml(path("c"), "a.xml"), testing::AnyOf("(failed)", "<a/>"));
    EXPECT_THAT(xml(path("c"), "b.xml"), testing::AnyOf("(failed)", "<b/>"));
    make_zip({{"a.xml", "", 0, 0, 0, uint64_t{65} << 20U}, {"z.xml", "<z/>"}});
    forget_reads();
    EXPECT_EQ(xml(path("c"), "a.xml"), "(failed)");
    EXPECT_TRUE(log.contains("the file is too large"));
    EXPECT_LT(bytes_read(), kMegabyte);
    EXPECT_EQ(xml(path("c"), "z.xml"), "<z/>");
    for (const uint64_t size : {uint64_t{5000}, uint64_t{60} << 20U, uint64_t{7} << 30U}) {
        const std::string package = write("t", package_maker::tar_header("a.xml", size) + "<a/>");
        EXPECT_EQ(xml(package, "a.xml"), "(failed)");
        EXPECT_EQ(image(package, "a.xml"), "(failed)");
        EXPECT_EQ(sff_xml(package, "a.xml"), "(failed)");
    }
}

TEST_F(BrokenContainer, AFileThatUnpacksToMoreThan64MegabytesIsRefused) {
    make({{"bomb.xml", std::string(65 * kMegabyte, '\0')}, {"a.xml", "<a/>"}}, Form::kZip);
    const heap_watch::Count heap;
    EXPECT_EQ(xml(path("c"), "bomb.xml"), "(failed)");
    EXPECT_LT(heap.bytes(), 4 * 64 * kMegabyte);
    EXPECT_EQ(sff_xml(path("c"), "bomb.xml"), "(failed)");
    EXPECT_EQ(xml(path("c"), "a.xml"), "<a/>");
    // The same with a small size told.
    std::string changed = bytes();
    const std::string size = std::string("\0\0\x10\x04", 4);
    size_t told = 0;
    for (size_t at = 0; (at = changed.find(size, at)) != std::string::npos; ++told) {
        changed.replace(at, 4, std::string("\x08\0\0\0", 4));
    }
    EXPECT_GT(told, 0u);
    EXPECT_EQ(xml(write("lying", changed), "bomb.xml"), "(failed)");
}

TEST_F(BrokenContainer, ACompressedContainerIsNotUnpackedWithoutEnd) {
    make({{"a.xml", "<a/>"}, {"bomb.bin", std::string(140 * kMegabyte, '\0')}, {"z.xml", "<z/>"}},
         Form::kTarGz);
    EXPECT_EQ(xml(path("c"), "a.xml"), "<a/>");
    const heap_watch::Count heap;
    EXPECT_EQ(list(path("c")), Names{"(failed)"});
    EXPECT_TRUE(log.contains("it asks for too much"));
    EXPECT_EQ(xml(path("c"), "z.xml"), "(failed)");
    EXPECT_LT(heap.bytes(), 16 * kMegabyte);
}

TEST_F(BrokenContainer, ContainersInContainersAreFiles) {
    make({{"a.xml", "<a/>"}}, Form::kZip);
    const std::string inner = bytes();
    make({{"inner.zip", inner}}, Form::kTar);
    EXPECT_EQ(list(path("c")), Names{"inner.zip"});
    EXPECT_EQ(xml(path("c"), "a.xml"), "(failed)");
}
