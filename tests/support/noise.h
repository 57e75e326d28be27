// The cheapest generator that will do for the content of pictures: the same bytes for the same seed everywhere.
#pragma once

#include <cstdint>

namespace test {

struct Noise {
    uint32_t state;
    uint32_t word() { return state = state * 1664525u + 1013904223u; }  // the upper bits are the better ones
    uint8_t operator()() { return static_cast<uint8_t>(word() >> 24); }
};

}  // namespace test
