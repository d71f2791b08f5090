// The worker-run protocol that the windows use.
#include <gtest/gtest.h>

#include <atomic>

#include "frame/RunController.h"

namespace {

// Work that runs until released or stopped, and a window that can refuse to
// hear the end.
class CTestJob : public CONXRunJob_0 {
public:
    uint32_t RunWork() noexcept override {
        started.Set();
        while (!release.Wait(5))
            if (stopRequested && heedStop) return 13;
        return 7;
    }
    bool PostEnd(uint32_t result) override {
        posted = result;
        ended.Set();
        return windowHears;
    }
    void RequestStop() override { stopRequested = true; }
    bool WaitForWorker(COsThread* worker, uint32_t timeoutMs) override {
        ++waits;
        return worker->Wait(timeoutMs);
    }
    void Abandon() override {
        // The work waits for an answer that only comes after two sweeps.
        if (++abandons == 2) release.Set();
    }

    COsEvent started, release, ended;
    std::atomic<bool> stopRequested{false};
    std::atomic<uint32_t> posted{0};
    bool windowHears = true;
    bool heedStop = true;
    int waits = 0, abandons = 0;
};

TEST(FrameRunController, RunEndsByMessageThenTheWindowMarksItIdle) {
    CTestJob job;
    CONXRunController run(&job);
    EXPECT_TRUE(run.IsIdle());
    ASSERT_TRUE(run.Start(65536));
    EXPECT_FALSE(run.IsIdle());
    EXPECT_FALSE(run.Start(65536));  // one run at a time
    ASSERT_TRUE(job.started.Wait(5000));
    job.release.Set();
    ASSERT_TRUE(job.ended.Wait(5000));
    EXPECT_EQ(job.posted.load(), 7u);
    EXPECT_EQ(run.JoinWorker(), 7u);
    EXPECT_FALSE(run.IsIdle());  // until the window has reported the end
    run.MarkIdle();
    EXPECT_TRUE(run.IsIdle());
    EXPECT_FALSE(job.stopRequested);
    run.Close();
    EXPECT_EQ(job.waits, 0);  // nothing to wait for
}

TEST(FrameRunController, StopAsksTheWorkAndAWindowThatCannotHearLeavesItIdle) {
    CTestJob job;
    job.windowHears = false;
    CONXRunController run(&job);
    run.Stop();  // idle: nothing to ask
    EXPECT_FALSE(job.stopRequested);
    ASSERT_TRUE(run.Start(16384));
    ASSERT_TRUE(job.started.Wait(5000));
    run.Stop();
    EXPECT_TRUE(job.stopRequested);
    ASSERT_TRUE(job.ended.Wait(5000));
    EXPECT_EQ(run.JoinWorker(), 13u);
    EXPECT_TRUE(run.IsIdle());
    run.Close();
}

TEST(FrameRunController, CloseDuringARunStopsAbandonsUntilTheWorkerEndsAndPostsNothing) {
    CTestJob job;
    job.heedStop = false;  // only the second Abandon, after a wait ran out, ends the work
    CONXRunController run(&job);
    ASSERT_TRUE(run.Start(65536));
    ASSERT_TRUE(job.started.Wait(5000));
    run.Close();
    EXPECT_TRUE(job.stopRequested);
    EXPECT_TRUE(run.IsClosing());
    EXPECT_TRUE(run.IsIdle());
    EXPECT_EQ(job.abandons, 2);
    EXPECT_EQ(job.waits, 2);
    EXPECT_FALSE(job.ended.IsSet());  // a closing window is not told
    EXPECT_FALSE(run.Start(65536));   // closed for good
    run.Close();                      // again: nothing happens
}

}  // namespace
