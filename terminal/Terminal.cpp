#include "terminal/Terminal.h"

#include "frame/Dialog.h"

uint32_t CONXTerminal::GetObjType() { return ONX_OBJTYPE_TERMINAL; }

// Nothing outlives a handler here: the dialog's own destructor runs at once.
void CONXTerminal::DeleteDialog(CONXDialog* dialog) { delete dialog; }

EONX_ERR_ERRCODE_ CONXTerminal::ShowDialogNonModal(HWND parent) {
    EONX_ERR_ERRCODE_ result = CONXDeviceClient::ShowDialogNonModal(parent);
    if (result != EONX_ERR_NONE) return result;
    FocusInputLine();
    return EONX_ERR_NONE;
}

CONXTerminal::~CONXTerminal() {}
