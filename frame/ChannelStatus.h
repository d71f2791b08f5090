// The channel status text every device-client dialog shows and refreshes on
// its status timer.
#pragma once

#include <string>

#include "frame/OndDeviceComm.h"

// "No communication device..." without a channel; else, when the channel can
// be locked for owner at once, its description, configuration and state on
// three lines (the lock is released again). A busy channel gives "": polling
// never waits, the text is blank for one tick.
std::string ChannelStatusText(COndDeviceComm_0* channel, void* owner);
