// The application object's bookkeeping, on an instance of its own (the
// module's instance is exercised through real dialogs in DialogTest.cpp).
#include "frame/win32/App.h"

#include "WinTest.h"

void TestApp() {
    HWND a = reinterpret_cast<HWND>(0x1010), b = reinterpret_cast<HWND>(0x2020),
         c = reinterpret_cast<HWND>(0x3030);
    {
        // Registered twice is listed once; order is kept; unknown handles
        // change nothing; removal keeps the order of the rest.
        COndDeviceClientApp app;
        CHECK(app.RegisterDialog(a));
        CHECK(app.RegisterDialog(b));
        CHECK(app.RegisterDialog(a));
        CHECK(app.RegisterDialog(c));
        CHECK((app.Dialogs() == std::vector<HWND>{a, b, c}));
        CHECK(!app.UnregisterDialog(reinterpret_cast<HWND>(0x4040)));
        CHECK(app.Dialogs().size() == 3);
        CHECK(app.UnregisterDialog(a));
        CHECK((app.Dialogs() == std::vector<HWND>{b, c}));
        CHECK(!app.UnregisterDialog(a));
    }
    {
        // The host's folder: the executable's, with one trailing backslash.
        COndDeviceClientApp app;
        app.Start();
        char path[MAX_PATH];
        GetModuleFileNameA(nullptr, path, MAX_PATH);
        std::string expected = path;
        expected.resize(expected.rfind('\\') + 1);
        CHECK_EQ_STR(app.HostFolder(), expected);
        CHECK(app.HasHook());
        app.Stop(false);
        CHECK(!app.HasHook());
        CHECK(app.HostFolder().empty());
    }
    {
        // Unloading removes the hook. A copy of the DLL is a module of its
        // own: loading it hooks this thread, unloading must unhook it, or the
        // next message this thread retrieves calls into unmapped code.
        std::string copy;
        HMODULE module = LoadModuleCopy("OndDeviceClientUnloadTest.dll", &copy);
        CHECK(module != nullptr);
        PostMessageA(TestHostWindow(), WM_KEYDOWN, 'B', 0x00300001);
        MSG msg;
        CHECK(TakeMessage(&msg) && msg.message == WM_KEYDOWN && msg.wParam == 'B');
        CHECK(FreeLibrary(module));
        CHECK(GetModuleHandleA("OndDeviceClientUnloadTest.dll") == nullptr);
        PostMessageA(TestHostWindow(), WM_KEYDOWN, 'C', 0x002E0001);
        CHECK(TakeMessage(&msg) && msg.message == WM_KEYDOWN && msg.wParam == 'C');
        DeleteFileA(copy.c_str());
    }
}
