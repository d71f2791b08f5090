// Copying local files to the device, one after the other, as the File
// Manager's progress window does it on its worker thread. Whoever shows the
// progress (the window, a console program, a test) implements the sink.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/OndDeviceComm.h"
#include "util/FileEntry.h"

// One file that could not be copied: its place in the copy list and the
// channel's error code.
struct TCOPYERROR {
    size_t index;
    int32_t code;
};

// What the copy loop reports, on the thread that runs it. Implementations
// must not throw and must not wait for the thread that waits for the copy.
class CFMProgressSink_0 {
public:
    virtual ~CFMProgressSink_0() = default;
    // File index of count is about to be sent; percent = index * 100 / count,
    // the share of files already done (never 100).
    virtual void FileStarted(uint32_t percent, size_t index) = 0;
    // The channel's progress for the current file, 0 to 100 steps.
    virtual void FileProgress(uint32_t stepsDone) = 0;
    // Asked by every progress step and after every file: true stops the copy
    // (the running transfer is asked to abort, no further file starts).
    virtual bool AbortRequested() = 0;
    // The loop is over, also when there was nothing to copy.
    virtual void CopyEnded() = 0;
};

namespace ondfm {

// Sends every file with TransmitFile(path, id, type, mode, callback, sink, 1,
// 100) and collects the failures in *errors (emptied first). The result:
// 0 when every file went; with continueOnError off, the first failure's code
// (nothing more is sent); with it on, the first failure's code after all
// files; EONX_ERR_ABORTED when the sink asked to stop after a file (also a
// failed one, when continuing). No channel or no file: 0 at once.
// EONX_ERR_OUTOFMEMORY when the error list cannot be made.
int32_t RunCopyLoop(COndDeviceComm_0* channel, const TFILEENTRYLIST& files,
                    bool continueOnError, CFMProgressSink_0* sink,
                    std::vector<TCOPYERROR>* errors);

}  // namespace ondfm
