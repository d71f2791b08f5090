// CONXFileManager: the File Manager device-client object (type ONX_OBJTYPE_FILEMANAGER).
#pragma once

#include "frame/DeviceClient.h"

class ONX_EXPORT CONXFileManager : public CONXDeviceClient {
public:
    uint32_t GetObjType() override;

protected:
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;
};
