// What the portable core needs from the operating system. Two implementations:
// os/win32 and os/posix. Nothing else in the core includes a platform header.
//
// Paths in the core follow the module's backslash rules. The POSIX side maps
// them at the last moment: a drive prefix "X:" stands for the root "/" (as
// under Wine, where Z: is the Unix root) and backslashes become slashes, so
// scripts and job files written for Windows run on Linux unchanged.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

// fopen with the module's path rules. mode as for fopen ("rb", "wb", ...).
FILE* OsOpenFile(const char* path, const char* mode);

// Atomically puts the file at tempPath in place of destPath (which may
// exist), as the same file to its users: it takes over destPath's
// permissions (on Windows also its attributes, access list and creation
// time). false, leaving destPath as it was, when that cannot be done, and
// when a new file could not stand in for the old one: a name of a file with
// further hard links, a symbolic link, anything but a plain file, a file
// owned by another user or group or carrying an access list (POSIX).
bool OsReplaceFile(const char* tempPath, const char* destPath);

// The size of an open regular file; false for anything else (a folder, a
// pipe, a device) or when it cannot be told. Leaves the position undefined.
// 64 bits on Windows too, where the C library's long-based ftell stops at 2 GiB.
bool OsOpenFileSize(FILE* f, uint64_t* size);

// Moves to offset from the start; beyond the end a following write grows the file.
bool OsSeekFile(FILE* f, uint64_t offset);

// Removes a file; false when it could not be removed.
bool OsRemoveFile(const char* path);

// Full path name of path against the current directory, in backslash form
// ("C:\dir\file" on Windows, "Z:\dir\file" on POSIX). false if it cannot be made.
bool OsFullPathName(const char* path, std::string* fullPath);

// The current directory in the same form as OsFullPathName; empty on failure.
std::string OsCurrentDirectory();

void OsSleep(uint32_t milliseconds);

// Milliseconds from an arbitrary fixed point, monotonic.
uint64_t OsTickCount();

struct TOSLOCALTIME {
    uint16_t year, month, dayOfWeek, day, hour, minute, second, milliseconds;
};
void OsLocalTime(TOSLOCALTIME* time);

// A manual-reset event: once set it stays set until reset. Thread-safe.
class COsEvent {
public:
    void Set();
    void Reset();
    // A plain atomic load: the script loop asks it every round.
    bool IsSet() const { return m_set.load(std::memory_order_acquire); }
    // Waits up to timeoutMs (0xFFFFFFFF = forever); true when the event is set.
    bool Wait(uint32_t timeoutMs);

private:
    std::mutex m_mutex;
    std::condition_variable m_cond;
    std::atomic<bool> m_set{false};  // written under m_mutex, read without it
};

// How a thread's stack size is meant.
enum EOSSTACKSIZE {
    // As thread creation takes it. POSIX makes the stack that size; Windows
    // commits that much at first, and the stack may grow to the program's
    // default reserve (its executable's, mostly 1 MiB), or further when the
    // size is larger: the Script Processor's worker gets its stack this way.
    OS_STACK_AS_CREATED = 0,
    // The whole stack, on Windows too: a program that chooses its own (dcsrun).
    OS_STACK_WHOLE = 1,
};

// A thread with a chosen stack size.
class COsThread {
public:
    typedef void (*TEntry)(void* argument);
    COsThread() = default;
    COsThread(const COsThread&) = delete;
    COsThread& operator=(const COsThread&) = delete;
    ~COsThread();  // joins a thread still running
    bool Start(size_t stackSize, TEntry entry, void* argument,
               EOSSTACKSIZE meaning = OS_STACK_AS_CREATED);
    bool IsStarted() const { return m_handle != nullptr; }  // started and not joined yet
    // Waits up to timeoutMs (0xFFFFFFFF = forever) for the thread to end; true
    // when it has ended or none was started. Join still follows.
    bool Wait(uint32_t timeoutMs);
    void Join();
    // What a window waits on to serve messages meanwhile: the thread's HANDLE
    // on Windows; null elsewhere.
    void* WaitHandle() const;

private:
    void* m_handle = nullptr;
};
