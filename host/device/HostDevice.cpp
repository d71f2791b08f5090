#include "host/device/HostDevice.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "host/serial/SerialChannel.h"
#include "host/sim/SimDevice.h"
#include "host/sim/SimDeviceFolder.h"

namespace {

// A file named on the command line, read to its end: a pipe as well
// ("<(...)", /dev/stdin), which a whole-file read by size refuses.
bool ReadStream(const std::string& path, std::string* bytes) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    char buffer[65536];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes->append(buffer, n);
    bool complete = !std::ferror(f);
    std::fclose(f);
    return complete;
}

const char kUsage[] =
    "  --device sim                 the simulated device (default): loopback,\n"
    "                               256 x 4096-byte storage\n"
    "  --device serial:PORT[:BAUD]  a device on a serial port (COM3, /dev/ttyUSB0),\n"
    "                               8N1, 115200 baud unless given; the raw port\n"
    "                               cannot transfer files\n"
    "  --sim-receive FILE           preloads the simulated device's receive queue with\n"
    "                               the bytes of FILE\n"
    "  --sim-receive-bytes N        preloads it with N bytes of \"0123456789\" repeated\n"
    "  --sim-talk RATE              the simulated device sends 80-byte lines without\n"
    "                               end, RATE bytes a second (0: as fast as they are read)\n"
    "  --sim-files DIR              the simulated device starts with the files of DIR:\n"
    "                               ID-TYPE[.ext] (3-1.bin is file ID 3, type 1),\n"
    "                               program.bin the program slot\n"
    "  --sim-save DIR               its files are written into DIR at the end, named\n"
    "                               the same way (files of an earlier save replaced)\n"
    "  --sim-delay MS               each transfer step waits MS milliseconds (a slow\n"
    "                               link: 100 steps a file)\n"
    "  --sim-fault OP:K[:CODE]      the K-th call of operation OP (TransmitFile,\n"
    "                               ReadDirectory, DeleteDeviceFile, FormatDevice, ...)\n"
    "                               fails, with CODE or the simulated fault's code\n";

bool ParseDevice(const std::string& device, THOSTDEVICEOPTIONS* options, std::string* error) {
    if (device == "sim") {
        options->serial = false;
        return true;
    }
    const std::string prefix = "serial:";
    if (device.compare(0, prefix.size(), prefix) != 0) {
        *error = "unknown device '" + device + "' (sim or serial:PORT[:BAUD])";
        return false;
    }
    std::string port = device.substr(prefix.size());
    uint32_t baud = SERIAL_DEFAULT_BAUD;
    // The baud rate is a trailing ":digits"; a port name may hold colons itself.
    size_t colon = port.rfind(':');
    if (colon != std::string::npos && colon + 1 < port.size() &&
        port.find_first_not_of("0123456789", colon + 1) == std::string::npos) {
        uint64_t value = 0;
        if (!ParseOptionNumber(port.substr(colon + 1), 4000000, &value) || value == 0) {
            *error = "bad baud rate in '" + device + "'";
            return false;
        }
        baud = (uint32_t)value;
        port.resize(colon);
    }
    if (port.empty()) {
        *error = "no port in '" + device + "'";
        return false;
    }
    options->serial = true;
    options->serialPort = port;
    options->baud = baud;
    return true;
}

// "OPERATION:K[:CODE]" of --sim-fault.
bool ParseFault(const std::string& text, THOSTDEVICEOPTIONS::TFault* fault, std::string* error) {
    *error = "bad fault '" + text + "' for --sim-fault (OPERATION:K[:CODE], K from 1)";
    size_t first = text.find(':');
    if (first == std::string::npos || first == 0) return false;
    size_t second = text.find(':', first + 1);
    std::string call = text.substr(first + 1, second == std::string::npos ? std::string::npos
                                                                          : second - first - 1);
    uint64_t k = 0;
    if (!ParseOptionNumber(call, 0xFFFFFFFFu, &k) || k == 0) return false;
    long long code = SIMDEV_ERR_INJECTED;
    if (second != std::string::npos) {
        const char* digits = text.c_str() + second + 1;
        char* end = nullptr;
        errno = 0;
        code = strtoll(digits, &end, 10);
        if (!*digits || errno || *end || code < INT32_MIN || code > INT32_MAX) return false;
    }
    fault->operation = text.substr(0, first);
    fault->call = uint32_t(k);
    fault->code = int32_t(code);
    // The device knows which operations can fail.
    CSimDevice probe;
    if (!probe.InjectFault(fault->operation, fault->call, fault->code)) {
        *error = "--sim-fault: '" + fault->operation + "' is no operation that can fail";
        return false;
    }
    return true;
}

}  // namespace

bool ParseOptionNumber(const std::string& text, uint64_t max, uint64_t* value) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
    uint64_t v = 0;
    for (char c : text) {
        uint64_t digit = uint64_t(c - '0');
        if (v > (max - digit) / 10) return false;
        v = v * 10 + digit;
    }
    *value = v;
    return true;
}

