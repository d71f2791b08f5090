// Window tests under Wine + Xvfb: small check macros, a host-style message
// loop and screenshots. The program drives the module's dialogs the way a user
// and a host do: window messages in, control states out.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

extern int g_passed, g_failed;

#define CHECK(cond)                                                                \
    do {                                                                           \
        if (cond) {                                                                \
            ++g_passed;                                                            \
        } else {                                                                   \
            ++g_failed;                                                            \
            std::printf("FAILED %s:%d: %s\n", __FILE__, __LINE__, #cond);          \
        }                                                                          \
    } while (0)

#define CHECK_EQ_STR(actual, expected)                                             \
    do {                                                                           \
        std::string a_ = (actual), e_ = (expected);                                \
        if (a_ == e_) {                                                            \
            ++g_passed;                                                            \
        } else {                                                                   \
            ++g_failed;                                                            \
            std::printf("FAILED %s:%d: %s\n  got      \"%s\"\n  expected \"%s\"\n", \
                        __FILE__, __LINE__, #actual, a_.c_str(), e_.c_str());      \
        }                                                                          \
    } while (0)

// The host's own loop: GetMessage/Translate/Dispatch, no IsDialogMessage.
// Runs for at least ms milliseconds.
void PumpMessages(DWORD ms);
// One message from the queue as a host retrieves it (the hook has run).
bool TakeMessage(MSG* msg);

// Runs the host's GetMessage loop until cond holds or ms pass; a thread
// timer wakes it to look. A blocking loop serves what a worker sends at once,
// as a host's does.
template <class F>
bool PumpUntil(F cond, DWORD ms) {
    UINT_PTR timer = SetTimer(nullptr, 0, 20, nullptr);
    DWORD start = GetTickCount();
    MSG msg;
    while (!cond() && GetTickCount() - start <= ms && GetMessageA(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    KillTimer(nullptr, timer);
    return cond();
}

// A button click: Click posts it (its handler may open a modal window and
// the test goes on meanwhile), ClickNow sends it (done when it returns).
void Click(HWND dialog, int id);
void ClickNow(HWND dialog, int id);

std::vector<std::string> ListLines(HWND listBox);
std::string Joined(const std::vector<std::string>& lines);  // "a|b|"

std::string WindowText(HWND hwnd);
std::string ItemText(HWND dialog, int id);
RECT ChildRect(HWND dialog, int id);  // in the dialog's client coordinates
HWND TestHostWindow();                // a plain top-level window, the host's

// Saves the window as it is on the screen to <folder>\<name>.png.
bool SaveScreenshot(HWND hwnd, const std::string& name);
void SetScreenshotFolder(const std::string& folder);

// The test groups.
void TestApp();
void TestDialogs();
void TestTemplates();
void TestHost();
void TestScriptWindow();
void TestTerminalWindow();
void TestFileManagerWindow();
