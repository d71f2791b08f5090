// Interrupts of a console program (Ctrl+C; on POSIX also SIGTERM), one
// implementation per platform (posix/: a sigwait watcher thread; win32/: a
// console control handler).
#pragma once

#include <mutex>

// The first interrupt calls stop(context), on a thread of its own where
// calling into the program's objects is safe; a second one ends the program
// at once (POSIX: status 128 + the signal, as a shell reports it). Call it
// before any other thread starts; stop null (before context goes away) leaves
// later interrupts nothing to call. Interrupts the environment ignores stay
// ignored.
void ConsoleStopOnInterrupt(void (*stop)(void*), void* context);

// The stop that an interrupt calls, shared by the platforms' watchers: set,
// cleared and called under one lock, so that it is never called after it
// was cleared.
class CConsoleInterrupt {
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
