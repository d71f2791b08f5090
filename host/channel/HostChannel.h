// What every host-side channel shares (host code, not the module's): the
// host's own slots, which the module never calls, and the channel lock, per
// owner and re-entrant with a count. Another owner waits up to its timeout
// (0 = try once, 0xFFFFFFFF = forever); a null owner is refused (null means
// "unlocked"); Unlock by anyone but the holder is ignored.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "frame/OndDeviceComm.h"

class CHostChannel : public COndDeviceComm_0 {
public:
    // The derived channel's codes for what the base answers itself.
    struct TCodes {
        int32_t notSupported;  // a host-only slot was called
        int32_t badArgument;   // Lock with a null owner
        int32_t locked;        // another owner held the lock for the whole wait
        int32_t internal;      // anything else that went wrong
    };

    explicit CHostChannel(const TCodes& codes) : m_codes(codes) {}
    CHostChannel(const CHostChannel&) = delete;
    CHostChannel& operator=(const CHostChannel&) = delete;
    virtual ~CHostChannel() = default;

    int32_t Lock(void* owner, uint32_t timeoutMs) override;
    void Unlock(void* owner) override;

// The host's own slots: each answers codes.notSupported.
#define OND_HOST_SLOT(n) \
    int32_t Reserved##n() override { return HostSlot("Reserved" #n); }
    OND_HOST_SLOT(00) OND_HOST_SLOT(01) OND_HOST_SLOT(02) OND_HOST_SLOT(03) OND_HOST_SLOT(04)
    OND_HOST_SLOT(05) OND_HOST_SLOT(06) OND_HOST_SLOT(07) OND_HOST_SLOT(08) OND_HOST_SLOT(09)
    OND_HOST_SLOT(12) OND_HOST_SLOT(14) OND_HOST_SLOT(16) OND_HOST_SLOT(17) OND_HOST_SLOT(18)
    OND_HOST_SLOT(21) OND_HOST_SLOT(22) OND_HOST_SLOT(24) OND_HOST_SLOT(26)
#undef OND_HOST_SLOT

    void* LockOwner();  // null when unlocked
    uint32_t LockCount();

protected:
    // Each host-only slot passes here with its name ("Reserved00"); a channel
    // that counts calls counts it here.
    virtual void HostSlotCalled(const char* name) {}

private:
    int32_t HostSlot(const char* name) {
        HostSlotCalled(name);
        return m_codes.notSupported;
    }

    TCodes m_codes;
    std::mutex m_lockMutex;
    std::condition_variable m_lockFree;
    void* m_lockOwner = nullptr;
    uint32_t m_lockCount = 0;
};
