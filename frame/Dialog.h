// The module's window layer, without a framework.
//
// CONXDialogBase is the small dialog class every window of the module derives
// from: it creates a dialog from a template in this module's resources, modeless
// or modal, and dispatches the window messages to virtual handlers.
// CONXDialog is the exported base of the three objects' non-modal windows:
// owner and channel, the status timer, the channel status text, anchoring of
// controls on resize and two list-box utilities.
//
// A derived dialog handles a message of its own (WM_GETMINMAXINFO, a worker's
// WM_APP message) by overriding OnMessage and passing everything else on to
// its base; buttons arrive in OnCommand.
//
// The window code lives in frame/win32/Dialog.cpp; frame/posix/Dialog.cpp is
// the build without a window system, where a dialog's window never exists.
// Message parameters are carried as uintptr_t (WPARAM) and intptr_t (LPARAM,
// LRESULT) so that this header stays free of <windows.h>.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/DlgPlacement.h"
#include "frame/Export.h"
#include "frame/OndDeviceComm.h"

class CONXDeviceClient_0;

class ONX_EXPORT CONXDialogBase {
public:
    CONXDialogBase();
    CONXDialogBase(const CONXDialogBase&) = delete;
    CONXDialogBase& operator=(const CONXDialogBase&) = delete;
    // Destroys a window that still exists; no handler runs for it any more.
    virtual ~CONXDialogBase();

    // Every message of the window passes here first; answers true when it
    // handled the message, with *result as the dialog procedure's answer.
    // The base dispatches to the handlers below.
    virtual bool OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam, intptr_t* result);
    // Returns true to let the system set the default focus.
    virtual bool OnInitDialog();
    // WM_COMMAND for any control other than OK (1) and Cancel (2).
    virtual bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control);
    virtual void OnOK();      // modal: ends with 1
    virtual void OnCancel();  // modal: ends with 2
    virtual void OnClose();   // the close box: OnCancel
    virtual void OnSize(uint32_t type, int cx, int cy);
    virtual void OnTimer(uintptr_t id);
    virtual bool DestroyWindow();
    // Controls to members and back; nothing in the base.
    virtual void DoDataExchange(bool saveAndValidate);
    // The window is going for good (WM_NCDESTROY, however it was destroyed);
    // m_hWnd still names it and is cleared afterwards.
    virtual void PostNcDestroy();

    // Modeless: the window from template templateId with parent as its
    // parent (owner of a pop-up). false when it cannot be created.
    bool CreateModeless(uint32_t templateId, HWND parent);
    // Modal: runs the dialog's own message loop until EndDialog; -1 when the
    // dialog cannot be created.
    intptr_t DoModal(uint32_t templateId, HWND parent);
    void EndDialog(intptr_t result);

    bool HasWindow() const;
    void Show(bool visible);
    bool IsVisible() const;
    HWND GetSafeHwnd() const { return m_hWnd; }
    HWND GetDlgItem(uint32_t id) const;

protected:
    HWND m_hWnd = nullptr;
    bool m_bModal = false;

    friend struct TDialogProc;
};

class ONX_EXPORT CONXDialog : public CONXDialogBase {
public:
    CONXDialog(uint32_t templateId, HWND parent);
    ~CONXDialog() override;

    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    void OnClose() override;
    void OnSize(uint32_t type, int cx, int cy) override;
    void OnTimer(uintptr_t id) override;
    bool DestroyWindow() override;
    void DoDataExchange(bool saveAndValidate) override;
    void PostNcDestroy() override;

    // Added by this class, in this order.
    virtual void UpdateDialogState();
    virtual void UpdateCommStatus(uint32_t ctrlId);
    virtual void RepairHorizontalScrollbarExtendInListBox(HWND listBox);
    virtual void CopyListBoxContentToClipBoard(HWND listBox);
    virtual void AutoDlgCtrlPlacement(uint32_t ctrlId, uint32_t flags);
    virtual void OnSizeDlgCtrlPlacement(int cx, int cy);
    virtual void SetOwnerClass(CONXDeviceClient_0* owner);
    virtual void SetDeviceComm(COndDeviceComm_0* channel);
    // The window from this dialog's template, with parent as its parent.
    virtual bool Create(HWND parent);

protected:
    // Ask the owner about event; hide only when it answers 1 (or no owner).
    void AskOwnerThenHide(uint32_t event);
    void StartStatusTimer();
    void StopStatusTimer();
    // The small icon shown in the caption, from this module's icon iconId.
    void LoadSmallIcon(uint32_t iconId);

    uint32_t m_nTemplateId;
    COndDeviceComm_0* m_pDeviceComm = nullptr;
    CONXDeviceClient_0* m_pOwner = nullptr;
    uintptr_t m_nTimerHandle = 0;
    uint32_t m_nTimerId = 1;
    uint32_t m_nTimerInterval = 500;
    void* m_hIcon = nullptr;  // HICON
    std::vector<TONX_DLGCTRLPLACEMENT> m_Placement;
};
