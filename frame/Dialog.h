// CONXDialog: base of the three objects' non-modal windows.
//
// The device-client base only creates, shows, hides, queries and destroys its
// dialog through the operations below. The window layer lives in
// frame/win32/Dialog.cpp; frame/posix/Dialog.cpp is the build without a window
// system, where a dialog's window can never be created.
#pragma once

#include <cstdint>

#include "frame/Export.h"
#include "frame/OndDeviceComm.h"

class CONXDeviceClient_0;

class ONX_EXPORT CONXDialog {
public:
    CONXDialog(uint32_t templateId, HWND parent);
    virtual ~CONXDialog();

    virtual void UpdateDialogState();
    virtual void SetOwnerClass(CONXDeviceClient_0* owner);
    virtual void SetDeviceComm(COndDeviceComm_0* channel);
    // Creates the window from the template, as a child-owned window of parent.
    virtual bool Create(HWND parent);
    virtual bool DestroyWindow();

    // What the device-client base asks of the window.
    bool HasWindow() const;
    void Show(bool visible);
    bool IsVisible() const;
    HWND GetSafeHwnd() const { return m_hWnd; }

protected:
    // OK, close box and cancel: ask the owner, hide only when it answers 1.
    void OnOK();
    void OnClose();
    void OnCancel();
    void AskOwnerThenHide(uint32_t event);
    void OnTimer(uintptr_t id);
    void StartStatusTimer();
    void StopStatusTimer();

    uint32_t m_nTemplateId;
    COndDeviceComm_0* m_pDeviceComm = nullptr;
    CONXDeviceClient_0* m_pOwner = nullptr;
    uintptr_t m_nTimerHandle = 0;
    uint32_t m_nTimerId = 1;
    uint32_t m_nTimerInterval = 500;
    void* m_hIcon = nullptr;
    HWND m_hWnd = nullptr;

    friend struct TDialogAccess;
};
