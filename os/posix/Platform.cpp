// POSIX platform services.
#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif

#include <climits>
#include <string>

#include "os/Platform.h"

namespace {

// "X:\a\b" -> "/a/b", "a\b" -> "a/b".
std::string NativePath(const char* path) {
    std::string p(path);
    if (p.size() >= 2 && p[1] == ':' &&
        ((p[0] >= 'A' && p[0] <= 'Z') || (p[0] >= 'a' && p[0] <= 'z')))
        p.erase(0, 2);
    for (char& c : p)
        if (c == '\\') c = '/';
    if (p.empty() && path[0] != '\0') p = "/";
    return p;
}

// "/a/b" -> "Z:\a\b".
std::string ModulePath(const std::string& native) {
    std::string p = "Z:" + native;
    for (char& c : p)
        if (c == '/') c = '\\';
    return p;
}

}  // namespace

FILE* OsOpenFile(const char* path, const char* mode) {
    return fopen(NativePath(path).c_str(), mode);
}

bool OsReplaceFile(const char* tempPath, const char* destPath) {
    const std::string temp = NativePath(tempPath), dest = NativePath(destPath);
    struct stat old;
    if (lstat(dest.c_str(), &old) == 0) {
        // A rename gives the name a new file: whatever else refers to the old
        // one (another hard link, the target of a symbolic link) keeps it.
        if (!S_ISREG(old.st_mode) || old.st_nlink > 1) return false;
        struct stat made;
        if (stat(temp.c_str(), &made) != 0) return false;
        if (made.st_uid != old.st_uid || made.st_gid != old.st_gid) return false;
#ifdef __linux__
        if (getxattr(dest.c_str(), "system.posix_acl_access", nullptr, 0) >= 0) return false;
#endif
        if (chmod(temp.c_str(), old.st_mode & 07777) != 0) return false;
    } else if (errno != ENOENT) {
        return false;
    }
    return rename(temp.c_str(), dest.c_str()) == 0;
}

bool OsOpenFileSize(FILE* f, uint64_t* size) {
    struct stat st;
    if (fflush(f) != 0 || fstat(fileno(f), &st) != 0 || !S_ISREG(st.st_mode)) return false;
    *size = (uint64_t)st.st_size;
    return true;
}

bool OsSeekFile(FILE* f, uint64_t offset) {
    if (offset > (uint64_t)INT64_MAX) return false;
    return fseeko(f, (off_t)offset, SEEK_SET) == 0;
}

bool OsRemoveFile(const char* path) { return remove(NativePath(path).c_str()) == 0; }

std::string OsCurrentDirectory() {
    char buffer[PATH_MAX];
    if (!getcwd(buffer, sizeof buffer)) return std::string();
    return ModulePath(buffer);
}

bool OsFullPathName(const char* path, std::string* fullPath) {
    if (path == nullptr || path[0] == '\0') return false;
    std::string p(path);
    bool absolute = p[0] == '/' || p[0] == '\\' || (p.size() >= 2 && p[1] == ':');
    std::string native = NativePath(path);
    if (!absolute) {
        char buffer[PATH_MAX];
        if (!getcwd(buffer, sizeof buffer)) return false;
        native = std::string(buffer) + "/" + native;
    }
    // Fold "." and ".." segments as GetFullPathName does, without touching the disk.
    std::string out;
    size_t i = 0;
    while (i < native.size()) {
        size_t j = native.find('/', i);
        if (j == std::string::npos) j = native.size();
        std::string seg = native.substr(i, j - i);
        if (seg == "..") {
            size_t cut = out.rfind('/');
            out.erase(cut == std::string::npos ? 0 : cut);
        } else if (!seg.empty() && seg != ".") {
            out += "/" + seg;
        }
        i = j + 1;
    }
    if (out.empty()) out = "/";
    *fullPath = ModulePath(out);
    return true;
}

void OsSleep(uint32_t milliseconds) {
    struct timespec ts;
    ts.tv_sec = milliseconds / 1000;
    ts.tv_nsec = (long)(milliseconds % 1000) * 1000000L;
    while (nanosleep(&ts, &ts) != 0) {
    }
}

uint64_t OsTickCount() {
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (uint64_t)ts.tv_sec * 1000u + (uint64_t)ts.tv_nsec / 1000000u;
}

void OsLocalTime(TOSLOCALTIME* time) {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    struct tm t;
    time_t secs = tv.tv_sec;
    localtime_r(&secs, &t);
    time->year = (uint16_t)(t.tm_year + 1900);
    time->month = (uint16_t)(t.tm_mon + 1);
    time->dayOfWeek = (uint16_t)t.tm_wday;
    time->day = (uint16_t)t.tm_mday;
    time->hour = (uint16_t)t.tm_hour;
    time->minute = (uint16_t)t.tm_min;
    time->second = (uint16_t)t.tm_sec;
    time->milliseconds = (uint16_t)(tv.tv_usec / 1000);
}

namespace {
// What m_handle points to: the thread and the event its last act sets.
struct TPosixThread {
    pthread_t thread;
    COsEvent ended;
};
struct TThreadStart {
    COsThread::TEntry entry;
    void* argument;
    COsEvent* ended;
};
void* ThreadMain(void* p) {
    TThreadStart start = *static_cast<TThreadStart*>(p);
    delete static_cast<TThreadStart*>(p);
    start.entry(start.argument);
    start.ended->Set();
    return nullptr;
}
}  // namespace

bool COsThread::Start(size_t stackSize, TEntry entry, void* argument, EOSSTACKSIZE) {
    if (m_handle) return false;
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0) return false;
    if (stackSize < (size_t)PTHREAD_STACK_MIN) stackSize = PTHREAD_STACK_MIN;
    pthread_attr_setstacksize(&attr, stackSize);
    auto* thread = new (std::nothrow) TPosixThread;
    auto* start = thread ? new (std::nothrow) TThreadStart{entry, argument, &thread->ended} : nullptr;
    bool ok = start && pthread_create(&thread->thread, &attr, ThreadMain, start) == 0;
    pthread_attr_destroy(&attr);
    if (!ok) {
        delete start;
        delete thread;
        return false;
    }
    m_handle = thread;
    return true;
}

bool COsThread::Wait(uint32_t timeoutMs) {
    if (!m_handle) return true;
    return static_cast<TPosixThread*>(m_handle)->ended.Wait(timeoutMs);
}

void* COsThread::WaitHandle() const { return nullptr; }

void COsThread::Join() {
    if (!m_handle) return;
    auto* thread = static_cast<TPosixThread*>(m_handle);
    pthread_join(thread->thread, nullptr);
    delete thread;
    m_handle = nullptr;
}

COsThread::~COsThread() { Join(); }
