// CScriptProcessorDialog: the Script Processor's non-modal window. The
// operator picks, creates or edits a script file, runs it on a worker thread
// and watches its output in the log; the window's thread stays free.
//
// The run goes through a CONXRunController: the worker sends each piece of
// output with ONX_WM_SCRIPTOUTPUT (and waits until the log shows it) and posts
// ONX_WM_SCRIPTENDED with the run's result.
#pragma once

#include <cstdint>
#include <string>

#include "frame/Dialog.h"
#include "frame/RunController.h"
#include "scriptrt/ScriptLog.h"
#include "scriptrt/win32/UserInputDialogs.h"

class CONXScriptProcessor;

enum : uint32_t {
    ONX_WM_SCRIPTOUTPUT = 0x8000,  // wParam: const char* text; sent
    ONX_WM_SCRIPTENDED = 0x8001,   // wParam: the run's EONX_ERR_ERRCODE_; posted
    // For a host that starts a script in the window as a user would: sent with
    // wParam = the script's path, lParam != 0 to press Execute script as well.
    // Answers 1, or 0 while a script runs (nothing changes then).
    ONX_WM_SCRIPTSELECT = 0x8002,
};

class CScriptProcessorDialog : public CONXDialog, private CONXRunJob_0 {
public:
    explicit CScriptProcessorDialog(HWND parent);
    ~CScriptProcessorDialog() override;

    bool OnInitDialog() override;
    bool OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam, intptr_t* result) override;
    bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control) override;
    bool DestroyWindow() override;
    void UpdateDialogState() override;
    void OnTimer(uintptr_t id) override;

private:
    // The run's work and the window's side of it.
    uint32_t RunWork() noexcept override;
    bool PostEnd(uint32_t result) override;
    void RequestStop() override;
    bool WaitForWorker(COsThread* worker, uint32_t timeoutMs) override;
    void Abandon() override;

    CONXScriptProcessor* Processor() const;
    // The open or save dialog for a script file; false when cancelled.
    bool AskScriptPath(bool save, std::string* path);
    void OnBrowse();
    void OnNewScript();
    void OnEditScript();
    void OnExecute();
    void OnScriptEnded(uint32_t result);
    void AppendOutput(const char* text);
    // Scrolls the log to its end and paints what output has changed.
    void ShowLog();
    void Error(const char* text);

    static void Output(void* dialog, const char* text);

    std::string m_strScriptPath;
    std::string m_strRunPath;        // the worker's copy for its run
    HWND m_hRunWindow = nullptr;     // the window the worker reports to
    CONXRunController m_Run{this};
    CONXScriptLog m_Log;
    unsigned long m_nLastPaint = 0;  // tick of the log's last paint
    bool m_bLogPending = false;      // changed, drawing off, not yet shown
    int m_nMinWidth = 0;
    int m_nMinHeight = 250;
    CWinOperatorPrompt m_Prompt;
};
