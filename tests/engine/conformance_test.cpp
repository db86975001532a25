// The content engine through its bus interface alone: connections and lists.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <vector>

#include "tests/engine/protocol_client.h"

namespace {

constexpr uint32_t kToTheEnd = UINT32_MAX;

class EngineConformance : public testing::Test {
protected:
    void start(const std::vector<std::string>& limits = {}) {
        engine_ = std::make_unique<EngineProcess>(limits);
        ASSERT_TRUE(client_.wait_for_engine());
    }

    /// The answer to the first range of a new connection.
    Json::Value first_range(const std::string& account, uint32_t last = 199) {
        const uint32_t id = client_.connect(account);
        EXPECT_NE(0u, id) << client_.error();
        return client_.ask_range(id, 0, last);
    }

    DataDirectory data_;
    ProtocolClient client_;
    std::unique_ptr<EngineProcess> engine_;
};

void expect_event(int event, const Json::Value& completion) {
    EXPECT_EQ(event, completion["qra_event_type"].asInt()) << completion;
}

/// A failure that tells a person why.
void expect_failure(const Json::Value& completion) {
    expect_event(2, completion);
    EXPECT_FALSE(completion["qra_error_text"].asString().empty()) << completion;
}

TEST_F(EngineConformance, CountsConnectionsFromOne) {
    start();
    EXPECT_EQ(1u, client_.connect("{}"));
    EXPECT_EQ(2u, client_.connect("{}"));
    client_.disconnect(1);
    EXPECT_EQ(3u, client_.connect("{}"));
}

TEST_F(EngineConformance, RefusesAConnectionThatNoAccountAnswers) {
    start();
    EXPECT_EQ(0u, client_.connect("nobody"));
    EXPECT_NE(std::string::npos, client_.error().find("There is no account of that name."));
    EXPECT_EQ(0u, client_.connect(R"({"open":false})"));
    EXPECT_NE(std::string::npos, client_.error().find("The script says so."));
}

TEST_F(EngineConformance, TellsThatAConnectionEnded) {
    start();
    const uint32_t id = client_.connect("{}");
    client_.disconnect(id);
    const Json::Value ended = client_.next();
    expect_event(8, ended);
    EXPECT_EQ(id, ended["qra_handle_id"].asUInt());
}

TEST_F(EngineConformance, ServesAListInSections) {
    start();
    const std::string account = R"({"folders":3,"media":7})";
    const uint32_t id = client_.connect(account);

    const Json::Value first = client_.ask_range(id, 0, 4, 0);
    const Json::Value second = client_.ask_range(id, 5, 9, 1);

    expect_event(0, first);
    EXPECT_EQ(id, first["qra_handle_id"].asUInt());
    const SectionTexts head = read_section(list_name(first));
    EXPECT_EQ(0, head.first);
    EXPECT_EQ(4, head.last);
    EXPECT_EQ(0, head.section);
    EXPECT_EQ(10, head.total);
    const std::vector<std::pair<int, int>> groups = {{0, 2}, {3, 9}};
    EXPECT_EQ(groups, head.groups);
    ASSERT_EQ(5u, head.texts.size());
    EXPECT_EQ("folder 0", json_of(head.texts[0])["TITLE"].asString());
    EXPECT_EQ("medium 0", json_of(head.texts[3])["TITLE"].asString());
    const SectionTexts tail = read_section(list_name(second));
    EXPECT_EQ(5, tail.first);
    EXPECT_EQ(9, tail.last);
    EXPECT_EQ(1, tail.section);
    EXPECT_EQ(groups, tail.groups);
    EXPECT_EQ("medium 6", json_of(tail.texts.at(4))["TITLE"].asString());
}

TEST_F(EngineConformance, HandsTheRequestToTheService) {
    start();
    const uint32_t id = client_.connect(R"({"media":1})");
    Json::Value request = list_request(id, 0);
    request["qra_source_user_data"] = "/music/";
    request["qra_contenttype"] = "CONTENT-MUSIC";
    request["qra_category"] = "CATEGORY-TITLE";
    request["qra_filter"] = "word";
    client_.get_range(id, 0, 9, request);
    const SectionTexts section = read_section(list_name(client_.next()));
    EXPECT_EQ("/music/audioCATEGORY-TITLEword", json_of(section.texts.at(0))["QUERY"].asString());
}

TEST_F(EngineConformance, KeepsThePlaceOfAGroupWithoutItems) {
    start();
    const std::vector<std::pair<int, int>> folders_only = {{0, 2}, {3, 2}};
    const std::vector<std::pair<int, int>> media_only = {{0, -1}, {0, 2}};
    EXPECT_EQ(folders_only, read_section(list_name(first_range(R"({"folders":3})"))).groups);
    EXPECT_EQ(media_only, read_section(list_name(first_range(R"({"media":3})"))).groups);
}

TEST_F(EngineConformance, ServesTheWholeListForALastIndexOfMinusOne) {
    start();
    const SectionTexts section =
        read_section(list_name(first_range(R"({"folders":1,"media":499})", kToTheEnd)));
    EXPECT_EQ(499, section.last);
    EXPECT_EQ(500u, section.texts.size());
}

TEST_F(EngineConformance, TellsThatAListIsEmpty) {
    start();
    expect_event(1, first_range("{}"));
    expect_event(1, first_range("{}", kToTheEnd));
    expect_event(1, first_range(R"({"announce":false})"));
}

TEST_F(EngineConformance, TellsWhyAListFailed) {
    start();
    const Json::Value failure = first_range(R"({"media":10,"fail_at":5})");
    expect_failure(failure);
    EXPECT_EQ("The script says so.", failure["qra_error_text"].asString());
}

TEST_F(EngineConformance, ServesWhatCameBeforeAFailure) {
    start();
    const uint32_t id = client_.connect(R"({"media":10,"fail_at":5})");
    const Json::Value early = client_.ask_range(id, 0, 4, 0);
    expect_event(0, early);
    EXPECT_EQ(10, read_section(list_name(early)).total);
    expect_failure(client_.ask_range(id, 5, 9, 1));
}

TEST_F(EngineConformance, AnswersEveryRangeWhateverItIs) {
    start();
    const uint32_t id = client_.connect(R"({"media":10})");
    const struct {
        uint32_t first;
        uint32_t last;
        int event;
        int end;
    } ranges[] = {{0, 3, 0, 3},
                  {2, 5, 0, 5},
                  {0, 3, 0, 3},
                  {9, 9, 0, 9},
                  {5, 2000000000, 0, 9},
                  {5, kToTheEnd, 0, 9},
                  {10, 19, 2, -1},
                  {10, kToTheEnd, 2, -1},
                  {5, 4, 2, -1},
                  {kToTheEnd, 0, 2, -1},
                  {kToTheEnd, kToTheEnd, 2, -1},
                  {0x80000000, 0x80000001, 2, -1}};
    for (const auto& range : ranges) {
        SCOPED_TRACE(std::to_string(range.first) + " to " + std::to_string(range.last));
        const Json::Value answer = client_.ask_range(id, range.first, range.last);
        expect_event(range.event, answer);
        if (range.event == 0) {
            const SectionTexts section = read_section(list_name(answer));
            EXPECT_EQ(static_cast<int>(range.first), section.first);
            EXPECT_EQ(range.end, section.last);
        }
    }
}

TEST_F(EngineConformance, FailsARequestThatItDoesNotUnderstand) {
    start();
    const uint32_t id = client_.connect(R"({"media":10})");
    for (const std::string& request :
         {std::string(), std::string("null"), std::string("[]"), std::string("{"), std::string(100000, '['),
          std::string(R"({"qra_sectionindex":-1})"), std::string(R"({"qra_sectionindex":"0"})"),
          std::string(R"({"qra_sectionindex":1e300})"), std::string(2 << 20, ' ')}) {
        client_.call("get_partial_list", g_variant_new("(uuus)", id, 0u, 9u, request.c_str()));
        expect_failure(client_.next());
    }
    EXPECT_TRUE(engine_->is_alive());
}

TEST_F(EngineConformance, RefusesTheConnectionOfAnotherClient) {
    start();
    const uint32_t id = client_.connect(R"({"media":10})");
    const std::string name = list_name(client_.ask_range(id, 0, 9));
    ProtocolClient other;
    other.get_range(id, 0, 9);
    EXPECT_NE("", other.error());
    other.drop(id, name);
    EXPECT_NE("", other.error());
    other.disconnect(id);
    EXPECT_NE("", other.error());
    EXPECT_TRUE(other.is_quiet());
    EXPECT_TRUE(has_object(name));
    expect_event(0, client_.ask_range(id, 0, 9));
}

TEST_F(EngineConformance, SendsCompletionsToTheirClientAlone) {
    start();
    ProtocolClient other;
    expect_event(0, first_range(R"({"media":10})"));
    EXPECT_TRUE(other.is_quiet());
}

TEST_F(EngineConformance, UnlinksASectionThatIsDropped) {
    start();
    const uint32_t id = client_.connect(R"({"media":200})");
    const std::string dropped = list_name(client_.ask_range(id, 0, 99, 0));
    const std::string kept = list_name(client_.ask_range(id, 100, 199, 1));
    const std::vector<std::string> blocks = read_section(dropped).block_names;
    const size_t before = objects_like(dropped).size();
    client_.drop(id, dropped);
    expect_event(10, client_.next());
    EXPECT_FALSE(has_object(dropped));
    for (const std::string& block : blocks) {
        EXPECT_FALSE(has_object(block));
    }
    EXPECT_EQ(before - 1 - blocks.size(), objects_like(kept).size());
    client_.drop(id, dropped);
    client_.drop(id, "/etc/passwd");
    EXPECT_TRUE(client_.is_quiet()) << "nothing to drop";
    EXPECT_EQ(200, read_section(kept).total);
}

TEST_F(EngineConformance, UnlinksAllSectionsAtDisconnect) {
    start();
    const uint32_t id = client_.connect(R"({"media":200})");
    const std::string name = list_name(client_.ask_range(id, 0, 99, 0));
    client_.ask_range(id, 100, 199, 1);
    client_.disconnect(id);
    expect_event(8, client_.next());
    EXPECT_TRUE(objects_like(name).empty());
}

TEST_F(EngineConformance, NamesOfObjectsFitTheFormatAndAreNotRepeated) {
    start();
    const uint32_t id = client_.connect(R"({"media":640})");
    std::set<std::string> names;
    size_t count = 0;
    for (int round = 0; round < 5; ++round) {
        const std::string list = list_name(client_.ask_range(id, 0, 639));
        std::vector<std::string> all = read_section(list).block_names;
        all.push_back(list);
        for (const std::string& name : all) {
            EXPECT_LT(name.size(), 128u);
            names.insert(name);
            ++count;
        }
    }
    EXPECT_EQ(count, names.size());
}

TEST_F(EngineConformance, LetsNobodyElseReadItsObjects) {
    start();
    const std::string name = list_name(first_range(R"({"media":10})"));
    for (const std::string& object : objects_like(name)) {
        struct stat info = {};
        ASSERT_EQ(0, stat(("/dev/shm" + object).c_str(), &info));
        EXPECT_EQ(0600u, info.st_mode & 07777u);
        EXPECT_EQ(geteuid(), info.st_uid);
    }
}

TEST_F(EngineConformance, SendsTheFirstSectionBeforeTheListIsThere) {
    start();
    const std::string gate = data_.path("gate");
    const uint32_t id = client_.connect(R"({"media":300,"hold_at":200,"gate":")" + gate + "\"}");
    client_.get_range(id, 200, 299, 1);
    const Json::Value first = client_.ask_range(id, 0, 199, 0);
    expect_event(0, first);
    EXPECT_EQ(300, read_section(list_name(first)).total);
    EXPECT_TRUE(client_.is_quiet());
    std::ofstream(gate).put('x');
    const Json::Value second = client_.next();
    expect_event(0, second);
    EXPECT_EQ(1, second["qra_sectionindex"].asInt());
    EXPECT_EQ(299, read_section(list_name(second)).last);
}

