#include "frame/ChannelStatus.h"

#include "frame/ChannelLock.h"

std::string ChannelStatusText(COndDeviceComm_0* channel, void* owner) {
    if (!channel) return "No communication device...";
    CChannelLock lock(channel, owner, ONDCOMM_LOCK_POLL_MS);
    if (!lock.Held()) return std::string();
    const char* description = channel->GetInfoString(ONDCOMM_INFO_DESCRIPTION, 0);
    std::string text = "Channel description: ";
    text += description ? description : "";
    const char* configuration = channel->GetInfoString(ONDCOMM_INFO_CONFIGURATION, 0);
    text += "\nChannel configuration: ";
    text += configuration ? configuration : "";
    text += "\nState: ";
    text += channel->GetState() == 1 ? "open" : "closed";
    return text;
}
