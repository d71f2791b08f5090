// CONXDialog without a window system: the object exists, its window never
// does, so the device-client base reports EONX_ERR_DIALOG when asked to show it.
#include "frame/Dialog.h"

CONXDialog::CONXDialog(uint32_t templateId, HWND) : m_nTemplateId(templateId) {}
CONXDialog::~CONXDialog() {}
void CONXDialog::UpdateDialogState() {}
void CONXDialog::SetOwnerClass(CONXDeviceClient_0* owner) { m_pOwner = owner; }
void CONXDialog::SetDeviceComm(COndDeviceComm_0* channel) {
    m_pDeviceComm = channel;
    UpdateDialogState();
}
bool CONXDialog::Create(HWND) { return false; }
bool CONXDialog::DestroyWindow() { return false; }
bool CONXDialog::HasWindow() const { return false; }
void CONXDialog::Show(bool) {}
bool CONXDialog::IsVisible() const { return false; }
