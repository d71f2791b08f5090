// Win32 platform services (ANSI functions, 8-bit paths).
#include <windows.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <new>
#include <string>

#include "os/Platform.h"

FILE* OsOpenFile(const char* path, const char* mode) { return fopen(path, mode); }

namespace {

// The number of names of an existing plain file; 0 for anything else
// (a folder, a reparse point such as a symbolic link) or when it cannot be told.
DWORD PlainFileLinks(const char* path, DWORD attributes) {
    if (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) return 0;
    HANDLE h = CreateFileA(path, FILE_READ_ATTRIBUTES,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, 0, nullptr);
    if (h == INVALID_HANDLE_VALUE) return 0;
    BY_HANDLE_FILE_INFORMATION info;
    DWORD links = GetFileInformationByHandle(h, &info) ? info.nNumberOfLinks : 0;
    CloseHandle(h);
    return links;
}

}  // namespace

bool OsReplaceFile(const char* tempPath, const char* destPath) {
    DWORD attributes = GetFileAttributesA(destPath);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() == ERROR_FILE_NOT_FOUND &&
               MoveFileExA(tempPath, destPath, MOVEFILE_WRITE_THROUGH) != 0;
    // The new file would not be seen through the old one's other names.
    if (PlainFileLinks(destPath, attributes) != 1) return false;
    // ReplaceFile keeps the old file's attributes, access list and creation
    // time. With a backup name every failure leaves both files findable:
    // either under their own names, or the old one under the backup name,
    // from which it goes back.
    std::string backup = std::string(tempPath) + ".old";
    if (ReplaceFileA(destPath, tempPath, backup.c_str(), 0, nullptr, nullptr)) {
        DeleteFileA(backup.c_str());
        return true;
    }
    if (GetLastError() == ERROR_UNABLE_TO_MOVE_REPLACEMENT_2)
        MoveFileExA(backup.c_str(), destPath, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    return false;
}

bool OsOpenFileSize(FILE* f, uint64_t* size) {
    struct _stat64 st;
    if (fflush(f) != 0 || _fstat64(_fileno(f), &st) != 0 || (st.st_mode & _S_IFMT) != _S_IFREG)
        return false;
    *size = (uint64_t)st.st_size;
    return true;
}

bool OsSeekFile(FILE* f, uint64_t offset) {
    if (offset > (uint64_t)INT64_MAX) return false;
    return _fseeki64(f, (__int64)offset, SEEK_SET) == 0;
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

bool COsThread::Start(size_t stackSize, TEntry entry, void* argument, EOSSTACKSIZE meaning) {
    if (m_handle) return false;
    auto* start = new (std::nothrow) TThreadStart{entry, argument};
    if (!start) return false;
    HANDLE h = CreateThread(nullptr, stackSize, ThreadMain, start,
                            meaning == OS_STACK_WHOLE ? STACK_SIZE_PARAM_IS_A_RESERVATION : 0, nullptr);
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
