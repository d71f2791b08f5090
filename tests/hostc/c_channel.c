/* A C implementation of the device channel's table of operations. */
#include "c_channel.h"

#include <string.h>

static const char* const kSlotNames[CCHAN_SLOTS] = {
    "Reserved00", "Reserved01", "Reserved02", "Reserved03", "Reserved04", "Reserved05",
    "Reserved06", "Reserved07", "Reserved08", "Reserved09", "GetInfoString", "Lock",
    "Reserved12", "Unlock", "Reserved14", "GetState", "Reserved16", "Reserved17",
    "Reserved18", "Receive", "Transmit", "Reserved21", "Reserved22",
    "TransmitFileFromMemory", "Reserved24", "TransmitFile", "Reserved26", "ReadDirectory",
    "GetDirectoryEntryCount", "GetDirectoryEntry", "GetDirectoryInfo", "DeleteDeviceFile",
    "FormatDevice"};

const char* CChannelSlotName(int slot) {
    return slot >= 0 && slot < CCHAN_SLOTS ? kSlotNames[slot] : "?";
}

static void Record(CChannel* c, int slot, int n, const uint64_t* args) {
    if (c->callCount >= 64) return;
    CChannelCall* call = &c->calls[c->callCount++];
    call->slot = slot;
    memset(call->args, 0, sizeof call->args);
    if (n > 0) memcpy(call->args, args, (size_t)n * sizeof *args);
}

/* Each reserved slot records its own index, so a shifted table shows. */
#define RESERVED(n)                                   \
    static int32_t Reserved##n(CChannel* c) {         \
        Record(c, n, 0, 0);                           \
        return -(n) - 1;                              \
    }
RESERVED(0) RESERVED(1) RESERVED(2) RESERVED(3) RESERVED(4) RESERVED(5) RESERVED(6)
RESERVED(7) RESERVED(8) RESERVED(9) RESERVED(12) RESERVED(14) RESERVED(16) RESERVED(17)
RESERVED(18) RESERVED(21) RESERVED(22) RESERVED(24) RESERVED(26)

static const char* GetInfoString(CChannel* c, uint32_t what, int64_t code) {
    uint64_t a[2] = {what, (uint64_t)code};
    Record(c, 10, 2, a);
    switch (what) {
        case 0: return "C channel";
        case 1: return "C configuration";
        default: return code == -7 ? "minus seven" : "C error";
    }
}

static int32_t Lock(CChannel* c, void* owner, uint32_t timeoutMs) {
    uint64_t a[2] = {(uint64_t)(uintptr_t)owner, timeoutMs};
    Record(c, 11, 2, a);
    if (c->lockDepth > 0 && c->lockOwner != owner) return 1;
    c->lockOwner = owner;
    c->lockDepth++;
    return 0;
}

static void Unlock(CChannel* c, void* owner) {
    uint64_t a[1] = {(uint64_t)(uintptr_t)owner};
    Record(c, 13, 1, a);
    if (c->lockDepth > 0 && c->lockOwner == owner && --c->lockDepth == 0) c->lockOwner = 0;
}

static uint32_t GetState(CChannel* c) {
    Record(c, 15, 0, 0);
    return 1;
}

static int32_t Receive(CChannel* c, char* buffer, uint32_t size, uint64_t* received) {
    uint64_t a[2] = {(uint64_t)(uintptr_t)buffer, size};
    Record(c, 19, 2, a);
    uint32_t n = c->rxLength < size ? c->rxLength : size;
    memcpy(buffer, c->rx, n);
    memmove(c->rx, c->rx + n, c->rxLength - n);
    c->rxLength -= n;
    *received = n;
    return 0;
}

static int32_t Transmit(CChannel* c, const char* data, uint64_t length, uint64_t* written) {
    uint64_t a[2] = {(uint64_t)(uintptr_t)data, length};
    Record(c, 20, 2, a);
    uint64_t room = sizeof c->tx - c->txLength;
    uint64_t n = length < room ? length : room;
    memcpy(c->tx + c->txLength, data, (size_t)n);
    c->txLength += (uint32_t)n;
    if (written) *written = n;
    return 0;
}

