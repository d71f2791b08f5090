// The window layer on Win32 (ANSI): CONXDialogBase over CreateDialogParam and
// DialogBoxParam, and the non-modal CONXDialog of the device clients.
#include <windows.h>

#include <string>

#include "frame/ChannelStatus.h"
#include "frame/DeviceClient.h"
#include "frame/Dialog.h"
#include "frame/win32/App.h"
#include "frame/win32/Controls.h"
#include "frame/win32/ModuleInstance.h"

// ---------------------------------------------------------------------------
// CONXDialogBase

struct TDialogProc {
    // The object rides in the window's user data from WM_INITDIALOG on.
    // Nothing thrown by a handler may leave the window procedure.
    static INT_PTR CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
        CONXDialogBase* self;
        if (msg == WM_INITDIALOG) {
            self = reinterpret_cast<CONXDialogBase*>(lParam);
            SetWindowLongPtrA(hwnd, GWLP_USERDATA, lParam);
            self->m_hWnd = hwnd;
        } else {
            self = reinterpret_cast<CONXDialogBase*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
        }
        if (!self) return FALSE;

        if (msg == WM_NCDESTROY) {
            SetWindowLongPtrA(hwnd, GWLP_USERDATA, 0);
            try {
                self->PostNcDestroy();
            } catch (...) {
            }
            self->m_hWnd = nullptr;
            return FALSE;
        }

        intptr_t result = 0;
        bool handled = false;
        try {
            handled = self->OnMessage(msg, wParam, lParam, &result);
        } catch (...) {
            return FALSE;
        }
        if (!handled) return FALSE;
        // Messages that answer through the procedure's result, not DWLP_MSGRESULT.
        switch (msg) {
            case WM_INITDIALOG:
            case WM_CTLCOLORMSGBOX:
            case WM_CTLCOLOREDIT:
            case WM_CTLCOLORLISTBOX:
            case WM_CTLCOLORBTN:
            case WM_CTLCOLORDLG:
            case WM_CTLCOLORSCROLLBAR:
            case WM_CTLCOLORSTATIC:
            case WM_COMPAREITEM:
            case WM_VKEYTOITEM:
            case WM_CHARTOITEM:
            case WM_QUERYDRAGICON:
                return static_cast<INT_PTR>(result);
        }
        SetWindowLongPtrA(hwnd, DWLP_MSGRESULT, result);
        return TRUE;
    }
};

CONXDialogBase::CONXDialogBase() {}

CONXDialogBase::~CONXDialogBase() {
    if (m_hWnd && IsWindow(m_hWnd)) {
        // Detach first: the object is half gone, no handler may run.
        SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, 0);
        ::DestroyWindow(m_hWnd);
    }
    m_hWnd = nullptr;
}

