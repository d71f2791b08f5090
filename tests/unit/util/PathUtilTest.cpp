// Path utilities. Paths are written as C
// literals: "C:\\a" is the four-byte text C:\a in memory.
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

#include "util/PathUtil.h"

// --- toUpperGer --------------------------------------------------------------

TEST(UtilToUpperGer, WholeTable) {
    for (int b = 0; b < 256; ++b) {
        unsigned char expected = (unsigned char)b;
        if (b >= 'a' && b <= 'z') expected = (unsigned char)(b - 32);
        if (b == 0xE4) expected = 0xC4;
        if (b == 0xF6) expected = 0xD6;
        if (b == 0xFC) expected = 0xDC;
        EXPECT_EQ((unsigned char)ondutil::toUpperGer((char)b), expected) << b;
    }
}

TEST(UtilIsAbsolutePath, Table) {
    const struct {
        const char* path;
        bool absolute;
    } cases[] = {
        {"C:", true},      {"C:x", true},      {"1:", true},  // any first character
        {"\\\\srv\\x", true}, {"\\\\", true},     {"C", false},
        {"\\x", false},    {"", false},        {"\\", false},
        {"ab:", false},    {"a.bin", false},   {"/usr/x", false},  // slashes are no separators
        {"..\\x", false},
    };
    for (const auto& c : cases) EXPECT_EQ(ondutil::IsAbsolutePath(c.path) != 0, c.absolute) << c.path;
}

TEST(UtilSplitFileName, Table) {
    const struct {
        const char* path;
        const char* folder;
        const char* file;  // "untouched": the output keeps what it had
    } cases[] = {
        {"a.bin", "", "a.bin"},
        {"C:\\jobs\\a.bin", "C:\\jobs", "a.bin"},
        {"\\\\srv\\share\\f", "\\\\srv\\share", "f"},
        {"a\\b", "a", "b"},
        {"a\\b/c", "a", "b/c"},                // the last backslash counts
        {"C:\\x\\", "C:\\x", "untouched"},      // a trailing backslash leaves the file
        {"a\\\\", "a\\", "untouched"},
        {"", "", ""},                          // clears both
        {"\\a", "", "\\a"},                    // the first character is never a separator
        {"\\", "", "\\"},
    };
    for (const auto& c : cases) {
        std::string folder = "old", file = "untouched";
        ondutil::SplitFileName(c.path, &folder, &file);
        EXPECT_EQ(folder, c.folder) << c.path;
        EXPECT_EQ(file, c.file) << c.path;
    }
    // Either output may be null or the input itself.
    std::string one;
    ondutil::SplitFileName("C:\\a\\b", &one, nullptr);
    EXPECT_EQ(one, "C:\\a");
    ondutil::SplitFileName("C:\\a\\b", nullptr, &one);
    EXPECT_EQ(one, "b");
    ondutil::SplitFileName("", nullptr, nullptr);
    std::string s = "C:\\a\\b";
    ondutil::SplitFileName(s, &s, nullptr);
    EXPECT_EQ(s, "C:\\a");
    s = "C:\\a\\b";
    ondutil::SplitFileName(s, nullptr, &s);
    EXPECT_EQ(s, "b");
}

// --- ConcatenatePathAndFile --------------------------------------------------

