#include "scriptrt/win32/UserInputDialogs.h"

#include <windows.h>

#include <new>

#include "frame/win32/Controls.h"
#include "res/OndResource.h"
#include "script/ScriptValue.h"
#include "scriptrt/UserInputFuncs.h"

namespace {

const uint32_t kModeTypes[] = {SCRIPT_TYPE_UINT32, SCRIPT_TYPE_INT32, SCRIPT_TYPE_UINT64,
                               SCRIPT_TYPE_INT64};

}  // namespace

// ---------------------------------------------------------------------------
// CUserInputDialog

uint32_t CUserInputDialog::DataType() const {
    return m_nMode < USERINPUT_MODE_TEXT ? kModeTypes[m_nMode] : SCRIPT_TYPE_STRING;
}

intptr_t CUserInputDialog::DoModal() { return CONXDialogBase::DoModal(IDD_USERINPUT, nullptr); }

bool CUserInputDialog::OnInitDialog() {
    CONXDialogBase::OnInitDialog();
    SetWindowTextA(m_hWnd, m_strCaption.c_str());
    SetDlgItemTextA(m_hWnd, IDC_UI_PROMPT,
                    m_strPrompt.empty() ? "Enter information" : m_strPrompt.c_str());
    std::string initial =
        m_nMode == USERINPUT_MODE_TEXT ? m_strText : UserInputFormatNumber(DataType(), m_nValue);
    HWND input = GetDlgItem(IDC_UI_INPUT);
    SetWindowTextA(input, initial.c_str());
    // The operator types over the whole value.
    SendMessageA(input, EM_SETSEL, 0, -1);
    SetFocus(input);
    return false;
}

void CUserInputDialog::OnOK() {
    std::string text = ControlText(GetDlgItem(IDC_UI_INPUT));
    if (m_nMode == USERINPUT_MODE_TEXT) {
        m_strText = text;
        EndDialog(IDOK);
        return;
    }
    uint64_t value = 0;
    std::string message;
    switch (UserInputCheckNumber(text.c_str(), DataType(), m_nLower, m_nUpper, &value, &message)) {
        case USERINPUT_CHECK_OK:
            m_nValue = value;
            EndDialog(IDOK);
            return;
        case USERINPUT_CHECK_TOO_SMALL:
        case USERINPUT_CHECK_TOO_LARGE:
            MessageBoxA(m_hWnd, message.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
            break;
        case USERINPUT_CHECK_NOT_A_NUMBER:
            SetDlgItemTextA(m_hWnd, IDC_UI_INPUT, UserInputFormatNumber(DataType(), m_nValue).c_str());
            break;
    }
    SetFocus(GetDlgItem(IDC_UI_INPUT));
}

// ---------------------------------------------------------------------------
// CUserListInputDlg

intptr_t CUserListInputDlg::DoModal() { return CONXDialogBase::DoModal(IDD_USERLISTINPUT, nullptr); }

bool CUserListInputDlg::OnInitDialog() {
    CONXDialogBase::OnInitDialog();
    SetWindowTextA(m_hWnd, m_strCaption.c_str());
    SetDlgItemTextA(m_hWnd, IDC_ULI_PROMPT,
                    m_strPrompt.empty() ? "Select an item" : m_strPrompt.c_str());
    HWND list = GetDlgItem(IDC_ULI_LIST);
    for (size_t i = 0; i < m_Items.size(); ++i) {
        LRESULT at = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(m_Items[i].c_str()));
        if (at >= 0) SendMessageA(list, LB_SETITEMDATA, static_cast<WPARAM>(at), static_cast<LPARAM>(i));
    }
    ListBoxFitHorizontalExtent(list);
    SendMessageA(list, LB_SETCURSEL, m_nSelected, 0);
    SetFocus(list);
    return false;
}

void CUserListInputDlg::OnOK() {
    HWND list = GetDlgItem(IDC_ULI_LIST);
    LRESULT at = SendMessageA(list, LB_GETCURSEL, 0, 0);
    if (at == LB_ERR) return;  // exactly one line must be picked
    m_nSelected = static_cast<uint32_t>(SendMessageA(list, LB_GETITEMDATA, static_cast<WPARAM>(at), 0));
    EndDialog(IDOK);
}

bool CUserListInputDlg::OnCommand(uint32_t id, uint32_t notifyCode, HWND control) {
    if (id == IDC_ULI_LIST && notifyCode == LBN_DBLCLK) {
        OnOK();
        return true;
    }
    return CONXDialogBase::OnCommand(id, notifyCode, control);
}

// ---------------------------------------------------------------------------
// CWinOperatorPrompt

