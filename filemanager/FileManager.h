// CONXFileManager: the File Manager device-client object (type
// ONX_OBJTYPE_FILEMANAGER). Its window, CFileManagerDialog, exists only on
// Windows (filemanager/win32/); elsewhere ShowDialogNonModal answers
// EONX_ERR_DIALOG.
#pragma once

#include "frame/DeviceClient.h"

class ONX_EXPORT CONXFileManager : public CONXDeviceClient {
public:
    uint32_t GetObjType() override;
    // A window in the middle of a copy (or a question) is handed back to
    // DeleteDialog here, so that it is deleted only once that has unwound.
    ~CONXFileManager() override;

protected:
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;
};
