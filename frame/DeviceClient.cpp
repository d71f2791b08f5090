// CONXDeviceClient: channel, dialog and dialog-event routes shared by the
// Terminal, the File Manager and the Script Processor.
#include "frame/DeviceClient.h"

#include <cstring>

#include "frame/Dialog.h"
#include "frame/HostMessages.h"

CONXDeviceClient::CONXDeviceClient() : m_pDeviceComm(nullptr), m_pDialog(nullptr) {
    std::memset(&m_DlgEventData, 0, sizeof m_DlgEventData);
}

// Shallow on purpose: both objects then share the channel and the dialog.
CONXDeviceClient::CONXDeviceClient(const CONXDeviceClient& other) = default;
CONXDeviceClient& CONXDeviceClient::operator=(const CONXDeviceClient& other) = default;

int32_t CONXDeviceClient::GetParam(uint32_t, uint64_t*, uint64_t*, uint64_t*, uint64_t*) {
    return -1;
}

int32_t CONXDeviceClient::SetParam(uint32_t, uint64_t, uint64_t, uint64_t, uint64_t) { return -1; }

int32_t CONXDeviceClient::GetParamLimits(uint32_t, uint64_t*, uint64_t*, uint64_t*, uint64_t*,
                                         uint64_t*, uint64_t*, uint64_t*, uint64_t*) {
    return -1;
}

EONX_ERR_ERRCODE_ CONXDeviceClient::Connect(COndDeviceComm_0* channel) {
    if (m_pDialog) m_pDialog->SetDeviceComm(channel);  // the dialog first: it restarts its timer
    m_pDeviceComm = channel;
    return EONX_ERR_NONE;
}

EONX_ERR_ERRCODE_ CONXDeviceClient::Call(uint32_t, uint64_t, uint64_t, uint64_t, uint64_t) {
    return EONX_ERR_NONE;
}

EONX_ERR_ERRCODE_ CONXDeviceClient::ShowDialogNonModal(HWND parent) {
    if (m_pDialog) {
        if (m_pDialog->HasWindow()) {
            m_pDialog->Show(true);
            return EONX_ERR_NONE;
        }
        // The host destroyed the window behind our back: start over.
        DeleteDialog(m_pDialog);
        m_pDialog = nullptr;
    }
    m_pDialog = CreateNewDialog(parent);
    if (!m_pDialog) return EONX_ERR_DIALOG;
    m_pDialog->SetOwnerClass(this);
    m_pDialog->SetDeviceComm(m_pDeviceComm);
    if (!m_pDialog->Create(parent)) return EONX_ERR_DIALOG;  // kept; replaced on the next call
    m_pDialog->Show(true);
    return EONX_ERR_NONE;
}

EONX_ERR_ERRCODE_ CONXDeviceClient::CloseDialogNonModal() {
    if (!m_pDialog || !m_pDialog->HasWindow()) return EONX_ERR_DIALOG;
    m_pDialog->Show(false);
    return EONX_ERR_NONE;
}

int32_t CONXDeviceClient::IsNonModalDialogOpen() {
    return m_pDialog && m_pDialog->HasWindow() && m_pDialog->IsVisible();
}

void CONXDeviceClient::SetDlgEventData(_TONX_DLGEVENTDATA* data) {
    if (data) m_DlgEventData = *data;  // copied, the record is not kept
}

CONXDialog* CONXDeviceClient::CreateNewDialog(HWND) { return nullptr; }

void CONXDeviceClient::DeleteDialog(CONXDialog*) {}

// Every configured route fires, in this order. A posted event cannot answer,
// so with only a thread message the dialog stays visible (deliberate: the
// host then decides by calling CloseDialogNonModal).
uint32_t CONXDeviceClient::SignalDlgEvent(uint32_t event) {
    uint32_t result = 1;
    CONXDeviceClient_0* self = this;
    if (m_DlgEventData.threadMsg != 0) {
        HostPostThreadMessage(m_DlgEventData.threadId, m_DlgEventData.threadMsg,
                              reinterpret_cast<uintptr_t>(self), (intptr_t)event);
        result = 0;
    }
    if (m_DlgEventData.hWnd) {
        result = (uint32_t)HostSendMessage(m_DlgEventData.hWnd, m_DlgEventData.uMsg,
                                           reinterpret_cast<uintptr_t>(self), (intptr_t)event);
    }
    if (m_DlgEventData.callback) return m_DlgEventData.callback(self, m_DlgEventData.userData, event);
    return result;
}

CONXDeviceClient::~CONXDeviceClient() {
    if (m_pDialog) {
        if (m_pDialog->HasWindow()) m_pDialog->DestroyWindow();
        delete m_pDialog;
        m_pDialog = nullptr;
    }
}
