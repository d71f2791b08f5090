// Win32 platform services (ANSI functions, 8-bit paths).
#include <windows.h>

#include <new>
#include <string>

#include "os/Platform.h"

FILE* OsOpenFile(const char* path, const char* mode) { return fopen(path, mode); }

bool OsReplaceFile(const char* tempPath, const char* destPath) {
    return MoveFileExA(tempPath, destPath, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool OsRemoveFile(const char* path) { return DeleteFileA(path) != 0; }

bool OsFullPathName(const char* path, std::string* fullPath) {
    char buffer[MAX_PATH + 1];
    DWORD n = GetFullPathNameA(path, sizeof buffer, buffer, nullptr);
    if (n == 0 || n >= sizeof buffer) return false;
    fullPath->assign(buffer, n);
    return true;
}

std::string OsCurrentDirectory() {
    char buffer[MAX_PATH + 1];
    DWORD n = GetCurrentDirectoryA(sizeof buffer, buffer);
    if (n == 0 || n >= sizeof buffer) return std::string();
    return std::string(buffer, n);
}

void OsSleep(uint32_t milliseconds) { Sleep(milliseconds); }

uint64_t OsTickCount() { return GetTickCount64(); }

void OsLocalTime(TOSLOCALTIME* time) {
    SYSTEMTIME st;
    GetLocalTime(&st);
    time->year = st.wYear;
    time->month = st.wMonth;
    time->dayOfWeek = st.wDayOfWeek;
    time->day = st.wDay;
    time->hour = st.wHour;
    time->minute = st.wMinute;
    time->second = st.wSecond;
    time->milliseconds = st.wMilliseconds;
}

namespace {
struct TThreadStart {
    COsThread::TEntry entry;
    void* argument;
};
DWORD WINAPI ThreadMain(LPVOID p) {
    TThreadStart start = *static_cast<TThreadStart*>(p);
    delete static_cast<TThreadStart*>(p);
    start.entry(start.argument);
    return 0;
}
}  // namespace

bool COsThread::Start(size_t stackSize, TEntry entry, void* argument) {
    if (m_handle) return false;
    auto* start = new (std::nothrow) TThreadStart{entry, argument};
    if (!start) return false;
    // The size is the reserve, not the commit: the thread really has no more.
    HANDLE h = CreateThread(nullptr, stackSize, ThreadMain, start,
                            STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!h) {
        delete start;
        return false;
    }
    m_handle = h;
    return true;
}

bool COsThread::Wait(uint32_t timeoutMs) {
    if (!m_handle) return true;
    return WaitForSingleObject(static_cast<HANDLE>(m_handle), timeoutMs) == WAIT_OBJECT_0;
}

void* COsThread::WaitHandle() const { return m_handle; }

void COsThread::Join() {
    if (!m_handle) return;
    WaitForSingleObject(static_cast<HANDLE>(m_handle), INFINITE);
    CloseHandle(static_cast<HANDLE>(m_handle));
    m_handle = nullptr;
}

COsThread::~COsThread() { Join(); }
