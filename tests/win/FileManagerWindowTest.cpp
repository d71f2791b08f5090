// The File Manager's windows through the DLL, driven as a user does: clicks,
// keys, dropped files, the file dialogs, the properties dialog and the
// progress window, with the questions and messages found and answered. The
// simulated device shows what arrived, and that the lock is given back.
//
#include "WinTest.h"  // windows.h first

#include <commctrl.h>
#include <shlobj.h>

#include <cstring>
#include <string>
#include <vector>

#include "filemanager/FileManager.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"

namespace {

using CTestFileManager = CWindowed<CONXFileManager>;

std::string g_dir;  // the test's files, in the temporary folder, ending in a backslash

std::string WriteFile(const std::string& name, const std::string& bytes) { return WriteBytes(g_dir + name, bytes); }

std::string ReadFile(const std::string& path) {
    std::string text;
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return "<missing>";
    char buffer[4096];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, n);
    std::fclose(f);
    return text;
}

// A click whose handler shows a message box; the box as the driver found it,
// answered with `button`.
TBox ClickAnswer(HWND dialog, int id, const char* caption, int button = IDOK) {
    TBox box;
    Drive([&] { Click(dialog, id); }, [&] { box = AnswerBox(caption, button); });
    return box;
}

// The list's rows as "c0,c1,...|" per row.
std::string Rows(HWND list) {
    std::string all;
    int rows = int(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    int columns = int(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            char text[1100] = "";
            LVITEMA item = {};
            item.iSubItem = c;
            item.pszText = text;
            item.cchTextMax = sizeof text;
            SendMessageA(list, LVM_GETITEMTEXTA, r, reinterpret_cast<LPARAM>(&item));
            all += text;
            all += c + 1 < columns ? "," : "|";
        }
    }
    return all;
}

