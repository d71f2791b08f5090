// The module's five exported entry functions (C linkage, undecorated names),
// and the object factory behind them: the top of the module, the only place
// that knows every kind of object.
#pragma once

#include <cstdint>

#include "frame/DeviceClient.h"

extern "C" {
uint32_t OndDeviceClientGetNumObj();
uint32_t OndDeviceClientGetObjType(uintptr_t index);
uintptr_t OndDeviceClientGetObjInfo(uint32_t type, uint32_t what);
CONXDeviceClient_0* OndDeviceClientCreateInstance(uint32_t type);
void OndDeviceClientDeleteInstance(CONXDeviceClient_0* object);
}
