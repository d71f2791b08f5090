#include "filemanager/win32/ProgressDialog.h"

#include <windows.h>
#include <commctrl.h>

#include <string>

#include "filemanager/FMTexts.h"
#include "frame/ErrCode.h"
#include "res/OndResource.h"

namespace {

const size_t kWorkerStackBytes = 16384;

// Widths as the name line's static draws its text: its own font.
class CStaticMeasure : public CFMTextMeasure_0 {
public:
    explicit CStaticMeasure(HWND control) : m_dc(CreateCompatibleDC(nullptr)) {
        HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0));
        if (m_dc && font) m_oldFont = SelectObject(m_dc, font);
    }
    ~CStaticMeasure() override {
        if (!m_dc) return;
        if (m_oldFont) SelectObject(m_dc, m_oldFont);
        DeleteDC(m_dc);
    }
    int TextWidth(const std::string& text) override {
        SIZE size = {};
        if (!m_dc || !GetTextExtentPoint32A(m_dc, text.c_str(), static_cast<int>(text.size()), &size))
            return 0;
        return size.cx;
    }

private:
    HDC m_dc;
    HGDIOBJ m_oldFont = nullptr;
};

}  // namespace

CProgressDialog::~CProgressDialog() { m_Run.Close(); }

void CProgressDialog::Setup(COndDeviceComm_0* channel, const TFILEENTRYLIST& files,
                            bool continueOnError) {
    m_pChannel = channel;
    m_Files = files;
    m_bContinueOnError = continueOnError;
}

intptr_t CProgressDialog::DoModal(HWND parent) {
    return CONXDialogBase::DoModal(IDD_PROGRESS, parent);
}

bool CProgressDialog::OnInitDialog() {
    CONXDialogBase::OnInitDialog();
    SendMessageA(GetDlgItem(IDC_PROG_TOTAL), PBM_SETRANGE32, 0, 100);
    SendMessageA(GetDlgItem(IDC_PROG_FILE), PBM_SETRANGE32, 0, 100);
    m_nAbortRequested = 0;
    m_hRunWindow = m_hWnd;
    if (!m_Run.Start(kWorkerStackBytes)) PostMessageA(m_hWnd, WM_CLOSE, 0, 0);  // nothing runs
    return true;
}

uint32_t CProgressDialog::RunWork() noexcept {
    try {
        return static_cast<uint32_t>(
            ondfm::RunCopyLoop(m_pChannel, m_Files, m_bContinueOnError, this, &m_Errors));
    } catch (...) {
        return EONX_ERR_OUTOFMEMORY;
    }
}

// The window's close is the run's end message.
bool CProgressDialog::PostEnd(uint32_t) {
    return IsWindow(m_hRunWindow) && PostMessageA(m_hRunWindow, WM_CLOSE, 0, 0);
}

void CProgressDialog::RequestStop() { m_nAbortRequested = 1; }

// The worker waits for nothing of the window: a plain wait.
bool CProgressDialog::WaitForWorker(COsThread* worker, uint32_t timeoutMs) {
    return worker->Wait(timeoutMs);
}

void CProgressDialog::Abandon() {}  // no question is ever open on the worker

void CProgressDialog::FileStarted(uint32_t percent, size_t index) {
    if (IsWindow(m_hRunWindow))
        PostMessageA(m_hRunWindow, ONX_WM_FILESTARTED, percent, static_cast<LPARAM>(index));
}

void CProgressDialog::FileProgress(uint32_t stepsDone) {
    m_nLatestSteps = stepsDone;
    if (m_bProgressQueued.exchange(true)) return;  // the waiting one will show this step
    if (!IsWindow(m_hRunWindow) ||
        !PostMessageA(m_hRunWindow, ONX_WM_FILEPROGRESS, stepsDone, 0))
        m_bProgressQueued = false;
}

bool CProgressDialog::AbortRequested() { return m_nAbortRequested.load() != 0; }

void CProgressDialog::CopyEnded() {}  // the run controller posts the end

bool CProgressDialog::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam,
                                intptr_t* result) {
    switch (message) {
        case ONX_WM_FILESTARTED:
            OnFileStarted(static_cast<uint32_t>(wParam), static_cast<size_t>(lParam));
            *result = 0;
            return true;
        case ONX_WM_FILEPROGRESS: {
            // Cleared first: a step the worker reports from now on is posted anew.
            m_bProgressQueued = false;
            uint32_t steps = m_nLatestSteps.load();
            if (steps != m_nLastProgress) {  // only a change is drawn
                m_nLastProgress = steps;
                SendMessageA(GetDlgItem(IDC_PROG_FILE), PBM_SETPOS, steps, 0);
            }
            *result = 0;
            return true;
        }
        case WM_DESTROY:
            m_Run.Close();
            return false;
    }
    return CONXDialogBase::OnMessage(message, wParam, lParam, result);
}

void CProgressDialog::OnFileStarted(uint32_t percent, size_t index) {
    SetDlgItemTextA(m_hWnd, IDC_PROG_COUNT,
                    ondfm::CopiedSoFar(static_cast<uint32_t>(index),
                                       static_cast<uint32_t>(m_Files.size()))
                        .c_str());
    HWND name = GetDlgItem(IDC_PROG_CURRENT);
    if (index < m_Files.size() && name) {
        RECT client;
        GetClientRect(name, &client);
        CStaticMeasure measure(name);
        std::string line =
            ondfm::CurrentlyCopyingLine(m_Files[index].path, client.right - client.left, &measure);
        SetWindowTextA(name, line.c_str());
    }
    SendMessageA(GetDlgItem(IDC_PROG_TOTAL), PBM_SETPOS, percent, 0);
}

void CProgressDialog::OnCancel() {
    m_Run.Close();  // abort requested, the worker joined; its result kept
    EndDialog(IDCANCEL);
}

void CProgressDialog::OnClose() { OnCancel(); }
