// The window layer without a window system: the objects exist, their windows
// never do, so the device-client base reports EONX_ERR_DIALOG when asked to
// show one and every window operation finds nothing to act on.
#include "frame/Dialog.h"

CONXDialogBase::CONXDialogBase() {}
CONXDialogBase::~CONXDialogBase() {}
bool CONXDialogBase::OnMessage(uint32_t, uintptr_t, intptr_t, intptr_t*) { return false; }
bool CONXDialogBase::OnInitDialog() { return true; }
bool CONXDialogBase::OnCommand(uint32_t, uint32_t, HWND) { return false; }
void CONXDialogBase::OnOK() {}
void CONXDialogBase::OnCancel() {}
void CONXDialogBase::OnClose() { OnCancel(); }
void CONXDialogBase::OnSize(uint32_t, int, int) {}
void CONXDialogBase::OnTimer(uintptr_t) {}
bool CONXDialogBase::DestroyWindow() { return false; }
void CONXDialogBase::DoDataExchange(bool) {}
void CONXDialogBase::PostNcDestroy() {}
bool CONXDialogBase::CreateModeless(uint32_t, HWND) { return false; }
intptr_t CONXDialogBase::DoModal(uint32_t, HWND) { return -1; }
void CONXDialogBase::EndDialog(intptr_t) {}
bool CONXDialogBase::HasWindow() const { return false; }
void CONXDialogBase::Show(bool) {}
bool CONXDialogBase::IsVisible() const { return false; }
HWND CONXDialogBase::GetDlgItem(uint32_t) const { return nullptr; }

CONXDialog::CONXDialog(uint32_t templateId, HWND) : m_nTemplateId(templateId) {}
CONXDialog::~CONXDialog() {}
bool CONXDialog::OnInitDialog() { return true; }
void CONXDialog::OnOK() {}
void CONXDialog::OnCancel() {}
void CONXDialog::OnClose() {}
void CONXDialog::OnSize(uint32_t, int, int) {}
void CONXDialog::OnTimer(uintptr_t id) {
    if (id == m_nTimerId) UpdateDialogState();
}
bool CONXDialog::DestroyWindow() { return false; }
void CONXDialog::DoDataExchange(bool) {}
void CONXDialog::PostNcDestroy() {}
void CONXDialog::UpdateDialogState() {}
void CONXDialog::UpdateCommStatus(uint32_t) {}  // no window to show it in
void CONXDialog::RepairHorizontalScrollbarExtendInListBox(HWND) {}
void CONXDialog::CopyListBoxContentToClipBoard(HWND) {}
void CONXDialog::AutoDlgCtrlPlacement(uint32_t, uint32_t) {}  // no control to measure
void CONXDialog::OnSizeDlgCtrlPlacement(int, int) {}
void CONXDialog::SetOwnerClass(CONXDeviceClient_0* owner) { m_pOwner = owner; }
void CONXDialog::SetDeviceComm(COndDeviceComm_0* channel) {
    m_pDeviceComm = channel;
    UpdateDialogState();
}
bool CONXDialog::Create(HWND) { return false; }
void CONXDialog::AskOwnerThenHide(uint32_t) {}
void CONXDialog::StartStatusTimer() {}
void CONXDialog::StopStatusTimer() {}
void CONXDialog::LoadSmallIcon(uint32_t) {}
