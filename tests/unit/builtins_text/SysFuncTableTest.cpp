// The table of built-ins: every name once, in registration order, each one a
// function object that keeps its own count rule.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "script/ScriptSysFunc.h"
#include "scriptrt/SysFuncTable.h"

TEST(BuiltinTable, AllBuiltinsInOrder) {
    std::vector<CONXScriptSysFunc*> list;
    list.push_back(nullptr);  // the factory appends to what is there
    TSCRIPTSYSFUNCENV env = {nullptr, nullptr, nullptr};
    ScriptRuntimeFactory(env, &list);
    std::vector<std::unique_ptr<CONXScriptSysFunc>> owned(list.begin() + 1, list.end());
    EXPECT_EQ(list[0], nullptr);
    std::vector<std::string> names;
    for (auto& f : owned) {
        names.push_back(f->GetName());
        EXPECT_EQ(f->GetObjectKind(), 3u) << f->GetName();
    }
    const std::vector<std::string> expected = {
        "print", "delay", "strlen", "substr", "instr", "strtodword", "strtouint32", "strtoint32",
        "strtouint64", "strtoint64", "dwordtostr", "numtostr", "hexstrtodword", "hexstrtouint32",
        "hexstrtoint32", "hexstrtouint64", "hexstrtoint64", "dwordtohexstr", "numtohexstr", "ascii",
        "chr", "exit", "executesubscript", "executesubscriptfunc", "writestringtofile",
        "readstringfromfile", "getfilesize", "getbasepath", "getsysdate", "getsystime",
        "transmitstring", "receivestring", "transmitfile", "transmitfilefromstring", "executejobfile",
        "messagebox", "userinputdword", "userinputuint32", "userinputint32", "userinputuint64",
        "userinputint64", "userinputstring", "userlistinput"};
    EXPECT_EQ(names, expected);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST(BuiltinTable, CountRules) {
    std::vector<CONXScriptSysFunc*> list;
    TSCRIPTSYSFUNCENV env = {nullptr, nullptr, nullptr};
    ScriptRuntimeFactory(env, &list);
    std::vector<std::unique_ptr<CONXScriptSysFunc>> owned(list.begin(), list.end());
    // name -> the counts from 0 to 7 that it accepts, as a string of 0/1.
    const std::pair<const char*, const char*> rules[] = {
        {"print", "11111111"},        {"delay", "01000000"},       {"strlen", "01000000"},
        {"substr", "00110000"},       {"instr", "00110000"},       {"strtoint64", "01000000"},
        {"numtohexstr", "01000000"},  {"ascii", "01000000"},       {"chr", "01000000"},
        {"exit", "10000000"},         {"executesubscript", "01000000"},
        {"executesubscriptfunc", "00111111"},                      {"writestringtofile", "00111100"},
        {"readstringfromfile", "01110000"},                        {"getfilesize", "01000000"},
        {"getbasepath", "10000000"},  {"getsysdate", "10000000"},  {"getsystime", "10000000"},
    };
    for (auto& rule : rules) {
        CONXScriptSysFunc* f = nullptr;
        for (auto& o : owned)
            if (std::string(o->GetName()) == rule.first) f = o.get();
        ASSERT_NE(f, nullptr) << rule.first;
        std::string accepted;
        for (size_t n = 0; n < 8; n++) accepted += f->CheckArgumentCount(n) ? '1' : '0';
        EXPECT_EQ(accepted, rule.second) << rule.first;
    }
}
