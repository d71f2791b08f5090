// The calling thread's stack, as far as the engine needs it.
#pragma once

#include <cstdint>

// Lowest usable address of the calling thread's stack (guard pages excluded),
// or 0 when the platform cannot tell.
uintptr_t ScriptStackLowLimit();
