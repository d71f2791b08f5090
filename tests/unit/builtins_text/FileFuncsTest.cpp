// "writestringtofile", "readstringfromfile", "getfilesize", "getbasepath"
// against a scratch folder that serves as the scripts' base directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "script/ScriptErrors.h"
#include "scriptrt/FileFuncsSeam.h"
#include "scriptrt/FileNames.h"
#include "tests/unit/builtins_text/BuiltinTestRun.h"

namespace {

// A path as a script string literal: every backslash doubled.
std::string Literal(const std::string& path) {
    std::string out;
    for (char c : path) {
        if (c == '\\') out += "\\\\";
        else out += c;
    }
    return out;
}

class BuiltinFile : public BuiltinScratch {
protected:
    void TearDown() override {
        ondscriptrt::FileFuncsFailWritesAfter(-1);
        BuiltinScratch::TearDown();
    }
    std::string Out(const std::string& text, CONXScriptRunContext* context = nullptr) {
        TBUILTINRUN run = Run(text, context);
        EXPECT_EQ(run.code, 0u) << text << "\n" << run.output;
        return run.output;
    }
};

}  // namespace

TEST_F(BuiltinFile, WriteWithAndWithoutOffset) {
    Write("a.txt", "0123456");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\", 2));"), "5");
    EXPECT_EQ(Read("a.txt"), "01hello");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\"));"), "5");
    EXPECT_EQ(Read("a.txt"), "hello");
    // start and count pick the bytes of the text.
    Write("a.txt", "0123456");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\", 0, 1, 3));"), "3");
    EXPECT_EQ(Read("a.txt"), "ell3456");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\", 6, 3, 100));"), "2");
    EXPECT_EQ(Read("a.txt"), "ell345lo");
    EXPECT_EQ(FileCount(), 1u);  // nothing left beside it
}

TEST_F(BuiltinFile, NothingToWrite) {
    Write("a.txt", "0123456");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\", 0, 9));"), "0");
    EXPECT_EQ(Read("a.txt"), "0123456");
    EXPECT_EQ(Out("print(writestringtofile(\"new.txt\", \"hello\", 0, 9));"), "0");
    EXPECT_EQ(Read("new.txt"), "");
    // Without an offset the file is still emptied.
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"hello\", 0xFFFFFFFF:U, 5));"), "0");
    EXPECT_EQ(Read("a.txt"), "");
}

TEST_F(BuiltinFile, OffsetsAreThirtyTwoBits) {
    Write("a.txt", "abc");
    // All-ones means "no offset"; higher bits of an offset are dropped.
    EXPECT_EQ(Out("writestringtofile(\"a.txt\", \"X\", 0xFFFFFFFF:U);"), "");
    EXPECT_EQ(Read("a.txt"), "X");
    Write("a.txt", "abc");
    EXPECT_EQ(Out("writestringtofile(\"a.txt\", \"X\", 0x100000001);"), "");
    EXPECT_EQ(Read("a.txt"), "aXc");
    EXPECT_EQ(Out("print(readstringfromfile(\"a.txt\", 0x100000002));"), "c");
}

TEST_F(BuiltinFile, WriteBeyondTheEndGrowsTheFile) {
    Write("a.txt", "ab");
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"x\", 4), \",\", getfilesize(\"a.txt\"));"), "1,5");
    EXPECT_EQ(Read("a.txt"), std::string("ab\0\0x", 5));
    EXPECT_EQ(Out("print(writestringtofile(\"made.txt\", \"x\", 2));"), "1");
    EXPECT_EQ(Read("made.txt"), std::string("\0\0x", 3));
}

TEST_F(BuiltinFile, NulBytesBothWays) {
    EXPECT_EQ(Out("print(writestringtofile(\"n.bin\", \"a\\0b\"));"), "3");
    EXPECT_EQ(Read("n.bin"), std::string("a\0b", 3));
    EXPECT_EQ(Out("print(readstringfromfile(\"n.bin\"), \",\", strlen(readstringfromfile(\"n.bin\")));"),
              "a\\0b,3");
}

TEST_F(BuiltinFile, AFailedWriteLeavesTheOldFile) {
    Write("a.txt", "old content");
    ondscriptrt::FileFuncsFailWritesAfter(3);
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"new and longer content\"));"), "0");
    EXPECT_EQ(Read("a.txt"), "old content");
    EXPECT_EQ(FileCount(), 1u);  // the partial file beside it is gone
    // A missing file stays missing.
    ondscriptrt::FileFuncsFailWritesAfter(0);
    EXPECT_EQ(Out("print(writestringtofile(\"b.txt\", \"x\"));"), "0");
    EXPECT_EQ(Read("b.txt"), "<missing>");
    ondscriptrt::FileFuncsFailWritesAfter(-1);
    EXPECT_EQ(Out("print(writestringtofile(\"a.txt\", \"new\"));"), "3");
    EXPECT_EQ(Read("a.txt"), "new");
}

