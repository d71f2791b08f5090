// Where a file name that a script passes to a built-in leads.
#pragma once

#include <string>

#include "script/ScriptRun.h"

// Resolves name against a base directory without trailing backslash:
//  - "" gives "";
//  - "\" alone gives ""; "\\server\..." stays; "\dir\x" goes behind the
//    base's first two characters (its drive);
//  - "X:..." (second character a colon) stays;
//  - anything else becomes base + "\" + name.
std::string ScriptResolveFileName(const std::string& baseDirectory, const std::string& name);

// False when the run's limits keep the file built-ins away from path: a
// confinement folder is set and path's full name does not lie inside it.
bool ScriptFilePathAllowed(const TSCRIPTLIMITS& limits, const std::string& path);

// The path a file built-in of the running script uses for name (a C string:
// it ends at the first NUL); false when the name leads nowhere it may go.
bool ScriptLocalFilePath(CONXScriptRunContext* run, const std::string& name, std::string* path);
