// Driver of the window tests: ond_win_tests <screenshot folder>.
#include "WinTest.h"

#include <cstdlib>
#include <cstring>

int g_passed, g_failed;

void PumpMessages(DWORD ms) {
    DWORD start = GetTickCount();
    do {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    } while (GetTickCount() - start < ms);
}

bool TakeMessage(MSG* msg) { return PeekMessageA(msg, nullptr, 0, 0, PM_REMOVE) != 0; }

std::string WindowText(HWND hwnd) {
    int length = GetWindowTextLengthA(hwnd);
    std::string text(size_t(length) + 1, '\0');
    length = GetWindowTextA(hwnd, &text[0], length + 1);
    text.resize(size_t(length > 0 ? length : 0));
    return text;
}

std::string ItemText(HWND dialog, int id) { return WindowText(GetDlgItem(dialog, id)); }

void Click(HWND dialog, int id) {
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

void ClickNow(HWND dialog, int id) {
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

std::vector<std::string> ListLines(HWND listBox) {
    std::vector<std::string> lines;
    LRESULT count = SendMessageA(listBox, LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        std::string line(size_t(SendMessageA(listBox, LB_GETTEXTLEN, i, 0)) + 1, '\0');
        LRESULT n = SendMessageA(listBox, LB_GETTEXT, i, reinterpret_cast<LPARAM>(&line[0]));
        line.resize(n > 0 ? size_t(n) : 0);
        lines.push_back(line);
    }
    return lines;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines) all += line + "|";
    return all;
}

RECT ChildRect(HWND dialog, int id) {
    RECT rect = {};
    HWND child = GetDlgItem(dialog, id);
    if (!child) return rect;
    GetWindowRect(child, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

HWND TestHostWindow() {
    static HWND host;
    if (!host) {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = DefWindowProcA;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.lpszClassName = "OndWinTestHost";
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
        RegisterClassA(&wc);
        host = CreateWindowA("OndWinTestHost", "window tests", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                             0, 0, 400, 300, nullptr, nullptr, wc.hInstance, nullptr);
    }
    return host;
}

// Screenshots go to the folder given, else to screenshots\ beside bin\.
int main(int argc, char** argv) {
    // Unbuffered: a run cut off by CTest's timeout still shows how far it got.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    std::string folder;
    if (argc > 1) {
        folder = argv[1];
    } else {
        char path[MAX_PATH] = "";
        GetModuleFileNameA(nullptr, path, MAX_PATH);
        folder = path;
        folder.resize(folder.rfind('\\') + 1);
        folder += "..\\screenshots";
    }
    CreateDirectoryA(folder.c_str(), nullptr);
    SetScreenshotFolder(folder);
    TestHostWindow();
    PumpMessages(100);

    // OND_WIN_GROUPS="filemanager,host" runs only those groups (for work on
    // one window); unset, all of them run.
    const char* only = std::getenv("OND_WIN_GROUPS");
    auto run = [&](const char* name, void (*group)()) {
        if (!only || !*only || std::strstr(only, name)) group();
    };
    run("app", TestApp);
    run("dialogs", TestDialogs);
    run("templates", TestTemplates);
    run("script", TestScriptWindow);
    run("terminal", TestTerminalWindow);
    run("filemanager", TestFileManagerWindow);
    run("host", TestHost);

    std::printf("%d passed, %d failed\n", g_passed, g_failed);
    return g_failed == 0 && g_passed > 0 ? 0 : 1;
}
