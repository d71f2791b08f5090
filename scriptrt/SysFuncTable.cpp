// The table of built-ins, in registration order.
#include "scriptrt/SysFuncTable.h"

#include <iterator>

#include "script/ScriptValue.h"
#include "scriptrt/SysFuncs.h"

namespace {

using namespace ondbuiltin;

constexpr bool kReads = true;    // reads its arguments only: they may be handed in place
constexpr bool kCopies = false;  // gets by-value copies of its arguments

constexpr TSCRIPTARGCOUNTS Args(uint32_t minimum, uint32_t maximum) {
    return ScriptArgCounts(minimum, maximum);
}
constexpr TSCRIPTARGCOUNTS Args(uint32_t exactly) { return ScriptArgCounts(exactly); }
constexpr TSCRIPTARGCOUNTS kAny = ScriptArgCounts(0, kScriptArgsOpen);

const TSCRIPTSYSFUNCDEF kBuiltIns[] = {
    {"print", kAny, nullptr, kReads, Print},  // any argument; what it cannot show it skips
    {"delay", Args(1), "n", kCopies, Delay},
    {"strlen", Args(1), "s", kReads, Strlen},
    {"substr", Args(2, 3), "snn", kReads, SubStr},
    {"instr", Args(2, 3), "ssn", kReads, Instr},
    {"strtodword", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT32, "%u"},
    {"strtouint32", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT32, "%u"},
    {"strtoint32", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_INT32, "%d"},
    {"strtouint64", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT64, "%I64u"},
    {"strtoint64", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_INT64, "%I64d"},
    // Both names of a pair format alike: "dwordtostr" prints a 64-bit value in full (deliberate).
    {"dwordtostr", Args(1), "n", kReads, NumToStr},
    {"numtostr", Args(1), "n", kReads, NumToStr},
    // The signed hexadecimal scans use the unsigned formats (deliberate).
    {"hexstrtodword", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT32, "%X"},
    {"hexstrtouint32", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT32, "%X"},
    {"hexstrtoint32", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_INT32, "%X"},
    {"hexstrtouint64", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_UINT64, "%I64X"},
    {"hexstrtoint64", Args(1), "s", kReads, StrToNum, SCRIPT_TYPE_INT64, "%I64X"},
    {"dwordtohexstr", Args(1), "n", kReads, NumToHexStr},
    {"numtohexstr", Args(1), "n", kReads, NumToHexStr},
    {"ascii", Args(1), "s", kReads, Ascii},
    {"chr", Args(1), "n", kReads, Chr},
    {"exit", Args(0), "", kCopies, Exit},
    {"executesubscript", Args(1), "s", kCopies, ExecuteSubScript},
    {"executesubscriptfunc", Args(2, kScriptArgsOpen), "ss", kCopies, ExecuteSubScriptFunc},
    {"writestringtofile", Args(2, 5), "ssnnn", kCopies, WriteStringToFile},
    {"readstringfromfile", Args(1, 3), "snn", kCopies, ReadStringFromFile},
    {"getfilesize", Args(1), "s", kCopies, GetFileSize},
    {"getbasepath", Args(0), "", kCopies, GetBasePath},
    {"getsysdate", Args(0), "", kCopies, GetSysDate},
    {"getsystime", Args(0), "", kCopies, GetSysTime},
    {"transmitstring", Args(1), "s", kCopies, TransmitString},
    {"receivestring", Args(0), "", kCopies, ReceiveString},
    {"transmitfile", Args(4, 5), "snnnn", kCopies, TransmitFile},
    {"transmitfilefromstring", Args(4, 5), "snnnn", kCopies, TransmitFileFromString},
    {"executejobfile", Args(1, 3), "snn", kCopies, ExecuteJobFile},
    {"messagebox", Args(2), "ss", kCopies, ShowMessage},
    // The limits come as a pair: 3, 5 or 6 arguments.
    {"userinputdword", Args(3) | Args(5, 6), "ssnnn.", kCopies, AskNumber, SCRIPT_TYPE_UINT32},
    {"userinputuint32", Args(3) | Args(5, 6), "ssnnn.", kCopies, AskNumber, SCRIPT_TYPE_UINT32},
    {"userinputint32", Args(3) | Args(5, 6), "ssnnn.", kCopies, AskNumber, SCRIPT_TYPE_INT32},
    {"userinputuint64", Args(3) | Args(5, 6), "ssnnn.", kCopies, AskNumber, SCRIPT_TYPE_UINT64},
    {"userinputint64", Args(3) | Args(5, 6), "ssnnn.", kCopies, AskNumber, SCRIPT_TYPE_INT64},
    {"userinputstring", Args(3, 4), "sss.", kCopies, AskString},
    {"userlistinput", Args(4, 5), "sssn.", kCopies, AskListItem},
};

}  // namespace

void ScriptRuntimeFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* functions) {
    functions->reserve(functions->size() + std::size(kBuiltIns));  // no push_back throws after its new
    for (const TSCRIPTSYSFUNCDEF& def : kBuiltIns) functions->push_back(new CONXScriptTableFunc(def, env));
}
