#include "scriptrt/ScriptProcessor.h"

#include <cstring>
#include <memory>
#include <string>

#include "frame/ChannelLock.h"
#include "frame/Dialog.h"
#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptLexer.h"
#include "script/ScriptValue.h"
#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/SysFuncTable.h"
#include "util/OutOfMemory.h"
#include "util/WholeFile.h"

namespace {

const uint32_t kMaxFullPath = 260;  // longer full names are refused, as with a 261-byte buffer

// body() with the channel locked for owner (one Lock, one Unlock), behind the
// object's exception wall.
template <class TBody>
EONX_ERR_ERRCODE_ WhileLocked(COndDeviceComm_0* channel, void* owner, TBody&& body) {
    return ondutil::CatchAll(EONX_ERR_OUTOFMEMORY, EONX_ERR_SCRIPTFAILED, [&] {
        CChannelLock lock(channel, owner, ONDCOMM_LOCK_USER_MS);
        if (!lock.Held()) return EONX_ERR_LOCKED;
        return body();
    });
}

}  // namespace

CONXScriptProcessor::CONXScriptProcessor() : m_pOwnPrompt(ScriptNewOwnOperatorPrompt()) {
    m_runContext.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    m_runContext.m_pOperator = m_pOwnPrompt;
}

CONXScriptProcessor::~CONXScriptProcessor() {
    // The dialog goes first: its worker may still refer to the variables.
    if (m_pDialog) {
        if (m_pDialog->HasWindow()) m_pDialog->DestroyWindow();
        DeleteDialog(m_pDialog);
        m_pDialog = nullptr;
    }
    ClearVariables();
    delete m_pOwnPrompt;
}

uint32_t CONXScriptProcessor::GetObjType() { return ONX_OBJTYPE_SCRIPTPROCESSOR; }

