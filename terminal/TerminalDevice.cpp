#include "terminal/TerminalDevice.h"

#include <cstring>

#include "frame/ChannelLock.h"
#include "util/EscapedString.h"

namespace {

const char kNotConnected[] = "Not connected to communication device!";
const char kLocked[] = "Communication device is locked!";
const char kOutOfMemory[] = "Out of memory";

void SendLocked(COndDeviceComm_0* channel, const std::string& text, bool appendCR,
                CONXTerminalHistory* history, TTERMINALSEND* send) {
    if (history) history->Record(text, appendCR);
    std::string error;
    int ok = 0;
    std::string bytes =
        ondutil::ParseString(text.c_str(), text.size(), '\0', nullptr, &error, &ok);
    if (!ok) {
        send->result = TERMINAL_BADTEXT;
        send->status = error;
        return;
    }
    // Taken as a zero-terminated text: the Terminal never sends a zero byte.
    bytes.resize(std::strlen(bytes.c_str()));
    if (appendCR) bytes += '\r';
    uint64_t written = 0;
    int32_t code = channel->Transmit(bytes.data(), bytes.size(), &written);
    send->bytes.swap(bytes);
    if (code != 0) {
        const char* reason = channel->GetInfoString(ONDCOMM_INFO_ERRORTEXT, code);
        send->result = TERMINAL_CHANNELERROR;
        send->status = std::string("Error: ") + (reason ? reason : "");
        return;
    }
    send->result = TERMINAL_SENT;
    send->status = "Wrote \"" + text + (appendCR ? "\\r" : "") + "\" to device.";
}

}  // namespace

TTERMINALSEND TerminalSendLine(COndDeviceComm_0* channel, void* owner, const std::string& text,
                               bool appendCR, CONXTerminalHistory* history) {
    TTERMINALSEND send;
    try {
        if (!channel) {
            send.result = TERMINAL_NOCHANNEL;
            send.status = kNotConnected;
            return send;
        }
        CChannelLock lock(channel, owner, ONDCOMM_LOCK_USER_MS);
        if (!lock.Held()) {
            send.result = TERMINAL_LOCKED;
            send.status = kLocked;
            return send;
        }
        SendLocked(channel, text, appendCR, history, &send);
    } catch (...) {
        // Out of memory before or after Transmit: the line counts as not sent.
        // (The text fits a string's own storage: assigning it cannot throw.)
        send.result = TERMINAL_CHANNELERROR;
        send.status = kOutOfMemory;
    }
    return send;
}

TTERMINALPOLL TerminalPoll(COndDeviceComm_0* channel, void* owner, CONXTerminalReceiver_0* receiver,
                           uint64_t maxBytes) {
    TTERMINALPOLL poll;
    if (!channel) return poll;
    CChannelLock lock(channel, owner, ONDCOMM_LOCK_POLL_MS);
    if (!lock.Held()) return poll;
    poll.locked = true;
    char buffer[kTerminalReceiveBuffer];
    try {
        for (;;) {
            if (poll.bytes >= maxBytes) {
                poll.budgetUsed = true;
                break;
            }
            uint64_t received = 0;
            int32_t code = channel->Receive(buffer, sizeof buffer, &received);
            if (code != 0) {
                poll.error = code;
                break;
            }
            if (received == 0) break;
            if (received > sizeof buffer) received = sizeof buffer;  // a channel's slip
            poll.bytes += received;
            receiver->Received(buffer, static_cast<size_t>(received));
        }
    } catch (...) {
        // Out of memory in the receiver: what arrived so far stays; the
        // channel is unlocked all the same.
    }
    return poll;
}
