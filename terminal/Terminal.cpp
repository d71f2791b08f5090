#include "terminal/Terminal.h"

#include "frame/Dialog.h"

uint32_t CONXTerminal::GetObjType() { return ONX_OBJTYPE_TERMINAL; }

// The window of this object arrives with the Windows front end; until then
// ShowDialogNonModal answers EONX_ERR_DIALOG.
CONXDialog* CONXTerminal::CreateNewDialog(HWND) { return nullptr; }

void CONXTerminal::DeleteDialog(CONXDialog* dialog) { delete dialog; }
