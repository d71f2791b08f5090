// Without a window system the Script Processor has no window: ShowDialogNonModal
// answers EONX_ERR_DIALOG; and nobody is asked the operator's questions
// unless a host brings a prompt of its own.
#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/ScriptProcessor.h"

CONXDialog* CONXScriptProcessor::CreateNewDialog(HWND) { return nullptr; }

CONXOperatorPrompt_0* ScriptNewOwnOperatorPrompt() { return nullptr; }
