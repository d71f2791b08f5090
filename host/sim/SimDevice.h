// A simulated device behind the channel interface: what every test, dcsrun and
// the reference host use when no hardware is attached. Host-side code, not part
// of the module.
//
// Behaviour:
// - The lock and the host's own slots are CHostChannel's; the simulation
//   counts their calls too and can fail a Lock. Every operation is thread-safe.
// - Loopback: bytes given to Transmit are appended to the receive queue that
//   Receive drains. Tests may preload the queue or turn loopback off.
// - Storage: blockCount blocks of blockSize bytes (256 x 4096 by default).
//   Files are stored under their id (one file per id) with their type; mode 1
//   stores every byte bit-reversed, mode 2 loads the image into the program
//   slot instead of the directory; any other mode stores the bytes as they are.
//   A file of n bytes takes max(1, ceil(n / blockSize)) blocks: even an empty
//   file needs a block for its entry. A failed or aborted transfer leaves the
//   device as it was, including a file it would have replaced.
// - Blocks carry a "used" mark, set when a file is written to them and cleared
//   only when they are erased by a format. Deleting a file frees its blocks
//   (the directory counts them free) but they stay marked, so
//   FormatDevice(1) erases the blocks ever written since the last format and
//   keeps the program slot, while FormatDevice(0) erases every block and the
//   program slot.
// - While the state is not 1 every device operation fails with
//   SIMDEV_ERR_CLOSED; GetInfoString, Lock, Unlock, GetState and the directory
//   snapshot readers keep working.
// - Fault injection: the k-th call of a named operation fails with a code.
// - A talking device: after the queue, Receive can hand out a stream without
//   end (a pattern repeated), at a given rate or as fast as it is read.
// - A slow link: a step delay makes every transfer wait that long before each
//   of its progress steps (without holding the device's mutex).
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/channel/HostChannel.h"

// Error codes of the simulated device (texts from GetInfoString(2, code)).
enum : int32_t {
    SIMDEV_ERR_NONE = 0,
    SIMDEV_ERR_FILENOTFOUND = 1001,  // no file with that id on the device
    SIMDEV_ERR_STORAGEFULL = 1002,   // not enough free blocks
    SIMDEV_ERR_LOCALFILE = 1003,     // the local file cannot be opened or read
    SIMDEV_ERR_ABORTED = 1004,       // the progress callback asked to abort
    SIMDEV_ERR_INJECTED = 1005,      // default code of an injected fault
    SIMDEV_ERR_CLOSED = 1006,        // the channel is closed
    SIMDEV_ERR_NOTSUPPORTED = 1007,  // a host-only slot was called
    SIMDEV_ERR_BADARGUMENT = 1008,   // null buffer, zero steps and the like
    SIMDEV_ERR_LOCKED = 1009,        // another owner holds the lock
    SIMDEV_ERR_NOMEMORY = 1010,      // the simulation ran out of memory
    SIMDEV_ERR_INTERNAL = 1011,      // any other failure inside the simulation
};

// File modes the device knows.
enum : uint32_t {
    SIMDEV_MODE_NORMAL = 0,
    SIMDEV_MODE_BITREVERSE = 1,
    SIMDEV_MODE_PROGRAM = 2,
};

class CSimDevice : public CHostChannel {
public:
    struct TConfig {
        uint32_t blockCount = 256;  // 0 is taken as 1
        uint32_t blockSize = 4096;  // 0 is taken as 1
        bool loopback = true;
    };

    CSimDevice();
    explicit CSimDevice(const TConfig& config);

    // --- COndDeviceComm_0 ---------------------------------------------------
    // Fixed texts are string literals that never expire. The configuration line
    // and the text of an unknown code live in storage of the calling thread and
    // stay valid until that thread's next GetInfoString on any simulated device,
    // so concurrent callers never overwrite each other's text.
    const char* GetInfoString(uint32_t what, int64_t code) override;
    int32_t Lock(void* owner, uint32_t timeoutMs) override;
    void Unlock(void* owner) override;
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

    // --- test and runner controls ---------------------------------------------
    void SetState(uint32_t state);                 // 1 = open; anything else closes
    void SetLoopback(bool on);
    void SetStepDelay(uint32_t milliseconds);      // before each progress step; 0 = none
    void PreloadReceive(const std::string& bytes); // appended to the receive queue
    std::string TakeTransmitted();                 // everything sent since the last call
    size_t PendingReceive();
    uint64_t ReceiveBytesMoved();  // copying done to cut off the consumed front
    // From now on, once the receive queue is empty, Receive hands out
    // `pattern` over and over: bytesPerSecond of it become available as time
    // passes (0: as much as each Receive asks for, a device that never
    // stops). An empty pattern ends the stream.
    void SetReceiveStream(const std::string& pattern, uint64_t bytesPerSecond);
    uint64_t StreamBytesReceived();  // stream bytes Receive has handed out
    uint64_t StreamBacklog();        // available but not yet received (0 for "as fast as read")
    // The k-th (1-based) future call of `operation` (its name as in the
    // interface, e.g. "Transmit") fails with `code`: it does nothing else and
    // zeroes its out-values. k counts from now. Code 0 makes that call report
    // success without doing anything (a lost transfer). false for k = 0 or an
    // operation that cannot fail (void results, GetState, ...).
    bool InjectFault(const std::string& operation, uint32_t k,
                     int32_t code = SIMDEV_ERR_INJECTED);
    void ClearFaults();

