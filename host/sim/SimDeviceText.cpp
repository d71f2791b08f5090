// The simulated device's texts: description, configuration line, error texts.
#include <string>

#include "host/sim/SimDevice.h"

namespace {

// Per thread, so that a caller's text survives other threads' calls.
thread_local std::string t_infoText;

const char* ErrorText(int64_t code) {
    switch (code) {
        case SIMDEV_ERR_NONE: return "No error";
        case SIMDEV_ERR_FILENOTFOUND: return "File not found on the device";
        case SIMDEV_ERR_STORAGEFULL: return "Not enough free space on the device";
        case SIMDEV_ERR_LOCALFILE: return "Local file cannot be opened or read";
        case SIMDEV_ERR_ABORTED: return "Transfer aborted";
        case SIMDEV_ERR_INJECTED: return "Simulated device fault";
        case SIMDEV_ERR_CLOSED: return "Device is closed";
        case SIMDEV_ERR_NOTSUPPORTED: return "Operation not supported by the simulated device";
        case SIMDEV_ERR_BADARGUMENT: return "Invalid argument";
        case SIMDEV_ERR_LOCKED: return "Device is locked by another user";
        case SIMDEV_ERR_NOMEMORY: return "Out of memory in the simulated device";
        case SIMDEV_ERR_INTERNAL: return "Internal error of the simulated device";
        default: return nullptr;
    }
}

}  // namespace

const char* CSimDevice::GetInfoString(uint32_t what, int64_t code) {
    try {
        uint32_t blockCount, blockSize;
        bool loopback;
        {
            std::lock_guard<std::mutex> g(m_mutex);
            CountCall("GetInfoString");
            blockCount = m_config.blockCount;
            blockSize = m_config.blockSize;
            loopback = m_config.loopback;
        }
        switch (what) {
            case ONDCOMM_INFO_DESCRIPTION:
                return "Simulated device (no hardware attached)";
            case ONDCOMM_INFO_CONFIGURATION:
                t_infoText = std::to_string(blockCount) + " blocks of " +
                             std::to_string(blockSize) + " bytes, loopback " +
                             (loopback ? "on" : "off");
                return t_infoText.c_str();
            case ONDCOMM_INFO_ERRORTEXT:
                if (const char* text = ErrorText(code)) return text;
                t_infoText = "Unknown device error " + std::to_string(code);
                return t_infoText.c_str();
            default:
                return "";
        }
    } catch (...) {
        return "Out of memory";  // no exception leaves the channel
    }
}
