// CONXScriptProcessor: the Script Processor device-client object (type
// ONX_OBJTYPE_SCRIPTPROCESSOR). Runs scripts on the caller's thread with the
// channel locked for the whole run, and keeps the host's external variables.
//
// The virtual operations added here follow the base's in the object's table;
// hosts reach them through Call (commands below) or by slot. Nothing throws
// out of this object.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/DeviceClient.h"
#include "script/ScriptRun.h"
#include "scriptrt/VariableExchange.h"

// Commands of Call.
enum : uint32_t {
    ONX_SCRIPTCMD_EXECUTE = 0x1000,       // a = text, b = output function, c = its context
    ONX_SCRIPTCMD_EXECUTEFILE = 0x1001,   // a = path, b = output function, c = its context
    ONX_SCRIPTCMD_SETVARIABLES = 0x1002,  // a = records, b = count, c = keep existing
    ONX_SCRIPTCMD_GETVARIABLES = 0x1003,  // a = records, b = count, c = uint32_t* found
};

class CONXOperatorPrompt_0;

class ONX_EXPORT CONXScriptProcessor : public CONXDeviceClient {
public:
    CONXScriptProcessor();
    CONXScriptProcessor(const CONXScriptProcessor&) = delete;
    CONXScriptProcessor& operator=(const CONXScriptProcessor&) = delete;

    uint32_t GetObjType() override;
    EONX_ERR_ERRCODE_ Call(uint32_t function, uint64_t a, uint64_t b, uint64_t c,
                           uint64_t d) override;

    // baseDirectory null: the current directory.
    virtual EONX_ERR_ERRCODE_ ExecuteScript(const char* text, const char* baseDirectory,
                                            TSCRIPTOUTPUTFUNC output, void* outputContext);
    virtual EONX_ERR_ERRCODE_ ExecuteScriptFile(const char* path, TSCRIPTOUTPUTFUNC output,
                                                void* outputContext);
    virtual EONX_ERR_ERRCODE_ SetVariables(TONX_SCRIPTVARIABLE* records, uint64_t count,
                                           bool keepExisting);
    // Texts handed out stay valid until the external variables next change.
    virtual EONX_ERR_ERRCODE_ GetVariables(TONX_SCRIPTVARIABLE* records, uint64_t count,
                                           uint32_t* foundCount);
    // From any thread: the running script ends at its next check.
    virtual void StopScript();

    // Who answers the user-input built-ins, whoever runs the script: at first
    // the module's own (OwnOperatorPrompt); a host may set its own, null =
    // nobody. Not owned.
    void SetOperatorPrompt(CONXOperatorPrompt_0* prompt) { m_runContext.m_pOperator = prompt; }
    // The module's operator dialogs on Windows; null where there are none.
    CONXOperatorPrompt_0* OwnOperatorPrompt() { return m_pOwnPrompt; }
    CONXScriptRunContext* GetRunContext() { return &m_runContext; }

    ~CONXScriptProcessor() override;

protected:
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;

private:
    EONX_ERR_ERRCODE_ RunLocked(const char* text, const char* baseDirectory,
                                TSCRIPTOUTPUTFUNC output, void* outputContext);
    EONX_ERR_ERRCODE_ LoadAndRun(const char* path, TSCRIPTOUTPUTFUNC output, void* outputContext);
    EONX_ERR_ERRCODE_ AddVariables(TONX_SCRIPTVARIABLE* records, uint64_t count);
    void ClearVariables();

    std::vector<CONXScriptVariable*> m_externals;  // owned
    CONXScriptRunContext m_runContext;
    CONXOperatorPrompt_0* m_pOwnPrompt;  // owned
};