/* The progress steps of a transfer; the callback may abort it. */
static int32_t Steps(int32_t (*callback)(void*, uint32_t), void* context, uint32_t steps) {
    for (uint32_t i = 0; callback && i <= steps; ++i)
        if (callback(context, i)) return -2;
    return 0;
}

static int32_t TransmitFileFromMemory(CChannel* c, const char* data, uint64_t length,
                                      uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                                      int32_t (*callback)(void*, uint32_t), void* context,
                                      uint32_t flag, uint32_t steps) {
    uint64_t a[9] = {(uint64_t)(uintptr_t)data, length, fileId, fileType, fileMode,
                     (uint64_t)(uintptr_t)callback, (uint64_t)(uintptr_t)context, flag, steps};
    Record(c, 23, 9, a);
    return Steps(callback, context, steps);
}

static int32_t TransmitFile(CChannel* c, const char* path, uint8_t fileId, uint8_t fileType,
                            uint32_t fileMode, int32_t (*callback)(void*, uint32_t),
                            void* context, uint32_t flag, uint32_t steps) {
    uint64_t a[8] = {(uint64_t)(uintptr_t)path, fileId, fileType, fileMode,
                     (uint64_t)(uintptr_t)callback, (uint64_t)(uintptr_t)context, flag, steps};
    Record(c, 25, 8, a);
    return Steps(callback, context, steps);
}

static int32_t ReadDirectory(CChannel* c) {
    Record(c, 27, 0, 0);
    return 0;
}

static uint64_t GetDirectoryEntryCount(CChannel* c) {
    Record(c, 28, 0, 0);
    return 2;
}

typedef struct { uint8_t id, type; uint32_t size; } CDirEntry;
typedef struct { uint32_t a, b, files, bytes, onDisk; } CDirInfo;

static void GetDirectoryEntry(CChannel* c, uint32_t index, CDirEntry* entry) {
    uint64_t a[1] = {index};
    Record(c, 29, 1, a);
    *entry = (CDirEntry){(uint8_t)(10 + index), 3, 1000u * (index + 1)};
}

static void GetDirectoryInfo(CChannel* c, CDirInfo* info) {
    Record(c, 30, 0, 0);
    *info = (CDirInfo){250, 4096, 2, 3000, 8192};
}

static int32_t DeleteDeviceFile(CChannel* c, uint8_t fileId) {
    uint64_t a[1] = {fileId};
    Record(c, 31, 1, a);
    return 0;
}

static int32_t FormatDevice(CChannel* c, uint32_t usedOnly) {
    uint64_t a[1] = {usedOnly};
    Record(c, 32, 1, a);
    return 0;
}

static const void* const kVtbl[CCHAN_SLOTS] = {
    (const void*)Reserved0, (const void*)Reserved1, (const void*)Reserved2,
    (const void*)Reserved3, (const void*)Reserved4, (const void*)Reserved5,
    (const void*)Reserved6, (const void*)Reserved7, (const void*)Reserved8,
    (const void*)Reserved9, (const void*)GetInfoString, (const void*)Lock,
    (const void*)Reserved12, (const void*)Unlock, (const void*)Reserved14,
    (const void*)GetState, (const void*)Reserved16, (const void*)Reserved17,
    (const void*)Reserved18, (const void*)Receive, (const void*)Transmit,
    (const void*)Reserved21, (const void*)Reserved22, (const void*)TransmitFileFromMemory,
    (const void*)Reserved24, (const void*)TransmitFile, (const void*)Reserved26,
    (const void*)ReadDirectory, (const void*)GetDirectoryEntryCount,
    (const void*)GetDirectoryEntry, (const void*)GetDirectoryInfo,
    (const void*)DeleteDeviceFile, (const void*)FormatDevice};

void CChannelInit(CChannel* channel) {
    memset(channel, 0, sizeof *channel);
    channel->vtbl = kVtbl;
}
