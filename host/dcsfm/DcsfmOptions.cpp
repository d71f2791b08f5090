#include "host/dcsfm/DcsfmOptions.h"

#include "host/console/ConsoleOptions.h"
#include "util/FileEntry.h"

namespace {

const char kUsageHead[] =
    "usage: dcsfm [device options] COMMAND [arguments]\n"
    "\n"
    "The File Manager for the console: lists, copies, deletes and formats the\n"
    "files on the device with the File Manager window's rules and texts.\n"
    "\n"
    "commands:\n"
    "  ls [--json]                  the device directory (file ID, type, size) and\n"
    "                               its summary; --json for programs\n"
    "  put [--stop-on-error] [--id N] [--type N] [--mode MODE] FILE...\n"
    "                               copies files to the device. --id, --type and\n"
    "                               --mode apply to the files named after them;\n"
    "                               otherwise ID 0, type 1, and mode program for a\n"
    "                               .rbf file, else normal. MODE: normal,\n"
    "                               bit-reverse or program. A failed file does not\n"
    "                               stop the others, unless --stop-on-error\n"
    "  rm [--yes] ID...             deletes device files, stopping at the first\n"
    "                               failure; asks first unless --yes (which is\n"
    "                               needed when standard input is not a terminal)\n"
    "  format [--yes [--used-only]] formats the device; asks: Yes every block, No\n"
    "                               only the blocks marked as used, Cancel nothing.\n"
    "                               --yes answers Yes, --yes --used-only No\n"
    "  job run [--stop-on-error] FILE.dcj\n"
    "                               copies the files a job file lists, as put does\n"
    "  job make FILE.dcj [--id N] [--type N] [--mode MODE] FILE...\n"
    "                               writes the files, as put would copy them, into\n"
    "                               a job file; the device is not opened\n"
    "\n"
    "device options (anywhere on the line):\n";

const char kUsageTail[] =
    "  -h, --help                   this text\n"
    "\n"
    "On a terminal a copy shows a progress bar, otherwise one line per file.\n"
    "Ctrl+C during a copy stops it as the window's Abort does (the file being\n"
    "sent is aborted, no further file starts); at any other time it ends dcsfm.\n"
    "\n"
    "exit status:\n"
    "  0 done    1 an action failed (the window's error text is printed)\n"
    "  2 bad command line, or a job file or --sim- folder that cannot be used\n"
    "  7 the serial port cannot be opened\n"
    "  19 aborted: Ctrl+C, or the question answered No (rm) or Cancel (format)\n";

// Which command takes which option without a value.
struct TFLAG {
    const char* name;
    bool TDCSFMOPTIONS::*field;
    unsigned commands;  // bit per EDCSFMCOMMAND
};

constexpr unsigned Bit(EDCSFMCOMMAND command) { return 1u << command; }

const TFLAG kFlags[] = {
    {"--json", &TDCSFMOPTIONS::json, Bit(DCSFM_LS)},
    {"--stop-on-error", &TDCSFMOPTIONS::stopOnError, Bit(DCSFM_PUT) | Bit(DCSFM_JOBRUN)},
    {"--yes", &TDCSFMOPTIONS::yes, Bit(DCSFM_RM) | Bit(DCSFM_FORMAT)},
    {"--used-only", &TDCSFMOPTIONS::usedOnly, Bit(DCSFM_FORMAT)},
};

const unsigned kPropertyCommands = Bit(DCSFM_PUT) | Bit(DCSFM_JOBMAKE);

const char* CommandName(EDCSFMCOMMAND command) {
    switch (command) {
    case DCSFM_LS: return "ls";
    case DCSFM_PUT: return "put";
    case DCSFM_RM: return "rm";
    case DCSFM_FORMAT: return "format";
    case DCSFM_JOBRUN: return "job run";
    case DCSFM_JOBMAKE: return "job make";
    default: return "";
    }
}

bool ParseMode(const std::string& text, int* mode) {
    if (text == "normal") *mode = FILEMODE_NORMAL;
    else if (text == "bit-reverse" || text == "bit reverse") *mode = FILEMODE_BITREVERSE;
    else if (text == "program") *mode = FILEMODE_PROGRAM;
    else return false;
    return true;
}

class CParser {
public:
    CParser(TDCSFMOPTIONS* options, std::string* error) : m_options(options), m_error(error) {}

    bool Parse(int argc, const char* const* argv);

private:
    bool Fail(const std::string& text) {
        *m_error = text;
        return false;
    }
    bool Positional(const std::string& arg);
    bool Property(const std::string& name, const std::string& value);
    bool Check();

