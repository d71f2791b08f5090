// The File Manager's device actions against the simulated device: what is
// shown and asked, what the device received, and the lock taken and given
// back on every path (nested for the refresh after an action).
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <thread>
#include <vector>

#include "FMTestView.h"
#include "tests/unit/SimTestSupport.h"
#include "filemanager/FMDevice.h"
#include "filemanager/FMTexts.h"
#include "host/serial/SerialChannel.h"

namespace {

int g_ownerToken;
void* const kOwner = &g_ownerToken;  // the window's place as lock owner

void Store(CSimDevice* sim, uint8_t id, uint8_t type, size_t size) {
    ASSERT_EQ(TestStore(sim, id, type, std::string(size, 'd')), 0);
}

void ExpectUnlocked(CSimDevice* sim) {
    EXPECT_EQ(sim->LockOwner(), nullptr);
    EXPECT_EQ(sim->LockCount(), 0u);
}

// Holds the lock as another owner (a script run) until released.
class COtherOwner {
public:
    explicit COtherOwner(CSimDevice* sim) : m_sim(sim) { EXPECT_EQ(sim->Lock(this, 0), 0); }
    ~COtherOwner() { m_sim->Unlock(this); }

private:
    CSimDevice* m_sim;
};

}  // namespace

TEST(FMDevice, RefreshShowsSummaryAndRowsUnderTheLock) {
    CSimDevice sim;  // 256 blocks of 4096 bytes
    Store(&sim, 3, 7, 5000);
    Store(&sim, 1, 2, 10);
    CFMTestView view(&sim);
    TDEVDIRINFO info = {};
    EXPECT_TRUE(ondfm::RefreshDirectory(&sim, kOwner, &view, &info));
    EXPECT_EQ(view.Kinds(), "prepare|summary|entries|");
    EXPECT_EQ(view.summary,
              "5010 bytes in 2 files\nrequire 12288 bytes on disk\n1036288 bytes free");
    EXPECT_EQ(TestDirInfo(info), "253 4096 2 5010 12288");
    EXPECT_EQ(TestEntries(view.entries), "1:2:10 3:7:5000 ");
    EXPECT_EQ(view.Find("summary")->lockOwner, kOwner);
    ExpectUnlocked(&sim);
}

TEST(FMDevice, AFailedReadLeavesItsMessageAndStillRebuildsTheList) {
    CSimDevice sim;
    Store(&sim, 1, 1, 1);
    CFMTestView view(&sim);
    view.entries.resize(4);  // rows of an earlier refresh
    sim.InjectFault("ReadDirectory", 1);
    TDEVDIRINFO info = {7, 7, 7, 7, 7};
    EXPECT_FALSE(ondfm::RefreshDirectory(&sim, kOwner, &view, &info));
    EXPECT_EQ(info.fileCount, 7u);  // untouched: nothing was read
    EXPECT_EQ(view.Kinds(), "prepare|summary|entries|");
    EXPECT_EQ(view.summary, "Could not read device directory:\nSimulated device fault");
    EXPECT_TRUE(view.entries.empty());  // the count the channel then reports
    EXPECT_EQ(sim.CallCount("GetDirectoryInfo"), 0u);
    ExpectUnlocked(&sim);
}

TEST(FMDevice, WithoutAChannelOnlyTheColumnsAreSetUp) {
    CFMTestView view(nullptr);
    EXPECT_FALSE(ondfm::RefreshDirectory(nullptr, kOwner, &view));
    ondfm::FormatDevice(nullptr, kOwner, &view);
    view.answers = {FM_ANSWER_YES};
    ondfm::DeleteFiles(nullptr, kOwner, &view, {"1"});
    TFILEENTRYLIST files(1);
    ondfm::CopyFiles(nullptr, kOwner, &view, files, true);
    // The delete question comes before the channel is looked at.
    EXPECT_EQ(view.Kinds(), "prepare|ask-delete|");
}

// A channel held by another owner: the locked message, no further call and
// no Unlock, for every action. (The first waits its 500 ms for the owner;
// the others meet an injected refusal, which is quicker.)
TEST(FMDevice, ALockedChannelEndsEveryActionWithTheMessage) {
    CSimDevice sim;
    Store(&sim, 1, 1, 1);
    CFMTestView view(&sim);
    uint64_t calls = sim.TotalCallCount();
    uint64_t unlocks = sim.CallCount("Unlock");
    {
        COtherOwner script(&sim);
        EXPECT_FALSE(ondfm::RefreshDirectory(&sim, kOwner, &view));
    }
    calls += 2;  // the other owner's Lock and Unlock
    for (uint32_t k = 1; k <= 3; ++k) sim.InjectFault("Lock", k, SIMDEV_ERR_LOCKED);
    view.answers = {FM_ANSWER_YES};
    ondfm::DeleteFiles(&sim, kOwner, &view, {"1"});
    ondfm::FormatDevice(&sim, kOwner, &view);
    TFILEENTRYLIST files(1);
    ondfm::CopyFiles(&sim, kOwner, &view, files, false);
    EXPECT_EQ(view.Kinds(), "prepare|error|ask-delete|error|error|error|");
    for (const auto& e : view.events) {
        if (e.what == "error") {
            EXPECT_EQ(e.text, "Communication device is locked");
        }
    }
    EXPECT_EQ(sim.TotalCallCount() - calls, 4u);  // the four Lock calls
    EXPECT_EQ(sim.CallCount("Unlock"), unlocks + 1);  // the other owner's only
    EXPECT_TRUE(sim.GetStoredFile(1, nullptr));
}

