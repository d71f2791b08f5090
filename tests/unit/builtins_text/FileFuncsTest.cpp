// "writestringtofile", "readstringfromfile", "getfilesize", "getbasepath"
// against a scratch folder that serves as the scripts' base directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "script/ScriptErrors.h"
#include "util/FileReplaceSeam.h"
#include "scriptrt/FileNames.h"
#include "tests/unit/TestSupport.h"

namespace {

class BuiltinFile : public ScratchTest {
protected:
    void TearDown() override { ondutil::FileWritesFailAfter(-1); }
    std::string Out(const std::string& text, CONXScriptRunContext* context = nullptr) {
        TTESTRUN run = TestRun(text, Dir(), context);
        EXPECT_EQ(run.code, 0u) << text << "\n" << run.output;
        return run.output;
    }
};

const char* const kMissing = nullptr;

}  // namespace

TEST_F(BuiltinFile, Write) {
    struct {
        const char* before;     // the file's bytes before, or kMissing
        const char* arguments;  // after the name "a.txt"
        const char* written;
        std::string after;
    } cases[] = {
        // With an offset the file is changed in place, without one replaced.
        {"0123456", "\"hello\", 2", "5", "01hello"},
        {"0123456", "\"hello\"", "5", "hello"},
        // start and count pick the bytes of the text.
        {"0123456", "\"hello\", 0, 1, 3", "3", "ell3456"},
        {"ell3456", "\"hello\", 6, 3, 100", "2", "ell345lo"},
        {"0123456", "\"hello\", 0, 9", "0", "0123456"},
        {kMissing, "\"hello\", 0, 9", "0", ""},
        {"0123456", "\"hello\", 0xFFFFFFFF:U, 5", "0", ""},  // without an offset it is still emptied
        // All-ones means "no offset"; higher bits of an offset are dropped.
        {"abc", "\"X\", 0xFFFFFFFF:U", "1", "X"},
        {"abc", "\"X\", 0x100000001", "1", "aXc"},
        // Beyond the end the file grows.
        {"ab", "\"x\", 4", "1", std::string("ab\0\0x", 5)},
        {kMissing, "\"x\", 2", "1", std::string("\0\0x", 3)},
        {kMissing, "\"a\\0b\"", "3", std::string("a\0b", 3)},
    };
    for (const auto& c : cases) {
        std::filesystem::remove(Native("a.txt"));
        if (c.before) Write("a.txt", c.before);
        EXPECT_EQ(Out(std::string("print(writestringtofile(\"a.txt\", ") + c.arguments + "));"), c.written)
            << c.arguments;
        EXPECT_EQ(Read("a.txt"), c.after) << c.arguments;
    }
    EXPECT_EQ(FileCount(), 1u);  // nothing left beside it
    // The value need not be taken.
    EXPECT_EQ(Out("writestringtofile(\"w.txt\", \"x\");"), "");
    EXPECT_EQ(Read("w.txt"), "x");
}

// What a failed write leaves behind is the file replacement's (FileReplaceTest).
TEST_F(BuiltinFile, AFailedWriteWritesNothing) {
    Write("a.txt", "old content");
    ondutil::FileWritesFailAfter(3);
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"new and longer content\"));"), "0");
    EXPECT_EQ(Read("a.txt"), "old content");
}

TEST_F(BuiltinFile, ReadAndSize) {
    Write("a.txt", "0123456");
    Write("empty.txt", "");
    std::filesystem::create_directory(Native("folder"));
    EXPECT_EQ(Out("print(readstringfromfile(\"a.txt\"), \",\", readstringfromfile(\"a.txt\", 3, 2), \",\","
                  " readstringfromfile(\"a.txt\", 5, 100), \",\", readstringfromfile(\"a.txt\", 0x100000002), \",\","
                  " readstringfromfile(\"folder\"), \",\", readstringfromfile(\"missing.txt\"));"),
              "0123456,34,56,23456,,");
    EXPECT_EQ(Out("print(getfilesize(\"a.txt\"), \",\", getfilesize(\"empty.txt\"), \",\","
                  " getfilesize(\"missing.txt\"), \",\", getfilesize(\"folder\"));"),
              "7,0,0,0");
}

TEST_F(BuiltinFile, ReadBeyondTheStringLimitFails) {
    Write("big.txt", std::string(4096, 'x'));
    CONXScriptRunContext context;
    context.m_limits.maxStringBytes = 1000;
    EXPECT_EQ(TestRun("var string s; s = readstringfromfile(\"big.txt\", 0, 1000);", Dir(), &context).code, 0u);
    EXPECT_EQ(TestRun("var string s; s = readstringfromfile(\"big.txt\");", Dir(), &context).code,
              SCRIPT_ERR_OUTOFMEMORY);
}

// Every file built-in resolves names through the rule below (conformance
// scripts show it in use); getbasepath shows the base without a trailing separator.
TEST_F(BuiltinFile, BasePath) {
    EXPECT_EQ(Out("print(getbasepath());"), Dir());
    EXPECT_EQ(TestRun("print(getbasepath());", "C:\\").output, "C:");
}

TEST(BuiltinFileNames, ResolutionRule) {
    const char* cases[][2] = {
        {"", ""}, {"\\", ""}, {"\\\\srv\\x", "\\\\srv\\x"}, {"\\d\\x", "C:\\d\\x"}, {"D:x", "D:x"},
        {"x", "C:\\b\\x"}, {":", "C:\\b\\:"}, {"..\\x", "C:\\b\\..\\x"},
    };
    for (auto& c : cases) EXPECT_EQ(ScriptResolveFileName("C:\\b", c[0]), c[1]) << c[0];
}

TEST_F(BuiltinFile, ConfinedToTheFileRoot) {
    std::filesystem::create_directory(Native("box"));
    CONXScriptRunContext context;
    context.m_limits.fileRoot = Path("box");
    Write("outside.txt", "secret");
    std::string box = TestLiteral(Path("box"));
    std::string text =
        "print(writestringtofile(\"box\\\\in.txt\", \"ok\"), \",\", readstringfromfile(\"box\\\\in.txt\"), \",\","
        " writestringtofile(\"box\\\\..\\\\escaped.txt\", \"no\"), \",\", readstringfromfile(\"outside.txt\"), \",\","
        " getfilesize(\"outside.txt\"), \",\", writestringtofile(\"outside.txt\", \"no\", 0), \",\","
        " writestringtofile(\"box\", \"no\"), \",\", readstringfromfile(\"" + box + "\\\\..\\\\outside.txt\"));";
    EXPECT_EQ(Out(text, &context), "2,ok,0,,0,0,0,");
    EXPECT_EQ(Read("outside.txt"), "secret");
    EXPECT_EQ(Read("escaped.txt"), "<missing>");
    EXPECT_EQ(Read("box\\in.txt"), "ok");
}

TEST_F(BuiltinFile, FileSizeLimit) {
    CONXScriptRunContext context;
    context.m_limits.maxFileBytes = 10;
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"0123456789\"), \",\","
                  " writestringtofile(\"a.txt\", \"x\", 10), \",\", writestringtofile(\"a.txt\", \"x\", 9), \",\","
                  " writestringtofile(\"b.txt\", \"01234567890\"));",
                  &context),
              "10,0,1,0");
    EXPECT_EQ(Read("a.txt"), "012345678x");
    EXPECT_EQ(Read("b.txt"), "<missing>");
}
