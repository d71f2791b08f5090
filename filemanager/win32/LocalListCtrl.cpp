#include "filemanager/win32/LocalListCtrl.h"

#include <commctrl.h>

#include "filemanager/win32/FilePropertiesDialog.h"
#include "filemanager/win32/ListView.h"

namespace {

const char kSelfProperty[] = "OndFMLocalList";

// Filename takes what the others leave, at least 200 pixels.
const TFMLISTCOLUMN kColumns[] = {
    {"Filename", LVCFMT_LEFT, 0},
    {"File ID", LVCFMT_RIGHT, 50},
    {"File type", LVCFMT_RIGHT, 50},
    {"File mode", LVCFMT_RIGHT, 50},
};
const int kColumnCount = 4;

}  // namespace

COndFMLocalListCtrl::~COndFMLocalListCtrl() { Detach(); }

bool COndFMLocalListCtrl::Attach(HWND list, CFMKeepAlive_0* keepAlive) {
    Detach();
    if (!list) return false;
    m_hWnd = list;
    m_pKeepAlive = keepAlive;
    SetPropA(list, kSelfProperty, this);
    m_pOldProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(SubclassProc)));
    return true;
}

void COndFMLocalListCtrl::Detach() {
    if (!m_hWnd) return;
    if (IsWindow(m_hWnd)) {
        if (m_pOldProc)
            SetWindowLongPtrA(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pOldProc));
        RemovePropA(m_hWnd, kSelfProperty);
    }
    m_hWnd = nullptr;
    m_pOldProc = nullptr;
}

LRESULT CALLBACK COndFMLocalListCtrl::SubclassProc(HWND hwnd, UINT msg, WPARAM wParam,
                                                   LPARAM lParam) {
    auto* self = static_cast<COndFMLocalListCtrl*>(GetPropA(hwnd, kSelfProperty));
    if (!self) return DefWindowProcA(hwnd, msg, wParam, lParam);
    WNDPROC old = self->m_pOldProc;
    if (msg == WM_KEYDOWN && (wParam == VK_SPACE || wParam == VK_DELETE)) {
        CFMKeepAlive_0* keepAlive = self->m_pKeepAlive;
        if (keepAlive) keepAlive->Enter();
        try {
            if (wParam == VK_SPACE) self->EditSelected();
            else self->RemoveSelected();
        } catch (...) {
            // nothing leaves a window procedure
        }
        if (keepAlive) keepAlive->Leave();  // self may be gone now
        return 0;
    }
    if (msg == WM_NCDESTROY) {
        // The control goes before the dialog object: unhook on the way.
        SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old));
        RemovePropA(hwnd, kSelfProperty);
        self->m_hWnd = nullptr;
        self->m_pOldProc = nullptr;
    }
    return CallWindowProcA(old, hwnd, msg, wParam, lParam);
}

void COndFMLocalListCtrl::InitColumns() { FMSetUpColumns(m_hWnd, kColumns, kColumnCount, 200); }

void COndFMLocalListCtrl::SetNotifyWindow(HWND window) { m_hNotifyWindow = window; }

void COndFMLocalListCtrl::SetNotifyMessage(uint32_t message) { m_nNotifyMessage = message; }

void COndFMLocalListCtrl::Notify() {
    if (m_hNotifyWindow && m_nNotifyMessage) SendMessageA(m_hNotifyWindow, m_nNotifyMessage, 0, 0);
}

TFMROW COndFMLocalListCtrl::GetRow(int row) const {
    TFMROW text;
    if (!m_hWnd) return text;
    text.path = FMItemText(m_hWnd, row, 0, ondfm::kRowPathMax);
    text.fileId = FMItemText(m_hWnd, row, 1, 63);
    text.fileType = FMItemText(m_hWnd, row, 2, 63);
    text.fileMode = FMItemText(m_hWnd, row, 3, 63);
    return text;
}

