// The raw port under the serial channel: open with a baud rate and 8N1, write
// everything, read what is waiting. One implementation per platform (posix/,
// win32/). Host-side code, not part of the module.
#pragma once

#include <cstdint>
#include <string>

class CSerialPort {
public:
    CSerialPort() = default;
    CSerialPort(const CSerialPort&) = delete;
    CSerialPort& operator=(const CSerialPort&) = delete;
    ~CSerialPort() { Close(); }

    // name: "/dev/ttyUSB0" on POSIX, "COM3" (or "\\.\COM12") on Windows.
    // false with *errorText saying why when the port cannot be opened and set up.
    bool Open(const std::string& name, uint32_t baud, std::string* errorText);
    void Close();
    bool IsOpen() const { return m_handle != kNoHandle; }
    // All of data, waiting for the port as long as it keeps taking bytes;
    // false when it fails or stalls. *written: bytes taken.
    bool Write(const char* data, uint64_t length, uint64_t* written);
    // What is waiting, up to size bytes; never waits. false on a port error.
    bool Read(char* buffer, uint32_t size, uint64_t* received);

private:
    static constexpr intptr_t kNoHandle = -1;
    intptr_t m_handle = kNoHandle;
};
