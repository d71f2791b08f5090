// The Terminal's window through the DLL, driven as a user drives it: keys
// typed into the input line and passed through the module's keyboard hook,
// clicks, resizing; the simulated device answers. Checks the controls, the
// bytes that reach the device, the list, the clipboard and the lock.
#include <cstring>
#include <string>
#include <vector>

#include "WinTest.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"
#include "terminal/Terminal.h"

namespace {

using CTestTerminal = CWindowed<CONXTerminal>;

int g_other;  // another lock owner, as a script run would be

std::vector<std::string> Lines(HWND dialog) { return ListLines(GetDlgItem(dialog, IDC_TERM_ANSWERS)); }

// Keys go to the input line's queue and reach it through the host's loop and
// the module's hook, as a keyboard's do.
void Type(HWND control, const char* text) {
    for (const char* c = text; *c; ++c)
        PostMessageA(control, WM_CHAR, static_cast<unsigned char>(*c), 1);
    PumpMessages(0);
}

void Key(HWND control, UINT key) {
    PostMessageA(control, WM_KEYDOWN, key, 1);
    PumpMessages(0);
}

// One tick of the receive poll, without waiting for the timer.
void Tick(HWND dialog) { SendMessageA(dialog, WM_TIMER, 1, 0); }

std::string Status(HWND dialog) { return ItemText(dialog, IDC_TERM_STATUS); }

// Types a line and presses Enter in the input line.
void SendTyped(HWND dialog, const char* text) {
    HWND input = GetDlgItem(dialog, IDC_TERM_INPUT);
    SetFocus(input);
    SetWindowTextA(input, "");
    Type(input, text);
    Key(input, VK_RETURN);
}

struct TControl {
    int id;
    const char* cls;
    const char* text;  // null: not checked (the status texts)
    int x, y, cx, cy;  // dialog units
    DWORD style;       // bits that must be set
};

const TControl kControls[] = {
    {IDC_TERM_CONFIG, "Button", nullptr, 3, 3, 348, 44, BS_GROUPBOX},
    // (The scroll bars' style bits come and go with the bars: TestReceiving.)
    {IDC_TERM_ANSWERS, "ListBox", nullptr, 3, 53, 348, 208, LBS_NOTIFY | LBS_NOINTEGRALHEIGHT},
    {IDC_TERM_INPUT, "Edit", "", 3, 264, 215, 14, ES_AUTOHSCROLL},
    {IDC_TERM_APPENDCR, "Button", "Append CR", 222, 264, 42, 14, BS_AUTOCHECKBOX},
    {IDC_TERM_CLEAR, "Button", "Clear", 265, 264, 28, 14, BS_PUSHBUTTON},
    {IDC_TERM_COPY, "Button", "Copy", 294, 264, 28, 14, BS_PUSHBUTTON},
    {IDOK, "Button", "Close", 323, 264, 28, 14, BS_DEFPUSHBUTTON},
    {IDC_TERM_STATUS, "Static", "", 3, 282, 348, 12, SS_SUNKEN},
};

// How the owner heard of OK and Cancel: it answers 0, so the window stays
// (hiding a window costs Wine seconds without a window manager).
struct {
    int calls = 0;
    uint32_t event = 99;
} g_events;

uint32_t KeepOpen(CONXDeviceClient_0*, void*, uint32_t event) {
    ++g_events.calls;
    g_events.event = event;
    return 0;
}

// The window as it opens: controls, font, icon, focus, channel status.
void TestLayout(CTestTerminal& terminal, HWND dialog, CSimDevice* sim) {
    CHECK_EQ_STR(WindowText(dialog), "Terminal");
    CHECK(GetFocus() == GetDlgItem(dialog, IDC_TERM_INPUT));
    for (const TControl& c : kControls) {
        HWND control = GetDlgItem(dialog, c.id);
        CHECK(control != nullptr);
        char cls[32] = "";
        GetClassNameA(control, cls, sizeof cls);
        CHECK_EQ_STR(cls, c.cls);
        if (c.text) CHECK_EQ_STR(WindowText(control), c.text);
        DWORD style = DWORD(GetWindowLongA(control, GWL_STYLE));
        if ((c.style & 0xF) != 0 && std::strcmp(c.cls, "Button") == 0) CHECK((style & 0xF) == (c.style & 0xF));
        else CHECK((style & c.style) == c.style);
        RECT units = {c.x, c.y, c.cx, c.cy};
        MapDialogRect(dialog, &units);
        RECT expected = {units.left, units.top, units.left + units.right, units.top + units.bottom};
        RECT actual = ChildRect(dialog, c.id);
        CHECK(EqualRect(&actual, &expected));
    }
    HGDIOBJ fixed = GetStockObject(SYSTEM_FIXED_FONT);
    CHECK(reinterpret_cast<HGDIOBJ>(SendDlgItemMessageA(dialog, IDC_TERM_ANSWERS, WM_GETFONT, 0, 0)) == fixed);
    CHECK(reinterpret_cast<HGDIOBJ>(SendDlgItemMessageA(dialog, IDC_TERM_INPUT, WM_GETFONT, 0, 0)) == fixed);
    CHECK(SendMessageA(dialog, WM_GETICON, ICON_SMALL, 0) != 0);
    CHECK(IsDlgButtonChecked(dialog, IDC_TERM_APPENDCR) == BST_CHECKED);
    CHECK((GetWindowLongA(dialog, GWL_EXSTYLE) & WS_EX_APPWINDOW) != 0);
    // The group box carries the channel status.
    CHECK_EQ_STR(ItemText(dialog, IDC_TERM_CONFIG),
                 std::string("Channel description: ") + sim->GetInfoString(0, 0) +
                     "\nChannel configuration: " + sim->GetInfoString(1, 0) + "\nState: open");
    // ... and draws it on three lines, not as one cut-off caption.
    CHECK((GetWindowLongA(GetDlgItem(dialog, IDC_TERM_CONFIG), GWL_STYLE) & BS_MULTILINE) != 0);

    // Shown again: the focus goes to the input line again.
    SetFocus(GetDlgItem(dialog, IDC_TERM_CLEAR));
    CHECK(terminal.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    CHECK(GetFocus() == GetDlgItem(dialog, IDC_TERM_INPUT));

    // The minimum size, and the anchors when it grows: the group box widens;
    // the list widens and grows; input and status widen and move down; the
    // buttons move.
    CHECK_EQ_STR(SmallestSize(dialog), "200x250");
    std::vector<int> ids;
    for (const TControl& c : kControls) ids.push_back(c.id);
    CHECK_EQ_STR(MovesOnGrowth(dialog, ids), "0 0 120 0|0 0 120 80|0 80 120 80|120 80 120 80|"
                                             "120 80 120 80|120 80 120 80|120 80 120 80|0 80 120 80|");
}

// Typed lines reach the device byte for byte and come back into the list.
// Types a line, sends it: "bytes the device got|status|what the input line kept".
std::string Sent(HWND dialog, CSimDevice* sim, const char* typed) {
    SendTyped(dialog, typed);
    return sim->TakeTransmitted() + "|" + Status(dialog) + "|" + ItemText(dialog, IDC_TERM_INPUT);
}

// Typed lines reach the device byte for byte and come back into the list.
void TestSending(CTestTerminal& terminal, HWND dialog, CSimDevice* sim) {
    Tick(dialog);
    ClickNow(dialog, IDC_TERM_CLEAR);
    sim->TakeTransmitted();
    CHECK_EQ_STR(Sent(dialog, sim, "hello"), "hello\r|Wrote \"hello\\r\" to device.|");
    Tick(dialog);
    CHECK_EQ_STR(Joined(Lines(dialog)), "hello|");
    // Escapes, and a zero byte that ends what is sent.
    CHECK_EQ_STR(Sent(dialog, sim, "A\\(66)\\(x43)\\t\\(0)zz"),
                 "ABC\t\r|Wrote \"A\\(66)\\(x43)\\t\\(0)zz\\r\" to device.|");
    // Append CR off: the bytes alone.
    SendDlgItemMessageA(dialog, IDC_TERM_APPENDCR, BM_CLICK, 0, 0);
    CHECK(IsDlgButtonChecked(dialog, IDC_TERM_APPENDCR) == BST_UNCHECKED);
    CHECK_EQ_STR(Sent(dialog, sim, "x\\n"), "x\n|Wrote \"x\\n\" to device.|");
    SendDlgItemMessageA(dialog, IDC_TERM_APPENDCR, BM_CLICK, 0, 0);
    CHECK(IsDlgButtonChecked(dialog, IDC_TERM_APPENDCR) == BST_CHECKED);
    // A bad escape: the parser's message, nothing sent, the text kept.
    CHECK_EQ_STR(Sent(dialog, sim, "bad\\q"), "|Invalid ESC sequence \"\\q\".|bad\\q");

    // A channel error: its text, the input kept, the lock released.
    sim->InjectFault("Transmit", 1);
    CHECK_EQ_STR(Sent(dialog, sim, "lost"),
                 std::string("|Error: ") + sim->GetInfoString(2, SIMDEV_ERR_INJECTED) + "|lost");
    CHECK(sim->LockOwner() == nullptr);

    // Another owner holds the lock (a script runs): the send waits 500 ms.
    CHECK(sim->Lock(&g_other, 0) == 0);
    DWORD start = GetTickCount();
    CHECK_EQ_STR(Sent(dialog, sim, "later"), "|Communication device is locked!|later");
    CHECK(GetTickCount() - start >= 450);
    CHECK(sim->LockOwner() == &g_other);
    sim->Unlock(&g_other);

    // No channel: its wording, and the status line of the group box.
    terminal.Connect(nullptr);
    CHECK_EQ_STR(Sent(dialog, sim, "nowhere"), "|Not connected to communication device!|nowhere");
    CHECK_EQ_STR(ItemText(dialog, IDC_TERM_CONFIG), "No communication device...");
    CHECK(sim->LockOwner() == nullptr);
    terminal.Connect(sim);
    CHECK(ItemText(dialog, IDC_TERM_CONFIG).rfind("Channel description: ", 0) == 0);
}

// Enter and Escape on each control; Close; the history keys.
void TestKeys(CTestTerminal& terminal, HWND dialog, CSimDevice* sim) {
    HWND input = GetDlgItem(dialog, IDC_TERM_INPUT);
    sim->TakeTransmitted();

    // Up and Down with no history: the keys are the input line's own.
    Type(input, "abc");
    Key(input, VK_UP);
    CHECK_EQ_STR(WindowText(input), "abc");

    // Escape in the input line empties it; the window stays.
    Key(input, VK_ESCAPE);
    CHECK_EQ_STR(WindowText(input), "");
    CHECK(IsWindowVisible(dialog));

    for (const char* line : {"one", "two", "two"}) SendTyped(dialog, line);
    SendDlgItemMessageA(dialog, IDC_TERM_APPENDCR, BM_CLICK, 0, 0);
    SendTyped(dialog, "two");  // the same text without CR: a new entry
    SendDlgItemMessageA(dialog, IDC_TERM_APPENDCR, BM_CLICK, 0, 0);
    CHECK_EQ_STR(sim->TakeTransmitted(), "one\rtwo\rtwo\rtwo");
    // Up from one past the end: the last, then back; Down wraps to the first.
    const struct {
        UINT key;
        const char* shown;
    } walk[] = {{VK_UP, "two"}, {VK_UP, "two"}, {VK_UP, "one"}, {VK_UP, "two"},
                {VK_DOWN, "one"}, {VK_DOWN, "two"}};
    for (const auto& step : walk) {
        Key(input, step.key);
        CHECK_EQ_STR(WindowText(input), step.shown);
        DWORD from = 0, to = 0;
        SendMessageA(input, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        CHECK(from == 3 && to == 3);
    }
    // The entry's own Append CR choice is not put back into the box.
    CHECK(IsDlgButtonChecked(dialog, IDC_TERM_APPENDCR) == BST_CHECKED);
    // Down right after a send shows the first entry.
    SendTyped(dialog, "three");
    Key(input, VK_DOWN);
    CHECK_EQ_STR(WindowText(input), "one");

    // Enter (the dialog's OK) with the focus elsewhere sends nothing and
    // does not close; on Close it asks the owner as a close does.
    _TONX_DLGEVENTDATA route = {};
    route.callback = KeepOpen;
    terminal.SetDlgEventData(&route);
    g_events.calls = 0;
    sim->TakeTransmitted();
    SetDlgItemTextA(dialog, IDC_TERM_STATUS, "unchanged");
    Tick(dialog);
    std::string listBefore = Joined(Lines(dialog));
    for (int id : {IDC_TERM_CLEAR, IDC_TERM_COPY, IDC_TERM_APPENDCR, IDC_TERM_ANSWERS}) {
        SetFocus(GetDlgItem(dialog, id));
        SendMessageA(dialog, WM_COMMAND, IDOK, 0);
        CHECK(IsWindowVisible(dialog));
    }
    CHECK_EQ_STR(sim->TakeTransmitted(), "");
    CHECK_EQ_STR(Status(dialog), "unchanged");
    CHECK_EQ_STR(Joined(Lines(dialog)), listBefore);
    CHECK_EQ_STR(WindowText(input), "one");
    CHECK(g_events.calls == 0);
    SetFocus(GetDlgItem(dialog, IDOK));
    Key(GetDlgItem(dialog, IDOK), VK_RETURN);
    CHECK(g_events.calls == 1 && g_events.event == ONX_DLGEVENT_OK);

    // Escape elsewhere is the dialog's Cancel.
    SetFocus(GetDlgItem(dialog, IDC_TERM_ANSWERS));
    Key(GetDlgItem(dialog, IDC_TERM_ANSWERS), VK_ESCAPE);
    CHECK(g_events.calls == 2 && g_events.event == ONX_DLGEVENT_CANCEL);
    CHECK_EQ_STR(WindowText(input), "one");
    CHECK(IsWindowVisible(dialog));
    route.callback = nullptr;
    terminal.SetDlgEventData(&route);
}

// Received text: lines split across ticks, line ends, Clear, Copy, the cap.
void TestReceiving(HWND dialog, CSimDevice* sim) {
    HWND list = GetDlgItem(dialog, IDC_TERM_ANSWERS);
    Tick(dialog);
    ClickNow(dialog, IDC_TERM_CLEAR);

    sim->PreloadReceive("abc");
    Tick(dialog);
    CHECK_EQ_STR(Joined(Lines(dialog)), "abc|");
    sim->PreloadReceive("def\r\n");
    Tick(dialog);
    CHECK_EQ_STR(Joined(Lines(dialog)), "abcdef|");
    sim->PreloadReceive(std::string("a\r\r\nb\n\n", 7));
    Tick(dialog);
    CHECK_EQ_STR(Joined(Lines(dialog)), "abcdef|a|b||");

    // Copy: each line with a bare line feed. The buffer has no terminating
    // zero; Wine writes one over its last byte when it takes the text.
    ClickNow(dialog, IDC_TERM_COPY);
    std::string copied = ClipboardBytes();
    const std::string expected = "abcdef\na\nb\n\n";
    CHECK(copied.size() >= expected.size());
    copied.resize(expected.size());
    if (!copied.empty() && copied.back() == '\0') copied.back() = '\n';
    CHECK_EQ_STR(copied, expected);

    // Clear: an unfinished line's continuation starts a new line.
    sim->PreloadReceive("unfini");
    Tick(dialog);
    ClickNow(dialog, IDC_TERM_CLEAR);
    CHECK(SendMessageA(list, LB_GETCOUNT, 0, 0) == 0);
    CHECK(SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0) == 0);
    sim->PreloadReceive("shed\r\n");
    Tick(dialog);
    CHECK_EQ_STR(Joined(Lines(dialog)), "shed|");

    // 5003 lines in one tick: the list keeps 5001, scrolled to its end, its
    // scroll range as wide as the widest line.
    std::string many;
    for (int i = 1; i <= 5003; ++i) many += "line " + std::to_string(i) + "\r\n";
    std::string longest = "the longest line of them all " + std::string(100, '=');
    many += longest;
    ClickNow(dialog, IDC_TERM_CLEAR);
    sim->PreloadReceive(many);
    DWORD start = GetTickCount();
    Tick(dialog);
    std::printf("terminal: 5004 lines in one tick: %lu ms\n", GetTickCount() - start);
    std::vector<std::string> lines = Lines(dialog);
    CHECK(lines.size() == 5001);
    CHECK(!lines.empty() && lines.front() == "line 4" && lines.back() == longest);
    // Both scroll bars are up now.
    CHECK((GetWindowLongA(list, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL)) == (WS_VSCROLL | WS_HSCROLL));
    LRESULT top = SendMessageA(list, LB_GETTOPINDEX, 0, 0);
    LRESULT perPage = 0;
    RECT client;
    GetClientRect(list, &client);
    LRESULT itemHeight = SendMessageA(list, LB_GETITEMHEIGHT, 0, 0);
    if (itemHeight > 0) perPage = (client.bottom - client.top) / itemHeight;
    CHECK(top >= 5001 - perPage - 1 && top <= 5000);
    HDC dc = GetDC(list);
    HGDIOBJ old = SelectObject(dc, GetStockObject(SYSTEM_FIXED_FONT));
    SIZE widest = {};
    GetTextExtentPoint32A(dc, longest.c_str(), int(longest.size()), &widest);
    SelectObject(dc, old);
    ReleaseDC(list, dc);
    CHECK(SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0) == widest.cx);
    sim->PreloadReceive("!\r\n");
    Tick(dialog);
    lines = Lines(dialog);
    CHECK(lines.size() == 5001 && lines.front() == "line 4" && lines.back() == longest + "!");

    ClickNow(dialog, IDC_TERM_CLEAR);
    sim->PreloadReceive("> ver\r\nversion 1.0\r\nready\r\n> ");
    Tick(dialog);
    SetDlgItemTextA(dialog, IDC_TERM_INPUT, "status\\r\\(10)");
    SetDlgItemTextA(dialog, IDC_TERM_STATUS, "Wrote \"ver\\r\" to device.");
    SaveScreenshot(dialog, "terminal");
}

// A device that never stops talking: the window still serves its messages,
// and the list stays capped.
void TestTalkingDevice(HWND dialog, CSimDevice* sim) {
    HWND input = GetDlgItem(dialog, IDC_TERM_INPUT);
    SendTyped(dialog, "marker");
    sim->SetReceiveStream(std::string(78, '#') + "\r\n", 0);
    PumpMessages(600);  // the timer runs, each tick reads its full budget
    // A message posted to the window waits at most for the tick in progress.
    DWORD worst = 0;
    int served = 0;
    for (int i = 0; i < 8; ++i) {
        // Down, then the posted Up: back at the last entry, "marker".
        if (i > 0) SendMessageA(dialog, 0x8001, VK_DOWN, 0);
        SetWindowTextA(input, "");
        DWORD posted = GetTickCount();
        PostMessageA(dialog, 0x8001, VK_UP, 0);
        DWORD start = GetTickCount();
        while (WindowText(input) != "marker" && GetTickCount() - start < 5000) PumpMessages(0);
        served += WindowText(input) == "marker";
        DWORD took = GetTickCount() - posted;
        worst = took > worst ? took : worst;
        PumpMessages(37 * (i + 1) % 200);  // at other points of the timer's period
    }
    std::printf("terminal: a posted message under a device that never stops: at most %lu ms\n", worst);
    // A tick that read until the device fell silent would never let the
    // message through; how fast it gets through is the figure printed above,
    // not a check (a loaded machine stretches it).
    CHECK(served == 8);
    CHECK(SendMessageA(GetDlgItem(dialog, IDC_TERM_ANSWERS), LB_GETCOUNT, 0, 0) <= 5001);
    sim->SetReceiveStream("", 0);
    Tick(dialog);
    CHECK(sim->LockOwner() == nullptr);
}

typedef CONXDeviceClient_0* (*FnCreateInstance)(uint32_t type);
typedef void (*FnDeleteInstance)(CONXDeviceClient_0* object);

// Closing, deleting, the parent going and the module unloaded, each with a
// poll due and another owner holding the lock: nothing breaks, and the
// Terminal leaves no lock behind.
void TestEndings(CSimDevice* sim) {
    sim->PreloadReceive("pending\r\n");
    CHECK(sim->Lock(&g_other, 0) == 0);
    {
        // Closed with a poll due, then deleted with a poll due.
        auto* terminal = new CTestTerminal;
        HWND dialog = terminal->Open(sim);
        PostMessageA(dialog, WM_TIMER, 1, 0);
        PostMessageA(dialog, WM_CLOSE, 0, 0);
        PumpMessages(50);
        CHECK(IsWindow(dialog) && !IsWindowVisible(dialog));
        CHECK_EQ_STR(ItemText(dialog, IDC_TERM_CONFIG), "");  // busy: blank for a tick
        PostMessageA(dialog, WM_TIMER, 1, 0);
        delete terminal;
        PumpMessages(50);
        CHECK(!IsWindow(dialog));
    }
    {
        HWND parent = NewHostWindow("parent");
        CTestTerminal terminal;
        HWND dialog = terminal.Open(sim, parent);
        PostMessageA(dialog, WM_TIMER, 1, 0);
        DestroyWindow(parent);
        PumpMessages(50);
        CHECK(!IsWindow(dialog));
        CHECK(!terminal.IsNonModalDialogOpen());
    }
    {
        // A second copy of the module, loaded and unloaded as a host does it.
        std::string copy;
        HMODULE module = LoadModuleCopy("OndTerminalUnload.dll", &copy);
        CHECK(module != nullptr);
        if (module) {
            auto create = reinterpret_cast<FnCreateInstance>(
                reinterpret_cast<void*>(GetProcAddress(module, "OndDeviceClientCreateInstance")));
            auto remove = reinterpret_cast<FnDeleteInstance>(
                reinterpret_cast<void*>(GetProcAddress(module, "OndDeviceClientDeleteInstance")));
            CONXDeviceClient_0* client = create ? create(ONX_OBJTYPE_TERMINAL) : nullptr;
            CHECK(client != nullptr);
            if (client && remove) {
                client->Connect(sim);
                CHECK(client->ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
                HWND dialog = FindWindowA("#32770", "Terminal");
                CHECK(dialog != nullptr);
                if (dialog) PostMessageA(dialog, WM_TIMER, 1, 0);
                PumpMessages(20);
                if (dialog) PostMessageA(dialog, WM_TIMER, 1, 0);
                remove(client);
            }
            FreeLibrary(module); PumpMessages(50);
        }
        DeleteFileA(copy.c_str());
    }
    CHECK(sim->LockOwner() == &g_other);
    CHECK(sim->LockCount() == 1);
    sim->Unlock(&g_other);
    CHECK(sim->LockOwner() == nullptr);
    CHECK(sim->PendingReceive() == 9);  // nobody read while the lock was taken
}

}  // namespace

void TestTerminalWindow() {
    CSimDevice sim;
    {
        // One window for these groups: each window that goes costs Wine
        // seconds without a window manager.
        CTestTerminal terminal;
        HWND dialog = terminal.Open(&sim);
        CHECK(dialog != nullptr);
        if (dialog) {
            TestLayout(terminal, dialog, &sim);
            TestKeys(terminal, dialog, &sim);  // first: it needs an empty history
            TestSending(terminal, dialog, &sim);
            TestReceiving(dialog, &sim);
            TestTalkingDevice(dialog, &sim);
        }
    }
    TestEndings(&sim);
    CHECK(sim.LockOwner() == nullptr);
}
