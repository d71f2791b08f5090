// The serial-port channel without a port: what a raw port cannot do, the
// texts that say so, and the codes of the shared lock.
#include <gtest/gtest.h>

#include <string>

#include "host/serial/SerialChannel.h"

namespace {

std::string Text(CSerialChannel& channel, int32_t code) {
    return channel.GetInfoString(ONDCOMM_INFO_ERRORTEXT, code);
}

int32_t Progress(void* context, uint32_t) {
    ++*static_cast<int*>(context);
    return 0;
}

}  // namespace

TEST(SerialChannel, FileOperationsFailWithTextsThatSayWhy) {
    CSerialChannel channel;
    int calls = 0;
    int32_t code = channel.TransmitFile("x.bin", 1, 2, 0, Progress, &calls, 1, 40);
    EXPECT_NE(code, 0);
    EXPECT_NE(Text(channel, code).find("raw serial port cannot transfer files"), std::string::npos);
    code = channel.TransmitFileFromMemory("ab", 2, 1, 2, 0, Progress, &calls, 1, 40);
    EXPECT_NE(Text(channel, code).find("raw serial port cannot transfer files"), std::string::npos);
    EXPECT_EQ(calls, 0);  // no progress for a transfer that never starts
    EXPECT_NE(Text(channel, channel.ReadDirectory()).find("cannot read the device directory"),
              std::string::npos);
    EXPECT_NE(Text(channel, channel.DeleteDeviceFile(3)).find("cannot delete"), std::string::npos);
    EXPECT_NE(Text(channel, channel.FormatDevice(0)).find("cannot format"), std::string::npos);
    EXPECT_EQ(channel.GetDirectoryEntryCount(), 0u);
    EXPECT_EQ(Text(channel, 123456), "Unknown serial port error 123456");
}

TEST(SerialChannel, UnopenedPortIsClosedAndRefusesTraffic) {
    CSerialChannel channel;
    EXPECT_NE(channel.GetState(), 1u);
    char buffer[8];
    uint64_t n = 99;
    int32_t code = channel.Receive(buffer, sizeof buffer, &n);
    EXPECT_NE(code, 0);
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(Text(channel, code), "The serial port is not open");
    EXPECT_NE(channel.Transmit("a", 1, &n), 0);
    std::string error;
    EXPECT_FALSE(channel.Open("/no/such/port/here", 9600, &error));
    EXPECT_NE(error.find("/no/such/port/here"), std::string::npos);
}

TEST(SerialChannel, LockAndHostSlotsAnswerWithItsOwnCodes) {
    CSerialChannel channel;
    int a, b;
    EXPECT_EQ(channel.Lock(nullptr, 0), SERIAL_ERR_BADARGUMENT);
    EXPECT_EQ(channel.Lock(&a, 0), 0);
    EXPECT_EQ(channel.Lock(&b, 0), SERIAL_ERR_LOCKED);
    channel.Unlock(&a);
    EXPECT_EQ(channel.Reserved00(), SERIAL_ERR_NOTSUPPORTED);
    EXPECT_EQ(channel.Reserved26(), SERIAL_ERR_NOTSUPPORTED);
}
