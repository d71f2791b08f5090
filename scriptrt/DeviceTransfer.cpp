// The file transfers: "transmitfile", "transmitfilefromstring", "executejobfile".
// Each shows a progress line that overwrites itself in place and can be cut
// short by a stop request.
#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"
#include "os/Platform.h"
#include "scriptrt/FileNames.h"
#include "scriptrt/SysFuncs.h"
#include "util/JobFile.h"
#include "util/PathUtil.h"

namespace ondbuiltin {

namespace {

constexpr uint32_t kProgressSteps = 40;
constexpr int32_t kNoChannel = -1;  // the code a transfer gets when the run has no channel

// One transfer's progress: the channel calls Progress with it.
struct TPROGRESS {
    const TSCRIPTSYSCALL* call;
    COsEvent* stopEvent;
    std::string line;   // [name part + " "] + bar
    size_t barOffset;   // where the bar starts in line
};

// namePart null: the bar alone; otherwise the name part and one blank before it.
void BeginProgress(TPROGRESS* progress, const TSCRIPTSYSCALL& call, const std::string* namePart) {
    progress->call = &call;
    progress->stopEvent = call.run ? call.run->GetStopEvent() : nullptr;
    progress->line = namePart ? *namePart + ' ' : std::string();
    progress->barOffset = progress->line.size();
    progress->line.append(kProgressSteps, '.');
}

void ShowProgress(const TPROGRESS& progress) {
    progress.call->Output("\r");
    progress.call->Output(progress.line.c_str());
}

int32_t Progress(void* context, uint32_t stepsDone) {
    TPROGRESS* progress = static_cast<TPROGRESS*>(context);
    uint32_t done = stepsDone < kProgressSteps ? stepsDone : kProgressSteps;
    for (uint32_t i = 0; i < done; ++i) progress->line[progress->barOffset + i] = '#';
    if (progress->call->env.output) ShowProgress(*progress);
    // A stop request asks the channel to abort; the code it then returns is
    // a transfer failure like any other (with ignoreFailure the script goes on
    // and the engine sees the stop at its next loop round).
    return progress->stopEvent && progress->stopEvent->IsSet() ? 1 : 0;
}

// The channel's text for a transfer's error code.
std::string ErrorText(const TSCRIPTSYSCALL& call, int32_t code) {
    COndDeviceComm_0* channel = call.env.channel;
    const char* text = channel ? channel->GetInfoString(ONDCOMM_INFO_ERRORTEXT, (int64_t)code) : nullptr;
    return text ? std::string(text) : std::string();
}

// The name part of a path. The path utilities' split: a backslash at index 0
// is no separator, and a path ending in a backslash has an empty name part.
std::string NamePart(const std::string& path) {
    std::string name;
    ondutil::SplitFileName(path, nullptr, &name);
    return name;
}

// The channel's code in the result, then " -> OK" or the failure line;
// 12 for a failure unless it is to be ignored.
uint32_t Finish(const TSCRIPTSYSCALL& call, int32_t code, const std::string& failure) {
    if (call.result) {
        if (uint32_t err = call.result->SetNumber((uint32_t)code, SCRIPT_TYPE_UINT32)) return err;
    }
    if (code == 0) {
        call.Output(" -> OK\n");
        return 0;
    }
    if (call.env.output) {
        std::string line = "\n";
        line += ErrorText(call, code);
        line += failure;
        call.Output(line.c_str());
    }
    return call.NumberOr(4, 0) != 0 ? 0 : SCRIPT_ERR_SYSFUNC;  // ignoreFailure
}

}  // namespace

uint32_t TransmitFile(const TSCRIPTSYSCALL& call) {
    const std::string file = call.Text(0);
    TPROGRESS progress;
    const std::string name = NamePart(file);
    BeginProgress(&progress, call, &name);
    // A name that leads outside the run's file root goes as "", which no channel can open.
    std::string path;
    if (!ScriptLocalFilePath(call.run, file, &path)) path.clear();
    COndDeviceComm_0* channel = call.env.channel;
    int32_t code = channel ? channel->TransmitFile(path.c_str(), (uint8_t)call.Number(1),
                                                   (uint8_t)call.Number(2), (uint32_t)call.Number(3),
                                                   Progress, &progress, 1, kProgressSteps)
                           : kNoChannel;
    return Finish(call, code, " during TransmitFile (" + name + ")\n");
}

uint32_t TransmitFileFromString(const TSCRIPTSYSCALL& call) {
    const std::string& data = call.Text(0);
    TPROGRESS progress;
    BeginProgress(&progress, call, nullptr);
    if (call.env.output) ShowProgress(progress);
    COndDeviceComm_0* channel = call.env.channel;
    int32_t code = channel ? channel->TransmitFileFromMemory(
                                 data.data(), data.size(), (uint8_t)call.Number(1), (uint8_t)call.Number(2),
                                 (uint32_t)call.Number(3), Progress, &progress, 1, kProgressSteps)
                           : kNoChannel;
    // Deliberately unlike the other two failure lines: no name, no parenthesis.
    return Finish(call, code, " during TransmitFileFromString\n");
}

uint32_t ExecuteJobFile(const TSCRIPTSYSCALL& call) {
    const bool continueAfterError = call.NumberOr(1, 0) != 0;
    const bool ignoreFailure = call.NumberOr(2, 0) != 0;
    const std::string jobFile = call.Text(0);
    std::string path;
    bool allowed = ScriptLocalFilePath(call.run, jobFile, &path);
    std::vector<TFILEENTRY> entries;
    if (!allowed || !ondutil::LoadJobFile(path.c_str(), &entries)) {
        if (call.env.output) call.Output(("Could not load job file (" + path + ")\n").c_str());
        if (!ignoreFailure) return SCRIPT_ERR_SYSFUNC;
        if (call.result) return call.result->SetNumber(SCRIPT_ERR_SYSFUNC, SCRIPT_TYPE_UINT32);
        return 0;
    }

    int32_t firstFailure = 0;
    bool failed = false;
    COndDeviceComm_0* channel = call.env.channel;
    for (const TFILEENTRY& entry : entries) {
        TPROGRESS progress;
        const std::string name = NamePart(entry.path);
        BeginProgress(&progress, call, &name);
        if (call.env.output) ShowProgress(progress);
        // An entry outside the run's file root goes as "", which no channel can open.
        std::string local = !call.run || ScriptFilePathAllowed(call.run->m_limits, entry.path)
                                ? entry.path
                                : std::string();
        int32_t code = channel ? channel->TransmitFile(local.c_str(), entry.fileId, entry.fileType,
                                                       entry.fileMode, Progress, &progress, 1,
                                                       kProgressSteps)
                               : kNoChannel;
        if (code == 0) {
            call.Output(" -> OK\n");
        } else {
            // Names the job file as the script wrote it, not the entry.
            if (call.env.output) {
                std::string line = "\n-> ";
                line += ErrorText(call, code) + " during ExecuteJobFile (" + jobFile + ")\n";
                call.Output(line.c_str());
            }
            if (!failed) firstFailure = code;
            failed = true;
        }
        if (failed && !continueAfterError) break;
    }
    if (call.result) {
        if (uint32_t err = call.result->SetNumber((uint32_t)firstFailure, SCRIPT_TYPE_UINT32)) return err;
    }
    if (failed && !ignoreFailure) return SCRIPT_ERR_SYSFUNC;
    return 0;
}

}  // namespace ondbuiltin
