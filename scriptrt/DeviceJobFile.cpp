// executejobfile: every entry of a job file to the device.
#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"
#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"
#include "scriptrt/DeviceFuncs.h"
#include "scriptrt/FileNames.h"
#include "util/JobFile.h"

CONXExecuteJobFile::CONXExecuteJobFile(const TSCRIPTSYSFUNCENV& env)
    : CONXFileOp("executejobfile", env) {}

bool CONXExecuteJobFile::CheckArgumentCount(size_t count) { return count >= 1 && count <= 3; }

uint32_t CONXExecuteJobFile::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                     const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        if (arguments.size() < 1 || arguments.size() > 3) return SCRIPT_ERR_PARAMCOUNT;
        if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
        CONXScriptVariable* jobArg = static_cast<CONXScriptVariable*>(arguments[0]);
        if (jobArg->GetType() != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
        bool flags[2] = {false, false};  // continueAfterError, ignoreFailure
        for (size_t i = 1; i < arguments.size(); ++i) {
            CONXScriptVariable* flag = static_cast<CONXScriptVariable*>(arguments[i]);
            if (!ScriptTypeIsNumeric(flag->GetType())) return SCRIPT_ERR_TYPE;
            flags[i - 1] = flag->GetNumber() != 0;
        }
        const bool continueAfterError = flags[0];
        const bool ignoreFailure = flags[1];

        std::string jobFile = jobArg->GetText();
        std::string path;
        bool allowed = ScriptLocalFilePath(runContext, jobFile, &path);
        std::vector<TFILEENTRY> entries;
        if (!allowed || !ondutil::LoadJobFile(path.c_str(), &entries)) {
            if (m_output) {
                std::string line = "Could not load job file (" + path + ")\n";
                Output(line.c_str());
            }
            if (!ignoreFailure) return SCRIPT_ERR_SYSFUNC;
            if (result) return result->SetNumber(SCRIPT_ERR_SYSFUNC, SCRIPT_TYPE_UINT32);
            return 0;
        }

        int32_t firstFailure = 0;
        bool failed = false;
        for (const TFILEENTRY& entry : entries) {
            TPROGRESS progress;
            std::string name = NamePart(entry.path);
            BeginProgress(&progress, runContext, &name);
            if (m_output) {
                Output("\r");
                Output(progress.line.c_str());
            }
            // An entry outside the run's file root goes as "", which no channel can open.
            std::string local = !runContext || ScriptFilePathAllowed(runContext->m_limits, entry.path)
                                    ? entry.path
                                    : std::string();
            int32_t code = m_pChannel ? m_pChannel->TransmitFile(local.c_str(), entry.fileId,
                                                                 entry.fileType, entry.fileMode,
                                                                 Progress, &progress, 1, kProgressSteps)
                                      : -1;
            if (code == 0) {
                Output(" -> OK\n");
            } else {
                if (m_output) {
                    // Names the job file as the script wrote it, not the entry.
                    std::string line = "\n-> " + ErrorText(code) + " during ExecuteJobFile (" + jobFile + ")\n";
                    Output(line.c_str());
                }
                if (!failed) firstFailure = code;
                failed = true;
            }
            if (failed && !continueAfterError) break;
        }
        if (result) {
            if (uint32_t err = result->SetNumber((uint32_t)firstFailure, SCRIPT_TYPE_UINT32)) return err;
        }
        if (failed && !ignoreFailure) return SCRIPT_ERR_SYSFUNC;
        return 0;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}
