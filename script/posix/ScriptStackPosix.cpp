// Stack bounds of the calling thread on POSIX systems.
#include <pthread.h>
#include <unistd.h>

#include "script/ScriptStack.h"

uintptr_t ScriptStackLowLimit() {
#if defined(__linux__) || defined(__GLIBC__)
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) != 0) return 0;
    void* address = nullptr;
    size_t size = 0;
    size_t guard = 0;
    int rc = pthread_attr_getstack(&attr, &address, &size);
    pthread_attr_getguardsize(&attr, &guard);
    pthread_attr_destroy(&attr);
    if (rc != 0 || address == nullptr) return 0;
    // One page more than reported: the main thread's size comes from the rlimit.
    long page = sysconf(_SC_PAGESIZE);
    return (uintptr_t)address + guard + (uintptr_t)(page > 0 ? page : 4096);
#else
    return 0;
#endif
}
