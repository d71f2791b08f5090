#include "filemanager/win32/FileManagerDialog.h"

#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>

#include <cstdio>
#include <cstring>
#include <new>

#include "filemanager/FMRows.h"
#include "filemanager/FMTexts.h"
#include "filemanager/win32/ListView.h"
#include "filemanager/win32/ProgressDialog.h"
#include "frame/win32/Controls.h"
#include "res/OndResource.h"
#include "util/JobFile.h"

namespace {

const DWORD kSelectBufferChars = 32767;
const char kAllFilesFilter[] = "All files (*.*)\0*.*\0";
const char kJobFilter[] = "Job files (*.dcj)\0*.dcj\0All files (*.*)\0*.*\0";
const char kListFilter[] = "List files (*.dcj)\0*.dcj\0All files (*.*)\0*.*\0";
const size_t kDeviceIdChars = 1024;  // of the device list's first column

// The device list's columns, all right-aligned; "File size" takes what the
// others leave, at least 100 pixels.
const TFMLISTCOLUMN kDeviceColumns[] = {
    {"File ID", LVCFMT_RIGHT, 60},
    {"File type", LVCFMT_RIGHT, 60},
    {"File size", LVCFMT_RIGHT, 0},
};

// The paths an open-file dialog with multiple selection answered: one full
// path, or a folder followed by names, each ended by a NUL.
std::vector<std::string> SelectedPaths(const char* buffer, WORD fileOffset) {
    std::vector<std::string> paths;
    if (fileOffset == 0 || buffer[fileOffset - 1] != '\0') {
        paths.push_back(buffer);
        return paths;
    }
    std::string folder = buffer;
    if (!folder.empty() && folder.back() != '\\') folder += '\\';
    for (const char* name = buffer + fileOffset; *name; name += std::strlen(name) + 1)
        paths.push_back(folder + name);
    return paths;
}

}  // namespace

CFileManagerDialog::CFileManagerDialog(HWND parent) : CONXDialog(IDD_FILEMANAGER, parent) {
    LoadSmallIcon(IDI_FILEMANAGER);
}

CFileManagerDialog::~CFileManagerDialog() { m_LocalList.Detach(); }

CFileManagerDialog::CBusy::~CBusy() { m_pDialog->LeaveBusy(); }

void CFileManagerDialog::LeaveBusy() {
    if (--m_nBusy == 0 && m_bDeleteWhenIdle) delete this;
}

void CFileManagerDialog::Release() {
    if (m_nBusy == 0) {
        if (HasWindow()) DestroyWindow();
        delete this;
        return;
    }
    // Inside a handler: the window goes now (and with it a progress window,
    // whose worker is joined), the object when the handler returns.
    m_bDeleteWhenIdle = true;
    if (HasWindow()) DestroyWindow();
}

bool CFileManagerDialog::OnInitDialog() {
    CONXDialog::OnInitDialog();
    CheckDlgButton(m_hWnd, IDC_FM_CONTINUE, m_bContinueOnError ? BST_CHECKED : BST_UNCHECKED);
    m_LocalList.Attach(GetDlgItem(IDC_FM_LOCALLIST), &m_KeepAlive);
    m_LocalList.InitColumns();
    CBusy busy(this);
    Refresh();
    return true;
}

bool CFileManagerDialog::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam,
                                   intptr_t* result) {
    switch (message) {
        case WM_NOTIFY: {
            const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
            if (header && header->idFrom == IDC_FM_LOCALLIST) {
                CBusy busy(this);
                LRESULT answer = 0;
                if (m_LocalList.OnReflectedNotify(header, &answer)) {
                    *result = answer;
                    return true;
                }
            }
            break;
        }
        case WM_DROPFILES: {
            CBusy busy(this);
            OnDropFiles(wParam);
            UpdateDialogState();
            *result = 0;
            return true;
        }
    }
    return CONXDialog::OnMessage(message, wParam, lParam, result);
}

bool CFileManagerDialog::OnCommand(uint32_t id, uint32_t notifyCode, HWND control) {
    if (notifyCode != BN_CLICKED) return CONXDialog::OnCommand(id, notifyCode, control);
    switch (id) {
        case IDC_FM_ADDFILES:
        case IDC_FM_CLEAR:
        case IDC_FM_LOADJOB:
        case IDC_FM_SAVEJOB:
        case IDC_FM_COPYSELECTED:
        case IDC_FM_COPYALL:
        case IDC_FM_REFRESH:
        case IDC_FM_FORMAT:
        case IDC_FM_DELETE:
        case IDC_FM_CONTINUE: {
            CBusy busy(this);
            OnCommandBusy(id);
            return true;  // the object may be gone now: no member is touched
        }
    }
    return CONXDialog::OnCommand(id, notifyCode, control);
}

