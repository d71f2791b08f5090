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
}
