// CProgressDialog: the modal window (template 4004) in which the File
// Manager's copy runs. The copy loop of filemanager/FMCopyLoop.h runs through
// a CONXRunController on a worker with a 16384-byte stack, which only ever
// posts to the window: ONX_WM_FILESTARTED before each file,
// ONX_WM_FILEPROGRESS for the steps of the transfer, and WM_CLOSE at the end
// (its end message). The window's thread may therefore wait for the worker
// without a deadlock.
//
// Abort, Escape, the worker's close and the window's destruction all end the
// same way: abort is requested, the worker is joined (no time limit: it
// waits for nothing of the window), and the dialog ends.
//
// At most one progress message waits in the queue at a time, and the bar
// shows the latest step when it is served: a fast channel reports steps far
// quicker than a window can draw them, and a backlog of thousands of them
// would keep the window (and the close at the end) behind the copy.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "filemanager/FMCopyLoop.h"
#include "frame/Dialog.h"
#include "frame/RunController.h"

enum : uint32_t {
    ONX_WM_FILESTARTED = 0x8000,   // wParam: overall percentage, lParam: file index
    ONX_WM_FILEPROGRESS = 0x8001,  // wParam: steps done of the current file
};

class CProgressDialog : public CONXDialogBase, private CFMProgressSink_0, private CONXRunJob_0 {
public:
    CProgressDialog() = default;
    ~CProgressDialog() override;

    // Before DoModal: the channel (not owned), a copy of the list and the
    // continue-on-error choice.
    void Setup(COndDeviceComm_0* channel, const TFILEENTRYLIST& files, bool continueOnError);
    intptr_t DoModal(HWND parent);
    // After the dialog has ended.
    const std::vector<TCOPYERROR>& Errors() const { return m_Errors; }
    const TFILEENTRYLIST& Files() const { return m_Files; }
    int32_t Result() const { return static_cast<int32_t>(m_Run.Result()); }

    bool OnInitDialog() override;
    bool OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam, intptr_t* result) override;
    void OnCancel() override;
    void OnClose() override;

private:
    // CFMProgressSink_0, on the worker thread.
    void FileStarted(uint32_t percent, size_t index) override;
    void FileProgress(uint32_t stepsDone) override;
    bool AbortRequested() override;
    void CopyEnded() override;

    // CONXRunJob_0: the copy on the worker, the close as its end message.
    uint32_t RunWork() noexcept override;
    bool PostEnd(uint32_t result) override;
    void RequestStop() override;
    bool WaitForWorker(COsThread* worker, uint32_t timeoutMs) override;
    void Abandon() override;

    void OnFileStarted(uint32_t percent, size_t index);

    COndDeviceComm_0* m_pChannel = nullptr;
    TFILEENTRYLIST m_Files;
    std::vector<TCOPYERROR> m_Errors;
    std::atomic<uint32_t> m_nAbortRequested{0};
    bool m_bContinueOnError = true;
    HWND m_hRunWindow = nullptr;  // where the worker posts; set before it starts
    uint32_t m_nLastProgress = 0xFFFFFFFF;         // what the bar shows
    std::atomic<uint32_t> m_nLatestSteps{0};        // the worker's latest step
    std::atomic<bool> m_bProgressQueued{false};     // a progress message waits
    CONXRunController m_Run{this};                  // last: closed before the rest goes
};