TEST_F(EngineConformance, FillsThePlacesOfItemsThatDoNotCome) {
    start();
    const uint32_t id = client_.connect(
        R"({"folders":1,"media":2,"announced_folders":2,"announced_media":4,"hold_at":2,"gate":")" +
        data_.path("gate") + "\"}");
    const SectionTexts first = read_section(list_name(client_.ask_range(id, 0, 0, 0)));
    EXPECT_EQ(6, first.total);
    std::ofstream(data_.path("gate")).put('x');
    const SectionTexts rest = read_section(list_name(client_.ask_range(id, 1, 5, 1)));
    ASSERT_EQ(5u, rest.texts.size());
    EXPECT_EQ("{\"MEDIA_TYPE\":14}", rest.texts[0]);
    EXPECT_EQ("medium 0", json_of(rest.texts[1])["TITLE"].asString());
    EXPECT_EQ("medium 1", json_of(rest.texts[2])["TITLE"].asString());
    EXPECT_EQ("{\"MEDIA_TYPE\":14}", rest.texts[4]);
}

TEST_F(EngineConformance, DropsItemsBeyondATotalThatWasTold) {
    start();
    const uint32_t id = client_.connect(R"({"media":9,"announced_media":4,"hold_at":4,"gate":")" +
                                        data_.path("gate") + "\"}");
    EXPECT_EQ(4, read_section(list_name(client_.ask_range(id, 0, 1, 0))).total);
    std::ofstream(data_.path("gate")).put('x');
    const SectionTexts rest = read_section(list_name(client_.ask_range(id, 2, kToTheEnd, 1)));
    EXPECT_EQ(3, rest.last);
    EXPECT_EQ(4, rest.total);
}

