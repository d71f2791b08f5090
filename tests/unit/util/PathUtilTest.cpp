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

TEST(UtilToUpperGer, DocumentedCases) {
    EXPECT_EQ(ondutil::toUpperGer((char)0xDF), (char)0xDF);  // sharp s stays
    EXPECT_EQ(ondutil::toUpperGer('{'), '{');
    EXPECT_EQ(ondutil::toUpperGer('`'), '`');
    EXPECT_EQ(ondutil::toUpperGer('a'), 'A');
    EXPECT_EQ(ondutil::toUpperGer('z'), 'Z');
    EXPECT_EQ(ondutil::toUpperGer((char)0xC4), (char)0xC4);
}

// --- IsAbsolutePath ----------------------------------------------------------

TEST(UtilIsAbsolutePath, DocumentedCases) {
    EXPECT_TRUE(ondutil::IsAbsolutePath("C:"));
    EXPECT_FALSE(ondutil::IsAbsolutePath("C"));
    EXPECT_TRUE(ondutil::IsAbsolutePath("\\\\srv\\x"));
    EXPECT_FALSE(ondutil::IsAbsolutePath("\\x"));
}

TEST(UtilIsAbsolutePath, Others) {
    EXPECT_FALSE(ondutil::IsAbsolutePath(""));
    EXPECT_FALSE(ondutil::IsAbsolutePath("\\"));
    EXPECT_TRUE(ondutil::IsAbsolutePath("\\\\"));
    EXPECT_TRUE(ondutil::IsAbsolutePath("C:x"));
    EXPECT_TRUE(ondutil::IsAbsolutePath("1:"));  // any first character
    EXPECT_FALSE(ondutil::IsAbsolutePath("ab:"));
    EXPECT_FALSE(ondutil::IsAbsolutePath("a.bin"));
    EXPECT_FALSE(ondutil::IsAbsolutePath("/usr/x"));  // forward slashes are no separators
    EXPECT_FALSE(ondutil::IsAbsolutePath("..\\x"));
}

// --- SplitFileName -----------------------------------------------------------

TEST(UtilSplitFileName, BareFileName) {
    std::string folder = "old", file = "old";
    ondutil::SplitFileName("a.bin", &folder, &file);
    EXPECT_EQ(folder, "");
    EXPECT_EQ(file, "a.bin");
}

TEST(UtilSplitFileName, TrailingBackslashLeavesFileUntouched) {
    std::string folder = "old", file = "untouched";
    ondutil::SplitFileName("C:\\x\\", &folder, &file);
    EXPECT_EQ(folder, "C:\\x");
    EXPECT_EQ(file, "untouched");
}

TEST(UtilSplitFileName, Ordinary) {
    std::string folder, file;
    ondutil::SplitFileName("C:\\jobs\\a.bin", &folder, &file);
    EXPECT_EQ(folder, "C:\\jobs");
    EXPECT_EQ(file, "a.bin");
    ondutil::SplitFileName("\\\\srv\\share\\f", &folder, &file);
    EXPECT_EQ(folder, "\\\\srv\\share");
    EXPECT_EQ(file, "f");
    ondutil::SplitFileName("a\\b", &folder, &file);
    EXPECT_EQ(folder, "a");
    EXPECT_EQ(file, "b");
}

TEST(UtilSplitFileName, EmptyPathClearsBoth) {
    std::string folder = "old", file = "old";
    ondutil::SplitFileName("", &folder, &file);
    EXPECT_EQ(folder, "");
    EXPECT_EQ(file, "");
}

TEST(UtilSplitFileName, FirstCharacterIsNeverASeparator) {
    std::string folder = "old", file = "old";
    ondutil::SplitFileName("\\a", &folder, &file);
    EXPECT_EQ(folder, "");
    EXPECT_EQ(file, "\\a");
    ondutil::SplitFileName("\\", &folder, &file);
    EXPECT_EQ(folder, "");
    EXPECT_EQ(file, "\\");
    ondutil::SplitFileName("x", &folder, &file);
    EXPECT_EQ(folder, "");
    EXPECT_EQ(file, "x");
}

TEST(UtilSplitFileName, LastBackslashCounts) {
    std::string folder, file = "untouched";
    ondutil::SplitFileName("a\\\\", &folder, &file);
    EXPECT_EQ(folder, "a\\");
    EXPECT_EQ(file, "untouched");
    ondutil::SplitFileName("a\\b/c", &folder, &file);
    EXPECT_EQ(folder, "a");
    EXPECT_EQ(file, "b/c");
}

