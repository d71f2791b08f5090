// The copy loop against the simulated device: what the sink hears, what the
// device receives, the error list and the result, with and without
// continue-on-error, and aborts.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "filemanager/FMCopyLoop.h"
#include "filemanager/FMTexts.h"
#include "frame/ErrCode.h"
#include "host/serial/SerialChannel.h"
#include "host/sim/SimDevice.h"
#include "os/Platform.h"
#include "tests/unit/SimTestSupport.h"

namespace {

class CRecordingSink : public CFMProgressSink_0 {
public:
    void FileStarted(uint32_t percent, size_t index) override {
        started.push_back({percent, index});
        stepsOfFile.emplace_back();
    }
    void FileProgress(uint32_t stepsDone) override {
        if (!stepsOfFile.empty()) stepsOfFile.back().push_back(stepsDone);
        if (abortAtFile == started.size() - 1 && stepsDone == abortAtStep) abort = true;
    }
    bool AbortRequested() override {
        if (++abortQuestions == abortAtQuestion) abort = true;
        return abort;
    }
    void CopyEnded() override { ++ended; }

    std::vector<std::pair<uint32_t, size_t>> started;
    std::vector<std::vector<uint32_t>> stepsOfFile;
    size_t abortAtFile = size_t(-1);
    uint32_t abortAtStep = 0;
    bool abort = false;
    int abortQuestions = 0;
    int abortAtQuestion = -1;  // the n-th question turns abort on
    int ended = 0;
};

class FMCopyLoop : public ScratchTest {
protected:
    // count files "f<i>.bin" of i + 1 bytes, ids 10 + i, types i, mode normal.
    TFILEENTRYLIST MakeFiles(size_t count) {
        TFILEENTRYLIST files;
        for (size_t i = 0; i < count; ++i) {
            TFILEENTRY entry;
            const std::string name = "f" + std::to_string(i) + ".bin";
            EXPECT_TRUE(Write(name, std::string(i + 1, char('a' + i % 26))));
            entry.path = Path(name);
            entry.fileId = uint8_t(10 + i);
            entry.fileType = uint8_t(i);
            entry.fileMode = FILEMODE_NORMAL;
            files.push_back(entry);
        }
        return files;
    }
};

}  // namespace

TEST_F(FMCopyLoop, EveryFileWithItsPropertiesAndTheProgressBeforeEach) {
    CSimDevice sim;
    TFILEENTRYLIST files = MakeFiles(3);
    files[2].fileMode = FILEMODE_BITREVERSE;
    CRecordingSink sink;
    std::vector<TCOPYERROR> errors = {{7, 7}};  // emptied first
    EXPECT_EQ(ondfm::RunCopyLoop(&sim, files, true, &sink, &errors), 0);
    EXPECT_TRUE(errors.empty());
    ASSERT_EQ(sink.started.size(), 3u);
    // The share of files already done: never 100.
    EXPECT_EQ(sink.started[0], std::make_pair(0u, size_t(0)));
    EXPECT_EQ(sink.started[1], std::make_pair(33u, size_t(1)));
    EXPECT_EQ(sink.started[2], std::make_pair(66u, size_t(2)));
    for (const auto& steps : sink.stepsOfFile) EXPECT_EQ(steps, TestUpto(100));
    EXPECT_EQ(sink.ended, 1);
    ASSERT_EQ(sim.ReadDirectory(), 0);
    EXPECT_EQ(TestEntries(sim), "10:0:1 11:1:2 12:2:3 ");
    EXPECT_EQ(TestStored(&sim, 11), "bb");
    EXPECT_EQ(TestTransfer(&sim), files[2].path + " 12 2 1 1 100");  // mode 1: bit reverse
}

TEST_F(FMCopyLoop, NothingToCopyEndsAtOnce) {
    CSimDevice sim;
    CRecordingSink sink;
    std::vector<TCOPYERROR> errors;
    EXPECT_EQ(ondfm::RunCopyLoop(&sim, {}, true, &sink, &errors), 0);
    EXPECT_EQ(ondfm::RunCopyLoop(nullptr, MakeFiles(1), true, &sink, &errors), 0);
    EXPECT_EQ(sink.ended, 2);
    EXPECT_TRUE(sink.started.empty());
    EXPECT_EQ(sim.CallCount("TransmitFile"), 0u);
}

