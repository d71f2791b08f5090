#include "scriptrt/win32/ScriptProcessorDialog.h"

#include <windows.h>
#include <commdlg.h>
#include <shellapi.h>

#include <cstdio>
#include <new>

#include "frame/win32/Controls.h"
#include "res/OndResource.h"
#include "scriptrt/ScriptProcessor.h"

namespace {

const size_t kWorkerStackBytes = 65536;
const UINT_PTR kLogTimerId = 2;  // the status timer is 1
const char kScriptFilter[] = "Script files (*.dcs)\0*.dcs\0All files (*.*)\0*.*\0";

// The anchoring of the controls when the window is resized.
const struct {
    uint32_t id, flags;
} kPlacement[] = {
    {IDC_SP_CONFIG, ONX_PLACE_TOPSTRIP},      {IDC_SP_LOG, ONX_PLACE_FILL},
    {IDC_SP_PATHLABEL, ONX_PLACE_BOTTOMLEFT}, {IDC_SP_PATH, ONX_PLACE_BOTTOMSTRIP},
    {IDC_SP_BROWSE, ONX_PLACE_BOTTOMRIGHT},   {IDOK, ONX_PLACE_BOTTOMRIGHT},
    {IDC_SP_COPY, ONX_PLACE_BOTTOMLEFT},      {IDC_SP_NEW, ONX_PLACE_BOTTOMLEFT},
    {IDC_SP_EDIT, ONX_PLACE_BOTTOMRIGHT},     {IDC_SP_EXECUTE, ONX_PLACE_BOTTOMRIGHT},
};

}  // namespace

CScriptProcessorDialog::CScriptProcessorDialog(HWND parent)
    : CONXDialog(IDD_SCRIPTPROCESSOR, parent) {
    LoadSmallIcon(IDI_SCRIPTPROCESSOR);
}

CScriptProcessorDialog::~CScriptProcessorDialog() { m_Run.Close(); }

CONXScriptProcessor* CScriptProcessorDialog::Processor() const {
    // Only the Script Processor makes this dialog.
    return static_cast<CONXScriptProcessor*>(static_cast<CONXDeviceClient*>(m_pOwner));
}

bool CScriptProcessorDialog::OnInitDialog() {
    CONXDialog::OnInitDialog();
    SendMessageA(GetDlgItem(IDC_SP_LOG), WM_SETFONT,
                 reinterpret_cast<WPARAM>(GetStockObject(SYSTEM_FIXED_FONT)), FALSE);
    for (const auto& p : kPlacement) AutoDlgCtrlPlacement(p.id, p.flags);
    RECT window;
    GetWindowRect(m_hWnd, &window);
    m_nMinWidth = window.right - window.left;
    UpdateDialogState();
    return true;
}

bool CScriptProcessorDialog::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam,
                                       intptr_t* result) {
    switch (message) {
        case ONX_WM_SCRIPTOUTPUT:
            AppendOutput(reinterpret_cast<const char*>(wParam));
            *result = 0;
            return true;
        case ONX_WM_SCRIPTENDED:
            OnScriptEnded(static_cast<uint32_t>(wParam));
            *result = 0;
            return true;
        case ONX_WM_SCRIPTSELECT:
            *result = 0;
            if (wParam && m_Run.IsIdle()) {
                m_strScriptPath = reinterpret_cast<const char*>(wParam);
                UpdateDialogState();
                if (lParam) OnExecute();
                *result = 1;
            }
            return true;
        case WM_GETMINMAXINFO: {
            MINMAXINFO* info = reinterpret_cast<MINMAXINFO*>(lParam);
            if (m_nMinWidth > 0) info->ptMinTrackSize.x = m_nMinWidth;
            info->ptMinTrackSize.y = m_nMinHeight;
            *result = 0;
            return true;
        }
        case WM_DESTROY:
            // Also when the window goes with its parent, without DestroyWindow.
            m_Run.Close();
            return false;
    }
    return CONXDialog::OnMessage(message, wParam, lParam, result);
}

bool CScriptProcessorDialog::OnCommand(uint32_t id, uint32_t notifyCode, HWND control) {
    if (notifyCode != BN_CLICKED) return CONXDialog::OnCommand(id, notifyCode, control);
    switch (id) {
        case IDC_SP_BROWSE: OnBrowse(); return true;
        case IDC_SP_NEW: OnNewScript(); return true;
        case IDC_SP_EDIT: OnEditScript(); return true;
        case IDC_SP_EXECUTE: OnExecute(); return true;
        case IDC_SP_COPY: CopyListBoxContentToClipBoard(GetDlgItem(IDC_SP_LOG)); return true;
    }
    return CONXDialog::OnCommand(id, notifyCode, control);
}

bool CScriptProcessorDialog::DestroyWindow() {
    m_Run.Close();
    return CONXDialog::DestroyWindow();
}