bool CONXDialogBase::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam,
                               intptr_t* result) {
    switch (message) {
        case WM_INITDIALOG:
            *result = OnInitDialog() ? TRUE : FALSE;
            return true;
        case WM_COMMAND: {
            uint32_t id = LOWORD(wParam);
            if (id == IDOK) {
                OnOK();
                return true;
            }
            if (id == IDCANCEL) {
                OnCancel();
                return true;
            }
            return OnCommand(id, HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        }
        case WM_CLOSE: OnClose(); return true;
        case WM_SIZE:
            OnSize(static_cast<uint32_t>(wParam), LOWORD(lParam), HIWORD(lParam));
            return true;
        case WM_TIMER: OnTimer(wParam); return true;
    }
    return false;
}

bool CONXDialogBase::OnInitDialog() {
    DoDataExchange(false);
    return true;
}

bool CONXDialogBase::OnCommand(uint32_t, uint32_t, HWND) { return false; }

void CONXDialogBase::OnOK() {
    DoDataExchange(true);
    if (m_bModal) EndDialog(IDOK);
}

void CONXDialogBase::OnCancel() {
    if (m_bModal) EndDialog(IDCANCEL);
}

void CONXDialogBase::OnClose() { OnCancel(); }

void CONXDialogBase::OnSize(uint32_t, int, int) {}

void CONXDialogBase::OnTimer(uintptr_t) {}

bool CONXDialogBase::DestroyWindow() {
    if (!m_hWnd) return false;
    return ::DestroyWindow(m_hWnd) != 0;
}

void CONXDialogBase::DoDataExchange(bool) {}

void CONXDialogBase::PostNcDestroy() {}

bool CONXDialogBase::CreateModeless(uint32_t templateId, HWND parent) {
    if (m_hWnd) return false;
    COndModuleState moduleState;
    m_bModal = false;
    HWND hwnd = CreateDialogParamA(OndModuleInstance(), MAKEINTRESOURCEA(templateId), parent,
                                   TDialogProc::Proc, reinterpret_cast<LPARAM>(this));
    return hwnd != nullptr;
}

intptr_t CONXDialogBase::DoModal(uint32_t templateId, HWND parent) {
    if (m_hWnd) return -1;
    COndModuleState moduleState;
    m_bModal = true;
    INT_PTR result = DialogBoxParamA(OndModuleInstance(), MAKEINTRESOURCEA(templateId), parent,
                                     TDialogProc::Proc, reinterpret_cast<LPARAM>(this));
    m_bModal = false;
    return result;
}

void CONXDialogBase::EndDialog(intptr_t result) {
    if (m_hWnd) ::EndDialog(m_hWnd, result);
}

bool CONXDialogBase::HasWindow() const { return m_hWnd && IsWindow(m_hWnd); }

void CONXDialogBase::Show(bool visible) {
    if (m_hWnd) ShowWindow(m_hWnd, visible ? SW_SHOW : SW_HIDE);
}

bool CONXDialogBase::IsVisible() const { return m_hWnd && IsWindowVisible(m_hWnd); }

HWND CONXDialogBase::GetDlgItem(uint32_t id) const {
    return m_hWnd ? ::GetDlgItem(m_hWnd, static_cast<int>(id)) : nullptr;
}

// ---------------------------------------------------------------------------
// CONXDialog

CONXDialog::CONXDialog(uint32_t templateId, HWND) : m_nTemplateId(templateId) {}

CONXDialog::~CONXDialog() {
    if (m_hWnd) {
        // The window goes before its icon, and no handler runs for it now.
        OndApp().UnregisterDialog(m_hWnd);
        SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, 0);
        if (IsWindow(m_hWnd)) ::DestroyWindow(m_hWnd);
        m_hWnd = nullptr;
    }
    if (m_hIcon) DestroyIcon(static_cast<HICON>(m_hIcon));
}

bool CONXDialog::OnInitDialog() {
    CONXDialogBase::OnInitDialog();
    SendMessageA(m_hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_hIcon));
    SetWindowLongPtrA(m_hWnd, GWL_EXSTYLE, GetWindowLongPtrA(m_hWnd, GWL_EXSTYLE) | WS_EX_APPWINDOW);
    OndApp().RegisterDialog(m_hWnd);
    if (m_pDeviceComm) StartStatusTimer();
    UpdateDialogState();
    return true;
}

bool CONXDialog::DestroyWindow() {
    if (m_hWnd) OndApp().UnregisterDialog(m_hWnd);
    StopStatusTimer();
    return CONXDialogBase::DestroyWindow();
}

// Also when the window goes without DestroyWindow (its parent was destroyed).
void CONXDialog::PostNcDestroy() {
    OndApp().UnregisterDialog(m_hWnd);
    m_nTimerHandle = 0;
}

void CONXDialog::DoDataExchange(bool) {}

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

bool CONXDialog::Create(HWND parent) { return CreateModeless(m_nTemplateId, parent); }

void CONXDialog::AskOwnerThenHide(uint32_t event) {
    uint32_t answer = 1;
    if (m_pOwner) answer = static_cast<CONXDeviceClient*>(m_pOwner)->SignalDlgEvent(event);
    if (answer == 1 && m_hWnd) ShowWindow(m_hWnd, SW_HIDE);
}

void CONXDialog::OnOK() { AskOwnerThenHide(ONX_DLGEVENT_OK); }
void CONXDialog::OnClose() { AskOwnerThenHide(ONX_DLGEVENT_CLOSE); }
void CONXDialog::OnCancel() { AskOwnerThenHide(ONX_DLGEVENT_CANCEL); }

void CONXDialog::OnTimer(uintptr_t id) {
    if (id == m_nTimerId) UpdateDialogState();
    else CONXDialogBase::OnTimer(id);
}

void CONXDialog::OnSize(uint32_t type, int cx, int cy) {
    CONXDialogBase::OnSize(type, cx, cy);
    OnSizeDlgCtrlPlacement(cx, cy);
}

void CONXDialog::StartStatusTimer() {
    if (m_hWnd) m_nTimerHandle = SetTimer(m_hWnd, m_nTimerId, m_nTimerInterval, nullptr);
}

void CONXDialog::StopStatusTimer() {
    if (!m_nTimerHandle) return;
    if (m_hWnd && IsWindow(m_hWnd)) KillTimer(m_hWnd, m_nTimerId);
    m_nTimerHandle = 0;
}

