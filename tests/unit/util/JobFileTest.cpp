// Job files: FillEntry, LoadJobFile, SaveJobFile, in a scratch folder.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "os/Platform.h"
#include "util/JobFile.h"
#include "util/FileReplaceSeam.h"
#include "util/PathUtil.h"
#include "tests/unit/TestSupport.h"

namespace {

class JobFileDir : public ScratchTest {
protected:
    void TearDown() override { ondutil::FileWritesFailAfter(-1); }
    std::vector<TFILEENTRY> Load(const std::string& content) {
        Write("job.dcj", content);
        std::vector<TFILEENTRY> list;
        EXPECT_EQ(ondutil::LoadJobFile(Path("job.dcj").c_str(), &list), 1);
        return list;
    }
    static TFILEENTRY Entry(const std::string& path, int id, int type, uint32_t mode) {
        TFILEENTRY e;
        e.path = path;
        e.fileId = (uint8_t)id;
        e.fileType = (uint8_t)type;
        e.fileMode = mode;
        return e;
    }
    // Entries as "path id type mode|" (a set reserved field shows as "!").
    static std::string Describe(const std::vector<TFILEENTRY>& list) {
        std::string all;
        for (const TFILEENTRY& e : list)
            all += e.path + " " + std::to_string(e.fileId) + " " + std::to_string(e.fileType) + " " +
                   std::to_string(e.fileMode) + (e.reserved ? "!|" : "|");
        return all;
    }
};

class UtilLoadJobFile : public JobFileDir {};
class UtilSaveJobFile : public JobFileDir {};

}  // namespace

// --- FillEntry ---------------------------------------------------------------

TEST(UtilFillEntry, PathColumn) {
    const struct {
        const char* base;
        const char* text;
        const char* path;
    } cases[] = {
        {"C:\\jobs", "a.bin", "C:\\jobs\\a.bin"},
        {"C:\\jobs", "D:\\x\\..\\y", "D:\\x\\..\\y"},  // absolute: as it stands, no clean-up
        {"C:\\jobs", "\\\\srv\\f", "\\\\srv\\f"},
        {"C:\\jobs", "..\\up.bin", "C:\\up.bin"},
        {"C:\\jobs", "..\\..\\far.bin", "..\\..\\far.bin"},  // above the start: as given
        {"C:\\jobs", ".\\b.bin", ".\\b.bin"},  // the "." quirk throws inside: kept unjoined
        {"", "rel.bin", "rel.bin"},
    };
    for (const auto& c : cases) {
        std::string base = c.base, text = c.text;
        TFILEENTRY e;
        EXPECT_NO_THROW(ondutil::FillEntry(0, &text, &e, base));
        EXPECT_EQ(e.path, c.path) << c.text;
    }
}

TEST(UtilFillEntry, NumberColumns) {
    std::string base;
    TFILEENTRY e;
    struct {
        const char* text;
        int value;
    } cases[] = {{"7", 7},   {"300", 44}, {"256", 0},   {"x", 0},     {"", 0},
                 {" 12", 12}, {"12abc", 12}, {"+5", 5}, {"-1", 255}, {"4294967297", 1}};
    for (auto& c : cases) {
        std::string text = c.text;
        e.fileId = 99;
        e.fileType = 99;
        ondutil::FillEntry(1, &text, &e, base);
        EXPECT_EQ(e.fileId, c.value) << c.text;
        ondutil::FillEntry(2, &text, &e, base);
        EXPECT_EQ(e.fileType, c.value) << c.text;
    }
}

TEST(UtilFillEntry, ModeColumn) {
    std::string base;
    TFILEENTRY e;
    struct {
        const char* text;
        uint32_t mode;
    } cases[] = {{"normal", 0},  {"bit reverse", 1}, {"bit REVERSE", 1}, {"BIT REVERSE", 1},
                 {"program", 2}, {"Program", 2},     {"Program ", 0},    {"programs", 0},
                 {"bitreverse", 0}, {"", 0},         {"2", 0}};
    for (auto& c : cases) {
        std::string text = c.text;
        e.fileMode = 99;
        ondutil::FillEntry(3, &text, &e, base);
        EXPECT_EQ(e.fileMode, c.mode) << c.text;
    }
    // Compared as C strings (like _stricmp): a NUL byte ends the word.
    std::string text("PROGRAM\0junk", 12);
    ondutil::FillEntry(3, &text, &e, base);
    EXPECT_EQ(e.fileMode, 2u);
}

