// libFuzzer harness for the Terminal's line assembly. The input's first
// bytes pick the chunk sizes (1 to 1023 bytes, as the poll reads), the points
// where the list is cleared, and how often the rest is repeated (so that the
// 5001-line cap is reached). The rest is fed once in those chunks and once a
// byte at a time, clearing at the same points: both must give the same lines
// and flags. A mirror that follows only the change records must hold the
// same lines as the list after every chunk.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>

#include "terminal/TerminalLines.h"

namespace {

void Check(bool condition) {
    if (!condition) abort();
}

void Follow(CONXTerminalLines* list, std::deque<std::string>* mirror) {
    TTERMINALLISTCHANGE change = list->TakeChange();
    Check(change.removedFromEnd + change.droppedFromFront <= mirror->size());
    Check(change.added <= list->Count());
    mirror->erase(mirror->end() - static_cast<std::ptrdiff_t>(change.removedFromEnd), mirror->end());
    mirror->erase(mirror->begin(), mirror->begin() + static_cast<std::ptrdiff_t>(change.droppedFromFront));
    for (size_t i = list->Count() - change.added; i < list->Count(); ++i) mirror->push_back(list->Line(i));
}

void CheckSame(const CONXTerminalLines& a, const CONXTerminalLines& b) {
    Check(a.Count() == b.Count());
    Check(a.LineComplete() == b.LineComplete());
    Check(a.LastWasCR() == b.LastWasCR());
    for (size_t i = 0; i < a.Count(); ++i) Check(a.Line(i) == b.Line(i));
}

void CheckMirror(const CONXTerminalLines& list, const std::deque<std::string>& mirror) {
    Check(mirror.size() == list.Count());
    for (size_t i = 0; i < mirror.size(); ++i) Check(mirror[i] == list.Line(i));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    uint32_t seed = data[0] | (uint32_t(data[1]) << 8);
    uint32_t clearEvery = data[2];  // a clear after about one chunk in this many; 0 never
    size_t repeats = 1 + data[3] % 4;
    std::string body(reinterpret_cast<const char*>(data + 4), size - 4);
    std::string input;
    for (size_t i = 0; i < repeats; ++i) input += body;

    CONXTerminalLines chunked, bytewise;
    std::deque<std::string> mirror;
    size_t at = 0;
    uint32_t state = seed * 2654435761u + 1;
    while (at < input.size()) {
        state = state * 1103515245u + 12345u;
        size_t n = 1 + (state >> 8) % 1023;
        if (n > input.size() - at) n = input.size() - at;
        chunked.Received(input.data() + at, n);
        for (size_t i = 0; i < n; ++i) bytewise.Received(input.data() + at + i, 1);
        at += n;
        if (state % 5 == 0) {  // the window looks now and then, not after every chunk
            Follow(&chunked, &mirror);
            CheckMirror(chunked, mirror);
        }
        Check(chunked.Count() <= CONXTerminalLines::kMaxLines);
        if (clearEvery && (state >> 20) % clearEvery == 0) {
            CheckSame(chunked, bytewise);
            chunked.Clear();
            bytewise.Clear();
            mirror.clear();
        }
    }
    CheckSame(chunked, bytewise);
    Follow(&chunked, &mirror);
    CheckMirror(chunked, mirror);
    for (size_t i = 0; i < chunked.Count(); ++i) Check(chunked.Line(i).size() <= CONXTerminalLines::kMaxLineBytes);
    return 0;
}
