// The reference host as a developer starts it: a separate process that loads
// the DLL by its exports. Its window reports what each object answered.
#include "WinTest.h"
#include "res/OndResource.h"

namespace {

bool StartHost(const std::string& arguments, PROCESS_INFORMATION* process) {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string command = path;
    command.resize(command.rfind('\\') + 1);
    command = "\"" + command + "ondhost.exe\" " + arguments;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    *process = {};
    return CreateProcessA(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &startup, process) != 0;
}

void EndHost(HWND host, PROCESS_INFORMATION* process) {
    if (host) PostMessageA(host, WM_CLOSE, 0, 0);
    // It deletes every instance and unloads the DLL on the way out.
    CHECK(WaitForSingleObject(process->hProcess, 30000) == WAIT_OBJECT_0);
    DWORD code = 99;
    GetExitCodeProcess(process->hProcess, &code);
    CHECK(code == 0);
    if (code == STILL_ACTIVE) TerminateProcess(process->hProcess, 1);
    CloseHandle(process->hThread);
    CloseHandle(process->hProcess);
}

// A top-level window of that process.
HWND WaitForWindow(DWORD processId, const char* cls, const char* caption) {
    for (int i = 0; i < 200; ++i) {
        PumpMessages(100);
        for (HWND w = FindWindowExA(nullptr, nullptr, cls, caption); w;
             w = FindWindowExA(nullptr, w, cls, caption)) {
            DWORD owner = 0;
            GetWindowThreadProcessId(w, &owner);
            if (owner == processId) return w;
        }
    }
    return nullptr;
}

// ondhost --run: the demo runs in the Script Processor's window.
void TestHostRunsDemo() {
    std::string demo = std::string("Z:") + OND_EXAMPLES_DIR + "/demo.dcs";
    PROCESS_INFORMATION process;
    bool started = StartHost("--run \"" + demo + "\"", &process);
    CHECK(started);
    if (!started) return;
    HWND host = WaitForWindow(process.dwProcessId, "OndHostWindow", nullptr);
    HWND script = WaitForWindow(process.dwProcessId, "#32770", "Script processor");
    CHECK(host && script);
    if (script) {
        HWND log = GetDlgItem(script, IDC_SP_LOG);
        HWND run = GetDlgItem(script, IDC_SP_EXECUTE);
        // The demo ends by itself with its last line, "done.".
        DWORD start = GetTickCount();
        while (GetTickCount() - start < 30000 &&
               !(WindowText(run) == "Execute script" && SendMessageA(log, LB_GETCOUNT, 0, 0) >= 10))
            PumpMessages(100);
        CHECK(SendMessageA(log, LB_GETCOUNT, 0, 0) >= 10);
        CHECK_EQ_STR(WindowText(run), "Execute script");
        CHECK(FindWindowA("#32770", "Error") == nullptr);
        CHECK(ItemText(script, IDC_SP_PATH).find("demo.dcs") != std::string::npos);
        SaveScreenshot(script, "ondhost-demo");
    }
    EndHost(host, &process);
}

}  // namespace

void TestHost() {
    TestHostRunsDemo();
    PROCESS_INFORMATION process;
    bool started = StartHost("--route window", &process);
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
    }
    EndHost(host, &process);
}
