// ondhost.exe: the reference host. It loads OndDeviceClient.dll only through
// its five exports, creates one instance of every object type, connects each
// to the device, opens their non-modal dialogs side by side over its own
// window and hears of dialog events by the route chosen on the command line.
//
//   ondhost.exe [--route callback|window|thread] [--dll <path>] [--exit-after <ms>]
//               [--run <script.dcs>] [--device sim|serial:PORT[:BAUD]] [--sim-delay <ms>]
//
// --run picks the script in the Script Processor's window and starts it
// there, so that its log fills while one watches. The device is the
// simulated one unless --device names a serial port (the channel dcsrun and
// dcsterm use); a port that cannot be opened ends the host with a message.
// The simulated device starts with a few files on it, and --sim-delay slows
// its transfers (that many milliseconds before each progress step) so that
// the File Manager's progress bars can be watched.
#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "frame/DeviceClient.h"
#include "host/console/ConsoleOptions.h"
#include "host/device/HostDevice.h"
#include "host/sim/SimDevice.h"

namespace {

typedef uint32_t (*FnGetNumObj)();
typedef uint32_t (*FnGetObjType)(uintptr_t index);
typedef uintptr_t (*FnGetObjInfo)(uint32_t type, uint32_t what);
typedef CONXDeviceClient_0* (*FnCreateInstance)(uint32_t type);
typedef void (*FnDeleteInstance)(CONXDeviceClient_0* object);

enum ERoute { ROUTE_CALLBACK, ROUTE_WINDOW, ROUTE_THREAD };

const UINT WM_HOST_DLGEVENT = WM_APP + 1;     // the window route
const UINT WM_HOST_THREADEVENT = WM_APP + 2;  // the thread route
const int IDC_LOG = 100;
const int IDC_CHANNELOPEN = 101;
const int IDC_SHOW = 200;   // + object index
const int IDC_CLOSE = 300;  // + object index
const int IDC_STATE = 400;  // + object index
const UINT_PTR TIMER_STATE = 1;
const UINT_PTR TIMER_EXIT = 2;

struct TObject {
    uint32_t type = 0;
    std::string name;
    CONXDeviceClient_0* client = nullptr;
    uint32_t lastShow = 0;  // the answer of the last ShowDialogNonModal
};

struct THost {
    HMODULE dll = nullptr;
    FnGetNumObj getNumObj = nullptr;
    FnGetObjType getObjType = nullptr;
    FnGetObjInfo getObjInfo = nullptr;
    FnCreateInstance createInstance = nullptr;
    FnDeleteInstance deleteInstance = nullptr;
    ERoute route = ROUTE_CALLBACK;
    std::vector<TObject> objects;
    COndDeviceComm_0* channel = nullptr;
    CSimDevice* sim = nullptr;  // null for a serial port
    HWND window = nullptr;
    HWND log = nullptr;
    UINT exitAfter = 0;
    std::string runScript;  // full path; empty: none
} g_host;

// The Script Processor window's "pick this script (and run it)" message.
const UINT WM_ONX_SCRIPTSELECT = 0x8002;

const char* EventName(uint32_t event) {
    switch (event) {
        case ONX_DLGEVENT_OK: return "OK";
        case ONX_DLGEVENT_CLOSE: return "close";
        case ONX_DLGEVENT_CANCEL: return "cancel";
    }
    return "?";
}

void Log(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    if (!g_host.log) return;
    LRESULT index = SendMessageA(g_host.log, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    SendMessageA(g_host.log, LB_SETTOPINDEX, index, 0);
}

TObject* FindObject(CONXDeviceClient_0* client) {
    for (TObject& object : g_host.objects)
        if (object.client == client) return &object;
    return nullptr;
}

// Answering 1 lets the dialog hide itself.
uint32_t HostEventCallback(CONXDeviceClient_0* client, void*, uint32_t event) {
    TObject* object = FindObject(client);
    Log("%s: %s (callback), answered 1", object ? object->name.c_str() : "?", EventName(event));
    return 1;
}

void ShowState(size_t index) {
    TObject& object = g_host.objects[index];
    const char* text;
    if (!object.client) text = "not created";
    else if (object.lastShow == EONX_ERR_DIALOG) text = "no window yet (17, EONX_ERR_DIALOG)";
    else if (object.client->IsNonModalDialogOpen()) text = "dialog open";
    else text = "dialog hidden";
    char line[128];
    std::snprintf(line, sizeof line, "%s", text);
    char old[128] = "";
    HWND state = GetDlgItem(g_host.window, IDC_STATE + int(index));
    GetWindowTextA(state, old, sizeof old);
    if (std::strcmp(old, line) != 0) SetWindowTextA(state, line);
}

void ShowDialog(size_t index) {
    TObject& object = g_host.objects[index];
    if (!object.client) return;
    object.lastShow = object.client->ShowDialogNonModal(g_host.window);
    Log("%s: ShowDialogNonModal answered %u%s", object.name.c_str(), object.lastShow,
        object.lastShow == EONX_ERR_DIALOG ? " (EONX_ERR_DIALOG)" : "");
    ShowState(index);
}

void CloseDialog(size_t index) {
    TObject& object = g_host.objects[index];
    if (!object.client) return;
    uint32_t result = object.client->CloseDialogNonModal();
    Log("%s: CloseDialogNonModal answered %u", object.name.c_str(), result);
    ShowState(index);
}

void CreateObjects() {
    uint32_t count = g_host.getNumObj();
    Log("%u object types:", count);
    for (uint32_t i = 0; i < count; ++i) {
        TObject object;
        object.type = g_host.getObjType(i);
        const char* name = reinterpret_cast<const char*>(g_host.getObjInfo(object.type, 0));
        object.name = name ? name : "?";
        Log("  %u: 0x%04X \"%s\"", i, object.type, object.name.c_str());
        object.client = g_host.createInstance(object.type);
        if (object.client) {
            object.client->Connect(g_host.channel);
            _TONX_DLGEVENTDATA data = {};
            if (g_host.route == ROUTE_CALLBACK) data.callback = HostEventCallback;
            if (g_host.route == ROUTE_WINDOW) {
                data.hWnd = g_host.window;
                data.uMsg = WM_HOST_DLGEVENT;
            }
            if (g_host.route == ROUTE_THREAD) {
                data.threadId = GetCurrentThreadId();
                data.threadMsg = WM_HOST_THREADEVENT;
            }
            object.client->SetDlgEventData(&data);
        }
        g_host.objects.push_back(object);
    }
}

void DeleteObjects() {
    for (TObject& object : g_host.objects) {
        if (object.client) g_host.deleteInstance(object.client);
        object.client = nullptr;
    }
}

void Layout(HWND hwnd) {
    RECT client;
    GetClientRect(hwnd, &client);
    int y = 8;
    for (size_t i = 0; i < g_host.objects.size(); ++i, y += 30) {
        MoveWindow(GetDlgItem(hwnd, IDC_SHOW + int(i)), 8, y, 150, 24, TRUE);
        MoveWindow(GetDlgItem(hwnd, IDC_CLOSE + int(i)), 164, y, 60, 24, TRUE);
        MoveWindow(GetDlgItem(hwnd, IDC_STATE + int(i)), 232, y + 4, client.right - 240, 20, TRUE);
    }
    MoveWindow(GetDlgItem(hwnd, IDC_CHANNELOPEN), 8, y, 200, 24, TRUE);
    y += 30;
    MoveWindow(g_host.log, 8, y, client.right - 16, client.bottom - y - 8, TRUE);
}

void CreateLog(HWND hwnd) {
    g_host.log = CreateWindowExA(WS_EX_CLIENTEDGE, "LISTBOX", "",
                                 WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_NOINTEGRALHEIGHT, 0, 0,
                                 10, 10, hwnd, reinterpret_cast<HMENU>(intptr_t(IDC_LOG)),
                                 GetModuleHandleA(nullptr), nullptr);
    SendMessageA(g_host.log, WM_SETFONT,
                 reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
}

void CreateControls(HWND hwnd) {
    HINSTANCE instance = GetModuleHandleA(nullptr);
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    auto make = [&](const char* cls, const char* text, DWORD style, int id) {
        HWND control = CreateWindowExA(0, cls, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 10, 10,
                                       hwnd, reinterpret_cast<HMENU>(intptr_t(id)), instance,
                                       nullptr);
        SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return control;
    };
    for (size_t i = 0; i < g_host.objects.size(); ++i) {
        std::string show = "Show " + g_host.objects[i].name;
        make("BUTTON", show.c_str(), BS_PUSHBUTTON | WS_TABSTOP, IDC_SHOW + int(i));
        make("BUTTON", "Close", BS_PUSHBUTTON | WS_TABSTOP, IDC_CLOSE + int(i));
        make("STATIC", "", SS_LEFT, IDC_STATE + int(i));
    }
    if (g_host.sim) {  // a real port is open or closed by itself
        HWND open = make("BUTTON", "Channel open", BS_AUTOCHECKBOX | WS_TABSTOP, IDC_CHANNELOPEN);
        SendMessageA(open, BM_SETCHECK, BST_CHECKED, 0);
    }
}

// The dialogs are pop-ups owned by this window. New ones are put side by
// side in the order they were shown, over the host's client area right of its
// buttons; a row that would leave the screen moves left (over the buttons if
// need be), and wraps onto a lower row when even that is not enough.
void PlaceDialogs() {
    static std::vector<HWND> placed;
    std::vector<HWND> windows;  // the thread's windows, newest first
    EnumThreadWindows(GetCurrentThreadId(), [](HWND hwnd, LPARAM list) {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(hwnd);
        return TRUE;
    }, reinterpret_cast<LPARAM>(&windows));
    std::vector<HWND> fresh;
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        HWND hwnd = *it;
        if (GetWindow(hwnd, GW_OWNER) != g_host.window || !IsWindowVisible(hwnd)) continue;
        bool known = false;
        for (HWND seen : placed) known = known || seen == hwnd;
        if (!known) fresh.push_back(hwnd);
    }
    if (fresh.empty()) return;
    const int gap = 8;
    int total = -gap;
    for (HWND hwnd : fresh) {
        RECT r;
        GetWindowRect(hwnd, &r);
        total += r.right - r.left + gap;
    }
    POINT client = {0, 0};
    ClientToScreen(g_host.window, &client);
    int screen = GetSystemMetrics(SM_CXSCREEN);
    int left = client.x + 240;
    if (left + total > screen) left = std::max<int>(gap, screen - total - gap);
    int x = left, y = client.y + 8 + 24 * int(placed.size() % 8);
    int rowHeight = 0;  // a window that does not fit goes below the row, not over it
    for (HWND hwnd : fresh) {
        RECT r;
        GetWindowRect(hwnd, &r);
        if (x > left && x + (r.right - r.left) > screen) {
            x = left;
            y += rowHeight + gap;
            rowHeight = 0;
        }
        SetWindowPos(hwnd, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        x += r.right - r.left + gap;
        rowHeight = std::max<int>(rowHeight, r.bottom - r.top);
        placed.push_back(hwnd);
    }
}

BOOL CALLBACK FindScriptWindow(HWND hwnd, LPARAM found) {
    char caption[64] = "";
    GetWindowTextA(hwnd, caption, sizeof caption);
    if (GetWindow(hwnd, GW_OWNER) != g_host.window || std::strcmp(caption, "Script processor") != 0)
        return TRUE;
    *reinterpret_cast<HWND*>(found) = hwnd;
    return FALSE;
}

// As a user would: the script is picked in the window and Execute pressed.
void RunInScriptWindow(const std::string& path) {
    HWND window = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindScriptWindow, reinterpret_cast<LPARAM>(&window));
    if (!window) {
        Log("--run: the Script Processor window is not open");
        return;
    }
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    LRESULT started = SendMessageA(window, WM_ONX_SCRIPTSELECT,
                                   reinterpret_cast<WPARAM>(path.c_str()), 1);
    Log("--run: %s %s", path.c_str(), started ? "started" : "not started (a script runs)");
}

LRESULT CALLBACK HostWindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    switch (msg) {
        case WM_CREATE: {
            g_host.window = hwnd;
            CreateLog(hwnd);
            const char* description = g_host.channel->GetInfoString(0, 0);
            std::string what = description ? description : "?";
            const char* configuration = g_host.channel->GetInfoString(1, 0);
            Log("device: %s (%s)", what.c_str(), configuration ? configuration : "");
            CreateObjects();
            CreateControls(hwnd);
            Layout(hwnd);
            SetTimer(hwnd, TIMER_STATE, 500, nullptr);
            if (g_host.exitAfter) SetTimer(hwnd, TIMER_EXIT, g_host.exitAfter, nullptr);
            return 0;
        }
        case WM_SIZE: Layout(hwnd); return 0;
        case WM_COMMAND: {
            int id = LOWORD(wParam);
            if (id >= IDC_SHOW && id < IDC_SHOW + int(g_host.objects.size())) {
                ShowDialog(size_t(id - IDC_SHOW));
                PlaceDialogs();
            } else if (id >= IDC_CLOSE && id < IDC_CLOSE + int(g_host.objects.size())) {
                CloseDialog(size_t(id - IDC_CLOSE));
            } else if (id == IDC_CHANNELOPEN) {
                bool open = SendMessageA(GetDlgItem(hwnd, IDC_CHANNELOPEN), BM_GETCHECK, 0, 0) ==
                            BST_CHECKED;
                if (g_host.sim) g_host.sim->SetState(open ? 1 : 2);
                Log("simulated channel %s", open ? "opened" : "closed");
            }
            return 0;
        }
        case WM_HOST_DLGEVENT: {
            TObject* object = FindObject(reinterpret_cast<CONXDeviceClient_0*>(wParam));
            Log("%s: %s (window message), answered 1", object ? object->name.c_str() : "?",
                EventName(uint32_t(lParam)));
            return 1;
        }
        case WM_TIMER:
            if (wParam == TIMER_EXIT) {
                KillTimer(hwnd, TIMER_EXIT);
                PostMessageA(hwnd, WM_CLOSE, 0, 0);
            } else {
                for (size_t i = 0; i < g_host.objects.size(); ++i) ShowState(i);
            }
            return 0;
        case WM_DESTROY:
            KillTimer(hwnd, TIMER_STATE);
            DeleteObjects();  // destroys their dialogs
            PostQuitMessage(0);
            return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

// Through void*: FARPROC's own type would draw a cast warning.
template <class T>
T Export(const char* name) {
    return reinterpret_cast<T>(reinterpret_cast<void*>(GetProcAddress(g_host.dll, name)));
}

bool LoadModule(const std::string& path) {
    g_host.dll = LoadLibraryA(path.c_str());
    if (!g_host.dll) return false;
    g_host.getNumObj = Export<FnGetNumObj>("OndDeviceClientGetNumObj");
    g_host.getObjType = Export<FnGetObjType>("OndDeviceClientGetObjType");
    g_host.getObjInfo = Export<FnGetObjInfo>("OndDeviceClientGetObjInfo");
    g_host.createInstance = Export<FnCreateInstance>("OndDeviceClientCreateInstance");
    g_host.deleteInstance = Export<FnDeleteInstance>("OndDeviceClientDeleteInstance");
    return g_host.getNumObj && g_host.getObjType && g_host.getObjInfo && g_host.createInstance &&
           g_host.deleteInstance;
}

// A device that has been in use: a few files in its directory.
void PreloadDevice(CSimDevice* device) {
    const struct {
        uint8_t id, type;
        size_t size;
        char fill;
    } files[] = {{1, 1, 212, 'c'}, {2, 3, 4096, 't'}, {10, 7, 9000, 'l'}};
    for (const auto& f : files) {
        std::string data(f.size, f.fill);
        device->TransmitFileFromMemory(data.data(), data.size(), f.id, f.type, 0, nullptr, nullptr,
                                       ONDCOMM_TRANSFER_FLAG, 1);
    }
}

int Fail(const char* text) {
    MessageBoxA(nullptr, text, "ondhost", MB_OK | MB_ICONEXCLAMATION);
    return 1;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) {
    char exe[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, exe, MAX_PATH);
    std::string dllPath = exe;
    dllPath.resize(dllPath.rfind('\\') + 1);
    dllPath += "OndDeviceClient.dll";

    THOSTDEVICEOPTIONS deviceOptions;
    std::string error;
    const char* usage = "usage: ondhost [--route callback|window|thread] [--dll <path>] "
                        "[--exit-after <ms>] [--run <script.dcs>] "
                        "[--device sim|serial:PORT[:BAUD]] [--sim-delay <ms>]";
    for (int i = 1; i < __argc; ++i) {
        // Every option takes a value: "--opt value" or "--opt=value".
        std::string name, value;
        bool inlineValue = SplitConsoleOption(__argv[i], &name, &value);
        bool device = IsHostDeviceOption(name);
        if (!device && name != "--route" && name != "--dll" && name != "--run" && name != "--exit-after")
            return Fail(usage);
        if (!inlineValue && !TakeConsoleOptionValue(__argc, __argv, &i, name, &value, &error))
            return Fail(("ondhost: " + error).c_str());
        if (device) {
            if (!ParseHostDeviceOption(name, value, &deviceOptions, &error))
                return Fail(("ondhost: " + error).c_str());
        } else if (value.empty()) {
            return Fail(usage);
        } else if (name == "--route") {
            if (value == "callback") g_host.route = ROUTE_CALLBACK;
            else if (value == "window") g_host.route = ROUTE_WINDOW;
            else if (value == "thread") g_host.route = ROUTE_THREAD;
            else return Fail("--route takes callback, window or thread");
        } else if (name == "--dll") {
            dllPath = value;
        } else if (name == "--run") {
            char full[MAX_PATH] = "";
            DWORD length = GetFullPathNameA(value.c_str(), MAX_PATH, full, nullptr);
            g_host.runScript = length > 0 && length < MAX_PATH ? full : value;
        } else {
            uint64_t ms = 0;
            if (!ParseOptionNumber(value, 86400000, &ms))
                return Fail(("ondhost: bad time '" + value + "' for --exit-after (milliseconds)").c_str());
            g_host.exitAfter = UINT(ms);
        }
    }
    if (!CheckHostDeviceOptions(deviceOptions, &error)) return Fail(("ondhost: " + error).c_str());

    // The device first: it outlives every object of the module.
    CHostDevice device;
    switch (device.Open(deviceOptions, &error)) {
    case HOSTDEVICE_OPENED: break;
    case HOSTDEVICE_NOPORT:
        return Fail(("The serial port cannot be opened:\n" + error +
                     "\n\nondhost ends. Name another port with --device serial:PORT[:BAUD], "
                     "or leave --device out for the simulated device.").c_str());
    case HOSTDEVICE_NOFILE: return Fail(("ondhost: " + error).c_str());
    }
    g_host.channel = device.Channel();
    g_host.sim = device.Sim();
    // A device of the user's own (--sim-files) keeps its files, and injected
    // faults count the user's calls only. --sim-delay is in force already:
    // two steps a file.
    if (g_host.sim && deviceOptions.simFilesFolder.empty() && deviceOptions.simFaults.empty())
        PreloadDevice(g_host.sim);

    if (!LoadModule(dllPath)) return Fail(("Cannot load " + dllPath).c_str());

    WNDCLASSA wc = {};
    wc.lpfnWndProc = HostWindowProc;
    wc.hInstance = instance;
    wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = "OndHostWindow";
    RegisterClassA(&wc);
    static const char* kRouteNames[] = {"callback", "window message", "thread message"};
    std::string title = std::string("OndDeviceClient reference host - events by ") +
                        kRouteNames[g_host.route];
    HWND hwnd = CreateWindowA("OndHostWindow", title.c_str(), WS_OVERLAPPEDWINDOW, 20, 20, 1240,
                              760, nullptr, nullptr, instance, nullptr);
    if (!hwnd) return Fail("Cannot create the host window");
    ShowWindow(hwnd, show);
    UpdateWindow(hwnd);
    for (size_t i = 0; i < g_host.objects.size(); ++i) ShowDialog(i);
    PlaceDialogs();
    if (!g_host.runScript.empty()) RunInScriptWindow(g_host.runScript);

    // A plain loop: the module's hook gives its dialogs their keyboard.
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
        if (!msg.hwnd && msg.message == WM_HOST_THREADEVENT) {
            // A posted event cannot answer; the host closes the dialog itself.
            TObject* object = FindObject(reinterpret_cast<CONXDeviceClient_0*>(msg.wParam));
            Log("%s: %s (thread message)", object ? object->name.c_str() : "?",
                EventName(uint32_t(msg.lParam)));
            if (object && object->client) object->client->CloseDialogNonModal();
            continue;
        }
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    FreeLibrary(g_host.dll);  // the module removes its hook
    if (!device.SaveSimFiles(&error)) return Fail(("ondhost: --sim-save: " + error).c_str());
    return int(msg.wParam);
}
