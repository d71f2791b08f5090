// transmitfile and transmitfilefromstring: arguments, progress lines, results,
// failure lines, stop requests.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

const char* const kSysFailed = "System function failed near line";

// A device whose transfers take `stepMs` per progress step, as a slow link would.
class CSlowDevice : public CSimDevice {
public:
    explicit CSlowDevice(uint32_t stepMs) : m_stepMs(stepMs) {}
    int32_t TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                         TransferProgressCallback callback, void* context, uint32_t flag,
                         uint32_t steps) override {
        for (uint32_t step = 0; step <= steps; ++step) {
            if (callback(context, step)) return SIMDEV_ERR_ABORTED;
            OsSleep(m_stepMs);
        }
        return 0;
    }
    int32_t TransmitFileFromMemory(const char* data, uint64_t length, uint8_t fileId,
                                   uint8_t fileType, uint32_t fileMode,
                                   TransferProgressCallback callback, void* context, uint32_t flag,
                                   uint32_t steps) override {
        return TransmitFile("", fileId, fileType, fileMode, callback, context, flag, steps);
    }

private:
    uint32_t m_stepMs;
};

TEST(BuiltinTransmitFile, TransfersWithProgressAndResult) {
    CBuiltinIoFolder folder;
    folder.Write("image.rbf", "\x01\x02\x80");
    CSimDevice device;
    TBUILTINIORUN run = BuiltinIoRun("print(transmitfile(\"image.rbf\", 300, 0x1FF, 1), \"|\");",
                                     &device, folder.Base());
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, BuiltinIoProgress("image.rbf", false) + " -> OK\n0|");
    CSimDevice::TTransfer last = device.LastTransfer();
    EXPECT_EQ(last.localPath, folder.Base() + "\\image.rbf");
    EXPECT_EQ(last.fileId, 44);     // 300 cut to 8 bits
    EXPECT_EQ(last.fileType, 0xFF);
    EXPECT_EQ(last.fileMode, 1u);
    EXPECT_EQ(last.flag, 1u);
    EXPECT_EQ(last.steps, 40u);
    CSimDevice::TStoredFile stored;
    ASSERT_TRUE(device.GetStoredFile(44, &stored));
    EXPECT_EQ(stored.data, "\x80\x40\x01");  // bit-reversed by mode 1
}

TEST(BuiltinTransmitFile, NamesResolveAgainstTheBaseDirectory) {
    CBuiltinIoFolder folder;
    folder.Write("a.bin", "A");
    CSimDevice device;
    // A full path stands; the progress line shows only the name part.
    std::string full = folder.Base() + "\\a.bin";
    TBUILTINIORUN run = BuiltinIoRun("transmitfile(\"" + BuiltinIoLiteral(full) + "\", 1, 0, 0);", &device, "C:\\elsewhere");
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(device.LastTransfer().localPath, full);
    EXPECT_EQ(run.output, BuiltinIoProgress("a.bin", false) + " -> OK\n");
    // "\dir\x" goes onto the base's drive.
    std::string rooted = full.substr(2);
    run = BuiltinIoRun("transmitfile(\"" + BuiltinIoLiteral(rooted) + "\", 2, 0, 0);", &device, folder.Base());
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(device.LastTransfer().localPath, full);
}

TEST(BuiltinTransmitFile, FailureLineAndIgnoreFailure) {
    CBuiltinIoFolder folder;
    folder.Write("x.rbf", "data");
    CSimDevice device;
    device.InjectFault("TransmitFile", 1);
    TBUILTINIORUN run = BuiltinIoRun("print(\"start\"); transmitfile(\"x.rbf\", 1, 2, 0); print(\"not here\");",
                                     &device, folder.Base());
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    std::string own = "start\nSimulated device fault during TransmitFile (x.rbf)\n";
    EXPECT_EQ(run.output.substr(0, own.size()), own);
    EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), kSysFailed)) << run.output;

    // With the fifth argument set the script goes on and gets the channel's code.
    device.InjectFault("TransmitFile", 1, SIMDEV_ERR_STORAGEFULL);
    run = BuiltinIoRun("var dword r; r = transmitfile(\"x.rbf\", 1, 2, 0, 1); print(r, \"|\");",
                       &device, folder.Base());
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "\nNot enough free space on the device during TransmitFile (x.rbf)\n1002|");

    // A missing local file fails the same way, named as the script wrote it.
    run = BuiltinIoRun("transmitfile(\"sub\\\\missing.rbf\", 1, 2, 0, 0);", &device, folder.Base());
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    EXPECT_EQ(run.output.rfind("\nLocal file cannot be opened or read during TransmitFile (missing.rbf)\n", 0), 0u)
        << run.output;
}