int RowCount(HWND list) { return int(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

void Select(HWND list, std::initializer_list<int> rows) {
    LVITEMA clear = {};
    clear.stateMask = LVIS_SELECTED;
    SendMessageA(list, LVM_SETITEMSTATE, WPARAM(-1), reinterpret_cast<LPARAM>(&clear));
    for (int row : rows) {
        LVITEMA item = {};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        item.state = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageA(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
    }
}

void SetCell(HWND list, int row, int column, const char* text) {
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text);
    SendMessageA(list, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
}

// The list's columns as "title width alignment|" each.
std::string Columns(HWND list, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        char text[64] = "";
        LVCOLUMNA info = {};
        info.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        info.pszText = text;
        info.cchTextMax = sizeof text;
        SendMessageA(list, LVM_GETCOLUMNA, i, reinterpret_cast<LPARAM>(&info));
        bool right = (info.fmt & LVCFMT_JUSTIFYMASK) == LVCFMT_RIGHT;
        all += std::string(text) + " " + std::to_string(info.cx) + (right ? " right|" : " left|");
    }
    return all;
}

// Files dropped from a shell window: an HDROP of ANSI names.
void DropFiles(HWND window, const std::vector<std::string>& paths) {
    size_t chars = 1;
    for (const std::string& p : paths) chars += p.size() + 1;
    HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + chars);
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = FALSE;
    char* names = reinterpret_cast<char*>(drop + 1);
    for (const std::string& p : paths) {
        std::memcpy(names, p.c_str(), p.size() + 1);
        names += p.size() + 1;
    }
    *names = '\0';
    GlobalUnlock(memory);
    SendMessageA(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
}

void Store(CSimDevice* sim, uint8_t id, uint8_t type, size_t size) {
    std::string data(size, char('0' + id % 10));
    sim->TransmitFileFromMemory(data.data(), data.size(), id, type, 0, nullptr, nullptr, 1, 1);
}

// The buttons that are on, by name, in a fixed order.
std::string EnabledButtons(HWND dialog) {
    const struct {
        int id;
        const char* name;
    } buttons[] = {{IDC_FM_SAVEJOB, "save"},   {IDC_FM_COPYSELECTED, "copysel"}, {IDC_FM_COPYALL, "copyall"},
                   {IDC_FM_REFRESH, "refresh"}, {IDC_FM_FORMAT, "format"},        {IDC_FM_DELETE, "delete"},
                   {IDC_FM_ADDFILES, "add"},    {IDC_FM_CLEAR, "clear"},          {IDC_FM_LOADJOB, "load"},
                   {IDOK, "close"}};
    std::string on;
    for (const auto& b : buttons)
        if (IsWindowEnabled(GetDlgItem(dialog, b.id))) on += std::string(on.empty() ? "" : " ") + b.name;
    return on;
}

// Makes the dialog look at its controls and the channel now, as its timer would.
void Update(CTestFileManager* fm, CSimDevice* sim) {
    fm->Connect(sim);  // hands the channel to the dialog, which updates its state
    PumpMessages(20);
}

// --- the window, its lists and states ----------------------------------------

void TestLayoutAndStates(CSimDevice* sim) {
    Store(sim, 1, 2, 300);
    Store(sim, 7, 9, 5000);
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    CHECK(dialog != nullptr);
    if (!dialog) return;
    CHECK_EQ_STR(WindowText(dialog), "File manager");
    CHECK((GetWindowLongA(dialog, GWL_EXSTYLE) & WS_EX_ACCEPTFILES) != 0);
    CHECK(IsDlgButtonChecked(dialog, IDC_FM_CONTINUE) == BST_CHECKED);
    CHECK(sim->LockOwner() == nullptr);

    // Each list's columns: "title width alignment"; the first local and the
    // last device column take the rest of the list's width.
    HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    RECT client;
    GetClientRect(local, &client);
    std::string first = std::to_string(client.right - 150 < 200 ? 200 : client.right - 150);
    CHECK_EQ_STR(Columns(local, 4),
                 "Filename " + first + " left|File ID 50 right|File type 50 right|File mode 50 right|");
    GetClientRect(device, &client);
    std::string last = std::to_string(client.right - 120 < 100 ? 100 : client.right - 120);
    CHECK_EQ_STR(Columns(device, 3), "File ID 60 right|File type 60 right|File size " + last + " right|");
    DWORD styles = DWORD(SendMessageA(local, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    CHECK((styles & (LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT)) == (LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT));

    // The first refresh ran in OnInitDialog.
    CHECK_EQ_STR(Rows(device), "1,2,300|7,9,5000|");
    CHECK_EQ_STR(ItemText(dialog, IDC_FM_SUMMARY),
                 "5300 bytes in 2 files\nrequire 12288 bytes on disk\n1036288 bytes free");
    CHECK(ItemText(dialog, IDC_FM_CONFIG).find("State: open") != std::string::npos);

    // Connected, no local rows, no device row selected; then a local file
    // and a device row; then a local row selected too.
    CHECK_EQ_STR(EnabledButtons(dialog), "refresh format add clear load close");
    DropFiles(dialog, {g_dir + "a.bin"});
    Select(device, {1});
    Update(&fm, sim);
    CHECK_EQ_STR(EnabledButtons(dialog), "save copyall refresh format delete add clear load close");
    Select(local, {0});
    Update(&fm, sim);
    CHECK_EQ_STR(EnabledButtons(dialog), "save copysel copyall refresh format delete add clear load close");
    SaveScreenshot(dialog, "filemanager");

    // A closed channel (state 2): every device action off, "Save job" still on.
    sim->SetState(2);
    Update(&fm, sim);
    CHECK(ItemText(dialog, IDC_FM_CONFIG).find("State: closed") != std::string::npos);
    CHECK_EQ_STR(EnabledButtons(dialog), "save add clear load close");
    sim->SetState(1);
    // No channel at all counts as not connected; nothing is asked of it.
    fm.Connect(nullptr);
    PumpMessages(20);
    CHECK_EQ_STR(ItemText(dialog, IDC_FM_CONFIG), "No communication device...");
    CHECK_EQ_STR(EnabledButtons(dialog), "save add clear load close");
    uint64_t calls = sim->TotalCallCount();
    Click(dialog, IDC_FM_REFRESH);
    Click(dialog, IDC_FM_FORMAT);
    PumpMessages(100);
    CHECK(sim->TotalCallCount() == calls);
    CHECK_EQ_STR(Rows(device), "1,2,300|7,9,5000|");  // the list keeps its rows
    // No timer runs without a channel: "Save job" follows the local list's
    // own edits at once.
    ClickNow(dialog, IDC_FM_CLEAR);
    CHECK_EQ_STR(EnabledButtons(dialog), "add clear load close");
    DropFiles(dialog, {g_dir + "a.bin"});
    CHECK_EQ_STR(EnabledButtons(dialog), "save add clear load close");
    Select(local, {0});
    SendMessageA(local, WM_KEYDOWN, VK_DELETE, 0);
    CHECK_EQ_STR(EnabledButtons(dialog), "add clear load close");
}

// A failed read: the message in the summary, the list rebuilt from what the
// channel then reports (nothing).
void TestRefreshFailure(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    CHECK(RowCount(device) == 2);
    sim->InjectFault("ReadDirectory", 1);
    Click(dialog, IDC_FM_REFRESH);
    PumpMessages(100);
    CHECK_EQ_STR(ItemText(dialog, IDC_FM_SUMMARY), "Could not read device directory:\nSimulated device fault");
    CHECK(RowCount(device) == 0);
    CHECK(sim->LockOwner() == nullptr);
    Click(dialog, IDC_FM_REFRESH);
    PumpMessages(100);
    CHECK(RowCount(device) == 2);

    // Another owner holds the channel (a script runs): the locked message.
    CHECK(sim->Lock(sim, 0) == 0);
    CHECK_EQ_STR(Shown(ClickAnswer(dialog, IDC_FM_REFRESH, "Error")), "exclamation OK| Communication device is locked");
    sim->Unlock(sim);
}

void TestDelete(CSimDevice* sim) {
    for (uint8_t id : {3, 4, 5, 6}) Store(sim, id, 1, 10);
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    CHECK_EQ_STR(Rows(device), "1,2,300|3,1,10|4,1,10|5,1,10|6,1,10|7,9,5000|");

    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_DELETE, "Error").text, "No files marked to delete!");

    // One file: singular.
    Select(device, {1});
    CHECK_EQ_STR(Shown(ClickAnswer(dialog, IDC_FM_DELETE, "Warning", IDYES)),
                 "question Yes|No| Deleting 1 file from device, are you sure?");
    CHECK(!sim->GetStoredFile(3, nullptr));
    CHECK_EQ_STR(Rows(device), "1,2,300|4,1,10|5,1,10|6,1,10|7,9,5000|");
    CHECK(sim->LockOwner() == nullptr);

    // Two files, answered No: nothing happens.
    Select(device, {1, 2});
    uint64_t deletes = sim->CallCount("DeleteDeviceFile");
    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_DELETE, "Warning", IDNO).text,
                 "Deleting 2 files from device, are you sure?");
    CHECK(sim->CallCount("DeleteDeviceFile") == deletes);
    CHECK(sim->GetStoredFile(4, nullptr) && sim->GetStoredFile(5, nullptr));

    // Three rows, one of them not a number: skipped without a word.
    Select(device, {1, 2, 3});
    SetCell(device, 2, 0, "five");
    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_DELETE, "Warning", IDYES).text,
                 "Deleting 3 files from device, are you sure?");
    CHECK(sim->CallCount("DeleteDeviceFile") - deletes == 2);
    CHECK(FindDialog("Error") == nullptr);
    CHECK_EQ_STR(Rows(device), "1,2,300|5,1,10|7,9,5000|");
    CHECK(sim->LockOwner() == nullptr && sim->LockCount() == 0);
}