TEST(FMDevice, DeleteAsksWithTheRightCountAndSkipsRowsWithoutANumber) {
    CSimDevice sim;
    for (uint8_t id : {1, 2, 3, 4}) Store(&sim, id, 1, 1);
    CFMTestView view(&sim);

    view.answers = {FM_ANSWER_YES};
    ondfm::DeleteFiles(&sim, kOwner, &view, {"2"});
    EXPECT_EQ(view.events[0].text, "Deleting 1 file from device, are you sure?");
    EXPECT_EQ(view.events[0].lockOwner, nullptr);  // asked before locking
    EXPECT_EQ(TestEntries(view.entries), "1:1:1 3:1:1 4:1:1 ");
    // The refresh ran inside the delete's lock: nested.
    const CFMTestView::TEvent* summary = view.Find("summary");
    ASSERT_NE(summary, nullptr);
    EXPECT_EQ(summary->lockOwner, kOwner);
    EXPECT_EQ(summary->lockCount, 2u);
    ExpectUnlocked(&sim);

    view.events.clear();
    view.answers = {FM_ANSWER_YES};
    ondfm::DeleteFiles(&sim, kOwner, &view, {"1", "File", "", "4"});
    EXPECT_EQ(view.events[0].text, "Deleting 4 files from device, are you sure?");
    EXPECT_EQ(sim.CallCount("DeleteDeviceFile"), 3u);  // two rows skipped silently
    EXPECT_EQ(TestEntries(view.entries), "3:1:1 ");
    EXPECT_EQ(view.Kinds(), "ask-delete|prepare|summary|entries|");
    ExpectUnlocked(&sim);

    // No: nothing is locked or deleted.
    view.events.clear();
    view.answers = {FM_ANSWER_NO};
    uint64_t locks = sim.CallCount("Lock");
    ondfm::DeleteFiles(&sim, kOwner, &view, {"3", "3"});
    EXPECT_EQ(view.events[0].text, "Deleting 2 files from device, are you sure?");
    EXPECT_EQ(sim.CallCount("Lock"), locks);
    EXPECT_TRUE(sim.GetStoredFile(3, nullptr));

    view.events.clear();
    ondfm::DeleteFiles(&sim, kOwner, &view, {});
    EXPECT_EQ(view.Kinds(), "error|");
    EXPECT_EQ(view.events[0].text, "No files marked to delete!");
}

TEST(FMDevice, TheFirstFailedDeleteEndsTheWalkAndKeepsEarlierDeletions) {
    CSimDevice sim;
    for (uint8_t id : {1, 2, 3}) Store(&sim, id, 1, 1);
    CFMTestView view(&sim);
    view.answers = {FM_ANSWER_YES};
    ondfm::DeleteFiles(&sim, kOwner, &view, {"1", "9", "3"});  // 9 is not on the device
    EXPECT_EQ(view.Kinds(), "ask-delete|error|prepare|summary|entries|");
    EXPECT_EQ(view.events[1].text, "Could not delete file with ID 9: File not found on the device");
    EXPECT_EQ(view.events[1].lockOwner, kOwner);
    EXPECT_EQ(TestEntries(view.entries), "2:1:1 3:1:1 ");
    ExpectUnlocked(&sim);
}

TEST(FMDevice, FormatYesNoCancel) {
    struct {
        EFMANSWER answer;
        uint64_t formats;
        bool programKept, erasedUnmarked;
    } cases[] = {
        {FM_ANSWER_YES, 1, false, true},   // every block, the program slot too
        {FM_ANSWER_NO, 1, true, false},    // only the blocks marked as used
        {FM_ANSWER_CANCEL, 0, true, false},
    };
    for (const auto& c : cases) {
        CSimDevice sim;
        Store(&sim, 1, 1, 9000);  // three blocks
        ASSERT_EQ(TestStore(&sim, 0, 0, "p", SIMDEV_MODE_PROGRAM), 0);
        CFMTestView view(&sim);
        view.answers = {c.answer};
        ondfm::FormatDevice(&sim, kOwner, &view);
        EXPECT_EQ(sim.CallCount("FormatDevice"), c.formats);
        EXPECT_EQ(view.events[0].what, "ask-format");
        EXPECT_EQ(view.events[0].text, ondfm::FormatQuestion());
        EXPECT_EQ(view.events[0].lockOwner, kOwner);  // asked under the lock
        EXPECT_EQ(sim.HasProgram(), c.programKept);
        EXPECT_EQ(sim.GetStoredFile(1, nullptr), c.formats == 0);
        EXPECT_EQ(sim.BlockErases(), c.formats == 0 ? 0u : c.erasedUnmarked ? 256u : 3u);
        EXPECT_EQ(view.Kinds(), c.formats ? "ask-format|prepare|summary|entries|" : "ask-format|");
        ExpectUnlocked(&sim);
    }
}

