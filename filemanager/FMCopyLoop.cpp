// The copy loop of the File Manager's progress window.
#include "filemanager/FMCopyLoop.h"

#include "frame/ErrCode.h"

namespace {

// The channel's progress callback: context is the sink.
int32_t OnTransferStep(void* context, uint32_t stepsDone) {
    auto* sink = static_cast<CFMProgressSink_0*>(context);
    sink->FileProgress(stepsDone);
    return sink->AbortRequested() ? 1 : 0;
}

}  // namespace

int32_t ondfm::RunCopyLoop(COndDeviceComm_0* channel, const TFILEENTRYLIST& files,
                           bool continueOnError, CFMProgressSink_0* sink,
                           std::vector<TCOPYERROR>* errors) {
    if (!sink || !errors) return EONX_ERR_NOCHANNEL;
    errors->clear();
    if (!channel || files.empty()) {
        sink->CopyEnded();
        return 0;
    }
    try {
        errors->reserve(files.size());  // at most one per file: no allocation while copying
    } catch (...) {
        sink->CopyEnded();
        return EONX_ERR_OUTOFMEMORY;
    }
    const size_t count = files.size();
    int32_t result = 0;
    for (size_t i = 0; i < count; ++i) {
        sink->FileStarted(static_cast<uint32_t>(static_cast<uint64_t>(i) * 100 / count), i);
        const TFILEENTRY& file = files[i];
        int32_t code = channel->TransmitFile(file.path.c_str(), file.fileId, file.fileType,
                                             file.fileMode, OnTransferStep, sink,
                                             ONDCOMM_TRANSFER_FLAG, ONDCOMM_STEPS_FILEMANAGER);
        if (code != 0) {
            errors->push_back(TCOPYERROR{i, code});
            if (!continueOnError) {
                result = code;
                break;
            }
            if (sink->AbortRequested()) {
                result = EONX_ERR_ABORTED;
                break;
            }
            if (result == 0) result = code;  // the first failure is the one kept
        } else if (sink->AbortRequested()) {
            result = EONX_ERR_ABORTED;
            break;
        }
    }
    sink->CopyEnded();
    return result;
}
