// Sub-script built-ins.
#include <string>
#include <vector>

#include "os/Platform.h"
#include "script/ScriptExec.h"
#include "scriptrt/FileNames.h"
#include "scriptrt/SysFuncs.h"
#include "util/PathUtil.h"
#include "util/WholeFile.h"

namespace ondbuiltin {

namespace {

const size_t kMaxPath = 260;  // a full path name of at most 261 characters with its NUL

// Reads the whole file as raw bytes; 12 when it cannot be read, 1 without memory.
uint32_t ReadScriptFile(const std::string& path, std::string* text) {
    try {
        return ondutil::ReadWholeFile(path.c_str(), text) == ondutil::WHOLEFILE_OK ? 0 : SCRIPT_ERR_SYSFUNC;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;
    }
}

// Runs the file's main body (functionName null) or its function functionName
// with the call's arguments from firstArgument on.
uint32_t RunSubScript(const TSCRIPTSYSCALL& call, const char* functionName, size_t firstArgument) {
    CONXScriptRunContext* caller = call.run;
    const std::string file = call.Text(0);  // the name as the script passed it
    std::string path, fullPath, folder, text;
    if (!ScriptLocalFilePath(caller, file, &path)) return SCRIPT_ERR_SYSFUNC;
    if (!OsFullPathName(path.c_str(), &fullPath) || fullPath.size() > kMaxPath)
        return SCRIPT_ERR_SYSFUNC;
    ondutil::SplitFileName(fullPath, &folder, nullptr);
    if (uint32_t err = ReadScriptFile(fullPath, &text)) return err;

    std::vector<CONXScriptVariable*> functionArguments;  // checked to be variables by the caller
    for (size_t i = firstArgument; i < call.Count(); i++)
        functionArguments.push_back(static_cast<CONXScriptVariable*>(call.arguments[i]));

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
    uint32_t code = RunScript(&context, text.c_str(),
                              {.channel = call.env.channel, .scriptDirectory = folder.c_str(),
                               .output = call.env.output, .outputContext = call.env.outputContext,
                               .functionName = functionName,
                               .functionArguments = functionName ? &functionArguments : nullptr,
                               .result = call.result});
    if (code) {
        call.Output("in subscript \"");
        call.Output(file.c_str());
        call.Output("\"\n");
    }
    return code;
}

}  // namespace

uint32_t ExecuteSubScript(const TSCRIPTSYSCALL& call) { return RunSubScript(call, nullptr, 1); }

uint32_t ExecuteSubScriptFunc(const TSCRIPTSYSCALL& call) {
    std::string function = call.Text(1).c_str();  // the name ends at a NUL byte
    return RunSubScript(call, function.c_str(), 2);
}

}  // namespace ondbuiltin

