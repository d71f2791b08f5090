// docs/builtins.md has one entry ("### name") for every built-in a run
// registers, and no entry for a name that is not one.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "script/ScriptSysFunc.h"
#include "scriptrt/SysFuncTable.h"

namespace {

TEST(BuiltinDocs, OneEntryPerBuiltin) {
    std::vector<CONXScriptSysFunc*> functions;
    ScriptRuntimeFactory(TSCRIPTSYSFUNCENV{nullptr, nullptr, nullptr}, &functions);
    std::set<std::string> registered;
    for (CONXScriptSysFunc* f : functions) {
        registered.insert(f->GetName());
        delete f;
    }

    FILE* page = fopen(OND_SOURCE_DIR "/docs/builtins.md", "rb");
    ASSERT_NE(page, nullptr);
    std::set<std::string> documented;
    char line[512];
    while (fgets(line, sizeof line, page)) {
        std::string heading(line);
        if (heading.compare(0, 4, "### ") != 0) continue;
        heading = heading.substr(4, heading.find_first_of("\r\n") - 4);
        // Entries are one lower-case word; the code tables' headings are not.
        if (heading.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == std::string::npos) {
            EXPECT_TRUE(documented.insert(heading).second) << "two entries for " << heading;
        }
    }
    fclose(page);
    EXPECT_EQ(documented, registered);
}

}  // namespace
