// Fault injection, call counting, the closed state and the host-only slots.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host/sim/SimDevice.h"

namespace {
int g_owner;
int32_t CountSteps(void* context, uint32_t) {
    ++*static_cast<int*>(context);
    return 0;
}
}  // namespace

TEST(SimFault, KthCallFailsAndOnlyThatOne) {
    CSimDevice dev;
    uint64_t written = 0;
    ASSERT_EQ(dev.Transmit("0", 1, &written), 0);  // k counts from now, not from the start
    ASSERT_TRUE(dev.InjectFault("Transmit", 2, 77));
    EXPECT_EQ(dev.Transmit("1", 1, &written), 0);
    EXPECT_EQ(dev.Transmit("2", 1, &written), 77);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(dev.Transmit("3", 1, &written), 0);
    EXPECT_EQ(dev.TakeTransmitted(), "013");  // the failed call sent nothing
    EXPECT_EQ(dev.PendingReceive(), 3u);
    EXPECT_EQ(dev.CallCount("Transmit"), 4u);
}

TEST(SimFault, EveryFallibleOperationCanBeMadeToFailWithoutEffect) {
    CSimDevice dev;
    ASSERT_EQ(dev.TransmitFileFromMemory("keep", 4, 1, 0, 0, nullptr, nullptr, 1, 40), 0);
    dev.PreloadReceive("queued");
    int steps = 0;
    uint64_t n = 0;
    char buffer[16];
    struct TCase {
        const char* name;
        std::function<int32_t()> call;
    };
    const std::vector<TCase> cases = {
        {"Transmit", [&] { return dev.Transmit("x", 1, &n); }},
        {"Receive", [&] { return dev.Receive(buffer, sizeof buffer, &n); }},
        {"TransmitFile",
         [&] { return dev.TransmitFile("any", 2, 0, 0, CountSteps, &steps, 1, 40); }},
        {"TransmitFileFromMemory",
         [&] { return dev.TransmitFileFromMemory("y", 1, 2, 0, 0, CountSteps, &steps, 1, 40); }},
        {"ReadDirectory", [&] { return dev.ReadDirectory(); }},
        {"DeleteDeviceFile", [&] { return dev.DeleteDeviceFile(1); }},
        {"FormatDevice", [&] { return dev.FormatDevice(0); }},
        {"Lock", [&] { return dev.Lock(&g_owner, 0); }},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(dev.InjectFault(c.name, 1, 4242));
        uint64_t before = dev.CallCount(c.name);
        EXPECT_EQ(c.call(), 4242);
        EXPECT_EQ(dev.CallCount(c.name), before + 1);
    }
    EXPECT_EQ(steps, 0);
    EXPECT_EQ(dev.TakeTransmitted(), "");
    EXPECT_EQ(dev.PendingReceive(), 6u);
    EXPECT_TRUE(dev.GetStoredFile(1, nullptr));
    EXPECT_FALSE(dev.GetStoredFile(2, nullptr));
    EXPECT_EQ(dev.GetDirectoryEntryCount(), 0u);  // a failed read lists nothing
    EXPECT_EQ(dev.LockOwner(), nullptr);
    EXPECT_EQ(dev.BlockErases(), 0u);
}

TEST(SimFault, ZeroCodeLosesTheCallSilently) {
    CSimDevice dev;
    ASSERT_TRUE(dev.InjectFault("Transmit", 1, 0));
    uint64_t written = 9;
    EXPECT_EQ(dev.Transmit("lost", 4, &written), 0);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(dev.TakeTransmitted(), "");
}

TEST(SimFault, SeveralFaultsAndClearing) {
    CSimDevice dev;
    ASSERT_TRUE(dev.InjectFault("FormatDevice", 1, 11));
    ASSERT_TRUE(dev.InjectFault("FormatDevice", 3, 33));
    EXPECT_EQ(dev.FormatDevice(1), 11);
    EXPECT_EQ(dev.FormatDevice(1), 0);
    EXPECT_EQ(dev.FormatDevice(1), 33);
    ASSERT_TRUE(dev.InjectFault("ReadDirectory", 1));
    dev.ClearFaults();
    EXPECT_EQ(dev.ReadDirectory(), 0);
    ASSERT_TRUE(dev.InjectFault("ReadDirectory", 1));
    EXPECT_EQ(dev.ReadDirectory(), SIMDEV_ERR_INJECTED);  // the default code
}

