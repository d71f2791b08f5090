// The device a program on the host side talks to, as its command line chose
// it: the simulated device (with what it holds to be received) or a device on
// a serial port. dcsrun, dcsterm and the reference host share the options and
// their help text. Host-side code, not part of the module.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"

class CSerialChannel;
class CSimDevice;

struct THOSTDEVICEOPTIONS {
    bool serial = false;  // else the simulated device
    std::string serialPort;
    uint32_t baud = 0;
    // Simulated device only.
    std::string simReceiveFile;   // preloaded into the receive queue
    uint64_t simReceiveBytes = 0; // that many bytes of "0123456789" preloaded
    bool simTalk = false;         // a stream of lines without end
    uint64_t simTalkRate = 0;     // its bytes per second; 0 = as fast as read
    std::string simFilesFolder;   // its storage preloaded from a folder
    std::string simSaveFolder;    // its storage written out at the end
    uint32_t simDelayMs = 0;      // before every transfer step
    struct TFault {
        std::string operation;  // as the interface names it ("TransmitFile")
        uint32_t call;          // the k-th call from the start, 1-based
        int32_t code;
    };
    std::vector<TFault> simFaults;
};

// Whether name ("--device", ...) is one of the device options; they all take
// a value. Options of the simulated device begin with "--sim-".
bool IsHostDeviceOption(const std::string& name);
// Takes one device option's value; false with *error (one line) when it is bad.
bool ParseHostDeviceOption(const std::string& name, const std::string& value,
                           THOSTDEVICEOPTIONS* options, std::string* error);
// The options together: false with *error for simulated-device options given
// with a serial port.
bool CheckHostDeviceOptions(const THOSTDEVICEOPTIONS& options, std::string* error);
// The help lines of the device options.
const char* HostDeviceUsage();

// A number on a host program's command line: decimal digits only (no sign,
// blank or base prefix: "010" is ten, not eight), at most max.
bool ParseOptionNumber(const std::string& text, uint64_t max, uint64_t* value);

// The lines the talking simulated device sends: 78 characters and CR LF.
std::string HostDeviceTalkLine();

enum EHOSTDEVICEOPEN {
    HOSTDEVICE_OPENED,
    HOSTDEVICE_NOPORT,  // the serial port cannot be opened (*error says why)
    HOSTDEVICE_NOFILE,  // a file or folder to preload cannot be read or used
};

// Owns the channel the options name.
class CHostDevice {
public:
    CHostDevice();
    ~CHostDevice();
    CHostDevice(const CHostDevice&) = delete;
    CHostDevice& operator=(const CHostDevice&) = delete;

    EHOSTDEVICEOPEN Open(const THOSTDEVICEOPTIONS& options, std::string* error);
    COndDeviceComm_0* Channel() const;
    CSimDevice* Sim() const { return m_sim.get(); }  // null for a serial port
    // Writes the simulated device's files into the --sim-save folder, when
    // one was named; false with *error when they cannot be written.
    bool SaveSimFiles(std::string* error);
    // The same at a console tool's end: a failure is told on standard error
    // ("PROGRAM: --sim-save: ...") and turns a success (0) into failStatus.
    // Returns the tool's final status.
    int SaveSimFilesAtEnd(const char* program, int status, int failStatus);

private:
    std::string m_simSaveFolder;
    std::unique_ptr<CSimDevice> m_sim;
    std::unique_ptr<CSerialChannel> m_serial;
};
