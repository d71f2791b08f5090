// Window tests under Wine + Xvfb: small check macros, a host-style message
// loop and screenshots. The program drives the module's dialogs the way a user
// and a host do: window messages in, control states out.
#pragma once

#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "frame/DeviceClient.h"
#include "frame/Dialog.h"

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
// The size the window keeps when made 100 x 100 pixels: "width x height".
std::string SmallestSize(HWND dialog);
// How each control's edges move when the window grows by 120 x 80 pixels:
// "left top right bottom|" per control. The window's size is put back.
std::string MovesOnGrowth(HWND dialog, const std::vector<int>& ids);
HWND TestHostWindow();                // a plain top-level window, the host's
HWND NewHostWindow(const char* title);  // another one of its class, to be destroyed
// Runs work on the thread of the host's windows (from a driver thread: in
// the host's own message, as a host deletes an object).
void OnHostThread(const std::function<void()>& work);

// One of the module's objects with a look at its window.
template <class TObject>
class CWindowed : public TObject {
public:
    HWND Window() { return this->m_pDialog ? this->m_pDialog->GetSafeHwnd() : nullptr; }
    // Connected to the channel and shown in the host's window: the dialog.
    HWND Open(COndDeviceComm_0* channel, HWND parent = TestHostWindow()) {
        this->Connect(channel);
        this->ShowDialogNonModal(parent);
        return Window();
    }
};

// A modal window (a message box, a file dialog, the properties or progress
// window) runs its own loop inside the click that opened it, so a driver
// thread looks at it and answers while this thread pumps: Drive runs body on
// such a thread after `action` (a posted click) and returns when the driver
// has finished and the handlers it drove have returned.
void Drive(const std::function<void()>& action, const std::function<void()>& body);
HWND FindDialog(const char* caption);                      // visible only
HWND WaitForDialog(const char* caption, DWORD ms = 15000);  // for drivers: no pumping
bool WaitGone(HWND window, DWORD ms = 10000);

// What a message box showed.
struct TBox {
    std::string text;
    std::string buttons;  // button texts in id order, "|" after each
    std::string icon;     // "exclamation", "question" or "none"
    int defaultButton = 0;
};
TBox ReadBox(HWND window);
std::string Shown(const TBox& box);  // "icon buttons text"
// Waits for a box of that caption, reads it and presses the button.
TBox AnswerBox(const char* caption, int button, DWORD ms = 15000);
// Types a path into an open or save dialog and presses its OK button.
void TypeFileName(HWND dialog, const std::string& name);
bool AnswerFileDialog(const char* caption, const std::string& path);

std::string ClipboardBytes();  // CF_TEXT as the system holds it, GlobalSize bytes
std::string TempFolder(const char* name);  // made if missing, ends in a backslash
std::string WriteBytes(const std::string& path, const std::string& bytes);  // the path
// A copy of the module under another name in the temporary folder, loaded as
// a host loads a plug-in: a module of its own.
HMODULE LoadModuleCopy(const char* name, std::string* copy);

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
