// The Script Processor's own window and the operator's questions, through the
// DLL: real script runs on the worker thread, driven as a user does (clicks,
// the file dialog, answering questions) while the test pumps like a host.
#include <string>
#include <vector>

#include "WinTest.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"
#include "scriptrt/ScriptProcessor.h"

namespace {

using CTestProcessor = CWindowed<CONXScriptProcessor>;

std::string g_folder;  // the scripts, in the temporary folder

std::string WriteScript(const char* name, const std::string& text) { return WriteBytes(g_folder + name, text); }

// Picks the script through the "..." button and the open-file dialog.
void Browse(HWND dialog, const std::string& path) {
    Drive([&] { Click(dialog, IDC_SP_BROWSE); }, [&] { CHECK(AnswerFileDialog("Open a script file", path)); });
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_PATH), path);
}

// A click whose handler shows an error box on this thread: the box's text.
std::string ErrorAfter(HWND dialog, int id) {
    std::string text;
    Drive([&] { Click(dialog, id); }, [&] { text = AnswerBox("Error", IDOK).text; });
    return text;
}

// A window of the script's worker thread: waited for while this thread pumps,
// then given time to settle.
HWND Await(const char* caption) {
    HWND found = nullptr;
    CHECK(PumpUntil([&] { return (found = FindDialog(caption)) != nullptr; }, 10000));
    if (found) PumpMessages(300);
    return found;
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
    HWND dialog = processor.Open(sim);
    CHECK(dialog != nullptr);
    if (!dialog) return;
    CHECK_EQ_STR(WindowText(dialog), "Script processor");
    CHECK_EQ_STR(ItemText(dialog, IDC_SP_PATH), "");
    CHECK(!IsWindowEnabled(GetDlgItem(dialog, IDC_SP_EXECUTE)));
    CHECK(!IsWindowEnabled(GetDlgItem(dialog, IDC_SP_EDIT)));
    CHECK(Idle(dialog));

    // Edit without a file (the handler, though the button is disabled).
    CHECK_EQ_STR(ErrorAfter(dialog, IDC_SP_EDIT), "No file name present");

    // New script: an empty file, then the editor.
    std::string fresh = g_folder + "fresh.dcs";
    DeleteFileA(fresh.c_str());
    // The editor registered for text files opens it (Wine's notepad), or,
    // where none is registered, the shell's failure is shown (after the
    // shell's own message, where it gives one).
    HWND editor = nullptr;
    std::string shellError;
    Drive([&] { Click(dialog, IDC_SP_NEW); }, [&] {
        CHECK(AnswerFileDialog("New script file", fresh));
        for (DWORD start = GetTickCount(); !editor && GetTickCount() - start < 20000; Sleep(20)) {
            editor = FindWindowA("Notepad", nullptr);
            if (FindDialog("Error")) shellError = AnswerBox("Error", IDOK).text;
            if (shellError.rfind("ShellExecute error ", 0) == 0) break;
        }
    });
    if (editor) PostMessageA(editor, WM_CLOSE, 0, 0);
    std::printf("new script: %s\n", editor ? "the editor opened" : ("\"" + shellError + "\"").c_str());
    CHECK(editor != nullptr || shellError.rfind("ShellExecute error ", 0) == 0);
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
    // One output (one message to the window) per line: 5003 round trips
    // between the threads, not three times as many.
    Browse(dialog, WriteScript("many.dcs", "var dword i; var string s;\ni = 1;\n"
                                           "while (i <= 5003) {\n"
                                           "  s = \"line \"; s += dwordtostr(i); s += \"\\n\";\n"
                                           "  print(s); i = i + 1;\n}\n"));
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
    CHECK_EQ_STR(SmallestSize(dialog), std::to_string(initial.right - initial.left) + "x250");
    CHECK_EQ_STR(MovesOnGrowth(dialog, {IDC_SP_LOG, IDC_SP_EXECUTE, IDC_SP_PATHLABEL}),
                 "0 0 120 80|120 80 120 80|0 80 0 80|");

    // Without a channel nothing starts.
    processor.Connect(nullptr);
    CHECK_EQ_STR(ErrorAfter(dialog, IDC_SP_EXECUTE), "No communication device available!");
    CHECK(Idle(dialog));
    CHECK(SendMessageA(log, LB_GETCOUNT, 0, 0) == 0);  // cleared all the same
}

