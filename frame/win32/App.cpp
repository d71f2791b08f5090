#include "frame/win32/App.h"

#include <algorithm>

namespace {
COndDeviceClientApp theApp;
// The object whose hook is installed; the hook procedure has no context.
COndDeviceClientApp* hookedApp = nullptr;
}  // namespace

COndDeviceClientApp& OndApp() { return theApp; }

void COndDeviceClientApp::Start() {
    // The host's executable, not this library: its folder with a backslash.
    char path[262] = "";
    DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    if (length >= sizeof path) length = sizeof path - 1;
    path[length] = 0;
    for (DWORD i = length; i > 0; --i) {
        if (path[i - 1] == '\\') {
            path[i - 1] = 0;
            break;
        }
    }
    try {
        m_strHostFolder = path;
        if (!m_strHostFolder.empty()) m_strHostFolder += '\\';
    } catch (...) {
        m_strHostFolder.clear();
    }

    // A thread hook with no module handle: nothing is injected or loaded.
    // Failure is not reported; the dialogs then lack keyboard navigation.
    if (!m_hHook) {
        hookedApp = this;
        m_hHook = SetWindowsHookExA(WH_GETMESSAGE, GetMessageHook, nullptr, GetCurrentThreadId());
        if (!m_hHook) hookedApp = nullptr;
    }
}

void COndDeviceClientApp::Stop(bool processEnding) {
    // On FreeLibrary the hook must go, or the thread calls into unmapped code.
    if (m_hHook && !processEnding) UnhookWindowsHookEx(m_hHook);
    m_hHook = nullptr;
    if (hookedApp == this) hookedApp = nullptr;
    m_Dialogs.clear();
    m_strHostFolder.clear();
}

bool COndDeviceClientApp::RegisterDialog(HWND hwnd) {
    if (std::find(m_Dialogs.begin(), m_Dialogs.end(), hwnd) != m_Dialogs.end()) return true;
    try {
        m_Dialogs.push_back(hwnd);
    } catch (...) {
        // Out of memory: that dialog only lacks keyboard navigation.
    }
    return true;
}

bool COndDeviceClientApp::UnregisterDialog(HWND hwnd) {
    auto it = std::find(m_Dialogs.begin(), m_Dialogs.end(), hwnd);
    if (it == m_Dialogs.end()) return false;
    m_Dialogs.erase(it);
    return true;
}

// The host's loop does not call IsDialogMessage for our dialogs, so Tab,
// arrows, Enter and Esc are handled here; a consumed message reaches the
// host as a null message.
LRESULT CALLBACK COndDeviceClientApp::GetMessageHook(int code, WPARAM wParam, LPARAM lParam) {
    COndDeviceClientApp* app = hookedApp;
    MSG* msg = reinterpret_cast<MSG*>(lParam);
    if (app && code >= 0 && wParam == PM_REMOVE && msg->message >= 0x0100 &&
        msg->message <= 0x0109) {  // WM_KEYDOWN .. WM_UNICHAR
        // IsDialogMessage may run handlers that register or unregister.
        for (size_t i = 0; i < app->m_Dialogs.size(); ++i) {
            HWND dialog = app->m_Dialogs[i];
            if (IsWindow(dialog) && IsDialogMessageA(dialog, msg)) {
                msg->message = 0;
                msg->wParam = 0;
                msg->lParam = 0;
                break;
            }
        }
    }
    return CallNextHookEx(app ? app->m_hHook : nullptr, code, wParam, lParam);
}