void COndFMLocalListCtrl::SetRow(int row, const TFMROW& text) {
    const std::string* columns[] = {&text.path, &text.fileId, &text.fileType, &text.fileMode};
    for (int i = 0; i < kColumnCount; ++i) {
        LVITEMA item = {};
        item.iSubItem = i;
        item.pszText = const_cast<char*>(columns[i]->c_str());
        SendMessageA(m_hWnd, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
    }
}

int COndFMLocalListCtrl::AppendRow() {
    LVITEMA item = {};
    item.mask = LVIF_TEXT;
    item.iItem = RowCount();
    item.pszText = const_cast<char*>("");
    return static_cast<int>(SendMessageA(m_hWnd, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
}

void COndFMLocalListCtrl::GetEntry(int row, TFILEENTRY* entry) {
    if (entry) *entry = ondfm::EntryFromRow(GetRow(row));
}

void COndFMLocalListCtrl::SetEntry(int row, const TFILEENTRY& entry) {
    if (m_hWnd) SetRow(row, ondfm::RowFromEntry(entry));
}

void COndFMLocalListCtrl::SetDefaultEntry(int row, const std::string& path) {
    if (m_hWnd) SetRow(row, ondfm::DefaultRow(path));
}

void COndFMLocalListCtrl::AddFile(const std::string& path) {
    if (!m_hWnd) return;
    int row = AppendRow();
    if (row >= 0) SetDefaultEntry(row, path);
}

void COndFMLocalListCtrl::AddEntry(const TFILEENTRY& entry) {
    if (!m_hWnd) return;
    int row = AppendRow();
    if (row >= 0) SetEntry(row, entry);
}

int COndFMLocalListCtrl::RowCount() const {
    return m_hWnd ? static_cast<int>(SendMessageA(m_hWnd, LVM_GETITEMCOUNT, 0, 0)) : 0;
}

int COndFMLocalListCtrl::SelectedCount() const {
    return m_hWnd ? static_cast<int>(SendMessageA(m_hWnd, LVM_GETSELECTEDCOUNT, 0, 0)) : 0;
}

int COndFMLocalListCtrl::NextSelected(int after) const {
    if (!m_hWnd) return -1;
    return static_cast<int>(SendMessageA(m_hWnd, LVM_GETNEXTITEM, static_cast<WPARAM>(after),
                                         MAKELPARAM(LVNI_SELECTED, 0)));
}

void COndFMLocalListCtrl::DeleteAllRows() {
    if (m_hWnd) SendMessageA(m_hWnd, LVM_DELETEALLITEMS, 0, 0);
}

TFILEENTRYLIST COndFMLocalListCtrl::AllEntries() {
    TFILEENTRYLIST entries;
    int count = RowCount();
    entries.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) GetEntry(i, &entries[static_cast<size_t>(i)]);
    return entries;
}

TFILEENTRYLIST COndFMLocalListCtrl::SelectedEntries() {
    TFILEENTRYLIST entries;
    int count = SelectedCount();
    for (int i = 0, row = -1; i < count; ++i) {
        row = NextSelected(row);
        if (row < 0) break;
        entries.emplace_back();
        GetEntry(row, &entries.back());
    }
    return entries;
}

// One properties dialog serves every selected row; Cancel for one row goes
// on with the next.
void COndFMLocalListCtrl::EditSelected() {
    if (!m_hWnd) return;
    CFMFilePropertiesDialog dialog;
    int count = SelectedCount();
    for (int i = 0, row = -1; i < count && m_hWnd; ++i) {
        row = NextSelected(row);
        if (row < 0) break;
        TFILEENTRY entry;
        GetEntry(row, &entry);
        dialog.SetRecord(entry);
        if (dialog.DoModal(GetParent(m_hWnd)) == IDOK && m_hWnd) SetEntry(row, dialog.Record());
    }
    Notify();
}

void COndFMLocalListCtrl::RemoveSelected() {
    if (!m_hWnd) return;
    for (int row = NextSelected(-1); row >= 0; row = NextSelected(-1))
        if (!SendMessageA(m_hWnd, LVM_DELETEITEM, row, 0)) break;
    Notify();
}

bool COndFMLocalListCtrl::OnReflectedNotify(const NMHDR* header, LRESULT* result) {
    if (!m_hWnd || !header || header->hwndFrom != m_hWnd || header->code != NM_DBLCLK) return false;
    EditSelected();
    *result = 0;
    return true;
}