// The second of three files fails: with continue on error the third still
// goes and the first failure is the result; without, the copy ends there.
TEST_F(FMCopyLoop, ContinueOnErrorOnAndOff) {
    for (bool continueOnError : {true, false}) {
        CSimDevice sim;
        TFILEENTRYLIST files = MakeFiles(3);
        files[1].path += ".missing";
        CRecordingSink sink;
        std::vector<TCOPYERROR> errors;
        EXPECT_EQ(ondfm::RunCopyLoop(&sim, files, continueOnError, &sink, &errors),
                  SIMDEV_ERR_LOCALFILE);
        ASSERT_EQ(errors.size(), 1u);
        EXPECT_EQ(errors[0].index, 1u);
        EXPECT_EQ(errors[0].code, SIMDEV_ERR_LOCALFILE);
        EXPECT_EQ(sim.GetStoredFile(12, nullptr), continueOnError);
        EXPECT_EQ(sim.CallCount("TransmitFile"), continueOnError ? 3u : 2u);
    }
    // A failing first file with continue off: nothing else is sent.
    CSimDevice sim;
    sim.InjectFault("TransmitFile", 1, SIMDEV_ERR_STORAGEFULL);
    CRecordingSink sink;
    std::vector<TCOPYERROR> errors;
    EXPECT_EQ(ondfm::RunCopyLoop(&sim, MakeFiles(3), false, &sink, &errors),
              SIMDEV_ERR_STORAGEFULL);
    EXPECT_EQ(sim.CallCount("TransmitFile"), 1u);
    EXPECT_EQ(sink.started.size(), 1u);
}

TEST_F(FMCopyLoop, AbortDuringATransferStopsItAndStartsNoFurtherFile) {
    for (bool continueOnError : {true, false}) {
        CSimDevice sim;
        TFILEENTRYLIST files = MakeFiles(3);
        CRecordingSink sink;
        sink.abortAtFile = 1;
        sink.abortAtStep = 40;
        std::vector<TCOPYERROR> errors;
        int32_t result = ondfm::RunCopyLoop(&sim, files, continueOnError, &sink, &errors);
        // The channel's code for the aborted transfer; listed in the report.
        EXPECT_EQ(result, continueOnError ? int32_t(EONX_ERR_ABORTED) : SIMDEV_ERR_ABORTED);
        ASSERT_EQ(errors.size(), 1u);
        EXPECT_EQ(errors[0].index, 1u);
        EXPECT_EQ(errors[0].code, SIMDEV_ERR_ABORTED);
        EXPECT_EQ(sink.stepsOfFile[1], TestUpto(40));
        EXPECT_EQ(sink.started.size(), 2u);
        EXPECT_EQ(sim.CallCount("TransmitFile"), 2u);
        EXPECT_FALSE(sim.GetStoredFile(11, nullptr));
    }
    // After a successful file an abort only ends the loop: the 101 steps of
    // the first file ask 101 times, the loop's question after it is the 102nd.
    CSimDevice sim;
    CRecordingSink sink;
    sink.abortAtQuestion = 102;
    std::vector<TCOPYERROR> errors;
    EXPECT_EQ(ondfm::RunCopyLoop(&sim, MakeFiles(2), true, &sink, &errors), int32_t(EONX_ERR_ABORTED));
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(sim.GetStoredFile(10, nullptr));
    EXPECT_EQ(sim.CallCount("TransmitFile"), 1u);
}

// 200 files, a fault in every tenth transfer: exactly those 20 lines.
TEST_F(FMCopyLoop, TwoHundredFilesWithAFaultInEveryTenth) {
    CSimDevice::TConfig config;
    config.blockCount = 512;
    CSimDevice sim(config);
    TFILEENTRYLIST files = MakeFiles(200);
    for (uint32_t k = 10; k <= 200; k += 10) sim.InjectFault("TransmitFile", k);
    CRecordingSink sink;
    std::vector<TCOPYERROR> errors;
    EXPECT_EQ(ondfm::RunCopyLoop(&sim, files, true, &sink, &errors), SIMDEV_ERR_INJECTED);
    ASSERT_EQ(errors.size(), 20u);
    std::string expected;
    for (size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(errors[i].index, 10 * i + 9);
        if (i) expected += "\n";
        expected += "Error during copying " + files[10 * i + 9].path + ": Simulated device fault";
    }
    EXPECT_EQ(ondfm::CopyReport(files, errors, &sim), expected);
    EXPECT_EQ(sink.started.back(), std::make_pair(99u, size_t(199)));
}

// A raw serial port takes no files: each one is listed with the port's text.
TEST_F(FMCopyLoop, TheSerialChannelRefusesEveryFile) {
    CSerialChannel serial;
    TFILEENTRYLIST files = MakeFiles(2);
    CRecordingSink sink;
    std::vector<TCOPYERROR> errors;
    EXPECT_EQ(ondfm::RunCopyLoop(&serial, files, true, &sink, &errors), SERIAL_ERR_NOFILETRANSFER);
    ASSERT_EQ(errors.size(), 2u);
    std::string reason = ondfm::ErrorText(&serial, SERIAL_ERR_NOFILETRANSFER);
    EXPECT_FALSE(reason.empty());
    EXPECT_EQ(ondfm::CopyReport(files, errors, &serial),
              "Error during copying " + files[0].path + ": " + reason + "\n" +
                  "Error during copying " + files[1].path + ": " + reason);
}
