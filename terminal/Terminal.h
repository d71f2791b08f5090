// CONXTerminal: the Terminal device-client object (type ONX_OBJTYPE_TERMINAL).
// Its window (terminal/win32/TerminalDialog.h) sends typed lines to the
// device and lists what the device sends back; the object adds no data.
#pragma once

#include "frame/DeviceClient.h"

class ONX_EXPORT CONXTerminal : public CONXDeviceClient {
public:
    uint32_t GetObjType() override;

protected:
    // A new CTerminalDialog, or null (out of memory, or no window system).
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;

public:
    // The base's result unchanged on failure; on success the keyboard focus
    // goes to the input line.
    EONX_ERR_ERRCODE_ ShowDialogNonModal(HWND parent) override;
    ~CONXTerminal() override;

private:
    void FocusInputLine();  // per platform: terminal/win32, terminal/posix
};