void CONXDialog::LoadSmallIcon(uint32_t iconId) {
    if (m_hIcon) DestroyIcon(static_cast<HICON>(m_hIcon));
    m_hIcon = LoadImageA(OndModuleInstance(), MAKEINTRESOURCEA(iconId), IMAGE_ICON,
                         GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), 0);
}

void CONXDialog::UpdateCommStatus(uint32_t ctrlId) {
    if (!m_hWnd) return;
    std::string text;
    try {
        text = ChannelStatusText(m_pDeviceComm, this);
    } catch (...) {
        // Out of memory: the status is blank for this tick.
    }
    HWND control = ::GetDlgItem(m_hWnd, static_cast<int>(ctrlId));
    if (!control) return;
    // A group box draws its caption on one line unless told otherwise; the
    // status is three lines.
    LONG_PTR style = GetWindowLongPtrA(control, GWL_STYLE);
    char cls[8] = "";
    GetClassNameA(control, cls, sizeof cls);
    if (lstrcmpiA(cls, "Button") == 0 && (style & BS_TYPEMASK) == BS_GROUPBOX && !(style & BS_MULTILINE))
        SetWindowLongPtrA(control, GWL_STYLE, style | BS_MULTILINE);
    SetTextIfChanged(control, text.c_str());  // every tick: no repaint for the same text
}

void CONXDialog::RepairHorizontalScrollbarExtendInListBox(HWND listBox) {
    ListBoxFitHorizontalExtent(listBox);
}

// Each line ends in a bare line feed and the buffer carries no terminating
// zero: deliberate, kept as the module has always done it.
void CONXDialog::CopyListBoxContentToClipBoard(HWND listBox) {
    if (!listBox) return;
    LRESULT count = SendMessageA(listBox, LB_GETCOUNT, 0, 0);
    if (count <= 0) return;
    std::string text;
    for (LRESULT i = 0; i < count; ++i) {
        LRESULT length = SendMessageA(listBox, LB_GETTEXTLEN, i, 0);
        if (length < 0) length = 0;
        std::string item(static_cast<size_t>(length) + 1, '\0');
        LRESULT got = SendMessageA(listBox, LB_GETTEXT, i, reinterpret_cast<LPARAM>(&item[0]));
        item.resize(got > 0 && got <= length ? static_cast<size_t>(got) : 0);
        text += item;
        text += '\n';
    }
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size());
    if (!memory) return;
    void* bytes = GlobalLock(memory);
    if (!bytes) {
        GlobalFree(memory);
        return;
    }
    memcpy(bytes, text.data(), text.size());
    GlobalUnlock(memory);
    if (!OpenClipboard(m_hWnd)) {
        GlobalFree(memory);
        return;
    }
    if (!EmptyClipboard() || !SetClipboardData(CF_TEXT, memory)) GlobalFree(memory);
    CloseClipboard();
}

void CONXDialog::AutoDlgCtrlPlacement(uint32_t ctrlId, uint32_t flags) {
    HWND control = GetDlgItem(ctrlId);
    if (!control) return;
    RECT client, item;
    GetClientRect(m_hWnd, &client);
    MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<POINT*>(&client), 2);
    GetWindowRect(control, &item);
    try {
        m_Placement.push_back(DlgCtrlPlacement(ctrlId, flags,
                                               {client.left, client.top, client.right, client.bottom},
                                               {item.left, item.top, item.right, item.bottom}));
    } catch (...) {
        // Out of memory: this control simply stays where it is.
    }
}

void CONXDialog::OnSizeDlgCtrlPlacement(int cx, int cy) {
    if (!m_hWnd || m_Placement.empty()) return;
    HDWP defer = BeginDeferWindowPos(static_cast<int>(m_Placement.size()));
    if (!defer) return;
    for (const TONX_DLGCTRLPLACEMENT& record : m_Placement) {
        HWND control = GetDlgItem(record.ctrlId);
        if (!control) continue;
        TONX_DLGRECT to = DlgCtrlPosition(record, cx, cy);
        defer = DeferWindowPos(defer, control, nullptr, to.left, to.top, to.right - to.left,
                               to.bottom - to.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
        if (!defer) return;  // the system has freed the positioning
    }
    EndDeferWindowPos(defer);
    // Stretched lists and edits repaint whole, not only their new strip.
    for (const TONX_DLGCTRLPLACEMENT& record : m_Placement) {
        HWND control = GetDlgItem(record.ctrlId);
        if (control && DlgCtrlStretches(record.flags)) InvalidateRect(control, nullptr, FALSE);
    }
}
