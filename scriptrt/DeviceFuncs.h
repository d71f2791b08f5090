// Built-ins that talk to the device through the run's channel: strings both
// ways, files and strings as device files, job files. They never lock the
// channel; the Script Processor holds it for the whole run.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptSysFunc.h"

class COndDeviceComm_0;
class COsEvent;

// transmitstring(s): sends the bytes of s; the channel's answer is not looked at.
class CONXTransmitString : public CONXScriptSysFunc {
public:
    explicit CONXTransmitString(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    COndDeviceComm_0* m_pChannel;
};

// receivestring(): everything the device has to give, until it has nothing more.
// A device that keeps sending is cut off by a stop request (13) or by the
// run's string limit (1).
class CONXReceiveString : public CONXScriptSysFunc {
public:
    explicit CONXReceiveString(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    COndDeviceComm_0* m_pChannel;
};

// Base of the file transfers: the channel, the progress line and the stop
// event that the progress callback watches.
class CONXFileOp : public CONXScriptSysFunc {
public:
    CONXFileOp(const char* name, const TSCRIPTSYSFUNCENV& env);

protected:
    static constexpr uint32_t kProgressSteps = 40;

    // One transfer's progress: the channel calls Progress with it.
    struct TPROGRESS {
        CONXFileOp* self;
        COsEvent* stopEvent;
        uint32_t steps;
        std::string line;   // [name part + " "] + bar
        size_t barOffset;   // where the bar starts in line
    };
    // namePart null: the bar alone; otherwise the name part and one blank before it.
    void BeginProgress(TPROGRESS* progress, CONXScriptRunContext* runContext,
                       const std::string* namePart);
    static int32_t Progress(void* context, uint32_t stepsDone);

    // The local path for a script's file name (see FileNames.h); a name that
    // leads outside the run's file root gives "", which no channel can open.
    static std::string LocalPath(CONXScriptRunContext* runContext, const std::string& name);
    // The channel's text for a transfer's error code.
    std::string ErrorText(int32_t code);
    // The name part of a path: what follows its last backslash.
    static std::string NamePart(const std::string& path);
    // Argument checks shared by transmitfile and transmitfilefromstring.
    static uint32_t CheckTransferArguments(const TSCRIPTARGS& arguments, bool* ignoreFailure);

    COndDeviceComm_0* m_pChannel;
};

// transmitfile(file, fileId, fileType, fileMode [, ignoreFailure])
class CONXTransmitFile : public CONXFileOp {
public:
    explicit CONXTransmitFile(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// transmitfilefromstring(data, fileId, fileType, fileMode [, ignoreFailure])
class CONXTransmitFileFromString : public CONXFileOp {
public:
    explicit CONXTransmitFileFromString(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// executejobfile(jobFile [, continueAfterError [, ignoreFailure]])
class CONXExecuteJobFile : public CONXFileOp {
public:
    explicit CONXExecuteJobFile(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};
