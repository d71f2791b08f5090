#include "frame/HostMessages.h"

void HostPostThreadMessage(uint32_t, uint32_t, uintptr_t, intptr_t) {}

intptr_t HostSendMessage(HWND, uint32_t, uintptr_t, intptr_t) { return 0; }