void CScriptProcessorDialog::UpdateDialogState() {
    if (!m_hWnd) return;
    UpdateCommStatus(IDC_SP_CONFIG);
    SetTextIfChanged(GetDlgItem(IDC_SP_PATH), m_strScriptPath.c_str());
    bool havePath = !m_strScriptPath.empty();
    EnableWindow(GetDlgItem(IDC_SP_EDIT), havePath);
    EnableWindow(GetDlgItem(IDC_SP_EXECUTE), havePath);
    SetTextIfChanged(GetDlgItem(IDC_SP_EXECUTE), m_Run.IsIdle() ? "Execute script" : "Stop script");
}

void CScriptProcessorDialog::Error(const char* text) {
    MessageBoxA(m_hWnd, text, "Error", MB_OK | MB_ICONEXCLAMATION);
}

bool CScriptProcessorDialog::AskScriptPath(bool save, std::string* path) {
    char file[MAX_PATH] = "";
    lstrcpynA(file, path->c_str(), MAX_PATH);
    OPENFILENAMEA ofn = FileDialogRequest(
        m_hWnd, kScriptFilter, save ? "New script file" : "Open a script file", file, MAX_PATH, "dcs",
        OFN_EXPLORER | OFN_HIDEREADONLY |
            (save ? OFN_OVERWRITEPROMPT : OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST));
    if (!(save ? GetSaveFileNameA(&ofn) : GetOpenFileNameA(&ofn))) return false;
    *path = file;
    return true;
}

void CScriptProcessorDialog::OnBrowse() {
    std::string path = m_strScriptPath;
    if (!AskScriptPath(false, &path)) return;  // cancelled: nothing changes
    m_strScriptPath = path;
    UpdateDialogState();
}

void CScriptProcessorDialog::OnNewScript() {
    std::string path;  // no initial name
    if (!AskScriptPath(true, &path)) return;
    // Opening for writing empties an existing file; the overwrite prompt asked.
    FILE* created = std::fopen(path.c_str(), "wb");
    if (!created) {
        Error("Cannot create script file!");
        return;
    }
    std::fclose(created);
    m_strScriptPath = path;
    UpdateDialogState();
    OnEditScript();
}

void CScriptProcessorDialog::OnEditScript() {
    if (m_strScriptPath.empty()) {
        Error("No file name present");
        return;
    }
    std::string folder = m_strScriptPath;
    size_t cut = folder.find_last_of('\\');
    folder.resize(cut == std::string::npos ? 0 : cut);
    // Opened as a text file whatever its extension: the editor for ".TXT".
    SHELLEXECUTEINFOA info = {};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_CLASSNAME;
    info.hwnd = m_hWnd;
    info.lpVerb = "open";
    info.lpFile = m_strScriptPath.c_str();
    info.lpDirectory = folder.empty() ? nullptr : folder.c_str();
    info.nShow = SW_SHOWNORMAL;
    info.lpClass = ".TXT";
    ShellExecuteExA(&info);
    uintptr_t code = reinterpret_cast<uintptr_t>(info.hInstApp);
    if (code <= 32) {
        char text[64];
        std::snprintf(text, sizeof text, "ShellExecute error %u", static_cast<unsigned>(code));
        Error(text);
    }
}

void CScriptProcessorDialog::OnExecute() {
    if (!m_Run.IsIdle()) {
        // The button does not wait: the script ends by itself.
        m_Run.Stop();
        UpdateDialogState();
        return;
    }
    m_Log.Clear();
    HWND log = GetDlgItem(IDC_SP_LOG);
    SendMessageA(log, LB_RESETCONTENT, 0, 0);
    SendMessageA(log, LB_SETHORIZONTALEXTENT, 0, 0);
    ShowLog();
    if (!m_pOwner) {
        // nothing to run
    } else if (!m_pDeviceComm) {
        Error("No communication device available!");
    } else {
        m_strRunPath = m_strScriptPath;
        m_hRunWindow = m_hWnd;
        m_Prompt.Reset();
        // The size as Windows takes it: committed at first, the stack growing
        // to the host program's default reserve (mostly 1 MiB) as needed.
        if (!m_Run.Start(kWorkerStackBytes)) Error("Unable to create script thread");
    }
    UpdateDialogState();
}

uint32_t CScriptProcessorDialog::RunWork() noexcept {
    CONXScriptProcessor* processor = Processor();
    try {
        // The questions of this run go to the operator dialogs; whoever asked
        // before (a host of its own) gets its prompt back afterwards.
        CONXOperatorPrompt_0* previous = processor->GetRunContext()->m_pOperator;
        processor->SetOperatorPrompt(&m_Prompt);
        EONX_ERR_ERRCODE_ result = processor->ExecuteScriptFile(m_strRunPath.c_str(), Output, this);
        processor->SetOperatorPrompt(previous);
        return result;
    } catch (...) {
        return EONX_ERR_SCRIPTFAILED;
    }
}

bool CScriptProcessorDialog::PostEnd(uint32_t result) {
    return IsWindow(m_hRunWindow) &&
           PostMessageA(m_hRunWindow, ONX_WM_SCRIPTENDED, static_cast<WPARAM>(result), 0);
}

