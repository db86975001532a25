// Lists of cameras that are asked for, left and pulled out at any moment, many times.

#include <gtest/gtest.h>

#include <memory>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/virtual_cameras.h"
#include "tests/integration/camera_list.h"

namespace {

constexpr int kRounds = 500;

TEST(CameraRounds, ListsThatAreLeftAtAnyMomentLeaveNothingBehind) {
    VirtualCameras cameras;
    cameras.write("card/DCIM", "a.jpg", jpeg_with_thumbnail(4, 3));
    cameras.write("card", "b.jpg", jpeg_with_thumbnail(4, 3));
    const std::string storage = "storage = " + cameras.folder("card");
    int device = cameras.plug("camera", {storage});
    for (int round = 0; round < kRounds; ++round) {
        CameraList folder({device, "0"});
        auto row = std::make_unique<CameraList>(CameraList::Request{device, ""});
        ASSERT_TRUE(folder.accepted() && row->accepted()) << round;
        switch (round % 5) {
            case 0:  // both are left at once
                break;
            case 1:
                ASSERT_EQ(folder.wait(), QRA_EVENT_LIST_SUCCESS) << round;
                ASSERT_EQ(folder.tiles(), 2) << round;
                break;
            case 2:
                row->disconnect();
                ASSERT_EQ(folder.wait(), QRA_EVENT_LIST_SUCCESS) << round;
                break;
            case 3:
                ASSERT_EQ(row->wait(), QRA_EVENT_LIST_SUCCESS) << round;
                row.reset();
                break;
            default:  // the camera goes, and another one comes
                cameras.pull("camera");
                ASSERT_GE(folder.wait(), 0) << round;
                device = cameras.plug("camera", {storage});
                break;
        }
    }
}

}  // namespace
