#include "scriptrt/ScriptProcessor.h"

#include "frame/Dialog.h"

uint32_t CONXScriptProcessor::GetObjType() { return ONX_OBJTYPE_SCRIPTPROCESSOR; }

// The window of this object arrives with the Windows front end; until then
// ShowDialogNonModal answers EONX_ERR_DIALOG.
CONXDialog* CONXScriptProcessor::CreateNewDialog(HWND) { return nullptr; }

void CONXScriptProcessor::DeleteDialog(CONXDialog* dialog) { delete dialog; }
