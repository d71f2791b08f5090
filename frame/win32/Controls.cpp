#include "frame/win32/Controls.h"

std::string ControlText(HWND control) {
    int length = GetWindowTextLengthA(control);
    std::string text(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    length = GetWindowTextA(control, &text[0], length + 1);
    text.resize(static_cast<size_t>(length > 0 ? length : 0));
    return text;
}

void SetTextIfChanged(HWND control, const char* text) {
    if (control && ControlText(control) != text) SetWindowTextA(control, text);
}

void ListBoxFitHorizontalExtent(HWND listBox) {
    if (!listBox) return;
    HDC dc = GetDC(listBox);
    if (!dc) return;
    HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageA(listBox, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    bool tabbed = (GetWindowLongA(listBox, GWL_STYLE) & LBS_USETABSTOPS) != 0;
    LONG widest = 0;
    LRESULT count = SendMessageA(listBox, LB_GETCOUNT, 0, 0);
    std::string item;
    for (LRESULT i = 0; i < count; ++i) {
        LRESULT length = SendMessageA(listBox, LB_GETTEXTLEN, i, 0);
        if (length < 0) continue;
        item.assign(static_cast<size_t>(length) + 1, '\0');
        length = SendMessageA(listBox, LB_GETTEXT, i, reinterpret_cast<LPARAM>(&item[0]));
        if (length < 0) continue;
        LONG width;
        if (tabbed) {
            width = LOWORD(GetTabbedTextExtentA(dc, item.c_str(), static_cast<int>(length), 0,
                                                nullptr));
        } else {
            SIZE size = {};
            GetTextExtentPoint32A(dc, item.c_str(), static_cast<int>(length), &size);
            width = size.cx;
        }
        if (width > widest) widest = width;
    }
    if (oldFont) SelectObject(dc, oldFont);
    ReleaseDC(listBox, dc);
    SendMessageA(listBox, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
}

OPENFILENAMEA FileDialogRequest(HWND owner, const char* filter, const char* title, char* buffer,
                                DWORD bufferChars, const char* defExt, DWORD flags) {
    OPENFILENAMEA ofn = {};
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = owner;
    ofn.lpstrFilter = filter;
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = buffer;
    ofn.nMaxFile = bufferChars;
    ofn.lpstrTitle = title;
    ofn.lpstrDefExt = defExt;
    ofn.Flags = flags;
    return ofn;
}
