// dcsfm: the File Manager for the console. Every device action runs through
// the File Manager's own core (filemanager/FMDevice.h, FMCopyLoop.h, FMRows.h,
// FMTexts.h) with a view that prints what the window shows; see DcsfmUsage()
// for the commands.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "filemanager/FMDevice.h"
#include "filemanager/FMTexts.h"
#include "host/console/ConsoleInterrupt.h"
#include "host/console/ConsoleTerminal.h"
#include "host/dcsfm/DcsfmFiles.h"
#include "host/dcsfm/DcsfmListing.h"
#include "host/dcsfm/DcsfmOptions.h"
#include "host/dcsfm/DcsfmView.h"
#include "host/device/HostDevice.h"

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace {

int g_owner;  // dcsfm's lock owner, where the window has itself
TDCSFMSTOP g_stop;

// On the interrupt's own thread. A copy takes it as its Abort; anything else
// (a question waiting for its answer, a listing) ends here.
void OnInterrupt(void*) {
    g_stop.requested = true;
    if (g_stop.copying) return;
    std::fputs("\ndcsfm: interrupted\n", stderr);
    std::fflush(stderr);
    _exit(DCSFM_EXIT_ABORTED);
}

void Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

int MakeJob(const TDCSFMOPTIONS& options) {
    TFMROWLIST rows;
    for (const TDCSFMFILE& file : options.files) rows.push_back(DcsfmRow(file));
    if (!ondfm::SaveJobRows(DcsfmFullPath(options.jobFile).c_str(), rows)) {
        std::fprintf(stderr, "%s: %s\n", ondfm::kMsgCannotCreateList, options.jobFile.c_str());
        return DCSFM_EXIT_USAGE;
    }
    return DCSFM_EXIT_OK;
}

// ls: the window's refresh; false when the directory could not be read.
bool List(COndDeviceComm_0* channel, CDcsfmView* view, bool json) {
    TDEVDIRINFO info = {};
    bool read = ondfm::RefreshDirectory(channel, &g_owner, view, &info);
    // Locked: the message is shown already and stands in for the summary.
    std::string summary = view->Summary().empty() ? ondfm::kMsgLocked : view->Summary();
    if (json) {
        Print(DcsfmListJson(view->Entries(), read ? &info : nullptr, summary));
    } else {
        Print(DcsfmListTable(view->Entries()));
        if (read) Print("\n" + summary + "\n");
    }
    if (!read && !view->Failed()) std::fprintf(stderr, "%s\n", summary.c_str());
    return read;
}

int Main(int argc, char** argv) {
    ConsoleBinaryStreams();
    TDCSFMOPTIONS options;
    std::string error;
    if (!ParseDcsfmOptions(argc, argv, &options, &error)) {
        std::fprintf(stderr, "dcsfm: %s\n(dcsfm --help shows the options)\n", error.c_str());
        return DCSFM_EXIT_USAGE;
    }
    if (options.help) {
        std::fputs(DcsfmUsage(), stdout);
        return DCSFM_EXIT_OK;
    }
    bool asks = options.command == DCSFM_RM || options.command == DCSFM_FORMAT;
    if (asks && !options.yes && !ConsoleInputIsTerminal()) {
        std::fprintf(stderr, "dcsfm: %s asks first: give --yes when standard input is not a terminal\n",
                     options.command == DCSFM_RM ? "rm" : "format");
        return DCSFM_EXIT_USAGE;
    }
    if (options.command == DCSFM_JOBMAKE) return MakeJob(options);

    // The files to copy, read as the window reads its rows.
    TFILEENTRYLIST files;
    if (options.command == DCSFM_PUT) {
        for (const TDCSFMFILE& file : options.files) files.push_back(ondfm::EntryFromRow(DcsfmRow(file)));
    } else if (options.command == DCSFM_JOBRUN) {
        TFMROWLIST rows;
        if (!ondfm::LoadJobRows(DcsfmFullPath(options.jobFile).c_str(), &rows)) {
            std::fprintf(stderr, "%s: %s\n", ondfm::kMsgCannotOpenList, options.jobFile.c_str());
            return DCSFM_EXIT_USAGE;
        }
        for (const TFMROW& row : rows) files.push_back(ondfm::EntryFromRow(row));
    }

    ConsoleStopOnInterrupt(OnInterrupt, nullptr);  // before the channel starts any thread
    CHostDevice device;
    switch (device.Open(options.device, &error)) {
    case HOSTDEVICE_OPENED: break;
    case HOSTDEVICE_NOPORT:
        std::fprintf(stderr, "dcsfm: serial port: %s\n", error.c_str());
        return DCSFM_EXIT_NODEVICE;
    case HOSTDEVICE_NOFILE:
        std::fprintf(stderr, "dcsfm: %s\n", error.c_str());
        return DCSFM_EXIT_USAGE;
    }
    COndDeviceComm_0* channel = device.Channel();

    TDCSFMVIEWSETUP setup;
    setup.channel = channel;
    setup.continueOnError = !options.stopOnError;
    setup.yes = options.yes;
    setup.usedOnly = options.usedOnly;
    setup.terminal = ConsoleOutputIsTerminal();
    setup.columns = setup.terminal ? ConsoleColumns() : 80;
    setup.stop = &g_stop;
    CDcsfmView view(setup);
    bool ok = true;
    switch (options.command) {
    case DCSFM_LS: ok = List(channel, &view, options.json); break;
    case DCSFM_PUT:
    case DCSFM_JOBRUN:
        ondfm::CopyFiles(channel, &g_owner, &view, files, true);  // as "Copy all ->"
        break;
    case DCSFM_RM: {
        std::vector<std::string> idTexts;
        for (uint8_t id : options.fileIds) idTexts.push_back(std::to_string(id));
        ondfm::DeleteFiles(channel, &g_owner, &view, idTexts);
        break;
    }
    case DCSFM_FORMAT: ondfm::FormatDevice(channel, &g_owner, &view); break;
    default: break;
    }
    int status = DCSFM_EXIT_OK;
    if (g_stop.requested || view.Stopped()) status = DCSFM_EXIT_ABORTED;
    else if (!ok || view.Failed()) status = DCSFM_EXIT_FAILED;
    // Also after a failure or an abort: the folder shows what the device holds.
    return device.SaveSimFilesAtEnd("dcsfm", status, DCSFM_EXIT_USAGE);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main(argc, argv);
    } catch (...) {
        std::fprintf(stderr, "dcsfm: out of memory\n");
        return DCSFM_EXIT_FAILED;
    }
}
