// The table of built-ins.
#include "scriptrt/SysFuncTable.h"

#include <cstdint>

#include "script/ScriptValue.h"
#include "scriptrt/ControlFuncs.h"
#include "scriptrt/DeviceFuncs.h"
#include "scriptrt/FileFuncs.h"
#include "scriptrt/NumberFuncs.h"
#include "scriptrt/SubScriptFuncs.h"
#include "scriptrt/TextFuncs.h"
#include "scriptrt/TimeFuncs.h"
#include "scriptrt/UserInputFuncs.h"

void ScriptRuntimeFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* functions) {
    const TSCRIPTSYSFUNCENV& e = env;
    std::vector<CONXScriptSysFunc*>& f = *functions;
    f.reserve(f.size() + 64);  // so that no push_back throws after its object was made
    f.push_back(new CONXPrintFunc(e));
    f.push_back(new CONXDelayFunc(e));
    f.push_back(new CONXStrlenFunc(e));
    f.push_back(new CONXSubStrFunc(e));
    f.push_back(new CONXInstrFunc(e));
    f.push_back(new CONXStrToNumFunc<uint32_t>(e, "strtodword", "%u", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXStrToNumFunc<uint32_t>(e, "strtouint32", "%u", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXStrToNumFunc<int32_t>(e, "strtoint32", "%d", SCRIPT_TYPE_INT32));
    f.push_back(new CONXStrToNumFunc<uint64_t>(e, "strtouint64", "%I64u", SCRIPT_TYPE_UINT64));
    f.push_back(new CONXStrToNumFunc<int64_t>(e, "strtoint64", "%I64d", SCRIPT_TYPE_INT64));
    // Both names of a pair format alike: "dwordtostr" prints a 64-bit value in full (deliberate).
    f.push_back(new CONXNumToStrFunc(e, "dwordtostr", "%u", "%d", "%I64u", "%I64d"));
    f.push_back(new CONXNumToStrFunc(e, "numtostr", "%u", "%d", "%I64u", "%I64d"));
    // The signed hexadecimal scans use the unsigned formats (deliberate).
    f.push_back(new CONXStrToNumFunc<uint32_t>(e, "hexstrtodword", "%X", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXStrToNumFunc<uint32_t>(e, "hexstrtouint32", "%X", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXStrToNumFunc<int32_t>(e, "hexstrtoint32", "%X", SCRIPT_TYPE_INT32));
    f.push_back(new CONXStrToNumFunc<uint64_t>(e, "hexstrtouint64", "%I64X", SCRIPT_TYPE_UINT64));
    f.push_back(new CONXStrToNumFunc<int64_t>(e, "hexstrtoint64", "%I64X", SCRIPT_TYPE_INT64));
    f.push_back(new CONXNumToStrFunc(e, "dwordtohexstr", "%X", "%X", "%I64X", "%I64X"));
    f.push_back(new CONXNumToStrFunc(e, "numtohexstr", "%X", "%X", "%I64X", "%I64X"));
    f.push_back(new CONXASCIIFunc(e));
    f.push_back(new CONXChrFunc(e));
    f.push_back(new CONXExitFunc(e));
    f.push_back(new CONXExecuteSubScript(e));
    f.push_back(new CONXExecuteSubScriptFunc(e));
    f.push_back(new CONXWriteStringToFileFunc(e));
    f.push_back(new CONXReadStringFromFileFunc(e));
    f.push_back(new CONXGetFileSizeFunc(e));
    f.push_back(new CONXGetBasePathFunc(e));
    f.push_back(new CONXGetSysDateFunc(e));
    f.push_back(new CONXGetSysTimeFunc(e));
    f.push_back(new CONXTransmitString(e));
    f.push_back(new CONXReceiveString(e));
    f.push_back(new CONXTransmitFile(e));
    f.push_back(new CONXTransmitFileFromString(e));
    f.push_back(new CONXExecuteJobFile(e));
    f.push_back(new CONXMessageBoxDialog(e));
    f.push_back(new CONXUserInputNumDialog(e, "userinputdword", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXUserInputNumDialog(e, "userinputuint32", SCRIPT_TYPE_UINT32));
    f.push_back(new CONXUserInputNumDialog(e, "userinputint32", SCRIPT_TYPE_INT32));
    f.push_back(new CONXUserInputNumDialog(e, "userinputuint64", SCRIPT_TYPE_UINT64));
    f.push_back(new CONXUserInputNumDialog(e, "userinputint64", SCRIPT_TYPE_INT64));
    f.push_back(new CONXUserInputStringDialog(e));
    f.push_back(new CONXUserListInputDialog(e));
}
