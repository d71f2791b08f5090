// Backslash path utilities.
#include <stdexcept>
#include <string>

#include "util/PathUtil.h"

char ondutil::toUpperGer(char c) {
    const unsigned char u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z') return static_cast<char>(u - 'a' + 'A');
    switch (u) {
    case 0xE4: return static_cast<char>(0xC4);  // a umlaut
    case 0xF6: return static_cast<char>(0xD6);  // o umlaut
    case 0xFC: return static_cast<char>(0xDC);  // u umlaut
    default: return c;
    }
}

int ondutil::IsAbsolutePath(const std::string& path) {
    if (path.size() < 2) return 0;
    if (path[0] == '\\' && path[1] == '\\') return 1;
    return path[1] == ':' ? 1 : 0;
}

void ondutil::SplitFileName(const std::string& path, std::string* folder,
                                     std::string* file) {
    if (path.empty()) {
        if (folder) folder->clear();
        if (file) file->clear();
        return;
    }
    size_t i = path.size() - 1;
    while (i >= 1 && path[i] != '\\') --i;
    if (i >= 1) {
        // Work on copies: an output may be the input itself.
        std::string before = path.substr(0, i);
        const bool hasFile = i + 1 < path.size();
        std::string after = hasFile ? path.substr(i + 1) : std::string();
        if (folder) *folder = std::move(before);
        if (file && hasFile) *file = std::move(after);  // a trailing backslash leaves file as it was
        return;
    }
    std::string whole = path;
    if (folder) folder->clear();
    if (file) *file = std::move(whole);
}

int ondutil::ConcatenatePathAndFile(const std::string& folder, const std::string& file,
                                             std::string* result) {
    if (folder.empty()) {
        *result = file;
        return 1;
    }
    std::string s = folder;
    if (s.back() != '\\') s.push_back('\\');
    s += file;

    // Three-state scan; after every change it conceptually restarts from the
    // start. The state only depends on the run of dots before the current
    // position, and the text before a change is unchanged and held no step,
    // so resuming at the start of the dot run before the change is equivalent
    // (and keeps long texts from costing a full rescan per step).
    size_t i = 0;
    int state = 0;
    while (i < s.size()) {
        const char c = s[i];
        const size_t k = i;
        ++i;
        if (state == 0) {
            if (c == '.') state = 1;
            continue;
        }
        if (state == 1) {
            if (c == '.') {
                state = 2;
                continue;
            }
            if (c != '\\') {
                state = 0;
                continue;
            }
            // "." step: remove the two characters starting three places before
            // the backslash (deliberate; the module has always done so).
            if (k < 3) throw std::out_of_range("invalid string position");
            const size_t at = k - 3;
            s.erase(at, 2);
            i = at;
        } else {
            if (c != '\\') {
                state = 0;
                continue;
            }
            // ".." step.
            if (k < 4) {
                *result = file;
                return 0;
            }
            // The backslash that precedes the parent segment, searched backwards
            // from k - 4 (index 0 included). With none the ".." climbs above the
            // start: result 0 (so "C:\a" + "..\..\b" gives 0, as it always has).
            size_t j = k - 4;
            while (j > 0 && s[j] != '\\') --j;
            if (s[j] != '\\') {
                *result = file;
                return 0;
            }
            s.erase(j, k - j);
            i = j;
        }
        while (i > 0 && s[i - 1] == '.') --i;
        state = 0;
    }
    *result = std::move(s);
    return 1;
}

void ondutil::MakeRelativePath(const std::string& baseFolder, const std::string& path,
                                        std::string* result) {
    const size_t shorter = baseFolder.size() < path.size() ? baseFolder.size() : path.size();
    size_t n = 0;
    while (n < shorter && toUpperGer(baseFolder[n]) == toUpperGer(path[n])) ++n;
    if (n != 0 && n < baseFolder.size()) {
        while (n > 0 && baseFolder[n] != '\\') --n;
    }
    if (n == 0) {
        *result = path;
        return;
    }
    std::string out;
    if (n < baseFolder.size() && n < path.size()) {
        for (size_t i = n; i < baseFolder.size(); ++i)
            if (baseFolder[i] == '\\') out += "..\\";
    }
    if (n < path.size()) out.append(path, n + 1, std::string::npos);
    *result = std::move(out);
}
