// dcsfm's command line (every command, the positional file properties, the
// refusals), the rows it makes of the files it is given, and the simulated
// device's options shared with dcsrun and dcsterm.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/dcsfm/DcsfmFiles.h"
#include "host/dcsfm/DcsfmOptions.h"
#include "host/device/HostDevice.h"
#include "host/sim/SimDevice.h"
#include "util/PathUtil.h"
#include "tests/unit/TestSupport.h"

namespace {

bool Parse(std::vector<const char*> args, TDCSFMOPTIONS* options, std::string* error) {
    args.insert(args.begin(), "dcsfm");
    return ParseDcsfmOptions(int(args.size()), args.data(), options, error);
}

// The parse result in one line, for the table.
std::string Describe(const TDCSFMOPTIONS& o) {
    static const char* names[] = {"none", "ls", "put", "rm", "format", "job-run", "job-make"};
    std::string d = o.help ? "help" : names[o.command];
    if (o.json) d += " json";
    if (o.stopOnError) d += " stop";
    if (o.yes) d += " yes";
    if (o.usedOnly) d += " used";
    if (!o.jobFile.empty()) d += " job=" + o.jobFile;
    for (const TDCSFMFILE& f : o.files)
        d += " " + f.path + "(" + std::to_string(f.fileId) + "," + std::to_string(f.fileType) + "," +
             std::to_string(f.fileMode) + ")";
    for (uint8_t id : o.fileIds) d += " #" + std::to_string(id);
    return d;
}

}  // namespace

TEST(DcsfmOptions, CommandsAndTheirArguments) {
    const struct {
        std::vector<const char*> args;
        const char* parsed;
    } cases[] = {
        {{"ls"}, "ls"},
        {{"--device", "sim", "ls", "--json"}, "ls json"},
        // --id, --type and --mode apply to the files after them, until given again.
        {{"--device=sim", "put", "a.bin", "--id", "5", "b.rbf", "--mode", "bit-reverse", "--type=9", "c"},
         "put a.bin(-1,-1,-1) b.rbf(5,-1,-1) c(5,9,1)"},
        {{"put", "--mode", "bit reverse", "x", "--mode=program", "--id=0", "y"},
         "put x(-1,-1,1) y(0,-1,2)"},
        {{"put", "--stop-on-error", "--", "-x", "--id"}, "put stop -x(-1,-1,-1) --id(-1,-1,-1)"},
        {{"rm", "--yes", "0", "255", "007"}, "rm yes #0 #255 #7"},
        {{"format"}, "format"},
        {{"format", "--used-only", "--yes"}, "format yes used"},
        {{"job", "run", "j.dcj", "--stop-on-error"}, "job-run stop job=j.dcj"},
        {{"job", "make", "--mode", "normal", "j.dcj", "a", "--type", "3", "b"},
         "job-make job=j.dcj a(-1,-1,0) b(-1,3,0)"},
        {{"ls", "--sim-files", "d", "--sim-save=e", "--sim-delay", "5", "--sim-fault",
          "TransmitFile:2:-7"},
         "ls"},
        {{"--help"}, "help"},
        {{"put", "-h"}, "help"},
    };
    for (const auto& c : cases) {
        TDCSFMOPTIONS options;
        std::string error;
        EXPECT_TRUE(Parse(c.args, &options, &error)) << c.parsed << ": " << error;
        EXPECT_EQ(Describe(options), c.parsed);
    }
    TDCSFMOPTIONS options;
    std::string error;
    ASSERT_TRUE(Parse({"ls", "--sim-files", "d", "--sim-save=e", "--sim-delay", "5", "--sim-fault",
                       "TransmitFile:2:-7", "--sim-fault", "ReadDirectory:1"},
                      &options, &error));
    EXPECT_EQ(options.device.simFilesFolder, "d");
    EXPECT_EQ(options.device.simSaveFolder, "e");
    EXPECT_EQ(options.device.simDelayMs, 5u);
    ASSERT_EQ(options.device.simFaults.size(), 2u);
    EXPECT_EQ(options.device.simFaults[0].operation, "TransmitFile");
    EXPECT_EQ(options.device.simFaults[0].call, 2u);
    EXPECT_EQ(options.device.simFaults[0].code, -7);
    EXPECT_EQ(options.device.simFaults[1].code, SIMDEV_ERR_INJECTED);
}