TEST_F(EngineConformance, CountsWhatCameWhereNothingWasTold) {
    start();
    // Nothing of the asked range is there before the end.
    EXPECT_EQ(2, read_section(list_name(first_range(R"({"media":2,"announced_media":5})"))).total);
    EXPECT_EQ(3, read_section(list_name(first_range(R"({"media":3,"announce":false})"))).total);
}

TEST_F(EngineConformance, FailsAListWhoseServiceFallsSilent) {
    start({"list_silence=100"});
    expect_failure(first_range(R"({"media":10,"silent_at":5})"));
    expect_failure(first_range(R"({"media":10,"silent_at":0})"));
}

TEST_F(EngineConformance, FailsAListThatTakesTooLong) {
    start({"list_whole=100"});
    expect_failure(first_range(R"({"media":10,"hold_at":5,"gate":"/nonexistent"})"));
}

TEST_F(EngineConformance, FailsAListOfTooManyItems) {
    start({"list_items=100", "list_bytes=20000"});
    expect_failure(first_range(R"({"media":101})"));
    expect_failure(first_range(R"({"media":101,"announce":false})"));
    expect_failure(first_range(R"({"media":50,"text_bytes":1000})", kToTheEnd));
    expect_event(0, first_range(R"({"media":100})"));
}

