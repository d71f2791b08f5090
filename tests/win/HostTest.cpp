// The reference host as a developer starts it: a separate process that loads
// the DLL by its exports. Its window reports what each object answered.
#include "WinTest.h"

#include <commctrl.h>

#include <cstring>

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

// Closes the window (the host's or its message box) and waits for the exit.
void EndHost(HWND window, PROCESS_INFORMATION* process, DWORD expected = 0) {
    char cls[16] = "";
    if (window && GetClassNameA(window, cls, sizeof cls))
        PostMessageA(window, std::strcmp(cls, "#32770") == 0 ? WM_COMMAND : WM_CLOSE, IDOK, 0);
    // It deletes every instance and unloads the DLL on the way out.
    CHECK(WaitForSingleObject(process->hProcess, 30000) == WAIT_OBJECT_0);
    DWORD code = 99;
    GetExitCodeProcess(process->hProcess, &code);
    CHECK(code == expected);
    if (code == STILL_ACTIVE) TerminateProcess(process->hProcess, 1);
    CloseHandle(process->hThread);
    CloseHandle(process->hProcess);
}

// A visible top-level window of that process. A dialog turns visible only
// after its controls exist, so an id looked up in it is there.
HWND WaitForWindow(DWORD processId, const char* cls, const char* caption) {
    for (int i = 0; i < 200; ++i) {
        PumpMessages(100);
        for (HWND w = FindWindowExA(nullptr, nullptr, cls, caption); w;
             w = FindWindowExA(nullptr, w, cls, caption)) {
            DWORD owner = 0;
            GetWindowThreadProcessId(w, &owner);
            if (owner == processId && IsWindowVisible(w)) return w;
        }
    }
    return nullptr;
}

// The host shows its dialogs first and moves them side by side after, so a
// test that finds them visible may still see them where they were shown.
bool WaitUntilApart(HWND a, HWND b) {
    for (int i = 0; i < 100; ++i) {
        RECT ra, rb, overlap;
        if (!GetWindowRect(a, &ra) || !GetWindowRect(b, &rb)) return false;
        if (!IntersectRect(&overlap, &ra, &rb)) return true;
        PumpMessages(100);
    }
    return false;
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
        // The demo ends by itself with its last line, "done.". The state is
        // read once per round: a read from another process may come back
        // empty while the host is busy.
        DWORD start = GetTickCount();
        std::string button;
        LRESULT lines = 0;
        while (GetTickCount() - start < 30000 &&
               !((button = WindowText(run)) == "Execute script" &&
                 (lines = SendMessageA(log, LB_GETCOUNT, 0, 0)) >= 10))
            PumpMessages(100);
        CHECK(lines >= 10);
        CHECK_EQ_STR(button, "Execute script");
        CHECK(FindWindowA("#32770", "Error") == nullptr);
        CHECK(ItemText(script, IDC_SP_PATH).find("demo.dcs") != std::string::npos);
        SaveScreenshot(script, "ondhost-demo");
    }
    EndHost(host, &process);
}

