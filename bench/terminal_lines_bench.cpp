// terminal_lines_bench: the Terminal's line assembly on 80-byte lines (78
// characters and CR LF) handed over in 1023-byte chunks, as the window's poll
// reads them, with the 5001-line list full. Prints MB/s per round and the
// best; not a test.
#include <cstdio>
#include <string>

#include "os/Platform.h"
#include "terminal/TerminalLines.h"

int main() {
    const size_t kBytes = 256u << 20;
    std::string text;
    for (int i = 0; text.size() < (1u << 20); ++i) {
        std::string line = "line " + std::to_string(i) + " ";
        while (line.size() < 78) line += char('a' + line.size() % 26);
        text += line + "\r\n";
    }
    double best = 0;
    for (int round = 1; round <= 5; ++round) {
        CONXTerminalLines list;
        size_t done = 0;
        uint64_t start = OsTickCount();
        while (done < kBytes) {
            for (size_t at = 0; at < text.size(); at += 1023) {
                size_t n = text.size() - at < 1023 ? text.size() - at : 1023;
                list.Received(text.data() + at, n);
            }
            done += text.size();
            list.TakeChange();
        }
        uint64_t elapsed = OsTickCount() - start;
        double mbps = elapsed ? (double)done / (1 << 20) / (elapsed / 1000.0) : 0;
        if (mbps > best) best = mbps;
        printf("round %d: %zu MB in %llu ms, %.0f MB/s (%zu lines kept)\n", round, done >> 20,
               (unsigned long long)elapsed, mbps, list.Count());
    }
    printf("best: %.0f MB/s\n", best);
    return 0;
}
