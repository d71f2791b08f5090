// Sending a typed line and polling for received bytes, against the simulated
// device: every status text, the bytes that reach the device, and the lock
// released on every path.
#include <gtest/gtest.h>

#include <string>

#include "host/sim/SimDevice.h"
#include "terminal/TerminalDevice.h"

namespace {

int g_owner, g_other;  // two lock owners

struct TSendCase {
    const char* name;
    const char* typed;
    bool appendCR;
    ETERMINALSEND result;
    std::string transmitted;
    const char* status;
};

TEST(TerminalSend, TypedLinesReachTheDeviceByteForByte) {
    const TSendCase cases[] = {
        {"plain with CR", "ver", true, TERMINAL_SENT, "ver\r", "Wrote \"ver\\r\" to device."},
        {"plain without CR", "ver", false, TERMINAL_SENT, "ver", "Wrote \"ver\" to device."},
        {"escapes become bytes", "A\\(66)\\(x43)\\n\\1", false, TERMINAL_SENT,
         std::string("ABC\n\x01", 5), "Wrote \"A\\(66)\\(x43)\\n\\1\" to device."},
        {"a zero byte ends what is sent", "ab\\(0)cd", true, TERMINAL_SENT, "ab\r",
         "Wrote \"ab\\(0)cd\\r\" to device."},
        {"a zero byte first sends only the CR", "\\0x", true, TERMINAL_SENT, "\r",
         "Wrote \"\\0x\\r\" to device."},
        {"an empty line sends the CR", "", true, TERMINAL_SENT, "\r", "Wrote \"\\r\" to device."},
        {"a bad escape sends nothing", "x\\q", true, TERMINAL_BADTEXT, "",
         "Invalid ESC sequence \"\\q\"."},
    };
    for (const TSendCase& c : cases) {
        CSimDevice sim;
        CONXTerminalHistory history;
        TTERMINALSEND send = TerminalSendLine(&sim, &g_owner, c.typed, c.appendCR, &history);
        EXPECT_EQ(send.result, c.result) << c.name;
        EXPECT_EQ(send.status, c.status) << c.name;
        EXPECT_EQ(sim.TakeTransmitted(), c.transmitted) << c.name;
        EXPECT_EQ(send.bytes, c.transmitted) << c.name;
        EXPECT_EQ(sim.LockOwner(), nullptr) << c.name;
        // Recorded before the escapes are looked at: a bad line is kept too.
        ASSERT_EQ(history.Count(), 1u) << c.name;
        EXPECT_EQ(history.Entry(0).text, c.typed) << c.name;
    }
}

TEST(TerminalSend, NoChannelLockedAndChannelErrors) {
    CONXTerminalHistory history;
    TTERMINALSEND send = TerminalSendLine(nullptr, &g_owner, "x", true, &history);
    EXPECT_EQ(send.result, TERMINAL_NOCHANNEL);
    EXPECT_EQ(send.status, "Not connected to communication device!");
    EXPECT_EQ(history.Count(), 0u);

    // Another owner holds the lock for longer than the send waits.
    CSimDevice sim;
    ASSERT_EQ(sim.Lock(&g_other, 0), 0);
    send = TerminalSendLine(&sim, &g_owner, "x", true, &history);
    EXPECT_EQ(send.result, TERMINAL_LOCKED);
    EXPECT_EQ(send.status, "Communication device is locked!");
    EXPECT_EQ(sim.TakeTransmitted(), "");
    EXPECT_EQ(sim.LockOwner(), &g_other);
    EXPECT_EQ(sim.LockCount(), 1u);  // no Unlock for a lock not had
    EXPECT_EQ(history.Count(), 0u);
    sim.Unlock(&g_other);

    // The channel's own text of its error code.
    ASSERT_TRUE(sim.InjectFault("Transmit", 1));
    send = TerminalSendLine(&sim, &g_owner, "x", true, &history);
    EXPECT_EQ(send.result, TERMINAL_CHANNELERROR);
    EXPECT_EQ(send.status, std::string("Error: ") + sim.GetInfoString(ONDCOMM_INFO_ERRORTEXT, SIMDEV_ERR_INJECTED));
    EXPECT_EQ(sim.LockOwner(), nullptr);

    // The owner that already holds the lock sends, and keeps its lock.
    ASSERT_EQ(sim.Lock(&g_owner, 0), 0);
    send = TerminalSendLine(&sim, &g_owner, "y", false, &history);
    EXPECT_EQ(send.result, TERMINAL_SENT);
    EXPECT_EQ(sim.LockOwner(), &g_owner);
    EXPECT_EQ(sim.LockCount(), 1u);
    sim.Unlock(&g_owner);
}

// Collects the chunks as the receiver gets them.
class CChunks : public CONXTerminalReceiver_0 {
public:
    void Received(const char* data, size_t size) override { chunks.emplace_back(data, size); }
    std::vector<std::string> chunks;
};

TEST(TerminalPoll, ReadsEverythingWaiting1023BytesAtATime) {
    CSimDevice sim;
    sim.SetLoopback(false);
    std::string waiting(2500, 'w');
    sim.PreloadReceive(waiting);
    CChunks got;
    uint64_t before = sim.CallCount("Receive");
    TTERMINALPOLL poll = TerminalPoll(&sim, &g_owner, &got, UINT64_MAX);
    EXPECT_TRUE(poll.locked);
    EXPECT_EQ(poll.bytes, 2500u);
    ASSERT_EQ(got.chunks.size(), 3u);
    EXPECT_EQ(got.chunks[0].size(), 1023u);
    EXPECT_EQ(got.chunks[2].size(), 454u);
    EXPECT_EQ(sim.CallCount("Receive") - before, 4u);  // the last one finds nothing
    EXPECT_EQ(sim.LockOwner(), nullptr);

    // Nothing waiting: one Receive, no chunk.
    got.chunks.clear();
    poll = TerminalPoll(&sim, &g_owner, &got, UINT64_MAX);
    EXPECT_TRUE(poll.locked);
    EXPECT_TRUE(got.chunks.empty());
}

TEST(TerminalPoll, ALockedChannelAFailedReceiveAndTheBudget) {
    CSimDevice sim;
    sim.PreloadReceive("abc");
    CChunks got;
    EXPECT_FALSE(TerminalPoll(nullptr, &g_owner, &got, UINT64_MAX).locked);

    ASSERT_EQ(sim.Lock(&g_other, 0), 0);
    TTERMINALPOLL poll = TerminalPoll(&sim, &g_owner, &got, UINT64_MAX);
    EXPECT_FALSE(poll.locked);
    EXPECT_EQ(sim.PendingReceive(), 3u);  // untouched
    EXPECT_EQ(sim.LockOwner(), &g_other);
    sim.Unlock(&g_other);

    // A failed Receive ends the poll silently; the lock goes all the same.
    sim.PreloadReceive(std::string(3000, 'x'));
    ASSERT_TRUE(sim.InjectFault("Receive", 2));
    poll = TerminalPoll(&sim, &g_owner, &got, UINT64_MAX);
    EXPECT_TRUE(poll.locked);
    EXPECT_EQ(poll.error, SIMDEV_ERR_INJECTED);
    EXPECT_EQ(poll.bytes, 1023u);
    EXPECT_EQ(sim.LockOwner(), nullptr);

    // At most maxBytes (rounded up to whole reads) per poll.
    EXPECT_EQ(TerminalPoll(&sim, &g_owner, &got, UINT64_MAX).bytes, 3003u - 1023u);
    sim.PreloadReceive(std::string(3000, 'y'));
    poll = TerminalPoll(&sim, &g_owner, &got, 1024);
    EXPECT_TRUE(poll.budgetUsed);
    EXPECT_EQ(poll.bytes, 2046u);
    EXPECT_EQ(sim.PendingReceive(), 3000u - 2046u);
    poll = TerminalPoll(&sim, &g_owner, &got, 1024);
    EXPECT_FALSE(poll.budgetUsed);
    EXPECT_EQ(sim.PendingReceive(), 0u);
}

// A receiver that runs out of memory: the poll ends and the lock is released.
class CFailingReceiver : public CONXTerminalReceiver_0 {
public:
    void Received(const char*, size_t) override { throw std::bad_alloc(); }
};

TEST(TerminalPoll, AReceiverThatThrowsLeavesTheChannelUnlocked) {
    CSimDevice sim;
    sim.PreloadReceive("abc\n");
    CFailingReceiver receiver;
    TTERMINALPOLL poll = TerminalPoll(&sim, &g_owner, &receiver, UINT64_MAX);
    EXPECT_TRUE(poll.locked);
    EXPECT_EQ(sim.LockOwner(), nullptr);
}

// Typed, sent, looped back and polled. An escaped LF before the appended CR
// ends the line, and the CR then ends an empty one.
TEST(TerminalPoll, ALoopedBackLineArrivesInTheList) {
    CSimDevice sim;
    CONXTerminalLines lines;
    ASSERT_EQ(TerminalSendLine(&sim, &g_owner, "hello", true, nullptr).result, TERMINAL_SENT);
    ASSERT_EQ(TerminalSendLine(&sim, &g_owner, "two\\n", true, nullptr).result, TERMINAL_SENT);
    TerminalPoll(&sim, &g_owner, &lines, UINT64_MAX);
    ASSERT_EQ(lines.Count(), 3u);
    EXPECT_EQ(lines.Line(0), "hello");
    EXPECT_EQ(lines.Line(1), "two");
    EXPECT_EQ(lines.Line(2), "");
    EXPECT_TRUE(lines.LineComplete());
}

}  // namespace
