// The families of colour-space identifiers, told by range, and the unit word of a plane.
#pragma once

#include "qorv_skia.h"

namespace qorv {

constexpr bool is_yuv_family(uint32_t cs) {
    return cs >= 10 && cs <= 99;
}

constexpr bool is_packed_rgb_family(uint32_t cs) {
    return cs >= 100 && cs <= 599;
}

// Bytes of a pixel, for an identifier of the packed RGB family.
uint32_t packed_rgb_bytes(uint32_t cs);

// Unit words, alignment words and padding words all hold a horizontal and a vertical half.
constexpr uint32_t horizontal(uint32_t word) {
    return word >> 16;
}

constexpr uint32_t vertical(uint32_t word) {
    return word & 0xFFFF;
}

constexpr uint32_t unit_word(uint32_t bytes) {
    return bytes << 16 | 1;
}

}  // namespace qorv
