// The stop that an interrupt calls, shared by the platforms' watchers: set,
// cleared and called under one lock, so that it is never called after it
// was cleared.
#pragma once

#include <mutex>

class CDcsInterrupt {
public:
    void Set(void (*stop)(void*), void* context) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = stop;
        m_context = context;
    }
    void Call() {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stop) m_stop(m_context);
    }

private:
    std::mutex m_mutex;
    void (*m_stop)(void*) = nullptr;
    void* m_context = nullptr;
};
