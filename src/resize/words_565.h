// 5-6-5 words in vectors. Kernel sources only.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// Between the two bytes of a word, GGGBBBBB and RRRRRGGG, and three channels: low bits are dropped on the way in and
// zero on the way out.
[[gnu::always_inline]] inline void unpack_565(U8 low, U8 high, U8 &top, U8 &middle, U8 &bottom) {
    top = high & 0xF8;
    middle = (high << 5) | ((low >> 3) & 0x1C);
    bottom = low << 3;
}

[[gnu::always_inline]] inline void pack_565(U8 top, U8 middle, U8 bottom, U8 &low, U8 &high) {
    low = ((middle << 3) & 0xE0) | (bottom >> 3);
    high = (top & 0xF8) | (middle >> 5);
}

}  // namespace qorv::QORV_ISA
