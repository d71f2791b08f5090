#include "host/dcsrun/DcsVariables.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "script/ScriptValue.h"
#include "util/EscapedString.h"

namespace {

struct TTYPENAME {
    const char* name;
    uint32_t type;
};
const TTYPENAME kTypes[] = {{"dword", SCRIPT_TYPE_UINT32},  {"uint32", SCRIPT_TYPE_UINT32},
                            {"int32", SCRIPT_TYPE_INT32},   {"uint64", SCRIPT_TYPE_UINT64},
                            {"int64", SCRIPT_TYPE_INT64},   {"string", SCRIPT_TYPE_STRING}};

const char* TypeName(uint32_t type) {
    for (const TTYPENAME& t : kTypes)
        if (t.type == type) return t.name;  // the first name of each type
    return "none";
}

// Decimal or 0x hexadecimal (no octal: "010" is ten), with an optional '-'
// when negative is true. *magnitude and *minus describe the value.
bool ParseMagnitude(const std::string& text, bool negativeAllowed, uint64_t* magnitude, bool* minus) {
    size_t pos = 0;
    *minus = false;
    if (negativeAllowed && pos < text.size() && text[pos] == '-') {
        *minus = true;
        pos++;
    }
    int base = 10;
    if (text.size() - pos > 2 && text[pos] == '0' && (text[pos + 1] == 'x' || text[pos + 1] == 'X')) {
        base = 16;
        pos += 2;
    }
    if (pos >= text.size() || !isxdigit((unsigned char)text[pos])) return false;
    errno = 0;
    char* end = nullptr;
    unsigned long long v = strtoull(text.c_str() + pos, &end, base);
    if (errno || *end) return false;
    *magnitude = v;
    return true;
}

bool ParseNumber(const std::string& text, uint32_t type, uint64_t* value) {
    uint64_t m = 0;
    bool minus = false;
    bool isSigned = type == SCRIPT_TYPE_INT32 || type == SCRIPT_TYPE_INT64;
    if (!ParseMagnitude(text, isSigned, &m, &minus)) return false;
    switch (type) {
    case SCRIPT_TYPE_UINT32:
        if (m > 0xFFFFFFFFull) return false;
        *value = m;
        return true;
    case SCRIPT_TYPE_INT32:
        // Hexadecimal may give the bit pattern (0xFFFFFFFF is -1).
        if (minus ? m > 0x80000000ull : m > 0xFFFFFFFFull) return false;
        if (!minus && m > 0x7FFFFFFFull && text.find_first_of("xX") == std::string::npos) return false;
        *value = (uint64_t)(int64_t)(int32_t)(uint32_t)(minus ? 0 - m : m);
        return true;
    case SCRIPT_TYPE_UINT64:
        *value = m;
        return true;
    case SCRIPT_TYPE_INT64:
        if (minus && m > 0x8000000000000000ull) return false;
        if (!minus && m > 0x7FFFFFFFFFFFFFFFull && text.find_first_of("xX") == std::string::npos)
            return false;
        *value = minus ? 0 - m : m;
        return true;
    default:
        return false;
    }
}

}  // namespace

bool CDcsVariables::Add(const std::string& setting, std::string* error) {
    size_t eq = setting.find('=');
    size_t colon = eq == std::string::npos ? std::string::npos : setting.find(':', eq + 1);
    if (eq == std::string::npos || eq == 0 || colon == std::string::npos) {
        *error = "--set '" + setting + "': expected NAME=TYPE:VALUE";
        return false;
    }
    std::string typeName = setting.substr(eq + 1, colon - eq - 1);
    std::string value = setting.substr(colon + 1);
    uint32_t type = SCRIPT_TYPE_NONE;
    for (const TTYPENAME& t : kTypes)
        if (typeName == t.name) type = t.type;
    if (type == SCRIPT_TYPE_NONE) {
        *error = "--set '" + setting + "': unknown type '" + typeName +
                 "' (dword, uint32, int32, uint64, int64 or string)";
        return false;
    }
    TONX_SCRIPTVARIABLE record;
    std::memset(&record, 0, sizeof record);
    record.type = type;
    if (type == SCRIPT_TYPE_STRING) {
        std::string parseError;
        int ok = 0;
        std::string bytes = ondutil::ParseString(value.c_str(), value.size(), '\0',
                                                          nullptr, &parseError, &ok);
        if (!ok) {
            *error = "--set '" + setting + "': " + parseError;
            return false;
        }
        if (bytes.size() > 0xFFFFFFFFull) {
            *error = "--set '" + setting + "': string too long";
            return false;
        }
        m_texts.push_back(bytes);
        record.value = (uint64_t)(uintptr_t)m_texts.back().data();
        record.length = (uint32_t)m_texts.back().size();
    } else {
        uint64_t number = 0;
        if (!ParseNumber(value, type, &number)) {
            *error = "--set '" + setting + "': '" + value + "' is not a " + typeName + " value";
            return false;
        }
        m_numbers.push_back(number);
        record.value = (uint64_t)(uintptr_t)&m_numbers.back();  // numbers go in by pointer
    }
    m_names.push_back(setting.substr(0, eq));
    record.name = m_names.back().c_str();
    m_records.push_back(record);
    return true;
}

TONX_SCRIPTVARIABLE DcsQueryRecord(const char* name) {
    TONX_SCRIPTVARIABLE record;
    std::memset(&record, 0, sizeof record);
    record.name = name;
    return record;
}

std::string DcsFormatVariable(const std::string& name, const TONX_SCRIPTVARIABLE& record,
                              bool found) {
    if (!found) return name + ": not set\n";
    char number[32] = "";
    std::string value;
    switch (record.type) {
    case SCRIPT_TYPE_UINT32: {
        uint32_t v;  // read back as 32 bits
        std::memcpy(&v, &record.value, sizeof v);
        snprintf(number, sizeof number, "%" PRIu32, v);
        value = number;
        break;
    }
    case SCRIPT_TYPE_INT32:
        snprintf(number, sizeof number, "%" PRId32, (int32_t)(uint32_t)record.value);
        value = number;
        break;
    case SCRIPT_TYPE_UINT64:
        snprintf(number, sizeof number, "%" PRIu64, record.value);
        value = number;
        break;
    case SCRIPT_TYPE_INT64:
        snprintf(number, sizeof number, "%" PRId64, (int64_t)record.value);
        value = number;
        break;
    case SCRIPT_TYPE_STRING:
        value = ondutil::EscapeForDisplay((const char*)(uintptr_t)record.value, (size_t)record.length);
        break;
    default:
        break;
    }
    return name + "=" + TypeName(record.type) + ":" + value + "\n";
}
