#include "platform/media-content/host/metadata/xml_properties.h"

#include <gtest/gtest.h>

#include "platform/media-content/host/metadata/xmp_reader.h"

namespace media_content {
namespace {

std::vector<XmlProperty> wanted() {
    return {{"urn:a first", {}}, {"urn:a second", {}}};
}

TEST(XmlProperties, AreFoundAsAttributesAndAsElements) {
    auto found = wanted();
    EXPECT_TRUE(
        find_xml_properties("<r xmlns:p='urn:a' p:first=' 1 '><p:second> t&amp;wo\n</p:second></r>", found));
    EXPECT_EQ(found[0].value, "1");
    EXPECT_EQ(found[1].value, "t&wo");
}

TEST(XmlProperties, OfAnotherNamespaceAreOthers) {
    auto found = wanted();
    EXPECT_TRUE(find_xml_properties("<r xmlns:p='urn:b' p:first='1'><first>2</first></r>", found));
    EXPECT_EQ(found[0].value, "");
}

TEST(XmlProperties, TheFirstOfANameCounts) {
    auto found = wanted();
    EXPECT_TRUE(find_xml_properties("<r xmlns:p='urn:a' p:first='1'><p:first>2</p:first></r>", found));
    EXPECT_EQ(found[0].value, "1");
}

TEST(XmlProperties, BeforeAFaultStay) {
    auto found = wanted();
    EXPECT_FALSE(find_xml_properties("<r xmlns:p='urn:a' p:first='1'><p:second>", found));
    EXPECT_EQ(found[0].value, "1");
    EXPECT_EQ(found[1].value, "");
}

TEST(XmlProperties, OfNoXmlAreNone) {
    auto found = wanted();
    EXPECT_FALSE(find_xml_properties("", found));
    EXPECT_FALSE(find_xml_properties(std::string_view("\0\0\0", 3), found));
    EXPECT_FALSE(find_xml_properties("no xml", found));
}

TEST(XmlProperties, ADocumentTypeEndsTheReading) {
    auto found = wanted();
    EXPECT_FALSE(
        find_xml_properties("<!DOCTYPE r [<!ENTITY e 'x'>]><r xmlns:p='urn:a' p:first='&e;'/>", found));
    EXPECT_EQ(found[0].value, "");
}

TEST(XmlProperties, DeepNestingDoesNoHarm) {
    auto found = wanted();
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_FALSE(find_xml_properties(deep, found));
}

TEST(XmlProperties, AHugeValueIsCut) {
    auto found = wanted();
    const std::string xml = "<r xmlns:p='urn:a'><p:first>" + std::string(200000, 'x') + "</p:first></r>";
    EXPECT_TRUE(find_xml_properties(xml, found));
    EXPECT_LT(found[0].value.size(), xml.size());
    EXPECT_GE(found[0].value.size(), 1024U);
}

TEST(PictureXmp, KnowsOneProjectionOnly) {
    for (const auto& [projection, is_360] :
         {std::pair{"equirectangular", true}, std::pair{"Equirectangular", true},
          std::pair{"cylindrical", false}, std::pair{"", false}}) {
        MediaRecord record;
        const std::string xml =
            std::string("<r xmlns:g='http://ns.google.com/photos/1.0/panorama/' g:ProjectionType='") +
            projection + "'/>";
        EXPECT_TRUE(read_picture_xmp(xml, record));
        EXPECT_EQ(record.is_360, is_360) << projection;
    }
}

TEST(SphericalVideoXml, OfAPlainVideoSaysNothing) {
    MediaRecord record;
    EXPECT_TRUE(read_spherical_video_xml(
        "<r xmlns:g='http://ns.google.com/videos/1.0/spherical/'><g:Spherical>false</g:Spherical></r>",
        record));
    EXPECT_FALSE(record.is_360);
    EXPECT_EQ(record.stitch_type, StitchType::kNone);
}

}  // namespace
}  // namespace media_content
