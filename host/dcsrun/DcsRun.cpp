// dcsrun: runs one device script through CONXScriptProcessor::ExecuteScriptFile,
// the path the plug-in's dialog takes, on a thread of its own with a large
// stack. Output goes to standard output as it comes; the exit status is the
// Script Processor's result code. See DcsUsage() for the options.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "host/console/ConsoleInterrupt.h"
#include "host/console/ConsolePrompt.h"
#include "host/console/ConsoleTerminal.h"
#include "host/dcsrun/DcsCheck.h"
#include "host/dcsrun/DcsOptions.h"
#include "host/dcsrun/DcsVariables.h"
#include "host/device/HostDevice.h"
#include "os/Platform.h"
#include "os/StackScale.h"
#include "scriptrt/ScriptProcessor.h"

namespace {

// The script thread's whole stack: room for a recursion some 10,000 calls
// deep, as a command-line tool may well give. Sanitizer builds have frames
// several times larger: they get room to match.
const size_t kScriptStack = (size_t(16) << 20) * kOsStackScale;

// One output call, one write: a "\r" progress line shows as it is drawn.
void WriteOutput(void*, const char* text) {
    fwrite(text, 1, strlen(text), stdout);
    fflush(stdout);
}

struct TDCSJOB {
    CONXScriptProcessor* processor;
    const char* path;
    EONX_ERR_ERRCODE_ result;
};

void RunJob(void* argument) {
    TDCSJOB* job = static_cast<TDCSJOB*>(argument);
    job->result = job->processor->ExecuteScriptFile(job->path, WriteOutput, nullptr);
}

// A check parses on a thread like the script's, so it reads as deep as a run.
struct TDCSCHECK {
    const TDCSOPTIONS* options;
    CDcsVariables* variables;
    int status;
};

void CheckJob(void* argument) {
    TDCSCHECK* check = static_cast<TDCSCHECK*>(argument);
    check->status = DcsCheckScripts(check->options->scripts, check->variables->Records(),
                                    check->variables->Count());
}

// Runs job on a thread with the script's stack; false when none can start.
bool RunOnScriptThread(void (*job)(void*), void* argument) {
    COsThread thread;
    if (!thread.Start(kScriptStack, job, argument, OS_STACK_WHOLE)) {
        fprintf(stderr, "dcsrun: cannot start the script thread\n");
        return false;
    }
    thread.Join();
    return true;
}

void StopScript(void* processor) { static_cast<CONXScriptProcessor*>(processor)->StopScript(); }

const char* ResultText(EONX_ERR_ERRCODE_ result) {
    switch (result) {
    case EONX_ERR_EMPTYPATH: return "empty script path";
    case EONX_ERR_NOCHANNEL: return "no device";
    case EONX_ERR_FILEOPEN: return "cannot open the script file";
    case EONX_ERR_FILEREAD: return "cannot read the script file completely";
    case EONX_ERR_OUTOFMEMORY: return "out of memory";
    case EONX_ERR_LOCKED: return "the device is locked by another user";
    default: return nullptr;
    }
}

int Main(int argc, char** argv) {
    ConsoleBinaryStreams();
    TDCSOPTIONS options;
    std::string error;
    if (!ParseDcsOptions(argc, argv, &options, &error)) {
        fprintf(stderr, "dcsrun: %s\n(dcsrun --help shows the options)\n", error.c_str());
        return DCSRUN_EXIT_USAGE;
    }
    if (options.help) {
        fputs(DcsUsage(), stdout);
        return 0;
    }
    CDcsVariables variables;
    for (const std::string& setting : options.sets) {
        if (!variables.Add(setting, &error)) {
            fprintf(stderr, "dcsrun: %s\n", error.c_str());
            return DCSRUN_EXIT_USAGE;
        }
    }
    if (options.check) {
        TDCSCHECK check = {&options, &variables, 0};
        return RunOnScriptThread(CheckJob, &check) ? check.status : int(EONX_ERR_OUTOFMEMORY);
    }
    const std::string& script = options.scripts.front();
    std::error_code ec;
    if (std::filesystem::is_directory(script, ec)) {
        fprintf(stderr, "dcsrun: %s: is a folder, not a script\n", script.c_str());
        return EONX_ERR_FILEOPEN;
    }

    CHostDevice host;
    switch (host.Open(options.device, &error)) {
    case HOSTDEVICE_OPENED: break;
    case HOSTDEVICE_NOPORT:
        fprintf(stderr, "dcsrun: serial port: %s\n", error.c_str());
        return EONX_ERR_NOCHANNEL;
    case HOSTDEVICE_NOFILE:
        fprintf(stderr, "dcsrun: %s\n", error.c_str());
        return DCSRUN_EXIT_USAGE;
    }
    COndDeviceComm_0* device = host.Channel();

    // The device outlives the processor, as a host's channel outlives its clients.
    CONXScriptProcessor processor;
    ConsoleStopOnInterrupt(StopScript, &processor);  // before the script thread starts
    struct TDISARM {
        ~TDISARM() { ConsoleStopOnInterrupt(nullptr, nullptr); }  // before the processor goes
    } disarm;
    processor.Connect(device);
    CConsolePrompt prompt(options.batch);
    processor.SetOperatorPrompt(&prompt);
    if (variables.Count()) {
        EONX_ERR_ERRCODE_ set = processor.SetVariables(variables.Records(), variables.Count(), false);
        if (set != EONX_ERR_NONE) {
            fprintf(stderr, "dcsrun: cannot hand in the variables (result %u)\n", (unsigned)set);
            return set;
        }
    }

    TDCSJOB job = {&processor, script.c_str(), EONX_ERR_NONE};
    if (!RunOnScriptThread(RunJob, &job)) return EONX_ERR_OUTOFMEMORY;
    fflush(stdout);

    if (const char* text = ResultText(job.result))
        fprintf(stderr, "dcsrun: %s: %s (result %u)\n", script.c_str(), text,
                (unsigned)job.result);
    for (const std::string& name : options.gets) {
        TONX_SCRIPTVARIABLE query = DcsQueryRecord(name.c_str());
        uint32_t found = 0;
        (void)processor.GetVariables(&query, 1, &found);
        fputs(DcsFormatVariable(name, query, found != 0).c_str(), stderr);
    }
    int status = host.SaveSimFilesAtEnd("dcsrun", (int)job.result, DCSRUN_EXIT_USAGE);
    fflush(stderr);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main(argc, argv);
    } catch (...) {
        fprintf(stderr, "dcsrun: out of memory\n");
        return EONX_ERR_OUTOFMEMORY;
    }
}
