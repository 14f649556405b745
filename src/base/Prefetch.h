#pragma once

// TESSARY_PREFETCH(address) asks for a cache line that is about to be read. A macro: compilers take a
// function that does nothing else for one without effect, and drop the call.

#if defined(__GNUC__)
#define TESSARY_PREFETCH(address) __builtin_prefetch(address)
#else
#define TESSARY_PREFETCH(address) static_cast<void>(0)
#endif
