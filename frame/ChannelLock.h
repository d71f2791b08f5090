// The channel's lock for one owner, released when the guard goes, whatever
// way the work after Lock ends (an early return, an out-of-memory unwind).
#pragma once

#include <cstdint>

#include "frame/OndDeviceComm.h"

class CChannelLock {
public:
    CChannelLock(COndDeviceComm_0* channel, void* owner, uint32_t timeoutMs)
        : m_channel(channel), m_owner(owner), m_held(channel->Lock(owner, timeoutMs) == 0) {}
    ~CChannelLock() { Release(); }
    CChannelLock(const CChannelLock&) = delete;
    CChannelLock& operator=(const CChannelLock&) = delete;

    bool Held() const { return m_held; }
    // Unlocks now, before something that must not run under the lock.
    void Release() {
        if (m_held) m_channel->Unlock(m_owner);
        m_held = false;
    }

private:
    COndDeviceComm_0* m_channel;
    void* m_owner;
    bool m_held;
};
