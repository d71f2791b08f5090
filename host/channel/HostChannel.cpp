#include "host/channel/HostChannel.h"

#include <chrono>

namespace {
const uint32_t kWaitForever = 0xFFFFFFFF;
}  // namespace

int32_t CHostChannel::Lock(void* owner, uint32_t timeoutMs) {
    try {
        if (!owner) return m_codes.badArgument;
        std::unique_lock<std::mutex> guard(m_lockMutex);
        auto available = [&] { return m_lockOwner == nullptr || m_lockOwner == owner; };
        if (!available()) {
            if (timeoutMs == 0) return m_codes.locked;
            if (timeoutMs == kWaitForever) {
                m_lockFree.wait(guard, available);
            } else if (!m_lockFree.wait_for(guard, std::chrono::milliseconds(timeoutMs), available)) {
                return m_codes.locked;
            }
        }
        m_lockOwner = owner;
        ++m_lockCount;
        return 0;
    } catch (...) {
        return m_codes.internal;
    }
}

void CHostChannel::Unlock(void* owner) {
    bool released = false;
    {
        std::lock_guard<std::mutex> g(m_lockMutex);
        if (!owner || owner != m_lockOwner) return;
        if (--m_lockCount == 0) {
            m_lockOwner = nullptr;
            released = true;
        }
    }
    if (released) m_lockFree.notify_all();
}

void* CHostChannel::LockOwner() {
    std::lock_guard<std::mutex> g(m_lockMutex);
    return m_lockOwner;
}

uint32_t CHostChannel::LockCount() {
    std::lock_guard<std::mutex> g(m_lockMutex);
    return m_lockCount;
}
