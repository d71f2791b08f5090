// Driver of the window tests: ond_win_tests <screenshot folder>.
#include "WinTest.h"

#include <algorithm>
#include <atomic>
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

static void Resize(HWND window, int width, int height) {
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

std::string SmallestSize(HWND dialog) {
    RECT initial, small;
    GetWindowRect(dialog, &initial);
    Resize(dialog, 100, 100);
    GetWindowRect(dialog, &small);
    Resize(dialog, initial.right - initial.left, initial.bottom - initial.top);
    return std::to_string(small.right - small.left) + "x" + std::to_string(small.bottom - small.top);
}

std::string MovesOnGrowth(HWND dialog, const std::vector<int>& ids) {
    RECT initial;
    GetWindowRect(dialog, &initial);
    std::vector<RECT> before;
    for (int id : ids) before.push_back(ChildRect(dialog, id));
    Resize(dialog, initial.right - initial.left + 120, initial.bottom - initial.top + 80);
    std::string moves;
    for (size_t i = 0; i < ids.size(); ++i) {
        RECT after = ChildRect(dialog, ids[i]);
        moves += std::to_string(after.left - before[i].left) + " " + std::to_string(after.top - before[i].top) +
                 " " + std::to_string(after.right - before[i].right) + " " +
                 std::to_string(after.bottom - before[i].bottom) + "|";
    }
    Resize(dialog, initial.right - initial.left, initial.bottom - initial.top);
    return moves;
}

const UINT kRunOnHost = WM_APP + 40;

static LRESULT CALLBACK HostProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (msg != kRunOnHost) return DefWindowProcA(hwnd, msg, wParam, lParam);
    (*reinterpret_cast<const std::function<void()>*>(lParam))();
    return 1;
}

void OnHostThread(const std::function<void()>& work) {
    SendMessageA(TestHostWindow(), kRunOnHost, 0, reinterpret_cast<LPARAM>(&work));
}

HWND TestHostWindow() {
    static HWND host;
    if (!host) {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = HostProc;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.lpszClassName = "OndWinTestHost";
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
        RegisterClassA(&wc);
        host = CreateWindowA("OndWinTestHost", "window tests", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                             0, 0, 400, 300, nullptr, nullptr, wc.hInstance, nullptr);
    }
    return host;
}

