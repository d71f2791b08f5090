// The simulated device's storage: block arithmetic, modes, replacement, full
// storage, delete, the two formats and the directory snapshot.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/sim/SimDevice.h"
#include "tests/unit/SimTestSupport.h"

namespace {

class SimStorage : public ::testing::Test {
protected:
    // 8 blocks of 16 bytes keep the arithmetic visible.
    SimStorage() : dev(Small()) {}
    static CSimDevice::TConfig Small() {
        CSimDevice::TConfig c;
        c.blockCount = 8;
        c.blockSize = 16;
        return c;
    }
    int32_t Put(uint8_t id, const std::string& bytes, uint32_t mode = 0, uint8_t type = 0) {
        return TestStore(&dev, id, type, bytes, mode);
    }
    std::string Stored(uint8_t id) { return TestStored(&dev, id); }
    // The directory as "id:type:size" words, read afresh.
    std::string Listing() {
        EXPECT_EQ(dev.ReadDirectory(), 0);
        return TestEntries(dev);
    }
    // The directory summary as "freeA freeB files bytes onDevice".
    std::string Info() {
        TDEVDIRINFO i;
        EXPECT_EQ(dev.ReadDirectory(), 0);
        dev.GetDirectoryInfo(&i);
        return TestDirInfo(i);
    }
    CSimDevice dev;
};

}  // namespace

TEST_F(SimStorage, DirectoryInfoArithmetic) {
    ASSERT_EQ(Put(5, std::string(20, 'a'), 0, 7), 0);  // 2 blocks
    ASSERT_EQ(Put(6, std::string(32, 'b')), 0);        // exactly 2 blocks
    ASSERT_EQ(Put(7, std::string(33, 'c')), 0);        // 3 blocks
    ASSERT_EQ(Put(8, ""), 0);                          // an empty file still takes 1
    EXPECT_EQ(Info(), "0 16 4 85 128");
    ASSERT_EQ(dev.DeleteDeviceFile(7), 0);
    EXPECT_EQ(Info(), "3 16 3 52 80");
}

TEST_F(SimStorage, DirectoryIsOrderedByIdAndASnapshot) {
    ASSERT_EQ(Put(200, "zz", 0, 3), 0);
    ASSERT_EQ(Put(9, "nine", 0, 1), 0);
    ASSERT_EQ(Put(3, "x", 0, 2), 0);
    EXPECT_EQ(Listing(), "3:2:1 9:1:4 200:3:2 ");
    // Changes after ReadDirectory do not show until the next one.
    ASSERT_EQ(dev.DeleteDeviceFile(9), 0);
    EXPECT_EQ(dev.GetDirectoryEntryCount(), 3u);
    TDEVDIRENTRY beyond;
    beyond.fileId = beyond.fileType = 0xEE;
    beyond.fileSize = 12345;
    dev.GetDirectoryEntry(3, &beyond);
    EXPECT_EQ(TestEntries({beyond}), "0:0:0 ");
    EXPECT_EQ(Listing(), "3:2:1 200:3:2 ");
}

TEST_F(SimStorage, FullStorageFailsBeforeStoringAndTheLimitItselfFits) {
    ASSERT_EQ(Put(1, std::string(5 * 16, 'a')), 0);
    EXPECT_EQ(Put(2, std::string(3 * 16 + 1, 'b')), SIMDEV_ERR_STORAGEFULL);
    EXPECT_FALSE(dev.GetStoredFile(2, nullptr));
    EXPECT_EQ(dev.FreeBlocks(), 3u);
    EXPECT_EQ(Put(2, std::string(3 * 16, 'b')), 0);
    EXPECT_EQ(dev.FreeBlocks(), 0u);
    EXPECT_EQ(Put(3, ""), SIMDEV_ERR_STORAGEFULL);
}

TEST_F(SimStorage, ReplacingAnIdFreesItsBlocksFirst) {
    ASSERT_EQ(Put(1, std::string(8 * 16, 'a'), 0, 4), 0);  // the whole device
    ASSERT_EQ(Put(1, std::string(8 * 16, 'b'), 0, 5), 0);  // fits only by replacing
    ASSERT_EQ(Put(1, "short", 0, 6), 0);
    EXPECT_EQ(Listing(), "1:6:5 ");
    EXPECT_EQ(dev.FreeBlocks(), 7u);
    EXPECT_EQ(Stored(1), "short");
}

TEST_F(SimStorage, FailedReplacementKeepsTheOldFile) {
    ASSERT_EQ(Put(1, std::string(2 * 16, 'a')), 0);
    ASSERT_EQ(Put(2, std::string(6 * 16, 'b')), 0);
    EXPECT_EQ(Put(1, std::string(3 * 16, 'c')), SIMDEV_ERR_STORAGEFULL);
    EXPECT_EQ(Stored(1), std::string(32, 'a'));
    EXPECT_EQ(dev.FreeBlocks(), 0u);
}

TEST_F(SimStorage, BitReverseModeStoresEveryByteMirrored) {
    std::string all(256, '\0');
    for (int i = 0; i < 256; ++i) all[i] = static_cast<char>(i);
    CSimDevice big;
    ASSERT_EQ(TestStore(&big, 1, 0, all, SIMDEV_MODE_BITREVERSE), 0);
    const std::string once = TestStored(&big, 1);
    ASSERT_EQ(once.size(), 256u);
    EXPECT_EQ(once.substr(0, 2) + once.substr(0x12, 1) + once.substr(0x80, 1) + once.substr(0xA5, 1) +
                  once.substr(0xF0, 1),
              std::string("\x00\x80\x48\x01\xA5\x0F", 6));
    // Mirroring twice gives the original back.
    ASSERT_EQ(TestStore(&big, 2, 0, once, SIMDEV_MODE_BITREVERSE), 0);
    EXPECT_EQ(TestStored(&big, 2), all);
}

