// The simulated device that keeps talking: a stream after the receive queue.
#include <gtest/gtest.h>

#include <string>

#include "host/sim/SimDevice.h"
#include "os/Platform.h"

namespace {

std::string ReceiveOnce(CSimDevice& dev, uint32_t size) {
    std::string buffer(size, '\0');
    uint64_t got = 0;
    EXPECT_EQ(dev.Receive(&buffer[0], size, &got), 0);
    buffer.resize(got);
    return buffer;
}

TEST(SimStream, AnUnlimitedStreamFillsEveryReadAfterTheQueue) {
    CSimDevice dev;
    dev.PreloadReceive("head");
    dev.SetReceiveStream("0123456789", 0);
    EXPECT_EQ(ReceiveOnce(dev, 7), "head012");
    EXPECT_EQ(ReceiveOnce(dev, 12), "345678901234");
    for (int i = 0; i < 100; ++i) ASSERT_EQ(ReceiveOnce(dev, 1023).size(), 1023u);
    EXPECT_EQ(dev.StreamBytesReceived(), 3u + 12u + 102300u);
    EXPECT_EQ(dev.StreamBacklog(), 0u);
    dev.SetReceiveStream("", 0);  // quiet again
    EXPECT_EQ(ReceiveOnce(dev, 100), "");
}

TEST(SimStream, ARatedStreamMakesBytesAvailableAsTimePasses) {
    CSimDevice dev;
    dev.SetReceiveStream("ab", 100000);  // 100 bytes per millisecond
    OsSleep(50);
    uint64_t backlog = dev.StreamBacklog();
    EXPECT_GE(backlog, 4000u);  // (clocks differ a little between platforms)
    // Drained at once: what was due, not an endless supply.
    std::string all;
    for (std::string got; !(got = ReceiveOnce(dev, 1023)).empty() && all.size() < 1000000;) all += got;
    EXPECT_GE(all.size(), backlog);
    EXPECT_LT(all.size(), 500000u);
    EXPECT_EQ(all.substr(0, 6), "ababab");
    EXPECT_EQ(dev.StreamBytesReceived(), all.size());
}

}  // namespace