HWND NewHostWindow(const char* title) {
    return CreateWindowA("OndWinTestHost", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                         nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
}

HWND FindDialog(const char* caption) {
    HWND found = FindWindowA("#32770", caption);
    return found && IsWindowVisible(found) ? found : nullptr;
}

HWND WaitForDialog(const char* caption, DWORD ms) {
    for (DWORD start = GetTickCount(); GetTickCount() - start <= ms; Sleep(10)) {
        if (HWND found = FindDialog(caption)) {
            Sleep(150);  // let it finish its initialisation
            return found;
        }
    }
    return nullptr;
}

bool WaitGone(HWND window, DWORD ms) {
    for (DWORD start = GetTickCount(); IsWindow(window) && IsWindowVisible(window); Sleep(10))
        if (GetTickCount() - start > ms) return false;
    return true;
}

static BOOL CALLBACK CollectBox(HWND child, LPARAM out) {
    auto* box = reinterpret_cast<TBox*>(out);
    char cls[32] = "";
    GetClassNameA(child, cls, sizeof cls);
    if (_stricmp(cls, "Static") != 0) return TRUE;
    if ((GetWindowLongA(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
        HICON icon = reinterpret_cast<HICON>(SendMessageA(child, STM_GETICON, 0, 0));
        if (!icon || !IsWindowVisible(child)) return TRUE;  // a box without an icon
        box->icon = icon == LoadIconA(nullptr, IDI_EXCLAMATION) ? "exclamation"
                    : icon == LoadIconA(nullptr, IDI_QUESTION)  ? "question"
                                                                : "other";
    } else if (!WindowText(child).empty()) {
        box->text = WindowText(child);
    }
    return TRUE;
}

TBox ReadBox(HWND window) {
    TBox box;
    box.icon = "none";
    EnumChildWindows(window, CollectBox, reinterpret_cast<LPARAM>(&box));
    for (int id : {IDOK, IDCANCEL, IDYES, IDNO}) {
        HWND button = GetDlgItem(window, id);
        if (!button || !IsWindowVisible(button)) continue;
        std::string text = WindowText(button);
        text.erase(std::remove(text.begin(), text.end(), '&'), text.end());  // mnemonics
        box.buttons += text + "|";
        if ((GetWindowLongA(button, GWL_STYLE) & 0xF) == BS_DEFPUSHBUTTON) box.defaultButton = id;
    }
    return box;
}

std::string Shown(const TBox& box) { return box.icon + " " + box.buttons + " " + box.text; }

TBox AnswerBox(const char* caption, int button, DWORD ms) {
    HWND window = WaitForDialog(caption, ms);
    if (!window) return TBox();
    TBox box = ReadBox(window);
    PostMessageA(window, WM_COMMAND, button, 0);
    WaitGone(window);
    return box;
}

void TypeFileName(HWND dialog, const std::string& name) {
    HWND edit = GetDlgItem(dialog, 0x47C);  // the file name combo
    if (!edit) edit = GetDlgItem(dialog, 0x480);
    SetWindowTextA(edit, name.c_str());
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
}

bool AnswerFileDialog(const char* caption, const std::string& path) {
    HWND dialog = WaitForDialog(caption);
    if (!dialog) return false;
    TypeFileName(dialog, path);
    return WaitGone(dialog);
}

// Anything a failed driver left open is closed, so that the click that
// opened it can return.
static void CloseLeftovers() {
    const char* captions[] = {"Error", "Warning", "WARNING", "File properties", "Progress",
                              "Open source file(s)", "Open job file", "Save list file",
                              "Open a script file", "New script file"};
    for (int round = 0; round < 20; ++round) {
        bool any = false;
        for (const char* caption : captions) {
            if (HWND w = FindDialog(caption)) {
                PostMessageA(w, WM_COMMAND, IDCANCEL, 0);
                any = true;
            }
        }
        if (!any) return;
        Sleep(100);
    }
}

void Drive(const std::function<void()>& action, const std::function<void()>& body) {
    struct TRun {
        std::function<void()> body;
        std::atomic<bool> done{false};
    } run;
    run.body = body;
    HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* p) -> DWORD {
            auto* r = static_cast<TRun*>(p);
            r->body();
            CloseLeftovers();
            r->done = true;
            return 0;
        },
        &run, 0, nullptr);
    action();
    bool ended = PumpUntil([&] { return run.done.load(); }, 90000);
    CHECK(ended);
    if (!ended) CloseLeftovers();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    PumpMessages(50);  // the posted rest of the handler
}

std::string ClipboardBytes() {
    std::string bytes;
    if (!OpenClipboard(nullptr)) return bytes;
    HANDLE data = GetClipboardData(CF_TEXT);
    const char* p = data ? static_cast<const char*>(GlobalLock(data)) : nullptr;
    if (p) bytes.assign(p, GlobalSize(data));
    if (p) GlobalUnlock(data);
    CloseClipboard();
    return bytes;
}

std::string TempFolder(const char* name) {
    char temp[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, temp);
    std::string folder = std::string(temp) + name + "\\";
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

std::string WriteBytes(const std::string& path, const std::string& bytes) {
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }
    return path;
}

HMODULE LoadModuleCopy(const char* name, std::string* copy) {
    char dll[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("OndDeviceClient.dll"), dll, MAX_PATH);
    *copy = TempFolder("ondmodules") + name;
    return CopyFileA(dll, copy->c_str(), FALSE) ? LoadLibraryA(copy->c_str()) : nullptr;
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
