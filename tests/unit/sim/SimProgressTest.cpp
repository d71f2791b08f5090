// Progress reporting of the simulated device's transfers, and aborts.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/sim/SimDevice.h"
#include "os/Platform.h"
#include "tests/unit/SimTestSupport.h"

namespace {

struct TRecorder {
    std::vector<uint32_t> steps;
    std::vector<std::thread::id> threads;
    uint32_t abortAt = 0xFFFFFFFF;
    CSimDevice* device = nullptr;  // when set, the callback talks to the channel
    uint32_t closeAt = 0xFFFFFFFF;
};

int32_t Record(void* context, uint32_t stepsDone) {
    auto* r = static_cast<TRecorder*>(context);
    r->steps.push_back(stepsDone);
    r->threads.push_back(std::this_thread::get_id());
    if (r->device) {
        // Re-entering the channel from the callback must not deadlock.
        r->device->GetState();
        r->device->GetInfoString(ONDCOMM_INFO_ERRORTEXT, SIMDEV_ERR_ABORTED);
        if (stepsDone == r->closeAt) r->device->SetState(2);
    }
    return stepsDone == r->abortAt ? 1 : 0;
}

int32_t Send(CSimDevice& dev, uint8_t id, const std::string& data, TRecorder* rec,
             uint32_t steps) {
    return dev.TransmitFileFromMemory(data.data(), data.size(), id, 1, 0, Record, rec,
                                      ONDCOMM_TRANSFER_FLAG, steps);
}

}  // namespace

TEST(SimProgress, ReportsEveryStepFromZeroInclusiveOnTheCallingThread) {
    CSimDevice dev;
    TRecorder rec;
    ASSERT_EQ(Send(dev, 1, "payload", &rec, ONDCOMM_STEPS_SCRIPT), 0);
    EXPECT_EQ(rec.steps, TestUpto(40));
    for (std::thread::id id : rec.threads) EXPECT_EQ(id, std::this_thread::get_id());
    TRecorder one;
    ASSERT_EQ(Send(dev, 2, "", &one, 1), 0);
    EXPECT_EQ(one.steps, TestUpto(1));
}

TEST(SimProgress, CallbackMayUseTheChannel) {
    CSimDevice dev;
    TRecorder rec;
    rec.device = &dev;
    ASSERT_EQ(Send(dev, 1, "abc", &rec, ONDCOMM_STEPS_FILEMANAGER), 0);
    EXPECT_EQ(rec.steps.size(), 101u);
    EXPECT_TRUE(dev.GetStoredFile(1, nullptr));
}

TEST(SimProgress, AbortStopsAtOnceAndStoresNothing) {
    CSimDevice dev;
    ASSERT_EQ(TestStore(&dev, 1, 4, "old"), 0);
    uint32_t free = dev.FreeBlocks();
    TRecorder rec;
    rec.abortAt = 5;
    EXPECT_EQ(Send(dev, 1, std::string(10000, 'n'), &rec, 40), SIMDEV_ERR_ABORTED);
    EXPECT_EQ(rec.steps, TestUpto(5));
    ASSERT_EQ(dev.ReadDirectory(), 0);
    EXPECT_EQ(TestEntries(dev), "1:4:3 ");
    EXPECT_EQ(TestStored(&dev, 1), "old");
    EXPECT_EQ(dev.FreeBlocks(), free);

    TRecorder first;
    first.abortAt = 0;
    EXPECT_EQ(Send(dev, 2, "x", &first, 40), SIMDEV_ERR_ABORTED);
    EXPECT_EQ(first.steps, TestUpto(0));
    EXPECT_FALSE(dev.GetStoredFile(2, nullptr));
}

TEST(SimProgress, AbortOfALocalFileAndOfAProgram) {
    CSimDevice dev;
    CTestScratch scratch;
    ASSERT_TRUE(scratch.Write("local.bin", "content"));
    const std::string path = scratch.Native("local.bin").string();
    TRecorder rec;
    rec.abortAt = 40;  // even the very last step can abort
    EXPECT_EQ(dev.TransmitFile(path.c_str(), 3, 0, 0, Record, &rec, 1, 40), SIMDEV_ERR_ABORTED);
    EXPECT_EQ(rec.steps, TestUpto(40));
    EXPECT_FALSE(dev.GetStoredFile(3, nullptr));
    TRecorder prog;
    prog.abortAt = 2;
    EXPECT_EQ(dev.TransmitFile(path.c_str(), 3, 0, SIMDEV_MODE_PROGRAM, Record, &prog, 1, 40),
              SIMDEV_ERR_ABORTED);
    EXPECT_FALSE(dev.HasProgram());
}

TEST(SimProgress, RefusedTransfersReportNoProgress) {
    CSimDevice::TConfig small;
    small.blockCount = 2;
    small.blockSize = 4;
    CSimDevice dev(small);
    TRecorder full;
    EXPECT_EQ(Send(dev, 1, "123456789", &full, 40), SIMDEV_ERR_STORAGEFULL);
    TRecorder missing;
    EXPECT_EQ(dev.TransmitFile("no\\such\\dir\\file.bin", 1, 0, 0, Record, &missing, 1, 40),
              SIMDEV_ERR_LOCALFILE);
    TRecorder zero;
    EXPECT_EQ(Send(dev, 1, "1", &zero, 0), SIMDEV_ERR_BADARGUMENT);
    EXPECT_TRUE(full.steps.empty());
    EXPECT_TRUE(missing.steps.empty());
    EXPECT_TRUE(zero.steps.empty());
    EXPECT_EQ(dev.FreeBlocks(), 2u);
}

TEST(SimProgress, ClosingDuringATransferFailsIt) {
    CSimDevice dev;
    TRecorder rec;
    rec.device = &dev;
    rec.closeAt = 10;
    EXPECT_EQ(Send(dev, 1, "data", &rec, 40), SIMDEV_ERR_CLOSED);
    dev.SetState(1);
    EXPECT_FALSE(dev.GetStoredFile(1, nullptr));
}

// A slow link waits before every step; without the delay it does not.
TEST(SimProgress, StepDelayMakesTransfersSlow) {
    CSimDevice dev;
    dev.SetStepDelay(5);
    TRecorder rec;
    uint64_t start = OsTickCount();
    ASSERT_EQ(Send(dev, 1, "slow", &rec, 20), 0);
    // 21 steps after 5 ms each: 105 ms; half of it allows for coarse clocks,
    // and a transfer without the delay takes no time at all.
    EXPECT_GE(OsTickCount() - start, 50u);
    EXPECT_EQ(rec.steps, TestUpto(20));
    EXPECT_TRUE(dev.GetStoredFile(1, nullptr));
}
