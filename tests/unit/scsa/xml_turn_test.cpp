#include "xml_turn.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "libqra-agent/source/scsa/qra_dmp_parse_xml.h"
#include "platform/nubelink/host/didl_reader.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/unit/scsa/package_xml.h"

namespace {

constexpr int kRounds = 200;

std::string didl_of(int count) {
    std::string didl = "<DIDL-Lite xmlns:dc=\"http://purl.org/dc/elements/1.1/\">";
    for (int i = 0; i < count; ++i) {
        didl += "<item id=\"" + std::to_string(i) + "\"><dc:title>Caf\u00e9</dc:title></item>";
    }
    return didl + "</DIDL-Lite>";
}

}  // namespace

TEST(XmlTurn, APackageIsReadWhileAMediaServersAnswersAre) {
    const LogCapture log;
    const std::string didl = didl_of(50);
    std::atomic<bool> started{false};
    std::atomic<int> answers{0};
    std::thread answering([&] {
        for (int round = 0; round < kRounds; ++round) {
            std::vector<nbl::ItemPtr> items;
            answers += nbl::read_didl(didl, nullptr, items) && items.size() == 50;
            started = true;
        }
    });
    while (!started) {
        std::this_thread::yield();
    }
    int packages = 0;
    for (int round = 0; round < kRounds; ++round) {
        _stDMPMETADATA data;
        CQRADmpParseXml().ParseDMPMetaData(metadata_xml("Film"), data);
        packages += data.common.strTitleDisplay19 == "Film 19";
    }
    answering.join();
    EXPECT_EQ(answers, kRounds);
    EXPECT_EQ(packages, kRounds);
}

TEST(XmlTurn, IsWaitedForByBothReaders) {
    const LogCapture log;
    std::atomic<int> done{0};
    xml_turn_begin();
    std::thread package([&] {
        _stDMPMETADATA data;
        CQRADmpParseXml().ParseDMPMetaData(metadata_xml("Film"), data);
        ++done;
    });
    std::thread answer([&] {
        std::vector<nbl::ItemPtr> items;
        nbl::read_didl(didl_of(1), nullptr, items);
        ++done;
    });
    // Nothing but the turn holds them up: a reader that did without would be done by the end of most runs.
    for (int i = 0; i < 1000; ++i) {
        std::this_thread::yield();
    }
    EXPECT_EQ(done, 0);
    xml_turn_end();
    package.join();
    answer.join();
    EXPECT_EQ(done, 2);
}
