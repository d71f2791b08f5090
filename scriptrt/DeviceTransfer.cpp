// transmitfile and transmitfilefromstring.
#include <string>

#include "frame/OndDeviceComm.h"
#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"
#include "scriptrt/DeviceFuncs.h"

namespace {

constexpr int32_t kNoChannel = -1;  // the code a transfer gets when the run has no channel

CONXScriptVariable* Arg(const TSCRIPTARGS& arguments, size_t i) {
    return static_cast<CONXScriptVariable*>(arguments[i]);
}

}  // namespace

CONXTransmitFile::CONXTransmitFile(const TSCRIPTSYSFUNCENV& env) : CONXFileOp("transmitfile", env) {}

bool CONXTransmitFile::CheckArgumentCount(size_t count) { return count == 4 || count == 5; }

uint32_t CONXTransmitFile::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        bool ignoreFailure = false;
        if (uint32_t err = CheckTransferArguments(arguments, &ignoreFailure)) return err;
        std::string file = Arg(arguments, 0)->GetText();
        uint8_t fileId = (uint8_t)Arg(arguments, 1)->GetNumber();
        uint8_t fileType = (uint8_t)Arg(arguments, 2)->GetNumber();
        uint32_t fileMode = (uint32_t)Arg(arguments, 3)->GetNumber();

        TPROGRESS progress;
        std::string name = NamePart(file);
        BeginProgress(&progress, runContext, &name);
        std::string path = LocalPath(runContext, file);
        int32_t code = m_pChannel ? m_pChannel->TransmitFile(path.c_str(), fileId, fileType, fileMode,
                                                             Progress, &progress, 1, kProgressSteps)
                                  : kNoChannel;
        if (result) {
            if (uint32_t err = result->SetNumber((uint32_t)code, SCRIPT_TYPE_UINT32)) return err;
        }
        if (code == 0) {
            Output(" -> OK\n");
            return 0;
        }
        if (m_output) {
            std::string line = "\n" + ErrorText(code) + " during TransmitFile (" + name + ")\n";
            Output(line.c_str());
        }
        return ignoreFailure ? 0 : SCRIPT_ERR_SYSFUNC;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}

CONXTransmitFileFromString::CONXTransmitFileFromString(const TSCRIPTSYSFUNCENV& env)
    : CONXFileOp("transmitfilefromstring", env) {}

bool CONXTransmitFileFromString::CheckArgumentCount(size_t count) { return count == 4 || count == 5; }

uint32_t CONXTransmitFileFromString::Execute(CONXScriptRunContext* runContext,
                                             CONXScriptFunc* symbols, const TSCRIPTARGS& arguments,
                                             CONXScriptVariable* result) {
    try {
        bool ignoreFailure = false;
        if (uint32_t err = CheckTransferArguments(arguments, &ignoreFailure)) return err;
        CONXScriptVariable* data = Arg(arguments, 0)->Resolved();
        uint8_t fileId = (uint8_t)Arg(arguments, 1)->GetNumber();
        uint8_t fileType = (uint8_t)Arg(arguments, 2)->GetNumber();
        uint32_t fileMode = (uint32_t)Arg(arguments, 3)->GetNumber();

        TPROGRESS progress;
        BeginProgress(&progress, runContext, nullptr);
        if (m_output) {
            Output("\r");
            Output(progress.line.c_str());
        }
        int32_t code = m_pChannel ? m_pChannel->TransmitFileFromMemory(
                                        data->Text().data(), data->Text().size(), fileId, fileType,
                                        fileMode, Progress, &progress, 1, kProgressSteps)
                                  : kNoChannel;
        if (result) {
            if (uint32_t err = result->SetNumber((uint32_t)code, SCRIPT_TYPE_UINT32)) return err;
        }
        if (code == 0) {
            Output(" -> OK\n");
            return 0;
        }
        if (m_output) {
            // Deliberately unlike the other two failure lines: no name, no parenthesis.
            std::string line = "\n" + ErrorText(code) + " during TransmitFileFromString\n";
            Output(line.c_str());
        }
        return ignoreFailure ? 0 : SCRIPT_ERR_SYSFUNC;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}
