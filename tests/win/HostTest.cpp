// The reference host as a developer starts it: a separate process that loads
// the DLL by its exports. Its window reports what each object answered.
#include "WinTest.h"

void TestHost() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string command = path;
    command.resize(command.rfind('\\') + 1);
    command = "\"" + command + "ondhost.exe\" --route window";

    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    bool started = CreateProcessA(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr,
                                  nullptr, &startup, &process) != 0;
    CHECK(started);
    if (!started) return;

    HWND host = nullptr;
    for (int i = 0; i < 200 && !host; ++i) {
        PumpMessages(100);
        host = FindWindowA("OndHostWindow", nullptr);
    }
    CHECK(host != nullptr);
    if (host) {
        PumpMessages(1000);  // the host shows what it can
        CHECK_EQ_STR(WindowText(host), "OndDeviceClient reference host - events by window message");
        for (int i = 0; i < 3; ++i) {
            std::string state = ItemText(host, 400 + i);
            CHECK(state == "dialog open" || state == "no window yet (17, EONX_ERR_DIALOG)");
        }
        // The type list and one answer per object. (Wine garbles list-box
        // texts read from another process, so only the count is checked.)
        CHECK(SendMessageA(GetDlgItem(host, 100), LB_GETCOUNT, 0, 0) >= 7);
        SaveScreenshot(host, "ondhost");
        PostMessageA(host, WM_CLOSE, 0, 0);
    }
    // It deletes every instance and unloads the DLL on the way out.
    CHECK(WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0);
    DWORD code = 99;
    GetExitCodeProcess(process.hProcess, &code);
    CHECK(code == 0);
    if (code == STILL_ACTIVE) TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}
