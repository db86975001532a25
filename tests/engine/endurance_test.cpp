// The content engine over many lists: nothing stays behind.

#include <gtest/gtest.h>

#include <set>

#include "tests/engine/protocol_client.h"

namespace {

constexpr char kAccount[] = R"({"folders":20,"media":180})";

/// Connects, reads a list of 200 items and disconnects; the name of the list.
std::string one_round(ProtocolClient& client) {
    const uint32_t id = client.connect(kAccount);
    const std::string name = list_name(client.ask_range(id, 0, 199));
    client.disconnect(id);
    EXPECT_EQ(8, client.next()["qra_event_type"].asInt());
    return name;
}

TEST(EngineEndurance, AThousandListsLeaveNothingBehind) {
    const DataDirectory data;
    EngineProcess engine;
    ProtocolClient client;
    ASSERT_TRUE(client.wait_for_engine());
    for (int i = 0; i < 100; ++i) {
        one_round(client);
    }
    const size_t descriptors = engine.open_descriptors();
    const size_t dirty = engine.private_dirty_kb();
    std::string name;
    for (int i = 0; i < 1000; ++i) {
        name = one_round(client);
    }
    EXPECT_EQ(std::set<std::string>(), objects_like(name));
    EXPECT_EQ(descriptors, engine.open_descriptors());
    const size_t dirty_after = engine.private_dirty_kb();
    RecordProperty("private_dirty_kb_before", static_cast<int>(dirty));
    RecordProperty("private_dirty_kb_after", static_cast<int>(dirty_after));
    if (kIsMemoryOurs) {
        // A thousand lists of 200 texts are some 20 MB.
        EXPECT_LT(dirty_after, dirty + 2048) << "of " << dirty << " kB";
        EXPECT_LT(dirty_after, 12 * 1024u);
    }
}

}  // namespace
