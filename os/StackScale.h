// AddressSanitizer builds have frames several times larger than optimised
// ones, unoptimised builds about twice as large. Threads sized for scripts
// (dcsrun's, the tests') get this factor more in such builds, so a script
// nests as deep there as in a release build.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define OND_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OND_ADDRESS_SANITIZER 1
#endif
#endif

#ifdef OND_ADDRESS_SANITIZER
constexpr size_t kOsStackScale = 8;
#elif !defined(__OPTIMIZE__)
constexpr size_t kOsStackScale = 2;
#else
constexpr size_t kOsStackScale = 1;
#endif
