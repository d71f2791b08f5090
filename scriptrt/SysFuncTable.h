// The table of built-in functions: every built-in of the Script Processor, in
// registration order, made fresh for each run.
#pragma once

#include <vector>

#include "script/ScriptRun.h"

class CONXScriptSysFunc;

// Appends one object of each built-in to functions; the run owns and deletes them.
// A factory for CONXScriptRunContext::m_sysFuncFactories.
void ScriptRuntimeFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* functions);
