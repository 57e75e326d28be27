// The colour formulas on one block of pixels: full-range ITU-R BT.601 in units of 1/256, exact in 16-bit lanes. Written
// over the types and primitives of csc/block.h, or of csc/pixel.h, which are included before. Kernel sources only.
#pragma once

namespace qorv::QORV_ISA {

constexpr uint8_t kOpaque = 255;

// One block: R, G, B, A or Y, U, V, A, one vector a channel.
struct Pixels {
    U8 c[4];
};
// The same in words, without alpha.
struct DeepPixels {
    U16 c[3];
};
// Pixels that come straight from memory.
struct CopiedPixels : Pixels {};
// As many words as there are bytes in a vector.
struct WordPair {
    U16 first, second;
};

// What there is of PackedPixels, too.
template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(const Pixels &in) {
    return weighted<A, B, C>(in.c[0], in.c[1], in.c[2]);
}
[[gnu::always_inline]] inline U8 fourth(const Pixels &in) {
    return in.c[3];
}

// With u = U - 128, v = V - 128 and >> arithmetic, each result clamped to 0..255:
//   R = Y + ((359 v + 128) >> 8),  G = Y - ((183 v + 88 u + 128) >> 8),  B = Y + ((454 u + 128) >> 8).
// Whole multiples of 256 leave the shifts, and 128 times each weight goes into a constant. What is left of each formula
// is Y plus the difference of two bytes, which add_difference() clamps:
//   R = Y + V - (179 - (103 V >> 8))                   the bracket is 77..179
//   G = Y + (135 - ((88 U - 73 V) >> 8)) - V           48..208
//   B = Y + U - (227 - ((198 U + 128) >> 8))           29..227
struct YuvToRgb {
    [[gnu::always_inline]] static Pixels apply(const Pixels &in) {
        const U8 y = in.c[0], u = in.c[1], v = in.c[2];
        const U8 r = add_difference(y, v, 179 - high_bytes<103>(v));
        const U8 g = add_difference(y, 135 - high_bytes(weighted<88, -73>(u, v)), v);
        const U8 b = add_difference(y, u, 227 - high_bytes_rounded<198>(u));
        return {{r, g, b, in.c[3]}};
    }
};

//   Y = (77 R + 150 G + 29 B + 128) >> 8
//   U = ((-43 R - 85 G + 128 B + 128) >> 8) + 128,  V = ((128 R - 107 G - 21 B + 128) >> 8) + 128
// Pure blue (for U) and pure red (for V) alone would give 256; the rule is 255, which the saturation to signed bytes
// before the last addition yields.
struct RgbToYuv {
    template <class In>
    [[gnu::always_inline]] static Pixels apply(const In &in) {
        const U8 y = high_bytes_rounded(weighted<77, 150, 29>(in));
        const U8 u = narrow_rounded(weighted<-43, -85, 128>(in));
        const U8 v = narrow_rounded(weighted<128, -107, -21>(in));
        return {{y, u ^ 0x80, v ^ 0x80, fourth(in)}};
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
    static constexpr bool kShort = true;
    [[gnu::always_inline]] static Pixels apply(const WordPair &in) {
        return {{low_bytes(in.first >> 2, in.second >> 2)}};
    }
};

struct SameColour {
    [[gnu::always_inline]] static CopiedPixels apply(const Pixels &in) { return {in}; }
};

}  // namespace qorv::QORV_ISA
