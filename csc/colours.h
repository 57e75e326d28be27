// The colour formulas on one block of pixels: full-range ITU-R BT.601 in units of 1/256, exact in 16-bit lanes. Kernel
// sources only.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// One block: R, G, B, A or Y, U, V, A, one vector a channel.
struct Pixels {
    U8 c[4];
};
// The same in words, without alpha.
struct DeepPixels {
    U16 c[3];
};

// With u = U - 128, v = V - 128 and >> arithmetic, each result clamped to 0..255:
//   R = Y + ((359 v + 128) >> 8),  G = Y - ((183 v + 88 u + 128) >> 8),  B = Y + ((454 u + 128) >> 8).
// Whole multiples of 256 leave the shift, and the offsets of U and V go into constants, so that every product and sum
// of raw bytes fits 16 bits:
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

// The 10-bit formulas are the 8-bit ones in units of 1/1024 about 512, with limits of their own. Samples are any word:
// W = 32768 + w with w in 16 bits signed, and the 32768s go into the constant, so that products sum in 32 bits.
constexpr int kWordBias = 32768;

//   R = Y + ((1436 (V - 512) + 512) >> 10),  G = Y - ((732 (V - 512) + 352 (U - 512) + 512) >> 10),
//   B = Y + ((1816 (U - 512) + 512) >> 10), each clamped to 0..1023. Subtracting a rounded quotient rounds the other
//   way, hence the 511 in G.
struct Yuv10ToRgb10 {
    [[gnu::always_inline]] static DeepPixels apply(const DeepPixels &in) {
        const I16 y = signed_words(in.c[0]), u = signed_words(in.c[1]), v = signed_words(in.c[2]);
        const Wide32 r = weighted<1024, 1436>(y, v) + (constant(1436) + 512);
        const Wide32 g = weighted<1024, -732>(y, v) + weighted<-352, 0>(u, u) + (constant(-732 - 352) + 511);
        const Wide32 b = weighted<1024, 1816>(y, u) + (constant(1816) + 512);
        const U16 limit = splat<U16>(1023);
        return {{min(narrow(shift<10>(r)), limit), min(narrow(shift<10>(g)), limit), min(narrow(shift<10>(b)), limit)}};
    }
    // 1024 x 32768 of the luma, and the chroma's weight times 32768 - 512.
    static constexpr int constant(int chroma_weight) { return 1024 * kWordBias + chroma_weight * (kWordBias - 512); }
};

//   Y = min((308 R + 600 G + 116 B + 512) >> 10, 1023)
//   U = ((-172 R - 340 G + 512 B + 512) >> 10) + 512 and V = ((512 R - 428 G - 84 B + 512) >> 10) + 512, at least 0
//   and, the limit being put on the difference, at most 1023 + 512.
struct Rgb10ToYuv10 {
    [[gnu::always_inline]] static DeepPixels apply(const DeepPixels &in) {
        const I16 r = signed_words(in.c[0]), g = signed_words(in.c[1]), b = signed_words(in.c[2]);
        const Wide32 y = weighted<308, 600>(r, g) + weighted<116, 0>(b, b) + (1024 * kWordBias + 512);
        const Wide32 u = weighted<-172, -340>(r, g) + weighted<512, 0>(b, b) + (512 * 1024 + 512);
        const Wide32 v = weighted<-428, -84>(g, b) + weighted<512, 0>(r, r) + (512 * 1024 + 512);
        const U16 luma_limit = splat<U16>(1023), chroma_limit = splat<U16>(1023 + 512);
        return {{min(narrow(shift<10>(y)), luma_limit), min(narrow(shift<10>(u)), chroma_limit),
                 min(narrow(shift<10>(v)), chroma_limit)}};
    }
};

// Bits 9..2 of each word; what lies above is dropped.
struct Drop2Bits {
    [[gnu::always_inline]] static Pixels apply(Wide in) {
        const Wide shifted = shift_logical<2>(in);
        return {{narrow(Wide{shifted.lo & 0xFF, shifted.hi & 0xFF})}};
    }
};

struct SameColour {
    [[gnu::always_inline]] static Pixels apply(const Pixels &in) { return in; }
};

}  // namespace qorv::QORV_ISA
