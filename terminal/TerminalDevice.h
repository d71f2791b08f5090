// What the Terminal does with the device: send a typed line (Enter) and poll
// for received bytes (its timer). The window, dcsterm and the tests call
// these; each brackets its channel calls by Lock and Unlock with the given
// owner, and unlocks on every path after a successful Lock.
#pragma once

#include <cstdint>
#include <string>

#include "frame/OndDeviceComm.h"
#include "terminal/TerminalHistory.h"
#include "terminal/TerminalLines.h"

// The poll reads this much at a time.
const uint32_t kTerminalReceiveBuffer = 1023;

enum ETERMINALSEND {
    TERMINAL_SENT,
    TERMINAL_NOCHANNEL,     // "Not connected to communication device!"
    TERMINAL_LOCKED,        // "Communication device is locked!"
    TERMINAL_BADTEXT,       // the escapes are wrong: the parser's message
    TERMINAL_CHANNELERROR,  // Transmit failed: "Error: %s"
};

struct TTERMINALSEND {
    ETERMINALSEND result = TERMINAL_NOCHANNEL;
    std::string status;  // the status line's text
    std::string bytes;   // what was handed to Transmit
};

// Enter in the input line: records the line in history (when given), turns
// the escapes into bytes, cuts them at the first zero byte, adds a carriage
// return when appendCR is set and transmits them. On TERMINAL_SENT the input
// line is emptied; on anything else it keeps its text.
TTERMINALSEND TerminalSendLine(COndDeviceComm_0* channel, void* owner, const std::string& text,
                               bool appendCR, CONXTerminalHistory* history);

struct TTERMINALPOLL {
    bool locked = false;      // the lock was had (else nothing was read)
    int32_t error = 0;        // a failed Receive ends the poll; its code
    uint64_t bytes = 0;       // handed to the receiver
    bool budgetUsed = false;  // stopped at maxBytes with more perhaps waiting
};

// One tick: Lock with time-out 0, then Receive 1023 bytes at a time into the
// receiver until the channel has nothing more, a Receive fails, or maxBytes
// were read (so that a device that never stops talking cannot hold the
// caller), then Unlock. Nothing happens without a channel.
TTERMINALPOLL TerminalPoll(COndDeviceComm_0* channel, void* owner, CONXTerminalReceiver_0* receiver,
                           uint64_t maxBytes);