TEST_F(EngineConformance, TriesAgainWhenAListThatFailedIsAskedForFromItsStart) {
    start({"list_silence=100"});
    const std::string gate = data_.path("gate");
    const uint32_t id = client_.connect(R"({"media":10,"hold_at":5,"gate":")" + gate + "\"}");
    expect_failure(client_.ask_range(id, 0, 9));
    std::ofstream(gate).put('x');
    expect_event(0, client_.ask_range(id, 0, 9));
}

TEST_F(EngineConformance, ServesTheListOfAnotherConnectionOfTheUser) {
    start();
    const uint32_t id = client_.connect(R"({"media":3})");
    expect_event(0, client_.ask_range(id, 0, 9));
    ProtocolClient player;
    const uint32_t other = player.connect("{}");
    player.get_range(other, 0, 9, list_request(id, 0));
    const Json::Value answer = player.next();
    expect_event(0, answer);
    EXPECT_EQ(other, answer["qra_handle_id"].asUInt());
    EXPECT_EQ(3, read_section(list_name(answer)).total);
    player.get_range(other, 0, 9, list_request(other, 0));
    expect_event(1, player.next());
}

TEST_F(EngineConformance, KeepsAListForAWhileAfterItsConnection) {
    start();
    const uint32_t id = client_.connect(R"({"media":3})");
    client_.ask_range(id, 0, 9);
    client_.disconnect(id);
    ProtocolClient player;
    const uint32_t other = player.connect("{}");
    player.get_range(other, 0, 1, list_request(id, 0));
    EXPECT_EQ(3, read_section(list_name(player.next())).total);
    client_.close();
    player.get_range(other, 2, 2, list_request(id, 1));
    expect_event(0, player.next());  // it goes on with the list that it has
}

