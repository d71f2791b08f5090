// The Script Processor's own window and the operator's questions, through the
// DLL: real script runs on the worker thread, driven as a user does (clicks,
// the file dialog, answering questions) while the test pumps like a host.
#include <cstring>
#include <string>
#include <vector>

#include "WinTest.h"
#include "frame/DeviceClient.h"
#include "frame/Dialog.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"
#include "scriptrt/ScriptProcessor.h"

namespace {

// The object as the factory makes it, with a look at its window.
class CTestProcessor : public CONXScriptProcessor {
public:
    HWND Window() { return m_pDialog ? m_pDialog->GetSafeHwnd() : nullptr; }
};

std::string g_folder;  // the scripts, in the temporary folder

std::string WriteScript(const char* name, const char* text) {
    std::string path = g_folder + name;
    FILE* f = std::fopen(path.c_str(), "wb");
    if (f) {
        std::fputs(text, f);
        std::fclose(f);
    }
    return path;
}

// The text of a message box: its static control that carries text.
BOOL CALLBACK FindText(HWND child, LPARAM out) {
    char cls[32] = "";
    GetClassNameA(child, cls, sizeof cls);
    std::string text = WindowText(child);
    if (_stricmp(cls, "Static") == 0 && !text.empty()) {
        *reinterpret_cast<std::string*>(out) = text;
        return FALSE;
    }
    return TRUE;
}

std::string BoxText(HWND box) {
    std::string text;
    EnumChildWindows(box, FindText, reinterpret_cast<LPARAM>(&text));
    return text;
}

HWND FindDialog(const char* caption) { return FindWindowA("#32770", caption); }

// A window that is modal on the test's own thread (a file dialog, an error
// box) blocks the test inside a click; a helper thread answers it.
struct TAnswer {
    TAnswer(const char* caption_, const std::string& fileName_ = std::string())
        : caption(caption_), fileName(fileName_) {}
    const char* caption;
    std::string fileName;  // typed into a file dialog; empty: a message box
    std::string seenText;  // the message box's text
    bool seen = false;
    HANDLE thread = nullptr;
    int rounds = 1500;  // of 20 ms
    volatile bool giveUp = false;
    bool every = false;  // answer every such message box until giveUp
    std::vector<std::string> texts;
};

// Answers message boxes of that caption one after the other.
DWORD WINAPI AnswerEveryBox(TAnswer* answer) {
    std::vector<HWND> answered;
    for (int i = 0; i < answer->rounds && !answer->giveUp; ++i) {
        HWND box = FindDialog(answer->caption);
        bool known = false;
        for (HWND a : answered) known = known || a == box;
        if (box && !known && IsWindowVisible(box)) {
            Sleep(200);
            answer->texts.push_back(BoxText(box));
            answered.push_back(box);
            answer->seen = true;
            PostMessageA(box, WM_COMMAND, IDOK, 0);
        }
        Sleep(20);
    }
    return 0;
}

DWORD WINAPI AnswerThread(void* p) {
    auto* answer = static_cast<TAnswer*>(p);
    if (answer->every) return AnswerEveryBox(answer);
    for (int i = 0; i < answer->rounds && !answer->seen && !answer->giveUp; ++i) {
        HWND box = FindDialog(answer->caption);
        if (box && IsWindowVisible(box)) {
            Sleep(200);  // let it finish its initialisation
            if (answer->fileName.empty()) {
                answer->seenText = BoxText(box);
            } else {
                HWND name = GetDlgItem(box, 0x47C);  // the file name combo
                if (!name) name = GetDlgItem(box, 0x480);
                SetWindowTextA(name, answer->fileName.c_str());
            }
            answer->seen = true;
            PostMessageA(box, WM_COMMAND, IDOK, 0);
            break;
        }
        Sleep(20);
    }
    return 0;
}

void StartAnswer(TAnswer* answer) { answer->thread = CreateThread(nullptr, 0, AnswerThread, answer, 0, nullptr); }

bool EndAnswer(TAnswer* answer) {
    if (!answer->thread) return false;
    PumpUntil([&] { return WaitForSingleObject(answer->thread, 0) == WAIT_OBJECT_0; }, 40000);
    CloseHandle(answer->thread);
    answer->thread = nullptr;
    return answer->seen;
}

// Picks the script through the "..." button and the open-file dialog.
void Browse(HWND dialog, const std::string& path) {
    TAnswer answer("Open a script file", path);
    StartAnswer(&answer);
    Click(dialog, IDC_SP_BROWSE);
    CHECK(EndAnswer(&answer));
    PumpMessages(100);
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_PATH), path);
}

