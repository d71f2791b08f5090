// fm_window_bench: the File Manager's real windows over the simulated device,
// under Wine or Windows. Copies 100 files of 64 KiB with "Copy all ->"
// through the progress window and prints files per second and the share of
// the time spent outside TransmitFile (window, worker, posting, joining,
// the refresh afterwards); then times "Refresh" of a 255-entry directory.
// Prints numbers; not a test.
//
//   cmake --build build/windows --target fm_window_bench
//   xvfb-run -a tools/wine-run.sh build/windows/bin/fm_window_bench.exe [files] [rounds] [step ms]
//
// step ms slows the simulated link: it waits that long before each of the
// 101 progress steps of a transfer (0, the default, is an instant device).
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "filemanager/FileManager.h"
#include "frame/Dialog.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"

namespace {

class CBenchFileManager : public CONXFileManager {
public:
    HWND Window() { return m_pDialog ? m_pDialog->GetSafeHwnd() : nullptr; }
};

double Now() {
    static LARGE_INTEGER frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return f;
    }();
    LARGE_INTEGER t;
    QueryPerformanceCounter(&t);
    return double(t.QuadPart) / double(frequency.QuadPart);
}

// The simulated device, timing every TransmitFile (on the copy's worker).
class CTimedSim : public CSimDevice {
public:
    using CSimDevice::CSimDevice;
    int32_t TransmitFile(const char* path, uint8_t id, uint8_t type, uint32_t mode,
                         TransferProgressCallback callback, void* context, uint32_t flag,
                         uint32_t steps) override {
        double start = Now();
        if (first == 0) first = start;
        int32_t result = CSimDevice::TransmitFile(path, id, type, mode, callback, context, flag, steps);
        last = Now();
        inside += last - start;
        return result;
    }
    double inside = 0, first = 0, last = 0;
};

void DropFiles(HWND window, const std::vector<std::string>& paths) {
    size_t chars = 1;
    for (const std::string& p : paths) chars += p.size() + 1;
    HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + chars);
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    char* names = reinterpret_cast<char*>(drop + 1);
    for (const std::string& p : paths) {
        memcpy(names, p.c_str(), p.size() + 1);
        names += p.size() + 1;
    }
    GlobalUnlock(memory);
    SendMessageA(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
}

void Press(HWND dialog, int id) {
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IONBF, 0);
    const int files = argc > 1 ? atoi(argv[1]) : 100;
    const int rounds = argc > 2 ? atoi(argv[2]) : 5;
    const int stepMs = argc > 3 ? atoi(argv[3]) : 0;
    char temp[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, temp);
    std::string folder = std::string(temp) + "ondfmbench\\";
    CreateDirectoryA(folder.c_str(), nullptr);
    std::vector<std::string> paths;
    std::string data(65536, '\0');
    for (size_t i = 0; i < data.size(); ++i) data[i] = char(i * 7);
    for (int i = 0; i < files; ++i) {
        paths.push_back(folder + "file" + std::to_string(i) + ".bin");
        FILE* f = fopen(paths.back().c_str(), "wb");
        if (!f || fwrite(data.data(), 1, data.size(), f) != data.size()) return 1;
        fclose(f);
    }

    CSimDevice::TConfig config;
    config.blockCount = 4096;  // 16 MiB: every file keeps its own id
    CTimedSim sim(config);
    sim.SetStepDelay(uint32_t(stepMs));
    CBenchFileManager fm;
    fm.Connect(&sim);
    if (fm.ShowDialogNonModal(nullptr) != EONX_ERR_NONE || !fm.Window()) {
        fprintf(stderr, "fm_window_bench: the window does not open\n");
        return 1;
    }
    HWND dialog = fm.Window();
    HWND local = GetDlgItem(dialog, IDC_FM_LOCALLIST);
    DropFiles(dialog, paths);
    for (int i = 0; i < files; ++i) {
        std::string id = std::to_string(i % 256);
        LVITEMA item = {};
        item.iSubItem = 1;
        item.pszText = &id[0];
        SendMessageA(local, LVM_SETITEMTEXTA, i, reinterpret_cast<LPARAM>(&item));
    }

    printf("copy of %d files of 64 KiB through the progress window, %d rounds, %d ms per step\n",
           files, rounds, stepMs);
    for (int round = 0; round < rounds; ++round) {
        sim.FormatDevice(0);
        sim.inside = sim.first = sim.last = 0;
        double start = Now();
        Press(dialog, IDC_FM_COPYALL);  // returns after the copy and the refresh
        double total = Now() - start;
        TDEVDIRINFO info;
        sim.ReadDirectory();
        sim.GetDirectoryInfo(&info);
        double before = sim.first - start, after = start + total - sim.last;
        double between = total - sim.inside - before - after;
        printf("  %7.1f files/s  total %8.1f ms  in TransmitFile %8.1f ms  outside %5.2f %%: "
               "before the first %5.1f ms, between files %5.1f ms, after the last (with the "
               "refresh) %5.1f ms; %u on the device\n",
               files / total, total * 1e3, sim.inside * 1e3, 100.0 * (total - sim.inside) / total,
               before * 1e3, between * 1e3, after * 1e3, info.fileCount);
    }

    // A directory of 255 entries.
    sim.SetStepDelay(0);
    for (int id = 0; id < 255; ++id)
        sim.TransmitFileFromMemory(data.data(), 100 + id, uint8_t(id), uint8_t(id % 7), 0, nullptr,
                                   nullptr, 1, 1);
    std::vector<double> times;
    for (int i = 0; i < 20; ++i) {
        double start = Now();
        Press(dialog, IDC_FM_REFRESH);
        times.push_back((Now() - start) * 1e3);
    }
    std::sort(times.begin(), times.end());
    HWND device = GetDlgItem(dialog, IDC_FM_DEVICELIST);
    printf("refresh of %d entries: median %.2f ms, best %.2f ms, worst %.2f ms\n",
           int(SendMessageA(device, LVM_GETITEMCOUNT, 0, 0)), times[times.size() / 2], times.front(),
           times.back());
    for (const std::string& p : paths) DeleteFileA(p.c_str());
    RemoveDirectoryA(folder.c_str());
    return 0;
}
