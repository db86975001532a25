#include <gtest/gtest.h>

#include "engine/src/devices/udisks_volumes.h"
#include "platform/support/glib_ptr.h"

using engine::Volumes;
using glib::VariantPtr;

namespace {

/// The volumes in an object manager's answer, given in GVariant's text format.
Volumes volumes_of(const std::string& objects) {
    glib::ErrorOut error;
    const glib::VariantPtr answer(g_variant_parse(G_VARIANT_TYPE("(a{oa{sa{sv}}})"),
                                                  ("(" + objects + ",)").c_str(), nullptr, nullptr, error));
    EXPECT_TRUE(answer) << error.message();
    return answer ? engine::parse_udisks_objects(answer.get()) : Volumes();
}

/// A disk whose block device and drive have these properties beside those that make it a stick.
std::string disk(const std::string& block, const std::string& filesystem, const std::string& drive) {
    return "{objectpath '/b': {'org.freedesktop.UDisks2.Block': {" + block +
           "}, 'org.freedesktop.UDisks2.Filesystem': {" + filesystem +
           "}}, objectpath '/d': {'org.freedesktop.UDisks2.Drive': {" + drive + "}}}";
}

constexpr char kBlock[] = "'Device': <b'/dev/sdb1'>, 'Drive': <objectpath '/d'>, 'IdLabel': <'HOLIDAY'>";
constexpr char kMounted[] = "'MountPoints': <[b'/media/stick', b'/mnt/stick']>";
constexpr char kUsb[] = "'ConnectionBus': <'usb'>, 'Model': <'Stick 3000'>";

TEST(UDisksObjects, AreVolumesWhereAStickIsMounted) {
    const Volumes volumes = volumes_of(disk(kBlock, kMounted, kUsb));
    ASSERT_EQ(1U, volumes.size());
    EXPECT_EQ("/media/stick", volumes[0].mount_point) << "the first place";
    EXPECT_EQ("/dev/sdb1", volumes[0].device_file);
    EXPECT_EQ("HOLIDAY", volumes[0].label);
    EXPECT_EQ("Stick 3000", volumes[0].model);
    EXPECT_EQ("", volumes[0].vendor);
}

TEST(UDisksObjects, AreNoVolumesUnlessTheyArePluggedInAndMounted) {
    EXPECT_EQ(0U, volumes_of("@a{oa{sa{sv}}} {}").size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, "'MountPoints': <@aay []>", kUsb)).size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, "'MountPoints': <[b'/']>", kUsb)).size()) << "the system itself";
    EXPECT_EQ(0U, volumes_of(disk(kBlock, kMounted, "'ConnectionBus': <''>")).size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, kMounted, "'Optical': <true>, 'Removable': <true>")).size());
    EXPECT_EQ(1U, volumes_of(disk(kBlock, kMounted, "'Removable': <true>")).size()) << "a card reader";
}

TEST(UDisksObjects, OfOtherTypesThanTheirsAreNotThere) {
    EXPECT_EQ(0U, volumes_of(disk("'Device': <7>, 'Drive': <7>", kMounted, kUsb)).size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, "'MountPoints': <['/media/stick']>", kUsb)).size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, "'MountPoints': <b'/media/stick'>", kUsb)).size());
    EXPECT_EQ(0U, volumes_of(disk(kBlock, kMounted, "'ConnectionBus': <true>, 'Removable': <'yes'>")).size());
    EXPECT_EQ(0U, volumes_of(disk("'Drive': <objectpath '/nowhere'>", kMounted, kUsb)).size());
    EXPECT_EQ(0U, volumes_of(disk("'Drive': <'no path'>", kMounted, kUsb)).size());
    const Volumes volumes = volumes_of(disk("'Drive': <objectpath '/d'>, 'IdLabel': <7>", kMounted, kUsb));
    ASSERT_EQ(1U, volumes.size());
    EXPECT_EQ("", volumes[0].label);
}

}  // namespace
