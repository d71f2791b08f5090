// The File Manager's local rows: defaults of a new file, rows read back into
// records, the properties dialog's numbers, and job files through the rows.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "filemanager/FMRows.h"
#include "os/Platform.h"
#include "tests/unit/TestSupport.h"

namespace {
// A row's four columns, "|"-separated.
std::string Columns(const TFMROW& r) { return r.path + "|" + r.fileId + "|" + r.fileType + "|" + r.fileMode; }
std::string Columns(const TFMROWLIST& rows) {
    std::string all;
    for (const TFMROW& r : rows) all += Columns(r) + "\n";
    return all;
}
}  // namespace

TEST(FMRows, DefaultsOfANewFile) {
    struct {
        const char* path;
        const char* mode;
    } cases[] = {
        {"C:\\images\\FPGA.RBF", "program"},  // any case
        {"C:\\images\\fpga.rbf", "program"},
        {"C:\\images\\fpga.Rbf", "program"},
        {".rbf", "program"},                  // exactly four characters
        {"C:\\images\\fpga.rbfx", "normal"},
        {"C:\\images\\fpga.bin", "normal"},
        {"abcd", "normal"},
        {"a.b", ""},                          // shorter than four: empty column
        {"", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Columns(ondfm::DefaultRow(c.path)), std::string(c.path) + "|0|1|" + c.mode);
    }
    // The empty mode column copies and saves as normal.
    EXPECT_EQ(ondfm::EntryFromRow(ondfm::DefaultRow("a.b")).fileMode, FILEMODE_NORMAL);
    EXPECT_EQ(ondfm::EntryFromRow(ondfm::DefaultRow("x.rbf")).fileMode, FILEMODE_PROGRAM);
}

TEST(FMRows, RowsReadBackAsRecords) {
    struct {
        const char *id, *type, *mode;
        uint8_t fileId, fileType;
        uint32_t fileMode;
    } cases[] = {
        // The scan and the mode words are the job file's (util tests); here the defaults.
        {"7", "9", "normal", 7, 9, FILEMODE_NORMAL},
        {"abc", "", "program", 0, 1, FILEMODE_PROGRAM},  // no number: ID 0, type 1
        {"300", "511", "bit reverse", 44, 255, FILEMODE_BITREVERSE},  // low 8 bits
        {"  12abc", "\t3", "", 12, 3, FILEMODE_NORMAL},
    };
    for (const auto& c : cases) {
        TFILEENTRY entry = ondfm::EntryFromRow(TFMROW{"C:\\f.bin", c.id, c.type, c.mode});
        EXPECT_EQ(entry.path, "C:\\f.bin");
        EXPECT_EQ(entry.fileId, c.fileId) << c.id;
        EXPECT_EQ(entry.fileType, c.fileType) << c.type;
        EXPECT_EQ(entry.fileMode, c.fileMode) << c.mode;
    }
}

TEST(FMRows, RecordsWriteAllFourColumns) {
    struct {
        uint32_t mode;
        const char* text;
    } modes[] = {{0, "normal"}, {1, "bit reverse"}, {2, "program"}, {3, "normal"},
                 {0xFFFFFFFF, "normal"}};
    for (const auto& m : modes) {
        TFILEENTRY entry;
        entry.path = "D:\\x y\\z.bin";
        entry.fileId = 255;
        entry.fileType = 0;
        entry.fileMode = m.mode;
        EXPECT_EQ(Columns(ondfm::RowFromEntry(entry)), entry.path + "|255|0|" + m.text);
    }
}

TEST(FMRows, PathsAreReadBackUpTo260Characters) {
    for (size_t length : {259u, 260u, 261u, 1000u}) {
        std::string path = "C:\\" + std::string(length - 3, 'p');
        TFILEENTRY entry = ondfm::EntryFromRow(ondfm::DefaultRow(path));
        EXPECT_EQ(entry.path, path.substr(0, 260)) << length;
    }
}

TEST(FMRows, PropertyNumbers) {
    struct {
        const char* text;
        bool ok;
        uint8_t value;
    } cases[] = {
        {"300", true, 44}, {"255", true, 255}, {"12abc", true, 12}, {" ", false, 0}, {"x12", false, 0},
    };
    for (const auto& c : cases) {
        uint8_t value = 99;
        EXPECT_EQ(ondfm::ReadPropertyNumber(c.text, &value), c.ok) << c.text;
        EXPECT_EQ(value, c.ok ? c.value : 99) << c.text;  // untouched when rejected
    }
}

using FMJobRows = ScratchTest;

// Rows as the list holds them go out as a job file and come back the same:
// odd paths (blanks, 259 and 260 characters, bytes above 127), inside and
// outside the job's folder.
TEST_F(FMJobRows, RoundTripThroughTheList) {
    std::string job = Dir() + "\\list.dcj";
    TFMROWLIST rows = {
        ondfm::DefaultRow(Dir() + "\\with blanks  .bin"),
        ondfm::DefaultRow(Dir() + "\\" + std::string(259 - Dir().size() - 1, 'a')),  // 259
        ondfm::DefaultRow("C:\\" + std::string(257, 'b')),                         // 260
        ondfm::DefaultRow(Dir() + "\\\xE4\xF6\xFC\xDF \xB0.RBF"),
        {"D:\\other\\x.bin", "300", "abc", "Bit Reverse"},
    };
    ASSERT_EQ(rows[1].path.size(), 259u);
    ASSERT_EQ(rows[2].path.size(), 260u);
    ASSERT_TRUE(ondfm::SaveJobRows(job.c_str(), rows));
    // Inside the job's folder a bare name is written; the numbers are what
    // the rows read as.
    std::string text = ReadPath(job);
    EXPECT_NE(text.find("with blanks  .bin\t0\t1\tnormal\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\xE4\xF6\xFC\xDF \xB0.RBF\t0\t1\tprogram\n"), std::string::npos);
    EXPECT_NE(text.find("D:\\other\\x.bin\t44\t1\tbit reverse\n"), std::string::npos);

    TFMROWLIST loaded = {{"keep", "1", "1", "normal"}};
    ASSERT_TRUE(ondfm::LoadJobRows(job.c_str(), &loaded));
    rows[4] = {rows[4].path, "44", "1", "bit reverse"};
    EXPECT_EQ(Columns(loaded), Columns(rows));

    // Saved again from the loaded rows: byte for byte the same file.
    std::string again = Dir() + "\\again.dcj";
    ASSERT_TRUE(ondfm::SaveJobRows(again.c_str(), loaded));
    EXPECT_EQ(ReadPath(again), text);
}

TEST_F(FMJobRows, AFileThatCannotBeReadKeepsTheRows) {
    TFMROWLIST rows = {{"keep", "1", "2", "program"}};
    EXPECT_FALSE(ondfm::LoadJobRows((Dir() + "\\missing.dcj").c_str(), &rows));
    EXPECT_EQ(Columns(rows), "keep|1|2|program\n");
    EXPECT_FALSE(ondfm::SaveJobRows((Dir() + "\\no\\such\\folder\\x.dcj").c_str(), rows));
}
