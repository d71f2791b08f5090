// The simulated device's texts.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>

#include "host/sim/SimDevice.h"

TEST(SimInfo, DescriptionAndConfigurationLine) {
    CSimDevice::TConfig config;
    config.blockCount = 64;
    config.blockSize = 512;
    CSimDevice dev(config);
    EXPECT_EQ(std::string(dev.GetInfoString(ONDCOMM_INFO_DESCRIPTION, 0)).rfind("Simulated device", 0),
              0u);
    std::string on = dev.GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0);
    EXPECT_NE(on.find("64"), std::string::npos) << on;
    EXPECT_NE(on.find("512"), std::string::npos) << on;
    EXPECT_NE(on.find("loopback on"), std::string::npos) << on;
    dev.SetLoopback(false);
    std::string off = dev.GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0);
    EXPECT_NE(off.find("loopback off"), std::string::npos) << off;
    EXPECT_STREQ(dev.GetInfoString(99, 0), "");
}

TEST(SimInfo, EveryErrorCodeHasItsOwnText) {
    CSimDevice dev;
    const int32_t codes[] = {
        SIMDEV_ERR_NONE,         SIMDEV_ERR_FILENOTFOUND, SIMDEV_ERR_STORAGEFULL,
        SIMDEV_ERR_LOCALFILE,    SIMDEV_ERR_ABORTED,      SIMDEV_ERR_INJECTED,
        SIMDEV_ERR_CLOSED,       SIMDEV_ERR_NOTSUPPORTED, SIMDEV_ERR_BADARGUMENT,
        SIMDEV_ERR_LOCKED,       SIMDEV_ERR_NOMEMORY,     SIMDEV_ERR_INTERNAL,
    };
    std::set<std::string> texts;
    for (int32_t code : codes) {
        std::string text = dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, code);
        EXPECT_FALSE(text.empty()) << code;
        EXPECT_EQ(text.find("nknown"), std::string::npos) << code;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), std::size(codes));
    std::string unknown = dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, 123456789012LL);
    EXPECT_NE(unknown.find("123456789012"), std::string::npos) << unknown;
    EXPECT_EQ(texts.count(unknown), 0u);
    std::string negative = dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, -5);
    EXPECT_NE(negative.find("-5"), std::string::npos) << negative;
}

TEST(SimInfo, TextSurvivesOtherThreadsCalls) {
    CSimDevice dev;
    const char* mine = dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, 777);
    const std::string copy = mine;
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            dev.GetInfoString(ONDCOMM_INFO_ERRORTEXT, 100000 + i);
            dev.GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0);
        }
    });
    other.join();
    EXPECT_EQ(std::string(mine), copy);
    EXPECT_NE(copy.find("777"), std::string::npos);
}
