// The five exports as a host sees them.
#include <gtest/gtest.h>

#include <cstring>

#include "module/ModuleEntry.h"

TEST(FrameExports, ListsThreeKindsInOrder) {
    ASSERT_EQ(OndDeviceClientGetNumObj(), 3u);
    EXPECT_EQ(OndDeviceClientGetObjType(0), 0x1000u);
    EXPECT_EQ(OndDeviceClientGetObjType(1), 0x1001u);
    EXPECT_EQ(OndDeviceClientGetObjType(2), 0x1002u);
    EXPECT_EQ(OndDeviceClientGetObjType(3), 0xFFFFFFFFu);
    EXPECT_EQ(OndDeviceClientGetObjType(~(uintptr_t)0), 0xFFFFFFFFu);
}

TEST(FrameExports, InfoGivesNamesAndOneAndNothingElse) {
    const char* names[] = {"Terminal", "File Manager", "Script Processor"};
    for (uint32_t i = 0; i < 3; ++i) {
        uint32_t type = OndDeviceClientGetObjType(i);
        EXPECT_STREQ(reinterpret_cast<const char*>(OndDeviceClientGetObjInfo(type, 0)), names[i]);
        EXPECT_EQ(OndDeviceClientGetObjInfo(type, 1), 1u);
        EXPECT_EQ(OndDeviceClientGetObjInfo(type, 2), 0u);
    }
    EXPECT_EQ(OndDeviceClientGetObjInfo(0x0FFF, 0), 0u);
    EXPECT_EQ(OndDeviceClientGetObjInfo(0x0FFF, 1), 0u);
    EXPECT_EQ(OndDeviceClientGetObjInfo(0xFFFFFFFF, 0), 0u);
}

TEST(FrameExports, CreatesEachKindAndRefusesUnknownTypes) {
    for (uint32_t i = 0; i < 3; ++i) {
        uint32_t type = OndDeviceClientGetObjType(i);
        CONXDeviceClient_0* object = OndDeviceClientCreateInstance(type);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->GetObjType(), type);
        OndDeviceClientDeleteInstance(object);
    }
    EXPECT_EQ(OndDeviceClientCreateInstance(0x1003), nullptr);
    EXPECT_EQ(OndDeviceClientCreateInstance(0xFFFFFFFF), nullptr);
    OndDeviceClientDeleteInstance(nullptr);  // ignored
}

namespace {
// An object the module did not make: it must never be deleted by the module.
class CForeignObject : public CONXDeviceClient {
public:
    explicit CForeignObject(int* destroyed) : m_destroyed(destroyed) {}
    ~CForeignObject() override { ++*m_destroyed; }
    uint32_t GetObjType() override { return 0x2000; }
    int* m_destroyed;
};
}  // namespace

TEST(FrameExports, LeavesForeignObjectsAlone) {
    int destroyed = 0;
    {
        CForeignObject foreign(&destroyed);
        OndDeviceClientDeleteInstance(&foreign);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);  // only its own scope ended it
}
