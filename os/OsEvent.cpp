// COsEvent: std::mutex and std::condition_variable exist on both platforms.
#include <chrono>

#include "os/Platform.h"

void COsEvent::Set() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_set = true;
    m_cond.notify_all();
}

void COsEvent::Reset() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_set = false;
}

bool COsEvent::Wait(uint32_t timeoutMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (timeoutMs == 0xFFFFFFFFu) {
        m_cond.wait(lock, [this] { return m_set.load(); });
        return true;
    }
    return m_cond.wait_for(lock, std::chrono::milliseconds(timeoutMs), [this] { return m_set.load(); });
}
