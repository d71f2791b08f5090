// The simulated device's byte link: Transmit, Receive and the loopback queue.
#include <algorithm>
#include <cstring>

#include "host/sim/SimDevice.h"
#include "util/OutOfMemory.h"

namespace {

// Below this much consumed data the front of the queue is never cut off.
const size_t kCompactThreshold = 64 * 1024;
// A drained queue larger than this gives its memory back.
const size_t kKeepCapacity = 1024 * 1024;

}  // namespace

void CSimDevice::AppendReceive(const char* data, size_t length) {
    if (m_receiveOffset == m_receiveQueue.size()) {
        m_receiveQueue.clear();
        m_receiveOffset = 0;
    }
    m_receiveQueue.append(data, length);
}

int32_t CSimDevice::Transmit(const char* data, uint64_t length, uint64_t* written) {
    return ondutil::CatchAll<int32_t>(SIMDEV_ERR_NOMEMORY, SIMDEV_ERR_INTERNAL, [&]() -> int32_t {
        std::lock_guard<std::mutex> g(m_mutex);
        if (written) *written = 0;
        int32_t code = 0;
        if (CheckFault("Transmit", &code)) return code;
        if (data == nullptr && length != 0) return SIMDEV_ERR_BADARGUMENT;
        if (!IsOpen()) return SIMDEV_ERR_CLOSED;
        if (length > m_transmitted.max_size()) return SIMDEV_ERR_NOMEMORY;
        m_transmitted.append(data, static_cast<size_t>(length));
        if (m_config.loopback) AppendReceive(data, static_cast<size_t>(length));
        if (written) *written = length;
        return SIMDEV_ERR_NONE;
    });
}

int32_t CSimDevice::Receive(char* buffer, uint32_t bufferSize, uint64_t* received) {
    return ondutil::CatchAll<int32_t>(SIMDEV_ERR_NOMEMORY, SIMDEV_ERR_INTERNAL, [&]() -> int32_t {
        std::lock_guard<std::mutex> g(m_mutex);
        if (received) *received = 0;
        int32_t code = 0;
        if (CheckFault("Receive", &code)) return code;
        if (received == nullptr || (buffer == nullptr && bufferSize != 0))
            return SIMDEV_ERR_BADARGUMENT;
        if (!IsOpen()) return SIMDEV_ERR_CLOSED;
        size_t count = std::min<size_t>(m_receiveQueue.size() - m_receiveOffset, bufferSize);
        if (count != 0) std::memcpy(buffer, m_receiveQueue.data() + m_receiveOffset, count);
        m_receiveOffset += count;
        if (m_receiveOffset == m_receiveQueue.size()) {
            if (m_receiveQueue.capacity() > kKeepCapacity)
                std::string().swap(m_receiveQueue);
            else
                m_receiveQueue.clear();
            m_receiveOffset = 0;
        } else if (m_receiveOffset >= kCompactThreshold &&
                   m_receiveOffset >= m_receiveQueue.size() - m_receiveOffset) {
            // Cutting only once the consumed part outweighs the rest keeps the
            // copying linear in the bytes received.
            m_receiveBytesMoved += m_receiveQueue.size() - m_receiveOffset;
            m_receiveQueue.erase(0, m_receiveOffset);
            m_receiveOffset = 0;
        }
        count += ReadStream(buffer + count, bufferSize - static_cast<uint32_t>(count));
        *received = count;
        return SIMDEV_ERR_NONE;
    });
}

size_t CSimDevice::ReadStream(char* buffer, uint32_t room) {
    if (m_streamPattern.empty() || room == 0) return 0;
    uint64_t count = room;
    if (m_streamRate != 0) {
        uint64_t available = StreamAvailable();
        if (available < count) count = available;
    }
    size_t size = m_streamPattern.size();
    for (uint64_t i = 0; i < count;) {
        size_t at = static_cast<size_t>((m_streamSent + i) % size);
        size_t n = static_cast<size_t>(std::min<uint64_t>(size - at, count - i));
        std::memcpy(buffer + i, m_streamPattern.data() + at, n);
        i += n;
    }
    m_streamSent += count;
    return static_cast<size_t>(count);
}

// What the stream has made available and Receive has not taken (rated streams).
uint64_t CSimDevice::StreamAvailable() const {
    auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - m_streamStart);
    uint64_t due = static_cast<uint64_t>(elapsed.count()) / 1000 * m_streamRate / 1000;
    return due > m_streamSent ? due - m_streamSent : 0;
}

void CSimDevice::SetReceiveStream(const std::string& pattern, uint64_t bytesPerSecond) {
    std::lock_guard<std::mutex> g(m_mutex);
    m_streamPattern = pattern;
    m_streamRate = bytesPerSecond;
    m_streamSent = 0;
    m_streamStart = std::chrono::steady_clock::now();
}

uint64_t CSimDevice::StreamBytesReceived() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_streamSent;
}

uint64_t CSimDevice::StreamBacklog() {
    std::lock_guard<std::mutex> g(m_mutex);
    if (m_streamPattern.empty() || m_streamRate == 0) return 0;
    return StreamAvailable();
}

void CSimDevice::PreloadReceive(const std::string& bytes) {
    std::lock_guard<std::mutex> g(m_mutex);
    AppendReceive(bytes.data(), bytes.size());
}

std::string CSimDevice::TakeTransmitted() {
    std::lock_guard<std::mutex> g(m_mutex);
    std::string taken;
    taken.swap(m_transmitted);
    return taken;
}

size_t CSimDevice::PendingReceive() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_receiveQueue.size() - m_receiveOffset;
}

uint64_t CSimDevice::ReceiveBytesMoved() {
    std::lock_guard<std::mutex> g(m_mutex);
    return m_receiveBytesMoved;
}