    struct TStoredFile {
        uint8_t fileType = 0;
        std::string data;     // as stored (bit-reversed for mode 1)
        uint32_t blocks = 0;  // blocks the file occupies
    };
    bool GetStoredFile(uint8_t fileId, TStoredFile* file);
    bool HasProgram();
    std::string ProgramImage();  // the last image loaded with mode 2
    uint32_t FreeBlocks();
    uint32_t MarkedBlocks();     // blocks carrying the "used" mark
    uint64_t BlockErases();      // blocks erased by formats since construction

    // The arguments of the last transfer call that got past its fault check.
    struct TTransfer {
        std::string localPath;  // empty for TransmitFileFromMemory
        uint8_t fileId = 0;
        uint8_t fileType = 0;
        uint32_t fileMode = 0;
        uint32_t flag = 0;
        uint32_t steps = 0;
    };
    TTransfer LastTransfer();

    // LockOwner() and LockCount() come from CHostChannel.
    // Calls of an interface operation by its name, counted from construction,
    // whatever their outcome.
    uint64_t CallCount(const std::string& operation);
    uint64_t TotalCallCount();

private:
    struct TFileRecord {
        TStoredFile file;
        std::vector<uint32_t> blockList;
    };
    struct TFault {
        uint64_t atCall;
        int32_t code;
    };

    void HostSlotCalled(const char* name) override;
    // Counts the call; answers true with *code set when a fault is due.
    bool CheckFault(const char* operation, int32_t* code);  // under m_mutex
    void CountCall(const char* operation);                  // under m_mutex
    bool IsOpen() const { return m_state == 1; }
    int32_t Store(std::string data, uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                  TransferProgressCallback callback, void* context, uint32_t steps);
    int32_t CheckRoom(uint64_t bytes, uint32_t fileMode, uint8_t fileId) const;
    void Commit(std::string&& data, uint8_t fileId, uint8_t fileType, uint32_t fileMode);
    void FreeFile(uint8_t fileId);
    uint64_t BlocksFor(uint64_t bytes) const;
    uint64_t Capacity() const;
    void EraseAll(bool markedOnly);
    // Counts, checks faults and arguments, records the call; false when the
    // transfer ends here with *result.
    bool BeginTransfer(const char* operation, const char* localPath, bool haveData,
                       uint8_t fileId, uint8_t fileType, uint32_t fileMode, uint32_t flag,
                       uint32_t steps, int32_t* result);
    void AppendReceive(const char* data, size_t length);
    size_t ReadStream(char* buffer, uint32_t room);  // under m_mutex
    uint64_t StreamAvailable() const;                // under m_mutex

    TConfig m_config;
    std::mutex m_mutex;
    uint32_t m_state = 1;
    uint32_t m_stepDelayMs = 0;
    // Receive drains from m_receiveOffset on; the consumed front is cut off
    // only now and then, so draining a large queue in small reads stays linear.
    std::string m_receiveQueue;
    size_t m_receiveOffset = 0;
    uint64_t m_receiveBytesMoved = 0;  // bytes copied forward when cutting the front
    std::string m_streamPattern;       // empty: no stream
    uint64_t m_streamRate = 0;         // bytes per second; 0 = unlimited
    uint64_t m_streamSent = 0;
    std::chrono::steady_clock::time_point m_streamStart;
    std::string m_transmitted;
    std::map<uint8_t, TFileRecord> m_files;
    bool m_hasProgram = false;
    std::string m_programImage;
    std::vector<int> m_blockFile;     // file id per block, -1 = free
    std::vector<bool> m_blockMarked;  // "used" marks, as FormatDevice(1) sees them
    uint32_t m_freeBlocks = 0;
    uint64_t m_blockErases = 0;
    std::vector<TDEVDIRENTRY> m_directory;  // snapshot taken by ReadDirectory
    TDEVDIRINFO m_directoryInfo = {};
    TTransfer m_lastTransfer;
    std::map<std::string, uint64_t, std::less<>> m_calls;  // every name preset
    uint64_t m_totalCalls = 0;
    std::multimap<std::string, TFault, std::less<>> m_faults;
};
