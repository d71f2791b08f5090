#include "host/console/ConsoleInterrupt.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

namespace {

CConsoleInterrupt g_interrupt;
sigset_t g_signals;
bool g_watching = false;

// The signals are blocked in every thread and taken here, where calling
// into the program's objects is safe (a signal handler could not).
void* WatchInterrupts(void*) {
    int sig;
    if (sigwait(&g_signals, &sig) != 0) return nullptr;
    g_interrupt.Call();
    if (sigwait(&g_signals, &sig) != 0) return nullptr;
    _exit(128 + sig);  // as the shell reports a program the signal ended
}

}  // namespace

void ConsoleStopOnInterrupt(void (*stop)(void*), void* context) {
    g_interrupt.Set(stop, context);
    if (g_watching || !stop) return;
    g_watching = true;
    sigemptyset(&g_signals);
    const int wanted[] = {SIGINT, SIGTERM};
    for (int sig : wanted) {
        struct sigaction current;
        if (sigaction(sig, nullptr, &current) == 0 && current.sa_handler != SIG_IGN)
            sigaddset(&g_signals, sig);
    }
    if (pthread_sigmask(SIG_BLOCK, &g_signals, nullptr) != 0) return;
    pthread_t watcher;
    if (pthread_create(&watcher, nullptr, WatchInterrupts, nullptr) == 0) pthread_detach(watcher);
}