void TestFormat(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    const char* question =
        "You have selected to format the device.\nThis will destroy all data stored on the device.\n\n"
        "Yes: Format all blocks on the device\nNo: Format only the blocks that are marked as used\n"
        "Cancel: Have mercy on me!";

    // Cancel: the device untouched, the lock given back.
    uint64_t erases = sim->BlockErases();
    TBox box = ClickAnswer(dialog, IDC_FM_FORMAT, "WARNING", IDCANCEL);
    CHECK_EQ_STR(Shown(box), std::string("exclamation Cancel|Yes|No| ") + question);
    CHECK(box.defaultButton == IDCANCEL);
    CHECK(sim->BlockErases() == erases && sim->CallCount("FormatDevice") == 0);
    CHECK(RowCount(device) == 3);
    CHECK(sim->LockOwner() == nullptr);

    // No: only the blocks marked as used; the program slot stays.
    sim->TransmitFileFromMemory("prog", 4, 0, 0, SIMDEV_MODE_PROGRAM, nullptr, nullptr, 1, 1);
    uint32_t marked = sim->MarkedBlocks();
    ClickAnswer(dialog, IDC_FM_FORMAT, "WARNING", IDNO);
    CHECK(sim->BlockErases() - erases == marked);
    CHECK(sim->HasProgram());
    CHECK(RowCount(device) == 0);
    CHECK(sim->LockOwner() == nullptr);

    // Yes: every block and the program slot.
    Store(sim, 9, 1, 1);
    erases = sim->BlockErases();
    ClickAnswer(dialog, IDC_FM_FORMAT, "WARNING", IDYES);
    CHECK(sim->BlockErases() - erases == 256);
    CHECK(!sim->HasProgram());
    CHECK_EQ_STR(ItemText(dialog, IDC_FM_SUMMARY),
                 "0 bytes in 0 files\nrequire 0 bytes on disk\n1048576 bytes free");
}