TEST(UtilSplitFileName, NullOutputsAndAliasing) {
    std::string folder, file;
    ondutil::SplitFileName("C:\\a\\b", &folder, nullptr);
    EXPECT_EQ(folder, "C:\\a");
    ondutil::SplitFileName("C:\\a\\b", nullptr, &file);
    EXPECT_EQ(file, "b");
    ondutil::SplitFileName("", nullptr, nullptr);
    std::string s = "C:\\a\\b";
    ondutil::SplitFileName(s, &s, nullptr);
    EXPECT_EQ(s, "C:\\a");
    s = "C:\\a\\b";
    ondutil::SplitFileName(s, nullptr, &s);
    EXPECT_EQ(s, "b");
}

// --- ConcatenatePathAndFile --------------------------------------------------

namespace {
struct TJoined {
    int rc;
    std::string text;
};
TJoined Join(const std::string& folder, const std::string& file) {
    TJoined j{-1, "unset"};
    j.rc = ondutil::ConcatenatePathAndFile(folder, file, &j.text);
    return j;
}
void ExpectJoin(const std::string& folder, const std::string& file, int rc, const std::string& text) {
    TJoined j = Join(folder, file);
    EXPECT_EQ(j.rc, rc) << folder << " + " << file;
    EXPECT_EQ(j.text, text) << folder << " + " << file;
}
void ExpectOutOfRange(const std::string& folder, const std::string& file) {
    std::string result = "unset";
    try {
        ondutil::ConcatenatePathAndFile(folder, file, &result);
        ADD_FAILURE() << "no exception for " << folder << " + " << file;
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "invalid string position");
    }
}
}  // namespace

TEST(UtilConcatenatePathAndFile, DocumentedCases) {
    ExpectJoin("C:\\a", "..\\..\\b", 0, "..\\..\\b");
    ExpectJoin("C:\\jobs\\", "x.bin", 1, "C:\\jobs\\x.bin");
    ExpectJoin("C:\\a\\..", "b", 1, "C:\\b");  // "C:\a\..\b"
    ExpectJoin("C:\\a", "..\\b", 1, "C:\\b");
}

TEST(UtilConcatenatePathAndFile, PlainJoin) {
    ExpectJoin("C:\\jobs", "x.bin", 1, "C:\\jobs\\x.bin");
    ExpectJoin("C:\\jobs", "sub\\x.bin", 1, "C:\\jobs\\sub\\x.bin");
    ExpectJoin("x", "", 1, "x\\");
    ExpectJoin("C:\\", "", 1, "C:\\");
}

TEST(UtilConcatenatePathAndFile, EmptyFolderGivesFileUnchanged) {
    ExpectJoin("", "a.bin", 1, "a.bin");
    ExpectJoin("", "..\\..\\x", 1, "..\\..\\x");
    ExpectJoin("", ".\\x", 1, ".\\x");  // no clean-up, no exception
    ExpectJoin("", "", 1, "");
}

TEST(UtilConcatenatePathAndFile, ParentSteps) {
    ExpectJoin("C:\\a\\b\\c", "..\\..\\d", 1, "C:\\a\\d");
    ExpectJoin("C:\\a\\b", "..\\..\\c", 1, "C:\\c");
    ExpectJoin("C:\\a", "x\\..\\y", 1, "C:\\a\\y");
    ExpectJoin("\\\\srv\\share\\d", "..\\f", 1, "\\\\srv\\share\\f");
    ExpectJoin("C:\\", "..\\b", 0, "..\\b");          // above the drive
    ExpectJoin("..", "x", 0, "x");                    // backslash at index 2 < 4
    ExpectJoin("\\a", "..\\b", 1, "\\b");             // the separator at index 0
    // A dot need not follow a backslash to start the scan.
    ExpectJoin("C:\\a", "b..\\c", 1, "C:\\a\\c");
}

// A ".." whose parent has no separator before it (index 0 included) climbs
// above the start: 0. This is what makes "C:\a" + "..\..\b" give 0, since it
// passes through "C:\..\b".
TEST(UtilConcatenatePathAndFile, ParentWithoutSeparatorBeforeItClimbsAboveTheStart) {
    ExpectJoin("ab", "..\\c", 0, "..\\c");
    ExpectJoin("C:", "..\\c", 0, "..\\c");
}

TEST(UtilConcatenatePathAndFile, TrailingDotsWithoutBackslashStay) {
    ExpectJoin("C:\\a", "..", 1, "C:\\a\\..");
    ExpectJoin("C:\\a", ".", 1, "C:\\a\\.");
    ExpectJoin("C:\\a", "...\\b", 1, "C:\\a\\...\\b");  // three dots are no step
    ExpectJoin("C:\\a", "x.y\\b", 1, "C:\\a\\x.y\\b");
}