// Marks the calling thread as the one asking, for Abandon.
class CAskingThread {
public:
    explicit CAskingThread(CWinOperatorPrompt* prompt) : m_prompt(prompt) {
        m_prompt->m_nAskingThread = GetCurrentThreadId();
    }
    ~CAskingThread() { m_prompt->m_nAskingThread = 0; }
    CAskingThread(const CAskingThread&) = delete;
    CAskingThread& operator=(const CAskingThread&) = delete;

private:
    CWinOperatorPrompt* m_prompt;
};

void CWinOperatorPrompt::ShowMessage(const char* caption, const char* text) {
    if (Abandoned()) return;
    CAskingThread asking(this);
    MessageBoxA(nullptr, text, caption, MB_OK | MB_ICONEXCLAMATION);
}

EOPERATORANSWER CWinOperatorPrompt::AskNumber(const TOPERATORNUMBERQUESTION& question,
                                              uint64_t* value) {
    if (Abandoned()) return OPERATOR_ANSWER_CANCEL;
    try {
        CUserInputDialog dialog;
        dialog.m_strCaption = question.caption ? question.caption : "";
        dialog.m_strPrompt = question.prompt ? question.prompt : "";
        switch (question.type) {
            case SCRIPT_TYPE_INT32: dialog.m_nMode = USERINPUT_MODE_INT32; break;
            case SCRIPT_TYPE_UINT64: dialog.m_nMode = USERINPUT_MODE_UINT64; break;
            case SCRIPT_TYPE_INT64: dialog.m_nMode = USERINPUT_MODE_INT64; break;
            default: dialog.m_nMode = USERINPUT_MODE_UINT32; break;
        }
        dialog.m_nValue = question.initial;
        dialog.m_nLower = question.minimum;
        dialog.m_nUpper = question.maximum;
        CAskingThread asking(this);
        if (dialog.DoModal() != IDOK || Abandoned()) return OPERATOR_ANSWER_CANCEL;
        *value = dialog.m_nValue;
        return OPERATOR_ANSWER_OK;
    } catch (...) {
        return OPERATOR_ANSWER_CANCEL;
    }
}

EOPERATORANSWER CWinOperatorPrompt::AskString(const char* caption, const char* prompt,
                                              const std::string& initial, std::string* value) {
    if (Abandoned()) return OPERATOR_ANSWER_CANCEL;
    try {
        CUserInputDialog dialog;
        dialog.m_strCaption = caption ? caption : "";
        dialog.m_strPrompt = prompt ? prompt : "";
        dialog.m_nMode = USERINPUT_MODE_TEXT;
        dialog.m_strText = initial;
        CAskingThread asking(this);
        if (dialog.DoModal() != IDOK || Abandoned()) return OPERATOR_ANSWER_CANCEL;
        value->swap(dialog.m_strText);
        return OPERATOR_ANSWER_OK;
    } catch (...) {
        return OPERATOR_ANSWER_CANCEL;
    }
}

EOPERATORANSWER CWinOperatorPrompt::AskListItem(const char* caption, const char* prompt,
                                                const std::vector<std::string>& items,
                                                uint32_t initialIndex, uint32_t* index) {
    if (Abandoned() || items.empty()) return OPERATOR_ANSWER_CANCEL;
    try {
        CUserListInputDlg dialog;
        dialog.m_strCaption = caption ? caption : "";
        dialog.m_strPrompt = prompt ? prompt : "";
        dialog.m_Items = items;
        dialog.m_nSelected = initialIndex < items.size() ? initialIndex : 0;
        CAskingThread asking(this);
        if (dialog.DoModal() != IDOK || Abandoned()) return OPERATOR_ANSWER_CANCEL;
        if (dialog.m_nSelected >= items.size()) return OPERATOR_ANSWER_CANCEL;
        *index = dialog.m_nSelected;
        return OPERATOR_ANSWER_OK;
    } catch (...) {
        return OPERATOR_ANSWER_CANCEL;
    }
}

namespace {
BOOL CALLBACK CloseThreadWindow(HWND hwnd, LPARAM) {
    PostMessageA(hwnd, WM_CLOSE, 0, 0);
    return TRUE;
}
}  // namespace

void CWinOperatorPrompt::Abandon() {
    m_bAbandoned = true;
    // A validation message over a question closes too; the question then
    // ends at the WM_CLOSE it received. A window made after this sweep is
    // caught by the next one (the closing window sweeps until the run ends).
    if (DWORD thread = m_nAskingThread.load()) EnumThreadWindows(thread, CloseThreadWindow, 0);
}

void CWinOperatorPrompt::Reset() { m_bAbandoned = false; }

CONXOperatorPrompt_0* ScriptNewOwnOperatorPrompt() { return new (std::nothrow) CWinOperatorPrompt; }
