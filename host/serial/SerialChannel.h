// A device channel over a raw serial port: what dcsrun uses with a real device
// on a COM port or a tty. Host-side code, not part of the module.
//
// - The lock and the host's own slots are CHostChannel's.
// - Transmit writes every byte; Receive returns what is waiting, never waits.
// - A raw port has no file system behind it: the file transfers, the device
//   directory, deleting and formatting fail with codes whose texts say so.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "host/channel/HostChannel.h"
#include "host/serial/SerialPort.h"

enum : int32_t {
    SERIAL_ERR_NONE = 0,
    SERIAL_ERR_NOTOPEN = 2001,        // the port is not open
    SERIAL_ERR_WRITE = 2002,          // writing to the port failed or stalled
    SERIAL_ERR_READ = 2003,           // reading from the port failed
    SERIAL_ERR_LOCKED = 2004,         // another owner holds the lock
    SERIAL_ERR_BADARGUMENT = 2005,    // null buffer, null owner
    SERIAL_ERR_NOFILETRANSFER = 2006, // file transfers need a device protocol
    SERIAL_ERR_NODIRECTORY = 2007,
    SERIAL_ERR_NODELETE = 2008,
    SERIAL_ERR_NOFORMAT = 2009,
    SERIAL_ERR_NOTSUPPORTED = 2010,   // a host-only slot was called
    SERIAL_ERR_INTERNAL = 2011,
};

const uint32_t SERIAL_DEFAULT_BAUD = 115200;

class CSerialChannel : public CHostChannel {
public:
    CSerialChannel();

    // false with *errorText when the port cannot be opened or set up.
    bool Open(const std::string& port, uint32_t baud, std::string* errorText);
    void Close();

    // Texts of codes and the description are literals or live in storage of
    // the calling thread, valid until that thread's next call.
    const char* GetInfoString(uint32_t what, int64_t code) override;
    uint32_t GetState() override;
    int32_t Receive(char* buffer, uint32_t bufferSize, uint64_t* received) override;
    int32_t Transmit(const char* data, uint64_t length, uint64_t* written) override;
    int32_t TransmitFileFromMemory(const char* data, uint64_t length, uint8_t fileId,
                                   uint8_t fileType, uint32_t fileMode,
                                   TransferProgressCallback callback, void* context,
                                   uint32_t flag, uint32_t steps) override;
    int32_t TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType,
                         uint32_t fileMode, TransferProgressCallback callback, void* context,
                         uint32_t flag, uint32_t steps) override;
    int32_t ReadDirectory() override;
    uint64_t GetDirectoryEntryCount() override;
    void GetDirectoryEntry(uint32_t index, TDEVDIRENTRY* entry) override;
    void GetDirectoryInfo(TDEVDIRINFO* info) override;
    int32_t DeleteDeviceFile(uint8_t fileId) override;
    int32_t FormatDevice(uint32_t usedBlocksOnly) override;

private:
    std::mutex m_mutex;  // the port and the names
    CSerialPort m_port;
    std::string m_portName;
    uint32_t m_baud = 0;
};
