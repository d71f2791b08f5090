#include "terminal/win32/TerminalEdit.h"

namespace {
// The object rides on the control in a window property: the control's user
// data is its owner's to use.
const char kProperty[] = "OndTerminalEdit";
}  // namespace

bool CTerminalEdit::Attach(HWND edit) {
    if (m_hWnd || !edit) return false;
    if (!SetPropA(edit, kProperty, this)) return false;
    m_hWnd = edit;
    m_pOriginal = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WindowProc)));
    if (!m_pOriginal) {
        RemovePropA(edit, kProperty);
        m_hWnd = nullptr;
        return false;
    }
    return true;
}

void CTerminalEdit::Detach() {
    if (!m_hWnd) return;
    if (IsWindow(m_hWnd)) {
        SetWindowLongPtrA(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pOriginal));
        RemovePropA(m_hWnd, kProperty);
    }
    m_hWnd = nullptr;
}

LRESULT CALLBACK CTerminalEdit::WindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    auto* self = static_cast<CTerminalEdit*>(GetPropA(hwnd, kProperty));
    if (!self) return DefWindowProcA(hwnd, msg, wParam, lParam);  // not reached while attached
    WNDPROC original = self->m_pOriginal;
    if (msg == WM_KEYDOWN && self->m_nNotifyMessage != 0) {
        // Sent, not posted: the parent answers whether it used the key.
        if (SendMessageA(GetParent(hwnd), self->m_nNotifyMessage, wParam, 0) != 0) return 0;
    } else if (msg == WM_NCDESTROY) {
        self->Detach();
    }
    return CallWindowProcA(original, hwnd, msg, wParam, lParam);
}
