// The root of every script-language object: a name, and the token reading
// operations, so that every object can read source text.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptLexer.h"

// Object kind codes.
enum : uint32_t {
    SCRIPT_OBJ_PLAIN = 0,
    SCRIPT_OBJ_TEMPLATE = 1,
    SCRIPT_OBJ_VARIABLE = 2,
    SCRIPT_OBJ_FUNCTION = 3,
    SCRIPT_OBJ_IF = 4,
    SCRIPT_OBJ_WHILE = 5,
};

class CONXScriptObject {
public:
    CONXScriptObject() = default;
    CONXScriptObject(const CONXScriptObject&) = delete;
    CONXScriptObject& operator=(const CONXScriptObject&) = delete;

    virtual void SkipWhitespace(CONXScriptCursor* cursor);
    [[nodiscard]] virtual uint32_t GetToken(CONXScriptCursor* cursor, std::string* text,
                                            uint32_t* kind);
    [[nodiscard]] virtual uint32_t ExpectTokenKind(CONXScriptCursor* cursor, std::string* text,
                                                   uint32_t kind);
    [[nodiscard]] virtual uint32_t ExpectToken(CONXScriptCursor* cursor, std::string text,
                                               uint32_t kind);
    virtual ~CONXScriptObject() = default;
    virtual uint32_t GetObjectKind() { return SCRIPT_OBJ_PLAIN; }
    virtual const char* GetName() { return m_name.c_str(); }
    virtual void SetName(const char* name) { m_name = name ? name : ""; }
    [[nodiscard]] virtual uint32_t Parse(CONXScriptCursor* cursor) { return 0; }

    // Fast, non-virtual access for the engine.
    const std::string& Name() const { return m_name; }
    // The class's own kind, for the engine's dispatch (not forwarded like GetObjectKind).
    uint32_t KindTag() const { return m_kindTag; }

protected:
    std::string m_name;
    uint32_t m_kindTag = SCRIPT_OBJ_PLAIN;
};