void CScriptProcessorDialog::RequestStop() {
    if (m_pOwner) Processor()->StopScript();
}

// Output sent meanwhile is served (and dropped: the run is closing).
bool CScriptProcessorDialog::WaitForWorker(COsThread* worker, uint32_t timeoutMs) {
    HANDLE thread = static_cast<HANDLE>(worker->WaitHandle());
    for (;;) {
        DWORD woke = MsgWaitForMultipleObjects(1, &thread, FALSE, timeoutMs, QS_SENDMESSAGE);
        if (woke == WAIT_OBJECT_0 + 1) {
            MSG msg;
            PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
            continue;
        }
        if (woke == WAIT_TIMEOUT) return false;
        return worker->Wait(0xFFFFFFFF);  // ended, or the wait failed: wait plainly
    }
}

// A question that opened after the first sweep is closed by a later one.
void CScriptProcessorDialog::Abandon() { m_Prompt.Abandon(); }

void CScriptProcessorDialog::Output(void* dialog, const char* text) {
    auto* self = static_cast<CScriptProcessorDialog*>(dialog);
    if (self->m_Run.IsClosing()) return;
    HWND window = self->m_hRunWindow;
    if (IsWindow(window)) SendMessageA(window, ONX_WM_SCRIPTOUTPUT, reinterpret_cast<WPARAM>(text), 0);
}

void CScriptProcessorDialog::OnScriptEnded(uint32_t result) {
    ShowLog();
    m_Run.JoinWorker();
    UpdateDialogState();
    if (result != 0 && !m_Run.IsClosing()) {
        const char* reason = m_pDeviceComm ? m_pDeviceComm->GetInfoString(ONDCOMM_INFO_ERRORTEXT, result) : nullptr;
        std::string text = "Error executing script: ";
        text += reason ? reason : "";
        Error(text.c_str());
    }
    m_Run.MarkIdle();
    UpdateDialogState();
}

void CScriptProcessorDialog::AppendOutput(const char* text) {
    if (m_Run.IsClosing() || !text) return;
    HWND log = GetDlgItem(IDC_SP_LOG);
    if (!log) return;
    TSCRIPTLOGCHANGE change;
    try {
        change = m_Log.Append(text);
    } catch (...) {
        return;  // out of memory: this piece of output is lost
    }
    // The list changes with drawing off and is shown (scrolled to its end and
    // repainted) at most every 50 ms: a script that prints in a tight loop
    // would otherwise spend its time scrolling and painting the list.
    if (!m_bLogPending) {
        SendMessageA(log, WM_SETREDRAW, FALSE, 0);
        m_bLogPending = true;
        SetTimer(m_hWnd, kLogTimerId, 50, nullptr);
    }
    if (change.lastRemoved) {
        LRESULT count = SendMessageA(log, LB_GETCOUNT, 0, 0);
        if (count > 0) SendMessageA(log, LB_DELETESTRING, static_cast<WPARAM>(count - 1), 0);
    }
    for (size_t i = 0; i < change.dropped; ++i) SendMessageA(log, LB_DELETESTRING, 0, 0);
    const auto& lines = m_Log.Lines();
    if (change.added > 0) {
        // Only the new lines are measured: the extent grows to the widest line
        // since the log was cleared, without measuring 5000 lines per output.
        // A memory DC measures as the list's own does.
        LONG extent = static_cast<LONG>(SendMessageA(log, LB_GETHORIZONTALEXTENT, 0, 0));
        LONG widest = extent;
        HDC dc = CreateCompatibleDC(nullptr);
        HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageA(log, WM_GETFONT, 0, 0));
        HGDIOBJ oldFont = dc && font ? SelectObject(dc, font) : nullptr;
        for (size_t i = lines.size() - change.added; i < lines.size(); ++i) {
            SendMessageA(log, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lines[i].c_str()));
            SIZE size = {};
            if (dc && GetTextExtentPoint32A(dc, lines[i].c_str(), static_cast<int>(lines[i].size()),
                                            &size) && size.cx > widest)
                widest = size.cx;
        }
        if (dc) {
            if (oldFont) SelectObject(dc, oldFont);
            DeleteDC(dc);
        }
        if (widest != extent) SendMessageA(log, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
    }
    if (GetTickCount() - m_nLastPaint >= 50) ShowLog();
}

void CScriptProcessorDialog::ShowLog() {
    if (!m_bLogPending || !m_hWnd) return;
    m_bLogPending = false;
    KillTimer(m_hWnd, kLogTimerId);
    HWND log = GetDlgItem(IDC_SP_LOG);
    LRESULT count = SendMessageA(log, LB_GETCOUNT, 0, 0);
    if (count > 0) SendMessageA(log, LB_SETTOPINDEX, static_cast<WPARAM>(count - 1), 0);
    SendMessageA(log, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(log, nullptr, TRUE);
    UpdateWindow(log);
    m_nLastPaint = GetTickCount();
}

void CScriptProcessorDialog::OnTimer(uintptr_t id) {
    if (id == kLogTimerId) ShowLog();
    else CONXDialog::OnTimer(id);
}
