// The module's view of the channel (COndDeviceComm_0) calling a channel
// written in C: every operation must land in the C table's slot of the same
// name, with its arguments intact. A shifted or reordered declaration fails.
#include <cstdio>
#include <cstring>

#include "frame/OndDeviceComm.h"

extern "C" {
#include "c_channel.h"
}
#include "check.h"

static CChannel channel;

static const CChannelCall& Last() { return channel.calls[channel.callCount - 1]; }

// The last call landed in that slot of the C table.
static bool Called(int slot) {
    bool ok = channel.callCount > 0 && Last().slot == slot;
    if (!ok)
        std::printf("expected a call of %s, the C table saw %s\n", CChannelSlotName(slot),
                    channel.callCount ? CChannelSlotName(Last().slot) : "nothing");
    return ok;
}

static int32_t Progress(void* context, uint32_t step) {
    *static_cast<uint32_t*>(context) = step;
    return step == 3;  // abort at step 3
}

int main() {
    CChannelInit(&channel);
    COndDeviceComm_0* comm = reinterpret_cast<COndDeviceComm_0*>(&channel);
    int owner = 0;

    int32_t (COndDeviceComm_0::*reserved[])() = {
        &COndDeviceComm_0::Reserved00, &COndDeviceComm_0::Reserved01, &COndDeviceComm_0::Reserved02,
        &COndDeviceComm_0::Reserved03, &COndDeviceComm_0::Reserved04, &COndDeviceComm_0::Reserved05,
        &COndDeviceComm_0::Reserved06, &COndDeviceComm_0::Reserved07, &COndDeviceComm_0::Reserved08,
        &COndDeviceComm_0::Reserved09, &COndDeviceComm_0::Reserved12, &COndDeviceComm_0::Reserved14,
        &COndDeviceComm_0::Reserved16, &COndDeviceComm_0::Reserved17, &COndDeviceComm_0::Reserved18,
        &COndDeviceComm_0::Reserved21, &COndDeviceComm_0::Reserved22, &COndDeviceComm_0::Reserved24,
        &COndDeviceComm_0::Reserved26};
    const int reservedSlots[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 14, 16, 17, 18, 21, 22, 24, 26};
    for (size_t i = 0; i < sizeof reservedSlots / sizeof reservedSlots[0]; ++i)
        CHECK((comm->*reserved[i])() == -reservedSlots[i] - 1 && Called(reservedSlots[i]));

    CHECK(std::strcmp(comm->GetInfoString(0, 0), "C channel") == 0 && Called(10));
    CHECK(std::strcmp(comm->GetInfoString(2, -7), "minus seven") == 0);  // sign-widened code
    CHECK(Last().args[0] == 2 && (int64_t)Last().args[1] == -7);

    CHECK(comm->Lock(&owner, 500) == 0 && Called(11));
    CHECK(Last().args[0] == (uint64_t)(uintptr_t)&owner && Last().args[1] == 500);
    comm->Unlock(&owner);
    CHECK(Called(13) && channel.lockDepth == 0);

    CHECK(comm->GetState() == 1 && Called(15));

    uint64_t written = 0;
    CHECK(comm->Transmit("abc\0d", 5, &written) == 0 && Called(20));
    CHECK(written == 5 && std::memcmp(channel.tx, "abc\0d", 5) == 0);

    std::memcpy(channel.rx, "xyz", 3);
    channel.rxLength = 3;
    char buffer[8];
    uint64_t received = 0;
    CHECK(comm->Receive(buffer, 2, &received) == 0 && Called(19));
    CHECK(received == 2 && Last().args[1] == 2 && std::memcmp(buffer, "xy", 2) == 0);

    uint32_t lastStep = 0;
    CHECK(comm->TransmitFileFromMemory("data", 4, 0x12, 0x34, 2, Progress, &lastStep, 1, 40) != 0 && Called(23));
    CHECK(Last().args[1] == 4 && Last().args[2] == 0x12 && Last().args[3] == 0x34 &&
          Last().args[4] == 2 && Last().args[7] == 1 && Last().args[8] == 40);
    CHECK(lastStep == 3);  // the callback ran until it asked to abort

    CHECK(comm->TransmitFile("C:\\x.bin", 7, 8, 1, nullptr, nullptr, 1, 100) == 0 && Called(25));
    CHECK(std::strcmp((const char*)(uintptr_t)Last().args[0], "C:\\x.bin") == 0);
    CHECK(Last().args[1] == 7 && Last().args[2] == 8 && Last().args[3] == 1 &&
          Last().args[6] == 1 && Last().args[7] == 100);

    CHECK(comm->ReadDirectory() == 0 && Called(27));
    CHECK(comm->GetDirectoryEntryCount() == 2 && Called(28));
    TDEVDIRENTRY entry;
    comm->GetDirectoryEntry(1, &entry);
    CHECK(Called(29) && entry.fileId == 11 && entry.fileType == 3 && entry.fileSize == 2000);
    TDEVDIRINFO info;
    comm->GetDirectoryInfo(&info);
    CHECK(Called(30) && info.freeFactorA == 250 && info.freeFactorB == 4096 && info.fileCount == 2 &&
          info.bytesInFiles == 3000 && info.bytesOnDevice == 8192);
    CHECK(comm->DeleteDeviceFile(200) == 0 && Called(31) && Last().args[0] == 200);
    CHECK(comm->FormatDevice(1) == 0 && Called(32) && Last().args[0] == 1);

    std::printf("%d passed, %d failed\n", passed, failed);
    return failed != 0;
}
