#include "terminal/win32/TerminalDialog.h"

#include <windows.h>

#include <cstring>
#include <string>

#include "frame/win32/Controls.h"
#include "res/OndResource.h"
#include "terminal/TerminalDevice.h"

namespace {

const uint32_t kPollTimerId = 1;
const uint32_t kPollInterval = 200;
const LONG kMinTrackWidth = 200;
const LONG kMinTrackHeight = 250;

// The anchoring of the controls when the window is resized, in this order.
const struct {
    uint32_t id, flags;
} kPlacement[] = {
    {IDC_TERM_CONFIG, ONX_PLACE_TOPSTRIP},       {IDC_TERM_ANSWERS, ONX_PLACE_FILL},
    {IDC_TERM_INPUT, ONX_PLACE_BOTTOMSTRIP},     {IDC_TERM_APPENDCR, ONX_PLACE_BOTTOMRIGHT},
    {IDC_TERM_CLEAR, ONX_PLACE_BOTTOMRIGHT},     {IDC_TERM_COPY, ONX_PLACE_BOTTOMRIGHT},
    {IDOK, ONX_PLACE_BOTTOMRIGHT},               {IDC_TERM_STATUS, ONX_PLACE_BOTTOMSTRIP},
};

}  // namespace

CTerminalDialog::CTerminalDialog(HWND parent)
    : CONXDialog(IDD_TERMINAL, parent), m_hFont(GetStockObject(SYSTEM_FIXED_FONT)) {
    // The base's periodic timer, id 1, polls the device every 200 ms.
    m_nTimerId = kPollTimerId;
    m_nTimerInterval = kPollInterval;
    m_Input.m_nNotifyMessage = ONX_WM_TERMINALKEY;
    LoadSmallIcon(IDI_TERMINAL);
}

CTerminalDialog::~CTerminalDialog() {
    // The input line may outlive this object by a moment (the base destroys
    // the window): it gets its own procedure back first.
    m_Input.Detach();
}

bool CTerminalDialog::OnInitDialog() {
    CONXDialog::OnInitDialog();
    HWND list = GetDlgItem(IDC_TERM_ANSWERS);
    HWND edit = GetDlgItem(IDC_TERM_INPUT);
    SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), TRUE);
    SendMessageA(edit, WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), TRUE);
    m_Input.Attach(edit);
    for (const auto& p : kPlacement) AutoDlgCtrlPlacement(p.id, p.flags);
    CheckDlgButton(m_hWnd, IDC_TERM_APPENDCR, m_bAppendCR ? BST_CHECKED : BST_UNCHECKED);
    return true;
}

bool CTerminalDialog::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam,
                                intptr_t* result) {
    switch (message) {
        case ONX_WM_TERMINALKEY:
            *result = HistoryKey(static_cast<uint32_t>(wParam));
            return true;
        case WM_GETMINMAXINFO: {
            MINMAXINFO* info = reinterpret_cast<MINMAXINFO*>(lParam);
            info->ptMinTrackSize.x = kMinTrackWidth;
            info->ptMinTrackSize.y = kMinTrackHeight;
            *result = 0;
            return true;
        }
    }
    return CONXDialog::OnMessage(message, wParam, lParam, result);
}

bool CTerminalDialog::OnCommand(uint32_t id, uint32_t notifyCode, HWND control) {
    if (notifyCode != BN_CLICKED) return CONXDialog::OnCommand(id, notifyCode, control);
    switch (id) {
        case IDC_TERM_APPENDCR:
            m_bAppendCR = IsDlgButtonChecked(m_hWnd, IDC_TERM_APPENDCR) != 0 ? 1 : 0;
            return true;
        case IDC_TERM_CLEAR: ClearAnswers(); return true;
        case IDC_TERM_COPY: CopyListBoxContentToClipBoard(GetDlgItem(IDC_TERM_ANSWERS)); return true;
    }
    return CONXDialog::OnCommand(id, notifyCode, control);
}

// Enter arrives here from whatever control has the focus: only the input
// line sends, only Close closes.
void CTerminalDialog::OnOK() {
    HWND focus = GetFocus();
    if (!focus) return;
    if (focus == GetDlgItem(IDOK)) {
        CONXDialog::OnOK();
        return;
    }
    if (focus == GetDlgItem(IDC_TERM_INPUT)) SendLine();
}

void CTerminalDialog::OnCancel() {
    HWND edit = GetDlgItem(IDC_TERM_INPUT);
    if (edit && GetFocus() == edit) {
        SetWindowTextA(edit, "");  // Escape in the input line only empties it
        return;
    }
    CONXDialog::OnCancel();
}

void CTerminalDialog::OnTimer(uintptr_t id) {
    if (id == kPollTimerId) Poll();
    else CONXDialog::OnTimer(id);
}

void CTerminalDialog::UpdateDialogState() { UpdateCommStatus(IDC_TERM_CONFIG); }

void CTerminalDialog::FocusInputLine() {
    HWND edit = GetDlgItem(IDC_TERM_INPUT);
    if (edit) SendMessageA(m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(edit), TRUE);
}

void CTerminalDialog::SendLine() {
    HWND edit = GetDlgItem(IDC_TERM_INPUT);
    TTERMINALSEND send = TerminalSendLine(m_pDeviceComm, this, ControlText(edit),
                                          m_bAppendCR != 0, &m_History);
    if (send.result == TERMINAL_SENT) SetWindowTextA(edit, "");
    SetDlgItemTextA(m_hWnd, IDC_TERM_STATUS, send.status.c_str());
}

