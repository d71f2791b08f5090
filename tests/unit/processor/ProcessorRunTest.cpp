// Running scripts through the Script Processor: result codes, the channel
// lock around the run, the stop request and the base directory of a file run.
#include <gtest/gtest.h>

#include <new>
#include <thread>

#include "os/Platform.h"
#include "tests/unit/processor/ProcessorTestUtil.h"

#ifndef _WIN32
#include <signal.h>
#include <sys/stat.h>
#endif

namespace {

struct TLOCKSEEN {
    CSimDevice* device = nullptr;
    std::string output;
    uint32_t lockCount = 0;
    void* lockOwner = nullptr;
};

// Notes how the channel is held whenever the script writes.
void NoteLock(void* context, const char* text) {
    TLOCKSEEN* seen = static_cast<TLOCKSEEN*>(context);
    seen->output += text;
    seen->lockCount = seen->device->LockCount();
    seen->lockOwner = seen->device->LockOwner();
}

using ProcessorRun = ProcessorTest;

}  // namespace

TEST_F(ProcessorRun, SuccessAndScriptFailure) {
    EXPECT_EQ(Run("var dword a; a = 6 * 7; print(a, \"\\n\");"), EONX_ERR_NONE);
    EXPECT_EQ(output, "42\n");
    EXPECT_EQ(Run("print(\"before\\n\");\nprint(7 / 0);"), EONX_ERR_SCRIPTFAILED);
    EXPECT_NE(output.find("before\n"), std::string::npos);
    EXPECT_NE(output.find("Division by 0 error near line 2"), std::string::npos);
    EXPECT_EQ(device.LockCount(), 0u);
}

TEST_F(ProcessorRun, ErrorClassBitsDecide) {
    processor.GetRunContext()->m_sysFuncFactories.push_back(ProcessorRaiseFactory);
    // exit()'s code: a user error of code 0 ends the run as a success.
    EXPECT_EQ(Run("print(\"a\"); raise(0x10000000); print(\"b\");"), EONX_ERR_NONE);
    EXPECT_EQ(output, "a");
    EXPECT_EQ(Run("print(\"a\"); exit(); print(\"b\");"), EONX_ERR_NONE);
    EXPECT_EQ(output, "a");
    // A user error with a code is a failure.
    EXPECT_EQ(Run("raise(0x10000005);"), EONX_ERR_SCRIPTFAILED);
    EXPECT_EQ(Run("raise(13);"), EONX_ERR_SCRIPTFAILED);
}

TEST_F(ProcessorRun, FileArgumentsAndChannelChecks) {
    EXPECT_EQ(RunFile(""), EONX_ERR_EMPTYPATH);
    EXPECT_EQ(RunFile(nullptr), EONX_ERR_EMPTYPATH);
    EXPECT_EQ(device.CallCount("Lock"), 0u);  // an empty path never reaches the channel

    std::string missing = scratch.Native("missing.dcs").string();
    EXPECT_EQ(RunFile(missing), EONX_ERR_FILEOPEN);
    EXPECT_EQ(device.CallCount("Lock"), 1u);
    EXPECT_EQ(device.CallCount("Unlock"), 1u);
    EXPECT_EQ(device.LockOwner(), nullptr);

    // A full name beyond 260 characters cannot be resolved.
    std::string tooLong = scratch.Native(std::string(270, 'a') + ".dcs").string();
    EXPECT_EQ(RunFile(tooLong), EONX_ERR_FILEOPEN);
    EXPECT_EQ(device.LockCount(), 0u);

    CONXScriptProcessor unconnected;
    std::string path = ProcessorWrite(scratch, "a.dcs", "print(1);");
    EXPECT_EQ(unconnected.ExecuteScriptFile(path.c_str(), TestCollect, &output),
              EONX_ERR_NOCHANNEL);
    EXPECT_EQ(unconnected.ExecuteScript("print(1);", nullptr, TestCollect, &output),
              EONX_ERR_NOCHANNEL);
    EXPECT_EQ(output, "");
}

TEST_F(ProcessorRun, FileBytesRunAsTheyAreWithBaseDirectory) {
    std::string empty = ProcessorWrite(scratch, "empty.dcs", "");
    EXPECT_EQ(RunFile(empty), EONX_ERR_NONE);
    EXPECT_EQ(output, "");
    std::string path = ProcessorWrite(scratch, "crlf.dcs", "print(\"x\");\r\nprint(\"y\\n\");\r\n");
    EXPECT_EQ(RunFile(path), EONX_ERR_NONE);
    EXPECT_EQ(output, "xy\n");
    std::string expected;
    ASSERT_TRUE(OsFullPathName(scratch.Native().string().c_str(), &expected));
    // The folder of the script, without a trailing separator.
    EXPECT_EQ(processor.GetRunContext()->GetBaseDirectory(), expected);
    EXPECT_NE(expected.back(), '\\');
}

