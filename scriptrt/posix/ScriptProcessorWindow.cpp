// Without a window system the Script Processor has no window: ShowDialogNonModal
// answers EONX_ERR_DIALOG.
#include "scriptrt/ScriptProcessor.h"

CONXDialog* CONXScriptProcessor::CreateNewDialog(HWND) { return nullptr; }