// Dropped files, "Add files", Clear, Delete key, Save job and Load job.
void TestLocalListAndJobs(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);
    std::string a = WriteFile("a.bin", "alpha"), image = WriteFile("image.RBF", "fpga");
    std::string x = WriteFile("x.rbfx", "xx");

    // Dropped in drop order; ".rbf" in any case gets "program".
    DropFiles(dialog, {a, image, x});
    CHECK_EQ_STR(Rows(local), a + ",0,1,normal|" + image + ",0,1,program|" + x + ",0,1,normal|");

    // Delete removes the selected rows; with none selected nothing.
    Select(local, {});
    SendMessageA(local, WM_KEYDOWN, VK_DELETE, 0);
    CHECK(RowCount(local) == 3);
    Select(local, {0, 2});
    SendMessageA(local, WM_KEYDOWN, VK_DELETE, 0);
    CHECK_EQ_STR(Rows(local), image + ",0,1,program|");
    ClickNow(dialog, IDC_FM_CLEAR);
    CHECK(RowCount(local) == 0);

    // Save job with no rows.
    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_SAVEJOB, "Error").text, "No files in list that could be saved");

    // "Add files": two files picked in the folder.
    std::string folder = g_dir.substr(0, g_dir.size() - 1);
    Drive([&] { Click(dialog, IDC_FM_ADDFILES); }, [&] {
        HWND open = WaitForDialog("Open source file(s)");
        if (!open) return;
        TypeFileName(open, folder);  // into the folder first
        Sleep(300);
        TypeFileName(open, "\"a.bin\" \"image.RBF\"");
        CHECK(WaitGone(open));
    });
    std::string added = Rows(local);
    CHECK(added == a + ",0,1,normal|" + image + ",0,1,program|" ||
          added == image + ",0,1,program|" + a + ",0,1,normal|");
    // Give the rows odd properties, then save and load them back.
    ClickNow(dialog, IDC_FM_CLEAR);
    DropFiles(dialog, {a, image, g_dir + "folder with blanks\\c.bin"});
    SetCell(local, 0, 1, "300");
    SetCell(local, 0, 2, "x");
    SetCell(local, 0, 3, "BIT REVERSE");
    std::string job = g_dir + "saved.dcj";
    DeleteFileA(job.c_str());
    Drive([&] { Click(dialog, IDC_FM_SAVEJOB); }, [&] { CHECK(AnswerFileDialog("Save list file", job)); });
    CHECK_EQ_STR(ReadFile(job), "a.bin\t44\t1\tbit reverse\nimage.RBF\t0\t1\tprogram\n"
                                "folder with blanks\\c.bin\t0\t1\tnormal\n");
    ClickNow(dialog, IDC_FM_CLEAR);
    DropFiles(dialog, {x});
    Drive([&] { Click(dialog, IDC_FM_LOADJOB); }, [&] { CHECK(AnswerFileDialog("Open job file", job)); });
    CHECK_EQ_STR(Rows(local), a + ",44,1,bit reverse|" + image + ",0,1,program|" + g_dir +
                                  "folder with blanks\\c.bin,0,1,normal|");

    // A job file that cannot be read keeps the rows.
    TBox box;
    Drive([&] { Click(dialog, IDC_FM_LOADJOB); }, [&] {
        CHECK(AnswerFileDialog("Open job file", g_dir + "missing.dcj"));
        box = AnswerBox("Error", IDOK);
    });
    CHECK_EQ_STR(box.text, "Could not open list file");
    CHECK(RowCount(local) == 3);
    SaveScreenshot(dialog, "filemanager-local");
}

// Posted: the click may open a message box, which the driver then answers.
void PressOK(HWND properties) { PostMessageA(GetDlgItem(properties, IDOK), BM_CLICK, 0, 0); }

