// The simulated device's storage as a folder: the naming rule, loading a
// folder, saving it back (what an earlier save left is replaced, other files
// stay) and the refusals.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/sim/SimDevice.h"
#include "host/sim/SimDeviceFolder.h"
#include "tests/unit/SimTestSupport.h"

namespace fs = std::filesystem;

namespace {

using SimFolder = ScratchTest;

}  // namespace

TEST(SimFileName, TheNamingRule) {
    const struct {
        const char* name;
        bool ok, program;
        int id, type;
    } cases[] = {
        {"3-1.bin", true, false, 3, 1},
        {"003-001", true, false, 3, 1},
        {"12-0-config.txt", true, false, 12, 0},
        {"255-255.x", true, false, 255, 255},
        {"0-7_a", true, false, 0, 7},
        {"program.bin", true, true, 0, 0},
        {"Program", true, true, 0, 0},
        {"PROGRAM.rbf", true, true, 0, 0},
        {"programs.bin", false, false, 0, 0},
        {"256-1.bin", false, false, 0, 0},
        {"3-256.bin", false, false, 0, 0},
        {"3-.bin", false, false, 0, 0},
        {"-1.bin", false, false, 0, 0},
        {"3_1.bin", false, false, 0, 0},
        {"3.bin", false, false, 0, 0},
        {"firmware.bin", false, false, 0, 0},
        {"", false, false, 0, 0},
    };
    for (const auto& c : cases) {
        TSIMFILENAME parsed;
        parsed.fileId = 99;
        EXPECT_EQ(ParseSimFileName(c.name, &parsed), c.ok) << c.name;
        if (!c.ok) continue;
        EXPECT_EQ(parsed.program, c.program) << c.name;
        if (!c.program) {
            EXPECT_EQ(parsed.fileId, c.id) << c.name;
            EXPECT_EQ(parsed.fileType, c.type) << c.name;
        }
    }
    EXPECT_EQ(SimFileName(3, 1), "003-1.bin");
    EXPECT_EQ(SimFileName(255, 12), "255-12.bin");
    EXPECT_TRUE(ParseSimFileName(SimFileName(0, 0), nullptr));
}

TEST_F(SimFolder, LoadsFilesAndTheProgramAndSavesThemBack) {
    Write("3-1.bin", "hello");
    Write("12-7-config.txt", std::string(5000, 'c'));
    Write("0-0", "");
    Write("program.bin", "image");
    Write(".hidden", "passed over");
    fs::create_directories(Native() / "sub");
    CSimDevice sim;
    std::string error;
    ASSERT_TRUE(LoadSimFolder(&sim, Native().string(), &error)) << error;
    ASSERT_EQ(sim.ReadDirectory(), 0);
    EXPECT_EQ(TestEntries(sim), "0:0:0 3:1:5 12:7:5000 ");
    EXPECT_EQ(TestStored(&sim, 3), "hello");
    EXPECT_EQ(TestStored(&sim, 12), std::string(5000, 'c'));
    EXPECT_TRUE(sim.HasProgram());
    EXPECT_EQ(sim.ProgramImage(), "image");
    EXPECT_EQ(sim.FreeBlocks(), 256u - 1 - 2 - 1);

    // A bit-reversed file is saved as the device holds it and loads back the same.
    ASSERT_EQ(TestStore(&sim, 9, 2, "\x01", SIMDEV_MODE_BITREVERSE), 0);
    ASSERT_EQ(sim.DeleteDeviceFile(3), 0);
    fs::path out = Native("out");
    ASSERT_TRUE(SaveSimFolder(&sim, out.string(), &error)) << error;
    EXPECT_EQ(Names("out"), "000-0.bin 009-2.bin 012-7.bin program.bin ");
    EXPECT_EQ(Read("out\\009-2.bin"), "\x80");
    CSimDevice again;
    ASSERT_TRUE(LoadSimFolder(&again, out.string(), &error)) << error;
    EXPECT_EQ(TestStored(&again, 9), "\x80");
    EXPECT_EQ(TestStored(&again, 12), std::string(5000, 'c'));
    EXPECT_EQ(again.ProgramImage(), "image");
}

TEST_F(SimFolder, ASaveReplacesWhatTheRuleNamesAndKeepsOtherFiles) {
    Write("3-1.bin", "three");
    Write("program.bin", "old image");
    Write("notes.txt", "mine");
    CSimDevice sim;
    ASSERT_EQ(TestStore(&sim, 4, 1, "four"), 0);
    std::string error;
    ASSERT_TRUE(SaveSimFolder(&sim, Native().string(), &error)) << error;
    EXPECT_EQ(Names(), "004-1.bin notes.txt ");
    EXPECT_EQ(Read("notes.txt"), "mine");

    // A save that fails on the way (a folder where a file must go) leaves
    // the earlier save's files.
    fs::create_directories(Native("005-1.bin"));
    ASSERT_EQ(TestStore(&sim, 5, 1, "five"), 0);
    ASSERT_EQ(sim.DeleteDeviceFile(4), 0);
    EXPECT_FALSE(SaveSimFolder(&sim, Native().string(), &error));
    EXPECT_NE(error.find("cannot write"), std::string::npos) << error;
    EXPECT_EQ(Read("004-1.bin"), "four");
    fs::remove(Native("005-1.bin"));

    // The program saved over a name in other case: on Windows the same file,
    // which must not be removed as an earlier save's.
    Write("PROGRAM.BIN", "old image");
    ASSERT_EQ(TestStore(&sim, 0, 0, "image", SIMDEV_MODE_PROGRAM), 0);
    ASSERT_TRUE(sim.HasProgram());
    ASSERT_TRUE(SaveSimFolder(&sim, Native().string(), &error)) << error;
    EXPECT_EQ(Read("program.bin"), "image");
}

TEST_F(SimFolder, RefusesWhatTheRuleDoesNotCover) {
    const struct {
        std::vector<std::pair<std::string, std::string>> files;
        const char* message;
    } cases[] = {
        {{{"3-1.bin", "a"}, {"firmware.bin", "b"}}, "firmware.bin is not named as a device file"},
        {{{"3-1.bin", "a"}, {"003-2.bin", "b"}}, "003-2.bin and 3-1.bin are both file ID 3"},
        {{{"program", "a"}, {"program.bin", "b"}}, "program and program.bin are both the program"},
        {{{"1-1.bin", std::string(300, 'x')}}, "1-1.bin: Not enough free space on the device"},
    };
    for (const auto& c : cases) {
        std::error_code ec;
        for (const auto& e : fs::directory_iterator(Native())) fs::remove(e.path(), ec);
        for (const auto& f : c.files) Write(f.first, f.second);
        CSimDevice::TConfig small;
        small.blockCount = 4;
        small.blockSize = 64;
        CSimDevice sim(small);
        std::string error;
        EXPECT_FALSE(LoadSimFolder(&sim, Native().string(), &error));
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
    CSimDevice sim;
    std::string error;
    EXPECT_FALSE(LoadSimFolder(&sim, (Native() / "missing").string(), &error));
    EXPECT_NE(error.find("cannot read the folder"), std::string::npos) << error;
    // A folder that cannot be made.
    Write("plain", "x");
    EXPECT_FALSE(SaveSimFolder(&sim, (Native() / "plain" / "below").string(), &error));
}
