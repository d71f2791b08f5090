// Window tests under Wine + Xvfb: small check macros, a host-style message
// loop and screenshots. The program drives the module's dialogs the way a user
// and a host do: window messages in, control states out.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>

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
