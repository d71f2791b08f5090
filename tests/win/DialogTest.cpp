// CONXDialog and the device-client base with real windows, through the DLL:
// a dialog and a client derived from the exported classes, over the Script
// processor's template, driven by clicks and keys. The anchoring is the Script
// processor window's test; its arithmetic is tested natively.
#include <cstring>

#include "WinTest.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"

namespace {

class CTestScriptDialog : public CONXDialog {
public:
    CTestScriptDialog() : CONXDialog(IDD_SCRIPTPROCESSOR, nullptr) {
        LoadSmallIcon(IDI_SCRIPTPROCESSOR);
    }
    void UpdateDialogState() override {
        ++updates;
        UpdateCommStatus(IDC_SP_CONFIG);
    }
    bool OnCommand(uint32_t id, uint32_t code, HWND control) override {
        if (id == IDC_SP_COPY && code == BN_CLICKED) {
            CopyListBoxContentToClipBoard(GetDlgItem(IDC_SP_LOG));
            return true;
        }
        return CONXDialog::OnCommand(id, code, control);
    }
    bool TimerRunning() const { return m_nTimerHandle != 0; }

    int updates = 0;
};

class CTestClient : public CONXDeviceClient {
public:
    uint32_t GetObjType() override { return 0x7000; }
    CTestScriptDialog* Dialog() { return static_cast<CTestScriptDialog*>(m_pDialog); }
    HWND Window() { return m_pDialog ? m_pDialog->GetSafeHwnd() : nullptr; }

    int created = 0, deleted = 0;

protected:
    CONXDialog* CreateNewDialog(HWND) override {
        ++created;
        return new CTestScriptDialog;
    }
    void DeleteDialog(CONXDialog* dialog) override {
        ++deleted;
        delete dialog;
    }
};

struct TEventLog {
    int calls = 0;
    CONXDeviceClient_0* client = nullptr;
    void* userData = nullptr;
    uint32_t event = 99;
    uint32_t answer = 1;
} g_callback;

uint32_t EventCallback(CONXDeviceClient_0* client, void* userData, uint32_t event) {
    ++g_callback.calls;
    g_callback.client = client;
    g_callback.userData = userData;
    g_callback.event = event;
    return g_callback.answer;
}

struct {
    int calls = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
} g_window;
const UINT kEventWindowMsg = WM_APP + 7;
const UINT kEventThreadMsg = WM_APP + 8;

LRESULT CALLBACK EventWindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (msg == kEventWindowMsg) {
        ++g_window.calls;
        g_window.wParam = wParam;
        g_window.lParam = lParam;
        return 1;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

HWND EventWindow() {
    static HWND sink;
    if (!sink) {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = EventWindowProc;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.lpszClassName = "OndWinTestEvents";
        RegisterClassA(&wc);
        sink = CreateWindowA("OndWinTestEvents", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             wc.hInstance, nullptr);
    }
    return sink;
}

void SetRoutes(CTestClient* client, bool callback, bool window, bool thread) {
    _TONX_DLGEVENTDATA data = {};
    data.callback = callback ? EventCallback : nullptr;
    data.userData = &g_callback;
    data.hWnd = window ? EventWindow() : nullptr;
    data.uMsg = kEventWindowMsg;
    data.threadId = GetCurrentThreadId();
    data.threadMsg = thread ? kEventThreadMsg : 0;
    client->SetDlgEventData(&data);
}

void PressButton(HWND dialog, int id) { SendMessageA(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }

std::string ExpectedStatus(CSimDevice* sim, const char* state) {
    return std::string("Channel description: ") + sim->GetInfoString(0, 0) +
           "\nChannel configuration: " + sim->GetInfoString(1, 0) + "\nState: " + state;
}

// Show, hide, re-show, lose the window, delete the client.
void TestLifecycle() {
    HWND host = TestHostWindow();
    HWND first;
    {
        CTestClient client;
        CHECK(client.CloseDialogNonModal() == EONX_ERR_DIALOG);
        CHECK(!client.IsNonModalDialogOpen());
        CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
        first = client.Window();
        CHECK(first && IsWindowVisible(first));
        CHECK(client.IsNonModalDialogOpen());
        CHECK(GetWindow(first, GW_OWNER) == host);
        CHECK_EQ_STR(WindowText(first), "Script processor");
        CHECK((GetWindowLongPtrA(first, GWL_EXSTYLE) & WS_EX_APPWINDOW) != 0);
        CHECK(SendMessageA(first, WM_GETICON, ICON_SMALL, 0) != 0);

        CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
        CHECK(client.Window() == first && client.created == 1);
        CHECK(client.CloseDialogNonModal() == EONX_ERR_NONE);
        CHECK(IsWindow(first) && !IsWindowVisible(first));
        CHECK(!client.IsNonModalDialogOpen());
        CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
        CHECK(client.Window() == first && IsWindowVisible(first));

        // Destroyed from outside: the next show builds a new dialog.
        DestroyWindow(first);
        CHECK(!client.IsNonModalDialogOpen());
        CHECK(client.CloseDialogNonModal() == EONX_ERR_DIALOG);
        CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
        CHECK(client.created == 2 && client.deleted == 1);
        first = client.Window();
        CHECK(IsWindow(first) && client.IsNonModalDialogOpen());
    }
    CHECK(!IsWindow(first));  // the client's destructor destroyed it
}

// The status box on the 500 ms timer (its text: ChannelStatusText, tested natively).
void TestStatusText() {
    CSimDevice sim;
    CTestClient client;
    CHECK(client.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    HWND dialog = client.Window();
    CTestScriptDialog* dlg = client.Dialog();
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_CONFIG), "No communication device...");
    CHECK(!dlg->TimerRunning());

    client.Connect(&sim);
    CHECK(dlg->TimerRunning());
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_CONFIG), ExpectedStatus(&sim, "open"));
    CHECK(sim.LockOwner() == nullptr);  // every Lock was paired

