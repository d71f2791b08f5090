// Backslash paths as the module writes them, on every platform.
#pragma once

#include <string>

namespace ondutil {

// Cuts path at its last backslash; folder keeps no trailing separator.
void SplitFileName(const std::string& path, std::string* folder, std::string* file);
// folder + "\" + file with "." and ".." steps resolved; 1 on success, 0 when
// ".." climbs above the root.
int ConcatenatePathAndFile(const std::string& folder, const std::string& file, std::string* result);
// 1 for "\\server..." and "X:..." paths.
int IsAbsolutePath(const std::string& path);
// path relative to baseFolder when it lies below it, else path unchanged.
void MakeRelativePath(const std::string& baseFolder, const std::string& path, std::string* result);
// Upper case of ASCII letters and the three umlauts of the system code page.
char toUpperGer(char c);

}  // namespace ondutil