TEST(UtilConcatenatePathAndFile, Table) {
    const struct {
        const char* folder;
        const char* file;
        int rc;
        const char* text;
    } cases[] = {
        {"C:\\jobs\\", "x.bin", 1, "C:\\jobs\\x.bin"},
        {"C:\\jobs", "x.bin", 1, "C:\\jobs\\x.bin"},
        {"C:\\jobs", "sub\\x.bin", 1, "C:\\jobs\\sub\\x.bin"},
        {"x", "", 1, "x\\"},
        {"C:\\", "", 1, "C:\\"},
        // an empty folder gives the file unchanged, without clean-up
        {"", "a.bin", 1, "a.bin"},
        {"", "..\\..\\x", 1, "..\\..\\x"},
        {"", ".\\x", 1, ".\\x"},
        {"", "", 1, ""},
        // parent steps
        {"C:\\a\\..", "b", 1, "C:\\b"},
        {"C:\\a", "..\\b", 1, "C:\\b"},
        {"C:\\a\\b\\c", "..\\..\\d", 1, "C:\\a\\d"},
        {"C:\\a\\b", "..\\..\\c", 1, "C:\\c"},
        {"C:\\a", "x\\..\\y", 1, "C:\\a\\y"},
        {"\\\\srv\\share\\d", "..\\f", 1, "\\\\srv\\share\\f"},
        {"\\a", "..\\b", 1, "\\b"},            // the separator at index 0
        {"C:\\a", "b..\\c", 1, "C:\\a\\c"},     // a dot need not follow a backslash
        // a ".." whose parent has no separator before it climbs above the
        // start: 0 (so "C:\a" + "..\..\b" passes through "C:\..\b")
        {"C:\\a", "..\\..\\b", 0, "..\\..\\b"},
        {"C:\\", "..\\b", 0, "..\\b"},
        {"..", "x", 0, "x"},  // backslash at index 2 < 4
        {"ab", "..\\c", 0, "..\\c"},
        {"C:", "..\\c", 0, "..\\c"},
        // dots without a backslash after them stay
        {"C:\\a", "..", 1, "C:\\a\\.."},
        {"C:\\a", ".", 1, "C:\\a\\."},
        {"C:\\a", "...\\b", 1, "C:\\a\\...\\b"},
        {"C:\\a", "x.y\\b", 1, "C:\\a\\x.y\\b"},
        // the "." step removes three places before the backslash (deliberate):
        // "C:\dir\.ab.\c" -> "C:\dir\..\c" -> "C:\c"; ".ab.\c" -> "..\c" -> 0
        {"C:\\dir\\.ab.", "c", 1, "C:\\c"},
        {".ab.", "c", 0, "c"},
    };
    for (const auto& c : cases) {
        std::string text = "unset";
        EXPECT_EQ(ondutil::ConcatenatePathAndFile(c.folder, c.file, &text), c.rc) << c.folder << " + " << c.file;
        EXPECT_EQ(text, c.text) << c.folder << " + " << c.file;
    }
}

// A "." step before the start throws, as the string position it reaches is
// invalid ("C:\a\.\b" -> "C:\.\b" -> "C.\b" -> out of range).
TEST(UtilConcatenatePathAndFile, DotStepBeforeTheStartThrows) {
    const char* cases[][2] = {{".", "x"}, {"ab.", "x"}, {"C:\\a", ".\\b"}, {"C:\\a\\.", "b"}};
    for (const auto& c : cases) {
        std::string result;
        try {
            ondutil::ConcatenatePathAndFile(c[0], c[1], &result);
            ADD_FAILURE() << "no exception for " << c[0] << " + " << c[1];
        } catch (const std::out_of_range& e) {
            EXPECT_STREQ(e.what(), "invalid string position");
        }
    }
}

namespace {
// The clean-up in its plainest form: every pass restarts at the start (with
// the ".." rule as resolved above). Compared with the real one on many texts.
int ReferenceJoin(const std::string& folder, const std::string& file, std::string* result) {
    if (folder.empty()) {
        *result = file;
        return 1;
    }
    std::string s = folder;
    if (s.back() != '\\') s += '\\';
    s += file;
    for (;;) {
        int state = 0;
        bool changed = false;
        for (size_t k = 0; k < s.size() && !changed; ++k) {
            char c = s[k];
            if (state == 0) {
                if (c == '.') state = 1;
            } else if (state == 1) {
                if (c == '.')
                    state = 2;
                else if (c == '\\') {
                    if (k < 3) throw std::out_of_range("invalid string position");
                    s.erase(k - 3, 2);
                    changed = true;
                } else
                    state = 0;
            } else {
                if (c == '\\') {
                    if (k < 4) {
                        *result = file;
                        return 0;
                    }
                    size_t j = k - 4;
                    while (j > 0 && s[j] != '\\') --j;
                    if (s[j] != '\\') {
                        *result = file;
                        return 0;
                    }
                    s.erase(j, k - j);
                    changed = true;
                } else
                    state = 0;
            }
        }
        if (!changed) break;
    }
    *result = s;
    return 1;
}
}  // namespace

