// Conversions between numbers and text: the "strto..." and "hexstrto..."
// scans and the "...tostr" and "...tohexstr" formats.
#include "scriptrt/NumberScan.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

namespace {

// The format for the argument's type: for type 1, 3, 4, 5 in this order.
uint32_t Format(const TSCRIPTSYSCALL& call, const char* const (&formats)[4]) {
    if (!call.result) return 0;  // the type was checked all the same
    CONXScriptVariable* v = call.Variable(0);
    int index = 3;
    switch (v->Type()) {
    case SCRIPT_TYPE_UINT32: index = 0; break;
    case SCRIPT_TYPE_INT32: index = 1; break;
    case SCRIPT_TYPE_UINT64: index = 2; break;
    }
    return call.result->SetText(ScriptFormatNumber(formats[index], v->Number()));
}

}  // namespace

uint32_t StrToNum(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    uint64_t scanned;
    if (!ScriptScanNumber(call.Text(0).c_str(), call.def.format, &scanned)) return SCRIPT_ERR_TYPE;
    // Cut to the type's width and widened by its signedness, as the variable reads it back.
    const uint32_t type = call.def.type;
    if (!ScriptTypeIs64(type))
        scanned = ScriptTypeIsSigned(type) ? (uint64_t)(int64_t)(int32_t)(uint32_t)scanned : (uint32_t)scanned;
    return call.result->SetNumber(scanned, type);
}

uint32_t NumToStr(const TSCRIPTSYSCALL& call) {
    static const char* const kDecimal[4] = {"%u", "%d", "%I64u", "%I64d"};
    return Format(call, kDecimal);
}

uint32_t NumToHexStr(const TSCRIPTSYSCALL& call) {
    static const char* const kHex[4] = {"%X", "%X", "%I64X", "%I64X"};
    return Format(call, kHex);
}

}  // namespace ondbuiltin
