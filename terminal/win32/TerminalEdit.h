// CTerminalEdit: the Terminal's input line, an edit control whose key-downs
// are first offered to its parent. With a notification message set, each
// key-down is sent to the parent window (wParam = the virtual key, lParam =
// 0); a non-zero answer means the parent used the key and the edit control
// never sees it. The dialog uses this for the history keys Up and Down.
#pragma once

#include <windows.h>

#include <cstdint>

class CTerminalEdit {
public:
    CTerminalEdit() = default;
    CTerminalEdit(const CTerminalEdit&) = delete;
    CTerminalEdit& operator=(const CTerminalEdit&) = delete;
    ~CTerminalEdit() { Detach(); }

    // Takes over the edit control's window procedure.
    bool Attach(HWND edit);
    // Gives the control its own procedure back (also done when it is destroyed).
    void Detach();

    uint32_t m_nNotifyMessage = 0;  // 0 = none

private:
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);

    HWND m_hWnd = nullptr;
    WNDPROC m_pOriginal = nullptr;
};
