// The simulated device's byte link: loopback, preloading, large queues.
#include <gtest/gtest.h>

#include <string>

#include "host/sim/SimDevice.h"

namespace {
// Drains the receive queue in reads of `chunk` bytes.
std::string DrainAll(CSimDevice& dev, uint32_t chunk) {
    std::string all, buffer(chunk, '\0');
    for (;;) {
        uint64_t got = 99;
        EXPECT_EQ(dev.Receive(buffer.data(), chunk, &got), 0);
        EXPECT_LE(got, chunk);
        if (got == 0) break;
        all.append(buffer.data(), got);
    }
    return all;
}

std::string Pattern(size_t size) {
    std::string s(size, '\0');
    for (size_t i = 0; i < size; ++i) s[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return s;
}
}  // namespace

TEST(SimLoopback, TransmittedBytesComeBackInBoundedReads) {
    CSimDevice dev;
    const std::string line("hello\0world", 11);  // embedded NUL travels too
    uint64_t written = 0;
    ASSERT_EQ(dev.Transmit(line.data(), line.size(), &written), 0);
    EXPECT_EQ(written, 11u);
    char buffer[4];
    uint64_t got = 0;
    ASSERT_EQ(dev.Receive(buffer, sizeof buffer, &got), 0);
    ASSERT_EQ(got, 4u);
    EXPECT_EQ(std::string(buffer, 4), "hell");
    EXPECT_EQ(dev.PendingReceive(), 7u);
    EXPECT_EQ(DrainAll(dev, 4), line.substr(4));
    EXPECT_EQ(dev.TakeTransmitted(), line);
    EXPECT_EQ(dev.TakeTransmitted(), "");  // taken once
}

TEST(SimLoopback, PreloadedBytesComeBeforeEchoedOnes) {
    CSimDevice dev;
    dev.PreloadReceive("abc");
    uint64_t written;
    ASSERT_EQ(dev.Transmit("def", 3, &written), 0);
    EXPECT_EQ(DrainAll(dev, 2), "abcdef");
    EXPECT_EQ(dev.TakeTransmitted(), "def");  // preloading is not transmitting
}

TEST(SimLoopback, SwitchedOffRecordsButDoesNotEcho) {
    CSimDevice::TConfig config;
    config.loopback = false;
    CSimDevice dev(config);
    uint64_t written = 0;
    ASSERT_EQ(dev.Transmit("xyz", 3, &written), 0);
    EXPECT_EQ(dev.PendingReceive(), 0u);
    EXPECT_EQ(DrainAll(dev, 16), "");
    EXPECT_EQ(dev.TakeTransmitted(), "xyz");
    dev.SetLoopback(true);
    ASSERT_EQ(dev.Transmit("12", 2, nullptr), 0);  // written may be omitted
    EXPECT_EQ(DrainAll(dev, 16), "12");
}

TEST(SimLoopback, ArgumentChecks) {
    CSimDevice dev;
    dev.PreloadReceive("keep");
    char buffer[8];
    uint64_t got = 5;
    EXPECT_EQ(dev.Receive(buffer, 0, &got), 0);  // a zero-size read takes nothing
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(dev.Receive(buffer, sizeof buffer, nullptr), SIMDEV_ERR_BADARGUMENT);
    EXPECT_EQ(dev.Receive(nullptr, 8, &got), SIMDEV_ERR_BADARGUMENT);
    uint64_t written = 5;
    EXPECT_EQ(dev.Transmit(nullptr, 3, &written), SIMDEV_ERR_BADARGUMENT);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(dev.Transmit(nullptr, 0, &written), 0);  // nothing to send is fine
    EXPECT_EQ(dev.PendingReceive(), 4u);
    EXPECT_EQ(DrainAll(dev, 8), "keep");
}

TEST(SimLoopback, AppendingWhileHalfDrainedKeepsOrder) {
    CSimDevice dev;
    const std::string data = Pattern(300 * 1024);
    dev.PreloadReceive(data);
    std::string head(200 * 1024, '\0');
    uint64_t got = 0;
    // Reads large enough to get past the point where the consumed front is cut.
    for (size_t done = 0; done < head.size(); done += got) {
        ASSERT_EQ(dev.Receive(&head[done], 50 * 1024, &got), 0);
        ASSERT_EQ(got, 50u * 1024);
    }
    EXPECT_EQ(head, data.substr(0, head.size()));
    uint64_t written;
    ASSERT_EQ(dev.Transmit("tail", 4, &written), 0);
    dev.PreloadReceive("more");
    EXPECT_EQ(dev.PendingReceive(), 100u * 1024 + 8);
    EXPECT_EQ(DrainAll(dev, 4096), data.substr(head.size()) + "tailmore");
}

TEST(SimLoopback, LargeQueueDrainsInSmallReadsWithLinearCopying) {
    // 32 MiB in 4 KiB reads. Moving the rest forward on every read would copy
    // the queue thousands of times over; cutting the consumed front only when
    // it outweighs the rest copies less than the data itself.
    CSimDevice dev;
    const std::string data = Pattern(32u * 1024 * 1024);
    dev.PreloadReceive(data);
    std::string back = DrainAll(dev, 4096);
    EXPECT_TRUE(back == data) << "drained " << back.size() << " bytes";
    EXPECT_LE(dev.ReceiveBytesMoved(), data.size());
    EXPECT_EQ(dev.PendingReceive(), 0u);
}
