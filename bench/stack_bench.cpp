// stack_bench: how many bytes of stack one level of a script's recursion
// takes, and how deep a recursion gets on a few stack sizes. Prints numbers;
// not a test.
//
// Bytes per level: the run's stack guard fails a run whose deepest check lies
// below the thread's low end plus the reserve, so the largest reserve with
// which a run still succeeds tells where its deepest check was, to the byte.
// Two depths give the bytes per level, whatever the frames above the first.
#include <cstdio>
#include <cstring>
#include <string>

#include "os/Platform.h"
#include "os/StackScale.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"

namespace {

const size_t kBigStack = (size_t(16) << 20) * kOsStackScale;

struct TPROGRAM {
    const char* name;
    const char* function;  // the call is appended: "print(NAME(n));"
    unsigned low, high;    // the two depths compared
};

// f and fib are of numbers only and run natively; with a string declared
// (never used) they take the engine's ordinary path, as most scripts do.
const TPROGRAM kPrograms[] = {
    {"f", "func f(var int64 n) { var int64 r; r = 0; if (n > 0) { r = 1 + f(n - 1); } f = r; }\n", 100, 400},
    {"fib",
     "func fib(var int32 n) { var int32 r; if (n < 2) { r = n; } else { r = fib(n - 1) + fib(n - 2); } "
     "fib = r; }\n",
     8, 20},
    {"f",
     "func f(var int64 n) { var int64 r; var string s; r = 0; if (n > 0) { r = 1 + f(n - 1); } f = r; }\n",
     100, 400},
    {"fib",
     "func fib(var int32 n) { var int32 r; var string s; if (n < 2) { r = n; } else { "
     "r = fib(n - 1) + fib(n - 2); } fib = r; }\n",
     8, 20},
};

struct TJOB {
    std::string text;
    uint32_t reserve;
    uint32_t code;
};

void Ignore(void*, const char*) {}

void RunJob(void* p) {
    TJOB* job = static_cast<TJOB*>(p);
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    context.m_limits.stackReserveBytes = job->reserve;
    job->code = RunScript(&context, job->text.c_str(), {.output = Ignore});
}

bool Runs(const std::string& text, size_t stack, uint32_t reserve,
          EOSSTACKSIZE meaning = OS_STACK_WHOLE) {
    TJOB job = {text, reserve, 0};
    COsThread thread;
    if (!thread.Start(stack, RunJob, &job, meaning)) return false;
    thread.Join();
    return job.code == 0;
}

std::string Call(const TPROGRAM& p, unsigned n) {
    return std::string(p.function) + "print(" + p.name + "(" + std::to_string(n) + "));";
}

// The largest reserve with which the call still succeeds on the big stack.
uint32_t LargestReserve(const std::string& text) {
    uint32_t good = 0, bad = (uint32_t)kBigStack;
    while (bad - good > 1) {
        uint32_t mid = good + (bad - good) / 2;
        (Runs(text, kBigStack, mid) ? good : bad) = mid;
    }
    return good;
}

struct TSTACK {
    const char* name;
    size_t size;
    EOSSTACKSIZE meaning;
};

// The Script Processor window's worker (64 KiB as thread creation takes it:
// on Windows this program's default reserve, 2 MiB with mingw-w64), a host
// thread of the usual 1 MiB, dcsrun's 16 MiB.
const TSTACK kStacks[] = {
    {"worker", 65536, OS_STACK_AS_CREATED},
    {"1 MiB", size_t(1) << 20, OS_STACK_WHOLE},
    {"dcsrun", size_t(16) << 20, OS_STACK_WHOLE},
};

// The deepest n that succeeds on a thread of the given stack, default reserve.
unsigned Deepest(const TPROGRAM& p, const TSTACK& stack) {
    const uint32_t reserve = TSCRIPTLIMITS().stackReserveBytes;
    const size_t size = stack.size * kOsStackScale;
    unsigned good = 0, bad = 1;
    while (Runs(Call(p, bad), size, reserve, stack.meaning)) {
        good = bad;
        bad *= 2;
        if (bad > (1u << 22)) return good;
    }
    while (bad - good > 1) {
        unsigned mid = good + (bad - good) / 2;
        (Runs(Call(p, mid), size, reserve, stack.meaning) ? good : bad) = mid;
    }
    return good;
}

}  // namespace

int main() {
    printf("%-4s %-8s %14s", "fn", "path", "bytes/level");
    for (const TSTACK& stack : kStacks) printf(" %12s", stack.name);
    printf("\n");
    for (const TPROGRAM& p : kPrograms) {
        uint32_t r1 = LargestReserve(Call(p, p.low));
        uint32_t r2 = LargestReserve(Call(p, p.high));
        printf("%-4s %-8s %14.1f", p.name, std::strstr(p.function, "string") ? "ordinary" : "native",
               double(r1 - r2) / double(p.high - p.low));
        // fib's work doubles with each level: its depths are not measured.
        for (const TSTACK& stack : kStacks) {
            if (std::strcmp(p.name, "f") == 0)
                printf(" %12u", Deepest(p, stack));
            else
                printf(" %12s", "-");
        }
        printf("\n");
        fflush(stdout);
    }
    return 0;
}