TEST(UtilFillEntry, FurtherColumnsAndNullsAreIgnored) {
    std::string base = "C:\\x";
    TFILEENTRY e = {};
    e.path = "keep";
    e.fileId = 1;
    std::string text = "program";
    ondutil::FillEntry(4, &text, &e, base);
    ondutil::FillEntry(1000, &text, &e, base);
    EXPECT_EQ(e.path, "keep");
    EXPECT_EQ(e.fileId, 1);
    EXPECT_EQ(e.fileMode, 0u);
    ondutil::FillEntry(0, nullptr, &e, base);
    ondutil::FillEntry(0, &text, nullptr, base);
    EXPECT_EQ(e.path, "keep");
}

// --- LoadJobFile ---------------------------------------------------------------

TEST_F(UtilLoadJobFile, LoadMissingFileLeavesListUntouched) {
    std::vector<TFILEENTRY> list(2);
    list[0].path = "keep";
    EXPECT_EQ(ondutil::LoadJobFile(Path("missing.dcj").c_str(), &list), 0);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].path, "keep");
    EXPECT_EQ(ondutil::LoadJobFile(nullptr, &list), 0);
    Write("job.dcj", "a\t1\t2\tnormal\n");
    EXPECT_EQ(ondutil::LoadJobFile(Path("job.dcj").c_str(), nullptr), 0);
}

// Expected paths starting with '*' are joined with the job file's folder.
TEST_F(UtilLoadJobFile, Cases) {
    struct TExpected {
        std::string path;
        int id, type;
        uint32_t mode;
    };
    const std::string odd = std::string("n\xE4me %s %n\x01 x", 13), withNul = std::string("nu\0l", 4);
    const struct {
        std::string content;
        std::vector<TExpected> entries;
    } cases[] = {
        {"", {}},  // the list is cleared first
        {"a.bin\t1\t2\tnormal\nsub\\b.bin\t3\t4\tbit reverse\nD:\\c.bin\t5\t6\tprogram\n",
         {{"*a.bin", 1, 2, 0}, {"*sub\\b.bin", 3, 4, 1}, {"D:\\c.bin", 5, 6, 2}}},
        // CR LF and lone CR end lines as LF does
        {"a.bin\t1\t2\tprogram\r\nb.bin\t3\t4\tbit reverse\r\n\r\nc.bin\t5\r\n",
         {{"*a.bin", 1, 2, 2}, {"*b.bin", 3, 4, 1}, {"*c.bin", 5, 0, 0}}},
        {"a.bin\t1\t2\tprogram\rb.bin\t3\t4\tbit reverse\r\rc.bin\t5\r",
         {{"*a.bin", 1, 2, 2}, {"*b.bin", 3, 4, 1}, {"*c.bin", 5, 0, 0}}},
        // a line without a tab adds nothing; the first line's pending type 1 stays
        {"a.bin\nb.bin\t3\t4\tprogram\n", {{"*b.bin", 3, 4, 2}}},
        {"a.bin\nb.bin\t3\n", {{"*b.bin", 3, 1, 0}}},
        // short lines get the pending type: 1 on the first line, 0 later
        {"e.bin\t7\nf.bin\t8\n", {{"*e.bin", 7, 1, 0}, {"*f.bin", 8, 0, 0}}},
        // the last line without a line end ignores its last field
        {"c.bin\t5\t6\tprogram", {{"*c.bin", 5, 6, 0}}},
        {"a.bin\t1\t2\tprogram\nc.bin\t5\t6", {{"*a.bin", 1, 2, 2}, {"*c.bin", 5, 0, 0}}},
        {"c.bin\t5", {{"*c.bin", 0, 1, 0}}},
        {"a.bin\t1\t2\tnormal\nd.bin", {{"*a.bin", 1, 2, 0}}},
        // extra columns, odd numbers, an empty path field (the folder joined)
        {"a.bin\t300\tx\tprogram\textra\t9\n\t1\t2\tnormal\n", {{"*a.bin", 44, 0, 2}, {"*", 1, 2, 0}}},
        {".\\x.bin\t1\t2\tnormal\n", {{".\\x.bin", 1, 2, 0}}},  // the "." quirk: kept unjoined
        {odd + "\t1\t2\tnormal\n" + withNul + "\t3\t4\tnormal\n", {{"*" + odd, 1, 2, 0}, {"*" + withNul, 3, 4, 0}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.content);
        Write("job.dcj", c.content);
        std::vector<TFILEENTRY> list(2);
        ASSERT_EQ(ondutil::LoadJobFile(Path("job.dcj").c_str(), &list), 1);
        std::vector<TFILEENTRY> expected;
        for (const TExpected& x : c.entries)
            expected.push_back(Entry(x.path[0] == '*' ? Path(x.path.substr(1)) : x.path, x.id, x.type, x.mode));
        EXPECT_EQ(Describe(list), Describe(expected));
    }
}

TEST_F(UtilLoadJobFile, ParentPathsResolve) {
    auto list = Load("..\\up.bin\t3\t4\tnormal\n");
    ASSERT_EQ(list.size(), 1u);
    std::string parent, file;
    ondutil::SplitFileName(Dir(), &parent, &file);
    EXPECT_EQ(list[0].path, parent + "\\up.bin");
}

TEST_F(UtilLoadJobFile, LargeFile) {
    std::string content;
    for (int i = 0; i < 50000; ++i) content += "f" + std::to_string(i) + ".bin\t" + std::to_string(i % 256) + "\t1\tprogram\n";
    auto list = Load(content);
    ASSERT_EQ(list.size(), 50000u);
    EXPECT_EQ(Describe({list[49999]}), Describe({Entry(Path("f49999.bin"), 49999 % 256, 1, 2)}));
}

// --- SaveJobFile ---------------------------------------------------------------

TEST_F(UtilSaveJobFile, SaveWritesBareNamesInItsFolderAndLoadRestoresThem) {
    std::vector<TFILEENTRY> list = {Entry(Path("a.bin"), 1, 2, 0), Entry(Path("b.bin"), 255, 0, 1),
                                    Entry(Path("sub\\c.bin"), 3, 4, 2), Entry(Path("d.bin"), 5, 6, 7)};
    ASSERT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), &list), 1);
    EXPECT_EQ(Read("job.dcj"),
              "a.bin\t1\t2\tnormal\n"
              "b.bin\t255\t0\tbit reverse\n"
              "sub\\c.bin\t3\t4\tprogram\n"
              "d.bin\t5\t6\tnormal\n");
    std::vector<TFILEENTRY> back;
    ASSERT_EQ(ondutil::LoadJobFile(Path("job.dcj").c_str(), &back), 1);
    list[3].fileMode = 0;  // an unknown mode is saved as normal
    EXPECT_EQ(Describe(back), Describe(list));
    EXPECT_EQ(FileCount(), 1u);  // no temporary left behind
}

