// The channel status text of the dialog base.
#include <gtest/gtest.h>

#include "frame/ChannelStatus.h"
#include "host/sim/SimDevice.h"

TEST(FrameChannelStatus, ThreeLinesNoDeviceOrBlankWhenBusy) {
    int owner = 0, other = 0;
    EXPECT_EQ(ChannelStatusText(nullptr, &owner), "No communication device...");

    CSimDevice device;
    const std::string head = std::string("Channel description: ") +
                             device.GetInfoString(ONDCOMM_INFO_DESCRIPTION, 0) +
                             "\nChannel configuration: " +
                             device.GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0) + "\nState: ";
    EXPECT_EQ(ChannelStatusText(&device, &owner), head + "open");
    device.SetState(2);
    EXPECT_EQ(ChannelStatusText(&device, &owner), head + "closed");
    EXPECT_EQ(device.LockCount(), 0u);

    // Another owner holds the channel: no wait, no text, nothing else asked.
    ASSERT_EQ(device.Lock(&other, 0), 0);
    uint64_t states = device.CallCount("GetState");
    EXPECT_EQ(ChannelStatusText(&device, &owner), "");
    EXPECT_EQ(device.CallCount("GetState"), states);
    EXPECT_EQ(device.LockOwner(), &other);
    device.Unlock(&other);
}