std::string ComboItems(HWND combo) {
    std::string all;
    int count = int(SendMessageA(combo, CB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
        char text[64] = "";
        SendMessageA(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
        all += std::string(text) + "=" + std::to_string(SendMessageA(combo, CB_GETITEMDATA, i, 0)) + "|";
    }
    return all;
}

void SelectMode(HWND properties, int index) {
    HWND combo = GetDlgItem(properties, IDC_FP_MODE);
    SendMessageA(combo, CB_SETCURSEL, index, 0);
    SendMessageA(properties, WM_COMMAND, MAKEWPARAM(IDC_FP_MODE, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(combo));
}

void TestProperties(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);
    std::string a = g_dir + "a.bin", image = g_dir + "image.RBF";
    DropFiles(dialog, {a, image});
    SetCell(local, 0, 1, "17");

    // Space on the first row: the dialog as the row gives it. What the driver
    // saw, step by step, as "step: what|".
    Select(local, {0});
    std::string seen;
    auto fields = [](HWND p) { return ItemText(p, IDC_FP_ID) + "," + ItemText(p, IDC_FP_TYPE); };
    Drive([&] { PostMessageA(local, WM_KEYDOWN, VK_SPACE, 0); }, [&] {
        HWND p = WaitForDialog("File properties");
        if (!p) return;
        seen += "open: " + ItemText(p, IDC_FP_PATH) + " " + fields(p) + " " + WindowText(GetDlgItem(p, IDC_FP_MODE)) +
                " " + ComboItems(GetDlgItem(p, IDC_FP_MODE));  // sorted; data carries the mode
        SaveScreenshot(p, "fileproperties");

        // "program" turns both edits off and shows the note.
        SelectMode(p, 2);
        bool off = !IsWindowEnabled(GetDlgItem(p, IDC_FP_ID)) && !IsWindowEnabled(GetDlgItem(p, IDC_FP_TYPE));
        seen += std::string("program: ") + (off ? "edits off " : "edits on ") + ItemText(p, IDC_FP_NOTE) + "|";
        SelectMode(p, 0);  // "bit reverse"

        // Enter in the ID edit: neither closes nor validates.
        SetDlgItemTextA(p, IDC_FP_ID, "abc");
        SendMessageA(p, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(p, IDC_FP_ID)), TRUE);
        PostMessageA(GetDlgItem(p, IDC_FP_ID), WM_KEYDOWN, VK_RETURN, 0);
        Sleep(300);
        seen += std::string("enter: ") + (IsWindow(p) && !FindDialog("Error") ? "open|" : "closed|");

        // An invalid ID: its message, the stored ID again; the type is not
        // looked at yet. Then a valid ID and an invalid type.
        SetDlgItemTextA(p, IDC_FP_TYPE, "abc");
        PressOK(p);
        seen += "bad id: " + Shown(AnswerBox("Error", IDOK));  // answered before the fields are read
        seen += " " + fields(p) + "|";
        SetDlgItemTextA(p, IDC_FP_ID, "300");
        PressOK(p);
        seen += "bad type: " + Shown(AnswerBox("Error", IDOK));
        seen += " " + fields(p) + (IsWindow(p) ? " open|" : "|");
        SetDlgItemTextA(p, IDC_FP_TYPE, "12abc");
        PressOK(p);
        WaitGone(p);
    });
    CHECK_EQ_STR(seen, "open: " + a + " 17,1 normal bit reverse=1|normal=0|program=2|"
                       "program: edits off NOTE: \"File ID\" and \"File type\" have no effect on files "
                       "with mode \"program\"!|enter: open|bad id: none OK| Invalid file ID! 17,abc|"
                       "bad type: none OK| Invalid file type! 300,1 open|");
    CHECK_EQ_STR(Rows(local), a + ",44,12,bit reverse|" + image + ",0,1,program|");

    // Two rows by double-click: Cancel on the first still opens the second;
    // "program" keeps the (disabled) edits' values.
    Select(local, {0, 1});
    std::string second;
    NMITEMACTIVATE click = {};  // as the list sends it on a double-click
    click.hdr.hwndFrom = local;
    click.hdr.idFrom = IDC_FM_LOCALLIST;
    click.hdr.code = NM_DBLCLK;
    click.iItem = 0;
    Drive([&] { PostMessageA(dialog, WM_NOTIFY, IDC_FM_LOCALLIST, reinterpret_cast<LPARAM>(&click)); },
          [&] {
        HWND p = WaitForDialog("File properties");
        if (!p) return;
        PostMessageA(p, WM_COMMAND, IDCANCEL, 0);
        WaitGone(p);
        p = WaitForDialog("File properties");
        if (!p) return;
        second = ItemText(p, IDC_FP_PATH);
        SetDlgItemTextA(p, IDC_FP_ID, "5");
        SetDlgItemTextA(p, IDC_FP_TYPE, "6");
        PressOK(p);
        WaitGone(p);
    });
    CHECK_EQ_STR(second, image);
    CHECK_EQ_STR(Rows(local), a + ",44,12,bit reverse|" + image + ",5,6,program|");
}

// 255 files on a device with more than 4 GiB free: every row, the 64-bit figure.
void TestBigDevice(CSimDevice*) {
    CSimDevice::TConfig config;
    config.blockCount = 65536;
    config.blockSize = 131072;
    CSimDevice big(config);
    for (int id = 0; id < 255; ++id) Store(&big, uint8_t(id), uint8_t(id % 5), size_t(id) * 3);
    CTestFileManager fm;
    HWND dialog = fm.Open(&big);
    if (!dialog) return;
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    CHECK(RowCount(device) == 255);
    std::string rows = Rows(device);
    CHECK(rows.rfind("0,0,0|1,1,3|", 0) == 0);
    const std::string last = "|254,4,762|";
    CHECK(rows.size() > last.size() && rows.compare(rows.size() - last.size(), last.size(), last) == 0);
    CHECK_EQ_STR(ItemText(dialog, IDC_FM_SUMMARY),
                 "97155 bytes in 255 files\nrequire 33423360 bytes on disk\n8556511232 bytes free");
    CHECK(big.LockOwner() == nullptr);
}

// --- copying -----------------------------------------------------------------

void TestCopy(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);

    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_COPYALL, "Error").text, "No files present to copy!");
    std::string one = WriteFile("one.bin", "first file"), three = WriteFile("three.bin", "third");
    std::string missing = g_dir + "two-missing.bin";
    DropFiles(dialog, {one, missing, three});
    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_COPYSELECTED, "Error").text, "No files marked to copy!");
    for (int row = 0; row < 3; ++row) {
        SetCell(local, row, 1, std::to_string(20 + row).c_str());
        SetCell(local, row, 2, std::to_string(30 + row).c_str());
    }
    SetCell(local, 2, 3, "bit reverse");

    // The second of three fails; continue on error (the default): the third goes.
    const std::string failure = "Error during copying " + missing + ": Local file cannot be opened or read";
    CHECK_EQ_STR(Shown(ClickAnswer(dialog, IDC_FM_COPYALL, "Error")), "exclamation OK| " + failure);
    CSimDevice::TStoredFile stored;
    CHECK(sim->GetStoredFile(20, &stored) && stored.data == "first file" && stored.fileType == 30);
    CHECK(sim->GetStoredFile(22, &stored) && stored.fileType == 32 && stored.data.size() == 5 &&
          stored.data[0] == char(0x2E));  // 't' (0x74) bit-reversed
    CSimDevice::TTransfer last = sim->LastTransfer();
    CHECK(last.fileMode == 1 && last.flag == 1 && last.steps == 100);
    CHECK(sim->LockOwner() == nullptr && sim->LockCount() == 0);
    // The device list was refreshed after the copy.
    CHECK(Rows(GetDlgItem(dialog, IDC_FM_DEVICELIST)).find("22,32,5|") != std::string::npos);

    // Continue on error off: the copy ends at the failure.
    sim->FormatDevice(0);
    SendMessageA(GetDlgItem(dialog, IDC_FM_CONTINUE), BM_CLICK, 0, 0);
    PumpMessages(50);
    CHECK(IsDlgButtonChecked(dialog, IDC_FM_CONTINUE) == BST_UNCHECKED);
    uint64_t transfers = sim->CallCount("TransmitFile");
    CHECK_EQ_STR(ClickAnswer(dialog, IDC_FM_COPYALL, "Error").text, failure);
    CHECK(sim->CallCount("TransmitFile") - transfers == 2);
    CHECK(sim->GetStoredFile(20, nullptr) && !sim->GetStoredFile(22, nullptr));
    SendMessageA(GetDlgItem(dialog, IDC_FM_CONTINUE), BM_CLICK, 0, 0);

    // Copy selected: only the selected rows, in list order, no report.
    sim->FormatDevice(0);
    Select(local, {2, 0});
    transfers = sim->CallCount("TransmitFile");
    Click(dialog, IDC_FM_COPYSELECTED);
    CHECK(PumpUntil([&] {
        return sim->CallCount("TransmitFile") - transfers == 2 && sim->LockOwner() == nullptr;
    }, 10000));
    CHECK(sim->GetStoredFile(20, nullptr) && sim->GetStoredFile(22, nullptr));
    CHECK(sim->LastTransfer().fileId == 22);
    CHECK(FindDialog("Error") == nullptr);
}

