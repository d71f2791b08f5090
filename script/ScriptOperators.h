// The operator routines: 16 binary rows and 4 unary rows, each indexed by
// signedness (binary: bit 0 left signed, bit 1 right signed, bit 2 result
// signed; unary: bit 0 operand, bit 1 result).
#pragma once

#include <cstdint>

typedef uint32_t (*TSCRIPTROUTINE)(uint64_t left, uint64_t right, uint64_t* result);

enum : int32_t {
    SCRIPT_ROW_ADD = 0, SCRIPT_ROW_SUB, SCRIPT_ROW_MUL, SCRIPT_ROW_DIV, SCRIPT_ROW_MOD,
    SCRIPT_ROW_AND, SCRIPT_ROW_OR, SCRIPT_ROW_XOR, SCRIPT_ROW_SHL, SCRIPT_ROW_SHR,
    SCRIPT_ROW_EQ, SCRIPT_ROW_LT, SCRIPT_ROW_LE, SCRIPT_ROW_NE, SCRIPT_ROW_GT, SCRIPT_ROW_GE,
    SCRIPT_BINARY_ROWS
};
enum : int32_t { SCRIPT_UROW_PLUS = 0, SCRIPT_UROW_NEG, SCRIPT_UROW_INVERT, SCRIPT_UROW_NOT };

extern const TSCRIPTROUTINE g_ScriptBinaryRoutines[SCRIPT_BINARY_ROWS][8];
extern const TSCRIPTROUTINE g_ScriptUnaryRoutines[4][4];

// Row of an operator table index: binary operators and compound assignments
// map to their binary row, the unary ones to their unary row; -1 otherwise.
int32_t ScriptBinaryRow(int32_t op);
int32_t ScriptUnaryRow(int32_t op);
