// The channel lock of CHostChannel (the simulated device's and the serial
// channel's): per owner, nested, waiting, and exclusive enough that bracketed
// transmissions never interleave.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "host/sim/SimDevice.h"
#include "os/Platform.h"

namespace {
int g_ownerA, g_ownerB;
void* const kA = &g_ownerA;
void* const kB = &g_ownerB;
}  // namespace

TEST(SimLock, PerOwnerNestedAndOnlyTheHolderUnlocks) {
    CSimDevice dev;
    EXPECT_EQ(dev.Lock(nullptr, 0), SIMDEV_ERR_BADARGUMENT);  // null means "unlocked"
    ASSERT_EQ(dev.Lock(kA, 0), 0);
    ASSERT_EQ(dev.Lock(kA, 500), 0);  // re-entrant for the holder
    EXPECT_EQ(dev.LockCount(), 2u);
    EXPECT_EQ(dev.Lock(kB, 0), SIMDEV_ERR_LOCKED);
    dev.Unlock(kB);  // not the holder: ignored
    dev.Unlock(nullptr);
    dev.Unlock(kA);
    EXPECT_EQ(dev.Lock(kB, 0), SIMDEV_ERR_LOCKED);  // still held once
    EXPECT_EQ(dev.LockOwner(), kA);
    dev.Unlock(kA);
    dev.Unlock(kA);  // one too many: harmless
    EXPECT_EQ(dev.LockOwner(), nullptr);
    EXPECT_EQ(dev.Lock(kB, 0), 0);
}

TEST(SimLock, AnotherOwnerWaitsUntilFreedOrItsTimeoutRunsOut) {
    CSimDevice dev;
    ASSERT_EQ(dev.Lock(kA, 0), 0);
    uint64_t start = OsTickCount();
    int32_t timedOut = -1;
    std::thread([&] { timedOut = dev.Lock(kB, 200); }).join();
    EXPECT_EQ(timedOut, SIMDEV_ERR_LOCKED);
    EXPECT_GE(OsTickCount() - start, 100u);  // it did wait, roughly

    ASSERT_EQ(dev.Lock(kA, 0), 0);
    std::atomic<bool> returned{false};
    std::atomic<int32_t> result{-1};
    std::thread waiter([&] {
        result = dev.Lock(kB, 20000);
        returned = true;
    });
    dev.Unlock(kA);
    OsSleep(50);
    EXPECT_FALSE(returned.load());  // A still holds it once
    dev.Unlock(kA);
    waiter.join();
    EXPECT_EQ(result.load(), 0);
    EXPECT_EQ(dev.LockOwner(), kB);
}

namespace {
// Sends "<tag:n>" in three pieces, nested lock included, under the lock.
void SendFrames(CSimDevice* dev, void* owner, char tag, int frames, std::atomic<int>* failures) {
    for (int n = 0; n < frames; ++n) {
        if (dev->Lock(owner, 20000) != 0 || dev->Lock(owner, 0) != 0) {
            ++*failures;
            continue;
        }
        std::string body = std::string(1, tag) + ":" + std::to_string(n);
        uint64_t written = 0;
        if (dev->Transmit("<", 1, &written) != 0) ++*failures;
        std::this_thread::yield();
        if (dev->Transmit(body.data(), body.size(), &written) != 0) ++*failures;
        std::this_thread::yield();
        if (dev->Transmit(">", 1, &written) != 0) ++*failures;
        dev->Unlock(owner);
        dev->Unlock(owner);
    }
}

// Checks that `stream` is whole frames only, each tag counting up from 0.
bool FramesIntact(const std::string& stream, int frames) {
    int next[2] = {0, 0};
    size_t pos = 0;
    while (pos < stream.size()) {
        size_t end = stream.find('>', pos);
        if (stream[pos] != '<' || end == std::string::npos) return false;
        std::string body = stream.substr(pos + 1, end - pos - 1);
        if (body.size() < 3 || (body[0] != 'a' && body[0] != 'b') || body[1] != ':') return false;
        int& expected = next[body[0] == 'b'];
        if (body.substr(2) != std::to_string(expected)) return false;
        ++expected;
        pos = end + 1;
    }
    return next[0] == frames && next[1] == frames;
}
}  // namespace

TEST(SimLock, TwoThreadsHammeringKeepFramesWhole) {
    CSimDevice dev;
    const int kFrames = 400;
    std::atomic<int> failures{0};
    std::thread a(SendFrames, &dev, kA, 'a', kFrames, &failures);
    std::thread b(SendFrames, &dev, kB, 'b', kFrames, &failures);
    a.join();
    b.join();
    EXPECT_EQ(failures.load(), 0);
    std::string sent = dev.TakeTransmitted();
    EXPECT_TRUE(FramesIntact(sent, kFrames)) << sent.substr(0, 200);
    // The loopback saw exactly the same bytes.
    std::string echoed(dev.PendingReceive(), '\0');
    uint64_t got = 0;
    ASSERT_EQ(dev.Receive(echoed.data(), static_cast<uint32_t>(echoed.size()), &got), 0);
    EXPECT_EQ(got, sent.size());
    EXPECT_EQ(echoed, sent);
    EXPECT_EQ(dev.LockOwner(), nullptr);
}
