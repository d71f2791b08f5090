// Sub-script built-ins.
#include "scriptrt/SubScriptFuncs.h"

#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "os/Platform.h"
#include "script/ScriptExec.h"
#include "scriptrt/FileAccess.h"
#include "scriptrt/FileNames.h"
#include "scriptrt/SysFuncArgs.h"
#include "util/PathUtil.h"

namespace {

const size_t kMaxPath = 260;  // a full path name of at most 261 characters with its NUL

struct TSUBSCRIPTCALL {
    CONXScriptRunContext* caller;
    COndDeviceComm_0* channel;
    TSCRIPTOUTPUTFUNC output;
    void* outputContext;
    std::string file;                  // the name as the script passed it
    const char* functionName;          // null: the main body
    const TSCRIPTARGS* arguments;      // the call's arguments
    size_t firstFunctionArgument;      // where the function's own arguments begin
    CONXScriptVariable* result;
};

// Reads the whole file as raw bytes; 12 when it cannot be read, 1 without memory.
uint32_t ReadScriptFile(const std::string& path, std::string* text) {
    FILE* f = OsOpenFile(path.c_str(), "rb");
    if (!f) return SCRIPT_ERR_SYSFUNC;
    uint64_t size = 0;
    uint32_t code = 0;
    try {
        if (!ScriptOpenFileSize(f, &size) || size > 0xFFFFFFFFu || !ScriptSeekFile(f, 0)) {
            code = SCRIPT_ERR_SYSFUNC;
        } else {
            text->resize((size_t)size);
            if (size && fread(&(*text)[0], 1, (size_t)size, f) != size) code = SCRIPT_ERR_SYSFUNC;
        }
    } catch (...) {
        code = SCRIPT_ERR_OUTOFMEMORY;
    }
    fclose(f);
    return code;
}

uint32_t RunSubScript(const TSUBSCRIPTCALL& call) {
    CONXScriptRunContext* caller = call.caller;
    std::string path, fullPath, folder, text;
    if (!ScriptLocalFilePath(caller, call.file, &path)) return SCRIPT_ERR_SYSFUNC;
    if (!OsFullPathName(path.c_str(), &fullPath) || fullPath.size() > kMaxPath)
        return SCRIPT_ERR_SYSFUNC;
    ondutil::SplitFileName(fullPath, &folder, nullptr);
    if (uint32_t err = ReadScriptFile(fullPath, &text)) return err;

    std::vector<CONXScriptVariable*> functionArguments;  // checked to be variables by the caller
    for (size_t i = call.firstFunctionArgument; i < call.arguments->size(); i++)
        functionArguments.push_back(static_cast<CONXScriptVariable*>((*call.arguments)[i]));

    COsEvent* stop = caller ? caller->GetStopEvent() : nullptr;
    // The run resets the shared event when it starts: a stop requested before
    // that would be lost, so it ends the call here.
    if (stop && stop->IsSet()) return SCRIPT_ERR_ABORTED;
    CONXScriptRunContext context(stop);
    if (caller) {
        context.m_limits = caller->m_limits;
        context.m_sysFuncFactories = caller->m_sysFuncFactories;
        context.m_pOperator = caller->m_pOperator;
        // A bounded run shares its budget of steps: the sub-script gets half of
        // what is left and the caller is charged for it now, so nesting and
        // loops of sub-scripts cannot multiply the bound.
        CONXScriptExecContext* exec = caller->m_pExec;
        if (exec && exec->maxSteps) {
            uint64_t left = exec->steps < exec->maxSteps ? exec->maxSteps - exec->steps : 0;
            if (left < 2) return SCRIPT_ERR_ABORTED;
            context.m_limits.maxSteps = left / 2;
            exec->steps += left / 2;
        }
    }
    uint32_t code = RunScript(&context, call.channel, text.c_str(), folder.c_str(), nullptr,
                              call.functionName,
                              call.functionName ? &functionArguments : nullptr, call.output,
                              call.outputContext, call.result);
    if (code && call.output) {
        call.output(call.outputContext, "in subscript \"");
        call.output(call.outputContext, call.file.c_str());
        call.output(call.outputContext, "\"\n");
    }
    return code;
}

uint32_t RunSubScriptSafely(const TSUBSCRIPTCALL& call) {
    try {
        return RunSubScript(call);
    } catch (const std::bad_alloc&) {
        return SCRIPT_ERR_OUTOFMEMORY;
    } catch (const std::length_error&) {
        return SCRIPT_ERR_OUTOFMEMORY;
    }
}

}  // namespace

// --- executesubscript(file) ---

CONXExecuteSubScript::CONXExecuteSubScript(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("executesubscript", env.output, env.outputContext), m_pChannel(env.channel) {}

bool CONXExecuteSubScript::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXExecuteSubScript::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                       const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "s")) return err;
    try {
        TSUBSCRIPTCALL call = {runContext, m_pChannel, m_output, m_outputContext,
                               ScriptArgText(arguments, 0), nullptr, &arguments, 1, result};
        return RunSubScriptSafely(call);
    } catch (const std::bad_alloc&) {
        return SCRIPT_ERR_OUTOFMEMORY;
    }
}

// --- executesubscriptfunc(file, function, arguments...) ---

CONXExecuteSubScriptFunc::CONXExecuteSubScriptFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("executesubscriptfunc", env.output, env.outputContext),
      m_pChannel(env.channel) {}

bool CONXExecuteSubScriptFunc::CheckArgumentCount(size_t count) { return count >= 2; }

uint32_t CONXExecuteSubScriptFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                           const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    // Every argument must be a variable, the handed-on ones too, before anything is read.
    if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
    TSCRIPTARGS firstTwo = {arguments.items, 2};
    if (uint32_t err = ScriptCheckArguments(firstTwo, "ss")) return err;
    try {
        std::string function = ScriptArgText(arguments, 1).c_str();
        TSUBSCRIPTCALL call = {runContext,   m_pChannel, m_output, m_outputContext,
                               ScriptArgText(arguments, 0), function.c_str(), &arguments, 2,
                               result};
        return RunSubScriptSafely(call);
    } catch (const std::bad_alloc&) {
        return SCRIPT_ERR_OUTOFMEMORY;
    }
}
