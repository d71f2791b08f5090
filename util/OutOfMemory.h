// The out-of-memory wall: where a failed allocation must become an error
// code instead of an exception (interface methods, built-ins, thread entries).
#pragma once

#include <new>
#include <stdexcept>

namespace ondutil {

// body() with bad_alloc and length_error (a size beyond what a container can
// hold) turned into outOfMemory. Other exceptions pass on.
template <class TCode, class TBody>
TCode CatchOutOfMemory(TCode outOfMemory, TBody&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return outOfMemory;
    } catch (const std::length_error&) {
        return outOfMemory;
    }
}

// The same, and any other exception becomes otherFailure: for the places no
// exception may leave.
template <class TCode, class TBody>
TCode CatchAll(TCode outOfMemory, TCode otherFailure, TBody&& body) noexcept {
    try {
        return CatchOutOfMemory(outOfMemory, body);
    } catch (...) {
        return otherFailure;
    }
}

}  // namespace ondutil
