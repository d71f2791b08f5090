// External variables: setting them, scripts using and changing them, reading
// them back, through the object's operations and through Call with the
// host's 144-byte records.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/unit/processor/ProcessorTestUtil.h"

namespace {

TONX_SCRIPTVARIABLE NumberRecord(const char* name, uint32_t type, const uint64_t* value) {
    TONX_SCRIPTVARIABLE r;
    std::memset(&r, 0xAB, sizeof r);  // whatever the host left in its element
    r.name = name;
    r.type = type;
    r.value = (uint64_t)(uintptr_t)value;
    return r;
}

TONX_SCRIPTVARIABLE StringRecord(const char* name, const char* bytes, uint32_t length) {
    TONX_SCRIPTVARIABLE r;
    std::memset(&r, 0xAB, sizeof r);
    r.name = name;
    r.type = 2;
    r.value = (uint64_t)(uintptr_t)bytes;
    std::memcpy(&r.length, &length, sizeof length);  // the upper half is not the length
    return r;
}

TONX_SCRIPTVARIABLE Query(const char* name) {
    TONX_SCRIPTVARIABLE r;
    std::memset(&r, 0, sizeof r);
    r.name = name;
    return r;
}

using ProcessorVariables = ProcessorTest;

}  // namespace

TEST_F(ProcessorVariables, ScriptsSeeEveryTypeAndTheUnknownTypeIsSkipped) {
    uint64_t counter = 41, big = 1ull << 40, minus = (uint64_t)-5, wide = (uint64_t)-7;
    TONX_SCRIPTVARIABLE records[] = {
        NumberRecord("Counter", 1, &counter), StringRecord("Name", "ab\0cd", 5),
        NumberRecord("Skipped", 7, &counter), NumberRecord("Minus", 3, &minus),
        NumberRecord("Big", 4, &big),         NumberRecord("Wide", 5, &wide),
    };
    ASSERT_EQ(processor.SetVariables(records, 6, false), EONX_ERR_NONE);
    EXPECT_EQ(Run("print(Counter + 1, \" \", Name, \" \", Minus, \" \", Big, \" \", Wide);"),
              EONX_ERR_NONE);
    EXPECT_EQ(output, "42 ab\\0cd -5 1099511627776 -7");
    EXPECT_EQ(Run("print(Skipped);"), EONX_ERR_SCRIPTFAILED);  // not defined
}

TEST_F(ProcessorVariables, ReplacingOrKeepingTheList) {
    uint64_t one = 1, two = 2;
    TONX_SCRIPTVARIABLE a = NumberRecord("A", 1, &one), b = NumberRecord("B", 1, &two);
    ASSERT_EQ(processor.SetVariables(&a, 1, false), EONX_ERR_NONE);
    ASSERT_EQ(processor.SetVariables(&b, 1, true), EONX_ERR_NONE);
    EXPECT_EQ(Run("print(A, B);"), EONX_ERR_NONE);
    EXPECT_EQ(output, "12");
    ASSERT_EQ(processor.SetVariables(&b, 1, false), EONX_ERR_NONE);
    EXPECT_EQ(Run("print(A);"), EONX_ERR_SCRIPTFAILED);
    ASSERT_EQ(processor.SetVariables(nullptr, 0, false), EONX_ERR_NONE);  // only clears
    EXPECT_EQ(Run("print(B);"), EONX_ERR_SCRIPTFAILED);
}

TEST_F(ProcessorVariables, ScriptChangesAreReadBackWithoutRegardToCase) {
    uint64_t counter = 9;
    TONX_SCRIPTVARIABLE set[] = {NumberRecord("Counter", 1, &counter),
                                 StringRecord("Text", "x", 1)};
    ASSERT_EQ(processor.SetVariables(set, 2, false), EONX_ERR_NONE);
    ASSERT_EQ(Run("Counter = Counter * 3; Text = Text + \"yz\";"), EONX_ERR_NONE);

    TONX_SCRIPTVARIABLE get[] = {Query("COUNTER"), Query("text"), Query("absent")};
    uint32_t found = 99;
    EXPECT_EQ(processor.GetVariables(get, 3, &found), EONX_ERR_NONE);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(get[0].type, 1u);
    EXPECT_EQ((uint32_t)get[0].value, 27u);
    EXPECT_EQ(get[1].type, 2u);
    EXPECT_EQ(get[1].length, 3u);
    EXPECT_EQ(std::string((const char*)(uintptr_t)get[1].value, 3), "xyz");
    EXPECT_EQ(get[2].type, 0u);  // untouched
    EXPECT_EQ(processor.GetVariables(get, 0, &found), EONX_ERR_NONE);
    EXPECT_EQ(found, 0u);
}