TEST_F(EngineConformance, ForgetsTheListOfAConnectionThatIsLongClosed) {
    start({"closed_list=1"});
    const uint32_t id = client_.connect(R"({"media":3})");
    client_.ask_range(id, 0, 9);
    client_.disconnect(id);
    ProtocolClient player;
    EXPECT_TRUE(wait_until([&] {
        const uint32_t other = player.connect("{}");
        player.get_range(other, 0, 1, list_request(id, 0));
        return player.next()["qra_event_type"].asInt() == 1;
    }));
}

TEST_F(EngineConformance, KeepsABoundedNumberOfClosedLists) {
    start({"closed_lists=2"});
    std::vector<uint32_t> ids;
    for (int i = 0; i < 3; ++i) {
        ids.push_back(client_.connect(R"({"media":3})"));
        client_.ask_range(ids.back(), 0, 9);
        client_.disconnect(ids.back());
        client_.next();
    }
    const uint32_t other = client_.connect("{}");
    client_.get_range(other, 0, 9, list_request(ids[0], 0));
    expect_event(1, client_.next());
    client_.get_range(other, 0, 9, list_request(ids[1], 0));
    expect_event(0, client_.next());
}

TEST_F(EngineConformance, ForgetsAllOfAClientThatLeaves) {
    start();
    auto leaving = std::make_unique<ProtocolClient>();
    const uint32_t closed = leaving->connect(R"({"media":3})");
    leaving->ask_range(closed, 0, 9);
    leaving->disconnect(closed);
    leaving->next();
    const uint32_t open = leaving->connect(R"({"media":3})");
    const std::string name = list_name(leaving->ask_range(open, 0, 9));
    leaving.reset();
    EXPECT_TRUE(wait_until([&] { return objects_like(name).empty(); }));
    const uint32_t other = client_.connect("{}");
    for (const uint32_t id : {closed, open}) {
        client_.get_range(other, 0, 9, list_request(id, 0));
        expect_event(1, client_.next());
    }
}

TEST_F(EngineConformance, SaysNoWhereAClientWantsTooMuch) {
    start({"connections_of_client=2", "requests_of_connection=2", "shared_objects_of_client=4"});
    const uint32_t id = client_.connect(R"({"media":10})");
    const uint32_t slow = client_.connect(R"({"media":10,"silent_at":0})");
    EXPECT_EQ(0u, client_.connect("{}"));
    client_.ask_range(id, 0, 9);
    client_.ask_range(id, 0, 9);
    expect_failure(client_.ask_range(id, 0, 9));
    client_.get_range(slow, 0, 1);
    client_.get_range(slow, 0, 1);
    expect_failure(client_.ask_range(slow, 0, 1));
}