TEST_F(SimStorage, ProgramModeFillsTheProgramSlotNotTheDirectory) {
    ASSERT_EQ(Put(1, "file"), 0);
    ASSERT_EQ(Put(1, "program image", SIMDEV_MODE_PROGRAM), 0);  // same id: no clash
    EXPECT_TRUE(dev.HasProgram());
    EXPECT_EQ(dev.ProgramImage(), "program image");
    EXPECT_EQ(Stored(1), "file");
    EXPECT_EQ(Listing(), "1:0:4 ");
    EXPECT_EQ(dev.FreeBlocks(), 7u);
    // The slot holds at most as much as the storage.
    EXPECT_EQ(Put(2, std::string(8 * 16, 'p'), SIMDEV_MODE_PROGRAM), 0);
    EXPECT_EQ(Put(2, std::string(8 * 16 + 1, 'q'), SIMDEV_MODE_PROGRAM),
              SIMDEV_ERR_STORAGEFULL);
    EXPECT_EQ(dev.ProgramImage(), std::string(8 * 16, 'p'));
}

TEST_F(SimStorage, UnknownModesStoreBytesUnchanged) {
    ASSERT_EQ(Put(4, "\x01\x02", 7, 9), 0);
    EXPECT_EQ(Stored(4), "\x01\x02");
    EXPECT_FALSE(dev.HasProgram());
    EXPECT_EQ(Listing(), "4:9:2 ");
}

TEST_F(SimStorage, DeleteFreesBlocksButLeavesTheirMarks) {
    ASSERT_EQ(Put(1, std::string(3 * 16, 'a')), 0);
    ASSERT_EQ(dev.DeleteDeviceFile(1), 0);
    EXPECT_EQ(dev.FreeBlocks(), 8u);
    EXPECT_EQ(dev.MarkedBlocks(), 3u);
    EXPECT_EQ(dev.DeleteDeviceFile(1), SIMDEV_ERR_FILENOTFOUND);
    EXPECT_EQ(dev.DeleteDeviceFile(77), SIMDEV_ERR_FILENOTFOUND);
    // Erased blocks are written before marked ones are reused.
    ASSERT_EQ(Put(2, std::string(2 * 16, 'b')), 0);
    EXPECT_EQ(dev.MarkedBlocks(), 5u);
    // Once no erased block is left, freed ones are reused.
    ASSERT_EQ(Put(3, std::string(6 * 16, 'c')), 0);
    EXPECT_EQ(dev.MarkedBlocks(), 8u);
    EXPECT_EQ(dev.FreeBlocks(), 0u);
}

TEST_F(SimStorage, QuickFormatErasesMarkedBlocksAndKeepsTheProgram) {
    ASSERT_EQ(Put(1, std::string(3 * 16, 'a')), 0);
    ASSERT_EQ(Put(2, std::string(2 * 16, 'b')), 0);
    ASSERT_EQ(Put(9, "boot", SIMDEV_MODE_PROGRAM), 0);
    ASSERT_EQ(dev.DeleteDeviceFile(2), 0);
    ASSERT_EQ(dev.FormatDevice(1), 0);
    EXPECT_EQ(dev.BlockErases(), 5u);  // the live file's blocks and the deleted one's
    EXPECT_EQ(dev.MarkedBlocks(), 0u);
    EXPECT_EQ(dev.FreeBlocks(), 8u);
    EXPECT_EQ(Listing(), "");
    EXPECT_EQ(dev.ProgramImage(), "boot");
    // Nothing is marked now, so a second quick format erases nothing.
    ASSERT_EQ(dev.FormatDevice(1), 0);
    EXPECT_EQ(dev.BlockErases(), 5u);
}

TEST_F(SimStorage, FullFormatErasesEveryBlockAndTheProgram) {
    ASSERT_EQ(Put(1, std::string(3 * 16, 'a')), 0);
    ASSERT_EQ(Put(9, "boot", SIMDEV_MODE_PROGRAM), 0);
    ASSERT_EQ(dev.FormatDevice(0), 0);
    EXPECT_EQ(dev.BlockErases(), 8u);
    EXPECT_EQ(dev.MarkedBlocks(), 0u);
    EXPECT_FALSE(dev.HasProgram());
    EXPECT_EQ(dev.ProgramImage(), "");
    EXPECT_EQ(Info(), "8 16 0 0 0");
}

TEST_F(SimStorage, TransmitFileReadsTheLocalFile) {
    CTestScratch scratch;
    const std::string content("local\0file\xff", 11), path = scratch.Native("local.bin").string();
    ASSERT_TRUE(scratch.Write("local.bin", content));
    ASSERT_EQ(dev.TransmitFile(path.c_str(), 12, 3, 0, nullptr, nullptr, 1, 100), 0);
    std::filesystem::remove(path);
    EXPECT_EQ(Stored(12), content);
    EXPECT_EQ(TestTransfer(&dev), path + " 12 3 0 1 100");
    EXPECT_EQ(dev.TransmitFile(path.c_str(), 13, 0, 0, nullptr, nullptr, 1, 100),
              SIMDEV_ERR_LOCALFILE);  // gone now
    EXPECT_FALSE(dev.GetStoredFile(13, nullptr));
    EXPECT_EQ(dev.TransmitFile(nullptr, 13, 0, 0, nullptr, nullptr, 1, 100),
              SIMDEV_ERR_BADARGUMENT);
}