    // The timer notices a closed channel by itself.
    sim.SetState(2);
    int before = dlg->updates;
    PumpMessages(1200);
    CHECK(dlg->updates >= before + 2);
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_CONFIG), ExpectedStatus(&sim, "closed"));
    SaveScreenshot(dialog, "status-closed");
    sim.SetState(1);

    // Disconnecting stops the timer and refreshes once; twice refreshes again.
    before = dlg->updates;
    client.Connect(nullptr);
    CHECK(!dlg->TimerRunning());
    CHECK(dlg->updates == before + 1);
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_CONFIG), "No communication device...");
    PumpMessages(1200);
    CHECK(dlg->updates == before + 1);
    client.Connect(nullptr);
    CHECK(dlg->updates == before + 2);

    // A channel given before the window exists starts the timer at creation.
    CTestClient early;
    early.Connect(&sim);
    CHECK(early.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    CHECK(early.Dialog()->TimerRunning());
    CHECK_EQ_STR(ItemText(early.Window(), IDC_SP_CONFIG), ExpectedStatus(&sim, "open"));
}

// OK, close and cancel ask the owner; the dialog hides only on 1.
void TestEventRoutes() {
    HWND host = TestHostWindow();
    CTestClient client;
    CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
    HWND dialog = client.Window();

    SetRoutes(&client, true, false, false);
    g_callback = TEventLog();
    g_callback.answer = 0;
    PressButton(dialog, IDOK);
    CHECK(g_callback.calls == 1 && g_callback.event == ONX_DLGEVENT_OK);
    CHECK(g_callback.client == static_cast<CONXDeviceClient_0*>(&client));
    CHECK(g_callback.userData == &g_callback);
    CHECK(IsWindowVisible(dialog) && client.IsNonModalDialogOpen());

    SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);  // the close box
    CHECK(g_callback.calls == 2 && g_callback.event == ONX_DLGEVENT_CLOSE);
    CHECK(IsWindowVisible(dialog));

    g_callback.answer = 1;
    PressButton(dialog, IDOK);
    CHECK(g_callback.calls == 3 && !IsWindowVisible(dialog));
    CHECK(!client.IsNonModalDialogOpen());

    // The window route answers 1; wParam is the client, lParam the event.
    client.ShowDialogNonModal(host);
    SetRoutes(&client, false, true, false);
    g_window = {};
    PressButton(dialog, IDOK);
    CHECK(g_window.calls == 1 && g_window.lParam == ONX_DLGEVENT_OK);
    CHECK(g_window.wParam == reinterpret_cast<WPARAM>(static_cast<CONXDeviceClient_0*>(&client)));
    CHECK(!IsWindowVisible(dialog));

    // A posted thread message cannot answer: the dialog stays.
    client.ShowDialogNonModal(host);
    SetRoutes(&client, false, false, true);
    PressButton(dialog, IDOK);
    CHECK(IsWindowVisible(dialog));
    MSG msg;
    CHECK(PeekMessageA(&msg, reinterpret_cast<HWND>(-1), kEventThreadMsg, kEventThreadMsg,
                       PM_REMOVE));
    CHECK(msg.wParam == reinterpret_cast<WPARAM>(static_cast<CONXDeviceClient_0*>(&client)));
    CHECK(msg.lParam == ONX_DLGEVENT_OK);

    // Without an owner the dialog simply hides.
    CTestScriptDialog orphan;
    CHECK(orphan.Create(host));
    orphan.Show(true);
    PressButton(orphan.GetSafeHwnd(), IDOK);
    CHECK(orphan.HasWindow() && !orphan.IsVisible());
}

