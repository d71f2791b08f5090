// File names of the file and device built-ins.
#include "scriptrt/FileNames.h"

#include "os/Platform.h"

std::string ScriptResolveFileName(const std::string& baseDirectory, const std::string& name) {
    if (name.empty()) return std::string();
    if (name[0] == '\\') {
        if (name.size() == 1) return std::string();
        if (name[1] == '\\') return name;
        return baseDirectory.substr(0, 2) + name;
    }
    if (name.size() >= 2 && name[1] == ':') return name;
    return baseDirectory + "\\" + name;
}

bool ScriptFilePathAllowed(const TSCRIPTLIMITS& limits, const std::string& path) {
    if (limits.fileRoot.empty()) return true;
    std::string root, full;
    if (!OsFullPathName(limits.fileRoot.c_str(), &root) || !OsFullPathName(path.c_str(), &full))
        return false;
    if (root.empty() || root.back() != '\\') root += '\\';
    // Case counts: a name that differs only in case is refused, never let through.
    return full.size() > root.size() && full.compare(0, root.size(), root) == 0;
}

bool ScriptLocalFilePath(CONXScriptRunContext* run, const std::string& name, std::string* path) {
    std::string base = run ? run->GetBaseDirectory() : std::string();
    *path = ScriptResolveFileName(base, std::string(name.c_str()));
    if (path->empty()) return false;
    return !run || ScriptFilePathAllowed(run->m_limits, *path);
}
