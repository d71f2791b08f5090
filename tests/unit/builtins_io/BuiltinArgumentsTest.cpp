// The checks every built-in makes before it does anything: the count rule
// first, then that every argument is a variable, then the type of each one.
// A call that fails them has no effect: no output, no device or operator
// call, no file. (Calls the conformance scripts already fail are left to them.)
#include <gtest/gtest.h>

#include <string>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

const uint32_t kCount = SCRIPT_ERR_PARAMCOUNT;
const uint32_t kType = SCRIPT_ERR_TYPE;

struct TARGCASE {
    const char* text;
    uint32_t code;
};

const TARGCASE kCases[] = {
    // Text and numbers.
    {"strlen();", kCount}, {"strlen(\"a\", \"b\");", kCount},
    {"strlen(5);", kType},  // checked even when the value is not used
    {"var int32 n; n = strlen(n);", kType},
    {"substr(&print);", kCount}, {"substr(\"s\", 1, 2, 3);", kCount}, {"substr(&print, 1);", kType},
    {"substr(1, 1);", kType}, {"substr(\"s\", \"1\");", kType}, {"substr(\"s\", 1, \"2\");", kType},
    {"substr(\"s\", 9);", 0},
    {"instr(\"a\");", kCount}, {"instr(\"a\", \"b\", 1, 2);", kCount}, {"instr(\"a\", 1);", kType},
    {"instr(\"a\", \"b\", \"c\");", kType},
    {"ascii(65);", kType}, {"ascii(\"a\", \"b\");", kCount}, {"chr(\"A\");", kType}, {"chr();", kCount},
    {"strtodword();", kCount}, {"hexstrtoint32(\"1\", \"2\");", kCount}, {"strtodword(5);", kType},
    {"strtoint32(&print);", kType},
    {"dwordtohexstr(\"x\");", kType}, {"numtostr(1, 2);", kCount},
    {"func none() { } numtostr(none());", kType},  // untyped
    {"numtostr(&print);", kType}, {"numtostr(1);", 0},
    // A text without a number fails only when the value is taken.
    {"var dword d; d = hexstrtodword(\"xyz\");", kType},
    {"var dword d; d = strtodword(\"\");", kType}, {"strtodword(\"abc\"); strtoint64(\"\");", 0},
    // Control, clock, files, sub-scripts.
    {"delay();", kCount}, {"delay(1, 2);", kCount}, {"delay(\"1\");", kType}, {"delay(&print);", kType},
    {"exit(1);", kCount}, {"getsysdate(1);", kCount}, {"getsystime(\"x\");", kCount},
    {"getbasepath(1);", kCount},
    {"writestringtofile(\"a\");", kCount}, {"writestringtofile(\"a\", \"b\", 1, 2, 3, 4);", kCount},
    {"writestringtofile(&print);", kCount}, {"writestringtofile(\"a\", &print);", kType},
    {"writestringtofile(1, \"x\");", kType}, {"writestringtofile(\"a\", 1);", kType},
    {"writestringtofile(\"a\", \"x\", 1, \"2\");", kType},
    {"readstringfromfile();", kCount}, {"readstringfromfile(\"a\", 1, 2, 3);", kCount},
    {"readstringfromfile(1);", kType}, {"readstringfromfile(\"a\", \"1\");", kType},
    {"getfilesize();", kCount}, {"getfilesize(7);", kType},
    {"executesubscript();", kCount}, {"executesubscript(\"a\", \"b\");", kCount},
    {"executesubscript(1);", kType}, {"executesubscriptfunc(\"a\");", kCount},
    {"executesubscriptfunc(\"a\", 1);", kType}, {"executesubscriptfunc(&print, \"f\");", kType},
    {"executesubscriptfunc(\"missing.dcs\", \"f\", &print);", kType},  // before the file is looked for
    // The device.
    {"transmitstring();", kCount}, {"transmitstring(\"a\", \"b\");", kCount}, {"transmitstring(5);", kType},
    {"transmitstring(&print);", kType}, {"var string s; s = receivestring(1);", kCount},
    {"transmitfile(\"a\", 1, 2);", kCount}, {"transmitfile(\"a\", 1, 2, 3, 4, 5);", kCount},
    {"transmitfile(\"a\", 1, 2, &print);", kType}, {"transmitfile(\"a\", 1, 2, 0, \"yes\");", kType},
    {"transmitfile(5, 1, 2, 0);", kType}, {"transmitfile(\"a\", \"1\", 2, 0);", kType},
    {"transmitfile(\"a\", 1, \"2\", 0);", kType}, {"transmitfile(\"a\", 1, 2, \"0\");", kType},
    {"transmitfilefromstring(\"a\", 1, 2);", kCount}, {"transmitfilefromstring(1, 1, 2, 0);", kType},
    {"transmitfilefromstring(\"a\", 1, 2, 0, \"x\");", kType},
    {"executejobfile();", kCount}, {"executejobfile(\"jobs.dcj\", 1, 1, 1);", kCount},
    {"executejobfile(\"jobs.dcj\", &print);", kType}, {"executejobfile(1);", kType},
    {"executejobfile(\"jobs.dcj\", \"1\");", kType}, {"executejobfile(\"jobs.dcj\", 1, \"1\");", kType},
    // The operator.
    {"messagebox(\"a\", 1);", kType}, {"messagebox(1, \"a\");", kType},
    {"userinputdword(\"T\", \"P\");", kCount}, {"userinputdword(\"T\", \"P\", 1, 2);", kCount},
    {"var dword c; userinputdword(\"T\", \"P\", 1, 2, 3, &c, 4);", kCount},
    {"userinputdword(\"T\", \"P\", 1, 0, &print);", kType}, {"userinputdword(1, \"P\", 1);", kType},
    {"userinputdword(\"T\", 1, 1);", kType}, {"userinputdword(\"T\", \"P\", \"1\");", kType},
    {"userinputdword(\"T\", \"P\", 1, \"0\", 5);", kType}, {"userinputdword(\"T\", \"P\", 1, 0, \"5\");", kType},
    {"userinputdword(\"T\", \"P\", \"1\", 5, 0);", kType},  // a type error beats inverted limits
    {"userinputint64(\"T\", \"P\", 1, 2, 3, &print);", kType},
    {"userinputstring(\"T\", \"P\");", kCount}, {"var dword c; userinputstring(\"T\", \"P\", \"d\", c, &c);", kCount},
    {"userinputstring(\"T\", \"P\", 5);", kType}, {"userinputstring(\"T\", \"P\", \"d\", &print);", kType},
    {"userlistinput(\"T\", \"P\", \"a\");", kCount}, {"userlistinput(\"T\", \"P\", 1, 0);", kType},
    {"userlistinput(\"T\", \"P\", \"a\", \"0\");", kType}, {"userlistinput(\"T\", \"P\", \"a\", 0, &print);", kType},
};

}  // namespace

TEST(BuiltinArguments, CheckedBeforeAnythingHappens) {
    CTestScratch folder;
    CSimDevice device;
    device.PreloadReceive("waiting");
    CTestOperator op;
    for (const TARGCASE& c : kCases) {
        TTESTRUN run = BuiltinIoRun(c.text, &device, folder.Dir(), &op);
        EXPECT_EQ(run.code, c.code) << c.text;
        // Nothing but the diagnostic line: its text up to " near line ...".
        const char* expected = !c.code ? "" : c.code == kCount ? "Wrong number of parameters" : "Type error";
        EXPECT_EQ(run.output.substr(0, run.output.find(" near")), expected) << c.text;
    }
    EXPECT_EQ(op.calls, 0);
    EXPECT_EQ(device.TotalCallCount(), 0u);
    EXPECT_TRUE(folder.FileCount() == 0);
}