// Stop during an endless loop: the button turns back.
void TestStop(CSimDevice* sim) {
    CTestProcessor processor;
    HWND dialog = processor.Open(sim);
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
    CHECK(ErrorAfter(dialog, IDC_SP_EXECUTE).rfind("Error executing script: ", 0) == 0);
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
        HWND dialog = processor->Open(sim);
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
        CTestProcessor processor;
        HWND parent = NewHostWindow("parent");
        HWND dialog = processor.Open(sim, parent);
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
        HWND dialog = processor->Open(sim);
        Browse(dialog, WriteScript("ask.dcs",
                                   "var dword v;\nv = userinputdword(\"Left open\", \"P\", 1);\n"
                                   "while (1) {}\n"));
        Click(dialog, IDC_SP_EXECUTE);
        CHECK(PumpUntil([&] { return FindDialog("Left open") != nullptr; }, 10000));
        delete processor;
        CHECK(FindWindowA("#32770", "Left open") == nullptr);
        CHECK(sim->LockOwner() == nullptr);
    }
}

// An operator question answered by the test: a value beyond the limit, the
// message, then a valid value; then a list question.
void TestOperatorDialogs(CSimDevice* sim) {
    CTestProcessor processor;
    HWND dialog = processor.Open(sim);
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

    HWND ask = Await("Operator test");
    if (!ask) return;
    CHECK_EQ_STR(ItemText(ask, IDC_UI_PROMPT), "A number from 10 to 20");
    CHECK_EQ_STR(ItemText(ask, IDC_UI_INPUT), "20");  // the default, clamped
    SaveScreenshot(ask, "userinput");

    SetDlgItemTextA(ask, IDC_UI_INPUT, "25");
    PostMessageA(ask, WM_COMMAND, IDOK, 0);
    if (HWND box = Await("Error")) {
        CHECK_EQ_STR(ReadBox(box).text, "Value must be <= 20");
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

    if (HWND pick = Await("Pick test")) {
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
    if (HWND text = Await("Text test")) {
        CHECK_EQ_STR(ItemText(text, IDC_UI_PROMPT), "Enter information");
        CHECK_EQ_STR(ItemText(text, IDC_UI_INPUT), "abc");
        SetDlgItemTextA(text, IDC_UI_INPUT, "typed text");
        PostMessageA(text, WM_COMMAND, IDOK, 0);
    }
    if (HWND note = Await("Note")) {
        CHECK_EQ_STR(ReadBox(note).text, "got typed text");
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
    HWND dialog = processor.Open(sim);
    if (!dialog) return;
    const char* f = "func f(var int64 n) { var int64 r; var string s; r = 0;"
                    " if (n > 0) { r = 1 + f(n - 1); } f = r; }\n";
    Browse(dialog, WriteScript("deep.dcs", std::string(f) + "print(f(1000), \"\\n\");\n"));
    CHECK(RunToEnd(dialog));
    HWND log = GetDlgItem(dialog, IDC_SP_LOG);
    CHECK_EQ_STR(Joined(ListLines(log)), "1000|");

    Browse(dialog, WriteScript("deeper.dcs", std::string(f) + "print(f(1000000));\n"));
    CHECK(ErrorAfter(dialog, IDC_SP_EXECUTE).rfind("Error executing script: ", 0) == 0);
    CHECK(PumpUntil([&] { return Idle(dialog); }, 10000));
    std::vector<std::string> lines = ListLines(log);
    CHECK(lines.size() == 1 && lines[0].rfind("out of memory error near line 1/column ", 0) == 0);
    CHECK(IsWindow(dialog));
}

}  // namespace

void TestScriptWindow() {
    g_folder = TempFolder("ondwin");

    CSimDevice sim;
    TestRunAndLog(&sim);
    TestStop(&sim);
    TestOperatorDialogs(&sim);
    TestDeepRecursion(&sim);
    TestCloseDuringRun(&sim);
}
