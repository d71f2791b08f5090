// Bytes shown in the module's escaped-string syntax.
#include <string>

#include "util/EscapedString.h"

namespace ondutil {

std::string EscapeForDisplay(const char* bytes, size_t length, bool quoted, bool keepHigh) {
    std::string out;
    out.reserve(length);
    for (size_t i = 0; i < length; ++i) {
        unsigned char c = static_cast<unsigned char>(bytes[i]);
        if (c == '\\') out += "\\\\";
        else if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else if (c == '\t') out += "\\t";
        else if (quoted && c == '"') out += "\\\"";
        else if ((c >= 32 && c <= 126) || (keepHigh && c >= 0x80)) out += static_cast<char>(c);
        else out += "\\(" + std::to_string(c) + ")";
    }
    return out;
}

}  // namespace ondutil