TEST_F(ProcessorVariables, DuplicateNamesAllCountAndTheLastStands) {
    uint64_t first = 1, second = 2;
    TONX_SCRIPTVARIABLE set[] = {NumberRecord("Dup", 1, &first), NumberRecord("DUP", 5, &second)};
    ASSERT_EQ(processor.SetVariables(set, 2, false), EONX_ERR_NONE);
    TONX_SCRIPTVARIABLE get = Query("dup");
    uint32_t found = 0;
    EXPECT_EQ(processor.GetVariables(&get, 1, &found), EONX_ERR_NONE);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(get.type, 5u);
    EXPECT_EQ(get.value, 2u);
}

TEST_F(ProcessorVariables, CallKeepsTheRecordAsymmetry) {
    // Setting: numbers by pointer, the string length in the low 32 bits.
    uint64_t signedValue = (uint64_t)-3;
    TONX_SCRIPTVARIABLE set[] = {NumberRecord("S", 3, &signedValue), StringRecord("T", "abc", 2)};
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_SETVARIABLES, (uint64_t)(uintptr_t)set, 2, 0, 0),
              EONX_ERR_NONE);
    std::string text = "S = S - 1; T = T + \"!\";";
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_EXECUTE, (uint64_t)(uintptr_t)text.c_str(),
                             (uint64_t)(uintptr_t)&TestCollect, (uint64_t)(uintptr_t)&output, 0),
              EONX_ERR_NONE);
    // Reading back: the number itself in the value field, the length in 64 bits.
    TONX_SCRIPTVARIABLE get[] = {Query("s"), Query("t")};
    get[1].length = ~0ull;
    uint32_t found = 0;
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_GETVARIABLES, (uint64_t)(uintptr_t)get, 2,
                             (uint64_t)(uintptr_t)&found, 0),
              EONX_ERR_NONE);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(get[0].type, 3u);
    EXPECT_EQ((int64_t)get[0].value, -4);
    EXPECT_EQ(get[1].length, 3u);
    EXPECT_EQ(std::string((const char*)(uintptr_t)get[1].value), "ab!");
    // Keep-existing from the third argument; a null count pointer is allowed.
    uint64_t n = 5;
    TONX_SCRIPTVARIABLE more = NumberRecord("N", 4, &n);
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_SETVARIABLES, (uint64_t)(uintptr_t)&more, 1, 1, 0),
              EONX_ERR_NONE);
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_GETVARIABLES, (uint64_t)(uintptr_t)get, 2, 0, 0),
              EONX_ERR_NONE);
    EXPECT_EQ(get[1].length, 3u);
}

TEST_F(ProcessorVariables, CallRunsFilesAndPassesOtherCommandsOn) {
    std::string path = ProcessorWrite(scratch, "call.dcs", "print(\"file\");");
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_EXECUTEFILE, (uint64_t)(uintptr_t)path.c_str(),
                             (uint64_t)(uintptr_t)&TestCollect, (uint64_t)(uintptr_t)&output, 0),
              EONX_ERR_NONE);
    EXPECT_EQ(output, "file");
    EXPECT_EQ(processor.Call(0x1004, 1, 2, 3, 4), EONX_ERR_NONE);
    EXPECT_EQ(processor.Call(ONX_SCRIPTCMD_EXECUTEFILE, 0, 0, 0, 0), EONX_ERR_EMPTYPATH);
    EXPECT_EQ(processor.GetObjType(), ONX_OBJTYPE_SCRIPTPROCESSOR);
}
