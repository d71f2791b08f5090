// CONXScriptProcessor: the Script Processor device-client object (type ONX_OBJTYPE_SCRIPTPROCESSOR).
#pragma once

#include "frame/DeviceClient.h"

class ONX_EXPORT CONXScriptProcessor : public CONXDeviceClient {
public:
    uint32_t GetObjType() override;

protected:
    CONXDialog* CreateNewDialog(HWND parent) override;
    void DeleteDialog(CONXDialog* dialog) override;
};