TEST_F(ProcessorRun, TextRunTakesTheGivenBaseDirectoryOrTheCurrentOne) {
    EXPECT_EQ(processor.ExecuteScript("", "Z:\\some\\where", nullptr, nullptr), EONX_ERR_NONE);
    EXPECT_EQ(processor.GetRunContext()->GetBaseDirectory(), "Z:\\some\\where");
    EXPECT_EQ(processor.ExecuteScript("", nullptr, nullptr, nullptr), EONX_ERR_NONE);
    EXPECT_EQ(processor.GetRunContext()->GetBaseDirectory(), OsCurrentDirectory());
}

TEST_F(ProcessorRun, ChannelIsHeldOnceForTextAndForFiles) {
    TLOCKSEEN seen;
    seen.device = &device;
    EXPECT_EQ(processor.ExecuteScript("print(\"t\");", nullptr, NoteLock, &seen), EONX_ERR_NONE);
    EXPECT_EQ(seen.lockCount, 1u);
    EXPECT_EQ(seen.lockOwner, static_cast<void*>(&processor));

    std::string path = ProcessorWrite(scratch, "lock.dcs", "print(\"f\");");
    EXPECT_EQ(processor.ExecuteScriptFile(path.c_str(), NoteLock, &seen), EONX_ERR_NONE);
    EXPECT_EQ(seen.lockCount, 1u);
    EXPECT_EQ(seen.lockOwner, static_cast<void*>(&processor));
    EXPECT_EQ(device.LockCount(), 0u);
    EXPECT_EQ(device.CallCount("Lock"), device.CallCount("Unlock"));
}

TEST_F(ProcessorRun, AnotherOwnerHoldingTheChannelFailsTheRunAfterTheWait) {
    int other;
    ASSERT_EQ(device.Lock(&other, 0), 0);
    std::string path = ProcessorWrite(scratch, "a.dcs", "print(\"never\");");
    uint64_t start = OsTickCount();
    EXPECT_EQ(RunFile(path), EONX_ERR_LOCKED);
    EXPECT_GE(OsTickCount() - start, 450u);  // it waited for the owner, not just tried once
    EXPECT_EQ(Run("print(\"never\");"), EONX_ERR_LOCKED);
    EXPECT_EQ(output, "");
    EXPECT_EQ(device.CallCount("Unlock"), 0u);  // a failed lock is not paired
    EXPECT_EQ(device.LockOwner(), static_cast<void*>(&other));
    device.Unlock(&other);
    EXPECT_EQ(Run("print(\"now\");"), EONX_ERR_NONE);
}

TEST_F(ProcessorRun, StopFromAnotherThreadEndsAnEndlessLoop) {
    struct TSTARTED {
        COsEvent started;
        static void Note(void* context, const char*) { static_cast<TSTARTED*>(context)->started.Set(); }
    } state;
    COsEvent done;
    EONX_ERR_ERRCODE_ result = EONX_ERR_NONE;
    std::thread worker([&] {
        result = processor.ExecuteScript("print(\"go\"); while (1) {}", nullptr, TSTARTED::Note, &state);
        done.Set();
    });
    ASSERT_TRUE(state.started.Wait(10000));
    processor.StopScript();
    bool stopped = done.Wait(10000);
    EXPECT_TRUE(stopped);
    while (!done.Wait(100)) processor.StopScript();  // never leave the thread running
    worker.join();
    EXPECT_EQ(result, EONX_ERR_SCRIPTFAILED);
    EXPECT_EQ(device.LockCount(), 0u);
}

namespace {

// A channel that runs out of memory when asked for the lock.
class CThrowingDevice : public CSimDevice {
public:
    int32_t Lock(void*, uint32_t) override { throw std::bad_alloc(); }
};

}  // namespace

TEST_F(ProcessorRun, OutOfMemoryInsideTheObjectBecomesACode) {
    CThrowingDevice throwing;
    processor.Connect(&throwing);
    EXPECT_EQ(Run("print(1);"), EONX_ERR_OUTOFMEMORY);
    std::string path = ProcessorWrite(scratch, "a.dcs", "print(1);");
    EXPECT_EQ(RunFile(path), EONX_ERR_OUTOFMEMORY);
}

#ifndef _WIN32
// A pipe has no size to read up to.
TEST_F(ProcessorRun, UnreadableFileLengthFailsWithReadError) {
    std::string fifo = scratch.Native("pipe.dcs").string();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    // The reader may close before the writer writes: a failed write, not a signal.
    signal(SIGPIPE, SIG_IGN);
    std::thread writer([&] {
        FILE* f = fopen(fifo.c_str(), "wb");
        if (f) {
            fputs("print(1);", f);
            fclose(f);
        }
    });
    EXPECT_EQ(RunFile(fifo), EONX_ERR_FILEREAD);
    writer.join();
    EXPECT_EQ(device.LockCount(), 0u);
}
#endif
