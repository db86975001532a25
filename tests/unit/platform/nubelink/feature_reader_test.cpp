#include "platform/nubelink/host/feature_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace nbl;
using testing::ElementsAre;

namespace {

std::vector<std::string> ids(const nbl_feature_s& feature) {
    std::vector<std::string> ids;
    for (const auto& container : feature.containers) {
        ids.push_back(container->id);
    }
    return ids;
}

TEST(FeatureReader, ReadsFeaturesWithTheirContainers) {
    const auto features = read_features(
        "<?xml version=\"1.0\"?><Features xmlns=\"urn:schemas-upnp-org:av:avs\">"
        "<Feature name=\"vendor.com_DCM\" version=\"1\"><container id=\"I_N\" "
        "type=\"object.item.imageItem\"/>"
        "<container id=\"V_T\"/></Feature><Feature name=\"EPG\"><objectIDs>e1, "
        "e2,</objectIDs></Feature></Features>");
    ASSERT_EQ(features.size(), 2U);
    EXPECT_EQ(features[0]->name, "vendor.com_DCM");
    EXPECT_THAT(ids(*features[0]), ElementsAre("I_N", "V_T"));
    EXPECT_EQ(features[0]->container_list.size(), 2U);
    EXPECT_EQ(features[1]->name, "EPG");
    EXPECT_THAT(ids(*features[1]), ElementsAre("e1", "e2"));
}

TEST(FeatureReader, ReadsNothingFromWhatIsNoFeatureList) {
    for (const char* text : {"", "<Features/>", "nonsense", "<a><container id=\"1\"/></a>"}) {
        EXPECT_TRUE(read_features(text).empty()) << text;
    }
}

TEST(FeatureReader, KeepsWhatCameBeforeTheBreak) {
    const auto features = read_features("<Features><Feature name=\"DCM\"><container id=\"A_M\"/><contai");
    ASSERT_EQ(features.size(), 1U);
    EXPECT_THAT(ids(*features[0]), ElementsAre("A_M"));
}

TEST(FeatureReader, BoundsWhatAServerCanMakeItHold) {
    std::string text = "<Features>";
    for (size_t i = 0; i < 2 * kMostFeatures; ++i) {
        text += "<Feature name=\"" + std::string(5000, 'n') + "\">";
        for (size_t k = 0; k < 2 * kMostContainers; ++k) {
            text += "<container id=\"x\"/>";
        }
        text += "</Feature>";
    }
    const auto features = read_features(text + "</Features>");
    ASSERT_EQ(features.size(), kMostFeatures);
    EXPECT_EQ(features[0]->containers.size(), kMostContainers);
    EXPECT_EQ(features[0]->name.size(), 1024U);
}

}  // namespace