TEST(DcsfmOptions, BadCommandLines) {
    const struct {
        std::vector<const char*> args;
        const char* message;
    } cases[] = {
        {{}, "no command (ls, put, rm, format, job run, job make)"},
        {{"list"}, "unknown command 'list'"},
        {{"job"}, "job needs run or make"},
        {{"job", "list"}, "unknown job command 'list'"},
        {{"ls", "x"}, "unexpected argument 'x' for ls"},
        {{"format", "1"}, "unexpected argument '1' for format"},
        {{"ls", "--yes"}, "--yes is not an option of ls"},
        {{"rm", "--json", "1"}, "--json is not an option of rm"},
        {{"put", "--used-only", "a"}, "--used-only is not an option of put"},
        {{"job", "make", "j", "--stop-on-error", "a"}, "--stop-on-error is not an option of job make"},
        {{"rm", "--id", "3", "4"}, "--id, --type and --mode are not options of rm"},
        {{"put"}, "put needs at least one file"},
        {{"put", "a", "--id", "3"}, "--id applies to the files named after it, and none follows"},
        {{"put", "--id", "256", "a"}, "bad file ID '256' (0 to 255)"},
        {{"put", "--id", "0x10", "a"}, "bad file ID '0x10' (0 to 255)"},
        {{"put", "--type", "-1", "a"}, "bad file type '-1' (0 to 255)"},
        {{"put", "--mode", "fast", "a"}, "bad mode 'fast' (normal, bit-reverse or program)"},
        {{"rm"}, "rm needs at least one file ID"},
        {{"rm", "--yes", "3x"}, "bad file ID '3x' (0 to 255)"},
        {{"rm", "1000"}, "bad file ID '1000' (0 to 255)"},
        {{"format", "--used-only"}, "--used-only goes with --yes"},
        {{"job", "run"}, "job run needs a job file"},
        {{"job", "run", "a.dcj", "b"}, "unexpected argument 'b' for job run"},
        {{"job", "make", "a.dcj"}, "job make needs at least one file"},
        {{"ls", "--colour"}, "unknown option '--colour'"},
        {{"ls", "--device"}, "option --device needs a value"},
        {{"ls", "--device", "tape"}, "unknown device 'tape'"},
        {{"ls", "--device", "serial:COM1", "--sim-files", "d"},
         "the --sim- options need the simulated device"},
        {{"ls", "--sim-files="}, "--sim-files needs a folder"},
        {{"ls", "--sim-fault", "Nothing:1"}, "'Nothing' is no operation that can fail"},
        {{"ls", "--sim-fault", "GetState:1"}, "'GetState' is no operation that can fail"},
        {{"ls", "--sim-fault", "TransmitFile:0"}, "bad fault 'TransmitFile:0'"},
        {{"ls", "--sim-fault", "TransmitFile"}, "bad fault 'TransmitFile'"},
        {{"ls", "--sim-fault", "TransmitFile:1:x"}, "bad fault 'TransmitFile:1:x'"},
        {{"ls", "--sim-delay", "-1"}, "bad time '-1' for --sim-delay"},
        {{"ls", "--sim-delay", "60001"}, "bad time '60001' for --sim-delay"},
        {{"ls", "--sim-delay", "0x10"}, "bad time '0x10' for --sim-delay"},
        {{"ls", "--sim-receive-bytes", "18446744073709551616"}, "bad byte count '18446744073709551616'"},
        {{"ls", "--device", "serial:COM1:4000001"}, "bad baud rate in 'serial:COM1:4000001'"},
    };
    for (const auto& c : cases) {
        TDCSFMOPTIONS options;
        std::string error;
        EXPECT_FALSE(Parse(c.args, &options, &error)) << c.message;
        EXPECT_NE(error.find(c.message), std::string::npos) << "[" << error << "] wants [" << c.message << "]";
    }
}

