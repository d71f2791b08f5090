// dcsterm: the Terminal for the console. Lines go to the device through the
// Terminal's own send (escapes, zero byte, Append CR, lock) and the device is
// polled as the Terminal's window polls it; see DcstermUsage() for the rest.
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "host/console/ConsoleKeys.h"
#include "host/console/ConsoleTerminal.h"
#include "host/dcsterm/DcstermOptions.h"
#include "host/dcsterm/DcstermPrinter.h"
#include "os/Platform.h"
#include "terminal/TerminalDevice.h"

namespace {

// The console polls more often than the window (200 ms): a console shows
// each byte as it is written, so answers appear without a visible pause.
const uint32_t kPollMs = 20;
// At most this much per poll, as the window: the keyboard stays served.
const uint64_t kPollBudgetBytes = 1u << 20;
const char kPrompt[] = "> ";

int g_owner;  // dcsterm's lock owner

void Write(const std::string& text) {
    if (text.empty()) return;
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

// Lines from standard input, read on a thread of their own so that the device
// is polled while the input waits. The thread may still be blocked in its
// read when the run ends: it shares the queue with the reader, so the queue
// outlives the reader, and what it reads after that is dropped.
class CLineReader {
public:
    CLineReader() : m_state(std::make_shared<TSTATE>()) {}
    ~CLineReader() {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->discard = true;
        m_state->lines.clear();
    }
    void Start() {
        std::shared_ptr<TSTATE> state = m_state;
        std::thread([state] { Run(*state); }).detach();
    }

    // The next line, if one is there; *eof: the input has ended and every
    // line was taken.
    bool Take(std::string* line, bool* eof) {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        *eof = m_state->eof && m_state->lines.empty();
        if (m_state->lines.empty()) return false;
        line->swap(m_state->lines.front());
        m_state->lines.pop_front();
        return true;
    }
    // Waits up to timeoutMs for a line or the end of the input.
    void Wait(uint32_t timeoutMs) {
        std::unique_lock<std::mutex> lock(m_state->mutex);
        m_state->ready.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                [this] { return !m_state->lines.empty() || m_state->eof; });
    }

private:
    struct TSTATE {
        std::mutex mutex;
        std::condition_variable ready;
        std::deque<std::string> lines;
        bool eof = false;
        bool discard = false;  // the reader is gone
    };

    static void Run(TSTATE& state) {
        std::string line;
        char buffer[4096];
        long n;
        while ((n = ConsoleReadInput(buffer, sizeof buffer)) > 0) {
            for (long i = 0; i < n; ++i) {
                if (buffer[i] != '\n') line += buffer[i];
                else if (!Push(state, &line)) return;
            }
        }
        if (!line.empty()) Push(state, &line);
        std::lock_guard<std::mutex> lock(state.mutex);
        state.eof = true;
        state.ready.notify_all();
    }
    // False once the reader is gone: nobody takes lines any more.
    static bool Push(TSTATE& state, std::string* line) {
        if (!line->empty() && line->back() == '\r') line->pop_back();  // CR LF input
        std::lock_guard<std::mutex> lock(state.mutex);
        if (state.discard) return false;
        state.lines.push_back(std::move(*line));
        line->clear();
        state.ready.notify_all();
        return true;
    }

    std::shared_ptr<TSTATE> m_state;
};

class CDcsterm {
public:
    CDcsterm(const TDCSTERMOPTIONS& options, COndDeviceComm_0* channel, CDcstermPrinter* printer)
        : m_options(options), m_channel(channel), m_printer(printer) {}

    int RunPiped();
    int RunInteractive(CConsoleKeys* keys);

private:
    // One poll; false when receiving failed (reported on standard error).
    bool Poll(bool* received);
    void ReportReceiveError(int32_t code);

    // The input row of the interactive mode.
    void HideRow();
    void ShowRow();

