// Platform services that the script worker and the channel rely on.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "os/Platform.h"

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
    std::string dir;
    ASSERT_TRUE(OsFullPathName("replace_test_dest.txt", &dir));
    EXPECT_EQ(dir[1], ':');  // backslash form with a drive on every platform
    EXPECT_NE(dir.find('\\'), std::string::npos);
    FILE* f = OsOpenFile("replace_test_dest.txt", "wb");
    ASSERT_NE(f, nullptr);
    fputs("old", f);
    fclose(f);
    f = OsOpenFile("replace_test_tmp.txt", "wb");
    ASSERT_NE(f, nullptr);
    fputs("new", f);
    fclose(f);
    ASSERT_TRUE(OsReplaceFile("replace_test_tmp.txt", "replace_test_dest.txt"));
    f = OsOpenFile(dir.c_str(), "rb");  // the full path opens the same file
    ASSERT_NE(f, nullptr);
    char buf[8] = {};
    EXPECT_EQ(fread(buf, 1, sizeof buf, f), 3u);
    fclose(f);
    EXPECT_STREQ(buf, "new");
    EXPECT_TRUE(OsRemoveFile("replace_test_dest.txt"));
    EXPECT_EQ(OsOpenFile("replace_test_tmp.txt", "rb"), nullptr);
}