TEST(BuiltinTransmitFile, NamePartAsThePathsAreSplit) {
    // A backslash at the very start separates nothing; a trailing one leaves
    // an empty name part.
    CSimDevice device;
    const char* missing = "\nLocal file cannot be opened or read during TransmitFile (";
    TBUILTINIORUN run = BuiltinIoRun("transmitfile(\"\\\\x.rbf\", 1, 2, 0, 1);", &device, "Z:\\nowhere");
    EXPECT_EQ(run.output, std::string(missing) + "\\x.rbf)\n");
    run = BuiltinIoRun("transmitfile(\"sub\\\\\", 1, 2, 0, 1);", &device, "Z:\\nowhere");
    EXPECT_EQ(run.output, std::string(missing) + ")\n");
}

TEST(BuiltinTransmitFileFromString, TransfersTheBytesWithABareBar) {
    CSimDevice device;
    TBUILTINIORUN run = BuiltinIoRun("print(transmitfilefromstring(\"x\\0y\", 9, 3, 2), \"|\");", &device, "");
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, BuiltinIoProgress("", true) + " -> OK\n0|");
    EXPECT_TRUE(device.HasProgram());
    EXPECT_EQ(device.ProgramImage(), std::string("x\0y", 3));
    EXPECT_EQ(device.LastTransfer().steps, 40u);
}

TEST(BuiltinTransmitFileFromString, FailureLineNamesNothing) {
    CSimDevice device;
    device.InjectFault("TransmitFileFromMemory", 1);
    TBUILTINIORUN run = BuiltinIoRun("transmitfilefromstring(\"abc\", 1, 2, 0);", &device, "");
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    std::string own = "\r" + std::string(40, '.') + "\nSimulated device fault during TransmitFileFromString\n";
    EXPECT_EQ(run.output.substr(0, own.size()), own);
    EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), kSysFailed)) << run.output;

    device.InjectFault("TransmitFileFromMemory", 1, SIMDEV_ERR_CLOSED);
    run = BuiltinIoRun("print(transmitfilefromstring(\"abc\", 1, 2, 0, 5), \"|\");", &device, "");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "\r" + std::string(40, '.') + "\nDevice is closed during TransmitFileFromString\n1006|");
}

TEST(BuiltinTransfer, StopRequestAbortsTheTransferAsAFailure) {
    CBuiltinIoFolder folder;
    folder.Write("a.bin", "A");
    std::string own = BuiltinIoProgress("a.bin", false, 3) + "\nTransfer aborted during TransmitFile (a.bin)\n";
    {
        // Without ignoreFailure the failure ends the run.
        CONXScriptRunContext context;
        CStopAtStepDevice device(&context, 3);
        TBUILTINIORUN run = BuiltinIoRun("transmitfile(\"a.bin\", 1, 0, 0); print(\"not here\");", &device,
                                         folder.Base(), nullptr, nullptr, &context);
        EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
        EXPECT_EQ(run.output.substr(0, own.size()), own);
        EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), "System function failed")) << run.output;
    }
    // With it the script goes on, holding the channel's code, until the
    // engine itself sees the stop at a loop round.
    CONXScriptRunContext context;
    CStopAtStepDevice device(&context, 3);
    TBUILTINIORUN run = BuiltinIoRun(
        "var dword r; r = transmitfile(\"a.bin\", 1, 0, 0, 1); print(r, \" goes on\\n\"); while (1) { }",
        &device, folder.Base(), nullptr, nullptr, &context);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    own += std::to_string((uint32_t)SIMDEV_ERR_ABORTED) + " goes on\n";
    EXPECT_EQ(run.output.substr(0, own.size()), own);
    EXPECT_TRUE(BuiltinIoEndsWithError(run.output, own.size(), "Processing aborted")) << run.output;
}

TEST(BuiltinTransfer, StopRequestEndsASlowTransferPromptly) {
    CSlowDevice device(100);  // 4 s for the whole bar
    CONXScriptRunContext context;
    std::thread stopper([&] {
        OsSleep(100);
        context.RequestStop();
    });
    uint64_t start = OsTickCount();
    TBUILTINIORUN run = BuiltinIoRun("transmitfilefromstring(\"abc\", 1, 2, 0);", &device, "",
                                     nullptr, nullptr, &context);
    uint64_t elapsed = OsTickCount() - start;
    stopper.join();
    printf("[ measured ] stop request after 100 ms: transfer ended after %llu ms\n",
           (unsigned long long)elapsed);
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    EXPECT_LT(elapsed, 2000u);
    EXPECT_NE(run.output.find("\nTransfer aborted during TransmitFileFromString\n"), std::string::npos);
}

}  // namespace
