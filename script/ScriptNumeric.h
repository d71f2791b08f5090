// Functions and while loops of numbers only, translated for native runs: the
// shapes shared by their translation (ScriptNumericMake.cpp) and their typing
// and running (ScriptNumeric.cpp). Internal to the engine.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "script/ScriptExec.h"
#include "script/ScriptOperators.h"

const size_t kScriptNumMaxSlots = 48;  // variables of one function or loop
const size_t kScriptNumMaxArgs = 16;

enum : uint8_t { N_CONST, N_SLOT, N_PAREN, N_CONVERT, N_UNARY, N_BINARY, N_CALL };
enum : uint8_t { S_ASSIGN, S_SELF, S_IF, S_WHILE };

struct TNUMNODE;
// Computes a node into *value (of the node's type, normalised); false when
// the native run has to give up.
typedef bool (*TNUMEVAL)(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots,
                         uint64_t* value);

struct TNUMNODE {
    uint8_t kind = N_CONST;
    int8_t row = 0;
    uint32_t type = 0;   // N_CONST, N_SLOT: the value's type; N_CONVERT: the target type
    uint64_t value = 0;  // N_CONST
    uint32_t slot = 0;   // N_SLOT
    TNUMNODE* a = nullptr;  // N_PAREN, N_CONVERT, N_UNARY: the operand; N_BINARY: the left one
    TNUMNODE* b = nullptr;  // N_BINARY: the rest
    TSCRIPTNUMFUNC* callee = nullptr;  // N_CALL
    std::vector<TNUMNODE*> args;  // N_CALL
    // Fixed by the typing pass once the program is complete: the type of the
    // value (0: it never has one), the operator's routine for the operand and
    // result types, and how it is computed.
    uint32_t to = 0;
    TSCRIPTROUTINE routine = nullptr;
    TNUMEVAL eval = nullptr;
};

struct TNUMSTMT {
    uint8_t kind = S_ASSIGN;
    int32_t row = -1;  // a compound assignment's routine row
    uint32_t slot = 0, slotType = 0;
    TNUMNODE* expr = nullptr;  // the value, or the condition
    std::vector<TNUMSTMT*> body, elseBody;
    std::vector<uint32_t> blockSlots;  // declarations of the block, zeroed at each entry
    // The last token the ordinary run reads of it: the ";" of an assignment,
    // the ")" of an if's condition, the "{" of a while; and a while's keyword.
    // The run keeps the token start where the ordinary one would have it, for
    // the position of a stop request.
    TSCRIPTTOKEN* last = nullptr;
    TSCRIPTTOKEN* keyword = nullptr;
    TSCRIPTROUTINE routine = nullptr;  // a compound assignment's, fixed by the typing pass
};

// A variable from outside that a loop of numbers only uses: its slot is
// loaded at the loop's entry and stored back at its end.
struct TNUMOUTER {
    CONXScriptObject* object;  // a declaration (its variable of the moment) or a variable
    uint32_t slot;
};

// A function of numbers only, or a while loop of numbers only (body: the loop
// alone, outer: the variables it uses from outside).
struct TSCRIPTNUMFUNC {
    CONXScriptFunc* func = nullptr;
    std::vector<TNUMOUTER> outer;
    bool disabled = false;  // ended without a value once: runs the ordinary way from then on
    uint8_t typing = 0;     // 0 not yet, 1 its value being typed, 2 value typed, 3 all typed
    uint32_t resultType = 0;  // the function's value: the type of its first assignment to it
    size_t paramCount = 0;
    uint32_t slotCount = 0;
    std::vector<uint32_t> slotTypes;
    std::vector<TNUMSTMT*> body;
    std::deque<TNUMNODE> nodes;
    std::deque<TNUMSTMT> statements;
};

// The translation of func, made on first use and kept for the run (null when
// it does not qualify); made collects every function of the attempt.
TSCRIPTNUMFUNC* ScriptNumTranslate(CONXScriptExecContext* context, CONXScriptFunc* func,
                                   std::vector<TSCRIPTNUMFUNC*>* made);
// The translation of the while statement at offset in scope (its block
// given), or null when it is not a loop of numbers only.
TSCRIPTNUMFUNC* ScriptNumTranslateLoop(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                       CONXScriptFunc* block, uint64_t offset);
// Gives every node of a complete translation its type, routine and way of
// computing; the functions it calls are typed on the way.
void ScriptNumType(TSCRIPTNUMFUNC* f);
