#include "host/dcsrun/DcsCheck.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptLexer.h"
#include "script/ScriptRun.h"
#include "script/ScriptValue.h"
#include "scriptrt/FileNames.h"
#include "scriptrt/SysFuncTable.h"
#include "util/PathUtil.h"
#include "util/WholeFile.h"

namespace {

const int kStatusFailed = 21;    // the Script Processor's "script failed"
const int kStatusFileOpen = 8;   // its "file cannot be opened"

struct TCHECKFILE {
    std::string display;   // the name diagnostics carry
    std::string fullPath;  // the module's form, for the base directory and duplicates
    bool external;         // named on the command line: the --set names are known
};

bool IsSubScriptCall(const std::string& name) {
    return ScriptNamesEqual(name.c_str(), "executesubscript") ||
           ScriptNamesEqual(name.c_str(), "executesubscriptfunc");
}

// The file names given as a string literal alone as the first argument of a
// sub-script call. Only the tokens are read, so this works on a text that
// does not parse too, up to its first lexical fault.
std::vector<std::string> LiteralSubScripts(const std::string& text) {
    std::vector<std::string> names;
    std::vector<TSCRIPTTOKEN> last(4);  // a ring of the last four tokens
    size_t count = 0;
    uint64_t pos = 0;
    for (;;) {
        TSCRIPTTOKEN& t = last[count % 4];
        if (ScanToken(text.c_str(), text.size(), pos, &t) != 0 || t.kind == SCRIPT_TOK_END) break;
        pos = t.end;
        ++count;
        if (count < 4 || t.kind != SCRIPT_TOK_PUNCT || (t.punct != ',' && t.punct != ')')) continue;
        const TSCRIPTTOKEN& name = last[(count - 4) % 4];
        const TSCRIPTTOKEN& open = last[(count - 3) % 4];
        const TSCRIPTTOKEN& file = last[(count - 2) % 4];
        if (name.kind == SCRIPT_TOK_IDENT && IsSubScriptCall(name.text) &&
            open.kind == SCRIPT_TOK_PUNCT && open.punct == '(' && file.kind == SCRIPT_TOK_STRING)
            names.push_back(file.text.c_str());  // the built-in reads the name up to a NUL
    }
    return names;
}

// How a sub-script is named in diagnostics: beside its caller as the caller
// was named, or as written when the name is absolute.
std::string SubScriptDisplay(const std::string& caller, const std::string& name) {
    if (name[0] == '\\' || ondutil::IsAbsolutePath(name)) return name;
    std::string native = name;
#ifndef _WIN32
    for (char& c : native)
        if (c == '\\') c = '/';
#endif
    size_t cut = caller.find_last_of("/\\");
    if (cut != std::string::npos) native = caller.substr(0, cut + 1) + native;
    return std::filesystem::path(native).lexically_normal().string();
}

void Collect(void* context, const char* text) { static_cast<std::string*>(context)->append(text); }

}  // namespace

int DcsCheckScripts(const std::vector<std::string>& scripts, const TONX_SCRIPTVARIABLE* variables,
                    uint64_t variableCount) {
    std::vector<std::unique_ptr<CONXScriptVariable>> owned;
    std::vector<CONXScriptVariable*> externals;
    for (uint64_t i = 0; i < variableCount; ++i) {
        owned.emplace_back(new CONXScriptVariable);
        owned.back()->SetName(variables[i].name);
        owned.back()->SetType(variables[i].type);
        externals.push_back(owned.back().get());
    }

    bool failed = false, unopened = false;
    std::set<std::string> seen;
    std::vector<TCHECKFILE> queue;
    for (const std::string& script : scripts) {
        std::string fullPath;
        if (!OsFullPathName(script.c_str(), &fullPath)) fullPath = script;
        queue.push_back({script, fullPath, true});
    }
    for (size_t i = 0; i < queue.size(); ++i) {
        const TCHECKFILE file = queue[i];
        if (!seen.insert(file.fullPath).second) continue;
        std::string text;
        if (ondutil::ReadWholeFile(file.fullPath.c_str(), &text) != ondutil::WHOLEFILE_OK) {
            // Only a script given on the command line gets here unopened.
            fprintf(stderr, "dcsrun: %s: cannot open the script file (result %d)\n",
                    file.display.c_str(), kStatusFileOpen);
            unopened = true;
            continue;
        }
        CONXScriptRunContext context;
        context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
        std::string diagnostic;
        uint32_t code = RunScript(&context, text.c_str(),
                                  {.externals = file.external ? &externals : nullptr, .output = Collect,
                                   .outputContext = &diagnostic, .parseOnly = true});
        if (code & SCRIPT_ERR_CODEMASK) {
            failed = true;
            printf("%s: %s", file.display.c_str(), diagnostic.c_str());
            fflush(stdout);
        }
        std::string folder;
        ondutil::SplitFileName(file.fullPath, &folder, nullptr);
        for (const std::string& name : LiteralSubScripts(text)) {
            std::string path = ScriptResolveFileName(folder, name), fullPath;
            if (path.empty() || !OsFullPathName(path.c_str(), &fullPath)) continue;
            // A sub-script that is not there (yet) is the run's business, not the check's.
            FILE* probe = OsOpenFile(fullPath.c_str(), "rb");
            if (!probe) continue;
            fclose(probe);
            queue.push_back({SubScriptDisplay(file.display, name), fullPath, false});
        }
    }
    if (failed) return kStatusFailed;
    return unopened ? kStatusFileOpen : 0;
}
