// The colour formulas on one block of pixels: full-range ITU-R BT.601 in units of 1/256, exact in 16-bit lanes. Kernel
// sources only.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// One block: R, G, B, A or Y, U, V, A, one vector a channel.
struct Pixels {
    U8 c[4];
};

// With u = U - 128, v = V - 128 and >> arithmetic, each result clamped to 0..255:
//   R = Y + ((359 v + 128) >> 8),  G = Y - ((183 v + 88 u + 128) >> 8),  B = Y + ((454 u + 128) >> 8).
// Whole multiples of 256 leave the shift, and the offsets of U and V go into constants, so that every product and sum of
// raw bytes fits 16 bits:
//   R = Y + V + (103 V >> 8) - 179
//   G = Y - V + ((73 V - 88 U + 34815) >> 8), the sum being 12375 to 53430 and the shift logical
//   B = Y + U + ((99 U - 28992) >> 7)
struct YuvToRgb {
    [[gnu::always_inline]] static Pixels apply(const Pixels &in) {
        const U8 y = in.c[0], u = in.c[1], v = in.c[2];
        const Wide r = weighted<1, 1>(y, v) + shift_logical<8>(weighted<0, 103>(y, v)) - 179;
        const Wide g = weighted<1, -1>(y, v) + shift_logical<8>(weighted<73, -88>(v, u) + 34815);
        const Wide b = weighted<1, 1>(y, u) + shift<7>(weighted<0, 99>(y, u) - 28992);
        return {{narrow(r), narrow(g), narrow(b), in.c[3]}};
    }
};

//   Y = (77 R + 150 G + 29 B + 128) >> 8
//   U = ((-43 R - 85 G + 128 B + 128) >> 8) + 128,  V = ((128 R - 107 G - 21 B + 128) >> 8) + 128
// Pure blue (for U) and pure red (for V) alone would give 256; the rule is 255, which the saturating sum yields:
// 32640 + 128 stays at 32767, and 32767 >> 8 is 127.
struct RgbToYuv {
    [[gnu::always_inline]] static Pixels apply(const Pixels &in) {
        const U8 r = in.c[0], g = in.c[1], b = in.c[2];
        const Wide y = shift_logical<8>(weighted<77, 51>(r, g) + weighted<99, 29>(g, b) + 128);
        const Wide u = shift<8>(add_saturated(weighted<-43, -85>(r, g) - weighted<0, -128>(g, b), 128));
        const Wide v = shift<8>(add_saturated(weighted<-107, -21>(g, b) - weighted<-128, 0>(r, g), 128));
        const U8 offset = splat<U8>(128);
        return {{narrow(y), narrow_signed(u) ^ offset, narrow_signed(v) ^ offset, in.c[3]}};
    }
};

struct SameColour {
    [[gnu::always_inline]] static Pixels apply(const Pixels &in) { return in; }
};

}  // namespace qorv::QORV_ISA
