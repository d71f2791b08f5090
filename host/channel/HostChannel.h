// The part every host-side channel shares: the host's own slots, which the
// module never calls, and the channel lock. Host-side code, not part of the
// module.
//
// The lock is per owner and re-entrant with a count, as the module needs: the
// Script Processor and the File Manager lock again while they hold it. Another
// owner waits up to its timeout (0 = try once, 0xFFFFFFFF = forever). A null
// owner is refused (null means "unlocked"); Unlock by anyone but the holder is
// ignored.
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

    int32_t Reserved00() override;
    int32_t Reserved01() override;
    int32_t Reserved02() override;
    int32_t Reserved03() override;
    int32_t Reserved04() override;
    int32_t Reserved05() override;
    int32_t Reserved06() override;
    int32_t Reserved07() override;
    int32_t Reserved08() override;
    int32_t Reserved09() override;
    int32_t Lock(void* owner, uint32_t timeoutMs) override;
    int32_t Reserved12() override;
    void Unlock(void* owner) override;
    int32_t Reserved14() override;
    int32_t Reserved16() override;
    int32_t Reserved17() override;
    int32_t Reserved18() override;
    int32_t Reserved21() override;
    int32_t Reserved22() override;
    int32_t Reserved24() override;
    int32_t Reserved26() override;

    void* LockOwner();  // null when unlocked
    uint32_t LockCount();

protected:
    // Each host-only slot passes here with its name ("Reserved00") before it
    // answers codes.notSupported; a channel that counts calls counts it here.
    virtual void HostSlotCalled(const char* name) {}

private:
    int32_t HostSlot(const char* name);

    TCodes m_codes;
    std::mutex m_lockMutex;
    std::condition_variable m_lockFree;
    void* m_lockOwner = nullptr;
    uint32_t m_lockCount = 0;
};
