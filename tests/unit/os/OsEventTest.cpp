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

// Beyond 4 GiB (a sparse file: nothing is written in between), where a
// long-based size or position would wrap or fail on Windows; and no size for
// what is not a plain file.
TEST(OsFiles, SizesAndPositionsBeyondFourGiB) {
    CTestScratch scratch;
    const uint64_t far = (uint64_t(5) << 30) + 3;
    FILE* f = OsOpenFile(scratch.Path("sparse.bin").c_str(), "wb");
    ASSERT_NE(f, nullptr);
    ASSERT_TRUE(OsSeekFile(f, far));
    fputc('z', f);
    uint64_t size = 0;
    EXPECT_TRUE(OsOpenFileSize(f, &size));
    EXPECT_EQ(size, far + 1);
    fclose(f);
    f = OsOpenFile(scratch.Path("sparse.bin").c_str(), "rb");
    ASSERT_NE(f, nullptr);
    ASSERT_TRUE(OsSeekFile(f, far));
    EXPECT_EQ(fgetc(f), 'z');
    EXPECT_FALSE(OsSeekFile(f, ~uint64_t(0)));
    fclose(f);
    f = OsOpenFile(scratch.Dir().c_str(), "rb");
    if (f) {  // a folder opens for reading on POSIX only
        EXPECT_FALSE(OsOpenFileSize(f, &size));
        fclose(f);
    }
}
