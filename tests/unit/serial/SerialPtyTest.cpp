// The serial-port channel on a real tty: a pseudo-terminal pair stands in for
// the cable, the channel opens the slave side like any serial port.
#ifndef _WIN32
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "host/serial/SerialChannel.h"
#include "os/Platform.h"

namespace {

class SerialPty : public ::testing::Test {
protected:
    void SetUp() override {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(master, 0);
        ASSERT_EQ(grantpt(master), 0);
        ASSERT_EQ(unlockpt(master), 0);
        slaveName = ptsname(master);
        termios tio;
        ASSERT_EQ(tcgetattr(master, &tio), 0);
        cfmakeraw(&tio);
        ASSERT_EQ(tcsetattr(master, TCSANOW, &tio), 0);
        std::string error;
        ASSERT_TRUE(channel.Open(slaveName, 57600, &error)) << error;
    }
    void TearDown() override {
        channel.Close();
        if (master >= 0) close(master);
    }
    // What arrives on the master side within a generous time.
    std::string ReadMaster(size_t want) {
        std::string got;
        uint64_t start = OsTickCount();
        while (got.size() < want && OsTickCount() - start < 5000) {
            pollfd p = {master, POLLIN, 0};
            if (poll(&p, 1, 100) <= 0) continue;
            char buffer[256];
            ssize_t n = read(master, buffer, sizeof buffer);
            if (n > 0) got.append(buffer, (size_t)n);
        }
        return got;
    }
    // What the channel receives within a generous time.
    std::string ReceiveAll(size_t want) {
        std::string got;
        uint64_t start = OsTickCount();
        while (got.size() < want && OsTickCount() - start < 5000) {
            char buffer[7];  // small: several reads per message
            uint64_t n = 0;
            EXPECT_EQ(channel.Receive(buffer, sizeof buffer, &n), 0);
            if (n == 0) OsSleep(5);
            got.append(buffer, (size_t)n);
        }
        return got;
    }
    int master = -1;
    std::string slaveName;
    CSerialChannel channel;
};

}  // namespace

TEST_F(SerialPty, BytesSentComeOutTheOtherSideUnchanged) {
    std::string message("AT\r\nline\n\0\x7F\xFF end", 16);
    uint64_t written = 0;
    EXPECT_EQ(channel.Transmit(message.data(), message.size(), &written), 0);
    EXPECT_EQ(written, message.size());
    EXPECT_EQ(ReadMaster(message.size()), message);
}

TEST_F(SerialPty, BytesFromTheOtherSideAreReceivedAndNothingWaitingIsNoError) {
    char buffer[16];
    uint64_t n = 99;
    EXPECT_EQ(channel.Receive(buffer, sizeof buffer, &n), 0);  // nothing yet: no wait, no error
    EXPECT_EQ(n, 0u);
    std::string message("OK\r\n\0\x01\x80 ready for more", 23);
    ASSERT_EQ(write(master, message.data(), message.size()), (ssize_t)message.size());
    EXPECT_EQ(ReceiveAll(message.size()), message);
}

TEST_F(SerialPty, DescribesItselfByPortAndSettings) {
    EXPECT_EQ(channel.GetState(), 1u);
    EXPECT_EQ(std::string(channel.GetInfoString(ONDCOMM_INFO_DESCRIPTION, 0)),
              "Serial port " + slaveName);
    EXPECT_EQ(std::string(channel.GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0)), "57600 baud, 8N1");
    channel.Close();
    EXPECT_NE(channel.GetState(), 1u);
}

TEST(SerialPort, RefusesAFileThatIsNoTerminalAndAnOddBaudRate) {
    CSerialChannel channel;
    std::string error;
    EXPECT_FALSE(channel.Open("/dev/null", 9600, &error));
    EXPECT_NE(error.find("not a serial port"), std::string::npos);
    EXPECT_FALSE(channel.Open("/dev/null", 12345, &error));
    EXPECT_NE(error.find("baud"), std::string::npos);
}
#endif
