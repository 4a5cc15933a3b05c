#pragma once

#include <cstdio>
#include <cstdlib>

// Stops the fuzzer with a crash report when a parser breaks one of its promises.
inline void fuzzCheck(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}
