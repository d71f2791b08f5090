// Replacing a file's content: the swap where it keeps the file, the plain
// write in place where it cannot be done. Files live in a scratch folder in
// the system's temporary folder (which every user may enter).
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "os/Platform.h"
#include "util/FileReplace.h"
#include "util/FileReplaceSeam.h"
#include "tests/unit/TestSupport.h"

namespace fs = std::filesystem;

namespace {

// What makes a file the same file: its volume and its number there.
std::pair<uint64_t, uint64_t> FileId(const fs::path& path) {
#ifdef _WIN32
    HANDLE h = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, 0, nullptr);
    BY_HANDLE_FILE_INFORMATION info = {};
    if (h != INVALID_HANDLE_VALUE) {
        GetFileInformationByHandle(h, &info);
        CloseHandle(h);
    }
    return {info.dwVolumeSerialNumber, (uint64_t(info.nFileIndexHigh) << 32) | info.nFileIndexLow};
#else
    struct stat st = {};
    stat(path.c_str(), &st);
    return {uint64_t(st.st_dev), uint64_t(st.st_ino)};
#endif
}

class FileReplace : public ScratchTest {
protected:
    void TearDown() override { ondutil::FileWritesFailAfter(-1); }
    // Writes "new" over a.txt; true when the call says the file holds it.
    bool Replace(const std::string& name = "a.txt") {
        bool complete = false;
        size_t written = ondutil::ReplaceFileContent(Path(name).c_str(), "new", 3, &complete);
        EXPECT_EQ(written, complete ? 3u : written);
        return complete;
    }

#ifdef _WIN32
    HANDLE m_held = INVALID_HANDLE_VALUE;
#endif
};

TEST_F(FileReplace, SwapsANewFileInKeepingPermissions) {
    Write("a.txt", "old content");
    const auto before = FileId(Native("a.txt"));
#ifndef _WIN32
    ASSERT_EQ(chmod(Native("a.txt").c_str(), 0604), 0);
#endif
    ASSERT_TRUE(Replace());
    EXPECT_EQ(Read("a.txt"), "new");
    EXPECT_NE(FileId(Native("a.txt")), before);  // a new file took the name
    EXPECT_EQ(FileCount(), 1u);
#ifndef _WIN32
    struct stat st;
    ASSERT_EQ(stat(Native("a.txt").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0604u);
#endif
    // A missing file is made.
    ASSERT_TRUE(Replace("b.txt"));
    EXPECT_EQ(Read("b.txt"), "new");
}

// The job files and "writestringtofile" replace files here: what a failed
// write leaves behind is checked once, for them all.
TEST_F(FileReplace, AFailedWriteLeavesTheOldFileOrNone) {
    for (int64_t n : {0, 2}) {  // nothing written, or part of it
        Write("a.txt", "old content");
        ondutil::FileWritesFailAfter(n);
        EXPECT_FALSE(Replace()) << n;
        EXPECT_FALSE(Replace("b.txt")) << n;  // a missing file is not made
        ondutil::FileWritesFailAfter(-1);
        EXPECT_EQ(Read("a.txt"), "old content") << n;
        EXPECT_EQ(FileCount(), 1u) << n;  // no temporary left beside it
    }
}

// Where a new file would not be the same file to its users, or cannot be put
// in place, the old one is emptied and written: it stays the same file.
TEST_F(FileReplace, WritesInPlaceWhereASwapWouldNotKeepTheFile) {
    struct TCASE {
        const char* what;
        const char* name;  // the name written
        std::function<void()> before, after;
    };
    std::vector<TCASE> cases = {
        {"a second hard link", "a.txt",
         [&] { fs::create_hard_link(Native("a.txt"), Native("b.txt")); },
         [&] { EXPECT_EQ(Read("b.txt"), "new"); }},
#ifdef _WIN32
        {"open in another program that lets others write", "a.txt",
         [&] {
             m_held = CreateFileW(Native("a.txt").c_str(), GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
             ASSERT_NE(m_held, INVALID_HANDLE_VALUE);
         },
         [&] { CloseHandle(m_held); }},
#else
        {"a symbolic link", "link.txt",
         [&] { fs::create_symlink(Native("a.txt"), Native("link.txt")); },
         [&] { EXPECT_TRUE(fs::is_symlink(Native("link.txt"))); }},
#endif
    };
#ifndef _WIN32
    // Only the superuser can give a file away.
    if (geteuid() == 0)
        cases.push_back({"another owner", "a.txt",
                         [&] { ASSERT_EQ(chown(Native("a.txt").c_str(), 65534, 65534), 0); },
                         [&] {
                             struct stat st;
                             ASSERT_EQ(stat(Native("a.txt").c_str(), &st), 0);
                             EXPECT_EQ(st.st_uid, 65534u);
                         }});
#endif
    for (TCASE& c : cases) {
        SCOPED_TRACE(c.what);
        for (auto& e : fs::directory_iterator(Native())) fs::remove(e.path());
        Write("a.txt", "old content");
        const auto before = FileId(Native("a.txt"));
        c.before();
        const size_t files = FileCount();
        EXPECT_TRUE(Replace(c.name));
        c.after();
        EXPECT_EQ(Read("a.txt"), "new");
        EXPECT_EQ(FileId(Native("a.txt")), before);
        EXPECT_EQ(FileCount(), files);  // nothing left beside it
    }
}

#ifndef _WIN32
// A folder that takes no new file, with the file in it writable: the
// superuser may write anywhere, so then a child process that is nobody tries.
TEST_F(FileReplace, WritesInPlaceWhenTheFolderTakesNoNewFile) {
    Write("a.txt", "old content");
    const auto before = FileId(Native("a.txt"));
    const bool root = geteuid() == 0;
    if (root) {
        ASSERT_EQ(chown(Native("a.txt").c_str(), 65534, 65534), 0);
    }
    ASSERT_EQ(chmod(Native("a.txt").c_str(), 0666), 0);
    ASSERT_EQ(chmod(Native().c_str(), 0555), 0);
    bool complete = false;
    if (root) {
        fflush(nullptr);
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool done = setgid(65534) == 0 && setuid(65534) == 0 && Replace();
            _exit(done ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        complete = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    } else {
        complete = Replace();
    }
    EXPECT_TRUE(complete);
    EXPECT_EQ(Read("a.txt"), "new");
    EXPECT_EQ(FileId(Native("a.txt")), before);
    EXPECT_EQ(FileCount(), 1u);
}
#endif

}  // namespace
