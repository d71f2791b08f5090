#include "frame/ChannelStatus.h"

std::string ChannelStatusText(COndDeviceComm_0* channel, void* owner) {
    if (!channel) return "No communication device...";
    if (channel->Lock(owner, ONDCOMM_LOCK_POLL_MS) != 0) return std::string();
    std::string text;
    try {
        const char* description = channel->GetInfoString(ONDCOMM_INFO_DESCRIPTION, 0);
        text = "Channel description: ";
        text += description ? description : "";
        const char* configuration = channel->GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0);
        text += "\nChannel configuration: ";
        text += configuration ? configuration : "";
        text += "\nState: ";
        text += channel->GetState() == 1 ? "open" : "closed";
    } catch (...) {
        channel->Unlock(owner);
        throw;
    }
    channel->Unlock(owner);
    return text;
}
