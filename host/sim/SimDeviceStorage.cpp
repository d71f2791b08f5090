// The simulated device's storage: file transfers, directory, delete, format.
#include <chrono>
#include <thread>

#include "host/sim/SimDevice.h"
#include "util/OutOfMemory.h"
#include "util/WholeFile.h"

namespace {

uint8_t ReverseBits(uint8_t b) {
    b = static_cast<uint8_t>((b & 0xF0) >> 4 | (b & 0x0F) << 4);
    b = static_cast<uint8_t>((b & 0xCC) >> 2 | (b & 0x33) << 2);
    b = static_cast<uint8_t>((b & 0xAA) >> 1 | (b & 0x55) << 1);
    return b;
}

uint32_t Clamp32(uint64_t value) {
    return value > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<uint32_t>(value);
}

}  // namespace

uint64_t CSimDevice::BlocksFor(uint64_t bytes) const {
    if (bytes == 0) return 1;  // the entry itself needs a block
    return (bytes - 1) / m_config.blockSize + 1;
}

uint64_t CSimDevice::Capacity() const {
    return static_cast<uint64_t>(m_config.blockCount) * m_config.blockSize;
}

int32_t CSimDevice::CheckRoom(uint64_t bytes, uint32_t fileMode, uint8_t fileId) const {
    if (fileMode == SIMDEV_MODE_PROGRAM)  // the program slot is as large as the storage
        return bytes > Capacity() ? SIMDEV_ERR_STORAGEFULL : SIMDEV_ERR_NONE;
    if (bytes > 0xFFFFFFFFu) return SIMDEV_ERR_STORAGEFULL;  // sizes are 32 bits
    uint64_t available = m_freeBlocks;
    auto old = m_files.find(fileId);
    if (old != m_files.end()) available += old->second.blockList.size();  // replaced
    return BlocksFor(bytes) > available ? SIMDEV_ERR_STORAGEFULL : SIMDEV_ERR_NONE;
}

void CSimDevice::FreeFile(uint8_t fileId) {
    auto it = m_files.find(fileId);
    if (it == m_files.end()) return;
    for (uint32_t block : it->second.blockList) m_blockFile[block] = -1;
    m_freeBlocks += static_cast<uint32_t>(it->second.blockList.size());
    m_files.erase(it);
}

// Under m_mutex, after CheckRoom said yes. Everything that can throw happens
// before the first change, so a failure leaves the device as it was.
void CSimDevice::Commit(std::string&& data, uint8_t fileId, uint8_t fileType,
                        uint32_t fileMode) {
    if (fileMode == SIMDEV_MODE_PROGRAM) {
        m_programImage.swap(data);
        m_hasProgram = true;
        return;
    }
    TFileRecord record;
    uint64_t needed = BlocksFor(data.size());
    record.blockList.reserve(needed);
    // Erased blocks first, then freed ones that still carry their mark.
    for (int pass = 0; pass < 2 && record.blockList.size() < needed; ++pass) {
        bool wantMarked = pass == 1;
        for (uint32_t b = 0; b < m_config.blockCount && record.blockList.size() < needed; ++b) {
            bool available = m_blockFile[b] == -1 || m_blockFile[b] == fileId;
            if (available && m_blockMarked[b] == wantMarked) record.blockList.push_back(b);
        }
    }
    record.file.fileType = fileType;
    record.file.blocks = static_cast<uint32_t>(needed);
    record.file.data.swap(data);
    auto slot = m_files.try_emplace(fileId).first;  // the last step that may throw

    // A file replaced under the same id gives its blocks back first.
    for (uint32_t block : slot->second.blockList) m_blockFile[block] = -1;
    m_freeBlocks += static_cast<uint32_t>(slot->second.blockList.size());
    for (uint32_t block : record.blockList) {
        m_blockFile[block] = fileId;
        m_blockMarked[block] = true;
    }
    m_freeBlocks -= static_cast<uint32_t>(needed);
    slot->second = std::move(record);
}

