// executejobfile: loading, every entry with its progress line, failures with
// and without continueAfterError and ignoreFailure, stop requests.
#include <gtest/gtest.h>

#include <string>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

class BuiltinExecuteJobFile : public ::testing::Test {
protected:
    void SetUp() override {
        m_folder.Write("a.bin", "AAAA");
        m_folder.Write("b.bin", "BB");
        m_folder.Write("c.bin", "C");
        // Relative entries: they lie beside the job file.
        m_folder.Write("jobs.dcj", "a.bin\t1\t10\tnormal\nb.bin\t2\t20\tprogram\r\nc.bin\t3\t30\tbit reverse\n");
    }
    TTESTRUN Run(const std::string& text) { return BuiltinIoRun(text, &m_device, m_folder.Dir()); }
    std::string Ok(const char* name) { return BuiltinIoProgress(name, true) + " -> OK\n"; }

    CTestScratch m_folder;
    CSimDevice m_device;
};

TEST_F(BuiltinExecuteJobFile, TransfersEveryEntryInOrder) {
    TTESTRUN run = Run("print(executejobfile(\"jobs.dcj\"), \"|\");");
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, Ok("a.bin") + Ok("b.bin") + Ok("c.bin") + "0|");
    ASSERT_EQ(m_device.ReadDirectory(), 0);
    EXPECT_EQ(TestEntries(m_device), "1:10:4 3:30:1 ");
    // 'C' bit-reversed; b.bin in the program slot.
    EXPECT_EQ(TestStored(&m_device, 1) + "|" + m_device.ProgramImage() + "|" + TestStored(&m_device, 3), "AAAA|BB|\xC2");
    EXPECT_EQ(TestTransfer(&m_device), m_folder.Dir() + "\\c.bin 3 30 1 1 40");
}

TEST_F(BuiltinExecuteJobFile, ContinueAfterErrorTriesEveryEntryAndGivesTheFirstCode) {
    m_device.InjectFault("TransmitFile", 1, SIMDEV_ERR_STORAGEFULL);
    m_device.InjectFault("TransmitFile", 3, SIMDEV_ERR_INJECTED);
    TTESTRUN run = Run("var dword r; r = executejobfile(\"jobs.dcj\", 1, 1); print(r, \"|\");");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "\ra.bin " + std::string(40, '.') +
                              "\n-> Not enough free space on the device during ExecuteJobFile (jobs.dcj)\n" +
                              Ok("b.bin") + "\rc.bin " + std::string(40, '.') +
                              "\n-> Simulated device fault during ExecuteJobFile (jobs.dcj)\n1002|");
    EXPECT_EQ(m_device.CallCount("TransmitFile"), 3u);

    // Without ignoreFailure the run ends after trying them all.
    m_device.InjectFault("TransmitFile", 1);
    run = Run("executejobfile(\"jobs.dcj\", 1);");
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    EXPECT_EQ(m_device.CallCount("TransmitFile"), 6u);
}

TEST_F(BuiltinExecuteJobFile, MissingJobFile) {
    std::string own = "Could not load job file (" + m_folder.Dir() + "\\none.dcj)\n";
    TTESTRUN run = Run("executejobfile(\"none.dcj\", 1);");
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    EXPECT_EQ(run.output.substr(0, own.size()), own);
    EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), "System function failed")) << run.output;

    run = Run("var dword r; r = 5; r = executejobfile(\"none.dcj\", 0, 1); print(r);");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, own + "12");
    EXPECT_EQ(m_device.CallCount("TransmitFile"), 0u);
}

TEST_F(BuiltinExecuteJobFile, EmptyJobFileTransfersNothing) {
    m_folder.Write("empty.dcj", "only a line without tabs\n");
    TTESTRUN run = Run("print(executejobfile(\"empty.dcj\"));");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "0");
    EXPECT_EQ(m_device.CallCount("TransmitFile"), 0u);
}

TEST_F(BuiltinExecuteJobFile, StopRequestFailsEveryEntryItReaches) {
    // An aborted transfer is a failure like any other: without continueAfterError
    // the job stops there; with it every later entry is aborted at once.
    std::string aborted = "\n-> Transfer aborted during ExecuteJobFile (jobs.dcj)\n";
    auto entry = [&](const char* name) {
        return "\r" + std::string(name) + " " + std::string(40, '.') + BuiltinIoProgress(name, false, 0) + aborted;
    };
    {
        CONXScriptRunContext context;
        CStopAtStepDevice device(&context, 0);
        TTESTRUN run = BuiltinIoRun("executejobfile(\"jobs.dcj\");", &device, m_folder.Dir(), nullptr,
                                         nullptr, &context);
        EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
        EXPECT_TRUE(BuiltinIoEndsWithError(run.output, entry("a.bin").size(), "System function failed"))
            << run.output;
        EXPECT_EQ(device.transfers, 1);
    }
    CONXScriptRunContext context;
    CStopAtStepDevice device(&context, 0);
    TTESTRUN run = BuiltinIoRun("var dword r; r = executejobfile(\"jobs.dcj\", 1, 1); print(r);", &device,
                                     m_folder.Dir(), nullptr, nullptr, &context);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, entry("a.bin") + entry("b.bin") + entry("c.bin") +
                              std::to_string((uint32_t)SIMDEV_ERR_ABORTED));
    EXPECT_EQ(device.transfers, 3);
}

TEST_F(BuiltinExecuteJobFile, OutsideTheFileRootNothingIsRead) {
    CONXScriptRunContext context;
    context.m_limits.fileRoot = m_folder.Dir() + "\\inner";
    TTESTRUN run = BuiltinIoRun("executejobfile(\"jobs.dcj\", 0, 1);", &m_device, m_folder.Dir(),
                                     nullptr, nullptr, &context);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "Could not load job file (" + m_folder.Dir() + "\\jobs.dcj)\n");
    EXPECT_EQ(m_device.CallCount("TransmitFile"), 0u);
}

}  // namespace