// The keyboard hook: the host's loop knows nothing of the dialog, yet Tab,
// Enter and Esc work in it, and the host gets a null message instead.
void TestKeyboardHook() {
    HWND host = TestHostWindow();
    CTestClient client;
    CHECK(client.ShowDialogNonModal(host) == EONX_ERR_NONE);
    HWND dialog = client.Window();
    HWND list = GetDlgItem(dialog, IDC_SP_LOG);
    SetRoutes(&client, true, false, false);
    g_callback = TEventLog();
    g_callback.answer = 0;
    SetForegroundWindow(dialog);
    SetFocus(list);
    PumpMessages(50);
    CHECK(GetFocus() == list);

    MSG msg;
    while (TakeMessage(&msg)) DispatchMessageA(&msg);
    PostMessageA(list, WM_KEYDOWN, VK_TAB, 0x000F0001);
    CHECK(PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE));  // peeked: untouched
    CHECK(msg.message == WM_KEYDOWN && msg.wParam == VK_TAB && msg.lParam == 0x000F0001);
    CHECK(TakeMessage(&msg));
    CHECK(msg.message == 0 && msg.wParam == 0 && msg.lParam == 0);
    CHECK(GetFocus() == GetDlgItem(dialog, IDC_SP_BROWSE));  // the next tab stop

    // Esc cancels, Enter presses the default button (OK, "Close").
    PostMessageA(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0x00010001);
    CHECK(TakeMessage(&msg) && msg.message == 0);
    CHECK(g_callback.calls == 1 && g_callback.event == ONX_DLGEVENT_CANCEL);
    SetFocus(list);
    PostMessageA(list, WM_KEYDOWN, VK_RETURN, 0x001C0001);
    CHECK(TakeMessage(&msg) && msg.message == 0);
    CHECK(g_callback.calls == 2 && g_callback.event == ONX_DLGEVENT_OK);
    CHECK(IsWindowVisible(dialog));  // answered 0

    // Keys for the host's own window pass unchanged.
    PostMessageA(host, WM_KEYDOWN, 'A', 0x001E0001);
    CHECK(TakeMessage(&msg) && msg.message == WM_KEYDOWN && msg.wParam == 'A');
}

// What the module hands to SetClipboardData, recorded through the DLL's
// import table: the system may store text its own way (Wine terminates CF_TEXT
// in place), but the module's bytes are what is tested.
struct {
    int calls = 0;
    std::string bytes;
} g_handedOver;