bool Idle(HWND dialog) { return ItemText(dialog, IDC_SP_EXECUTE) == "Execute script"; }

// Runs the chosen script to its end; false if it does not end in time.
bool RunToEnd(HWND dialog) {
    Click(dialog, IDC_SP_EXECUTE);
    PumpUntil([&] { return !Idle(dialog); }, 2000);
    return PumpUntil([&] { return Idle(dialog); }, 60000);
}

const char kProgressScript[] =
    "var dword i;\n"
    "print(\"start\\n\");\n"
    "i = 0;\n"
    "while (i <= 100) { print(\"\\rprogress \", i, \"%\"); i = i + 25; }\n"
    "print(\"\\n\");\n"
    "print(\"count 100\\rcount 7\\n\");\n"
    "print(\"ab\");\n"
    "print(\"c\\n\");\n"
    "print(\"abc\\rX\\n\");\n";

const char kLoopScript[] = "print(\"looping\\n\");\nwhile (1) {}\n";

// Browse, a run whose output uses carriage returns, Copy, minimum size.
void TestRunAndLog(CSimDevice* sim) {
    CTestProcessor processor;
    processor.Connect(sim);
    CHECK(processor.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    HWND dialog = processor.Window();
    CHECK(dialog != nullptr);
    if (!dialog) return;
    CHECK_EQ_STR(WindowText(dialog), "Script processor");
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_PATH), "");
    CHECK(!IsWindowEnabled(GetDlgItem(dialog, IDC_SP_EXECUTE)));
    CHECK(!IsWindowEnabled(GetDlgItem(dialog, IDC_SP_EDIT)));
    CHECK(Idle(dialog));

    // Edit without a file (the handler, though the button is disabled).
    TAnswer noFile("Error");
    StartAnswer(&noFile);
    Click(dialog, IDC_SP_EDIT);
    CHECK(EndAnswer(&noFile));
    CHECK_EQ_STR(noFile.seenText, "No file name present");

    // New script: an empty file, then the editor.
    std::string fresh = g_folder + "fresh.dcs";
    DeleteFileA(fresh.c_str());
    TAnswer save("New script file", fresh);
    TAnswer shellError("Error");
    shellError.every = true;
    StartAnswer(&save);
    StartAnswer(&shellError);
    Click(dialog, IDC_SP_NEW);
    CHECK(EndAnswer(&save));
    // The editor registered for text files opens it (Wine's notepad), or,
    // where none is registered, the shell's failure is shown.
    HWND editor = nullptr;
    auto shellFailed = [&] {
        for (const std::string& text : shellError.texts)
            if (text.rfind("ShellExecute error ", 0) == 0) return true;
        return false;
    };
    PumpUntil([&] {
        return shellFailed() || (editor = FindWindowA("Notepad", nullptr)) != nullptr;
    }, 20000);
    shellError.giveUp = true;
    EndAnswer(&shellError);
    if (editor) PostMessageA(editor, WM_CLOSE, 0, 0);
    for (const std::string& text : shellError.texts) std::printf("new script: \"%s\"\n", text.c_str());
    CHECK(editor != nullptr || shellFailed());
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_PATH), fresh);
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    CHECK(GetFileAttributesExA(fresh.c_str(), GetFileExInfoStandard, &attributes) &&
          attributes.nFileSizeLow == 0);

    std::string path = WriteScript("progress.dcs", kProgressScript);
    Browse(dialog, path);
    CHECK(IsWindowEnabled(GetDlgItem(dialog, IDC_SP_EXECUTE)));
    CHECK(RunToEnd(dialog));
    HWND log = GetDlgItem(dialog, IDC_SP_LOG);
    CHECK_EQ_STR(Joined(ListLines(log)), "start|progress 100%|count 700|abc|Xbc|");
    CHECK(sim->LockOwner() == nullptr);  // the run unlocked the channel
    SaveScreenshot(dialog, "scriptprocessor-log");

    // Copy hands the log to the clipboard (its exact bytes: the dialog base's test).
    if (OpenClipboard(nullptr)) {
        EmptyClipboard();
        CloseClipboard();
    }
    Click(dialog, IDC_SP_COPY);
    PumpMessages(100);
    CHECK(IsClipboardFormatAvailable(CF_TEXT));

    // A second run starts with an empty log.
    CHECK(RunToEnd(dialog));
    CHECK(SendMessageA(log, LB_GETCOUNT, 0, 0) == 5);

    // The list keeps the last 5000 lines.
    Browse(dialog, WriteScript("many.dcs", "var dword i;\ni = 1;\n"
                                           "while (i <= 5003) { print(\"line \", i, \"\\n\"); i = i + 1; }\n"));
    DWORD started = GetTickCount();
    CHECK(RunToEnd(dialog));
    std::printf("5003 lines in %lu ms\n", GetTickCount() - started);
    std::vector<std::string> many = ListLines(log);
    CHECK(many.size() == 5000);
    CHECK(!many.empty() && many.front() == "line 4" && many.back() == "line 5003");
    Browse(dialog, path);

    // Minimum size: the initial width, 250 pixels high; anchors follow.
    RECT initial;
    GetWindowRect(dialog, &initial);
    RECT logBefore = ChildRect(dialog, IDC_SP_LOG), runBefore = ChildRect(dialog, IDC_SP_EXECUTE);
    RECT labelBefore = ChildRect(dialog, IDC_SP_PATHLABEL);
    SetWindowPos(dialog, nullptr, 0, 0, 100, 100, SWP_NOMOVE | SWP_NOZORDER);
    RECT small;
    GetWindowRect(dialog, &small);
    CHECK(small.right - small.left == initial.right - initial.left);
    CHECK(small.bottom - small.top == 250);
    SetWindowPos(dialog, nullptr, 0, 0, initial.right - initial.left + 120,
                 initial.bottom - initial.top + 80, SWP_NOMOVE | SWP_NOZORDER);
    RECT logAfter = ChildRect(dialog, IDC_SP_LOG), runAfter = ChildRect(dialog, IDC_SP_EXECUTE);
    RECT labelAfter = ChildRect(dialog, IDC_SP_PATHLABEL);
    CHECK(logAfter.right - logBefore.right == 120 && logAfter.bottom - logBefore.bottom == 80);
    CHECK(logAfter.left == logBefore.left && logAfter.top == logBefore.top);
    CHECK(runAfter.left - runBefore.left == 120 && runAfter.top - runBefore.top == 80);
    CHECK(labelAfter.left == labelBefore.left && labelAfter.top - labelBefore.top == 80);
    SetWindowPos(dialog, nullptr, 0, 0, initial.right - initial.left,
                 initial.bottom - initial.top, SWP_NOMOVE | SWP_NOZORDER);

    // Without a channel nothing starts.
    processor.Connect(nullptr);
    TAnswer noDevice("Error");
    StartAnswer(&noDevice);
    Click(dialog, IDC_SP_EXECUTE);
    CHECK(EndAnswer(&noDevice));
    CHECK_EQ_STR(noDevice.seenText, "No communication device available!");
    PumpMessages(100);
    CHECK(Idle(dialog));
    CHECK(SendMessageA(log, LB_GETCOUNT, 0, 0) == 0);  // cleared all the same
}

