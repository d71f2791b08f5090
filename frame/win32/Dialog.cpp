// CONXDialog on Win32: a modeless dialog from this module's templates. OK,
// Cancel and the close box only hide it, after asking the owner.
#include <windows.h>

#include "frame/DeviceClient.h"
#include "frame/Dialog.h"
#include "frame/win32/ModuleInstance.h"

struct TDialogAccess {
    static INT_PTR CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
        CONXDialog* self;
        if (msg == WM_INITDIALOG) {
            self = reinterpret_cast<CONXDialog*>(lParam);
            SetWindowLongPtrA(hwnd, GWLP_USERDATA, lParam);
            self->m_hWnd = hwnd;
            if (self->m_hIcon)
                SendMessageA(hwnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(self->m_hIcon));
            SetWindowLongPtrA(hwnd, GWL_EXSTYLE,
                              GetWindowLongPtrA(hwnd, GWL_EXSTYLE) | WS_EX_APPWINDOW);
            if (self->m_pDeviceComm) self->StartStatusTimer();
            self->UpdateDialogState();
            return TRUE;
        }
        self = reinterpret_cast<CONXDialog*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
        if (!self) return FALSE;
        switch (msg) {
            case WM_COMMAND:
                if (LOWORD(wParam) == IDOK) self->OnOK();
                else if (LOWORD(wParam) == IDCANCEL) self->OnCancel();
                else return FALSE;
                return TRUE;
            case WM_CLOSE: self->OnClose(); return TRUE;
            case WM_TIMER: self->OnTimer(wParam); return TRUE;
            case WM_NCDESTROY:
                self->m_hWnd = nullptr;
                self->m_nTimerHandle = 0;
                return FALSE;
        }
        return FALSE;
    }
};

CONXDialog::CONXDialog(uint32_t templateId, HWND) : m_nTemplateId(templateId) {}

CONXDialog::~CONXDialog() {
    if (m_hIcon) DestroyIcon(static_cast<HICON>(m_hIcon));
}

void CONXDialog::UpdateDialogState() {}

void CONXDialog::SetOwnerClass(CONXDeviceClient_0* owner) { m_pOwner = owner; }

void CONXDialog::SetDeviceComm(COndDeviceComm_0* channel) {
    m_pDeviceComm = channel;
    if (channel) {
        if (!m_nTimerHandle && m_hWnd) StartStatusTimer();
    } else {
        StopStatusTimer();
    }
    UpdateDialogState();
}

bool CONXDialog::Create(HWND parent) {
    HWND hwnd = CreateDialogParamA(OndModuleInstance(), MAKEINTRESOURCEA(m_nTemplateId), parent,
                                   TDialogAccess::Proc, reinterpret_cast<LPARAM>(this));
    return hwnd != nullptr;
}

bool CONXDialog::DestroyWindow() {
    StopStatusTimer();
    if (!m_hWnd) return false;
    return ::DestroyWindow(m_hWnd) != 0;
}

bool CONXDialog::HasWindow() const { return m_hWnd && IsWindow(m_hWnd); }

void CONXDialog::Show(bool visible) {
    if (m_hWnd) ShowWindow(m_hWnd, visible ? SW_SHOW : SW_HIDE);
}

bool CONXDialog::IsVisible() const { return m_hWnd && IsWindowVisible(m_hWnd); }

void CONXDialog::AskOwnerThenHide(uint32_t event) {
    uint32_t answer = 1;
    if (m_pOwner) answer = static_cast<CONXDeviceClient*>(m_pOwner)->SignalDlgEvent(event);
    if (answer == 1) ShowWindow(m_hWnd, SW_HIDE);
}

void CONXDialog::OnOK() { AskOwnerThenHide(ONX_DLGEVENT_OK); }
void CONXDialog::OnClose() { AskOwnerThenHide(ONX_DLGEVENT_CLOSE); }
void CONXDialog::OnCancel() { AskOwnerThenHide(ONX_DLGEVENT_CANCEL); }

void CONXDialog::OnTimer(uintptr_t id) {
    if (id == m_nTimerId) UpdateDialogState();
}

void CONXDialog::StartStatusTimer() {
    if (m_hWnd) m_nTimerHandle = SetTimer(m_hWnd, m_nTimerId, m_nTimerInterval, nullptr);
}

void CONXDialog::StopStatusTimer() {
    if (!m_nTimerHandle) return;
    if (m_hWnd && IsWindow(m_hWnd)) KillTimer(m_hWnd, m_nTimerId);
    m_nTimerHandle = 0;
}