HANDLE WINAPI RecordSetClipboardData(UINT format, HANDLE data) {
    if (format == CF_TEXT && data) {
        ++g_handedOver.calls;
        const char* p = static_cast<const char*>(GlobalLock(data));
        g_handedOver.bytes.assign(p ? p : "", p ? GlobalSize(data) : 0);
        GlobalUnlock(data);
    }
    return SetClipboardData(format, data);
}

bool PatchImport(HMODULE module, const char* dll, const char* function, void* replacement) {
    BYTE* base = reinterpret_cast<BYTE*>(module);
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(
        base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& dir =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* imp = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + dir.VirtualAddress);
         imp->Name; ++imp) {
        if (_stricmp(reinterpret_cast<char*>(base + imp->Name), dll) != 0) continue;
        auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            auto* byName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<char*>(byName->Name), function) != 0) continue;
            DWORD old;
            VirtualProtect(&slots->u1.Function, sizeof(void*), PAGE_READWRITE, &old);
            slots->u1.Function = reinterpret_cast<ULONG_PTR>(replacement);
            VirtualProtect(&slots->u1.Function, sizeof(void*), old, &old);
            return true;
        }
    }
    return false;
}

void PutClipboardText(const char* text) {
    if (!OpenClipboard(nullptr)) return;
    EmptyClipboard();
    size_t n = std::strlen(text) + 1;
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, n);
    std::memcpy(GlobalLock(memory), text, n);
    GlobalUnlock(memory);
    SetClipboardData(CF_TEXT, memory);
    CloseClipboard();
}

// The Copy button's clipboard bytes and the list's horizontal extent.
void TestListBox() {
    CSimDevice sim;
    CTestClient client;
    client.Connect(&sim);
    CHECK(client.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    HWND dialog = client.Window();
    HWND list = GetDlgItem(dialog, IDC_SP_LOG);

    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("a"));
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("bc"));
    CHECK(PatchImport(GetModuleHandleA("OndDeviceClient.dll"), "user32.dll", "SetClipboardData",
                      reinterpret_cast<void*>(RecordSetClipboardData)));
    PressButton(dialog, IDC_SP_COPY);
    CHECK(g_handedOver.calls == 1);
    CHECK(g_handedOver.bytes == std::string("a\nbc\n", 5));  // LF only, no CR, no zero
    std::string bytes = ClipboardBytes();
    CHECK(bytes.size() == 5 && bytes.compare(0, 4, "a\nbc") == 0);

    // An empty list leaves the clipboard alone.
    PutClipboardText("keep");
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    PressButton(dialog, IDC_SP_COPY);
    CHECK(g_handedOver.calls == 1);
    CHECK(ClipboardBytes().compare(0, 5, std::string("keep\0", 5)) == 0);

    // The extent follows the widest line: none, short, then past the width.
    CTestScriptDialog* dlg = client.Dialog();
    RECT client_rect;
    GetClientRect(list, &client_rect);
    SendMessageA(list, LB_SETHORIZONTALEXTENT, 777, 0);
    dlg->RepairHorizontalScrollbarExtendInListBox(list);
    CHECK(SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0) == 0);
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("short"));
    dlg->RepairHorizontalScrollbarExtendInListBox(list);
    LRESULT shortExtent = SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0);
    CHECK(shortExtent > 0 && shortExtent < client_rect.right);
    std::string longLine(120, 'W');
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(longLine.c_str()));
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("x"));
    dlg->RepairHorizontalScrollbarExtendInListBox(list);
    LRESULT longExtent = SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0);
    CHECK(longExtent > client_rect.right);
    CHECK(longExtent > 20 * shortExtent);
    for (const char* line : {"Script output goes here", "line 2", "line 3"})
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
    SaveScreenshot(dialog, "script-processor-connected");
}

}  // namespace

void TestDialogs() {
    TestLifecycle();
    TestStatusText();
    TestEventRoutes();
    TestKeyboardHook();
    TestListBox();
}
