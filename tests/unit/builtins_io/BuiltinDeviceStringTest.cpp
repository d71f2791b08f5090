// transmitstring and receivestring against the simulated device.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

// A variable the test can read after the run.
struct TExternal {
    CONXScriptVariable variable;
    std::vector<CONXScriptVariable*> list;
    TExternal(const char* name, uint32_t type) {
        variable.SetName(name);
        variable.SetType(type);
        list.push_back(&variable);
    }
};

// What is sent and that a statement call reads nothing: the loopback conformance script.
TEST(BuiltinTransmitString, AFailingChannelIsNoScriptError) {
    CSimDevice device;
    device.SetLoopback(false);
    device.InjectFault("Transmit", 1);
    TTESTRUN run = BuiltinIoRun("transmitstring(\"x\"); print(\"on\");", &device, "");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "on");
    EXPECT_EQ(device.TakeTransmitted(), "");
}

TEST(BuiltinReceiveString, AChannelErrorKeepsWhatCameBefore) {
    CSimDevice device;
    TExternal s("s", SCRIPT_TYPE_STRING);
    device.PreloadReceive("ab");
    device.InjectFault("Receive", 1);
    ASSERT_EQ(BuiltinIoRun("s = \"old\"; s = receivestring();", &device, "", nullptr, &s.list).code, 0u);
    EXPECT_EQ(s.variable.GetText(), "");
    EXPECT_EQ(device.PendingReceive(), 2u);

    // The second read fails: the first one's bytes are the result.
    device.PreloadReceive("cd");
    device.InjectFault("Receive", 2);
    ASSERT_EQ(BuiltinIoRun("s = receivestring();", &device, "", nullptr, &s.list).code, 0u);
    EXPECT_EQ(s.variable.GetText(), "abcd");
}

TEST(BuiltinReceiveString, LargeQueueArrivesWhole) {
    CSimDevice device;
    std::string bytes(3 * 1000 * 1000 + 17, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = (char)(i * 131 + (i >> 12));
    device.PreloadReceive(bytes);
    TExternal s("s", SCRIPT_TYPE_STRING);
    ASSERT_EQ(BuiltinIoRun("s = receivestring();", &device, "", nullptr, &s.list).code, 0u);
    EXPECT_TRUE(s.variable.GetText() == bytes);
    EXPECT_EQ(device.PendingReceive(), 0u);
    // Reads of 1024 bytes: one per kilobyte and the empty one that ends it.
    EXPECT_EQ(device.CallCount("Receive"), (bytes.size() + 1023) / 1024 + 1);
}

TEST(BuiltinReceiveString, BeyondTheStringLimitIsOutOfMemory) {
    CSimDevice device;
    device.PreloadReceive(std::string(300000, 'x'));
    CONXScriptRunContext context;
    context.m_limits.maxStringBytes = 100000;
    TExternal s("s", SCRIPT_TYPE_STRING);
    EXPECT_EQ(BuiltinIoRun("s = receivestring();", &device, "", nullptr, &s.list, &context).code,
              SCRIPT_ERR_OUTOFMEMORY);
    // It stops reading soon after the limit instead of draining the device.
    EXPECT_GT(device.PendingReceive(), 100000u);
}

// A device that never runs dry, a little at a time.
class CChattyDevice : public CSimDevice {
public:
    int32_t Receive(char* buffer, uint32_t bufferSize, uint64_t* received) override {
        OsSleep(1);
        uint32_t n = bufferSize < 10 ? bufferSize : 10;
        for (uint32_t i = 0; i < n; ++i) buffer[i] = 'x';
        *received = n;
        return 0;
    }
};

TEST(BuiltinReceiveString, StopRequestEndsADeviceThatNeverStops) {
    CChattyDevice device;
    CONXScriptRunContext context;
    std::thread stopper([&] {
        OsSleep(100);
        context.RequestStop();
    });
    uint64_t start = OsTickCount();
    TTESTRUN run = BuiltinIoRun("var string s; s = receivestring();", &device, "", nullptr, nullptr, &context);
    uint64_t elapsed = OsTickCount() - start;
    stopper.join();
    printf("[ measured ] endless device, stop request after 100 ms: receivestring ended after %llu ms\n",
           (unsigned long long)elapsed);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    EXPECT_LT(elapsed, 2000u);
}

}  // namespace
