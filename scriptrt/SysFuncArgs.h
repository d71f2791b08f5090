// The argument checks every built-in makes, in the order the built-ins make
// them: first that every argument is a variable, then the type of each one.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptErrors.h"
#include "script/ScriptFunc.h"
#include "script/ScriptValue.h"

// pattern holds one letter per argument: 's' a string, 'n' a number, '.' any
// variable. Arguments beyond the pattern are only checked to be variables.
// Returns 0 or 10 "Type error".
[[nodiscard]] inline uint32_t ScriptCheckArguments(const TSCRIPTARGS& arguments, const char* pattern) {
    for (CONXScriptObject* a : arguments)
        if (a->GetObjectKind() != SCRIPT_OBJ_VARIABLE) return SCRIPT_ERR_TYPE;
    for (size_t i = 0; i < arguments.size() && pattern[i]; i++) {
        uint32_t type = static_cast<CONXScriptVariable*>(arguments[i])->GetType();
        if (pattern[i] == 's' && type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
        if (pattern[i] == 'n' && !ScriptTypeIsNumeric(type)) return SCRIPT_ERR_TYPE;
    }
    return 0;
}

// The argument as a variable; only after ScriptCheckArguments succeeded.
inline CONXScriptVariable* ScriptArgVariable(const TSCRIPTARGS& arguments, size_t index) {
    return static_cast<CONXScriptVariable*>(arguments[index])->Resolved();
}

// A checked string argument, read in place.
inline const std::string& ScriptArgText(const TSCRIPTARGS& arguments, size_t index) {
    return ScriptArgVariable(arguments, index)->Text();
}

// A checked numeric argument widened to 64 bits by its own signedness.
inline uint64_t ScriptArgNumber(const TSCRIPTARGS& arguments, size_t index) {
    return ScriptArgVariable(arguments, index)->Number();
}

// An optional numeric argument, or its default when the call left it out.
inline uint64_t ScriptArgNumberOr(const TSCRIPTARGS& arguments, size_t index, uint64_t missing) {
    return index < arguments.size() ? ScriptArgNumber(arguments, index) : missing;
}