TEST(DcsfmOptions, TheHelpNamesEveryOption) {
    std::string usage = DcsfmUsage();
    for (const char* name : {"ls [--json]", "put [--stop-on-error]", "rm [--yes] ID...",
                             "format [--yes [--used-only]]", "job run", "job make", "--device",
                             "--sim-files DIR", "--sim-save DIR", "--sim-delay MS", "--sim-fault",
                             "--help", "19 aborted"})
        EXPECT_NE(usage.find(name), std::string::npos) << name;
}

// A file's row: the window's defaults for a new path, the command line's
// properties over them; the path full, in backslash form.
TEST(DcsfmFiles, RowsAreTheWindowsDefaultsWithTheGivenProperties) {
    const struct {
        const char* path;
        int id, type, mode;
        const char* columns;
    } cases[] = {
        {"data.bin", -1, -1, -1, "0 1 normal"},
        {"fw.RBF", -1, -1, -1, "0 1 program"},
        {"fw.rbfx", -1, -1, -1, "0 1 normal"},
        {"fw.rbf", 5, 9, FILEMODE_NORMAL, "5 9 normal"},
        {"x.bin", 255, 0, FILEMODE_BITREVERSE, "255 0 bit reverse"},
    };
    for (const auto& c : cases) {
        TDCSFMFILE file;
        file.path = c.path;
        file.fileId = c.id;
        file.fileType = c.type;
        file.fileMode = c.mode;
        TFMROW row = DcsfmRow(file);
        EXPECT_EQ(row.fileId + " " + row.fileType + " " + row.fileMode, c.columns) << c.path;
        EXPECT_TRUE(ondutil::IsAbsolutePath(row.path)) << row.path;
        std::string folder, name;
        ondutil::SplitFileName(row.path, &folder, &name);
        EXPECT_EQ(name, c.path);
        EXPECT_EQ(DcsfmFullPath(row.path), row.path);  // already full
    }
}

TEST(HostDeviceSim, FolderFaultsAndDelayFromTheOptions) {
    namespace fs = std::filesystem;
    CTestScratch scratch;
    const fs::path dir = scratch.Native();
    fs::create_directories(dir / "in");
    ASSERT_TRUE(scratch.Write("in\\4-2.bin", "four"));

    THOSTDEVICEOPTIONS options;
    std::string error;
    for (const char* arg : {"--sim-files", "--sim-save", "--sim-fault", "--sim-fault", "--sim-delay"})
        EXPECT_TRUE(IsHostDeviceOption(arg)) << arg;
    ASSERT_TRUE(ParseHostDeviceOption("--sim-files", (dir / "in").string(), &options, &error));
    ASSERT_TRUE(ParseHostDeviceOption("--sim-save", (dir / "out").string(), &options, &error));
    ASSERT_TRUE(ParseHostDeviceOption("--sim-fault", "DeleteDeviceFile:2:1001", &options, &error));
    // Decimal, as written: a leading zero is no octal prefix.
    ASSERT_TRUE(ParseHostDeviceOption("--sim-delay", "010", &options, &error));
    EXPECT_EQ(options.simDelayMs, 10u);
    ASSERT_TRUE(ParseHostDeviceOption("--sim-receive-bytes", "18446744073709551615", &options, &error));
    EXPECT_EQ(options.simReceiveBytes, UINT64_MAX);
    options.simReceiveBytes = 0;
    ASSERT_TRUE(ParseHostDeviceOption("--sim-delay", "3", &options, &error));
    CHostDevice device;
    ASSERT_EQ(device.Open(options, &error), HOSTDEVICE_OPENED) << error;
    CSimDevice* sim = device.Sim();
    ASSERT_NE(sim, nullptr);
    EXPECT_TRUE(sim->GetStoredFile(4, nullptr));  // preloaded, not counted as a call below
    ASSERT_EQ(sim->TransmitFileFromMemory("x", 1, 5, 1, 0, nullptr, nullptr, 1, 1), 0);
    EXPECT_EQ(sim->DeleteDeviceFile(5), 0);
    EXPECT_EQ(sim->DeleteDeviceFile(4), 1001);  // the second call
    ASSERT_TRUE(device.SaveSimFiles(&error)) << error;
    EXPECT_TRUE(fs::exists(dir / "out" / "004-2.bin"));
    EXPECT_FALSE(fs::exists(dir / "out" / "005-1.bin"));
}
