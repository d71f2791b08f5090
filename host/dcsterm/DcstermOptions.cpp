#include "host/dcsterm/DcstermOptions.h"

#include "host/console/ConsoleOptions.h"

namespace {

const char kUsageHead[] =
    "usage: dcsterm [options]\n"
    "\n"
    "The Terminal for the console: sends lines to a device and prints what the\n"
    "device sends back, line by line as the Terminal's window shows it.\n"
    "\n"
    "Lines take the Terminal's escapes: \\n \\t \\r \\\\ \\\" \\0..\\9 \\A..\\F (one hex\n"
    "digit), \\(65) \\(x41) \\(b1000001) (any byte); a zero byte ends what is sent,\n"
    "and a carriage return is appended unless --no-cr.\n"
    "\n"
    "On a terminal: Enter sends the line, Up and Down go through the lines sent\n"
    "before, Escape empties the line, Ctrl+D (on an empty line) or Ctrl+C ends.\n"
    "From a pipe or a file: each line is sent as it is read; after the last one\n"
    "dcsterm waits until the device has been quiet for --idle milliseconds and\n"
    "exits. A line with bad escapes is not sent and ends dcsterm with status 1.\n"
    "\n"
    "options:\n";

const char kUsageTail[] =
    "  --no-cr                      send lines without the carriage return\n"
    "  --timestamps                 each received line begins with the local time\n"
    "                               (HH:MM:SS.mmm)\n"
    "  --log FILE                   appends both directions to FILE, one line per\n"
    "                               record with date and time, \"<\" received, \">\"\n"
    "                               sent, escaped as above; written line by line\n"
    "  --hex                        received bytes as a hex dump\n"
    "  --idle MS                    the quiet time before exiting when the input is\n"
    "                               not a terminal (default 500)\n"
    "  -h, --help                   this text\n"
    "\n"
    "exit status:\n"
    "  0 done    1 a line was not sent (bad escapes, device locked, channel error)\n"
    "  or receiving failed    2 bad command line or file    7 the serial port cannot\n"
    "  be opened\n";

}  // namespace

const char* DcstermUsage() {
    static const std::string usage = std::string(kUsageHead) + HostDeviceUsage() + kUsageTail;
    return usage.c_str();
}

bool ParseDcstermOptions(int argc, const char* const* argv, TDCSTERMOPTIONS* options,
                         std::string* error) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            options->help = true;
            continue;
        }
        if (arg == "--no-cr") {
            options->appendCR = false;
            continue;
        }
        if (arg == "--timestamps") {
            options->timestamps = true;
            continue;
        }
        if (arg == "--hex") {
            options->hex = true;
            continue;
        }
        // Options with a value: "--opt value" or "--opt=value".
        std::string name, value;
        bool inlineValue = SplitConsoleOption(arg, &name, &value);
        if (!IsHostDeviceOption(name) && name != "--log" && name != "--idle") {
            *error = arg.compare(0, 1, "-") == 0 ? "unknown option '" + arg + "'"
                                                 : "unexpected argument '" + arg + "'";
            return false;
        }
        if (!inlineValue && !TakeConsoleOptionValue(argc, argv, &i, name, &value, error)) return false;
        if (IsHostDeviceOption(name)) {
            if (!ParseHostDeviceOption(name, value, &options->device, error)) return false;
        } else if (name == "--log") {
            if (value.empty()) {
                *error = "--log needs a file name";
                return false;
            }
            options->logFile = value;
        } else {
            uint64_t idleMs = 0;
            if (!ParseOptionNumber(value, 86400000, &idleMs)) {
                *error = "bad time '" + value + "' for --idle (milliseconds)";
                return false;
            }
            options->idleMs = static_cast<uint32_t>(idleMs);
        }
    }
    if (options->help) return true;
    return CheckHostDeviceOptions(options->device, error);
}
