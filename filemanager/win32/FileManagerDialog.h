// CFileManagerDialog: the File Manager's non-modal window (template 4002).
// Left the local files to copy (COndFMLocalListCtrl), right the device's
// directory with its summary. The device actions are ondfm's
// (filemanager/FMDevice.h); this window shows what they show, asks what
// they ask, and copies through CProgressDialog.
//
// A handler that opens a modal window (a question, a file dialog, the
// progress window) runs the host's messages meanwhile, so the host may
// delete the File Manager then. The dialog object stays until that handler
// has unwound (Release), which also gives the channel lock back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "filemanager/FMDevice.h"
#include "filemanager/win32/LocalListCtrl.h"
#include "frame/Dialog.h"

class CFileManagerDialog : public CONXDialog {
public:
    explicit CFileManagerDialog(HWND parent);
    ~CFileManagerDialog() override;

    bool OnInitDialog() override;
    bool OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam, intptr_t* result) override;
    bool OnCommand(uint32_t id, uint32_t notifyCode, HWND control) override;
    void UpdateDialogState() override;

    // Copies files with the progress window and reports the failures.
    virtual void CopyFilesToDevice(const TFILEENTRYLIST& files);

    // Deletes the dialog now, or, inside a handler, once it has unwound (the
    // window goes at once).
    void Release();

    COndFMLocalListCtrl& LocalList() { return m_LocalList; }
    bool ContinueOnError() const { return m_bContinueOnError != 0; }

private:
    // The device actions' view of this window.
    class CView : public CFMDeviceView_0 {
    public:
        explicit CView(CFileManagerDialog* dialog) : m_pDialog(dialog) {}
        void ShowError(const char* text) override;
        EFMANSWER AskDelete(const char* text) override;
        EFMANSWER AskFormat(const char* text) override;
        void PrepareDeviceList() override;
        void SetSummary(const char* text) override;
        void SetDeviceEntries(const std::vector<TDEVDIRENTRY>& entries) override;
        void CopyFiles(const TFILEENTRYLIST& files) override;

    private:
        CFileManagerDialog* m_pDialog;
    };

    // Keeps the dialog alive while the local list handles a key.
    class CKeepAlive : public CFMKeepAlive_0 {
    public:
        explicit CKeepAlive(CFileManagerDialog* dialog) : m_pDialog(dialog) {}
        void Enter() override { ++m_pDialog->m_nBusy; }
        // A key of the local list may have removed rows: the buttons follow.
        void Leave() override {
            m_pDialog->UpdateDialogState();
            m_pDialog->LeaveBusy();
        }

    private:
        CFileManagerDialog* m_pDialog;
    };

    // Keeps the dialog object alive while a handler runs.
    class CBusy {
    public:
        explicit CBusy(CFileManagerDialog* dialog) : m_pDialog(dialog) { ++dialog->m_nBusy; }
        ~CBusy();
        CBusy(const CBusy&) = delete;
        CBusy& operator=(const CBusy&) = delete;

    private:
        CFileManagerDialog* m_pDialog;
    };

    void* LockOwner() { return static_cast<CONXDialog*>(this); }
    // One handler less; deletes the dialog when it was released meanwhile.
    void LeaveBusy();
    void Error(const char* text);
    void OnCommandBusy(uint32_t id);
    void OnAddFiles();
    void OnLoadJob();
    void OnSaveJob();
    void OnDelete();
    void OnDropFiles(uintptr_t drop);  // HDROP
    void Refresh();

    COndFMLocalListCtrl m_LocalList;
    uint32_t m_bContinueOnError = 1;
    CView m_View{this};
    CKeepAlive m_KeepAlive{this};
    int m_nBusy = 0;
    bool m_bDeleteWhenIdle = false;
};
