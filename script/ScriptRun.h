// Running a script: what embedding code needs (the Script Processor, hosts,
// test drivers). Kept small and free of platform headers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class COsEvent;
class COndDeviceComm_0;
class CONXScriptVariable;
class CONXScriptSysFunc;
class CONXScriptExecContext;
class CONXOperatorPrompt_0;

// All script output: a NUL-terminated 8-bit text, from the thread that runs the script.
typedef void (*TSCRIPTOUTPUTFUNC)(void* context, const char* text);

// Bounds of one run. The defaults suit the device's scripts; fuzzers and
// embedders may tighten them.
struct TSCRIPTLIMITS {
    // One string's size; beyond it the operation fails with 1 "out of memory error".
    uint64_t maxStringBytes = 64ull << 20;
    // Bytes held by all strings of a run at one time; same error.
    uint64_t maxTotalStringBytes = 256ull << 20;
    // Statements, loop rounds and calls a run may execute; 0 = no limit. A run
    // that exhausts it ends with 13 "Processing aborted", as on a stop request.
    uint64_t maxSteps = 0;
    // Stack bytes kept free below the deepest nesting for the error path, the
    // built-ins and the output function. Deeper nesting (recursion, parentheses,
    // blocks) ends the run with 1 "out of memory error".
    uint32_t stackReserveBytes = 12u << 10;
    // Longest wait of "delay", in milliseconds; a longer one ends after this
    // long as if its time had run out. Embedders that must not wait lower it.
    uint32_t maxDelayMs = 0xFFFFFFFFu;
    // The folder the file built-ins are confined to, in the module's path form;
    // a name that resolves outside it counts as a file that cannot be opened
    // (and a sub-script outside it as unreadable). Empty: no confinement.
    std::string fileRoot;
    // Largest size the file built-ins may make a file reach; 0 = no limit. A
    // write that would go beyond it writes nothing.
    uint64_t maxFileBytes = 0;
};

// Counts of the last run on a context, for tests and benchmarks.
struct TSCRIPTRUNSTATS {
    uint64_t steps = 0;        // statements, loop rounds and calls executed
    uint64_t stepsUndone = 0;  // steps of speculative native runs that were taken back
};

// What a built-in is constructed with at the start of each run.
struct TSCRIPTSYSFUNCENV {
    TSCRIPTOUTPUTFUNC output;
    void* outputContext;
    COndDeviceComm_0* channel;
};
// Appends the built-ins it makes to functions; the run owns and deletes them.
typedef void (*TSCRIPTSYSFUNCFACTORY)(const TSCRIPTSYSFUNCENV& env,
                                      std::vector<CONXScriptSysFunc*>* functions);

// State shared between the embedder and a running script: the stop event, the
// base directory, the limits and the built-ins to predefine.
class CONXScriptRunContext {
public:
    CONXScriptRunContext();                             // creates and owns its stop event
    explicit CONXScriptRunContext(COsEvent* stopEvent); // shares another context's event
    ~CONXScriptRunContext();
    CONXScriptRunContext(const CONXScriptRunContext&) = delete;
    CONXScriptRunContext& operator=(const CONXScriptRunContext&) = delete;

    COsEvent* GetStopEvent() { return m_pStopEvent; }
    void RequestStop();  // from any thread; the run ends at its next check
    const std::string& GetBaseDirectory() const { return m_baseDirectory; }
    void SetBaseDirectory(const std::string& directory) { m_baseDirectory = directory; }

    TSCRIPTLIMITS m_limits;
    std::vector<TSCRIPTSYSFUNCFACTORY> m_sysFuncFactories;  // in registration order
    // Who answers the user-input built-ins (dialogs, a console, a test); null
    // when nobody can be asked. Not owned.
    CONXOperatorPrompt_0* m_pOperator = nullptr;
    // The run in progress on this context (null between runs); for the engine.
    CONXScriptExecContext* m_pExec = nullptr;
    TSCRIPTRUNSTATS m_stats;

private:
    COsEvent* m_pStopEvent;
    bool m_ownsEvent;
    std::string m_baseDirectory;
};

// What one run is given besides its context and text; every field may stay empty.
struct TSCRIPTRUNOPTIONS {
    COndDeviceComm_0* channel = nullptr;
    const char* scriptDirectory = nullptr;  // null or empty: the current directory
    // Variables visible to the script that keep what it leaves in them.
    std::vector<CONXScriptVariable*>* externals = nullptr;
    TSCRIPTOUTPUTFUNC output = nullptr;
    void* outputContext = nullptr;
    // Sub-script calls: run this function of the program with these arguments
    // instead of the main body; result receives its value.
    const char* functionName = nullptr;
    const std::vector<CONXScriptVariable*>* functionArguments = nullptr;
    CONXScriptVariable* result = nullptr;
    // Only read the text, with the same predefined names: nothing runs, no
    // built-in is called, the channel is never touched; the code is the
    // parser's (a failure's line says "during parsing").
    bool parseOnly = false;
};

// Runs a script text. Returns the script error code; on a failure (low 28
// bits not zero) the diagnostic line has gone to the output.
uint32_t RunScript(CONXScriptRunContext* context, const char* text,
                   const TSCRIPTRUNOPTIONS& options = {});
