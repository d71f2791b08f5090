#include "filemanager/win32/ListView.h"

#include <commctrl.h>

namespace {

int ColumnCount(HWND list) {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    return header ? static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

}  // namespace

void FMSetUpColumns(HWND list, const TFMLISTCOLUMN* columns, int count, int minStretch) {
    if (!list) return;
    DWORD styles = static_cast<DWORD>(SendMessageA(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
                 styles | LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    while (ColumnCount(list) > count)
        if (!SendMessageA(list, LVM_DELETECOLUMN, count, 0)) break;
    while (ColumnCount(list) < count) {
        LVCOLUMNA column = {};
        column.mask = LVCF_TEXT;
        column.pszText = const_cast<char*>("");
        int before = ColumnCount(list);
        SendMessageA(list, LVM_INSERTCOLUMNA, before, reinterpret_cast<LPARAM>(&column));
        if (ColumnCount(list) == before) break;
    }
    RECT client;
    GetClientRect(list, &client);
    int stretch = client.right - client.left;
    for (int i = 0; i < count; ++i) stretch -= columns[i].width;
    if (stretch < minStretch) stretch = minStretch;
    for (int i = 0; i < count; ++i) {
        LVCOLUMNA column = {};
        column.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH;
        column.pszText = const_cast<char*>(columns[i].header);
        column.fmt = columns[i].format;
        column.cx = columns[i].width ? columns[i].width : stretch;
        SendMessageA(list, LVM_SETCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
    }
}

std::string FMItemText(HWND list, int row, int column, size_t maxChars) {
    std::string text(maxChars + 1, '\0');
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = &text[0];
    item.cchTextMax = static_cast<int>(text.size());
    LRESULT length = SendMessageA(list, LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
    text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return text;
}