void CFileManagerDialog::OnCommandBusy(uint32_t id) {
    switch (id) {
        case IDC_FM_ADDFILES: OnAddFiles(); break;
        case IDC_FM_CLEAR: m_LocalList.DeleteAllRows(); break;
        case IDC_FM_LOADJOB: OnLoadJob(); break;
        case IDC_FM_SAVEJOB: OnSaveJob(); break;
        case IDC_FM_COPYSELECTED:
            ondfm::CopyFiles(m_pDeviceComm, LockOwner(), &m_View, m_LocalList.SelectedEntries(),
                             false);
            break;
        case IDC_FM_COPYALL:
            ondfm::CopyFiles(m_pDeviceComm, LockOwner(), &m_View, m_LocalList.AllEntries(), true);
            break;
        case IDC_FM_REFRESH: Refresh(); break;
        case IDC_FM_FORMAT: ondfm::FormatDevice(m_pDeviceComm, LockOwner(), &m_View); break;
        case IDC_FM_DELETE: OnDelete(); break;
        case IDC_FM_CONTINUE:
            m_bContinueOnError = IsDlgButtonChecked(m_hWnd, IDC_FM_CONTINUE) == BST_CHECKED;
            break;
    }
    // The buttons follow at once: without a channel no status timer runs.
    UpdateDialogState();
}

void CFileManagerDialog::UpdateDialogState() {
    if (!m_hWnd) return;
    UpdateCommStatus(IDC_FM_CONFIG);
    int rows = m_LocalList.RowCount();
    int selectedRows = m_LocalList.SelectedCount();
    HWND device = GetDlgItem(IDC_FM_DEVICELIST);
    int selectedDevice = device ? static_cast<int>(SendMessageA(device, LVM_GETSELECTEDCOUNT, 0, 0)) : 0;
    // A missing channel counts as not connected.
    bool connected = m_pDeviceComm && m_pDeviceComm->GetState() == 1;
    EnableWindow(GetDlgItem(IDC_FM_SAVEJOB), rows > 0);
    EnableWindow(GetDlgItem(IDC_FM_COPYSELECTED), connected && selectedRows > 0);
    EnableWindow(GetDlgItem(IDC_FM_COPYALL), connected && rows > 0);
    EnableWindow(GetDlgItem(IDC_FM_REFRESH), connected);
    EnableWindow(GetDlgItem(IDC_FM_FORMAT), connected);
    EnableWindow(GetDlgItem(IDC_FM_DELETE), connected && selectedDevice > 0);
}

void CFileManagerDialog::Error(const char* text) {
    if (HasWindow()) MessageBoxA(m_hWnd, text, ondfm::kCaptionError, MB_OK | MB_ICONEXCLAMATION);
}

void CFileManagerDialog::Refresh() { ondfm::RefreshDirectory(m_pDeviceComm, LockOwner(), &m_View); }

void CFileManagerDialog::OnDelete() {
    std::vector<std::string> idTexts;
    HWND device = GetDlgItem(IDC_FM_DEVICELIST);
    int count = device ? static_cast<int>(SendMessageA(device, LVM_GETSELECTEDCOUNT, 0, 0)) : 0;
    for (int i = 0, row = -1; i < count; ++i) {
        row = static_cast<int>(SendMessageA(device, LVM_GETNEXTITEM, static_cast<WPARAM>(row),
                                            MAKELPARAM(LVNI_SELECTED, 0)));
        if (row < 0) break;
        idTexts.push_back(FMItemText(device, row, 0, kDeviceIdChars));
    }
    ondfm::DeleteFiles(m_pDeviceComm, LockOwner(), &m_View, idTexts);
}

void CFileManagerDialog::OnAddFiles() {
    char* names = new (std::nothrow) char[kSelectBufferChars];
    if (!names) {
        Error(ondfm::kMsgNoSelectBuffer);
        return;
    }
    names[0] = '\0';
    OPENFILENAMEA ofn =
        FileDialogRequest(m_hWnd, kAllFilesFilter, "Open source file(s)", names, kSelectBufferChars,
                          nullptr, OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_HIDEREADONLY);
    if (GetOpenFileNameA(&ofn)) {
        for (const std::string& path : SelectedPaths(names, ofn.nFileOffset)) m_LocalList.AddFile(path);
    } else {
        CommDlgExtendedError();  // cancelled or failed: nothing is added either way
    }
    delete[] names;
}

void CFileManagerDialog::OnDropFiles(uintptr_t dropHandle) {
    HDROP drop = reinterpret_cast<HDROP>(dropHandle);
    UINT count = DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        char name[ondfm::kRowPathMax + 1] = "";
        if (DragQueryFileA(drop, i, name, sizeof name)) m_LocalList.AddFile(name);
    }
    DragFinish(drop);
}

