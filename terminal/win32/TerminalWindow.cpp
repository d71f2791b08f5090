// The Terminal's window on Windows.
#include <new>

#include "frame/win32/ModuleInstance.h"
#include "terminal/Terminal.h"
#include "terminal/win32/TerminalDialog.h"

CONXDialog* CONXTerminal::CreateNewDialog(HWND) {
    COndModuleState moduleState;  // the module's resources while it is made
    return new (std::nothrow) CTerminalDialog(nullptr);
}

void CONXTerminal::FocusInputLine() {
    // Only this object makes this dialog.
    if (m_pDialog) static_cast<CTerminalDialog*>(m_pDialog)->FocusInputLine();
}
