// Platform services that the script worker and the channel rely on.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "os/Platform.h"
#include "tests/unit/TestSupport.h"

TEST(OsEvent, ManualResetStaysSetUntilReset) {
    COsEvent event;
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait(10));  // still set: manual reset
    event.Reset();
    EXPECT_FALSE(event.IsSet());
}

namespace {
struct TSetLater {
    COsEvent* event;
    std::atomic<int>* ran;
};
void SetFromThread(void* p) {
    auto* s = static_cast<TSetLater*>(p);
    OsSleep(20);
    s->ran->store(1);
    s->event->Set();
}
}  // namespace

TEST(OsThread, SmallStackThreadSignalsWaiter) {
    COsEvent event;
    std::atomic<int> ran{0};
    TSetLater s{&event, &ran};
    COsThread thread;
    ASSERT_TRUE(thread.Start(65536, SetFromThread, &s));
    EXPECT_TRUE(event.Wait(5000));
    thread.Join();
    EXPECT_EQ(ran.load(), 1);
}

TEST(OsFiles, ReplaceOverwritesAndFullPathIsAbsolute) {
    // A relative name: the backslash form with a drive on every platform, the same file.
    std::string full;
    ASSERT_TRUE(OsFullPathName("ond_os_files.txt", &full));
    EXPECT_EQ(full[1], ':');
    EXPECT_NE(full.find('\\'), std::string::npos);
    FILE* f = OsOpenFile("ond_os_files.txt", "wb");
    ASSERT_NE(f, nullptr);
    fputs("rel", f);
    fclose(f);
    EXPECT_EQ(CTestScratch::ReadPath(full), "rel");
    EXPECT_TRUE(OsRemoveFile("ond_os_files.txt"));

    CTestScratch scratch;
    ASSERT_TRUE(scratch.Write("dest.txt", "old"));
    ASSERT_TRUE(scratch.Write("tmp.txt", "new"));
    ASSERT_TRUE(OsReplaceFile(scratch.Path("tmp.txt").c_str(), scratch.Path("dest.txt").c_str()));
    EXPECT_EQ(scratch.Read("dest.txt"), "new");
    EXPECT_EQ(scratch.FileCount(), 1u);
}
