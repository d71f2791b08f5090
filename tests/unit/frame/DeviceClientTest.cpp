// The device-client base: parameter slots, Call, the dialog life cycle as far
// as it goes without a window, and the three dialog-event routes.
#include <gtest/gtest.h>

#include <vector>

#include "filemanager/FileManager.h"
#include "frame/Dialog.h"
#include "module/ModuleEntry.h"
#include "host/sim/SimDevice.h"
#include "terminal/Terminal.h"

TEST(FrameDeviceClient, ParameterOperationsAnswerMinusOneAndTouchNothing) {
    for (uint32_t i = 0; i < 3; ++i) {
        CONXDeviceClient_0* object = OndDeviceClientCreateInstance(OndDeviceClientGetObjType(i));
        ASSERT_NE(object, nullptr);
        uint64_t v[8] = {7, 7, 7, 7, 7, 7, 7, 7};
        EXPECT_EQ(object->GetParam(0, &v[0], &v[1], &v[2], &v[3]), -1);
        EXPECT_EQ(object->SetParam(5, 1, 2, 3, 4), -1);
        EXPECT_EQ(object->GetParamLimits(9, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]),
                  -1);
        for (uint64_t x : v) EXPECT_EQ(x, 7u);
        OndDeviceClientDeleteInstance(object);
    }
}

TEST(FrameDeviceClient, CallDoesNothingAndWithoutADialogCloseFails) {
    CONXTerminal terminal;
    CONXFileManager fileManager;
    EXPECT_EQ(terminal.Call(0x1000, 1, 2, 3, 4), EONX_ERR_NONE);
    EXPECT_EQ(fileManager.Call(0xFFFFFFFF, 0, 0, 0, 0), EONX_ERR_NONE);
    EXPECT_EQ(terminal.CloseDialogNonModal(), EONX_ERR_DIALOG);
    EXPECT_FALSE(terminal.IsNonModalDialogOpen());
}

namespace {

// A dialog whose window creation can be made to fail, to walk the show logic.
class CProbeDialog : public CONXDialog {
public:
    explicit CProbeDialog(std::vector<const char*>* log) : CONXDialog(1, nullptr), m_log(log) {}
    ~CProbeDialog() override { m_log->push_back("deleted"); }
    void SetOwnerClass(CONXDeviceClient_0* owner) override {
        m_log->push_back("owner");
        CONXDialog::SetOwnerClass(owner);
    }
    void SetDeviceComm(COndDeviceComm_0* channel) override {
        m_log->push_back(channel ? "channel" : "no channel");
        CONXDialog::SetDeviceComm(channel);
    }
    bool Create(HWND) override {
        m_log->push_back("create");
        return false;
    }
    std::vector<const char*>* m_log;
};

// The log lives outside the client: the base destructor deletes the dialog,
// which still writes to it after the derived part is gone.
class CProbeClient : public CONXDeviceClient {
public:
    explicit CProbeClient(std::vector<const char*>* log) : log(*log) {}
    uint32_t GetObjType() override { return 0x1000; }
    CONXDialog* CreateNewDialog(HWND) override {
        log.push_back("new");
        return new CProbeDialog(&log);
    }
    void DeleteDialog(CONXDialog* dialog) override {
        log.push_back("DeleteDialog");
        delete dialog;
    }
    uint32_t Signal(uint32_t event) { return SignalDlgEvent(event); }
    COndDeviceComm_0* Channel() { return m_pDeviceComm; }
    std::vector<const char*>& log;
};

}  // namespace

TEST(FrameDeviceClient, FailedCreationKeepsTheDialogUntilTheNextShow) {
    CSimDevice channel;
    std::vector<const char*> log;
    CProbeClient client(&log);
    client.Connect(&channel);
    EXPECT_EQ(client.ShowDialogNonModal(nullptr), EONX_ERR_DIALOG);
    EXPECT_EQ(client.log, (std::vector<const char*>{"new", "owner", "channel", "create"}));
    client.log.clear();
    // The kept dialog has no window: it is handed to DeleteDialog and rebuilt.
    EXPECT_EQ(client.ShowDialogNonModal(nullptr), EONX_ERR_DIALOG);
    EXPECT_EQ(client.log, (std::vector<const char*>{"DeleteDialog", "deleted", "new", "owner",
                                                    "channel", "create"}));
    client.log.clear();
    // Connect hands the channel to the existing dialog before storing it.
    client.Connect(nullptr);
    EXPECT_EQ(client.log, (std::vector<const char*>{"no channel"}));
    EXPECT_EQ(client.Channel(), nullptr);
}

namespace {
struct TCallbackLog {
    int calls = 0;
    CONXDeviceClient_0* client = nullptr;
    void* userData = nullptr;
    uint32_t event = 99;
    uint32_t answer = 0;
};
uint32_t RecordEvent(CONXDeviceClient_0* client, void* userData, uint32_t event) {
    auto* log = static_cast<TCallbackLog*>(userData);
    ++log->calls;
    log->client = client;
    log->userData = userData;
    log->event = event;
    return log->answer;
}
}  // namespace

TEST(FrameDeviceClient, EventRoutesDecideWhetherTheDialogHides) {
    std::vector<const char*> dialogLog;
    CProbeClient client(&dialogLog);
    EXPECT_EQ(client.Signal(ONX_DLGEVENT_OK), 1u);  // no route: hide

    _TONX_DLGEVENTDATA data = {};
    data.threadMsg = 0x8123;
    data.threadId = 1;
    client.SetDlgEventData(&data);
    EXPECT_EQ(client.Signal(ONX_DLGEVENT_CLOSE), 0u);  // a post cannot answer: stay

    TCallbackLog log;
    log.answer = 7;
    data.callback = RecordEvent;
    data.userData = &log;
    client.SetDlgEventData(&data);
    data.callback = nullptr;  // the record is copied, not kept
    EXPECT_EQ(client.Signal(ONX_DLGEVENT_CANCEL), 7u);
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.client, static_cast<CONXDeviceClient_0*>(&client));
    EXPECT_EQ(log.event, ONX_DLGEVENT_CANCEL);
}
