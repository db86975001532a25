#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

#include "tests/unit/platform/scsa_dmp/counted_reads.h"
#include "tests/unit/platform/scsa_dmp/packages_test.h"

namespace {

using package_maker::be32;
using package_maker::Entry;
using package_maker::Form;
using package_maker::sff_bytes;
using package_maker::write_container;
using package_maker::XmlPlace;
using package_maker::ZipEntry;

constexpr size_t kMegabyte = 1 << 20;

/// Bytes that no compression makes less.
std::string noise(size_t size) {
    std::mt19937 random(1);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

class ContainerCost : public PackagesTest {
protected:
    std::string make(const std::vector<Entry>& entries, Form form, const std::string& name = "c") {
        EXPECT_TRUE(write_container(path(name), entries, form));
        return path(name);
    }

    /// A film with so many zeros for an XML, which take no room on a disk.
    static ZipEntry large_film(const std::string& name, uint32_t size) {
        return {name, be32(size + 24) + "meta" + be32(0) + be32(size + 12) + "xml " + be32(0), 0, 0, 0, size};
    }

    /// The size of the XML of an embedded film; 0 on failure.
    static size_t xml_size(const std::string& package, const std::string& entry) {
        std::string text;
        return SCSA_DMP::MetaDataExtractor::GetXMLFromSFF(package, entry, text) ? text.size() : 0;
    }
};

}  // namespace

TEST_F(ContainerCost, ACompressedContainerIsUnpackedOnceForAllItsTexts) {
    std::vector<Entry> entries = {{"noise.bin", noise(300000)}, {"urn:a.xml", "<a/>"}};
    for (int i = 0; i < 300; ++i) {
        entries.push_back({std::to_string(i) + ".uvu", sff_bytes({"<m>" + std::to_string(i) + "</m>"})});
    }
    entries.push_back({"bare.uvu", sff_bytes({"", XmlPlace::kNowhere})});
    const std::string package = make(entries, Form::kTarGz);
    forget_reads();
    EXPECT_EQ(list(package).size(), entries.size());
    EXPECT_LE(bytes_read(), read("c").size() + 4096);
    forget_reads();
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(sff_xml(package, std::to_string(i) + ".uvu"), "<m>" + std::to_string(i) + "</m>");
    }
    EXPECT_EQ(xml(package, "urn:a.xml"), "<a/>");
    EXPECT_EQ(xml(package, "urn%3Aa.xml"), "<a/>");
    EXPECT_EQ(sff_xml(package, "bare.uvu"), "(failed)");
    EXPECT_TRUE(log.contains("entry [bare.uvu]: it has no metadata XML"));
    EXPECT_EQ(bytes_read(), 0u);
}

TEST_F(ContainerCost, OfTwoFilesOfOneNameInACompressedContainerTheFirstIsKept) {
    const std::string package = make({{"a.xml", "first"},
                                      {"a.xml", "second"},
                                      {"f.uvu", sff_bytes({"<first/>"})},
                                      {"f.uvu", sff_bytes({"<second/>"})}},
                                     Form::kTarGz);
    EXPECT_EQ(list(package).size(), 4u);
    EXPECT_EQ(xml(package, "a.xml"), "first");
    EXPECT_EQ(sff_xml(package, "f.uvu"), "<first/>");
}

TEST_F(ContainerCost, ATextThatIsTooLargeToKeepIsUnpackedForItself) {
    const std::string large(17 * kMegabyte, 'x');
    const std::string package = make({{"a.xml", large}, {"b.xml", "<b/>"}}, Form::kTarGz);
    list(package);
    forget_reads();
    EXPECT_EQ(xml(package, "b.xml"), "<b/>");
    EXPECT_EQ(bytes_read(), 0u);
    EXPECT_TRUE(xml(package, "a.xml") == large);
    EXPECT_GT(bytes_read(), 0u);
}