TEST(FMDevice, AFailedFormatIsShownAfterTheUnlock) {
    CSimDevice sim;
    sim.InjectFault("FormatDevice", 1, SIMDEV_ERR_CLOSED);
    CFMTestView view(&sim);
    view.answers = {FM_ANSWER_NO};
    ondfm::FormatDevice(&sim, kOwner, &view);
    EXPECT_EQ(view.Kinds(), "ask-format|prepare|summary|entries|error|");
    EXPECT_EQ(view.events.back().text, "Could not format device: Device is closed");
    EXPECT_EQ(view.events.back().lockOwner, nullptr);
    ExpectUnlocked(&sim);
}

TEST(FMDevice, CopyHoldsTheLockForTheWholeCopyThenRefreshes) {
    CSimDevice sim;
    CFMTestView view(&sim);
    ondfm::CopyFiles(&sim, kOwner, &view, {}, false);
    ondfm::CopyFiles(&sim, kOwner, &view, {}, true);
    EXPECT_EQ(view.Kinds(), "error|error|");
    EXPECT_EQ(view.events[0].text, "No files marked to copy!");
    EXPECT_EQ(view.events[1].text, "No files present to copy!");

    view.events.clear();
    TFILEENTRYLIST files(2);
    files[0].path = "a";
    files[1].path = "b";
    ondfm::CopyFiles(&sim, kOwner, &view, files, true);
    EXPECT_EQ(view.Kinds(), "copy|prepare|summary|entries|");
    EXPECT_EQ(view.events[0].lockOwner, kOwner);
    EXPECT_EQ(view.events[0].lockCount, 1u);
    EXPECT_EQ(view.events[2].lockCount, 2u);
    ASSERT_EQ(view.copied.size(), 2u);
    EXPECT_EQ(view.copied[1].path, "b");
    ExpectUnlocked(&sim);
}

// Out of memory in the window's part (its list, its copy) unwinds through
// the action: the lock goes with it, or every later action would find the
// channel held by a window that no longer works with it.
TEST(FMDevice, AnOutOfMemoryUnwindGivesTheLockBack) {
    class CStarvedView : public CFMTestView {
    public:
        using CFMTestView::CFMTestView;
        void SetDeviceEntries(const std::vector<TDEVDIRENTRY>&) override { throw std::bad_alloc(); }
        void CopyFiles(const TFILEENTRYLIST&) override { throw std::bad_alloc(); }
    };
    CSimDevice sim;
    Store(&sim, 1, 1, 10);
    CStarvedView view(&sim);
    EXPECT_THROW(ondfm::RefreshDirectory(&sim, kOwner, &view), std::bad_alloc);
    ExpectUnlocked(&sim);
    view.answers = {FM_ANSWER_YES};
    EXPECT_THROW(ondfm::DeleteFiles(&sim, kOwner, &view, {"1"}), std::bad_alloc);
    ExpectUnlocked(&sim);
    EXPECT_THROW(ondfm::CopyFiles(&sim, kOwner, &view, TFILEENTRYLIST(1), true), std::bad_alloc);
    ExpectUnlocked(&sim);
}

// The raw serial port has no file system: every action ends with the port's
// own clear text, and the lock is given back.
TEST(FMDevice, TheSerialChannelsFileOperationsFailWithItsTexts) {
    CSerialChannel serial;  // never opened: the file operations fail all the same
    CFMTestView view(nullptr);
    ondfm::RefreshDirectory(&serial, kOwner, &view);
    EXPECT_EQ(view.summary, "Could not read device directory:\n" +
                                ondfm::ErrorText(&serial, SERIAL_ERR_NODIRECTORY));
    EXPECT_NE(view.summary.find("cannot read the device directory"), std::string::npos);
    EXPECT_TRUE(view.entries.empty());

    view.events.clear();
    view.answers = {FM_ANSWER_YES, FM_ANSWER_NO};
    ondfm::DeleteFiles(&serial, kOwner, &view, {"12"});
    ondfm::FormatDevice(&serial, kOwner, &view);
    std::vector<std::string> errors;
    for (const auto& e : view.events)
        if (e.what == "error") errors.push_back(e.text);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0], "Could not delete file with ID 12: " +
                             ondfm::ErrorText(&serial, SERIAL_ERR_NODELETE));
    EXPECT_EQ(errors[1], "Could not format device: " + ondfm::ErrorText(&serial, SERIAL_ERR_NOFORMAT));

    // Nobody holds the port afterwards: another owner gets it at once.
    int other;
    EXPECT_EQ(serial.Lock(&other, 0), 0);
    serial.Unlock(&other);
}