TEST(UtilConcatenatePathAndFile, DotStepRemovesThreePlacesBeforeTheBackslash) {
    // "C:\dir\.ab.\c": the "." step removes "ab" (three places before the
    // backslash), which leaves "C:\dir\..\c", which the ".." step resolves.
    ExpectJoin("C:\\dir\\.ab.", "c", 1, "C:\\c");
    // ".ab.\c" becomes "..\c", a ".." whose backslash is at index 2: result 0.
    ExpectJoin(".ab.", "c", 0, "c");
}

TEST(UtilConcatenatePathAndFile, DotStepBeforeTheStartThrows) {
    ExpectOutOfRange(".", "x");          // ".\x": backslash at 1
    ExpectOutOfRange("ab.", "x");        // "ab.\x" -> ".\x" -> throws
    // "C:\a\.\b" -> "C:\.\b" -> "C.\b" -> the next pass is out of range.
    ExpectOutOfRange("C:\\a", ".\\b");
    ExpectOutOfRange("C:\\a\\.", "b");
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

TEST(UtilConcatenatePathAndFile, LongTextsStayFast) {
    std::string file;
    for (int i = 0; i < 20000; ++i) file += "d\\";
    for (int i = 0; i < 20000; ++i) file += "..\\";
    file += "x";
    ExpectJoin("C:\\root", file, 1, "C:\\root\\x");
}

// --- MakeRelativePath --------------------------------------------------------

namespace {
std::string Rel(const std::string& base, const std::string& path) {
    std::string r = "unset";
    ondutil::MakeRelativePath(base, path, &r);
    return r;
}
}  // namespace

TEST(UtilMakeRelativePath, SpecExamples) {
    EXPECT_EQ(Rel("C:\\jobs", "C:\\jobs\\a.bin"), "a.bin");
    EXPECT_EQ(Rel("C:\\jobs\\sub", "C:\\jobs\\a.bin"), "..\\a.bin");
    EXPECT_EQ(Rel("C:\\a", "D:\\b"), "D:\\b");
    EXPECT_EQ(Rel("c:\\JOBS", "C:\\jobs\\x.bin"), "x.bin");
    EXPECT_EQ(Rel("C:\\jobs", "C:\\jobsX\\a.bin"), "\\a.bin");  // mere text prefix
}

TEST(UtilMakeRelativePath, SeveralLevelsUp) {
    EXPECT_EQ(Rel("C:\\a\\b\\c", "C:\\a\\x"), "..\\..\\x");
    EXPECT_EQ(Rel("C:\\a\\b\\c", "C:\\a\\x\\y.bin"), "..\\..\\x\\y.bin");
    EXPECT_EQ(Rel("C:\\a\\b", "C:\\b\\c"), "..\\..\\b\\c");
}

TEST(UtilMakeRelativePath, NothingShared) {
    EXPECT_EQ(Rel("", "C:\\x"), "C:\\x");
    EXPECT_EQ(Rel("C:\\x", ""), "");
    EXPECT_EQ(Rel("ab", "ac"), "ac");  // backs up to index 0: unchanged
    EXPECT_EQ(Rel("Z:\\tmp", "a.bin"), "a.bin");
}

TEST(UtilMakeRelativePath, UmlautsFoldButSharpSDoesNot) {
    EXPECT_EQ(Rel("C:\\\xE4\xF6\xFC", "C:\\\xC4\xD6\xDC\\f"), "f");
    EXPECT_EQ(Rel("C:\\x\xDF", "C:\\X\xDF\\f"), "f");
    // 0xE9 (e acute) is not folded: the paths part at the folder.
    EXPECT_EQ(Rel("C:\\d\\\xE9", "C:\\d\\\xC9\\f"), "..\\\xC9\\f");
}

TEST(UtilMakeRelativePath, EqualOrShorterPath) {
    EXPECT_EQ(Rel("C:\\jobs", "C:\\jobs"), "");
    EXPECT_EQ(Rel("C:\\jobs\\sub", "C:\\jobs"), "");
    // A base with a trailing backslash loses the path's next character too.
    EXPECT_EQ(Rel("C:\\jobs\\", "C:\\jobs\\a.bin"), ".bin");
}

TEST(UtilMakeRelativePath, OutputMayAliasInput) {
    std::string s = "C:\\jobs\\a.bin";
    ondutil::MakeRelativePath("C:\\jobs", s, &s);
    EXPECT_EQ(s, "a.bin");
}
