// COndFMLocalListCtrl: the File Manager's list of local files (control 4020),
// a report-view list whose four text columns are the only store of each
// file's device properties. The row rules are filemanager/FMRows.h; this
// class moves rows between them and the control, and handles the user's
// keys and double-click on the list.
//
// The control is subclassed for its keys; the double-click arrives as the
// parent's WM_NOTIFY, which the dialog hands on (OnReflectedNotify).
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "filemanager/FMRows.h"
#include "util/FileEntry.h"

// Kept alive by its owner while a key opens modal windows (the properties
// dialog runs the host's messages, and the host may delete the File Manager
// meanwhile). Leave may delete the list with its owner.
class CFMKeepAlive_0 {
public:
    virtual ~CFMKeepAlive_0() = default;
    virtual void Enter() = 0;
    virtual void Leave() = 0;
};

class COndFMLocalListCtrl {
public:
    COndFMLocalListCtrl() = default;
    COndFMLocalListCtrl(const COndFMLocalListCtrl&) = delete;
    COndFMLocalListCtrl& operator=(const COndFMLocalListCtrl&) = delete;
    virtual ~COndFMLocalListCtrl();

    // Binds to the dialog's list control and subclasses it; keepAlive (may be
    // null) brackets the handling of a key.
    bool Attach(HWND list, CFMKeepAlive_0* keepAlive = nullptr);
    void Detach();
    HWND GetSafeHwnd() const { return m_hWnd; }

    // In this order.
    virtual void InitColumns();
    virtual void SetNotifyWindow(HWND window);
    virtual void SetNotifyMessage(uint32_t message);
    virtual void GetEntry(int row, TFILEENTRY* entry);
    virtual void SetEntry(int row, const TFILEENTRY& entry);
    virtual void SetDefaultEntry(int row, const std::string& path);
    virtual void AddFile(const std::string& path);
    virtual void AddEntry(const TFILEENTRY& entry);

    int RowCount() const;
    int SelectedCount() const;
    // The next selected row after `after` (-1: from the start); -1 at the end.
    int NextSelected(int after) const;
    void DeleteAllRows();
    // Every row from first to last, or the selected ones in list order.
    TFILEENTRYLIST AllEntries();
    TFILEENTRYLIST SelectedEntries();
    TFMROW GetRow(int row) const;

    // The user's commands on the list.
    void EditSelected();     // double-click and Space
    void RemoveSelected();   // Delete
    // A WM_NOTIFY of the list that the dialog hands on; true when handled.
    bool OnReflectedNotify(const NMHDR* header, LRESULT* result);

private:
    static LRESULT CALLBACK SubclassProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    void SetRow(int row, const TFMROW& text);
    int AppendRow();
    void Notify();

    HWND m_hWnd = nullptr;
    WNDPROC m_pOldProc = nullptr;
    HWND m_hNotifyWindow = nullptr;
    uint32_t m_nNotifyMessage = 0;
    CFMKeepAlive_0* m_pKeepAlive = nullptr;
};