    TDCSFMOPTIONS* m_options;
    std::string* m_error;
    bool m_job = false;            // "job" read, "run" or "make" to come
    TDCSFMFILE m_pending;          // the properties the next file gets
    std::string m_lastProperty;    // given after the last file, if any
    std::vector<std::string> m_flagsGiven;
    bool m_propertyGiven = false;
};

bool CParser::Parse(int argc, const char* const* argv) {
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (optionsEnded || arg.empty() || arg[0] != '-' || arg == "-") {
            if (!Positional(arg)) return false;
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        if (arg == "-h" || arg == "--help") {
            m_options->help = true;
            continue;
        }
        bool flag = false;
        for (const TFLAG& f : kFlags) {
            if (arg == f.name) {
                m_options->*f.field = true;
                m_flagsGiven.push_back(arg);
                flag = true;
            }
        }
        if (flag) continue;
        // Options with a value: "--opt value" or "--opt=value".
        std::string name, value;
        bool inlineValue = SplitConsoleOption(arg, &name, &value);
        bool property = name == "--id" || name == "--type" || name == "--mode";
        if (!property && !IsHostDeviceOption(name)) return Fail("unknown option '" + arg + "'");
        if (!inlineValue && !TakeConsoleOptionValue(argc, argv, &i, name, &value, m_error)) return false;
        if (property) {
            if (!Property(name, value)) return false;
        } else if (!ParseHostDeviceOption(name, value, &m_options->device, m_error)) {
            return false;
        }
    }
    if (m_options->help) return true;
    return Check();
}

bool CParser::Positional(const std::string& arg) {
    if (m_options->command == DCSFM_NONE && !m_job) {
        if (arg == "ls") m_options->command = DCSFM_LS;
        else if (arg == "put") m_options->command = DCSFM_PUT;
        else if (arg == "rm") m_options->command = DCSFM_RM;
        else if (arg == "format") m_options->command = DCSFM_FORMAT;
        else if (arg == "job") m_job = true;
        else return Fail("unknown command '" + arg + "' (ls, put, rm, format, job run, job make)");
        return true;
    }
    if (m_job) {
        m_job = false;
        if (arg == "run") m_options->command = DCSFM_JOBRUN;
        else if (arg == "make") m_options->command = DCSFM_JOBMAKE;
        else return Fail("unknown job command '" + arg + "' (job run, job make)");
        return true;
    }
    EDCSFMCOMMAND command = m_options->command;
    bool jobFileFirst = command == DCSFM_JOBRUN || command == DCSFM_JOBMAKE;
    if (jobFileFirst && m_options->jobFile.empty()) {
        m_options->jobFile = arg;
        return true;
    }
    if (command == DCSFM_PUT || command == DCSFM_JOBMAKE) {
        TDCSFMFILE file = m_pending;
        file.path = arg;
        m_options->files.push_back(file);
        m_lastProperty.clear();
        return true;
    }
    if (command == DCSFM_RM) {
        uint64_t id = 0;
        if (!ParseOptionNumber(arg, 255, &id)) return Fail("bad file ID '" + arg + "' (0 to 255)");
        m_options->fileIds.push_back(uint8_t(id));
        return true;
    }
    return Fail(std::string("unexpected argument '") + arg + "' for " + CommandName(command));
}

bool CParser::Property(const std::string& name, const std::string& value) {
    m_propertyGiven = true;
    m_lastProperty = name;
    if (name == "--mode") {
        if (!ParseMode(value, &m_pending.fileMode))
            return Fail("bad mode '" + value + "' (normal, bit-reverse or program)");
        return true;
    }
    uint64_t number = 0;
    if (!ParseOptionNumber(value, 255, &number))
        return Fail(std::string("bad file ") + (name == "--id" ? "ID" : "type") + " '" + value +
                    "' (0 to 255)");
    (name == "--id" ? m_pending.fileId : m_pending.fileType) = int(number);
    return true;
}

bool CParser::Check() {
    EDCSFMCOMMAND command = m_options->command;
    if (m_job) return Fail("job needs run or make");
    if (command == DCSFM_NONE) return Fail("no command (ls, put, rm, format, job run, job make)");
    const char* name = CommandName(command);
    for (const std::string& flag : m_flagsGiven) {
        for (const TFLAG& f : kFlags) {
            if (flag == f.name && !(f.commands & Bit(command)))
                return Fail(flag + " is not an option of " + name);
        }
    }
    if (m_propertyGiven && !(kPropertyCommands & Bit(command)))
        return Fail(std::string("--id, --type and --mode are not options of ") + name);
    if (!m_lastProperty.empty())
        return Fail(m_lastProperty + " applies to the files named after it, and none follows");
    bool needsJob = command == DCSFM_JOBRUN || command == DCSFM_JOBMAKE;
    if (needsJob && m_options->jobFile.empty()) return Fail(std::string(name) + " needs a job file");
    if ((command == DCSFM_PUT || command == DCSFM_JOBMAKE) && m_options->files.empty())
        return Fail(std::string(name) + " needs at least one file");
    if (command == DCSFM_RM && m_options->fileIds.empty())
        return Fail("rm needs at least one file ID");
    if (m_options->usedOnly && !m_options->yes)
        return Fail("--used-only goes with --yes (when asked, No formats only the used blocks)");
    return CheckHostDeviceOptions(m_options->device, m_error);
}

}  // namespace

const char* DcsfmUsage() {
    static const std::string usage = std::string(kUsageHead) + HostDeviceUsage() + kUsageTail;
    return usage.c_str();
}

bool ParseDcsfmOptions(int argc, const char* const* argv, TDCSFMOPTIONS* options,
                       std::string* error) {
    CParser parser(options, error);
    return parser.Parse(argc, argv);
}
