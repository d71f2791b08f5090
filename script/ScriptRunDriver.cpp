// The run driver: build the predefined names, parse, execute, report, destroy.
#include <memory>
#include <new>
#include <stdexcept>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "script/ScriptStack.h"
#include "script/ScriptSysFunc.h"

CONXScriptRunContext::CONXScriptRunContext() : m_pStopEvent(new COsEvent), m_ownsEvent(true) {}

CONXScriptRunContext::CONXScriptRunContext(COsEvent* stopEvent)
    : m_pStopEvent(stopEvent), m_ownsEvent(false) {}

CONXScriptRunContext::~CONXScriptRunContext() {
    if (m_ownsEvent) delete m_pStopEvent;
}

void CONXScriptRunContext::RequestStop() {
    if (m_pStopEvent) m_pStopEvent->Set();
}

namespace {

const char kVersion[] = "0.4";  // the language version scripts can read
const size_t kMaxDirectory = 260;

// Instrumented builds have far larger frames on the paths between two checks.
#if defined(__SANITIZE_ADDRESS__)
const uint32_t kExtraReserve = 24u << 10;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
const uint32_t kExtraReserve = 24u << 10;
#else
const uint32_t kExtraReserve = 0;
#endif
#else
const uint32_t kExtraReserve = 0;
#endif

// Restores what a run changed in its context and thread, however it ends.
struct TRUNRESTORE {
    CONXScriptRunContext* context;
    CONXScriptExecContext* outerExec;
    TSCRIPTSTRINGBUDGET* outerBudget;
    ~TRUNRESTORE() {
        context->m_pExec = outerExec;
        SetScriptStringBudget(outerBudget);
    }
};

uint32_t Run(CONXScriptRunContext* context, CONXScriptExecContext* exec, COndDeviceComm_0* channel,
             std::vector<CONXScriptVariable*>* externals, const char* functionName,
             const std::vector<CONXScriptVariable*>* functionArguments, TSCRIPTOUTPUTFUNC output,
             void* outputContext, CONXScriptVariable* result, bool parseOnly, const char** phase) {
    std::unique_ptr<CONXScriptFunc> program(new CONXScriptFunc);
    program->SetName("@MAIN");
    CONXScriptVariable version;
    version.SetName("version");
    (void)version.SetText(kVersion);
    struct TOWNED {
        std::vector<CONXScriptSysFunc*> list;
        ~TOWNED() {
            for (auto it = list.rbegin(); it != list.rend(); ++it) delete *it;
        }
    } sysFuncs;
    TSCRIPTSYSFUNCENV env = {output, outputContext, channel};
    for (TSCRIPTSYSFUNCFACTORY factory : context->m_sysFuncFactories) factory(env, &sysFuncs.list);
    TSCRIPTOBJLIST predefined;
    predefined.push_back(&version);
    predefined.insert(predefined.end(), sysFuncs.list.begin(), sysFuncs.list.end());
    // The embedder's variables come last, so they hide a built-in of the same name.
    if (externals) predefined.insert(predefined.end(), externals->begin(), externals->end());
    program->AddOuterNames(predefined);

    if (context->GetStopEvent()) context->GetStopEvent()->Reset();
    uint32_t code = program->ParseBody(exec, 0);
    if (code || parseOnly) return code;
    *phase = "executing";
    if (functionName) {
        std::vector<CONXScriptObject*> list;
        if (functionArguments) list.assign(functionArguments->begin(), functionArguments->end());
        TSCRIPTARGS args;
        args.items = list.data();
        args.count = list.size();
        return program->ExecuteFunction(exec, functionName, args, result);
    }
    exec->Bind(&program->m_pResult, result ? static_cast<CONXScriptObject*>(result) : exec->vars.Push());
    return program->ExecuteBody(exec);
}

// RunScript and ParseScript: the same setup, names and reporting.
uint32_t Drive(CONXScriptRunContext* context, COndDeviceComm_0* channel, const char* text,
               const char* scriptDirectory, std::vector<CONXScriptVariable*>* externals,
               const char* functionName, const std::vector<CONXScriptVariable*>* functionArguments,
               TSCRIPTOUTPUTFUNC output, void* outputContext, CONXScriptVariable* result,
               bool parseOnly) {
    if (!context || !text) return SCRIPT_ERR_ILLEGALPARAM;
    uint32_t code = 0;
    const char* phase = "parsing";
    uint64_t tokenStart = 0;
    try {
        TSCRIPTSTRINGBUDGET* outerBudget = ScriptStringBudget();
        TSCRIPTSTRINGBUDGET budget = {context->m_limits.maxStringBytes,
                                      context->m_limits.maxTotalStringBytes,
                                      outerBudget ? outerBudget->liveBytes : 0};
        TRUNRESTORE restore = {context, context->m_pExec, SetScriptStringBudget(&budget)};

        std::string directory = scriptDirectory ? scriptDirectory : "";
        if (directory.empty()) {
            directory = OsCurrentDirectory();
            if (directory.size() > kMaxDirectory) directory.resize(kMaxDirectory);
        }
        context->SetBaseDirectory(directory);

        std::unique_ptr<CONXScriptExecContext> exec(new CONXScriptExecContext(text));
        char here;
        uintptr_t low = ScriptStackLowLimit();
        if (low == 0 || low > (uintptr_t)&here) {
            // Unknown bounds: assume no more than a script worker's 64 KiB.
            uintptr_t top = (uintptr_t)&here;
            low = top > (56u << 10) ? top - (56u << 10) : 0;
        }
        exec->stackLimit = low + context->m_limits.stackReserveBytes + kExtraReserve;
        exec->run = context;
        exec->stopEvent = context->GetStopEvent();
        exec->maxSteps = context->m_limits.maxSteps;
        context->m_pExec = exec.get();
        try {
            code = Run(context, exec.get(), channel, externals, functionName, functionArguments,
                       output, outputContext, result, parseOnly, &phase);
        } catch (const std::bad_alloc&) {
            code = SCRIPT_ERR_OUTOFMEMORY;
        } catch (const std::length_error&) {
            code = SCRIPT_ERR_OUTOFMEMORY;
        }
        tokenStart = exec->tokenStart;
        context->m_stats.steps = exec->steps;
        context->m_stats.stepsUndone = exec->numericStepsUndone;
    } catch (const std::bad_alloc&) {
        code = SCRIPT_ERR_OUTOFMEMORY;
    } catch (const std::length_error&) {
        code = SCRIPT_ERR_OUTOFMEMORY;
    }
    if ((code & SCRIPT_ERR_CODEMASK) && output) {
        try {
            std::string line = FormatDiagnostic(code, text, tokenStart, phase);
            output(outputContext, line.c_str());
        } catch (const std::bad_alloc&) {
            output(outputContext, "out of memory error\n");
        }
    }
    return code;
}

}  // namespace

uint32_t RunScript(CONXScriptRunContext* context, COndDeviceComm_0* channel, const char* text,
                   const char* scriptDirectory, std::vector<CONXScriptVariable*>* externals,
                   const char* functionName,
                   const std::vector<CONXScriptVariable*>* functionArguments,
                   TSCRIPTOUTPUTFUNC output, void* outputContext, CONXScriptVariable* result) {
    return Drive(context, channel, text, scriptDirectory, externals, functionName,
                 functionArguments, output, outputContext, result, false);
}

uint32_t ParseScript(CONXScriptRunContext* context, const char* text,
                     std::vector<CONXScriptVariable*>* externals, TSCRIPTOUTPUTFUNC output,
                     void* outputContext) {
    return Drive(context, nullptr, text, nullptr, externals, nullptr, nullptr, output,
                 outputContext, nullptr, true);
}