    const TDCSTERMOPTIONS& m_options;
    COndDeviceComm_0* m_channel;
    CDcstermPrinter* m_printer;
    std::string m_input;
    size_t m_rowShown = 0;  // characters of the input row on the screen
};

bool CDcsterm::Poll(bool* received) {
    TTERMINALPOLL poll = TerminalPoll(m_channel, &g_owner, m_printer, kPollBudgetBytes);
    *received = poll.bytes > 0;
    if (poll.locked && poll.bytes == 0 && poll.error == 0) m_printer->Quiet();
    if (poll.error != 0) {
        ReportReceiveError(poll.error);
        return false;
    }
    return true;
}

void CDcsterm::ReportReceiveError(int32_t code) {
    const char* text = m_channel->GetInfoString(ONDCOMM_INFO_ERRORTEXT, code);
    m_printer->Finish();
    Write(m_printer->Take());
    std::fprintf(stderr, "dcsterm: Error: %s\n", text ? text : "");
}

int CDcsterm::RunPiped() {
    CLineReader reader;
    reader.Start();
    uint64_t lastActivity = OsTickCount();
    uint64_t lineNumber = 0;
    int status = DCSTERM_EXIT_OK;
    bool inputDone = false;
    for (;;) {
        std::string line;
        bool eof = false;
        while (!inputDone && reader.Take(&line, &eof)) {
            ++lineNumber;
            TTERMINALSEND send = TerminalSendLine(m_channel, &g_owner, line, m_options.appendCR, nullptr);
            lastActivity = OsTickCount();
            if (send.result == TERMINAL_SENT) {
                m_printer->Sent(send.bytes);
                continue;
            }
            // Nothing more is sent: what was sent is still answered.
            std::fprintf(stderr, "dcsterm: line %llu: %s\n", (unsigned long long)lineNumber,
                         send.status.c_str());
            status = DCSTERM_EXIT_NOTSENT;
            inputDone = true;
        }
        if (eof) inputDone = true;
        bool received = false;
        if (!Poll(&received)) return DCSTERM_EXIT_NOTSENT;
        Write(m_printer->Take());
        if (received) lastActivity = OsTickCount();
        if (inputDone && OsTickCount() - lastActivity >= m_options.idleMs) break;
        if (received) continue;  // more may be waiting
        if (inputDone) OsSleep(kPollMs);
        else reader.Wait(kPollMs);
    }
    m_printer->Finish();
    Write(m_printer->Take());
    return status;
}

void CDcsterm::HideRow() {
    if (m_rowShown == 0) return;
    Write("\r" + std::string(m_rowShown, ' ') + "\r");
    m_rowShown = 0;
}

void CDcsterm::ShowRow() {
    Write(kPrompt + m_input);
    m_rowShown = sizeof kPrompt - 1 + m_input.size();
}

int CDcsterm::RunInteractive(CConsoleKeys* keys) {
    CONXTerminalHistory history;
    ShowRow();
    uint64_t lastPoll = 0;
    for (;;) {
        uint64_t now = OsTickCount();
        uint32_t wait = now - lastPoll >= kPollMs ? 0 : static_cast<uint32_t>(kPollMs - (now - lastPoll));
        char ch = 0;
        ECONSOLEKEY key = keys->Read(wait, &ch);
        std::string text;
        switch (key) {
        case CONSOLEKEY_NONE: break;
        case CONSOLEKEY_CHAR:
            m_input += ch;
            Write(std::string(1, ch));
            ++m_rowShown;
            break;
        case CONSOLEKEY_BACKSPACE:
            if (!m_input.empty()) {
                m_input.pop_back();
                Write("\b \b");
                --m_rowShown;
            }
            break;
        case CONSOLEKEY_ESCAPE:
            HideRow();
            m_input.clear();
            ShowRow();
            break;
        case CONSOLEKEY_UP:
        case CONSOLEKEY_DOWN:
            if (key == CONSOLEKEY_UP ? history.Up(&text) : history.Down(&text)) {
                HideRow();
                m_input = text;
                ShowRow();
            }
            break;
        case CONSOLEKEY_ENTER: {
            TTERMINALSEND send = TerminalSendLine(m_channel, &g_owner, m_input, m_options.appendCR, &history);
            if (send.result == TERMINAL_SENT) {
                m_printer->Sent(send.bytes);
                Write("\n");  // the line sent stays on the screen
                m_rowShown = 0;
                m_input.clear();
            } else {
                HideRow();
                Write("dcsterm: " + send.status + "\n");
            }
            ShowRow();
            break;
        }
        case CONSOLEKEY_END:
            if (!m_input.empty()) break;  // Ctrl+D ends only on an empty line
            [[fallthrough]];
        case CONSOLEKEY_INTERRUPT:
            HideRow();
            m_printer->Finish();
            Write(m_printer->Take());
            return DCSTERM_EXIT_OK;
        }
        if (OsTickCount() - lastPoll < kPollMs) continue;
        lastPoll = OsTickCount();
        bool received = false;
        bool ok = Poll(&received);
        std::string shown = m_printer->Take();
        if (!shown.empty()) {
            HideRow();
            Write(shown);
            ShowRow();
        }
        if (!ok) return DCSTERM_EXIT_NOTSENT;
    }
}

int Main(int argc, char** argv) {
    ConsoleBinaryStreams();
    TDCSTERMOPTIONS options;
    std::string error;
    if (!ParseDcstermOptions(argc, argv, &options, &error)) {
        std::fprintf(stderr, "dcsterm: %s\n(dcsterm --help shows the options)\n", error.c_str());
        return DCSTERM_EXIT_USAGE;
    }
    if (options.help) {
        std::fputs(DcstermUsage(), stdout);
        return DCSTERM_EXIT_OK;
    }
    CHostDevice device;
    switch (device.Open(options.device, &error)) {
    case HOSTDEVICE_OPENED: break;
    case HOSTDEVICE_NOPORT:
        std::fprintf(stderr, "dcsterm: serial port: %s\n", error.c_str());
        return DCSTERM_EXIT_NODEVICE;
    case HOSTDEVICE_NOFILE:
        std::fprintf(stderr, "dcsterm: %s\n", error.c_str());
        return DCSTERM_EXIT_USAGE;
    }
    FILE* log = nullptr;
    if (!options.logFile.empty() && !(log = std::fopen(options.logFile.c_str(), "ab"))) {
        std::fprintf(stderr, "dcsterm: cannot open log file %s\n", options.logFile.c_str());
        return DCSTERM_EXIT_USAGE;
    }
    CConsoleKeys keys;
    bool interactive = ConsoleInputIsTerminal() && keys.Start();
    TDCSTERMPRINT print;
    print.timestamps = options.timestamps;
    print.hex = options.hex;
    print.holdUnfinished = interactive;
    CDcstermPrinter printer(print, log);
    CDcsterm terminal(options, device.Channel(), &printer);
    int status = interactive ? terminal.RunInteractive(&keys) : terminal.RunPiped();
    keys.Stop();
    if (log) std::fclose(log);
    return device.SaveSimFilesAtEnd("dcsterm", status, DCSTERM_EXIT_USAGE);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main(argc, argv);
    } catch (...) {
        std::fprintf(stderr, "dcsterm: out of memory\n");
        return DCSTERM_EXIT_NOTSENT;
    }
}