// The progress window during a slow transfer: its lines and bars, then an
// abort (by the button and by Escape) that stops the transfer and starts no
// further file; and a long path shortened to the end that fits.
void TestProgressAndAbort(CSimDevice* sim) {
    CTestFileManager fm;
    HWND dialog = fm.Open(sim);
    if (!dialog) return;
    sim->FormatDevice(0);
    std::string first = WriteFile("slow1.bin", "slow one"), second = WriteFile("slow2.bin", "two");
    DropFiles(dialog, {first, second});
    sim->SetStepDelay(15);  // 1.5 s per file

    for (bool byEscape : {false, true}) {
        std::string seen;  // the progress window's texts and bars, then the report
        int bar = -1;
        uint64_t transfers = sim->CallCount("TransmitFile");
        Drive([&] { Click(dialog, IDC_FM_COPYALL); }, [&] {
            HWND progress = WaitForDialog("Progress");
            if (!progress) return;
            // Longer than the status timer's 500 ms: it does not ask the
            // channel beside the copy.
            uint64_t states = sim->CallCount("GetState");
            Sleep(700);
            HWND file = GetDlgItem(progress, IDC_PROG_FILE);
            bar = int(SendMessageA(file, PBM_GETPOS, 0, 0));
            seen = ItemText(progress, IDC_PROG_COUNT) + "|" + ItemText(progress, IDC_PROG_CURRENT) + "|total " +
                   std::to_string(SendDlgItemMessageA(progress, IDC_PROG_TOTAL, PBM_GETPOS, 0, 0)) +
                   ((GetWindowLongA(file, GWL_STYLE) & PBS_SMOOTH) ? " smooth" : "") + "|status reads " +
                   std::to_string(sim->CallCount("GetState") - states) + "|";
            if (!byEscape) SaveScreenshot(progress, "progress");
            HWND abort = GetDlgItem(progress, IDCANCEL);
            PostMessageA(abort, byEscape ? WM_KEYDOWN : BM_CLICK, byEscape ? VK_ESCAPE : 0, 0);
            seen += AnswerBox("Error", IDOK).text;
        });
        CHECK_EQ_STR(seen, "0 files of 2 copied so far...|Currently copying " + first +
                               "|total 0 smooth|status reads 0|Error during copying " + first +
                               ": Transfer aborted");
        CHECK(bar > 0 && bar < 100);
        CHECK(sim->CallCount("TransmitFile") - transfers == 1);  // no further file
        CHECK(!sim->GetStoredFile(0, nullptr));
        CHECK(sim->LockOwner() == nullptr);
    }

    // One file with a long path: "0 files of 1", the path's end that fits.
    std::string longFolder = g_dir + std::string(120, 'f') + "\\";
    CreateDirectoryA(longFolder.c_str(), nullptr);
    std::string longPath = longFolder + "the-end-of-a-long-path.bin";
    WriteBytes(longPath, "");
    ClickNow(dialog, IDC_FM_CLEAR);
    DropFiles(dialog, {longPath});
    std::string count, name;
    int fits = 0, oneMore = 0, width = 0;
    Drive([&] { Click(dialog, IDC_FM_COPYALL); }, [&] {
        HWND progress = WaitForDialog("Progress");
        if (!progress) return;
        Sleep(200);
        count = ItemText(progress, IDC_PROG_COUNT);
        HWND line = GetDlgItem(progress, IDC_PROG_CURRENT);
        name = WindowText(line);
        RECT client;
        GetClientRect(line, &client);
        width = client.right;
        HDC dc = CreateCompatibleDC(nullptr);
        HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(line, WM_GETFONT, 0, 0)));
        SIZE size;
        GetTextExtentPoint32A(dc, name.c_str(), int(name.size()), &size);
        fits = size.cx;
        size_t k = name.size() - std::strlen("Currently copying ...");
        std::string longer = "Currently copying ..." + longPath.substr(longPath.size() - k - 1);
        GetTextExtentPoint32A(dc, longer.c_str(), int(longer.size()), &size);
        oneMore = size.cx;
        SelectObject(dc, old);
        DeleteDC(dc);
        PostMessageA(progress, WM_COMMAND, IDCANCEL, 0);
        AnswerBox("Error", IDOK);
    });
    CHECK_EQ_STR(count, "0 files of 1 copied so far...");
    CHECK_EQ_STR(name.substr(0, 21), "Currently copying ...");
    CHECK(name.size() > 30 && longPath.find(name.substr(21)) == longPath.size() - (name.size() - 21));
    CHECK(fits <= width && oneMore > width);
    sim->SetStepDelay(0);
    CHECK(sim->LockOwner() == nullptr);
}

