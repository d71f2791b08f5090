// The Terminal's window on Windows.
#include <new>

#include "terminal/Terminal.h"
#include "terminal/win32/TerminalDialog.h"

CONXDialog* CONXTerminal::CreateNewDialog(HWND parent) {
    return new (std::nothrow) CTerminalDialog(parent);
}

void CONXTerminal::FocusInputLine() {
    // Only this object makes this dialog.
    if (m_pDialog) static_cast<CTerminalDialog*>(m_pDialog)->FocusInputLine();
}
