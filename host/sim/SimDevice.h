// A simulated device behind the channel interface: what every test, dcsrun and
// the reference host use when no hardware is attached. Host-side code, not part
// of the module.
//
// Behaviour:
// - Lock is per owner and re-entrant with a count; another owner waits up to
//   the timeout. Every operation is thread-safe.
// - Loopback: bytes given to Transmit are appended to the receive queue that
//   Receive drains. Tests may preload the queue or turn loopback off.
// - Storage: blockCount blocks of blockSize bytes (256 x 4096 by default).
//   Files are stored under their id (one file per id) with their type; mode 1
//   stores every byte bit-reversed, mode 2 loads the image into the program
//   slot instead of the directory.
// - Fault injection: the k-th call of a named operation fails with a code.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"

// Error codes of the simulated device (texts from GetInfoString(2, code)).
enum : int32_t {
    SIMDEV_ERR_NONE = 0,
    SIMDEV_ERR_FILENOTFOUND = 1001,    // no file with that id on the device
    SIMDEV_ERR_STORAGEFULL = 1002,     // not enough free blocks
    SIMDEV_ERR_LOCALFILE = 1003,       // the local file cannot be opened or read
    SIMDEV_ERR_ABORTED = 1004,         // the progress callback asked to abort
    SIMDEV_ERR_INJECTED = 1005,        // default code of an injected fault
    SIMDEV_ERR_CLOSED = 1006,          // the channel is closed
    SIMDEV_ERR_NOTSUPPORTED = 1007,    // a host-only slot was called
    SIMDEV_ERR_NODIRECTORY = 1008,     // directory queried before ReadDirectory
    SIMDEV_ERR_BADARGUMENT = 1009,     // null buffer, zero steps and the like
};

class CSimDevice : public COndDeviceComm_0 {
public:
    struct TConfig {
        uint32_t blockCount = 256;
        uint32_t blockSize = 4096;
        bool loopback = true;
    };

    CSimDevice();
    explicit CSimDevice(const TConfig& config);

    // --- COndDeviceComm_0 ---------------------------------------------------
    int32_t Reserved00() override;
    int32_t Reserved01() override;
    int32_t Reserved02() override;
    int32_t Reserved03() override;
    int32_t Reserved04() override;
    int32_t Reserved05() override;
    int32_t Reserved06() override;
    int32_t Reserved07() override;
    int32_t Reserved08() override;
    int32_t Reserved09() override;
    const char* GetInfoString(uint32_t what, int64_t code) override;
    int32_t Lock(void* owner, uint32_t timeoutMs) override;
    int32_t Reserved12() override;
    void Unlock(void* owner) override;
    int32_t Reserved14() override;
    uint32_t GetState() override;
    int32_t Reserved16() override;
    int32_t Reserved17() override;
    int32_t Reserved18() override;
    int32_t Receive(char* buffer, uint32_t bufferSize, uint64_t* received) override;
    int32_t Transmit(const char* data, uint64_t length, uint64_t* written) override;
    int32_t Reserved21() override;
    int32_t Reserved22() override;
    int32_t TransmitFileFromMemory(const char* data, uint64_t length, uint8_t fileId,
                                   uint8_t fileType, uint32_t fileMode,
                                   TransferProgressCallback callback, void* context,
                                   uint32_t flag, uint32_t steps) override;
    int32_t Reserved24() override;
    int32_t TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType,
                         uint32_t fileMode, TransferProgressCallback callback, void* context,
                         uint32_t flag, uint32_t steps) override;
    int32_t Reserved26() override;
    int32_t ReadDirectory() override;
    uint64_t GetDirectoryEntryCount() override;
    void GetDirectoryEntry(uint32_t index, TDEVDIRENTRY* entry) override;
    void GetDirectoryInfo(TDEVDIRINFO* info) override;
    int32_t DeleteDeviceFile(uint8_t fileId) override;
    int32_t FormatDevice(uint32_t usedBlocksOnly) override;

    // --- test and runner controls ---------------------------------------------
    void SetState(uint32_t state);                 // 1 = open; anything else closes
    void SetLoopback(bool on);
    void PreloadReceive(const std::string& bytes); // appended to the receive queue
    std::string TakeTransmitted();                 // everything sent since the last call
    size_t PendingReceive();
    // The k-th (1-based) future call of `operation` (its name as in the
    // interface, e.g. "Transmit") fails with `code`. k counts from now.
    void InjectFault(const std::string& operation, uint32_t k, int32_t code = SIMDEV_ERR_INJECTED);
    void ClearFaults();

    struct TStoredFile {
        uint8_t fileType = 0;
        std::string data;  // as stored (bit-reversed for mode 1)
    };
    bool GetStoredFile(uint8_t fileId, TStoredFile* file);
    std::string ProgramImage();  // the last image loaded with mode 2
    uint32_t FreeBlocks();
    void* LockOwner();           // null when unlocked
    uint32_t LockCount();
    uint64_t CallCount(const std::string& operation);

private:
    int32_t CheckFault(const char* operation);  // under m_mutex; counts the call
    int32_t Store(const std::string& data, uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                  TransferProgressCallback callback, void* context, uint32_t steps);
    uint32_t BlocksFor(uint64_t bytes) const;
    uint32_t UsedBlocks() const;

    TConfig m_config;
    std::mutex m_mutex;
    std::condition_variable m_lockFree;
    void* m_lockOwner = nullptr;
    uint32_t m_lockCount = 0;
    uint32_t m_state = 1;
    std::string m_receiveQueue;
    std::string m_transmitted;
    std::map<uint8_t, TStoredFile> m_files;
    std::string m_programImage;
    std::vector<TDEVDIRENTRY> m_directory;  // snapshot taken by ReadDirectory
    bool m_directoryRead = false;
    std::vector<bool> m_blockUsed;          // "used" marks, as FormatDevice(1) sees them
    std::map<std::string, uint64_t> m_calls;
    struct TFault {
        uint64_t atCall;
        int32_t code;
    };
    std::multimap<std::string, TFault> m_faults;
    std::string m_infoText;  // storage behind GetInfoString's answer
};
