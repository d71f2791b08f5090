#include "filemanager/win32/FilePropertiesDialog.h"

#include <windows.h>

#include <cstdio>

#include "filemanager/FMRows.h"
#include "filemanager/FMTexts.h"
#include "frame/win32/Controls.h"
#include "res/OndResource.h"

namespace {

// The list is sorted: the user sees "bit reverse", "normal", "program", and
// the mode always comes from the item data.
const struct {
    const char* text;
    uint32_t mode;
} kModes[] = {{"normal", FILEMODE_NORMAL}, {"bit reverse", FILEMODE_BITREVERSE},
              {"program", FILEMODE_PROGRAM}};

void SetNumber(HWND dialog, uint32_t id, uint8_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%u", static_cast<unsigned>(value));
    SetDlgItemTextA(dialog, static_cast<int>(id), text);
}

}  // namespace

void CFMFilePropertiesDialog::SetRecord(const TFILEENTRY& entry) { m_Entry = entry; }

intptr_t CFMFilePropertiesDialog::DoModal(HWND parent) {
    return CONXDialogBase::DoModal(IDD_FILEPROPERTIES, parent);
}

bool CFMFilePropertiesDialog::OnInitDialog() {
    CONXDialogBase::OnInitDialog();
    SetDlgItemTextA(m_hWnd, IDC_FP_PATH, m_Entry.path.c_str());
    SetNumber(m_hWnd, IDC_FP_ID, m_Entry.fileId);
    SetNumber(m_hWnd, IDC_FP_TYPE, m_Entry.fileType);
    HWND modes = GetDlgItem(IDC_FP_MODE);
    SendMessageA(modes, CB_RESETCONTENT, 0, 0);
    for (const auto& m : kModes) {
        LRESULT index = SendMessageA(modes, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(m.text));
        if (index >= 0) SendMessageA(modes, CB_SETITEMDATA, static_cast<WPARAM>(index), m.mode);
    }
    SendMessageA(modes, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);  // none when no item matches
    LRESULT count = SendMessageA(modes, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        if (static_cast<uint32_t>(SendMessageA(modes, CB_GETITEMDATA, static_cast<WPARAM>(i), 0)) ==
            m_Entry.fileMode) {
            SendMessageA(modes, CB_SETCURSEL, static_cast<WPARAM>(i), 0);
            break;
        }
    }
    ApplyModeDependency();
    return true;
}

bool CFMFilePropertiesDialog::OnCommand(uint32_t id, uint32_t notifyCode, HWND control) {
    if (id == IDC_FP_MODE && notifyCode == CBN_SELCHANGE) {
        ApplyModeDependency();
        return true;
    }
    return CONXDialogBase::OnCommand(id, notifyCode, control);
}

void CFMFilePropertiesDialog::ApplyModeDependency() {
    HWND modes = GetDlgItem(IDC_FP_MODE);
    LRESULT selected = SendMessageA(modes, CB_GETCURSEL, 0, 0);
    bool program = selected >= 0 && static_cast<uint32_t>(SendMessageA(
                                        modes, CB_GETITEMDATA, static_cast<WPARAM>(selected), 0)) ==
                                        FILEMODE_PROGRAM;
    EnableWindow(GetDlgItem(IDC_FP_ID), !program);
    EnableWindow(GetDlgItem(IDC_FP_TYPE), !program);
    SetDlgItemTextA(m_hWnd, IDC_FP_NOTE, program ? ondfm::kNoteProgramMode : "");
}

bool CFMFilePropertiesDialog::ReadNumber(uint32_t editId, const char* message, uint8_t stored,
                                         uint8_t* value) {
    if (ondfm::ReadPropertyNumber(ControlText(GetDlgItem(editId)).c_str(), value)) return true;
    MessageBoxA(m_hWnd, message, ondfm::kCaptionError, MB_OK);
    SetNumber(m_hWnd, editId, stored);
    return false;
}

void CFMFilePropertiesDialog::OnOK() {
    // Only the OK button itself confirms: Enter in an edit or the mode list
    // deliberately does nothing.
    if (GetFocus() != GetDlgItem(IDOK)) return;
    uint8_t fileId = 0, fileType = 0;
    if (!ReadNumber(IDC_FP_ID, ondfm::kMsgInvalidFileId, m_Entry.fileId, &fileId)) return;
    if (!ReadNumber(IDC_FP_TYPE, ondfm::kMsgInvalidFileType, m_Entry.fileType, &fileType)) return;
    HWND modes = GetDlgItem(IDC_FP_MODE);
    LRESULT selected = SendMessageA(modes, CB_GETCURSEL, 0, 0);
    if (selected >= 0)  // no selection keeps the mode the record came with
        m_Entry.fileMode = static_cast<uint32_t>(
            SendMessageA(modes, CB_GETITEMDATA, static_cast<WPARAM>(selected), 0));
    m_Entry.fileId = fileId;
    m_Entry.fileType = fileType;
    EndDialog(IDOK);
}
