// COndDeviceClientApp: the one application object of the module. It lives
// from load to unload and gives the module's non-modal dialogs keyboard
// navigation inside the host's message loop, which knows nothing of them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

class COndDeviceClientApp {
public:
    // On load, on the loading thread: the host folder and the keyboard hook.
    void Start();
    // On unload. When the process is ending the hook dies with its thread.
    void Stop(bool processEnding);

    // Appends hwnd unless it is listed already; always succeeds.
    bool RegisterDialog(HWND hwnd);
    // Removes the first equal handle, keeping the order of the rest.
    bool UnregisterDialog(HWND hwnd);

    const std::string& HostFolder() const { return m_strHostFolder; }
    const std::vector<HWND>& Dialogs() const { return m_Dialogs; }
    bool HasHook() const { return m_hHook != nullptr; }

private:
    static LRESULT CALLBACK GetMessageHook(int code, WPARAM wParam, LPARAM lParam);

    std::vector<HWND> m_Dialogs;
    HHOOK m_hHook = nullptr;
    std::string m_strHostFolder;
};

COndDeviceClientApp& OndApp();
