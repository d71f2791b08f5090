// transmitfile and transmitfilefromstring: what reaches the channel, progress lines, results,
// stop requests.
#include <gtest/gtest.h>

#include <string>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

TEST(BuiltinTransmitFile, TransfersWithProgressAndResult) {
    CTestScratch folder;
    folder.Write("image.rbf", "\x01\x02\x80");
    CSimDevice device;
    TTESTRUN run = BuiltinIoRun("print(transmitfile(\"image.rbf\", 300, 0x1FF, 1), \"|\");",
                                     &device, folder.Dir());
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, BuiltinIoProgress("image.rbf", false) + " -> OK\n0|");
    EXPECT_EQ(TestTransfer(&device), folder.Dir() + "\\image.rbf 44 255 1 1 40");  // 300 cut to 8 bits
    EXPECT_EQ(TestStored(&device, 44), "\x80\x40\x01");  // bit-reversed by mode 1
}

TEST(BuiltinTransmitFile, AFullPathStandsAndTheLineShowsItsName) {
    CTestScratch folder;
    folder.Write("a.bin", "A");
    CSimDevice device;
    std::string full = folder.Dir() + "\\a.bin";
    TTESTRUN run = BuiltinIoRun("transmitfile(\"" + TestLiteral(full) + "\", 1, 0, 0);", &device, "C:\\elsewhere");
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(device.LastTransfer().localPath, full);
    EXPECT_EQ(run.output, BuiltinIoProgress("a.bin", false) + " -> OK\n");
}

TEST(BuiltinTransmitFile, NamePartAsThePathsAreSplit) {
    // A backslash at the very start separates nothing; a trailing one leaves
    // an empty name part.
    CSimDevice device;
    const char* missing = "\nLocal file cannot be opened or read during TransmitFile (";
    TTESTRUN run = BuiltinIoRun("transmitfile(\"\\\\x.rbf\", 1, 2, 0, 1);", &device, "Z:\\nowhere");
    EXPECT_EQ(run.output, std::string(missing) + "\\x.rbf)\n");
    run = BuiltinIoRun("transmitfile(\"sub\\\\\", 1, 2, 0, 1);", &device, "Z:\\nowhere");
    EXPECT_EQ(run.output, std::string(missing) + ")\n");
}

TEST(BuiltinTransmitFileFromString, TransfersTheBytesWithABareBar) {
    CSimDevice device;
    TTESTRUN run = BuiltinIoRun("print(transmitfilefromstring(\"x\\0y\", 9, 3, 2), \"|\");", &device, "");
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, BuiltinIoProgress("", true) + " -> OK\n0|");
    EXPECT_TRUE(device.HasProgram());
    EXPECT_EQ(device.ProgramImage(), std::string("x\0y", 3));
    EXPECT_EQ(device.LastTransfer().steps, 40u);
}

TEST(BuiltinTransfer, StopRequestAbortsTheTransferAsAFailure) {
    CTestScratch folder;
    folder.Write("a.bin", "A");
    std::string own = BuiltinIoProgress("a.bin", false, 3) + "\nTransfer aborted during TransmitFile (a.bin)\n";
    {
        // Without ignoreFailure the failure ends the run.
        CONXScriptRunContext context;
        CStopAtStepDevice device(&context, 3);
        TTESTRUN run = BuiltinIoRun("transmitfile(\"a.bin\", 1, 0, 0); print(\"not here\");", &device,
                                         folder.Dir(), nullptr, nullptr, &context);
        EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
        EXPECT_EQ(run.output.substr(0, own.size()), own);
        EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), "System function failed")) << run.output;
    }
    // With it the script goes on, holding the channel's code, until the
    // engine itself sees the stop at a loop round.
    CONXScriptRunContext context;
    CStopAtStepDevice device(&context, 3);
    TTESTRUN run = BuiltinIoRun(
        "var dword r; r = transmitfile(\"a.bin\", 1, 0, 0, 1); print(r, \" goes on\\n\"); while (1) { }",
        &device, folder.Dir(), nullptr, nullptr, &context);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    own += std::to_string((uint32_t)SIMDEV_ERR_ABORTED) + " goes on\n";
    EXPECT_EQ(run.output.substr(0, own.size()), own);
    EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), "Processing aborted")) << run.output;
}

}  // namespace