TEST_F(ContainerCost, AContainerThatChangesIsReadAnew) {
    const std::string package = make({{"f.uvu", sff_bytes({"<old/>"})}}, Form::kTarGz);
    list(package);
    EXPECT_EQ(sff_xml(package, "f.uvu"), "<old/>");
    make({{"f.uvu", sff_bytes({"<new/>"})}, {"noise.bin", noise(1000)}}, Form::kTarGz);
    EXPECT_EQ(sff_xml(package, "f.uvu"), "<new/>");
    list(package);
    EXPECT_EQ(sff_xml(package, "f.uvu"), "<new/>");
}

TEST_F(ContainerCost, OnlyTheContainersThatWereAskedLastAreRemembered) {
    const auto package = [&](int number) { return path("c" + std::to_string(number)); };
    const auto reads_of = [&](int number) {
        forget_reads();
        EXPECT_EQ(xml(package(number), "a.xml"), "<a" + std::to_string(number) + "/>");
        return bytes_read();
    };
    for (int number = 0; number < 4; ++number) {
        const std::string text = "<a" + std::to_string(number) + "/>";
        make({{"a.xml", text}}, Form::kTarGz, "c" + std::to_string(number));
        list(package(number));
    }
    EXPECT_EQ(reads_of(0), 0u);
    make({{"a.xml", "<a4/>"}}, Form::kTarGz, "c4");
    list(package(4));
    EXPECT_GT(reads_of(1), 0u) << "the one that was not asked for longest";
    EXPECT_EQ(reads_of(0), 0u);
    EXPECT_EQ(reads_of(4), 0u);
}

TEST_F(ContainerCost, ThreadsMayAskContainersAtOnce) {
    std::vector<std::string> packages;
    for (int number = 0; number < 6; ++number) {
        packages.push_back(make({{"f.uvu", sff_bytes({"<m/>"})}, {"a.xml", "<a/>"}}, Form::kTarGz,
                                "c" + std::to_string(number)));
    }
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (size_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (size_t round = 0; round < 24; ++round) {
                const std::string& package = packages[(thread + round) % packages.size()];
                Names names;
                std::string text;
                right += SCSA_DMP::MetaDataExtractor::GetFileList(package, names) && names.size() == 2;
                right += SCSA_DMP::MetaDataExtractor::GetXML(package, "a.xml", text) && text == "<a/>";
                right += xml_size(package, "f.uvu") >= 4;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 4 * 24 * 3);
}

TEST_F(ContainerCost, TheTextsOfAContainerMayCostOnlySoMuch) {
    constexpr uint32_t kSize = 60 * kMegabyte;
    std::vector<ZipEntry> entries = {{"poster.jpg", "picture"}};
    for (int i = 0; i < 12; ++i) {
        entries.push_back(large_film(std::to_string(i) + ".uvu", kSize));
    }
    ASSERT_TRUE(package_maker::write_zip(path("c"), entries));
    forget_reads();
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(xml_size(path("c"), std::to_string(i) + ".uvu"), kSize) << i;
    }
    EXPECT_GT(bytes_read(), 512 * kMegabyte);
    forget_reads();
    EXPECT_EQ(sff_xml(path("c"), "9.uvu"), "(failed)");
    EXPECT_TRUE(log.contains("entry [9.uvu]: the texts of this container have cost too much"));
    EXPECT_EQ(sff_xml(path("c"), "0.uvu"), "(failed)");
    EXPECT_EQ(bytes_read(), 0u);
    EXPECT_EQ(image(path("c"), "poster.jpg"), "picture") << "pictures are asked for one by one";
    ASSERT_TRUE(package_maker::write_zip(path("other"), {large_film("f.uvu", 1000)}));
    EXPECT_EQ(xml_size(path("other"), "f.uvu"), 1000u) << "each container has its own limit";
}

TEST_F(ContainerCost, WhatIsUnpackedCountsAsWhatIsRead) {
    const std::string film = sff_bytes({"<m/>"}) + be32(static_cast<uint32_t>(30 * kMegabyte)) + "mdat" +
                             std::string(30 * kMegabyte, '\0');
    const std::string package = make({{"f.uvu", film}}, Form::kZip);
    int answers = 0;
    while (answers < 100 && xml_size(package, "f.uvu") != 0) {
        ++answers;
    }
    EXPECT_EQ(answers, 18);
    EXPECT_TRUE(log.contains("the texts of this container have cost too much"));
}
