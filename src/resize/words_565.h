// 5-6-5 words in vectors. Kernel sources only.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// Three channels without their low bits as the two bytes of a word, GGGBBBBB and RRRRRGGG.
[[gnu::always_inline]] inline void pack_565(U8 top, U8 middle, U8 bottom, U8 &low, U8 &high) {
    low = ((middle << 3) & 0xE0) | (bottom >> 3);
    high = (top & 0xF8) | (middle >> 5);
}

}  // namespace qorv::QORV_ISA
