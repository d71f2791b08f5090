// A run of work on a worker thread, for a window that must stay responsive:
// the Script Processor's script run, the File Manager's copy. The window
// supplies the work and its side of the talk (CONXRunJob_0):
//   Start: idle reset, worker started; the worker runs RunWork, then PostEnd;
//   on that message the window calls JoinWorker, reports, then MarkIdle;
//   Stop: RequestStop, the work ends at its next check;
//   Close (the window goes): RequestStop and Abandon, wait for the worker
//   serving the window, Abandon again after every kAbandonAfterMs; idle.
// The idle event is the one state both threads read. Once closing, the worker
// does not post its end (nobody would serve it) and marks the run idle itself.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "os/Platform.h"

class CONXRunJob_0 {
public:
    // On the worker: the work; its answer is the run's result. Must not throw.
    virtual uint32_t RunWork() noexcept = 0;
    // On the worker, after the work: post the end to the window; false when
    // the window cannot hear it (the run is then marked idle without it).
    virtual bool PostEnd(uint32_t result) = 0;
    // On the window's thread: ask the work to end soon (a stop event, an abort
    // flag). Does not wait.
    virtual void RequestStop() = 0;
    // While closing: wait up to timeoutMs for the worker to end, serving what
    // it waits for from the window meanwhile (messages it sends); true if ended.
    virtual bool WaitForWorker(COsThread* worker, uint32_t timeoutMs) = 0;
    // While closing, first and after every wait that ran out: give up what
    // keeps the work waiting (an open question to the operator).
    virtual void Abandon() = 0;
};

class CONXRunController {
public:
    static const uint32_t kAbandonAfterMs = 100;

    // The owner of the job calls Close before the job goes.
    explicit CONXRunController(CONXRunJob_0* job) : m_job(job) { m_idle.Set(); }
    CONXRunController(const CONXRunController&) = delete;
    CONXRunController& operator=(const CONXRunController&) = delete;

    // Starts a run on a worker with stackSize bytes of stack. false while a
    // run is going or when the worker cannot be started (still idle then).
    bool Start(size_t stackSize);
    // Asks the running work to end; the run ends by itself.
    void Stop();
    // After the worker's end message: waits for the worker to be gone and
    // answers the run's result. The run counts as running until MarkIdle.
    uint32_t JoinWorker();
    void MarkIdle() { m_idle.Set(); }
    // Ends a run in progress for good (the window is going) and leaves the
    // controller idle; no run starts afterwards. Safe to call again.
    void Close();

    bool IsIdle() const { return m_idle.IsSet(); }
    bool IsClosing() const { return m_closing.load(); }
    uint32_t Result() const { return m_result.load(); }

private:
    static void WorkerMain(void* controller);

    CONXRunJob_0* m_job;
    COsEvent m_idle;
    std::atomic<bool> m_closing{false};
    std::atomic<uint32_t> m_result{0};
    COsThread m_worker;  // last: joined before the rest goes
};