TEST(SimFault, RefusedForOperationsThatCannotFail) {
    CSimDevice dev;
    EXPECT_FALSE(dev.InjectFault("Unlock", 1));
    EXPECT_FALSE(dev.InjectFault("GetState", 1));
    EXPECT_FALSE(dev.InjectFault("GetDirectoryEntry", 1));
    EXPECT_FALSE(dev.InjectFault("Transmitt", 1));
    EXPECT_FALSE(dev.InjectFault("Transmit", 0));
}

TEST(SimFault, CallsAreCountedPerOperationWhateverTheOutcome) {
    CSimDevice dev;
    int other;
    ASSERT_EQ(dev.Lock(&g_owner, 0), 0);
    EXPECT_NE(dev.Lock(&other, 0), 0);
    dev.Unlock(&g_owner);
    dev.GetState();
    EXPECT_EQ(dev.CallCount("Lock"), 2u);
    EXPECT_EQ(dev.CallCount("Unlock"), 1u);
    EXPECT_EQ(dev.CallCount("GetState"), 1u);
    EXPECT_EQ(dev.CallCount("Receive"), 0u);
    EXPECT_EQ(dev.CallCount("NoSuchOperation"), 0u);
    EXPECT_EQ(dev.TotalCallCount(), 4u);
}

TEST(SimClosed, DeviceOperationsFailWhileClosed) {
    CSimDevice dev;
    ASSERT_EQ(dev.TransmitFileFromMemory("f", 1, 1, 0, 0, nullptr, nullptr, 1, 40), 0);
    dev.PreloadReceive("in");
    dev.SetState(2);
    EXPECT_EQ(dev.GetState(), 2u);
    uint64_t n = 5;
    char buffer[4];
    EXPECT_EQ(dev.Transmit("x", 1, &n), SIMDEV_ERR_CLOSED);
    EXPECT_EQ(dev.Receive(buffer, sizeof buffer, &n), SIMDEV_ERR_CLOSED);
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(dev.TransmitFileFromMemory("g", 1, 2, 0, 0, nullptr, nullptr, 1, 40),
              SIMDEV_ERR_CLOSED);
    EXPECT_EQ(dev.TransmitFile("any", 2, 0, 0, nullptr, nullptr, 1, 40), SIMDEV_ERR_CLOSED);
    EXPECT_EQ(dev.ReadDirectory(), SIMDEV_ERR_CLOSED);
    EXPECT_EQ(dev.DeleteDeviceFile(1), SIMDEV_ERR_CLOSED);
    EXPECT_EQ(dev.FormatDevice(0), SIMDEV_ERR_CLOSED);
    // Lock and the texts still work while closed.
    EXPECT_EQ(dev.Lock(&g_owner, 0), 0);
    dev.Unlock(&g_owner);
    EXPECT_STREQ(dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, SIMDEV_ERR_CLOSED),
                 "Device is closed");
    dev.SetState(1);
    EXPECT_EQ(dev.DeleteDeviceFile(1), 0);  // the file survived the closed spell
    EXPECT_EQ(dev.PendingReceive(), 2u);
    EXPECT_EQ(dev.TakeTransmitted(), "");
}

// Every host-only slot is the same one-liner of the shared channel base.
TEST(SimClosed, HostOnlySlotsAreNotSupportedAndCounted) {
    CSimDevice dev;
    COndDeviceComm_0* c = &dev;  // through the interface, as a host would call
    EXPECT_EQ(c->Reserved00(), SIMDEV_ERR_NOTSUPPORTED);
    EXPECT_EQ(c->Reserved26(), SIMDEV_ERR_NOTSUPPORTED);
    EXPECT_EQ(dev.CallCount("Reserved26"), 1u);
}
