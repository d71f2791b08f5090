// The Script Processor's window on Windows.
#include <new>

#include "scriptrt/ScriptProcessor.h"
#include "scriptrt/win32/ScriptProcessorDialog.h"

CONXDialog* CONXScriptProcessor::CreateNewDialog(HWND parent) {
    return new (std::nothrow) CScriptProcessorDialog(parent);
}
