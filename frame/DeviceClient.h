// The host-facing interfaces of every device-client object, and their common
// base class CONXDeviceClient with the module's shared static utilities.
//
// The virtual order of CONXObject_0 and CONXDeviceClient_0 is the binary
// contract with the host (it calls by slot index): interfaces hold pure
// virtual functions only, with no overloads, no data and no destructor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/ErrCode.h"
#include "frame/Export.h"
#include "frame/OndDeviceComm.h"
#include "util/FileEntry.h"

class CONXDeviceClient_0;
class CONXDialog;

// Object type codes.
enum : uint32_t {
    ONX_OBJTYPE_TERMINAL = 0x1000,
    ONX_OBJTYPE_FILEMANAGER = 0x1001,
    ONX_OBJTYPE_SCRIPTPROCESSOR = 0x1002,
    ONX_OBJTYPE_INVALID = 0xFFFFFFFF,
};

// Dialog event codes handed to the host.
enum : uint32_t {
    ONX_DLGEVENT_OK = 0,
    ONX_DLGEVENT_CLOSE = 1,
    ONX_DLGEVENT_CANCEL = 2,
};

typedef uint32_t (*TONX_DLGEVENTCALLBACK)(CONXDeviceClient_0* client, void* userData,
                                          uint32_t event);

// How the host wants to hear of dialog events; any combination of routes.
struct _TONX_DLGEVENTDATA {
    TONX_DLGEVENTCALLBACK callback;  // null = not used
    void* userData;
    HWND hWnd;                       // null = not used
    uint32_t uMsg;
    uint32_t threadId;
    uint32_t threadMsg;              // 0 = not used
};
static_assert(sizeof(void*) != 8 || sizeof(_TONX_DLGEVENTDATA) == 40, "event record layout");
static_assert(sizeof(void*) != 8 || offsetof(_TONX_DLGEVENTDATA, uMsg) == 24, "event record layout");
static_assert(sizeof(void*) != 8 || offsetof(_TONX_DLGEVENTDATA, threadMsg) == 32, "event record layout");

class CONXObject_0 {
public:
    virtual uint32_t GetObjType() = 0;
};

class CONXDeviceClient_0 : public CONXObject_0 {
public:
    virtual int32_t GetParam(uint32_t id, uint64_t* value1, uint64_t* value2, uint64_t* value3,
                             uint64_t* value4) = 0;
    virtual int32_t SetParam(uint32_t id, uint64_t value1, uint64_t value2, uint64_t value3,
                             uint64_t value4) = 0;
    virtual int32_t GetParamLimits(uint32_t id, uint64_t* min1, uint64_t* max1, uint64_t* min2,
                                   uint64_t* max2, uint64_t* min3, uint64_t* max3,
                                   uint64_t* min4, uint64_t* max4) = 0;
    virtual EONX_ERR_ERRCODE_ Connect(COndDeviceComm_0* channel) = 0;
    virtual EONX_ERR_ERRCODE_ Call(uint32_t function, uint64_t a, uint64_t b, uint64_t c,
                                   uint64_t d) = 0;
    virtual EONX_ERR_ERRCODE_ ShowDialogNonModal(HWND parent) = 0;
    virtual EONX_ERR_ERRCODE_ CloseDialogNonModal() = 0;
    virtual int32_t IsNonModalDialogOpen() = 0;
    virtual void SetDlgEventData(_TONX_DLGEVENTDATA* data) = 0;
};

class ONX_EXPORT CONXDeviceClient : public CONXDeviceClient_0 {
public:
    CONXDeviceClient();
    CONXDeviceClient(const CONXDeviceClient& other);             // shallow, deliberately
    CONXDeviceClient& operator=(const CONXDeviceClient& other);  // shallow, deliberately

    int32_t GetParam(uint32_t id, uint64_t* value1, uint64_t* value2, uint64_t* value3,
                     uint64_t* value4) override;
    int32_t SetParam(uint32_t id, uint64_t value1, uint64_t value2, uint64_t value3,
                     uint64_t value4) override;
    int32_t GetParamLimits(uint32_t id, uint64_t* min1, uint64_t* max1, uint64_t* min2,
                           uint64_t* max2, uint64_t* min3, uint64_t* max3, uint64_t* min4,
                           uint64_t* max4) override;
    EONX_ERR_ERRCODE_ Connect(COndDeviceComm_0* channel) override;
    EONX_ERR_ERRCODE_ Call(uint32_t function, uint64_t a, uint64_t b, uint64_t c,
                           uint64_t d) override;
    EONX_ERR_ERRCODE_ ShowDialogNonModal(HWND parent) override;
    EONX_ERR_ERRCODE_ CloseDialogNonModal() override;
    int32_t IsNonModalDialogOpen() override;
    void SetDlgEventData(_TONX_DLGEVENTDATA* data) override;

    // The shared utilities, for hosts: forwarders to util/ (frame/DeviceClientUtil.cpp).
    // Escaped strings.
    static std::string ParseString(const char* input, size_t length, char terminator,
                                   size_t* endPos, std::string* errorText, int* ok);
    // Backslash paths.
    static void SplitFileName(const std::string& path, std::string* folder, std::string* file);
    static int ConcatenatePathAndFile(const std::string& folder, const std::string& file,
                                      std::string* result);
    static int IsAbsolutePath(const std::string& path);
    static void MakeRelativePath(const std::string& baseFolder, const std::string& path,
                                 std::string* result);
    static char toUpperGer(char c);
    // Job files.
    static void FillEntry(size_t column, std::string* text, TFILEENTRY* entry,
                          std::string& baseFolder);
    static int LoadJobFile(const char* jobPath, std::vector<TFILEENTRY>* list);
    static int SaveJobFile(const char* jobPath, std::vector<TFILEENTRY>* list);

protected:
    virtual CONXDialog* CreateNewDialog(HWND parent);
    virtual void DeleteDialog(CONXDialog* dialog);
    virtual uint32_t SignalDlgEvent(uint32_t event);

public:
    virtual ~CONXDeviceClient();

protected:
    COndDeviceComm_0* m_pDeviceComm;
    CONXDialog* m_pDialog;
    _TONX_DLGEVENTDATA m_DlgEventData;

    friend class CONXDialog;  // the dialog base raises SignalDlgEvent
};
