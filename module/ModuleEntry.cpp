// The object factory behind the five exports: one table, in the order the
// host lists the kinds. Nothing thrown inside the module crosses these functions.
#include "module/ModuleEntry.h"

#include <new>

#include "filemanager/FileManager.h"
#include "scriptrt/ScriptProcessor.h"
#include "terminal/Terminal.h"

namespace {

template <class T>
CONXDeviceClient* Make() {
    return new (std::nothrow) T();
}

struct TObjectKind {
    uint32_t type;
    const char* name;
    CONXDeviceClient* (*make)();
};

const TObjectKind kObjectKinds[] = {
    {ONX_OBJTYPE_TERMINAL, "Terminal", Make<CONXTerminal>},
    {ONX_OBJTYPE_FILEMANAGER, "File Manager", Make<CONXFileManager>},
    {ONX_OBJTYPE_SCRIPTPROCESSOR, "Script Processor", Make<CONXScriptProcessor>},
};
const uint32_t kObjectKindCount = sizeof kObjectKinds / sizeof kObjectKinds[0];

const TObjectKind* FindKind(uint32_t type) {
    for (const TObjectKind& kind : kObjectKinds)
        if (kind.type == type) return &kind;
    return nullptr;
}

}  // namespace

extern "C" {

uint32_t OndDeviceClientGetNumObj() { return kObjectKindCount; }

uint32_t OndDeviceClientGetObjType(uintptr_t index) {
    return index < kObjectKindCount ? kObjectKinds[index].type : ONX_OBJTYPE_INVALID;
}

uintptr_t OndDeviceClientGetObjInfo(uint32_t type, uint32_t what) {
    const TObjectKind* kind = FindKind(type);
    if (!kind) return 0;
    if (what == 0) return reinterpret_cast<uintptr_t>(kind->name);
    if (what == 1) return 1;
    return 0;
}

CONXDeviceClient_0* OndDeviceClientCreateInstance(uint32_t type) {
    const TObjectKind* kind = FindKind(type);
    if (!kind) return nullptr;
    try {
        return kind->make();
    } catch (...) {
        return nullptr;
    }
}

// Only objects that answer one of our type codes are ours to delete.
void OndDeviceClientDeleteInstance(CONXDeviceClient_0* object) {
    if (!object) return;
    if (!FindKind(object->GetObjType())) return;
    delete static_cast<CONXDeviceClient*>(object);
}

}  // extern "C"
