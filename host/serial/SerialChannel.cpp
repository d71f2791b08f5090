#include "host/serial/SerialChannel.h"

#include <cstring>

namespace {

thread_local std::string t_infoText;

const char* ErrorText(int64_t code) {
    switch (code) {
    case SERIAL_ERR_NONE: return "No error";
    case SERIAL_ERR_NOTOPEN: return "The serial port is not open";
    case SERIAL_ERR_WRITE: return "Writing to the serial port failed";
    case SERIAL_ERR_READ: return "Reading from the serial port failed";
    case SERIAL_ERR_LOCKED: return "The serial port is locked by another user";
    case SERIAL_ERR_BADARGUMENT: return "Invalid argument";
    case SERIAL_ERR_NOFILETRANSFER:
        return "The raw serial port cannot transfer files: the device's file protocol is not available";
    case SERIAL_ERR_NODIRECTORY: return "The raw serial port cannot read the device directory";
    case SERIAL_ERR_NODELETE: return "The raw serial port cannot delete device files";
    case SERIAL_ERR_NOFORMAT: return "The raw serial port cannot format the device";
    case SERIAL_ERR_NOTSUPPORTED: return "Not supported by the serial port channel";
    case SERIAL_ERR_INTERNAL: return "Internal error of the serial port channel";
    default: return nullptr;
    }
}

}  // namespace

// A raw port has nothing behind the host's own slots.
CSerialChannel::CSerialChannel()
    : CHostChannel({SERIAL_ERR_NOTSUPPORTED, SERIAL_ERR_BADARGUMENT, SERIAL_ERR_LOCKED,
                    SERIAL_ERR_INTERNAL}) {}

bool CSerialChannel::Open(const std::string& port, uint32_t baud, std::string* errorText) {
    std::lock_guard<std::mutex> g(m_mutex);
    if (!m_port.Open(port, baud, errorText)) return false;
    m_portName = port;
    m_baud = baud;
    return true;
}

void CSerialChannel::Close() {
    std::lock_guard<std::mutex> g(m_mutex);
    m_port.Close();
}

const char* CSerialChannel::GetInfoString(uint32_t what, int64_t code) {
    try {
        switch (what) {
        case ONDCOMM_INFO_DESCRIPTION: {
            std::lock_guard<std::mutex> g(m_mutex);
            t_infoText = "Serial port " + m_portName;
            return t_infoText.c_str();
        }
        case ONDCOMM_INFO_CONFIGURATION: {
            std::lock_guard<std::mutex> g(m_mutex);
            t_infoText = std::to_string(m_baud) + " baud, 8N1";
            return t_infoText.c_str();
        }
        case ONDCOMM_INFO_ERRORTEXT:
            if (const char* text = ErrorText(code)) return text;
            t_infoText = "Unknown serial port error " + std::to_string(code);
            return t_infoText.c_str();
        default:
            return "";
        }
    } catch (...) {
        return "Out of memory";  // no exception leaves the channel
    }
}

uint32_t CSerialChannel::GetState() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_port.IsOpen() ? 1 : 2;
}

int32_t CSerialChannel::Receive(char* buffer, uint32_t bufferSize, uint64_t* received) {
    if (received) *received = 0;
    if (!buffer || !received) return SERIAL_ERR_BADARGUMENT;
    std::lock_guard<std::mutex> g(m_mutex);
    if (!m_port.IsOpen()) return SERIAL_ERR_NOTOPEN;
    return m_port.Read(buffer, bufferSize, received) ? SERIAL_ERR_NONE : SERIAL_ERR_READ;
}

int32_t CSerialChannel::Transmit(const char* data, uint64_t length, uint64_t* written) {
    uint64_t done = 0;
    if (written) *written = 0;
    if (!data && length) return SERIAL_ERR_BADARGUMENT;
    std::lock_guard<std::mutex> g(m_mutex);
    if (!m_port.IsOpen()) return SERIAL_ERR_NOTOPEN;
    bool ok = m_port.Write(data, length, &done);
    if (written) *written = done;
    return ok ? SERIAL_ERR_NONE : SERIAL_ERR_WRITE;
}

int32_t CSerialChannel::TransmitFileFromMemory(const char*, uint64_t, uint8_t, uint8_t, uint32_t,
                                               TransferProgressCallback, void*, uint32_t,
                                               uint32_t) {
    return SERIAL_ERR_NOFILETRANSFER;
}

int32_t CSerialChannel::TransmitFile(const char*, uint8_t, uint8_t, uint32_t,
                                     TransferProgressCallback, void*, uint32_t, uint32_t) {
    return SERIAL_ERR_NOFILETRANSFER;
}

int32_t CSerialChannel::ReadDirectory() { return SERIAL_ERR_NODIRECTORY; }

uint64_t CSerialChannel::GetDirectoryEntryCount() { return 0; }

void CSerialChannel::GetDirectoryEntry(uint32_t, TDEVDIRENTRY* entry) {
    if (entry) std::memset(entry, 0, sizeof *entry);
}

void CSerialChannel::GetDirectoryInfo(TDEVDIRINFO* info) {
    if (info) std::memset(info, 0, sizeof *info);
}

int32_t CSerialChannel::DeleteDeviceFile(uint8_t) { return SERIAL_ERR_NODELETE; }

int32_t CSerialChannel::FormatDevice(uint32_t) { return SERIAL_ERR_NOFORMAT; }