TEST_F(UtilSaveJobFile, SaveOutsideTheFolder) {
    std::string parent, file;
    ondutil::SplitFileName(Dir(), &parent, &file);
    std::vector<TFILEENTRY> list = {Entry("Q:\\other\\x.bin", 1, 1, 0), Entry(parent + "\\up.bin", 2, 2, 0),
                                    Entry("rel.bin", 3, 3, 0)};
    ASSERT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), &list), 1);
    EXPECT_EQ(Read("job.dcj"), "Q:\\other\\x.bin\t1\t1\tnormal\n..\\up.bin\t2\t2\tnormal\nrel.bin\t3\t3\tnormal\n");
    std::vector<TFILEENTRY> back;
    ASSERT_EQ(ondutil::LoadJobFile(Path("job.dcj").c_str(), &back), 1);
    list[2].path = Path("rel.bin");  // a relative path comes back joined
    EXPECT_EQ(Describe(back), Describe(list));
}

TEST_F(UtilSaveJobFile, SaveEmptyListAndReplaceExisting) {
    Write("job.dcj", "old content\n");
    std::vector<TFILEENTRY> list;
    ASSERT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), &list), 1);
    EXPECT_EQ(Read("job.dcj"), "");
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(UtilSaveJobFile, SavePathBytesVerbatimUpToANul) {
    std::vector<TFILEENTRY> list = {Entry(Path("100%s %d\xFC.bin"), 1, 2, 0),
                                    Entry(Path(std::string("cut\0tail", 8)), 3, 4, 0)};
    ASSERT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), &list), 1);
    EXPECT_EQ(Read("job.dcj"), "100%s %d\xFC.bin\t1\t2\tnormal\ncut\t3\t4\tnormal\n");
}

TEST_F(UtilSaveJobFile, SaveFailsWhenTheFolderIsMissing) {
    std::vector<TFILEENTRY> list = {Entry("a", 1, 1, 0)};
    EXPECT_EQ(ondutil::SaveJobFile(Path("no_such_folder\\job.dcj").c_str(), &list), 0);
    EXPECT_EQ(ondutil::SaveJobFile(nullptr, &list), 0);
    EXPECT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), nullptr), 0);
    EXPECT_EQ(FileCount(), 0u);
}

// What a failed write leaves behind is the file replacement's (FileReplaceTest).
TEST_F(UtilSaveJobFile, AFailedWriteFailsTheSave) {
    Write("job.dcj", "old.bin\t9\t9\tprogram\n");
    std::vector<TFILEENTRY> list = {Entry(Path("a.bin"), 1, 2, 0)};
    ondutil::FileWritesFailAfter(5);
    EXPECT_EQ(ondutil::SaveJobFile(Path("job.dcj").c_str(), &list), 0);
    ondutil::FileWritesFailAfter(-1);
    EXPECT_EQ(Read("job.dcj"), "old.bin\t9\t9\tprogram\n");
}