// Stop during an endless loop: the button turns back.
void TestStop(CSimDevice* sim) {
    CTestProcessor processor;
    processor.Connect(sim);
    CHECK(processor.ShowDialogNonModal(TestHostWindow()) == EONX_ERR_NONE);
    HWND dialog = processor.Window();
    if (!dialog) return;
    Browse(dialog, WriteScript("loop.dcs", kLoopScript));
    Click(dialog, IDC_SP_EXECUTE);
    CHECK(PumpUntil([&] { return ItemText(dialog, IDC_SP_EXECUTE) == "Stop script"; }, 2000));
    PumpMessages(500);
    CHECK(!Idle(dialog));  // still looping
    CHECK(sim->LockOwner() == &processor);
    HWND log = GetDlgItem(dialog, IDC_SP_LOG);
    CHECK_EQ_STR(Joined(ListLines(log)), "looping|");

    // The run ends as a failure: its message comes up on this thread.
    TAnswer failed("Error");
    StartAnswer(&failed);
    Click(dialog, IDC_SP_EXECUTE);
    CHECK(EndAnswer(&failed));
    CHECK(failed.seenText.rfind("Error executing script: ", 0) == 0);
    CHECK(PumpUntil([&] { return Idle(dialog); }, 10000));
    CHECK(sim->LockOwner() == nullptr);
    // The engine's diagnostic reached the log after the first line.
    std::vector<std::string> lines = ListLines(log);
    CHECK(lines.size() >= 2 && lines[0] == "looping");
}

