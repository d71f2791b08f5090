// The operator's questions on Windows: CUserInputDialog (a number or a text),
// CUserListInputDlg (one line of a list), and CWinOperatorPrompt, which shows
// them modally, without an owner window, on the thread that asks (a script's
// worker thread). The rules (limits, clamping, results) stay with the
// built-ins; these windows only ask.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/Dialog.h"
#include "scriptrt/OperatorPrompt.h"

// Input modes of CUserInputDialog.
enum EUSERINPUTMODE : uint32_t {
    USERINPUT_MODE_UINT32 = 0,
    USERINPUT_MODE_INT32 = 1,
    USERINPUT_MODE_UINT64 = 2,
    USERINPUT_MODE_INT64 = 3,
    USERINPUT_MODE_TEXT = 4,
};

class CUserInputDialog : public CONXDialogBase {
public:
    bool OnInitDialog() override;
    void OnOK() override;
    // IDOK or IDCANCEL; -1 when the window cannot be made.
    intptr_t DoModal();

    std::string m_strCaption;
    std::string m_strPrompt;
    uint32_t m_nMode = USERINPUT_MODE_UINT32;
    uint64_t m_nValue = 0;  // in the mode's width and signedness
    uint64_t m_nLower = 0;
    uint64_t m_nUpper = 0;
    std::string m_strText;  // mode 4

private:
    uint32_t DataType() const;
};

class CUserListInputDlg : public CONXDialogBase {
public:
    bool OnInitDialog() override;
    void OnOK() override;
    bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control) override;
    intptr_t DoModal();

    std::string m_strCaption;
    std::string m_strPrompt;
    std::vector<std::string> m_Items;
    uint32_t m_nSelected = 0;
};

class CWinOperatorPrompt : public CONXOperatorPrompt_0 {
public:
    void ShowMessage(const char* caption, const char* text) override;
    EOPERATORANSWER AskNumber(const TOPERATORNUMBERQUESTION& question, uint64_t* value) override;
    EOPERATORANSWER AskString(const char* caption, const char* prompt, const std::string& initial,
                              std::string* value) override;
    EOPERATORANSWER AskListItem(const char* caption, const char* prompt,
                                const std::vector<std::string>& items, uint32_t initialIndex,
                                uint32_t* index) override;

    // For a closing window that must not wait for the operator: from any
    // thread, closes the question or message open now, and every later one
    // is answered as Cancel without being shown, until Reset.
    void Abandon();
    void Reset();

private:
    bool Abandoned() const { return m_bAbandoned.load(); }
    // The thread asking now (0 = none), whose windows Abandon closes.
    std::atomic<uint32_t> m_nAskingThread{0};
    std::atomic<bool> m_bAbandoned{false};

    friend class CAskingThread;
};
