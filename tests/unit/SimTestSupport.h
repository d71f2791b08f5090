// Pieces the tests against the simulated device share: storing a file
// without progress, reading one back, and the directory in one line.
#pragma once

#include <string>
#include <vector>

#include "host/sim/SimDevice.h"
#include "tests/unit/TestSupport.h"

// Stores bytes as file id of type, as one step of one transfer.
inline int32_t TestStore(CSimDevice* sim, uint8_t id, uint8_t type, const std::string& bytes,
                         uint32_t mode = 0) {
    return sim->TransmitFileFromMemory(bytes.data(), bytes.size(), id, type, mode, nullptr, nullptr, 1, 1);
}

// The stored file's bytes, or "<none>".
inline std::string TestStored(CSimDevice* sim, uint8_t id) {
    CSimDevice::TStoredFile f;
    return sim->GetStoredFile(id, &f) ? f.data : std::string("<none>");
}

// Entries as "id:type:size " words.
inline std::string TestEntries(const std::vector<TDEVDIRENTRY>& list) {
    std::string all;
    for (const TDEVDIRENTRY& e : list)
        all += std::to_string(e.fileId) + ":" + std::to_string(e.fileType) + ":" + std::to_string(e.fileSize) + " ";
    return all;
}

// The entries of the channel's last directory read.
inline std::string TestEntries(COndDeviceComm_0& channel) {
    std::vector<TDEVDIRENTRY> list(channel.GetDirectoryEntryCount());
    for (uint32_t i = 0; i < list.size(); ++i) channel.GetDirectoryEntry(i, &list[i]);
    return TestEntries(list);
}

// A directory summary as "freeFactorA freeFactorB fileCount bytesInFiles bytesOnDevice".
inline std::string TestDirInfo(const TDEVDIRINFO& i) {
    return std::to_string(i.freeFactorA) + " " + std::to_string(i.freeFactorB) + " " + std::to_string(i.fileCount) +
           " " + std::to_string(i.bytesInFiles) + " " + std::to_string(i.bytesOnDevice);
}

// The last transfer as "path id type mode flag steps".
inline std::string TestTransfer(CSimDevice* sim) {
    CSimDevice::TTransfer t = sim->LastTransfer();
    return t.localPath + " " + std::to_string(t.fileId) + " " + std::to_string(t.fileType) + " " +
           std::to_string(t.fileMode) + " " + std::to_string(t.flag) + " " + std::to_string(t.steps);
}