TEST_F(BuiltinFile, WritesEvenWhenTheValueIsNotUsed) {
    EXPECT_EQ(Out("writestringtofile(\"w.txt\", \"x\");"), "");
    EXPECT_EQ(Read("w.txt"), "x");
}

TEST_F(BuiltinFile, WriteArgumentChecksInOrder) {
    EXPECT_EQ(Run("writestringtofile(\"a\");").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("writestringtofile(\"a\", \"b\", 1, 2, 3, 4);").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("writestringtofile(&print);").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("writestringtofile(\"a\", &print);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("writestringtofile(1, \"x\");").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("writestringtofile(\"a\", 1);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("writestringtofile(\"a\", \"x\", 1, \"2\");").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(FileCount(), 0u);  // no failed call made a file
}

TEST_F(BuiltinFile, Read) {
    Write("a.txt", "0123456");
    EXPECT_EQ(Out("print(readstringfromfile(\"a.txt\"), \",\", readstringfromfile(\"a.txt\", 3), \",\","
                  " readstringfromfile(\"a.txt\", 3, 2), \",\", readstringfromfile(\"a.txt\", 3, 0), \",\","
                  " readstringfromfile(\"a.txt\", 7), \",\", readstringfromfile(\"a.txt\", 5, 100));"),
              "0123456,3456,34,,,56");
    EXPECT_EQ(Out("print(readstringfromfile(\"missing.txt\"), \"|\", strlen(readstringfromfile(\"missing.txt\")));"),
              "|0");
    EXPECT_EQ(Run("readstringfromfile();").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("readstringfromfile(\"a\", 1, 2, 3);").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("readstringfromfile(1);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("readstringfromfile(\"a\", \"1\");").code, SCRIPT_ERR_TYPE);
}

TEST_F(BuiltinFile, ReadBeyondTheStringLimitFails) {
    Write("big.txt", std::string(4096, 'x'));
    CONXScriptRunContext context;
    context.m_limits.maxStringBytes = 1000;
    EXPECT_EQ(Run("var string s; s = readstringfromfile(\"big.txt\", 0, 1000);", &context).code, 0u);
    EXPECT_EQ(Run("var string s; s = readstringfromfile(\"big.txt\");", &context).code,
              SCRIPT_ERR_OUTOFMEMORY);
}

TEST_F(BuiltinFile, FileSize) {
    Write("a.txt", "0123456");
    Write("empty.txt", "");
    std::filesystem::create_directory(m_native + "/folder");
    EXPECT_EQ(Out("print(getfilesize(\"a.txt\"), \",\", getfilesize(\"empty.txt\"), \",\","
                  " getfilesize(\"missing.txt\"), \",\", getfilesize(\"folder\"));"),
              "7,0,0,0");
    EXPECT_EQ(Out("print(readstringfromfile(\"folder\"), \"|\");"), "|");
    EXPECT_EQ(Run("getfilesize();").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("getfilesize(7);").code, SCRIPT_ERR_TYPE);
}

TEST_F(BuiltinFile, NamesResolveAgainstTheBaseDirectory) {
    std::filesystem::create_directory(m_native + "/sub");
    Write("sub\\in.txt", "deep");
    EXPECT_EQ(Out("print(readstringfromfile(\"sub\\\\in.txt\"));"), "deep");
    // An absolute name is used as it is, a name after one backslash keeps the base's drive.
    EXPECT_EQ(Out("print(readstringfromfile(\"" + Literal(Path("sub\\in.txt")) + "\"));"), "deep");
    EXPECT_EQ(Out("print(readstringfromfile(\"" + Literal(Path("sub\\in.txt").substr(2)) + "\"));"), "deep");
    EXPECT_EQ(Out("print(getbasepath());"), m_dir);
    EXPECT_EQ(BuiltinRun("print(getbasepath());", "C:\\").output, "C:");
    EXPECT_EQ(Run("getbasepath(1);").code, SCRIPT_ERR_PARAMCOUNT);
}

TEST(BuiltinFileNames, ResolutionRule) {
    EXPECT_EQ(ScriptResolveFileName("C:\\b", ""), "");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "\\"), "");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "\\\\srv\\x"), "\\\\srv\\x");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "\\d\\x"), "C:\\d\\x");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "D:x"), "D:x");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "x"), "C:\\b\\x");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", ":"), "C:\\b\\:");
    EXPECT_EQ(ScriptResolveFileName("C:\\b", "..\\x"), "C:\\b\\..\\x");
}

TEST_F(BuiltinFile, ConfinedToTheFileRoot) {
    std::filesystem::create_directory(m_native + "/box");
    CONXScriptRunContext context;
    context.m_limits.fileRoot = Path("box");
    Write("outside.txt", "secret");
    std::string box = Literal(Path("box"));
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
