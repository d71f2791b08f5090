// The serial port on Windows: CreateFile on "\\.\COMn", a DCB for the baud
// rate and 8N1, and time-outs that make reads return at once with what waits.
#include <windows.h>

#include "host/serial/SerialPort.h"

namespace {

const DWORD kWriteStallMs = 2000;  // a port that takes nothing this long has failed

std::string LastErrorText() {
    char text[256] = "";
    DWORD error = GetLastError();
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                   text, sizeof text, nullptr);
    std::string s = text;
    while (!s.empty() && (s.back() == '\n' || s.back() == '\r' || s.back() == ' ')) s.pop_back();
    if (s.empty()) s = "error " + std::to_string(error);
    return s;
}

}  // namespace

bool CSerialPort::Open(const std::string& name, uint32_t baud, std::string* errorText) {
    Close();
    // COM10 and above are reachable only by the device-namespace form.
    std::string device = name.rfind("\\\\.\\", 0) == 0 ? name : "\\\\.\\" + name;
    HANDLE h = CreateFileA(device.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           0, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        *errorText = "cannot open " + name + ": " + LastErrorText();
        return false;
    }
    DCB dcb;
    ZeroMemory(&dcb, sizeof dcb);
    dcb.DCBlength = sizeof dcb;
    COMMTIMEOUTS timeouts;
    ZeroMemory(&timeouts, sizeof timeouts);
    timeouts.ReadIntervalTimeout = MAXDWORD;  // with zero totals: return what is waiting
    timeouts.WriteTotalTimeoutConstant = kWriteStallMs;
    timeouts.WriteTotalTimeoutMultiplier = 1;
    bool ok = GetCommState(h, &dcb);
    if (ok) {
        dcb.BaudRate = baud;
        dcb.fBinary = TRUE;
        dcb.fParity = FALSE;
        dcb.ByteSize = 8;
        dcb.Parity = NOPARITY;
        dcb.StopBits = ONESTOPBIT;
        dcb.fOutxCtsFlow = FALSE;
        dcb.fOutxDsrFlow = FALSE;
        dcb.fDtrControl = DTR_CONTROL_ENABLE;
        dcb.fRtsControl = RTS_CONTROL_ENABLE;
        dcb.fOutX = FALSE;
        dcb.fInX = FALSE;
        dcb.fNull = FALSE;
        ok = SetCommState(h, &dcb) && SetCommTimeouts(h, &timeouts);
    }
    if (!ok) {
        *errorText = "cannot set up " + name + ": " + LastErrorText();
        CloseHandle(h);
        return false;
    }
    m_handle = (intptr_t)h;
    return true;
}

void CSerialPort::Close() {
    if (m_handle != kNoHandle) CloseHandle((HANDLE)m_handle);
    m_handle = kNoHandle;
}

bool CSerialPort::Write(const char* data, uint64_t length, uint64_t* written) {
    *written = 0;
    if (!IsOpen()) return false;
    while (*written < length) {
        uint64_t rest = length - *written;
        DWORD chunk = rest > 0x10000 ? 0x10000 : (DWORD)rest;
        DWORD n = 0;
        if (!WriteFile((HANDLE)m_handle, data + *written, chunk, &n, nullptr)) return false;
        if (n == 0) return false;  // the write time-out ran out
        *written += n;
    }
    return true;
}

bool CSerialPort::Read(char* buffer, uint32_t size, uint64_t* received) {
    *received = 0;
    if (!IsOpen()) return false;
    DWORD n = 0;
    if (!ReadFile((HANDLE)m_handle, buffer, size, &n, nullptr)) return false;
    *received = n;
    return true;
}