TEST(UtilConcatenatePathAndFile, MatchesRestartFromStartReference) {
    std::mt19937 rng(12345);
    const char alphabet[] = {'.', '.', '.', '\\', '\\', 'a', 'b', ':'};
    for (int round = 0; round < 200000; ++round) {
        std::string folder, file;
        int nf = rng() % 8, nt = rng() % 12;
        for (int i = 0; i < nf; ++i) folder += alphabet[rng() % sizeof alphabet];
        for (int i = 0; i < nt; ++i) file += alphabet[rng() % sizeof alphabet];
        std::string expected, actual;
        int expectedRc = 0, actualRc = 0;
        bool expectedThrow = false, actualThrow = false;
        try {
            expectedRc = ReferenceJoin(folder, file, &expected);
        } catch (const std::out_of_range&) {
            expectedThrow = true;
        }
        try {
            actualRc = ondutil::ConcatenatePathAndFile(folder, file, &actual);
        } catch (const std::out_of_range&) {
            actualThrow = true;
        }
        ASSERT_EQ(expectedThrow, actualThrow) << folder << " + " << file;
        if (expectedThrow) continue;
        ASSERT_EQ(expectedRc, actualRc) << folder << " + " << file;
        ASSERT_EQ(expected, actual) << folder << " + " << file;
    }
}

// Linear, not quadratic, in the steps: this would take minutes otherwise.
TEST(UtilConcatenatePathAndFile, LongTexts) {
    std::string file, text;
    for (int i = 0; i < 20000; ++i) file += "d\\";
    for (int i = 0; i < 20000; ++i) file += "..\\";
    file += "x";
    EXPECT_EQ(ondutil::ConcatenatePathAndFile("C:\\root", file, &text), 1);
    EXPECT_EQ(text, "C:\\root\\x");
}

// --- MakeRelativePath --------------------------------------------------------

TEST(UtilMakeRelativePath, Table) {
    const struct {
        const char* base;
        const char* path;
        const char* relative;
    } cases[] = {
        {"C:\\jobs", "C:\\jobs\\a.bin", "a.bin"},
        {"C:\\jobs\\sub", "C:\\jobs\\a.bin", "..\\a.bin"},
        {"C:\\a", "D:\\b", "D:\\b"},
        {"c:\\JOBS", "C:\\jobs\\x.bin", "x.bin"},
        {"C:\\jobs", "C:\\jobsX\\a.bin", "\\a.bin"},  // a mere text prefix
        {"C:\\a\\b\\c", "C:\\a\\x", "..\\..\\x"},
        {"C:\\a\\b\\c", "C:\\a\\x\\y.bin", "..\\..\\x\\y.bin"},
        {"C:\\a\\b", "C:\\b\\c", "..\\..\\b\\c"},
        {"", "C:\\x", "C:\\x"},
        {"C:\\x", "", ""},
        {"ab", "ac", "ac"},  // backs up to index 0: unchanged
        {"Z:\\tmp", "a.bin", "a.bin"},
        {"C:\\\xE4\xF6\xFC", "C:\\\xC4\xD6\xDC\\f", "f"},  // umlauts fold
        {"C:\\x\xDF", "C:\\X\xDF\\f", "f"},
        {"C:\\d\\\xE9", "C:\\d\\\xC9\\f", "..\\\xC9\\f"},  // e acute does not
        {"C:\\jobs", "C:\\jobs", ""},
        {"C:\\jobs\\sub", "C:\\jobs", ""},
        {"C:\\jobs\\", "C:\\jobs\\a.bin", ".bin"},  // a trailing backslash costs a character
    };
    for (const auto& c : cases) {
        std::string r = "unset";
        ondutil::MakeRelativePath(c.base, c.path, &r);
        EXPECT_EQ(r, c.relative) << c.base << " / " << c.path;
    }
    std::string s = "C:\\jobs\\a.bin";  // the output may be the input
    ondutil::MakeRelativePath("C:\\jobs", s, &s);
    EXPECT_EQ(s, "a.bin");
}
