// The File Manager's device actions, each inside Lock/Unlock.
#include "filemanager/FMDevice.h"

#include "filemanager/FMRows.h"
#include "filemanager/FMTexts.h"
#include "frame/ChannelLock.h"

namespace {

// The lock of a user action; not held (and the message shown) when another
// owner holds the channel.
class CUserLock : public CChannelLock {
public:
    CUserLock(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view)
        : CChannelLock(channel, owner, ONDCOMM_LOCK_USER_MS) {
        if (!Held()) view->ShowError(ondfm::kMsgLocked);
    }
};

// The directory's rows; the count is asked again before every further row,
// as the channel may change it. Indices are 32 bits wide: no more rows.
std::vector<TDEVDIRENTRY> ReadEntries(COndDeviceComm_0* channel) {
    std::vector<TDEVDIRENTRY> entries;
    try {
        for (uint64_t i = 0; i < channel->GetDirectoryEntryCount() && i <= 0xFFFFFFFFu; ++i) {
            TDEVDIRENTRY entry = {};
            channel->GetDirectoryEntry(static_cast<uint32_t>(i), &entry);
            entries.push_back(entry);
        }
    } catch (...) {
        // Out of memory: the rows read so far are shown.
    }
    return entries;
}

}  // namespace

bool ondfm::RefreshDirectory(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
                             TDEVDIRINFO* info) {
    if (!view) return false;
    view->PrepareDeviceList();
    if (!channel) return false;  // the list keeps its rows
    CUserLock lock(channel, owner, view);
    if (!lock.Held()) return false;
    int32_t code = channel->ReadDirectory();
    if (code != 0) {
        view->SetSummary(DirectoryReadFailed(ErrorText(channel, code)).c_str());
    } else {
        TDEVDIRINFO read = {};
        channel->GetDirectoryInfo(&read);
        view->SetSummary(DirectorySummary(read).c_str());
        if (info) *info = read;
    }
    // Also after a failed read: the list shows whatever count the channel reports.
    view->SetDeviceEntries(ReadEntries(channel));
    return code == 0;
}

void ondfm::DeleteFiles(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
                        const std::vector<std::string>& idTexts) {
    if (!view) return;
    if (idTexts.empty()) {
        view->ShowError(kMsgNoFilesToDelete);
        return;
    }
    if (view->AskDelete(DeleteQuestion(static_cast<uint32_t>(idTexts.size())).c_str()) !=
            FM_ANSWER_YES ||
        !channel)
        return;
    CUserLock lock(channel, owner, view);
    if (!lock.Held()) return;
    for (const std::string& text : idTexts) {
        uint8_t fileId = 0;
        if (!ReadDeviceFileId(text.c_str(), &fileId)) continue;  // not a number: skipped
        int32_t code = channel->DeleteDeviceFile(fileId);
        if (code != 0) {
            // Files deleted before this one stay deleted.
            view->ShowError(DeleteFailed(fileId, ErrorText(channel, code)).c_str());
            break;
        }
    }
    RefreshDirectory(channel, owner, view);
}

void ondfm::FormatDevice(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view) {
    if (!view || !channel) return;
    CUserLock lock(channel, owner, view);
    if (!lock.Held()) return;
    int32_t code = 0;
    switch (view->AskFormat(FormatQuestion().c_str())) {
        case FM_ANSWER_YES:
            code = channel->FormatDevice(0);  // every block
            RefreshDirectory(channel, owner, view);
            break;
        case FM_ANSWER_NO:
            code = channel->FormatDevice(1);  // only the blocks marked as used
            RefreshDirectory(channel, owner, view);
            break;
        default: break;  // Cancel: have mercy
    }
    // The channel's text is read while the lock is held; shown after it.
    std::string failure = code != 0 ? FormatFailed(ErrorText(channel, code)) : std::string();
    lock.Release();
    if (!failure.empty()) view->ShowError(failure.c_str());
}

void ondfm::CopyFiles(COndDeviceComm_0* channel, void* owner, CFMDeviceView_0* view,
                      const TFILEENTRYLIST& files, bool allRows) {
    if (!view) return;
    if (files.empty()) {
        view->ShowError(allRows ? kMsgNoFilesPresentToCopy : kMsgNoFilesMarkedToCopy);
        return;
    }
    if (!channel) return;
    CUserLock lock(channel, owner, view);
    if (!lock.Held()) return;
    view->CopyFiles(files);  // the lock is held for the whole copy
    RefreshDirectory(channel, owner, view);
}
