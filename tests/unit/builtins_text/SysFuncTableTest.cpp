// The table of built-ins: every name once, in registration order, with its
// count rule and whether its arguments may be handed in place.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "script/ScriptSysFunc.h"
#include "scriptrt/SysFuncTable.h"

TEST(BuiltinTable, OrderCountRulesAndArgumentsInPlace) {
    std::vector<CONXScriptSysFunc*> list;
    list.push_back(nullptr);  // the factory appends to what is there
    TSCRIPTSYSFUNCENV env = {nullptr, nullptr, nullptr};
    ScriptRuntimeFactory(env, &list);
    std::vector<std::unique_ptr<CONXScriptSysFunc>> owned(list.begin() + 1, list.end());
    EXPECT_EQ(list[0], nullptr);
    // The counts from 0 to 7 that each accepts, and 31 and more as the last digit.
    struct {
        const char* name;
        const char* counts;
        bool inPlace;
    } expected[] = {
        {"print", "111111111", true}, {"delay", "010000000", false}, {"strlen", "010000000", true},
        {"substr", "001100000", true}, {"instr", "001100000", true}, {"strtodword", "010000000", true},
        {"strtouint32", "010000000", true}, {"strtoint32", "010000000", true},
        {"strtouint64", "010000000", true}, {"strtoint64", "010000000", true},
        {"dwordtostr", "010000000", true}, {"numtostr", "010000000", true},
        {"hexstrtodword", "010000000", true}, {"hexstrtouint32", "010000000", true},
        {"hexstrtoint32", "010000000", true}, {"hexstrtouint64", "010000000", true},
        {"hexstrtoint64", "010000000", true}, {"dwordtohexstr", "010000000", true},
        {"numtohexstr", "010000000", true}, {"ascii", "010000000", true}, {"chr", "010000000", true},
        {"exit", "100000000", false}, {"executesubscript", "010000000", false},
        {"executesubscriptfunc", "001111111", false}, {"writestringtofile", "001111000", false},
        {"readstringfromfile", "011100000", false}, {"getfilesize", "010000000", false},
        {"getbasepath", "100000000", false}, {"getsysdate", "100000000", false},
        {"getsystime", "100000000", false}, {"transmitstring", "010000000", false},
        {"receivestring", "100000000", false}, {"transmitfile", "000011000", false},
        {"transmitfilefromstring", "000011000", false}, {"executejobfile", "011100000", false},
        {"messagebox", "001000000", false}, {"userinputdword", "000101100", false},
        {"userinputuint32", "000101100", false}, {"userinputint32", "000101100", false},
        {"userinputuint64", "000101100", false}, {"userinputint64", "000101100", false},
        {"userinputstring", "000110000", false}, {"userlistinput", "000011000", false},
    };
    ASSERT_EQ(owned.size(), std::size(expected));
    for (size_t i = 0; i < owned.size(); i++) {
        CONXScriptSysFunc* f = owned[i].get();
        EXPECT_EQ(std::string(f->GetName()), expected[i].name) << i;
        std::string accepted;
        for (size_t n : {0, 1, 2, 3, 4, 5, 6, 7, 31}) accepted += f->CheckArgumentCount(n) ? '1' : '0';
        EXPECT_EQ(accepted, expected[i].counts) << f->GetName();
        EXPECT_EQ(f->CheckArgumentCount(1000), accepted.back() == '1') << f->GetName();
        EXPECT_EQ(f->m_readsArgumentsOnly, expected[i].inPlace) << f->GetName();
        EXPECT_EQ(f->GetObjectKind(), 3u) << f->GetName();
    }
}
