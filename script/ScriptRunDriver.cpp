// The run driver: build the predefined names, parse, execute, report, destroy.
#include <memory>

#include "os/Platform.h"
#include "os/StackScale.h"
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "script/ScriptStack.h"
#include "script/ScriptSysFunc.h"
#include "util/OutOfMemory.h"

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
const uint32_t kExtraReserve = kOsStackScale > 1 ? 24u << 10 : 0;

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

uint32_t Run(CONXScriptRunContext* context, CONXScriptExecContext* exec,
             const TSCRIPTRUNOPTIONS& options, const char** phase) {
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
    TSCRIPTSYSFUNCENV env = {options.output, options.outputContext, options.channel};
    for (TSCRIPTSYSFUNCFACTORY factory : context->m_sysFuncFactories) factory(env, &sysFuncs.list);
    TSCRIPTOBJLIST predefined;
    predefined.push_back(&version);
    predefined.insert(predefined.end(), sysFuncs.list.begin(), sysFuncs.list.end());
    // The embedder's variables come last, so they hide a built-in of the same name.
    if (options.externals)
        predefined.insert(predefined.end(), options.externals->begin(), options.externals->end());
    program->AddOuterNames(predefined);

    if (context->GetStopEvent()) context->GetStopEvent()->Reset();
    uint32_t code = program->ParseBody(exec, 0);
    if (code || options.parseOnly) return code;
    *phase = "executing";
    if (options.functionName) {
        std::vector<CONXScriptObject*> list;
        if (options.functionArguments)
            list.assign(options.functionArguments->begin(), options.functionArguments->end());
        TSCRIPTARGS args;
        args.items = list.data();
        args.count = list.size();
        return program->ExecuteFunction(exec, options.functionName, args, options.result);
    }
    exec->Bind(&program->m_pResult,
               options.result ? static_cast<CONXScriptObject*>(options.result) : exec->vars.Push());
    return program->ExecuteBody(exec);
}

}  // namespace

uint32_t RunScript(CONXScriptRunContext* context, const char* text, const TSCRIPTRUNOPTIONS& options) {
    if (!context || !text) return SCRIPT_ERR_ILLEGALPARAM;
    const char* phase = "parsing";
    uint64_t tokenStart = 0;
    uint32_t code = ondutil::CatchOutOfMemory(SCRIPT_ERR_OUTOFMEMORY, [&]() -> uint32_t {
        TSCRIPTSTRINGBUDGET* outerBudget = ScriptStringBudget();
        TSCRIPTSTRINGBUDGET budget = {context->m_limits.maxStringBytes,
                                      context->m_limits.maxTotalStringBytes,
                                      outerBudget ? outerBudget->liveBytes : 0};
        TRUNRESTORE restore = {context, context->m_pExec, SetScriptStringBudget(&budget)};

        std::string directory = options.scriptDirectory ? options.scriptDirectory : "";
        if (directory.empty()) {
            directory = OsCurrentDirectory();
            if (directory.size() > kMaxDirectory) directory.resize(kMaxDirectory);
        }
        context->SetBaseDirectory(directory);

        std::unique_ptr<CONXScriptExecContext> exec(new CONXScriptExecContext(text));
        char here;
        uintptr_t low = ScriptStackLowLimit();
        if (low == 0 || low > (uintptr_t)&here) {
            // Bounds the platform cannot tell: assume a small stack, 64 KiB.
            uintptr_t top = (uintptr_t)&here;
            low = top > (56u << 10) ? top - (56u << 10) : 0;
        }
        exec->stackLimit = low + context->m_limits.stackReserveBytes + kExtraReserve;
        exec->run = context;
        exec->stopEvent = context->GetStopEvent();
        exec->maxSteps = context->m_limits.maxSteps;
        context->m_pExec = exec.get();
        // Caught here as well, so that the position and the counts are kept.
        uint32_t result = ondutil::CatchOutOfMemory(SCRIPT_ERR_OUTOFMEMORY, [&] {
            return Run(context, exec.get(), options, &phase);
        });
        tokenStart = exec->tokenStart;
        context->m_stats.steps = exec->steps;
        context->m_stats.stepsUndone = exec->numericStepsUndone;
        return result;
    });
    if ((code & SCRIPT_ERR_CODEMASK) && options.output) {
        bool reported = ondutil::CatchOutOfMemory(false, [&] {
            std::string line = FormatDiagnostic(code, text, tokenStart, phase);
            options.output(options.outputContext, line.c_str());
            return true;
        });
        if (!reported) options.output(options.outputContext, "out of memory error\n");
    }
    return code;
}