bool CSimDevice::BeginTransfer(const char* operation, const char* localPath, bool haveData,
                               uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                               uint32_t flag, uint32_t steps, int32_t* result) {
    *result = SIMDEV_ERR_NONE;
    if (CheckFault(operation, result)) return false;
    m_lastTransfer.localPath = localPath ? localPath : "";
    m_lastTransfer.fileId = fileId;
    m_lastTransfer.fileType = fileType;
    m_lastTransfer.fileMode = fileMode;
    m_lastTransfer.flag = flag;  // the meaning of flag is ours; it changes nothing here
    m_lastTransfer.steps = steps;
    if (!haveData || steps == 0)
        *result = SIMDEV_ERR_BADARGUMENT;
    else if (!IsOpen())
        *result = SIMDEV_ERR_CLOSED;
    return *result == SIMDEV_ERR_NONE;
}

int32_t CSimDevice::Store(std::string data, uint8_t fileId, uint8_t fileType,
                          uint32_t fileMode, TransferProgressCallback callback, void* context,
                          uint32_t steps) {
    if (fileMode == SIMDEV_MODE_BITREVERSE)
        for (char& c : data) c = static_cast<char>(ReverseBits(static_cast<uint8_t>(c)));
    uint32_t delayMs;
    {
        std::lock_guard<std::mutex> g(m_mutex);
        if (int32_t code = CheckRoom(data.size(), fileMode, fileId)) return code;
        delayMs = m_stepDelayMs;
    }
    // The callback runs without our mutex: it may well call the channel again.
    for (uint64_t step = 0; step <= steps; ++step) {
        if (delayMs) std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        if (callback && callback(context, static_cast<uint32_t>(step)) != 0)
            return SIMDEV_ERR_ABORTED;
    }
    std::lock_guard<std::mutex> g(m_mutex);
    if (!IsOpen()) return SIMDEV_ERR_CLOSED;  // closed during the transfer
    // Another thread may have filled the storage meanwhile.
    if (int32_t code = CheckRoom(data.size(), fileMode, fileId)) return code;
    Commit(std::move(data), fileId, fileType, fileMode);
    return SIMDEV_ERR_NONE;
}

int32_t CSimDevice::TransmitFileFromMemory(const char* data, uint64_t length, uint8_t fileId,
                                           uint8_t fileType, uint32_t fileMode,
                                           TransferProgressCallback callback, void* context,
                                           uint32_t flag, uint32_t steps) {
    return ondutil::CatchAll<int32_t>(SIMDEV_ERR_NOMEMORY, SIMDEV_ERR_INTERNAL, [&]() -> int32_t {
        int32_t result;
        {
            std::lock_guard<std::mutex> g(m_mutex);
            if (!BeginTransfer("TransmitFileFromMemory", nullptr, data != nullptr || length == 0,
                               fileId, fileType, fileMode, flag, steps, &result))
                return result;
        }
        if (length > 0xFFFFFFFFu) return SIMDEV_ERR_STORAGEFULL;  // before copying it all
        std::string bytes;
        if (length != 0) bytes.assign(data, static_cast<size_t>(length));
        return Store(std::move(bytes), fileId, fileType, fileMode, callback, context, steps);
    });
}

int32_t CSimDevice::TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType,
                                 uint32_t fileMode, TransferProgressCallback callback,
                                 void* context, uint32_t flag, uint32_t steps) {
    return ondutil::CatchAll<int32_t>(SIMDEV_ERR_NOMEMORY, SIMDEV_ERR_INTERNAL, [&]() -> int32_t {
        int32_t result;
        {
            std::lock_guard<std::mutex> g(m_mutex);
            if (!BeginTransfer("TransmitFile", localPath, localPath != nullptr, fileId,
                               fileType, fileMode, flag, steps, &result))
                return result;
        }
        std::string bytes;
        if (ondutil::ReadWholeFile(localPath, &bytes) != ondutil::WHOLEFILE_OK) return SIMDEV_ERR_LOCALFILE;
        return Store(std::move(bytes), fileId, fileType, fileMode, callback, context, steps);
    });
}

// --- directory --------------------------------------------------------------------