EONX_ERR_ERRCODE_ CONXScriptProcessor::Call(uint32_t function, uint64_t a, uint64_t b, uint64_t c,
                                            uint64_t d) {
    switch (function) {
    case ONX_SCRIPTCMD_EXECUTE:
        return ExecuteScript(reinterpret_cast<const char*>(a), nullptr,
                             reinterpret_cast<TSCRIPTOUTPUTFUNC>(b), reinterpret_cast<void*>(c));
    case ONX_SCRIPTCMD_EXECUTEFILE:
        return ExecuteScriptFile(reinterpret_cast<const char*>(a),
                                 reinterpret_cast<TSCRIPTOUTPUTFUNC>(b), reinterpret_cast<void*>(c));
    case ONX_SCRIPTCMD_SETVARIABLES:
        return SetVariables(reinterpret_cast<TONX_SCRIPTVARIABLE*>(a), b, c != 0);
    case ONX_SCRIPTCMD_GETVARIABLES:
        return GetVariables(reinterpret_cast<TONX_SCRIPTVARIABLE*>(a), b,
                            reinterpret_cast<uint32_t*>(c));
    default:
        return CONXDeviceClient::Call(function, a, b, c, d);
    }
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::ExecuteScript(const char* text, const char* baseDirectory,
                                                     TSCRIPTOUTPUTFUNC output, void* outputContext) {
    if (!m_pDeviceComm) return EONX_ERR_NOCHANNEL;
    return WhileLocked(m_pDeviceComm, this,
                       [&] { return RunLocked(text, baseDirectory, output, outputContext); });
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::RunLocked(const char* text, const char* baseDirectory,
                                                 TSCRIPTOUTPUTFUNC output, void* outputContext) {
    uint32_t code = RunScript(&m_runContext, text,
                              {.channel = m_pDeviceComm, .scriptDirectory = baseDirectory,
                               .externals = &m_externals, .output = output, .outputContext = outputContext});
    // The class bits go: exit() (a "User Error" of code 0) is a success, while a
    // user error with a code is a failure.
    return (code & SCRIPT_ERR_CODEMASK) ? EONX_ERR_SCRIPTFAILED : EONX_ERR_NONE;
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::ExecuteScriptFile(const char* path, TSCRIPTOUTPUTFUNC output,
                                                         void* outputContext) {
    if (!path || !*path) return EONX_ERR_EMPTYPATH;
    if (!m_pDeviceComm) return EONX_ERR_NOCHANNEL;
    return WhileLocked(m_pDeviceComm, this, [&] { return LoadAndRun(path, output, outputContext); });
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::LoadAndRun(const char* path, TSCRIPTOUTPUTFUNC output,
                                                  void* outputContext) {
    std::string fullPath;
    if (!OsFullPathName(path, &fullPath) || fullPath.size() > kMaxFullPath) return EONX_ERR_FILEOPEN;
    std::string text;
    switch (ondutil::ReadWholeFile(fullPath.c_str(), &text)) {
    case ondutil::WHOLEFILE_OPEN: return EONX_ERR_FILEOPEN;
    case ondutil::WHOLEFILE_READ: return EONX_ERR_FILEREAD;
    case ondutil::WHOLEFILE_OK: break;
    }
    // The base directory is the full path without the file name and its separator.
    size_t cut = fullPath.find_last_of('\\');
    std::string baseDirectory = cut == std::string::npos ? std::string() : fullPath.substr(0, cut);
    // The one lock of this call covers the run too.
    return RunLocked(text.c_str(), baseDirectory.c_str(), output, outputContext);
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::SetVariables(TONX_SCRIPTVARIABLE* records, uint64_t count,
                                                    bool keepExisting) {
    if (!keepExisting) ClearVariables();
    if (count == 0) return EONX_ERR_NONE;
    if (!records) return EONX_ERR_NONE;
    return ondutil::CatchAll(EONX_ERR_OUTOFMEMORY, EONX_ERR_OUTOFMEMORY,
                             [&] { return AddVariables(records, count); });
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::AddVariables(TONX_SCRIPTVARIABLE* records, uint64_t count) {
    for (uint64_t i = 0; i < count; ++i) {
        const TONX_SCRIPTVARIABLE& record = records[i];
        uint32_t type = record.type;
        if (!ScriptTypeIsNumeric(type) && type != SCRIPT_TYPE_STRING) continue;
        // The records taken so far stay; a failure here throws or returns.
        std::unique_ptr<CONXScriptVariable> variable(new CONXScriptVariable);
        variable->SetName(record.name);
        variable->SetType(type);
        const void* value = reinterpret_cast<const void*>((uintptr_t)record.value);
        bool stored;
        if (type == SCRIPT_TYPE_STRING) {
            uint32_t length;  // only the low 32 bits count when setting
            std::memcpy(&length, &record.length, sizeof length);
            std::string bytes;
            if (value) bytes.assign(static_cast<const char*>(value), length);
            stored = variable->SetText(bytes) == 0;
        } else {
            uint64_t number = 0;
            if (value) std::memcpy(&number, value, sizeof number);
            stored = variable->SetNumber(number, type) == 0;
        }
        if (!stored) return EONX_ERR_OUTOFMEMORY;
        m_externals.push_back(variable.get());
        variable.release();
    }
    return EONX_ERR_NONE;
}

EONX_ERR_ERRCODE_ CONXScriptProcessor::GetVariables(TONX_SCRIPTVARIABLE* records, uint64_t count,
                                                    uint32_t* foundCount) {
    uint32_t found = 0;
    for (uint64_t i = 0; records && i < count; ++i) {
        TONX_SCRIPTVARIABLE& record = records[i];
        if (!record.name) continue;
        for (CONXScriptVariable* external : m_externals) {
            if (external->GetObjectKind() != SCRIPT_OBJ_VARIABLE) continue;
            if (!ScriptNamesEqual(external->GetName(), record.name)) continue;
            CONXScriptVariable* variable = external->Resolved();
            uint32_t type = variable->Type();
            record.type = type;
            if (type == SCRIPT_TYPE_UINT32) {
                uint32_t value = (uint32_t)variable->Number();
                std::memcpy(&record.value, &value, sizeof value);
            } else if (ScriptTypeIsNumeric(type)) {
                record.value = variable->Number();
            } else if (type == SCRIPT_TYPE_STRING) {
                record.value = (uint64_t)(uintptr_t)variable->Text().c_str();
                record.length = variable->Text().size();
            }
            found++;  // every match counts; with duplicates the last one stands
        }
    }
    if (foundCount) *foundCount = found;
    return EONX_ERR_NONE;
}

void CONXScriptProcessor::StopScript() { m_runContext.RequestStop(); }

void CONXScriptProcessor::ClearVariables() {
    for (auto it = m_externals.rbegin(); it != m_externals.rend(); ++it) delete *it;
    m_externals.clear();
}

// CreateNewDialog is the platform's: scriptrt/win32 and scriptrt/posix.

void CONXScriptProcessor::DeleteDialog(CONXDialog* dialog) { delete dialog; }
