#include "frame/RunController.h"

bool CONXRunController::Start(size_t stackSize) {
    if (!IsIdle() || m_closing) return false;
    m_idle.Reset();
    m_result = 0;
    if (!m_worker.Start(stackSize, WorkerMain, this)) {
        m_idle.Set();
        return false;
    }
    return true;
}

void CONXRunController::WorkerMain(void* controller) {
    auto* self = static_cast<CONXRunController*>(controller);
    uint32_t result = self->m_job->RunWork();
    self->m_result = result;
    if (self->m_closing || !self->m_job->PostEnd(result)) self->m_idle.Set();
}

void CONXRunController::Stop() {
    if (!IsIdle()) m_job->RequestStop();
}

uint32_t CONXRunController::JoinWorker() {
    m_worker.Join();
    return m_result;
}

void CONXRunController::Close() {
    m_closing = true;
    if (m_worker.IsStarted()) {
        m_job->RequestStop();
        m_job->Abandon();
        while (!m_job->WaitForWorker(&m_worker, kAbandonAfterMs)) m_job->Abandon();
        m_worker.Join();
    }
    m_idle.Set();
}
