#include "host/dcsrun/DcsOptions.h"

#include <string>

#include "host/console/ConsoleOptions.h"

namespace {

const char kUsageHead[] =
    "usage: dcsrun [options] SCRIPT.dcs\n"
    "       dcsrun --check [--set NAME=TYPE:VALUE]... SCRIPT.dcs...\n"
    "\n"
    "Runs a device script through the Script Processor and writes the script's\n"
    "output to standard output as it comes.\n"
    "\n"
    "options:\n";

const char kUsageTail[] =
    "  --set NAME=TYPE:VALUE        hands a variable to the script (repeatable).\n"
    "                               TYPE: dword, uint32, int32, uint64, int64, string.\n"
    "                               Numbers in decimal or 0x hexadecimal, with '-' for\n"
    "                               int32 and int64; strings take the script's escapes\n"
    "                               (\\n, \\t, \\r, \\\\, \\(255))\n"
    "  --get NAME                   after the run, writes NAME's value to standard\n"
    "                               error (repeatable; only names handed in with --set)\n"
    "  --batch                      never ask the operator (also when standard input\n"
    "                               is not a terminal): every question is answered as\n"
    "                               Cancel would, with its default value and confirmed\n"
    "                               0, and a note on standard error\n"
    "  --check                      only read the scripts (and the sub-scripts they\n"
    "                               name by a literal file name): no device, nothing\n"
    "                               runs; each fault as \"SCRIPT: diagnostic\"; exit\n"
    "                               status 0 when all parse, 21 when one does not\n"
    "  -h, --help                   this text\n"
    "\n"
    "--get writes one line per name, in the order given, whatever the run's result:\n"
    "  NAME=TYPE:VALUE     TYPE dword, int32, uint64, int64 or string; numbers in\n"
    "                      decimal; strings with \\\\ for a backslash, \\n, \\r, \\t, and\n"
    "                      \\(N) for any other byte outside 32..126, so that the value\n"
    "                      can be handed back with --set\n"
    "  NAME: not set       when no variable of that name was handed in\n"
    "\n"
    "exit status: the Script Processor's result\n"
    "  0 success (also after exit())    6 empty script path\n"
    "  7 no device (the serial port cannot be opened)\n"
    "  8 the script file cannot be opened    9 it cannot be read completely\n"
    "  18 out of memory    20 the device is locked    21 the script failed\n"
    "  2 bad command line\n";

}  // namespace

const char* DcsUsage() {
    static const std::string usage = std::string(kUsageHead) + HostDeviceUsage() + kUsageTail;
    return usage.c_str();
}

bool ParseDcsOptions(int argc, const char* const* argv, TDCSOPTIONS* options, std::string* error) {
    bool optionsEnd = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (optionsEnd || arg.empty() || arg[0] != '-' || arg == "-") {
            options->scripts.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnd = true;
            continue;
        }
        if (arg == "-h" || arg == "--help") {
            options->help = true;
            continue;
        }
        if (arg == "--batch") {
            options->batch = true;
            continue;
        }
        if (arg == "--check") {
            options->check = true;
            continue;
        }
        // Options with a value: "--opt value" or "--opt=value".
        std::string name, value;
        bool inlineValue = SplitConsoleOption(arg, &name, &value);
        if (!IsHostDeviceOption(name) && name != "--set" && name != "--get") {
            *error = "unknown option '" + arg + "'";
            return false;
        }
        if (!inlineValue && !TakeConsoleOptionValue(argc, argv, &i, name, &value, error)) return false;
        if (IsHostDeviceOption(name)) {
            if (!ParseHostDeviceOption(name, value, &options->device, error)) return false;
        } else if (name == "--set") {
            options->sets.push_back(value);
        } else if (name == "--get") {
            if (value.empty()) {
                *error = "--get needs a name";
                return false;
            }
            options->gets.push_back(value);
        }
    }
    if (options->help) return true;
    if (!CheckHostDeviceOptions(options->device, error)) return false;
    if (options->scripts.empty() || options->scripts[0].empty()) {
        *error = "no script given";
        return false;
    }
    if (options->scripts.size() > 1 && !options->check) {
        *error = "more than one script given ('" + options->scripts[0] + "', '" +
                 options->scripts[1] + "')";
        return false;
    }
    return true;
}
