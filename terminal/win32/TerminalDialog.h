// CTerminalDialog: the Terminal's non-modal window (template IDD_TERMINAL).
// The operator types a line into the input line and presses Enter; the
// line's escapes become bytes that go to the device. What the device sends
// back is polled every 200 ms (the dialog base's timer, id 1) and shown line
// by line in the answer list. The rules live in the core: TerminalSendLine
// and TerminalPoll (terminal/TerminalDevice.h), the list's lines
// (CONXTerminalLines) and the history (CONXTerminalHistory); this class
// moves their results into the controls.
#pragma once

#include <cstdint>
#include <deque>

#include "frame/Dialog.h"
#include "terminal/TerminalHistory.h"
#include "terminal/TerminalLines.h"
#include "terminal/win32/TerminalEdit.h"

enum : uint32_t {
    // From the input line: wParam = the virtual key; answers 1 when the key
    // moved in the history (the input line then ignores it), else 0.
    ONX_WM_TERMINALKEY = 0x8001,
};

class CTerminalDialog : public CONXDialog {
public:
    explicit CTerminalDialog(HWND parent);
    ~CTerminalDialog() override;

    bool OnInitDialog() override;
    bool OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam, intptr_t* result) override;
    bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control) override;
    void OnOK() override;
    void OnCancel() override;
    void OnTimer(uintptr_t id) override;
    void UpdateDialogState() override;

    // Puts the keyboard focus into the input line.
    void FocusInputLine();

    // At most this much is read in one tick, so that a device that sends
    // without pause cannot keep the window from its messages.
    static const uint64_t kPollBudgetBytes = 1u << 20;

private:
    void SendLine();
    void Poll();
    intptr_t HistoryKey(uint32_t key);
    // Brings the list box up to the lines' changes since the last time.
    void ShowReceived();
    void ClearAnswers();
    int MeasureLine(HDC dc, const int* charWidths, const std::string& line) const;

    void* m_hFont;  // HFONT, the stock fixed font: not owned
    uint32_t m_bAppendCR = 1;
    CONXTerminalLines m_Lines;  // the answer list, with the line flags
    CONXTerminalHistory m_History;
    CTerminalEdit m_Input;
    std::deque<int> m_Widths;   // of the list box's lines, in pixels
    bool m_bStartOver = false;  // the list box missed lines: fill it anew
};
