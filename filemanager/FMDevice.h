// The File Manager's device actions: refresh the directory, delete files,
// format, copy. Each one runs inside the channel's Lock/Unlock pair with the
// File Manager's window (or whatever stands in for it) as owner, and shows
// what it has to show through the view. The window, a console program and
// the tests each implement the view.
//
// Refresh after delete, format and copy runs while the action still holds
// the lock: the channel counts the nested lock of the same owner.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"
#include "util/FileEntry.h"

enum EFMANSWER : uint32_t {
    FM_ANSWER_YES = 0,
    FM_ANSWER_NO = 1,
    FM_ANSWER_CANCEL = 2,
};

// Implementations must not throw.
class CFMDeviceView_0 {
public:
    virtual ~CFMDeviceView_0() = default;
    // A failure: caption "Error", exclamation icon.
    virtual void ShowError(const char* text) = 0;
    // The delete question: caption "Warning", Yes/No, question icon.
    virtual EFMANSWER AskDelete(const char* text) = 0;
    // The format question: caption "WARNING", Yes/No/Cancel, exclamation
    // icon, Cancel the default.
    virtual EFMANSWER AskFormat(const char* text) = 0;
    // The device list's columns are set up; first step of every refresh,
    // with or without a channel.
    virtual void PrepareDeviceList() = 0;
    // The summary under the device list.
    virtual void SetSummary(const char* text) = 0;
    // The device list's rows are replaced by these entries.
    virtual void SetDeviceEntries(const std::vector<TDEVDIRENTRY>& entries) = 0;
    // Copies the files to the device and reports the failures itself; the
    // channel is locked meanwhile.
    virtual void CopyFiles(const TFILEENTRYLIST& files) = 0;
};

namespace ondfm {

// Reads the device directory into the view: the summary (or the read
// failure in its place) and the rows. Without a channel only the list's
// columns are set up. true when the directory was read; *info (when given)
// then holds the numbers behind the summary, for callers that want them
// as numbers.
bool RefreshDirectory(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
                      TDEVDIRINFO* info = nullptr);

// Deletes the files whose device-list rows are selected; idTexts are the
// rows' first columns in list order. Asks first; a row whose text holds no
// number is skipped; the first failure ends the walk. Refreshes afterwards.
void DeleteFiles(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
                 const std::vector<std::string>& idTexts);

// Asks, then formats every block (Yes) or the blocks marked as used (No) and
// refreshes; Cancel changes nothing. A failure is shown after the unlock.
void FormatDevice(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view);

// Copies files (the selected rows, or all rows when allRows) through the
// view's CopyFiles, then refreshes. An empty list is reported with the
// wording for the button pressed.
void CopyFiles(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
               const TFILEENTRYLIST& files, bool allRows);

}  // namespace ondfm
