// Every dialog template of the module: it loads from the DLL's resources,
// carries its caption, and its size and a control's place in dialog units
// come out as laid down. Each one is saved as a screenshot.
#include "WinTest.h"

#include <commctrl.h>

#include "frame/Dialog.h"
#include "res/OndResource.h"

namespace {

class CPlainDialog : public CONXDialog {
public:
    explicit CPlainDialog(uint32_t id) : CONXDialog(id, nullptr) {}
};

struct TTemplate {
    uint32_t id;
    const char* name;
    const char* caption;
    int width, height;        // dialog units
    int ctrlId;               // one control and its rectangle
    int x, y, cx, cy;
};

const TTemplate kTemplates[] = {
    // (The Terminal's controls: every one in its window's test.)
    {IDD_TERMINAL, "terminal", "Terminal", 354, 297, 0, 0, 0, 0, 0},
    {IDD_FILEMANAGER, "file-manager", "File manager", 492, 266, IDC_FM_DEVICELIST, 326, 59, 158, 133},
    {IDD_FILEPROPERTIES, "file-properties", "File properties", 315, 70, IDC_FP_NOTE, 4, 38, 307, 8},
    {IDD_PROGRESS, "progress", "Progress", 361, 87, IDC_PROG_FILE, 3, 48, 355, 11},
    {IDD_SCRIPTPROCESSOR, "script-processor", "Script processor", 272, 289, IDC_SP_LOG, 3, 60, 266, 188},
    {IDD_USERINPUT, "user-input", "Input", 220, 70, IDC_UI_INPUT, 7, 30, 206, 14},
    {IDD_USERLISTINPUT, "user-list-input", "Input", 220, 160, IDC_ULI_LIST, 7, 30, 206, 104},
};

bool SameRect(const RECT& a, const RECT& b) { return EqualRect(&a, &b) != 0; }

}  // namespace

void TestTemplates() {
    for (const TTemplate& t : kTemplates) {
        CPlainDialog dialog(t.id);
        bool created = dialog.Create(TestHostWindow());
        CHECK(created);
        if (!created) {
            std::printf("  template %u\n", t.id);
            continue;
        }
        HWND hwnd = dialog.GetSafeHwnd();
        CHECK_EQ_STR(WindowText(hwnd), t.caption);

        RECT size = {0, 0, t.width, t.height}, client;
        MapDialogRect(hwnd, &size);
        GetClientRect(hwnd, &client);
        CHECK(SameRect(size, client));

        // Place and size map separately, as the dialog manager does it.
        RECT units = {t.x, t.y, t.cx, t.cy};
        MapDialogRect(hwnd, &units);
        RECT expected = {units.left, units.top, units.left + units.right, units.top + units.bottom};
        if (t.ctrlId) CHECK(SameRect(ChildRect(hwnd, t.ctrlId), expected));

        dialog.Show(true);
        CHECK(SaveScreenshot(hwnd, "dialog-" + std::to_string(t.id) + "-" + t.name));
        dialog.DestroyWindow();
        CHECK(!dialog.HasWindow());
    }

    // The controls come from common controls 6, as the module's manifest
    // asks, though this program has no manifest: only version 6 buttons
    // answer BCM_GETIDEALSIZE.
    CPlainDialog script(IDD_SCRIPTPROCESSOR);
    CHECK(script.Create(TestHostWindow()));
    SIZE ideal = {};
    CHECK(SendMessageA(script.GetDlgItem(IDC_SP_EXECUTE), BCM_GETIDEALSIZE, 0,
                       reinterpret_cast<LPARAM>(&ideal)) == TRUE);
    CHECK(ideal.cx > 0);
    // Outside the module's windows the program keeps the old controls.
    HWND plain = CreateWindowA("BUTTON", "x", WS_CHILD, 0, 0, 10, 10, TestHostWindow(), nullptr,
                               GetModuleHandleA(nullptr), nullptr);
    CHECK(SendMessageA(plain, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal)) == FALSE);
    DestroyWindow(plain);
}
