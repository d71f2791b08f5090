// dcsmini: runs one .dcs file with every built-in (no channel); output on
// stdout, exit status = the script's result code (low 8 bits; 0 = success).
// The script runs on a thread with dcsrun's stack.
#include <cstdio>
#include <string>

#include "os/Platform.h"
#include "os/StackScale.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"
#include "util/WholeFile.h"

namespace {

struct TJOB {
    const std::string* text;
    std::string directory;
    uint32_t code;
};

void Write(void*, const char* text) { fputs(text, stdout); }

void Main(void* p) {
    TJOB* job = static_cast<TJOB*>(p);
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    job->code = RunScript(&context, job->text->c_str(),
                          {.scriptDirectory = job->directory.c_str(), .output = Write});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: dcsmini FILE.dcs\n");
        return 2;
    }
    std::string text;
    if (ondutil::ReadWholeFile(argv[1], &text) != ondutil::WHOLEFILE_OK) {
        fprintf(stderr, "dcsmini: cannot read %s\n", argv[1]);
        return 2;
    }
    std::string path = argv[1];
    size_t cut = path.find_last_of("/\\");
    TJOB job = {&text, cut == std::string::npos ? std::string(".") : path.substr(0, cut), 0};
    COsThread thread;
    if (!thread.Start((size_t(16) << 20) * kOsStackScale, Main, &job, OS_STACK_WHOLE)) {
        fprintf(stderr, "dcsmini: cannot start the script thread\n");
        return 2;
    }
    thread.Join();
    fflush(stdout);
    uint32_t code = job.code & 0x0FFFFFFF;
    return code > 255 ? 255 : (int)code;
}
