// CFMFilePropertiesDialog: the modal dialog (template 4003) in which the user
// sets a local file's device ID, type and mode. A record goes in before
// DoModal and comes out after OK; the number rules are ondfm's.
#pragma once

#include <cstdint>
#include <string>

#include "frame/Dialog.h"
#include "util/FileEntry.h"

class CFMFilePropertiesDialog : public CONXDialogBase {
public:
    void SetRecord(const TFILEENTRY& entry);
    const TFILEENTRY& Record() const { return m_Entry; }
    // IDOK or IDCANCEL; -1 when the dialog cannot be shown.
    intptr_t DoModal(HWND parent);

    bool OnInitDialog() override;
    bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control) override;
    void OnOK() override;

private:
    // "program" disables ID and type and shows the note; anything else
    // (no selection too) enables them and empties the note.
    void ApplyModeDependency();
    // The edit's number, or false after the message and with the field
    // showing the stored value again.
    bool ReadNumber(uint32_t editId, const char* message, uint8_t stored, uint8_t* value);

    TFILEENTRY m_Entry;
};
