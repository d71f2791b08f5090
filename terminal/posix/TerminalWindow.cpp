// Without a window system the Terminal has no window: ShowDialogNonModal
// answers EONX_ERR_DIALOG. dcsterm is the Terminal for the console.
#include "terminal/Terminal.h"

CONXDialog* CONXTerminal::CreateNewDialog(HWND) { return nullptr; }

void CONXTerminal::FocusInputLine() {}
