// The simulated device: construction, locking, state, call counting and fault
// injection, and the host-only slots.
#include "host/sim/SimDevice.h"

#include <new>
#include <string_view>

namespace {

// Every interface operation by name; the call counters are preset for all of
// them so that counting a call never allocates.
const char* const kOperationNames[] = {
    "Reserved00", "Reserved01", "Reserved02", "Reserved03", "Reserved04",
    "Reserved05", "Reserved06", "Reserved07", "Reserved08", "Reserved09",
    "GetInfoString", "Lock", "Reserved12", "Unlock", "Reserved14", "GetState",
    "Reserved16", "Reserved17", "Reserved18", "Receive", "Transmit", "Reserved21",
    "Reserved22", "TransmitFileFromMemory", "Reserved24", "TransmitFile", "Reserved26",
    "ReadDirectory", "GetDirectoryEntryCount", "GetDirectoryEntry", "GetDirectoryInfo",
    "DeleteDeviceFile", "FormatDevice",
};

// The operations that can report an error, and so can take an injected fault.
const char* const kFaultableNames[] = {
    "Transmit",      "Receive",          "TransmitFile", "TransmitFileFromMemory",
    "ReadDirectory", "DeleteDeviceFile", "FormatDevice", "Lock",
};

}  // namespace

CSimDevice::CSimDevice() : CSimDevice(TConfig()) {}

CSimDevice::CSimDevice(const TConfig& config)
    : CHostChannel({SIMDEV_ERR_NOTSUPPORTED, SIMDEV_ERR_BADARGUMENT, SIMDEV_ERR_LOCKED,
                    SIMDEV_ERR_INTERNAL}),
      m_config(config) {
    if (m_config.blockCount == 0) m_config.blockCount = 1;
    if (m_config.blockSize == 0) m_config.blockSize = 1;
    m_blockFile.assign(m_config.blockCount, -1);
    m_blockMarked.assign(m_config.blockCount, false);
    m_freeBlocks = m_config.blockCount;
    for (const char* name : kOperationNames) m_calls[name] = 0;
}

void CSimDevice::CountCall(const char* operation) {
    auto it = m_calls.find(std::string_view(operation));
    if (it != m_calls.end()) ++it->second;
    ++m_totalCalls;
}

bool CSimDevice::CheckFault(const char* operation, int32_t* code) {
    CountCall(operation);
    uint64_t call = m_calls.find(std::string_view(operation))->second;
    auto range = m_faults.equal_range(std::string_view(operation));
    for (auto it = range.first; it != range.second; ++it) {
        if (it->second.atCall == call) {
            *code = it->second.code;
            m_faults.erase(it);
            return true;
        }
    }
    return false;
}

// --- host-only slots, lock and state --------------------------------------------

void CSimDevice::HostSlotCalled(const char* name) {
    std::lock_guard<std::mutex> g(m_mutex);
    CountCall(name);
}

int32_t CSimDevice::Lock(void* owner, uint32_t timeoutMs) {
    {
        std::lock_guard<std::mutex> g(m_mutex);
        int32_t code = 0;
        if (CheckFault("Lock", &code)) return code;
    }
    return CHostChannel::Lock(owner, timeoutMs);
}

void CSimDevice::Unlock(void* owner) {
    {
        std::lock_guard<std::mutex> g(m_mutex);
        CountCall("Unlock");
    }
    CHostChannel::Unlock(owner);
}

uint32_t CSimDevice::GetState() {
    std::lock_guard<std::mutex> g(m_mutex);
    CountCall("GetState");
    return m_state;
}

// --- controls ---------------------------------------------------------------------

void CSimDevice::SetState(uint32_t state) {
    std::lock_guard<std::mutex> g(m_mutex);
    m_state = state;
}

void CSimDevice::SetLoopback(bool on) {
    std::lock_guard<std::mutex> g(m_mutex);
    m_config.loopback = on;
}

void CSimDevice::SetStepDelay(uint32_t milliseconds) {
    std::lock_guard<std::mutex> g(m_mutex);
    m_stepDelayMs = milliseconds;
}

bool CSimDevice::InjectFault(const std::string& operation, uint32_t k, int32_t code) {
    bool faultable = false;
    for (const char* name : kFaultableNames)
        if (operation == name) faultable = true;
    if (!faultable || k == 0) return false;
    std::lock_guard<std::mutex> g(m_mutex);
    uint64_t now = m_calls.find(operation)->second;
    m_faults.emplace(operation, TFault{now + k, code});
    return true;
}

void CSimDevice::ClearFaults() {
    std::lock_guard<std::mutex> g(m_mutex);
    m_faults.clear();
}

uint64_t CSimDevice::CallCount(const std::string& operation) {
    std::lock_guard<std::mutex> g(m_mutex);
    auto it = m_calls.find(operation);
    return it == m_calls.end() ? 0 : it->second;
}

uint64_t CSimDevice::TotalCallCount() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_totalCalls;
}
