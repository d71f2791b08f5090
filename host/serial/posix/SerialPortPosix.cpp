// The serial port on POSIX: termios raw mode, 8N1, no flow control; reads
// never block, writes wait for the port with poll().
#include "host/serial/SerialPort.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <termios.h>
#include <unistd.h>

namespace {

const int kWriteStallMs = 2000;  // a port that takes nothing this long has failed

bool BaudConstant(uint32_t baud, speed_t* speed) {
    static const struct {
        uint32_t baud;
        speed_t speed;
    } kRates[] = {{1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
                  {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
                  {230400, B230400}, {460800, B460800}, {921600, B921600}};
    for (const auto& rate : kRates) {
        if (rate.baud == baud) {
            *speed = rate.speed;
            return true;
        }
    }
    return false;
}

}  // namespace

bool CSerialPort::Open(const std::string& name, uint32_t baud, std::string* errorText) {
    Close();
    speed_t speed;
    if (!BaudConstant(baud, &speed)) {
        *errorText = "unsupported baud rate " + std::to_string(baud);
        return false;
    }
    int fd = open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        *errorText = std::string("cannot open ") + name + ": " + strerror(errno);
        return false;
    }
    termios tio;
    if (tcgetattr(fd, &tio) != 0) {
        *errorText = name + " is not a serial port: " + strerror(errno);
        ::close(fd);
        return false;
    }
    cfmakeraw(&tio);
    tio.c_cflag &= ~(CSTOPB | PARENB | CRTSCTS);
    tio.c_cflag |= CS8 | CLOCAL | CREAD;
    tio.c_iflag &= ~(IXON | IXOFF | IXANY);
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = 0;
    cfsetispeed(&tio, speed);
    cfsetospeed(&tio, speed);
    if (tcsetattr(fd, TCSANOW, &tio) != 0) {
        *errorText = std::string("cannot set up ") + name + ": " + strerror(errno);
        ::close(fd);
        return false;
    }
    m_handle = fd;
    return true;
}

void CSerialPort::Close() {
    if (m_handle != kNoHandle) ::close((int)m_handle);
    m_handle = kNoHandle;
}

bool CSerialPort::Write(const char* data, uint64_t length, uint64_t* written) {
    *written = 0;
    if (!IsOpen()) return false;
    while (*written < length) {
        ssize_t n = ::write((int)m_handle, data + *written, (size_t)(length - *written));
        if (n > 0) {
            *written += (uint64_t)n;
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return false;
        pollfd p = {(int)m_handle, POLLOUT, 0};
        int ready = poll(&p, 1, kWriteStallMs);
        if (ready == 0 || (ready < 0 && errno != EINTR)) return false;
    }
    return true;
}

bool CSerialPort::Read(char* buffer, uint32_t size, uint64_t* received) {
    *received = 0;
    if (!IsOpen()) return false;
    for (;;) {
        ssize_t n = ::read((int)m_handle, buffer, size);
        if (n >= 0) {
            *received = (uint64_t)n;
            return true;
        }
        if (errno == EINTR) continue;
        return errno == EAGAIN || errno == EWOULDBLOCK;  // nothing waiting
    }
}
