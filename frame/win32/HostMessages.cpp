#include <windows.h>

#include "frame/HostMessages.h"

void HostPostThreadMessage(uint32_t threadId, uint32_t message, uintptr_t wParam,
                           intptr_t lParam) {
    PostThreadMessageA(threadId, message, wParam, lParam);
}

intptr_t HostSendMessage(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam) {
    return SendMessageA(window, message, wParam, lParam);
}
