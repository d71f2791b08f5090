// Window-message routes of the dialog events (see SignalDlgEvent). POSIX has
// no message queues: there a post goes nowhere and a send answers 0.
#pragma once

#include <cstdint>

#include "frame/Export.h"

void HostPostThreadMessage(uint32_t threadId, uint32_t message, uintptr_t wParam,
                           intptr_t lParam);
intptr_t HostSendMessage(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam);
