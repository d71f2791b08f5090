// terminal_window_bench: the Terminal's real window fed 1 MB/s by the
// simulated device (80-byte lines) for 10 s, under Wine or Windows. Prints the
// time the window spends per tick of its receive poll, what it received, what
// was still waiting at the end and how many lines the list holds; not a test.
//
//   cmake --build build/windows --target terminal_window_bench
//   xvfb-run -a tools/wine-run.sh build/windows/bin/terminal_window_bench.exe [seconds] [bytes/s]
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "frame/Dialog.h"
#include "host/sim/SimDevice.h"
#include "res/OndResource.h"
#include "terminal/Terminal.h"

namespace {

class CBenchTerminal : public CONXTerminal {
public:
    HWND Window() { return m_pDialog ? m_pDialog->GetSafeHwnd() : nullptr; }
};

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IONBF, 0);
    const DWORD seconds = argc > 1 ? DWORD(atoi(argv[1])) : 10;
    const uint64_t rate = argc > 2 ? strtoull(argv[2], nullptr, 10) : 1000000;
    std::string line = std::string(78, '.') + "\r\n";
    for (size_t i = 0; i < line.size() - 2; ++i) line[i] = char('A' + i % 26);

    CSimDevice sim;
    CBenchTerminal terminal;
    terminal.Connect(&sim);
    if (terminal.ShowDialogNonModal(nullptr) != EONX_ERR_NONE || !terminal.Window()) {
        fprintf(stderr, "terminal_window_bench: the window does not open\n");
        return 1;
    }
    HWND dialog = terminal.Window();
    sim.SetReceiveStream(line, rate);

    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    DWORD began = GetTickCount();
    uint64_t ticks = 0;
    double total = 0, worst = 0;
    MSG msg;
    while (GetTickCount() - began < seconds * 1000) {
        if (!PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
            continue;
        }
        TranslateMessage(&msg);
        bool tick = msg.message == WM_TIMER && msg.hwnd == dialog && msg.wParam == 1;
        QueryPerformanceCounter(&start);
        DispatchMessageA(&msg);
        if (!tick) continue;
        QueryPerformanceCounter(&end);
        double ms = double(end.QuadPart - start.QuadPart) * 1000.0 / double(frequency.QuadPart);
        ++ticks;
        total += ms;
        worst = ms > worst ? ms : worst;
    }
    double elapsed = (GetTickCount() - began) / 1000.0;
    uint64_t received = sim.StreamBytesReceived();
    uint64_t backlog = sim.StreamBacklog();
    LRESULT lines = SendDlgItemMessageA(dialog, IDC_TERM_ANSWERS, LB_GETCOUNT, 0, 0);
    printf("fed %.2f MB/s for %.1f s: received %.2f MB (%.2f MB/s)\n", rate / 1e6, elapsed,
           received / 1e6, received / 1e6 / elapsed);
    printf("ticks: %llu, %.1f ms each on average, %.1f ms at most (%.1f %% of the time)\n",
           (unsigned long long)ticks, ticks ? total / ticks : 0.0, worst, total / (elapsed * 10.0));
    printf("waiting at the end: %llu bytes (one tick's worth: %llu); list: %ld lines\n",
           (unsigned long long)backlog, (unsigned long long)(rate / 5), long(lines));
    return 0;
}
