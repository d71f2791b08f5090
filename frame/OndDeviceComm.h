// The host's device channel as the module sees it.
//
// The host implements this interface; the module only calls it. The slot order
// is the binary contract with hosts built by other compilers, so the host's own
// operations that the module never calls keep their places as Reserved slots.
// Do not insert, remove or reorder anything here.
#pragma once

#include <cstddef>
#include <cstdint>

// One device directory entry, filled by the channel.
struct TDEVDIRENTRY {
    uint8_t fileId;
    uint8_t fileType;
    uint32_t fileSize;
};
static_assert(sizeof(TDEVDIRENTRY) == 8, "TDEVDIRENTRY layout");
static_assert(offsetof(TDEVDIRENTRY, fileSize) == 4, "TDEVDIRENTRY layout");

// Directory summary. Free bytes = freeFactorA * freeFactorB, in 64 bits.
struct TDEVDIRINFO {
    uint32_t freeFactorA;
    uint32_t freeFactorB;
    uint32_t fileCount;
    uint32_t bytesInFiles;
    uint32_t bytesOnDevice;
};
static_assert(sizeof(TDEVDIRINFO) == 20, "TDEVDIRINFO layout");

// Called by the channel during a transfer with stepsDone from 0 up to the step
// count given to the transfer; a non-zero answer asks the channel to abort.
typedef int32_t (*TransferProgressCallback)(void* context, uint32_t stepsDone);

// Kinds of text that GetInfoString answers.
enum : uint32_t {
    ONDCOMM_INFO_DESCRIPTION = 0,
    ONDCOMM_INFO_CONFIGURATION = 1,
    ONDCOMM_INFO_ERRORTEXT = 2,
};

class COndDeviceComm_0 {
public:
    // Slots 0..9: the host's own.
    virtual int32_t Reserved00() = 0;
    virtual int32_t Reserved01() = 0;
    virtual int32_t Reserved02() = 0;
    virtual int32_t Reserved03() = 0;
    virtual int32_t Reserved04() = 0;
    virtual int32_t Reserved05() = 0;
    virtual int32_t Reserved06() = 0;
    virtual int32_t Reserved07() = 0;
    virtual int32_t Reserved08() = 0;
    virtual int32_t Reserved09() = 0;
    // Slot 10. The text is owned by the channel, valid until its next call.
    virtual const char* GetInfoString(uint32_t what, int64_t code) = 0;
    // Slot 11. 0 = reserved for owner; re-entrant for the owner that holds it.
    virtual int32_t Lock(void* owner, uint32_t timeoutMs) = 0;
    virtual int32_t Reserved12() = 0;
    // Slot 13.
    virtual void Unlock(void* owner) = 0;
    virtual int32_t Reserved14() = 0;
    // Slot 15. 1 = open, anything else = closed.
    virtual uint32_t GetState() = 0;
    virtual int32_t Reserved16() = 0;
    virtual int32_t Reserved17() = 0;
    virtual int32_t Reserved18() = 0;
    // Slot 19.
    virtual int32_t Receive(char* buffer, uint32_t bufferSize, uint64_t* received) = 0;
    // Slot 20.
    virtual int32_t Transmit(const char* data, uint64_t length, uint64_t* written) = 0;
    virtual int32_t Reserved21() = 0;
    virtual int32_t Reserved22() = 0;
    // Slot 23.
    virtual int32_t TransmitFileFromMemory(const char* data, uint64_t length, uint8_t fileId,
                                           uint8_t fileType, uint32_t fileMode,
                                           TransferProgressCallback callback, void* context,
                                           uint32_t flag, uint32_t steps) = 0;
    virtual int32_t Reserved24() = 0;
    // Slot 25.
    virtual int32_t TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType,
                                 uint32_t fileMode, TransferProgressCallback callback,
                                 void* context, uint32_t flag, uint32_t steps) = 0;
    virtual int32_t Reserved26() = 0;
    // Slots 27..32.
    virtual int32_t ReadDirectory() = 0;
    virtual uint64_t GetDirectoryEntryCount() = 0;
    virtual void GetDirectoryEntry(uint32_t index, TDEVDIRENTRY* entry) = 0;
    virtual void GetDirectoryInfo(TDEVDIRINFO* info) = 0;
    virtual int32_t DeleteDeviceFile(uint8_t fileId) = 0;
    virtual int32_t FormatDevice(uint32_t usedBlocksOnly) = 0;
};

// Values the module passes to the transfer operations.
enum : uint32_t {
    ONDCOMM_TRANSFER_FLAG = 1,
    ONDCOMM_STEPS_FILEMANAGER = 100,
    ONDCOMM_STEPS_SCRIPT = 40,
    ONDCOMM_LOCK_USER_MS = 500,
    ONDCOMM_LOCK_POLL_MS = 0,
};