int32_t CSimDevice::ReadDirectory() {
    return ondutil::CatchAll<int32_t>(SIMDEV_ERR_NOMEMORY, SIMDEV_ERR_INTERNAL, [&]() -> int32_t {
        std::lock_guard<std::mutex> g(m_mutex);
        // A failed read leaves no stale listing behind.
        m_directory.clear();
        m_directoryInfo = TDEVDIRINFO{};
        int32_t code = 0;
        if (CheckFault("ReadDirectory", &code)) return code;
        if (!IsOpen()) return SIMDEV_ERR_CLOSED;
        std::vector<TDEVDIRENTRY> entries;
        entries.reserve(m_files.size());
        uint64_t bytesInFiles = 0, blocksUsed = 0;
        for (const auto& [id, record] : m_files) {  // std::map: ordered by id
            TDEVDIRENTRY entry = {};
            entry.fileId = id;
            entry.fileType = record.file.fileType;
            entry.fileSize = static_cast<uint32_t>(record.file.data.size());
            entries.push_back(entry);
            bytesInFiles += record.file.data.size();
            blocksUsed += record.blockList.size();
        }
        m_directory.swap(entries);
        m_directoryInfo.freeFactorA = m_freeBlocks;
        m_directoryInfo.freeFactorB = m_config.blockSize;
        m_directoryInfo.fileCount = static_cast<uint32_t>(m_directory.size());
        m_directoryInfo.bytesInFiles = Clamp32(bytesInFiles);
        m_directoryInfo.bytesOnDevice = Clamp32(blocksUsed * m_config.blockSize);
        return SIMDEV_ERR_NONE;
    });
}

uint64_t CSimDevice::GetDirectoryEntryCount() {
    std::lock_guard<std::mutex> g(m_mutex);
    CountCall("GetDirectoryEntryCount");
    return m_directory.size();
}

void CSimDevice::GetDirectoryEntry(uint32_t index, TDEVDIRENTRY* entry) {
    std::lock_guard<std::mutex> g(m_mutex);
    CountCall("GetDirectoryEntry");
    if (entry == nullptr) return;
    *entry = index < m_directory.size() ? m_directory[index] : TDEVDIRENTRY{};
}

void CSimDevice::GetDirectoryInfo(TDEVDIRINFO* info) {
    std::lock_guard<std::mutex> g(m_mutex);
    CountCall("GetDirectoryInfo");
    if (info != nullptr) *info = m_directoryInfo;
}

// --- delete and format ------------------------------------------------------------

int32_t CSimDevice::DeleteDeviceFile(uint8_t fileId) {
    std::lock_guard<std::mutex> g(m_mutex);
    int32_t code = 0;
    if (CheckFault("DeleteDeviceFile", &code)) return code;
    if (!IsOpen()) return SIMDEV_ERR_CLOSED;
    if (m_files.find(fileId) == m_files.end()) return SIMDEV_ERR_FILENOTFOUND;
    FreeFile(fileId);  // its blocks keep their "used" mark until a format
    return SIMDEV_ERR_NONE;
}

void CSimDevice::EraseAll(bool markedOnly) {
    m_files.clear();
    for (uint32_t b = 0; b < m_config.blockCount; ++b) {
        if (markedOnly && !m_blockMarked[b]) continue;
        m_blockMarked[b] = false;
        ++m_blockErases;
    }
    m_blockFile.assign(m_config.blockCount, -1);
    m_freeBlocks = m_config.blockCount;
    if (!markedOnly) {  // the program slot lies outside the blocks a quick format visits
        m_programImage.clear();
        m_hasProgram = false;
    }
}

int32_t CSimDevice::FormatDevice(uint32_t usedBlocksOnly) {
    std::lock_guard<std::mutex> g(m_mutex);
    int32_t code = 0;
    if (CheckFault("FormatDevice", &code)) return code;
    if (!IsOpen()) return SIMDEV_ERR_CLOSED;
    EraseAll(usedBlocksOnly != 0);  // any non-zero value asks for the quick format
    return SIMDEV_ERR_NONE;
}

// --- controls ---------------------------------------------------------------------

bool CSimDevice::GetStoredFile(uint8_t fileId, TStoredFile* file) {
    std::lock_guard<std::mutex> g(m_mutex);
    auto it = m_files.find(fileId);
    if (it == m_files.end()) return false;
    if (file) *file = it->second.file;
    return true;
}

bool CSimDevice::HasProgram() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_hasProgram;
}

std::string CSimDevice::ProgramImage() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_programImage;
}

uint32_t CSimDevice::FreeBlocks() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_freeBlocks;
}

uint32_t CSimDevice::MarkedBlocks() {
    std::lock_guard<std::mutex> g(m_mutex);
    uint32_t marked = 0;
    for (bool m : m_blockMarked) marked += m ? 1 : 0;
    return marked;
}

uint64_t CSimDevice::BlockErases() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_blockErases;
}

CSimDevice::TTransfer CSimDevice::LastTransfer() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_lastTransfer;
}