// Closing during a copy: the object deleted (from the host's own message, as
// a host does) and the host's window destroyed. The worker is joined, the
// lock given back, nothing is left open.
void TestCloseDuringCopy(CSimDevice* sim) {
    HWND host = NewHostWindow("fm host");
    std::string slow = WriteFile("close.bin", "closing");
    sim->SetStepDelay(20);
    {
        auto* fm = new CTestFileManager;
        HWND dialog = fm->Open(sim, host);
        DropFiles(dialog, {slow, slow});
        bool sawProgress = false;
        Drive([&] { Click(dialog, IDC_FM_COPYALL); }, [&] {
            sawProgress = WaitForDialog("Progress") != nullptr;
            Sleep(300);
            OnHostThread([&] { delete fm; });
        });
        CHECK(sawProgress);
        CHECK(!IsWindow(dialog));
        CHECK(FindDialog("Progress") == nullptr && FindDialog("Error") == nullptr);
        CHECK(sim->LockOwner() == nullptr && sim->LockCount() == 0);
        CHECK(sim->CallCount("TransmitFile") > 0);
    }
    {
        // The host's window goes, taking the dialog and the progress window.
        HWND parent = NewHostWindow("parent");
        CTestFileManager fm;
        HWND dialog = fm.Open(sim, parent);
        DropFiles(dialog, {slow});
        Drive([&] { Click(dialog, IDC_FM_COPYALL); }, [&] {
            WaitForDialog("Progress");
            Sleep(300);
            OnHostThread([&] { DestroyWindow(parent); });
        });
        CHECK(!IsWindow(dialog));
        CHECK(!fm.IsNonModalDialogOpen());
        CHECK(sim->LockOwner() == nullptr);
        // The object builds a new window when asked again.
        CHECK(fm.ShowDialogNonModal(host) == EONX_ERR_NONE);
        CHECK(fm.Window() && IsWindow(fm.Window()));
    }
    sim->SetStepDelay(0);
    {
        // Deleted while Space has the properties dialog open.
        auto* fm = new CTestFileManager;
        HWND dialog = fm->Open(sim, host);
        HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);
        DropFiles(dialog, {slow});
        Select(local, {0});
        bool sawProperties = false;
        Drive([&] { PostMessageA(local, WM_KEYDOWN, VK_SPACE, 0); }, [&] {
            sawProperties = WaitForDialog("File properties") != nullptr;
            OnHostThread([&] { delete fm; });
        });
        CHECK(sawProperties);
        CHECK(!IsWindow(dialog) && FindDialog("File properties") == nullptr);
        CHECK(sim->LockOwner() == nullptr);
    }
    DestroyWindow(host);
}

}  // namespace

void TestFileManagerWindow() {
    g_dir = TempFolder("ondfm");
    CreateDirectoryA((g_dir + "folder with blanks").c_str(), nullptr);
    DWORD start = GetTickCount();

    CSimDevice sim;
    const struct {
        const char* name;
        void (*test)(CSimDevice*);
    } tests[] = {
        {"layout", TestLayoutAndStates}, {"refresh", TestRefreshFailure},
        {"delete", TestDelete},          {"format", TestFormat},
        {"jobs", TestLocalListAndJobs},  {"properties", TestProperties},
        {"big device", TestBigDevice},
        {"copy", TestCopy},              {"progress", TestProgressAndAbort},
        {"close", TestCloseDuringCopy},
    };
    for (const auto& t : tests) {
        DWORD begun = GetTickCount();
        t.test(&sim);
        std::printf("file manager %s: %lu ms\n", t.name, GetTickCount() - begun);
    }
    CHECK(sim.LockOwner() == nullptr);
    std::printf("file manager window tests: %lu ms\n", GetTickCount() - start);
}