void CTerminalDialog::Poll() {
    if (!m_pDeviceComm) return;
    TTERMINALPOLL poll = TerminalPoll(m_pDeviceComm, this, &m_Lines, kPollBudgetBytes);
    if (poll.locked) ShowReceived();
    UpdateDialogState();
}

intptr_t CTerminalDialog::HistoryKey(uint32_t key) {
    std::string text;
    bool moved = false;
    if (key == VK_UP) moved = m_History.Up(&text);
    else if (key == VK_DOWN) moved = m_History.Down(&text);
    if (!moved) return 0;
    HWND edit = GetDlgItem(IDC_TERM_INPUT);
    SetWindowTextA(edit, text.c_str());
    // The caret at the end of the text, and in view. The entry's Append CR
    // choice stays in the history: the check box keeps its state.
    LPARAM end = GetWindowTextLengthA(edit);
    SendMessageA(edit, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageA(edit, EM_SCROLLCARET, 0, 0);
    return 1;
}

void CTerminalDialog::ClearAnswers() {
    HWND list = GetDlgItem(IDC_TERM_ANSWERS);
    m_Lines.Clear();
    m_Widths.clear();
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    m_bStartOver = false;
    RepairHorizontalScrollbarExtendInListBox(list);
}

// Measuring text through the system costs Wine some microseconds a call, and
// a chatty device brings thousands of lines a tick: the font's character
// widths are read once per tick and added up (what the text extent is for a
// font without kerning). Without the table each line is measured.
int CTerminalDialog::MeasureLine(HDC dc, const int* charWidths, const std::string& line) const {
    // The list box shows a line up to a zero byte it may hold.
    size_t length = std::strlen(line.c_str());
    if (charWidths) {
        int width = 0;
        for (size_t i = 0; i < length; ++i) width += charWidths[static_cast<unsigned char>(line[i])];
        return width;
    }
    SIZE size = {};
    if (!dc || !GetTextExtentPoint32A(dc, line.c_str(), static_cast<int>(length), &size)) return 0;
    return size.cx;
}

// The list box follows the lines once per tick, with drawing off: a chatty
// device adds thousands of lines per tick, and only the last 5001 count.
// The widths of the lines are kept beside them, so the horizontal extent (the
// widest line) needs no new measuring of the lines already there.
void CTerminalDialog::ShowReceived() {
    TTERMINALLISTCHANGE change = m_Lines.TakeChange();
    if (!change.removedFromEnd && !change.droppedFromFront && !change.added) return;
    HWND list = GetDlgItem(IDC_TERM_ANSWERS);
    if (!list) return;
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    size_t shown = static_cast<size_t>(SendMessageA(list, LB_GETCOUNT, 0, 0));
    size_t gone = change.removedFromEnd + change.droppedFromFront;
    size_t measureFrom = m_Lines.Count() - change.added;  // the new lines
    bool startOver = m_bStartOver || shown != m_Widths.size() || gone >= shown;
    if (startOver) {
        // Every line goes, or the list box lost track: all lines anew.
        m_Widths.clear();
        measureFrom = 0;
        m_bStartOver = false;
    } else {
        m_Widths.erase(m_Widths.end() - static_cast<std::ptrdiff_t>(change.removedFromEnd), m_Widths.end());
        m_Widths.erase(m_Widths.begin(), m_Widths.begin() + static_cast<std::ptrdiff_t>(change.droppedFromFront));
    }
    // Each line deleted from the front moves all the others: with many of
    // them, filling the list anew is cheaper.
    size_t addFrom = measureFrom;
    if (startOver || change.droppedFromFront * 4 > shown) {
        SendMessageA(list, LB_RESETCONTENT, 0, 0);
        SendMessageA(list, LB_INITSTORAGE, m_Lines.Count(), m_Lines.Count() * 96);
        addFrom = 0;
    } else {
        for (size_t i = 0; i < change.removedFromEnd; ++i)
            SendMessageA(list, LB_DELETESTRING, static_cast<WPARAM>(--shown), 0);
        for (size_t i = 0; i < change.droppedFromFront; ++i) SendMessageA(list, LB_DELETESTRING, 0, 0);
    }
    HDC dc = GetDC(list);
    HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = dc && font ? SelectObject(dc, font) : nullptr;
    int table[256];
    const int* charWidths = dc && GetCharWidth32A(dc, 0, 255, table) ? table : nullptr;
    try {
        for (size_t i = addFrom; i < m_Lines.Count(); ++i) {
            const std::string& line = m_Lines.Line(i);
            LRESULT added = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
            if (added < 0) {
                m_bStartOver = true;  // out of room: the next tick starts over
                break;
            }
            if (i >= measureFrom) m_Widths.push_back(MeasureLine(dc, charWidths, line));
        }
    } catch (...) {
        m_bStartOver = true;
    }
    if (oldFont) SelectObject(dc, oldFont);
    if (dc) ReleaseDC(list, dc);

    LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
    if (count > 0) SendMessageA(list, LB_SETTOPINDEX, static_cast<WPARAM>(count - 1), 0);
    int widest = 0;
    for (int width : m_Widths) widest = width > widest ? width : widest;
    if (SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0) != widest)
        SendMessageA(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
}
