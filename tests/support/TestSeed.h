// The seed of a randomised test: TRAYWELL_TEST_SEED, else a fixed one; printed for replays.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

inline uint64_t TestSeed(const char* test) {
    const char* given = std::getenv("TRAYWELL_TEST_SEED");
    const uint64_t seed = given ? std::strtoull(given, nullptr, 0) : 20240611;
    std::printf("%s: seed %llu (TRAYWELL_TEST_SEED)\n", test, static_cast<unsigned long long>(seed));
    return seed;
}
