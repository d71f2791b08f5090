// The simulated device's storage: block arithmetic, modes, replacement, full
// storage, delete, the two formats and the directory snapshot.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/sim/SimDevice.h"
#include "tests/unit/TestSupport.h"

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
        return dev.TransmitFileFromMemory(bytes.data(), bytes.size(), id, type, mode, nullptr,
                                          nullptr, ONDCOMM_TRANSFER_FLAG, ONDCOMM_STEPS_SCRIPT);
    }
    std::string Stored(uint8_t id) {
        CSimDevice::TStoredFile f;
        return dev.GetStoredFile(id, &f) ? f.data : std::string("<none>");
    }
    std::vector<TDEVDIRENTRY> Listing() {
        std::vector<TDEVDIRENTRY> list;
        EXPECT_EQ(dev.ReadDirectory(), 0);
        for (uint32_t i = 0; i < dev.GetDirectoryEntryCount(); ++i) {
            TDEVDIRENTRY e;
            dev.GetDirectoryEntry(i, &e);
            list.push_back(e);
        }
        return list;
    }
    TDEVDIRINFO Info() {
        TDEVDIRINFO info;
        EXPECT_EQ(dev.ReadDirectory(), 0);
        dev.GetDirectoryInfo(&info);
        return info;
    }
    CSimDevice dev;
};

}  // namespace

TEST_F(SimStorage, DirectoryInfoArithmetic) {
    ASSERT_EQ(Put(5, std::string(20, 'a'), 0, 7), 0);  // 2 blocks
    ASSERT_EQ(Put(6, std::string(32, 'b')), 0);        // exactly 2 blocks
    ASSERT_EQ(Put(7, std::string(33, 'c')), 0);        // 3 blocks
    ASSERT_EQ(Put(8, ""), 0);                          // an empty file still takes 1
    TDEVDIRINFO info = Info();
    EXPECT_EQ(info.freeFactorA, 0u);
    EXPECT_EQ(info.freeFactorB, 16u);
    EXPECT_EQ(info.fileCount, 4u);
    EXPECT_EQ(info.bytesInFiles, 85u);
    EXPECT_EQ(info.bytesOnDevice, 8u * 16);
    ASSERT_EQ(dev.DeleteDeviceFile(7), 0);
    info = Info();
    EXPECT_EQ(uint64_t(info.freeFactorA) * info.freeFactorB, 3u * 16);
    EXPECT_EQ(info.fileCount, 3u);
    EXPECT_EQ(info.bytesInFiles, 52u);
    EXPECT_EQ(info.bytesOnDevice, 5u * 16);
}

TEST_F(SimStorage, DirectoryIsOrderedByIdAndASnapshot) {
    ASSERT_EQ(Put(200, "zz", 0, 3), 0);
    ASSERT_EQ(Put(9, "nine", 0, 1), 0);
    ASSERT_EQ(Put(3, "x", 0, 2), 0);
    std::vector<TDEVDIRENTRY> list = Listing();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].fileId, 3);
    EXPECT_EQ(list[0].fileType, 2);
    EXPECT_EQ(list[0].fileSize, 1u);
    EXPECT_EQ(list[1].fileId, 9);
    EXPECT_EQ(list[1].fileSize, 4u);
    EXPECT_EQ(list[2].fileId, 200);
    EXPECT_EQ(list[2].fileType, 3);
    // Changes after ReadDirectory do not show until the next one.
    ASSERT_EQ(dev.DeleteDeviceFile(9), 0);
    EXPECT_EQ(dev.GetDirectoryEntryCount(), 3u);
    TDEVDIRENTRY beyond;
    beyond.fileId = beyond.fileType = 0xEE;
    beyond.fileSize = 12345;
    dev.GetDirectoryEntry(3, &beyond);
    EXPECT_EQ(beyond.fileId, 0);
    EXPECT_EQ(beyond.fileType, 0);
    EXPECT_EQ(beyond.fileSize, 0u);
    EXPECT_EQ(Listing().size(), 2u);
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
    std::vector<TDEVDIRENTRY> list = Listing();
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].fileType, 6);
    EXPECT_EQ(list[0].fileSize, 5u);
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
    ASSERT_EQ(big.TransmitFileFromMemory(all.data(), all.size(), 1, 0, SIMDEV_MODE_BITREVERSE,
                                         nullptr, nullptr, 1, 100), 0);
    CSimDevice::TStoredFile once;
    ASSERT_TRUE(big.GetStoredFile(1, &once));
    ASSERT_EQ(once.data.size(), 256u);
    EXPECT_EQ(uint8_t(once.data[0x01]), 0x80);
    EXPECT_EQ(uint8_t(once.data[0x80]), 0x01);
    EXPECT_EQ(uint8_t(once.data[0x12]), 0x48);
    EXPECT_EQ(uint8_t(once.data[0xF0]), 0x0F);
    EXPECT_EQ(uint8_t(once.data[0xA5]), 0xA5);
    EXPECT_EQ(uint8_t(once.data[0x00]), 0x00);
    // Mirroring twice gives the original back.
    ASSERT_EQ(big.TransmitFileFromMemory(once.data.data(), once.data.size(), 2, 0,
                                         SIMDEV_MODE_BITREVERSE, nullptr, nullptr, 1, 100), 0);
    CSimDevice::TStoredFile twice;
    ASSERT_TRUE(big.GetStoredFile(2, &twice));
    EXPECT_EQ(twice.data, all);
}

TEST_F(SimStorage, ProgramModeFillsTheProgramSlotNotTheDirectory) {
    ASSERT_EQ(Put(1, "file"), 0);
    ASSERT_EQ(Put(1, "program image", SIMDEV_MODE_PROGRAM), 0);  // same id: no clash
    EXPECT_TRUE(dev.HasProgram());
    EXPECT_EQ(dev.ProgramImage(), "program image");
    EXPECT_EQ(Stored(1), "file");
    EXPECT_EQ(Listing().size(), 1u);
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
    EXPECT_EQ(Listing().size(), 1u);
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
    EXPECT_TRUE(Listing().empty());
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
    TDEVDIRINFO info = Info();
    EXPECT_EQ(info.fileCount, 0u);
    EXPECT_EQ(info.freeFactorA, 8u);
    EXPECT_EQ(info.bytesOnDevice, 0u);
}

TEST_F(SimStorage, TransmitFileReadsTheLocalFile) {
    CTestScratch scratch;
    const std::string content("local\0file\xff", 11), path = scratch.Native("local.bin").string();
    ASSERT_TRUE(scratch.Write("local.bin", content));
    ASSERT_EQ(dev.TransmitFile(path.c_str(), 12, 3, 0, nullptr, nullptr, 1, 100), 0);
    std::filesystem::remove(path);
    EXPECT_EQ(Stored(12), content);
    CSimDevice::TTransfer last = dev.LastTransfer();
    EXPECT_EQ(last.localPath, path);
    EXPECT_EQ(last.fileId, 12);
    EXPECT_EQ(last.fileType, 3);
    EXPECT_EQ(last.flag, 1u);
    EXPECT_EQ(last.steps, 100u);
    EXPECT_EQ(dev.TransmitFile(path.c_str(), 13, 0, 0, nullptr, nullptr, 1, 100),
              SIMDEV_ERR_LOCALFILE);  // gone now
    EXPECT_FALSE(dev.GetStoredFile(13, nullptr));
    EXPECT_EQ(dev.TransmitFile(nullptr, 13, 0, 0, nullptr, nullptr, 1, 100),
              SIMDEV_ERR_BADARGUMENT);
}