// The Terminal opens in the host beside the other dialogs, on the simulated
// device: a line typed into it comes back into its list (loopback).
void TestHostTerminal(DWORD processId) {
    HWND terminal = WaitForWindow(processId, "#32770", "Terminal");
    CHECK(terminal != nullptr);
    if (!terminal) return;
    HWND script = WaitForWindow(processId, "#32770", "Script processor");
    CHECK(script && WaitUntilApart(terminal, script));  // beside, not over each other
    HWND input = GetDlgItem(terminal, IDC_TERM_INPUT);
    // A click into the input line gives it the focus, as a user's would.
    PostMessageA(input, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    PostMessageA(input, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    for (const char* c = "ping"; *c; ++c) PostMessageA(input, WM_CHAR, *c, 1);
    PostMessageA(input, WM_KEYDOWN, VK_RETURN, 1);
    HWND list = GetDlgItem(terminal, IDC_TERM_ANSWERS);
    DWORD start = GetTickCount();
    while (GetTickCount() - start < 10000 && SendMessageA(list, LB_GETCOUNT, 0, 0) < 1) PumpMessages(50);
    CHECK_EQ_STR(ItemText(terminal, IDC_TERM_STATUS), "Wrote \"ping\\r\" to device.");
    CHECK(SendMessageA(list, LB_GETCOUNT, 0, 0) == 1);
    CHECK_EQ_STR(ItemText(terminal, IDC_TERM_INPUT), "");
    SaveScreenshot(terminal, "ondhost-terminal");
}

// A serial port that cannot be opened: a message that says so, and the host
// ends with status 1.
void TestHostBadPort() {
    PROCESS_INFORMATION process;
    bool started = StartHost("--device serial:COM97", &process);
    CHECK(started);
    if (!started) return;
    HWND box = WaitForWindow(process.dwProcessId, "#32770", "ondhost");
    CHECK(box != nullptr);
    // The box is found as soon as it exists; its text may come a moment later.
    std::string text;
    for (int round = 0; round < 50 && box && (text = ReadBox(box).text).empty(); ++round) PumpMessages(100);
    std::printf("ondhost --device serial:COM97: \"%s\"\n", text.c_str());
    CHECK(text.rfind("The serial port cannot be opened:\ncannot open COM97: ", 0) == 0);
    EndHost(box, &process, 1);
}

// The File Manager in the host: the device's first files listed; then a
// copy through the progress window, during which the host is closed. The
// host deletes every instance and unloads the module with the copy just
// ended, and exits cleanly.
void TestHostFileManager() {
    std::string folder = TempFolder("ondhost");
    std::string data = WriteBytes(folder + "ondhost-copy.bin", "");
    std::string job = WriteBytes(folder + "ondhost.dcj",
                                 "ondhost-copy.bin\t40\t1\tnormal\nondhost-copy.bin\t41\t1\tnormal\n");
    PROCESS_INFORMATION process;
    bool started = StartHost("--sim-delay 20", &process);
    CHECK(started);
    if (!started) return;
    HWND host = WaitForWindow(process.dwProcessId, "OndHostWindow", nullptr);
    HWND fm = WaitForWindow(process.dwProcessId, "#32770", "File manager");
    CHECK(host && fm);
    if (fm) {
        // Beside the other two windows, over none of them.
        for (const char* other : {"Terminal", "Script processor"}) {
            HWND window = WaitForWindow(process.dwProcessId, "#32770", other);
            CHECK(window && WaitUntilApart(fm, window));
        }
        HWND device = GetDlgItem(fm, IDC_FM_DEVICELIST);
        CHECK(SendMessageA(device, LVM_GETITEMCOUNT, 0, 0) == 3);
        CHECK_EQ_STR(ItemText(fm, IDC_FM_SUMMARY),
                     "13308 bytes in 3 files\nrequire 20480 bytes on disk\n1028096 bytes free");
        SaveScreenshot(fm, "ondhost-filemanager");
        // "Load job" as a user does it, then "Copy all ->".
        PostMessageA(fm, WM_COMMAND, MAKEWPARAM(IDC_FM_LOADJOB, BN_CLICKED), 0);
        HWND open = WaitForWindow(process.dwProcessId, "#32770", "Open job file");
        CHECK(open != nullptr);
        if (open) {
            PumpMessages(200);
            TypeFileName(open, job);
        }
        HWND local = GetDlgItem(fm, IDC_FM_LOCALLIST);
        for (int i = 0; i < 100 && SendMessageA(local, LVM_GETITEMCOUNT, 0, 0) != 2; ++i) PumpMessages(50);
        CHECK(SendMessageA(local, LVM_GETITEMCOUNT, 0, 0) == 2);
        PostMessageA(fm, WM_COMMAND, MAKEWPARAM(IDC_FM_COPYALL, BN_CLICKED), 0);
        HWND progress = WaitForWindow(process.dwProcessId, "#32770", "Progress");
        CHECK(progress != nullptr);
        PumpMessages(300);
    }
    EndHost(host, &process);  // closed during the copy: exit status 0
    DeleteFileA(job.c_str());
    DeleteFileA(data.c_str());
}

}  // namespace

void TestHost() {
    TestHostRunsDemo();
    TestHostBadPort();
    TestHostFileManager();
    PROCESS_INFORMATION process;
    bool started = StartHost("--route window", &process);
    CHECK(started);
    if (!started) return;

    HWND host = WaitForWindow(process.dwProcessId, "OndHostWindow", nullptr);
    CHECK(host != nullptr);
    if (host) {
        CHECK_EQ_STR(WindowText(host), "OndDeviceClient reference host - events by window message");
        // The host window shows before its objects' dialogs do: each state
        // line is waited for (a loaded machine takes seconds).
        for (int i = 0; i < 3; ++i) {
            std::string state;
            PumpUntil([&] {
                state = ItemText(host, 400 + i);
                return state == "dialog open" || state == "no window yet (17, EONX_ERR_DIALOG)";
            }, 15000);
            CHECK(state == "dialog open" || state == "no window yet (17, EONX_ERR_DIALOG)");
        }
        // The type list and one answer per object. (Wine garbles list-box
        // texts read from another process, so only the count is checked.)
        CHECK(SendMessageA(GetDlgItem(host, 100), LB_GETCOUNT, 0, 0) >= 7);
        SaveScreenshot(host, "ondhost");
        TestHostTerminal(process.dwProcessId);
    }
    EndHost(host, &process);
}