void CFileManagerDialog::OnLoadJob() {
    char path[MAX_PATH] = "";
    OPENFILENAMEA ofn = FileDialogRequest(m_hWnd, kJobFilter, "Open job file", path, MAX_PATH, "dcj",
                                          OFN_EXPLORER | OFN_HIDEREADONLY);
    if (!GetOpenFileNameA(&ofn)) return;
    TFILEENTRYLIST entries;
    if (!ondutil::LoadJobFile(path, &entries)) {
        Error(ondfm::kMsgCannotOpenList);
        return;
    }
    m_LocalList.DeleteAllRows();
    for (const TFILEENTRY& entry : entries) m_LocalList.AddEntry(entry);
}

void CFileManagerDialog::OnSaveJob() {
    if (m_LocalList.RowCount() == 0) {
        Error(ondfm::kMsgNothingToSave);
        return;
    }
    char path[MAX_PATH] = "";
    OPENFILENAMEA ofn = FileDialogRequest(m_hWnd, kListFilter, "Save list file", path, MAX_PATH, "dcj",
                                          OFN_EXPLORER);  // no question when the file exists
    if (!GetSaveFileNameA(&ofn)) return;
    TFILEENTRYLIST entries = m_LocalList.AllEntries();
    if (!ondutil::SaveJobFile(path, &entries)) Error(ondfm::kMsgCannotCreateList);
}

void CFileManagerDialog::CopyFilesToDevice(const TFILEENTRYLIST& files) {
    CProgressDialog progress;
    progress.Setup(m_pDeviceComm, files, m_bContinueOnError != 0);
    // The copy holds the lock as this dialog: the status timer, which locks as
    // the dialog too, would be let in and ask the channel beside the worker.
    StopStatusTimer();
    progress.DoModal(m_hWnd);
    if (m_hWnd && m_pDeviceComm) StartStatusTimer();
    std::string report = ondfm::CopyReport(progress.Files(), progress.Errors(), m_pDeviceComm);
    if (!report.empty()) Error(report.c_str());
}

// --- the device actions' view ------------------------------------------------

void CFileManagerDialog::CView::ShowError(const char* text) { m_pDialog->Error(text); }

// A window that is gone asks nobody: the answer is the one that changes nothing.
EFMANSWER CFileManagerDialog::CView::AskDelete(const char* text) {
    if (!m_pDialog->HasWindow()) return FM_ANSWER_NO;
    int answer = MessageBoxA(m_pDialog->m_hWnd, text, ondfm::kCaptionWarning,
                             MB_YESNO | MB_ICONQUESTION);
    return answer == IDYES ? FM_ANSWER_YES : FM_ANSWER_NO;
}

EFMANSWER CFileManagerDialog::CView::AskFormat(const char* text) {
    if (!m_pDialog->HasWindow()) return FM_ANSWER_CANCEL;
    int answer = MessageBoxA(m_pDialog->m_hWnd, text, ondfm::kCaptionFormat,
                             MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3);
    return answer == IDYES ? FM_ANSWER_YES : answer == IDNO ? FM_ANSWER_NO : FM_ANSWER_CANCEL;
}

void CFileManagerDialog::CView::PrepareDeviceList() {
    FMSetUpColumns(m_pDialog->GetDlgItem(IDC_FM_DEVICELIST), kDeviceColumns, 3, 100);
}

void CFileManagerDialog::CView::SetSummary(const char* text) {
    if (m_pDialog->HasWindow()) SetDlgItemTextA(m_pDialog->m_hWnd, IDC_FM_SUMMARY, text);
}

void CFileManagerDialog::CView::SetDeviceEntries(const std::vector<TDEVDIRENTRY>& entries) {
    HWND list = m_pDialog->GetDlgItem(IDC_FM_DEVICELIST);
    if (!list) return;
    // Filled with drawing off: one paint for the whole directory.
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
    SendMessageA(list, LVM_SETITEMCOUNT, entries.size(), 0);
    for (size_t i = 0; i < entries.size(); ++i) {
        char text[3][16];
        std::snprintf(text[0], sizeof text[0], "%u", static_cast<unsigned>(entries[i].fileId));
        std::snprintf(text[1], sizeof text[1], "%u", static_cast<unsigned>(entries[i].fileType));
        std::snprintf(text[2], sizeof text[2], "%u", static_cast<unsigned>(entries[i].fileSize));
        LVITEMA item = {};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(i);
        item.pszText = text[0];
        int row = static_cast<int>(SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        if (row < 0) break;
        for (int column = 1; column < 3; ++column) {
            LVITEMA sub = {};
            sub.iSubItem = column;
            sub.pszText = text[column];
            SendMessageA(list, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&sub));
        }
    }
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
}

void CFileManagerDialog::CView::CopyFiles(const TFILEENTRYLIST& files) {
    m_pDialog->CopyFilesToDevice(files);
}
