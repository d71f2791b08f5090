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

CProgressDialog::~CProgressDialog() { JoinWorker(); }

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
    m_bWorkerRunning = m_Worker.Start(kWorkerStackBytes, Worker, this);
    if (!m_bWorkerRunning) PostMessageA(m_hWnd, WM_CLOSE, 0, 0);  // nothing runs: end at once
    return true;
}

void CProgressDialog::Worker(void* dialog) {
    auto* self = static_cast<CProgressDialog*>(dialog);
    try {
        self->m_nResult = ondfm::RunCopyLoop(self->m_pChannel, self->m_Files,
                                             self->m_bContinueOnError, self, &self->m_Errors);
    } catch (...) {
        self->m_nResult = EONX_ERR_OUTOFMEMORY;
        self->CopyEnded();
    }
}

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

void CProgressDialog::CopyEnded() {
    if (IsWindow(m_hRunWindow)) PostMessageA(m_hRunWindow, WM_CLOSE, 0, 0);
}

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
            JoinWorker();
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

void CProgressDialog::JoinWorker() {
    m_nAbortRequested = 1;
    if (!m_bWorkerRunning) return;
    m_Worker.Join();  // no time limit: the worker only posts, never waits for us
    m_bWorkerRunning = false;
}

void CProgressDialog::OnCancel() {
    JoinWorker();
    EndDialog(IDCANCEL);
}

void CProgressDialog::OnClose() { OnCancel(); }
