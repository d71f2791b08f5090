// The file transfers' common part: file names, progress line, error text.
#include <string>

#include "frame/OndDeviceComm.h"
#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"
#include "scriptrt/DeviceFuncs.h"
#include "scriptrt/FileNames.h"
#include "util/PathUtil.h"

CONXFileOp::CONXFileOp(const char* name, const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc(name, env.output, env.outputContext), m_pChannel(env.channel) {}

std::string CONXFileOp::LocalPath(CONXScriptRunContext* runContext, const std::string& name) {
    std::string path;
    if (!ScriptLocalFilePath(runContext, name, &path)) path.clear();
    return path;
}

std::string CONXFileOp::NamePart(const std::string& path) {
    // The path utilities' split: a backslash at index 0 is no separator, and
    // a path ending in a backslash has an empty name part.
    std::string name;
    ondutil::SplitFileName(path, nullptr, &name);
    return name;
}

void CONXFileOp::BeginProgress(TPROGRESS* progress, CONXScriptRunContext* runContext,
                               const std::string* namePart) {
    progress->self = this;
    progress->stopEvent = runContext ? runContext->GetStopEvent() : nullptr;
    progress->steps = kProgressSteps;
    progress->line = namePart ? *namePart + ' ' : std::string();
    progress->barOffset = progress->line.size();
    progress->line.append(kProgressSteps, '.');
}

int32_t CONXFileOp::Progress(void* context, uint32_t stepsDone) {
    TPROGRESS* progress = static_cast<TPROGRESS*>(context);
    uint32_t done = stepsDone < progress->steps ? stepsDone : progress->steps;
    for (uint32_t i = 0; i < done; ++i) progress->line[progress->barOffset + i] = '#';
    if (progress->self->m_output) {
        progress->self->Output("\r");
        progress->self->Output(progress->line.c_str());
    }
    // A stop request asks the channel to abort; the code it then returns is
    // a transfer failure like any other (with ignoreFailure the script goes on
    // and the engine sees the stop at its next loop round).
    return progress->stopEvent && progress->stopEvent->IsSet() ? 1 : 0;
}

std::string CONXFileOp::ErrorText(int32_t code) {
    const char* text = m_pChannel ? m_pChannel->GetInfoString(ONDCOMM_INFO_ERRORTEXT, (int64_t)code)
                                  : nullptr;
    return text ? std::string(text) : std::string();
}

uint32_t CONXFileOp::CheckTransferArguments(const TSCRIPTARGS& arguments, bool* ignoreFailure) {
    if (arguments.size() != 4 && arguments.size() != 5) return SCRIPT_ERR_PARAMCOUNT;
    if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
    *ignoreFailure = false;
    if (arguments.size() == 5) {
        CONXScriptVariable* flag = static_cast<CONXScriptVariable*>(arguments[4]);
        if (!ScriptTypeIsNumeric(flag->GetType())) return SCRIPT_ERR_TYPE;
        *ignoreFailure = flag->GetNumber() != 0;
    }
    if (static_cast<CONXScriptVariable*>(arguments[0])->GetType() != SCRIPT_TYPE_STRING)
        return SCRIPT_ERR_TYPE;
    for (size_t i = 1; i < 4; ++i)
        if (!ScriptTypeIsNumeric(static_cast<CONXScriptVariable*>(arguments[i])->GetType()))
            return SCRIPT_ERR_TYPE;
    return 0;
}