TEST_F(EngineConformance, ServesTwentyClientsAtOnce) {
    start();
    std::vector<std::unique_ptr<ProtocolClient>> clients;
    std::vector<uint32_t> ids;
    for (int i = 0; i < 20; ++i) {
        clients.push_back(std::make_unique<ProtocolClient>());
        ids.push_back(
            clients.back()->connect(R"({"folders":)" + std::to_string(i) + R"(,"media":400,"step":7})"));
    }
    for (int section = 0; section < 2; ++section) {
        for (int i = 0; i < 20; ++i) {
            clients[i]->get_range(ids[i], section * 200, section * 200 + 199, section);
        }
    }
    for (int i = 0; i < 20; ++i) {
        for (int section = 0; section < 2; ++section) {
            const Json::Value answer = clients[i]->next();
            expect_event(0, answer);
            EXPECT_EQ(ids[i], answer["qra_handle_id"].asUInt());
            const SectionTexts texts = read_section(list_name(answer));
            EXPECT_EQ(400 + i, texts.total);
            EXPECT_EQ(200u, texts.texts.size());
        }
    }
}

TEST_F(EngineConformance, RemovesWhatAKilledEngineLeft) {
    start();
    const std::string name = list_name(first_range(R"({"media":300})", kToTheEnd));
    ASSERT_TRUE(has_object(name));
    engine_->kill_now();
    EngineProcess next;
    ASSERT_TRUE(client_.wait_for_engine());
    EXPECT_TRUE(objects_like(name).empty());
}

TEST_F(EngineConformance, LeavesTheObjectsOfALivingEngineAlone) {
    start();
    const std::string name = list_name(first_range(R"({"media":10})"));
    const size_t before = objects_like(name).size();
    // Another engine cleans up at its start, and ends since the name is taken.
    EngineProcess second;
    EXPECT_TRUE(wait_until([&] { return !second.is_alive(); }));
    EXPECT_EQ(before, objects_like(name).size());
}

TEST_F(EngineConformance, LeavesNothingWhenItEnds) {
    start();
    const std::string name = list_name(first_range(R"({"media":10})"));
    EXPECT_EQ(0, engine_->end());
    EXPECT_TRUE(objects_like(name).empty());
    EXPECT_FALSE(has_object(name.substr(0, name.rfind('_')) + "_live"));
}

TEST_F(EngineConformance, WorksAgainAfterItWasKilledInTheMiddleOfAList) {
    start();
    const std::string account = R"({"media":10,"silent_at":5})";
    client_.get_range(client_.connect(account), 0, 9);
    engine_->kill_now();
    engine_ = std::make_unique<EngineProcess>();
    ASSERT_TRUE(client_.wait_for_engine());
    EXPECT_TRUE(client_.is_quiet());
    expect_event(0, first_range(R"({"media":10})"));
}

/// A client as a process of its own that has a list, tells its name through `report` and waits to be killed.
[[noreturn]] void be_a_client(int report) {
    ProtocolClient client;
    if (client.wait_for_engine()) {
        const std::string name =
            list_name(client.ask_range(client.connect(R"({"media":300})"), 0, kToTheEnd));
        client.get_range(client.connect(R"({"media":9,"silent_at":3})"), 0, 8);
        if (write(report, name.data(), name.size()) == static_cast<ssize_t>(name.size())) {
            pause();
        }
    }
    _exit(1);
}

// The client is forked before this process has threads.
TEST(EngineConformanceOfClients, CleansUpAfterAClientThatIsKilled) {
    const DataDirectory data;
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    const pid_t pid = fork();
    if (pid == 0) {
        be_a_client(ends[1]);
    }
    close(ends[1]);  // so that the end of a client that fails shows
    EngineProcess engine;
    char name[128] = {};
    ASSERT_GT(read(ends[0], name, sizeof(name) - 1), 0);
    EXPECT_FALSE(objects_like(name).empty());
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    EXPECT_TRUE(wait_until([&] { return objects_like(name).empty(); }));
    EXPECT_TRUE(engine.is_alive());
}

}  // namespace
