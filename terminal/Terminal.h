// CONXTerminal: the Terminal device-client object (type ONX_OBJTYPE_TERMINAL).
#pragma once

#include "frame/DeviceClient.h"

class ONX_EXPORT CONXTerminal : public CONXDeviceClient {
public:
    uint32_t GetObjType() override;

protected:
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;
};
