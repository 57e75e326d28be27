// Vector primitives. A kernel is written once over the types below: arithmetic, comparison and shifts are the
// compiler's vector extensions, everything that they do badly is a primitive with one version per architecture. Kernel
// sources alone include this header: all of it lives in the namespace of the instruction set that is being compiled.
//
// Shuffles work within 128-bit lanes on every architecture, so a kernel is written for lanes and for any number of
// them.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#if defined(QORV_ISA_IS_v2) || defined(QORV_ISA_IS_v3)
#define QORV_SIMD_X86 1
#include <immintrin.h>
#elif defined(QORV_ISA_IS_neon)
#define QORV_SIMD_NEON 1
#include <arm_neon.h>
#else
#define QORV_SIMD_PLAIN 1
#endif

namespace qorv::QORV_ISA {

#if defined(QORV_ISA_IS_v3)
constexpr int kVectorBytes = 32;
#else
constexpr int kVectorBytes = 16;
#endif

template <class T, int Bytes>
struct VecOf {
    typedef T type __attribute__((vector_size(Bytes)));
};
// A vector of `Bytes` bytes: 16 everywhere, the full register (32 bytes with AVX2) by default.
template <class T, int Bytes = kVectorBytes>
using Vec = typename VecOf<T, Bytes>::type;

using U8 = Vec<uint8_t>;
using U16 = Vec<uint16_t>;
using I16 = Vec<int16_t>;
using U32 = Vec<uint32_t>;
using I32 = Vec<int32_t>;

template <class V>
[[gnu::always_inline]] inline V load(const void *p) {
    V v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
[[gnu::always_inline]] inline void store(void *p, const V &v) {
    memcpy(p, &v, sizeof v);
}

// The same value, taken modulo the size of a lane, in every lane.
template <class V, class T>
[[gnu::always_inline]] inline V splat(T value) {
    return V{} + static_cast<__typeof__(V{}[0])>(value);
}

// ---- Colour conversion ----

// The 16-bit lanes that come from one vector of bytes, in two halves: the lower and the upper half of the bytes, or, on
// x86, of each 128-bit lane. Sums wrap.
struct Wide {
    U16 lo, hi;
};

[[gnu::always_inline]] inline Wide operator+(Wide a, Wide b) {
    return {a.lo + b.lo, a.hi + b.hi};
}

[[gnu::always_inline]] inline Wide operator-(Wide a, Wide b) {
    return {a.lo - b.lo, a.hi - b.hi};
}

[[gnu::always_inline]] inline Wide operator+(Wide a, uint16_t b) {
    return {a.lo + b, a.hi + b};
}

// The same for the signed 32-bit lanes that come from one vector of words.
struct Wide32 {
    I32 lo, hi;
};

[[gnu::always_inline]] inline Wide32 operator+(Wide32 a, Wide32 b) {
    return {a.lo + b.lo, a.hi + b.hi};
}

[[gnu::always_inline]] inline Wide32 operator+(Wide32 a, int b) {
    return {a.lo + b, a.hi + b};
}

template <int Bits>
[[gnu::always_inline]] inline Wide32 shift(Wide32 a) {  // arithmetic
    return {a.lo >> Bits, a.hi >> Bits};
}

// A word less 32768, as a signed number.
[[gnu::always_inline]] inline I16 signed_words(U16 v) {
    return (I16)(v ^ 0x8000);
}

// Below, for each architecture:
//   weighted<A, B>(a, b)        A a + B b for bytes a, b; A, B in -128..127, not both negative, every partial sum in
//                               16 bits signed
//   weighted<A, B, C>(a, b, c)  A a + B b + C c for bytes, the weights of RGB to YUV: A + B + C = 256, all positive, or
//                               A or C 128 and the sum 0; in 16 bits, unsigned or signed
//   weighted<A, B>(a, b)        A a + B b for signed words, in 32 bits
//   high_bytes(w)               bits 15..8 of each lane of a Wide
//   high_bytes<C>(v)            (C v) >> 8 for bytes v, C in 0..255
//   high_bytes_rounded(w)       bits 15..8 of each lane + 128
//   high_bytes_rounded<C>(v)    (C v + 128) >> 8
//   narrow_rounded(w)           (w + 128) >> 8 of signed lanes, as bytes clamped to -128..127
//   narrow(w)                   to words, clamped to 0..65535
//   low_bytes(a, b)             bits 7..0 of the words of a, then of b
//   add_saturated(a, b), subtract_saturated(a, b)    of bytes
//   min(a, b)                   of words
//   load_interleaved2..4, store_interleaved2..4      n channels of a block, sample by sample in memory

// ---- End of colour conversion ----

// ---- Block metrics ----

// Below, for each architecture, on vectors of 16 bytes and of a full register:
//   add_byte_distances(sum, a, b)     adds |a - b| of every byte to a lane of the type ByteDistances, at most
//                                     kMaxByteDistances times
//   add_byte_squares(sum, a, b)       adds (a - b)^2 of every byte to a lane
//   abs_difference(a, b)              |a - b| of signed lanes below 32767; some value of 32767 to 65535 from there on
//   abs_lanes(a)                      |a| of lanes read as signed, the lowest value staying as it is
//   max_lanes(a, b)                   of unsigned lanes
//   add_saturated(a, b)               of unsigned lanes
//   subtract_saturated(a, b)          of signed lanes, vectors of 16 bytes
//   add_pairs(sum, a)                 adds pairs of neighbouring lanes below 2^15 to 32-bit lanes
//   add_squares(sum, a)               adds the squares of lanes below 2^15 to 32-bit lanes, modulo 2^32
//   load_widened<Bytes>(p)            8 or 16 bytes from memory as 16-bit lanes
//   widen_low(a)                      the lower 8 of 16 bytes as 16-bit lanes
//   exchange<Bytes>(a, b)             of both vectors, a gets the even groups of 4 or 8 bytes, b the odd ones
//   max_of_pairs(a, b)                the larger one of each pair of neighbouring unsigned lanes of both, in any order
//   top_bit_set(a)                    whether it is in any 16-bit lane
//   sum_lanes(a)                      modulo 2^32
//   kHasSumsAndDifferences            whether sums_and_differences() gives the first stage of a Hadamard transform
//   kRowsAtHand, kWideRowsAtHand      rows that addressing modes reach from one pointer, if a row is one vector or more

// ---- End of block metrics ----

// ---- Bilinear sampling ----

// Below, for each architecture:
//   load_windows(p, offsets)    16 bytes at p + offsets[0], and in a second 128-bit lane those at p + offsets[1]
//   shuffle(v, indices)         bytes of v by index, 0 to 15, within each lane
//   shuffle(v, w, indices)      bytes of v and w by index, 0 to 31, within each lane
//   pair_up(a, b)               eight pairs of bytes from the low bytes of the lanes, as weigh_pairs() wants them
//   weigh_pairs(v, weights)     for each of the pairs of v the sum of its bytes times those of the weights (0 to 8)
//   join(a, b)                  32-bit lanes below 2^16 as 16-bit lanes, those of a first
//   narrow_shifted<N>(a, b)     16-bit lanes >> N, below 256, as bytes; in each 128-bit lane those of a first
//   store_interleaved2(p, a, b)  words of a and b in turn

// ---- End of bilinear sampling ----

// ---- 5-6-5 words ----

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

// ---- End of 5-6-5 words ----

}  // namespace qorv::QORV_ISA

#include "core/simd_neon.h"
#include "core/simd_plain.h"
#include "core/simd_x86.h"
