#include "engine/src/section_writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <string>

#include "common/cache/cache_reader.h"
#include "common/datamodel/qra_resultlist.h"

namespace {

using engine::Section;
using engine::SectionContent;
using engine::SectionWriter;

/// A list of texts of which sections are written.
struct Texts {
    std::vector<std::string> texts;
    std::vector<_stQRAGroupEntry> groups;

    SectionContent section(int first, int last, int number = 0) const {
        return {
            first,  last,
            number, static_cast<int32_t>(texts.size()),
            groups, [this](int32_t index) { return std::string_view(texts.at(static_cast<size_t>(index))); }};
    }
};

class SectionWriterTest : public testing::Test {
protected:
    Section write(const SectionContent& content) {
        auto section = writer_.write(content, geteuid());
        EXPECT_TRUE(section.has_value());
        return std::move(*section);
    }

    engine::SharedObjects objects_;
    SectionWriter writer_{objects_};
};

void expect_same(const Texts& list, int first, int last, CResultList& section) {
    ASSERT_EQ(first, section.StartIndex());
    ASSERT_EQ(last, section.EndIndex());
    std::string text;
    std::string block;
    int place = -1;
    for (int index = first; index <= last; ++index) {
        ASSERT_TRUE(section.GetItem(index, text, block, place)) << index;
        ASSERT_EQ(list.texts[static_cast<size_t>(index)], text) << index;
    }
}

/// Blocks lie one behind the other, none is too big, and their groups are those of their items.
void expect_blocks(const Texts& list, int first, int last, const CResultList& section) {
    int next = first;
    for (int i = 0; i < section.GetBlockCount(); ++i) {
        std::string name;
        ASSERT_TRUE(section.GetBlockName(i, name));
        const CCacheReader block(name);
        ASSERT_EQ(next, block.StartIndex());
        ASSERT_LE(block.GetItemCount(), SectionWriter::kMostItems);
        EXPECT_EQ(static_cast<int>(list.texts.size()), block.GetTotalCount());
        size_t bytes = 0;
        std::string text;
        for (int item = 0; item < block.GetItemCount(); ++item) {
            ASSERT_TRUE(block.GetItem(item, text));
            bytes += text.size();
        }
        ASSERT_TRUE(bytes <= SectionWriter::kMostBytes || block.GetItemCount() == 1);
        int group_first = 0;
        int group_last = 0;
        int covered = 0;
        for (int group = 0; block.GetGroup(group, group_first, group_last); ++group) {
            EXPECT_GE(group_first, block.StartIndex());
            EXPECT_LE(group_last, block.EndIndex());
            covered += group_last - group_first + 1;
        }
        EXPECT_EQ(list.groups.empty() ? 0 : block.GetItemCount(), covered);
        next = block.EndIndex() + 1;
    }
    EXPECT_EQ(last + 1, next);
}

TEST_F(SectionWriterTest, WritesWhatTheReaderReads) {
    Texts list;
    list.texts = {"a", "", "{\"TITLE\":\"\xc3\xa4\"}", std::string(3, '\0')};
    list.groups = {{0, 1}, {2, 3}};
    const Section section = write(list.section(1, 3, 7));

    CResultList reader(section.name());
    EXPECT_EQ(7, reader.SectionIndex());
    EXPECT_EQ(4, reader.GetTotalCount());
    EXPECT_EQ(2, reader.GetGroupCount());
    int first = 0;
    int last = 0;
    ASSERT_TRUE(reader.GetGroup(1, first, last));
    EXPECT_EQ(2, first);
    EXPECT_EQ(3, last);
    expect_same(list, 1, 3, reader);
    expect_blocks(list, 1, 3, reader);
}

TEST_F(SectionWriterTest, GivesTheSameTextsBackForAnyNumbersAndSizes) {
    std::mt19937 random(20240229);
    const size_t sizes[] = {0,
                            1,
                            100,
                            1000,
                            20000,
                            SectionWriter::kMostBytes - 1,
                            SectionWriter::kMostBytes,
                            SectionWriter::kMostBytes + 1};
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Texts list;
        const size_t largest = sizes[random() % std::size(sizes)];
        const size_t count = 1 + random() % (largest <= 1000 ? 600 : 150);
        for (size_t i = 0; i < count; ++i) {
            list.texts.emplace_back(random() % 4 == 0 ? largest : random() % (largest + 1),
                                    static_cast<char>('a' + i % 26));
        }
        const int folders = static_cast<int>(random() % (count + 1));
        if (folders > 0) {
            list.groups.push_back({0, folders - 1});
        }
        if (folders < static_cast<int>(count)) {
            list.groups.push_back({folders, static_cast<int>(count) - 1});
        }
        const int first = static_cast<int>(random() % count);
        const int last = first + static_cast<int>(random() % (count - static_cast<size_t>(first)));

        const Section section = write(list.section(first, last));

        CResultList reader(section.name());
        expect_same(list, first, last, reader);
        expect_blocks(list, first, last, reader);
    }
}

TEST_F(SectionWriterTest, WritesAnOrdinarySectionAsOneBlock) {
    Texts list;
    list.texts.assign(200, std::string(600, 'x'));
    const Section section = write(list.section(0, 199));
    EXPECT_EQ(2U, section.object_count());
}

TEST_F(SectionWriterTest, GivesALongTextABlockOfItsOwn) {
    Texts list;
    list.texts = {"a", std::string(1024 * 1024, 'x'), "b"};
    const Section section = write(list.section(0, 2));
    CResultList reader(section.name());
    EXPECT_EQ(3, reader.GetBlockCount());
    expect_same(list, 0, 2, reader);
}

TEST_F(SectionWriterTest, UnlinksTheWholeSectionAtItsEnd) {
    Texts list;
    list.texts.assign(200, "text");
    std::vector<std::string> names;
    {
        const Section section = write(list.section(0, 199));
        const CResultList reader(section.name());
        names.push_back(section.name());
        for (int i = 0; i < reader.GetBlockCount(); ++i) {
            std::string name;
            ASSERT_TRUE(reader.GetBlockName(i, name));
            names.push_back(name.c_str());
        }
        EXPECT_EQ(names.size(), section.object_count());
        EXPECT_GT(section.size(), 200 * 4u);
    }
    for (const std::string& name : names) {
        EXPECT_NE(0, access(("/dev/shm" + name).c_str(), F_OK)) << name;
    }
}

}  // namespace
