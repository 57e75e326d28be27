// What formulas and layouts want beyond core/simd.h where a vector holds a block of pixels. Kernel sources only.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// y + a - b, clamped: one of the two inner differences is 0.
[[gnu::always_inline]] inline U8 add_difference(U8 y, U8 a, U8 b) {
    return subtract_saturated(add_saturated(y, subtract_saturated(a, b)), subtract_saturated(b, a));
}

}  // namespace qorv::QORV_ISA