// Closing during a run always ends it: the object deleted, the parent window
// destroyed, and a question left open by the operator.
void TestCloseDuringRun(CSimDevice* sim) {
    std::string loop = WriteScript("loop.dcs", kLoopScript);
    {
        auto* processor = new CTestProcessor;
        processor->Connect(sim);
        processor->ShowDialogNonModal(TestHostWindow());
        HWND dialog = processor->Window();
        Browse(dialog, loop);
        Click(dialog, IDC_SP_EXECUTE);
        CHECK(PumpUntil([&] { return sim->LockOwner() == processor; }, 5000));
        PumpMessages(300);
        DWORD start = GetTickCount();
        delete processor;
        CHECK(GetTickCount() - start < 10000);
        CHECK(!IsWindow(dialog));
        CHECK(sim->LockOwner() == nullptr);
    }
    {
        // The host's window goes first, taking the dialog with it.
        HWND parent = CreateWindowA("OndWinTestHost", "parent", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0,
                                    0, 300, 200, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
        CTestProcessor processor;
        processor.Connect(sim);
        processor.ShowDialogNonModal(parent);
        HWND dialog = processor.Window();
        Browse(dialog, loop);
        Click(dialog, IDC_SP_EXECUTE);
        CHECK(PumpUntil([&] { return sim->LockOwner() == &processor; }, 5000));
        DestroyWindow(parent);
        CHECK(!IsWindow(dialog));
        CHECK(sim->LockOwner() == nullptr);
        CHECK(!processor.IsNonModalDialogOpen());
    }
    {
        // A question is open on the worker thread when the object goes.
        auto* processor = new CTestProcessor;
        processor->Connect(sim);
        processor->ShowDialogNonModal(TestHostWindow());
        HWND dialog = processor->Window();
        Browse(dialog, WriteScript("ask.dcs",
                                   "var dword v;\nv = userinputdword(\"Left open\", \"P\", 1);\n"
                                   "while (1) {}\n"));
        Click(dialog, IDC_SP_EXECUTE);
        CHECK(PumpUntil([&] { return FindDialog("Left open") != nullptr; }, 10000));
        delete processor;
        CHECK(FindDialog("Left open") == nullptr);
        CHECK(sim->LockOwner() == nullptr);
    }
}

// An operator question answered by the test: a value beyond the limit, the
// message, then a valid value; then a list question.
void TestOperatorDialogs(CSimDevice* sim) {
    CTestProcessor processor;
    processor.Connect(sim);
    processor.ShowDialogNonModal(TestHostWindow());
    HWND dialog = processor.Window();
    if (!dialog) return;
    Browse(dialog, WriteScript("questions.dcs",
                               "var dword v;\nvar dword ok;\nvar int32 pick;\n"
                               "v = userinputdword(\"Operator test\", \"A number from 10 to 20\", 50, 10, 20, &ok);\n"
                               "print(\"value \", v, \" confirmed \", ok, \"\\n\");\n"
                               "pick = userlistinput(\"Pick test\", \"\", \"alpha\" + chr(0) + \"beta\" + "
                               "chr(0) + \"gamma with a longer text\" + chr(0), 1, &ok);\n"
                               "print(\"picked \", pick, \" confirmed \", ok, \"\\n\");\n"
                               "var string t;\n"
                               "t = userinputstring(\"Text test\", \"\", \"abc\", &ok);\n"
                               "messagebox(\"Note\", \"got \" + t);\n"
                               "print(\"text \", t, \" confirmed \", ok, \"\\n\");\n"));
    Click(dialog, IDC_SP_EXECUTE);

    HWND ask = nullptr;
    CHECK(PumpUntil([&] { return (ask = FindDialog("Operator test")) != nullptr; }, 10000));
    if (!ask) return;
    PumpMessages(300);
    CHECK_EQ_STR(ItemText(ask, IDC_UI_PROMPT), "A number from 10 to 20");
    CHECK_EQ_STR(ItemText(ask, IDC_UI_INPUT), "20");  // the default, clamped
    SaveScreenshot(ask, "userinput");

    SetDlgItemTextA(ask, IDC_UI_INPUT, "25");
    PostMessageA(ask, WM_COMMAND, IDOK, 0);
    HWND box = nullptr;
    CHECK(PumpUntil([&] { return (box = FindDialog("Error")) != nullptr; }, 10000));
    if (box) {
        PumpMessages(300);
        CHECK_EQ_STR(BoxText(box), "Value must be <= 20");
        CHECK(GetWindow(box, GW_OWNER) == ask);
        SaveScreenshot(box, "userinput-error");
        PostMessageA(box, WM_COMMAND, IDOK, 0);
        CHECK(PumpUntil([&] { return FindDialog("Error") == nullptr; }, 5000));
    }
    CHECK(IsWindow(ask));  // still asking

    // Not a number: the field shows the current value again.
    SetDlgItemTextA(ask, IDC_UI_INPUT, "x");
    PostMessageA(ask, WM_COMMAND, IDOK, 0);
    CHECK(PumpUntil([&] { return ItemText(ask, IDC_UI_INPUT) == "20"; }, 5000));
    CHECK(IsWindow(ask));

    SetDlgItemTextA(ask, IDC_UI_INPUT, "12");
    PostMessageA(ask, WM_COMMAND, IDOK, 0);
    CHECK(PumpUntil([&] { return !IsWindow(ask); }, 5000));

    HWND pick = nullptr;
    CHECK(PumpUntil([&] { return (pick = FindDialog("Pick test")) != nullptr; }, 10000));
    if (pick) {
        PumpMessages(300);
        HWND list = GetDlgItem(pick, IDC_ULI_LIST);
        CHECK_EQ_STR(ItemText(pick, IDC_ULI_PROMPT), "Select an item");
        CHECK_EQ_STR(Joined(ListLines(list)), "alpha|beta|gamma with a longer text|");
        CHECK(SendMessageA(list, LB_GETCURSEL, 0, 0) == 1);
        SaveScreenshot(pick, "userlistinput");
        SendMessageA(list, LB_SETCURSEL, 2, 0);
        PostMessageA(pick, WM_COMMAND, IDOK, 0);
    }

    // A text question with an empty prompt, then a message with its caption
    // first, as the script gives them.
    HWND text = nullptr;
    CHECK(PumpUntil([&] { return (text = FindDialog("Text test")) != nullptr; }, 10000));
    if (text) {
        PumpMessages(300);
        CHECK_EQ_STR(ItemText(text, IDC_UI_PROMPT), "Enter information");
        CHECK_EQ_STR(ItemText(text, IDC_UI_INPUT), "abc");
        SetDlgItemTextA(text, IDC_UI_INPUT, "typed text");
        PostMessageA(text, WM_COMMAND, IDOK, 0);
    }
    HWND note = nullptr;
    CHECK(PumpUntil([&] { return (note = FindDialog("Note")) != nullptr; }, 10000));
    if (note) {
        PumpMessages(300);
        CHECK_EQ_STR(BoxText(note), "got typed text");
        CHECK(GetWindow(note, GW_OWNER) == nullptr);
        PostMessageA(note, WM_COMMAND, IDOK, 0);
    }
    CHECK(PumpUntil([&] { return Idle(dialog); }, 10000));
    CHECK_EQ_STR(Joined(ListLines(GetDlgItem(dialog, IDC_SP_LOG))),
                 "value 12 confirmed 1|picked 2 confirmed 1|text typed text confirmed 1|");
    // The object's own prompt is back as it was.
    CHECK(processor.GetRunContext()->m_pOperator == processor.OwnOperatorPrompt());
    CHECK(processor.OwnOperatorPrompt() != nullptr);
}

// A thousand calls deep on the worker thread; far deeper the run ends with
// the engine's diagnostic, and the window stays.
void TestDeepRecursion(CSimDevice* sim) {
    CTestProcessor processor;
    processor.Connect(sim);
    processor.ShowDialogNonModal(TestHostWindow());
    HWND dialog = processor.Window();
    if (!dialog) return;
    const char* f = "func f(var int64 n) { var int64 r; var string s; r = 0;"
                    " if (n > 0) { r = 1 + f(n - 1); } f = r; }\n";
    Browse(dialog, WriteScript("deep.dcs", (std::string(f) + "print(f(1000), \"\\n\");\n").c_str()));
    CHECK(RunToEnd(dialog));
    HWND log = GetDlgItem(dialog, IDC_SP_LOG);
    CHECK_EQ_STR(Joined(ListLines(log)), "1000|");

    Browse(dialog, WriteScript("deeper.dcs", (std::string(f) + "print(f(1000000));\n").c_str()));
    TAnswer failed("Error");
    StartAnswer(&failed);
    Click(dialog, IDC_SP_EXECUTE);
    CHECK(EndAnswer(&failed));
    CHECK(failed.seenText.rfind("Error executing script: ", 0) == 0);
    CHECK(PumpUntil([&] { return Idle(dialog); }, 10000));
    std::vector<std::string> lines = ListLines(log);
    CHECK(lines.size() == 1 && lines[0].rfind("out of memory error near line 1/column ", 0) == 0);
    CHECK(IsWindow(dialog));
}

}  // namespace

void TestScriptWindow() {
    char temp[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, temp);
    g_folder = std::string(temp) + "ondwin\\";
    CreateDirectoryA(g_folder.c_str(), nullptr);

    CSimDevice sim;
    TestRunAndLog(&sim);
    TestStop(&sim);
    TestOperatorDialogs(&sim);
    TestDeepRecursion(&sim);
    TestCloseDuringRun(&sim);
}