bool IsHostDeviceOption(const std::string& name) {
    return name == "--device" || name == "--sim-receive" || name == "--sim-receive-bytes" ||
           name == "--sim-talk" || name == "--sim-files" || name == "--sim-save" ||
           name == "--sim-delay" || name == "--sim-fault";
}

bool ParseHostDeviceOption(const std::string& name, const std::string& value,
                           THOSTDEVICEOPTIONS* options, std::string* error) {
    if (name == "--device") return ParseDevice(value, options, error);
    if (name == "--sim-receive") {
        options->simReceiveFile = value;
        return true;
    }
    if (name == "--sim-files" || name == "--sim-save") {
        if (value.empty()) {
            *error = name + " needs a folder";
            return false;
        }
        (name == "--sim-files" ? options->simFilesFolder : options->simSaveFolder) = value;
        return true;
    }
    if (name == "--sim-fault") {
        THOSTDEVICEOPTIONS::TFault fault;
        if (!ParseFault(value, &fault, error)) return false;
        options->simFaults.push_back(fault);
        return true;
    }
    if (name == "--sim-delay") {
        uint64_t ms = 0;
        if (!ParseOptionNumber(value, 60000, &ms)) {
            *error = "bad time '" + value + "' for --sim-delay (0 to 60000 milliseconds)";
            return false;
        }
        options->simDelayMs = uint32_t(ms);
        return true;
    }
    uint64_t* count = name == "--sim-talk" ? &options->simTalkRate : &options->simReceiveBytes;
    if (!ParseOptionNumber(value, UINT64_MAX, count)) {
        *error = "bad byte count '" + value + "' for " + name;
        return false;
    }
    if (name == "--sim-talk") options->simTalk = true;
    return true;
}

bool CheckHostDeviceOptions(const THOSTDEVICEOPTIONS& options, std::string* error) {
    if (options.serial &&
        (!options.simReceiveFile.empty() || options.simReceiveBytes || options.simTalk ||
         !options.simFilesFolder.empty() || !options.simSaveFolder.empty() ||
         options.simDelayMs || !options.simFaults.empty())) {
        *error = "the --sim- options need the simulated device";
        return false;
    }
    return true;
}

const char* HostDeviceUsage() { return kUsage; }

std::string HostDeviceTalkLine() {
    std::string line(78, ' ');
    for (size_t i = 0; i < line.size(); ++i) line[i] = (char)('!' + i % 94);
    return line + "\r\n";
}

CHostDevice::CHostDevice() {}
CHostDevice::~CHostDevice() {}

COndDeviceComm_0* CHostDevice::Channel() const {
    if (m_serial) return m_serial.get();
    return m_sim.get();
}

EHOSTDEVICEOPEN CHostDevice::Open(const THOSTDEVICEOPTIONS& options, std::string* error) {
    if (options.serial) {
        m_serial.reset(new CSerialChannel);
        if (!m_serial->Open(options.serialPort, options.baud, error)) {
            m_serial.reset();
            return HOSTDEVICE_NOPORT;
        }
        return HOSTDEVICE_OPENED;
    }
    m_sim.reset(new CSimDevice);
    if (!options.simReceiveFile.empty()) {
        std::string bytes;
        if (!ReadStream(options.simReceiveFile, &bytes)) {
            *error = "cannot read " + options.simReceiveFile;
            return HOSTDEVICE_NOFILE;
        }
        m_sim->PreloadReceive(bytes);
    }
    if (options.simReceiveBytes) {
        std::string bytes(options.simReceiveBytes, '\0');
        for (uint64_t i = 0; i < options.simReceiveBytes; ++i) bytes[i] = (char)('0' + i % 10);
        m_sim->PreloadReceive(bytes);
    }
    if (options.simTalk) m_sim->SetReceiveStream(HostDeviceTalkLine(), options.simTalkRate);
    if (!options.simFilesFolder.empty() && !LoadSimFolder(m_sim.get(), options.simFilesFolder, error))
        return HOSTDEVICE_NOFILE;
    // After the preload: faults count the program's own calls, and the
    // preload is not slowed.
    for (const THOSTDEVICEOPTIONS::TFault& fault : options.simFaults)
        m_sim->InjectFault(fault.operation, fault.call, fault.code);
    m_sim->SetStepDelay(options.simDelayMs);
    m_simSaveFolder = options.simSaveFolder;
    return HOSTDEVICE_OPENED;
}

bool CHostDevice::SaveSimFiles(std::string* error) {
    if (!m_sim || m_simSaveFolder.empty()) return true;
    return SaveSimFolder(m_sim.get(), m_simSaveFolder, error);
}

int CHostDevice::SaveSimFilesAtEnd(const char* program, int status, int failStatus) {
    std::string error;
    if (SaveSimFiles(&error)) return status;
    std::fprintf(stderr, "%s: --sim-save: %s\n", program, error.c_str());
    return status == 0 ? failStatus : status;
}
