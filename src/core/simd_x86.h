// The primitives for x86: SSE4.1 (v2) and AVX2 (v3). core/simd_plain.h says what each gives.
#pragma once

#ifdef QORV_SIMD_X86

#include "core/hide_origin.h"

namespace qorv::QORV_ISA {

// The full register and its intrinsics: both sets have the same operations, AVX2 does them in each 128-bit lane.
#if QORV_VECTOR_BYTES == 32
using Register = __m256i;
#define QORV_MM(operation) _mm256_##operation
#else
using Register = __m128i;
#define QORV_MM(operation) _mm_##operation
#endif

// The same 16 bytes in every lane.
[[gnu::always_inline]] inline Register every_lane(__m128i v) {
#if QORV_VECTOR_BYTES == 32
    return _mm256_broadcastsi128_si256(v);
#else
    return v;
#endif
}

// A constant that is loaded, once; the compiler would put it together in a general register, or load it at every use.
template <class V>
[[gnu::always_inline]] inline V constant(const V &in_memory) {
    const V *p = &in_memory;
    hide_origin(p);
    V v = *p;
    hide_origin(v);
    return v;
}

// 16 bytes that a shuffle takes from places f(0), f(1), ...: negative gives 0.
template <class F>
[[gnu::always_inline]] inline Register shuffle_indices(F f) {
    return every_lane(_mm_setr_epi8(
        static_cast<char>(f(0)), static_cast<char>(f(1)), static_cast<char>(f(2)), static_cast<char>(f(3)),
        static_cast<char>(f(4)), static_cast<char>(f(5)), static_cast<char>(f(6)), static_cast<char>(f(7)),
        static_cast<char>(f(8)), static_cast<char>(f(9)), static_cast<char>(f(10)), static_cast<char>(f(11)),
        static_cast<char>(f(12)), static_cast<char>(f(13)), static_cast<char>(f(14)), static_cast<char>(f(15))));
}

// ---- Load and store ----

// The `index`-th 16 bytes of `Channels` interleaved channels, and in the second lane those of the next 16 pixels.
template <int Channels>
[[gnu::always_inline]] inline Register load_lanes(const uint8_t *p, int index) {
    const __m128i *q = reinterpret_cast<const __m128i *>(p) + index;
#if QORV_VECTOR_BYTES == 32
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(q)), _mm_loadu_si128(q + Channels), 1);
#else
    return _mm_loadu_si128(q);
#endif
}

template <class Offset>
[[gnu::always_inline]] inline U8 load_windows(const uint8_t *p, const Offset *offsets) {
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + offsets[0]));
#if QORV_VECTOR_BYTES == 32
    const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + offsets[1]));
    return (U8)_mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1);
#else
    return (U8)first;
#endif
}

[[gnu::always_inline]] inline void load_interleaved2(const uint8_t *p, U8 &a, U8 &b) {
    const U16 v0 = (U16)load_lanes<2>(p, 0), v1 = (U16)load_lanes<2>(p, 1);
    a = (U8)QORV_MM(packus_epi16)((Register)(v0 & 0xFF), (Register)(v1 & 0xFF));
    b = (U8)QORV_MM(packus_epi16)((Register)(v0 >> 8), (Register)(v1 >> 8));
}

// Registers of four pixels a lane, which begin at the lane's first byte, in the last one at byte `behind`: in each, the
// four samples of a channel are gathered into a 32-bit lane, then the 4 x 4 matrix of those lanes is transposed.
template <int Bytes>
[[gnu::always_inline]] inline void gather_channels(Register v0, Register v1, Register v2, Register v3, int behind,
                                                   U8 &a, U8 &b, U8 &c, U8 &d) {
    const auto gather = [](Register v, int begin) __attribute__((always_inline)) {
        return QORV_MM(shuffle_epi8)(v, shuffle_indices([=](int i) { return (begin + i % 4 * Bytes + i / 4) % 16; }));
    };
    v0 = gather(v0, 0), v1 = gather(v1, 0), v2 = gather(v2, 0), v3 = gather(v3, behind);
    const Register ab01 = QORV_MM(unpacklo_epi32)(v0, v1), cd01 = QORV_MM(unpackhi_epi32)(v0, v1);
    const Register ab23 = QORV_MM(unpacklo_epi32)(v2, v3), cd23 = QORV_MM(unpackhi_epi32)(v2, v3);
    a = (U8)QORV_MM(unpacklo_epi64)(ab01, ab23);
    b = (U8)QORV_MM(unpackhi_epi64)(ab01, ab23);
    c = (U8)QORV_MM(unpacklo_epi64)(cd01, cd23);
    d = (U8)QORV_MM(unpackhi_epi64)(cd01, cd23);
}

// 12 bytes a lane, from every twelfth on; the last 16 bytes begin earlier, to end with the block.
[[gnu::always_inline]] inline Register load_twelve(const uint8_t *p, int first) {
    const uint16_t offsets[2] = {0, 48};
    return (Register)load_windows(p + first, offsets);
}

[[gnu::always_inline]] inline void load_interleaved3(const uint8_t *p, U8 &a, U8 &b, U8 &c) {
    U8 unused;
    gather_channels<3>(load_twelve(p, 0), load_twelve(p, 12), load_twelve(p, 24), load_twelve(p, 32), 4, a, b, c,
                       unused);
}

[[gnu::always_inline]] inline void load_interleaved4(const uint8_t *p, U8 &a, U8 &b, U8 &c, U8 &d) {
    gather_channels<4>(load_lanes<4>(p, 0), load_lanes<4>(p, 1), load_lanes<4>(p, 2), load_lanes<4>(p, 3), 0, a, b, c,
                       d);
}

// What multiplications of bytes take: the first two bytes of each pixel side by side, and the third with whatever
// follows it. Each lane has 8 of 16 pixels.
struct PackedPixels {
    Wide first, second;
};

// From four registers of four pixels a lane, which begin at the lane's first byte, in the last one at byte `behind`.
template <int Bytes>
[[gnu::always_inline]] inline PackedPixels pair_pixels(Register v0, Register v1, Register v2, Register v3, int behind) {
    const auto pairs = [](Register v, int begin) __attribute__((always_inline)) {
        return QORV_MM(shuffle_epi8)(
            v, shuffle_indices([=](int i) { return begin + i % 8 / 2 * Bytes + i / 8 * 2 + i % 2; }));
    };
    const Register p0 = pairs(v0, 0), p1 = pairs(v1, 0), p2 = pairs(v2, 0), p3 = pairs(v3, behind);
    return {{(U16)QORV_MM(unpacklo_epi64)(p0, p1), (U16)QORV_MM(unpacklo_epi64)(p2, p3)},
            {(U16)QORV_MM(unpackhi_epi64)(p0, p1), (U16)QORV_MM(unpackhi_epi64)(p2, p3)}};
}

[[gnu::always_inline]] inline PackedPixels load_packed3(const uint8_t *p) {
    return pair_pixels<3>(load_twelve(p, 0), load_twelve(p, 12), load_twelve(p, 24), load_twelve(p, 32), 4);
}

[[gnu::always_inline]] inline PackedPixels load_packed4(const uint8_t *p) {
    return pair_pixels<4>(load_lanes<4>(p, 0), load_lanes<4>(p, 1), load_lanes<4>(p, 2), load_lanes<4>(p, 3), 0);
}

[[gnu::always_inline]] inline PackedPixels load_packed565(const uint8_t *p) {
    const U16 v0 = (U16)load_lanes<2>(p, 0), v1 = (U16)load_lanes<2>(p, 1);
    return {{(v0 >> 8 & 0xF8) | (v0 << 5 & 0xFC00), (v1 >> 8 & 0xF8) | (v1 << 5 & 0xFC00)},
            {v0 << 3 & 0xF8, v1 << 3 & 0xF8}};
}

[[gnu::always_inline]] inline U8 fourth(const PackedPixels &v) {
    return (U8)QORV_MM(packus_epi16)((Register)(v.second.lo >> 8), (Register)(v.second.hi >> 8));
}

// Stores registers one after the other, all their first lanes before all their second ones. Whole registers are
// stored: half as many stores wait for their cache lines.
[[gnu::always_inline]] inline void store_lanes(uint8_t *p, Register a, Register b) {
#if QORV_VECTOR_BYTES == 32
    store(p, _mm256_permute2x128_si256(a, b, 0x20));
    store(p + 32, _mm256_permute2x128_si256(a, b, 0x31));
#else
    store(p, a);
    store(p + 16, b);
#endif
}

[[gnu::always_inline]] inline void store_lanes(uint8_t *p, Register a, Register b, Register c) {
#if QORV_VECTOR_BYTES == 32
    store(p, _mm256_permute2x128_si256(a, b, 0x20));
    store(p + 32, _mm256_blend_epi32(c, a, 0xF0));
    store(p + 64, _mm256_permute2x128_si256(b, c, 0x31));
#else
    store(p, a);
    store(p + 16, b);
    store(p + 32, c);
#endif
}

[[gnu::always_inline]] inline void store_lanes(uint8_t *p, Register a, Register b, Register c, Register d) {
#if QORV_VECTOR_BYTES == 32
    store(p, _mm256_permute2x128_si256(a, b, 0x20));
    store(p + 32, _mm256_permute2x128_si256(c, d, 0x20));
    store(p + 64, _mm256_permute2x128_si256(a, b, 0x31));
    store(p + 96, _mm256_permute2x128_si256(c, d, 0x31));
#else
    store_lanes(p, a, b);
    store_lanes(p + 32, c, d);
#endif
}

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U8 a, U8 b) {
    store_lanes(p, QORV_MM(unpacklo_epi8)((Register)a, (Register)b), QORV_MM(unpackhi_epi8)((Register)a, (Register)b));
}

[[gnu::always_inline]] inline void store_interleaved3(uint8_t *p, U8 a, U8 b, U8 c) {
    // Pairs of a and b first. A register of the output, bytes 16 Index and on, draws on 11 bytes of pairs and on c.
    const Register pairs_lo = QORV_MM(unpacklo_epi8)((Register)a, (Register)b);
    const Register pairs_hi = QORV_MM(unpackhi_epi8)((Register)a, (Register)b);
    const Register pairs_mid = QORV_MM(alignr_epi8)(pairs_hi, pairs_lo, 8);
    const auto part = [&](Register pairs, int first_pair_byte, int index) __attribute__((always_inline)) {
        const auto from_pairs = [=](int i) {
            const int pixel = (16 * index + i) / 3, channel = (16 * index + i) % 3;
            return channel < 2 ? 2 * pixel + channel - first_pair_byte : -1;
        };
        const auto from_c = [=](int i) { return (16 * index + i) % 3 == 2 ? (16 * index + i) / 3 : -1; };
        return (Register)((U8)QORV_MM(shuffle_epi8)(pairs, shuffle_indices(from_pairs)) |
                          (U8)QORV_MM(shuffle_epi8)((Register)c, shuffle_indices(from_c)));
    };
    store_lanes(p, part(pairs_lo, 0, 0), part(pairs_mid, 8, 1), part(pairs_hi, 16, 2));
}

[[gnu::always_inline]] inline void store_interleaved4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    const Register ab_lo = QORV_MM(unpacklo_epi8)((Register)a, (Register)b);
    const Register ab_hi = QORV_MM(unpackhi_epi8)((Register)a, (Register)b);
    const Register cd_lo = QORV_MM(unpacklo_epi8)((Register)c, (Register)d);
    const Register cd_hi = QORV_MM(unpackhi_epi8)((Register)c, (Register)d);
    store_lanes(p, QORV_MM(unpacklo_epi16)(ab_lo, cd_lo), QORV_MM(unpackhi_epi16)(ab_lo, cd_lo),
                QORV_MM(unpacklo_epi16)(ab_hi, cd_hi), QORV_MM(unpackhi_epi16)(ab_hi, cd_hi));
}

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U16 a, U16 b) {
    store_lanes(p, QORV_MM(unpacklo_epi16)((Register)a, (Register)b),
                QORV_MM(unpackhi_epi16)((Register)a, (Register)b));
}

template <int Bytes>
requires(Bytes == 16) [[gnu::always_inline]] inline Vec<int16_t, 16> load_widened(const uint8_t *p) {
    return (Vec<int16_t, 16>)_mm_cvtepu8_epi16(_mm_loadl_epi64((const __m128i *)p));
}

#if QORV_VECTOR_BYTES == 32

template <int Bytes>
requires(Bytes == 32) [[gnu::always_inline]] inline Vec<int16_t, 32> load_widened(const uint8_t *p) {
    return (Vec<int16_t, 32>)_mm256_cvtepu8_epi16((__m128i)load<Vec<uint8_t, 16>>(p));
}

[[gnu::always_inline]] inline U8 load_groups(const uint8_t *p, U8 mask) {
    return (U8)_mm256_maskload_epi32((const int *)p, (__m256i)mask);
}

#endif

// ---- Arithmetic ----

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    const Register weights = QORV_MM(set1_epi16)(static_cast<int16_t>(B * 256 + (A & 0xFF)));
    return {(U16)QORV_MM(maddubs_epi16)(QORV_MM(unpacklo_epi8)((Register)a, (Register)b), weights),
            (U16)QORV_MM(maddubs_epi16)(QORV_MM(unpackhi_epi8)((Register)a, (Register)b), weights)};
}

// The factors are signed bytes and a sum of two products must stay within 16 bits signed: b is shared between two such
// sums, or 128 times a channel is -128 times it subtracted.
template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b, U8 c) {
    if constexpr (A == 128) {
        return weighted<B, C>(b, c) - weighted<-A, 0>(a, b);
    } else if constexpr (C == 128) {
        return weighted<A, B>(a, b) - weighted<0, -C>(b, c);
    } else {
        constexpr int kWithA = 128 - A;
        return weighted<A, kWithA>(a, b) + weighted<B - kWithA, C>(b, c);
    }
}

// A sum less `Less`.
template <int Less>
struct Reduced {
    Wide sum;
};

// 128 times a channel is -128 times it subtracted. Where a weight is above 127, the weights are the unsigned factor and
// the pixels the signed one, 128 less each.
template <int A, int B, int C>
[[gnu::always_inline]] inline auto weighted(const PackedPixels &v) {
    const auto products = [](Wide pairs, int first, int second) __attribute__((always_inline)) {
        const Register weights = QORV_MM(set1_epi16)(static_cast<int16_t>(second * 256 + (first & 0xFF)));
        return Wide{(U16)QORV_MM(maddubs_epi16)((Register)pairs.lo, weights),
                    (U16)QORV_MM(maddubs_epi16)((Register)pairs.hi, weights)};
    };
    if constexpr (A == 128) {
        return products(v.second, C, 0) - products(v.first, -A, -B);
    } else if constexpr (C == 128) {
        return products(v.first, A, B) - products(v.second, -C, 0);
    } else {
        const Register weights = QORV_MM(set1_epi16)(static_cast<int16_t>(B * 256 + A));
        const Wide less{(U16)QORV_MM(maddubs_epi16)(weights, (Register)(v.first.lo ^ 0x8080)),
                        (U16)QORV_MM(maddubs_epi16)(weights, (Register)(v.first.hi ^ 0x8080))};
        return Reduced<128 * (A + B)>{less + products(v.second, C, 0)};
    }
}

template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    const Register weights = QORV_MM(set1_epi32)(B * 65536 + (A & 0xFFFF));
    return {(I32)QORV_MM(madd_epi16)(QORV_MM(unpacklo_epi16)((Register)a, (Register)b), weights),
            (I32)QORV_MM(madd_epi16)(QORV_MM(unpackhi_epi16)((Register)a, (Register)b), weights)};
}

[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return (U8)QORV_MM(adds_epu8)((Register)a, (Register)b);
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return (U8)QORV_MM(subs_epu8)((Register)a, (Register)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> add_saturated(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint16_t, 16>)_mm_adds_epu16((__m128i)a, (__m128i)b);
}

[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_saturated(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return (Vec<int16_t, 16>)_mm_subs_epi16((__m128i)a, (__m128i)b);
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return (U16)QORV_MM(min_epu16)((Register)a, (Register)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> max_lanes(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint16_t, 16>)_mm_max_epu16((__m128i)a, (__m128i)b);
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> max_lanes(Vec<uint32_t, 16> a, Vec<uint32_t, 16> b) {
    return (Vec<uint32_t, 16>)_mm_max_epu32((__m128i)a, (__m128i)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_difference(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return (Vec<uint16_t, 16>)_mm_abs_epi16(_mm_subs_epi16((__m128i)a, (__m128i)b));
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_lanes(Vec<int16_t, 16> a) {
    return (Vec<uint16_t, 16>)_mm_abs_epi16((__m128i)a);
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> abs_lanes(Vec<int32_t, 16> a) {
    return (Vec<uint32_t, 16>)_mm_abs_epi32((__m128i)a);
}

#if QORV_VECTOR_BYTES == 32

[[gnu::always_inline]] inline Vec<uint16_t, 32> add_saturated(Vec<uint16_t, 32> a, Vec<uint16_t, 32> b) {
    return (Vec<uint16_t, 32>)_mm256_adds_epu16((__m256i)a, (__m256i)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 32> max_lanes(Vec<uint16_t, 32> a, Vec<uint16_t, 32> b) {
    return (Vec<uint16_t, 32>)_mm256_max_epu16((__m256i)a, (__m256i)b);
}

[[gnu::always_inline]] inline Vec<uint32_t, 32> max_lanes(Vec<uint32_t, 32> a, Vec<uint32_t, 32> b) {
    return (Vec<uint32_t, 32>)_mm256_max_epu32((__m256i)a, (__m256i)b);
}

[[gnu::always_inline]] inline Vec<int16_t, 32> subtract_saturated(Vec<int16_t, 32> a, Vec<int16_t, 32> b) {
    return (Vec<int16_t, 32>)_mm256_subs_epi16((__m256i)a, (__m256i)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 32> abs_difference(Vec<int16_t, 32> a, Vec<int16_t, 32> b) {
    return (Vec<uint16_t, 32>)_mm256_abs_epi16(_mm256_subs_epi16((__m256i)a, (__m256i)b));
}

[[gnu::always_inline]] inline Vec<uint16_t, 32> abs_lanes(Vec<int16_t, 32> a) {
    return (Vec<uint16_t, 32>)_mm256_abs_epi16((__m256i)a);
}

#endif

[[gnu::always_inline]] inline U16 weigh_pairs(U8 v, U8 weights) {
    return (U16)QORV_MM(maddubs_epi16)((Register)v, (Register)weights);
}

[[gnu::always_inline]] inline U16 weigh_two_pairs(U8 v, U8 w, U8 weights, U16 first, U16 second) {
    return weigh_pairs(v, weights) * first + weigh_pairs(w, weights) * second;
}

// The multiply-add of bytes gives them for nothing, from bytes that stand twice in a vector.
constexpr bool kHasSumsAndDifferences = true;

// Rows of `Width` bytes, two if they are half a vector: the sums are in the lower half of the lanes and the differences
// in the upper one, or, with 4 bytes, both in each half.
template <int Width, int Bytes>
requires(Width == 4)
    [[gnu::always_inline]] inline Vec<int16_t, 16> sums_and_differences(const uint8_t *row, const uint8_t *next) {
    static constexpr Vec<int8_t, 16> kSigns = {1, 1, 1, 1, 1, -1, 1, -1, 1, 1, 1, 1, 1, -1, 1, -1};
    __m128i first = _mm_cvtsi32_si128(load<int32_t>(row)), second = _mm_cvtsi32_si128(load<int32_t>(next));
    hide_origin(second);  // or the compiler makes several insertions of this one shuffle
    const __m128 rows = _mm_shuffle_ps((__m128)first, (__m128)second, 0);
    return (Vec<int16_t, 16>)_mm_maddubs_epi16((__m128i)rows, (__m128i)constant(kSigns));
}

template <int Width, int Bytes>
requires(Width == 8 && Bytes == 16)
    [[gnu::always_inline]] inline Vec<int16_t, 16> sums_and_differences(const uint8_t *row, const uint8_t *) {
    static constexpr Vec<int8_t, 16> kSigns = {1, 1, 1, 1, 1, 1, 1, 1, 1, -1, 1, -1, 1, -1, 1, -1};
    const __m128d twice = _mm_movedup_pd((__m128d)_mm_loadl_epi64((const __m128i *)row));
    return (Vec<int16_t, 16>)_mm_maddubs_epi16((__m128i)twice, (__m128i)constant(kSigns));
}

#if QORV_VECTOR_BYTES == 32

template <int Width, int Bytes>
requires(Bytes == 32)
    [[gnu::always_inline]] inline Vec<int16_t, 32> sums_and_differences(const uint8_t *row, const uint8_t *next) {
    static constexpr Vec<int8_t, 32> kSigns = {1, 1,  1, 1,  1, 1,  1, 1,  1, 1,  1, 1,  1, 1,  1, 1,
                                               1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1};
    __m256i twice;
    if constexpr (Width == 16) {
        twice = every_lane((__m128i)load<Vec<uint8_t, 16>>(row));
    } else {
        twice =
            _mm256_blend_epi32(_mm256_set1_epi64x(load<int64_t>(row)), _mm256_set1_epi64x(load<int64_t>(next)), 0xCC);
    }
    return (Vec<int16_t, 32>)_mm256_maddubs_epi16(twice, (__m256i)constant(kSigns));
}

#endif

// ---- Widen and narrow ----

// a and b side by side, times 1 and -1, give a - b in 32 bits.
[[gnu::always_inline]] inline void subtract_widened(Vec<int16_t, 16> a, Vec<int16_t, 16> b, Vec<int32_t, 16> &lo,
                                                    Vec<int32_t, 16> &hi) {
    const __m128i signs = _mm_set1_epi32(static_cast<int32_t>(0xFFFF0001));
    lo = (Vec<int32_t, 16>)_mm_madd_epi16(_mm_unpacklo_epi16((__m128i)a, (__m128i)b), signs);
    hi = (Vec<int32_t, 16>)_mm_madd_epi16(_mm_unpackhi_epi16((__m128i)a, (__m128i)b), signs);
}

#if QORV_VECTOR_BYTES == 32

[[gnu::always_inline]] inline void subtract_widened(Vec<int16_t, 32> a, Vec<int16_t, 32> b, Vec<int32_t, 32> &lo,
                                                    Vec<int32_t, 32> &hi) {
    const __m256i signs = _mm256_set1_epi32(static_cast<int32_t>(0xFFFF0001));
    lo = (Vec<int32_t, 32>)_mm256_madd_epi16(_mm256_unpacklo_epi16((__m256i)a, (__m256i)b), signs);
    hi = (Vec<int32_t, 32>)_mm256_madd_epi16(_mm256_unpackhi_epi16((__m256i)a, (__m256i)b), signs);
}

#endif

[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return (U8)QORV_MM(packus_epi16)((Register)(w.lo >> 8), (Register)(w.hi >> 8));
}

[[gnu::always_inline]] inline U8 high_bytes_rounded(Wide w) {
    return high_bytes(w + 128);
}

// What is missing are whole units of 256: one addition to bytes, where words would take two.
template <int Less>
[[gnu::always_inline]] inline U8 high_bytes_rounded(const Reduced<Less> &w) {
    static_assert((Less + 128) % 256 == 0);
    return high_bytes(w.sum) + static_cast<uint8_t>((Less + 128) / 256);
}

// The upper half of (256 v + low) x C: C low / 256 is what is added before the shift.
template <int C>
[[gnu::always_inline]] inline U8 high_bytes_of_product(U8 v, int low) {
    const Register factor = QORV_MM(set1_epi16)(C);
    Register lows = QORV_MM(set1_epi8)(static_cast<char>(low));
    // clang would merge a constant into shuffles of its own, one more for each half.
    if (low != 0) hide_origin(lows);
    return (U8)QORV_MM(packus_epi16)(QORV_MM(mulhi_epu16)(QORV_MM(unpacklo_epi8)(lows, (Register)v), factor),
                                     QORV_MM(mulhi_epu16)(QORV_MM(unpackhi_epi8)(lows, (Register)v), factor));
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes(U8 v) {
    return high_bytes_of_product<C>(v, 0);
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes_rounded(U8 v) {
    constexpr int kLow = (128 * 256 + C - 1) / C;
    static_assert(kLow < 256 && C * kLow < 129 * 256);
    return high_bytes_of_product<C>(v, kLow);
}

[[gnu::always_inline]] inline U8 narrow_rounded(Wide w) {
    // The rounding multiplication gives (128 w + 2^14) >> 15.
    const Register scale = QORV_MM(set1_epi16)(128);
    return (U8)QORV_MM(packs_epi16)(QORV_MM(mulhrs_epi16)((Register)w.lo, scale),
                                    QORV_MM(mulhrs_epi16)((Register)w.hi, scale));
}

[[gnu::always_inline]] inline U16 narrow(Wide32 a) {
    return (U16)QORV_MM(packus_epi32)((Register)a.lo, (Register)a.hi);
}

[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    const Register packed = QORV_MM(packus_epi16)((Register)(a & 0xFF), (Register)(b & 0xFF));
#if QORV_VECTOR_BYTES == 32
    return (U8)_mm256_permute4x64_epi64(packed, 0xD8);  // the two lanes of a, then those of b
#else
    return (U8)packed;
#endif
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> join(Vec<uint32_t, 16> a, Vec<uint32_t, 16> b) {
    return (Vec<uint16_t, 16>)_mm_packus_epi32((__m128i)a, (__m128i)b);
}

template <int N>
[[gnu::always_inline]] inline U8 narrow_shifted(U16 a, U16 b) {
    return (U8)QORV_MM(packus_epi16)((Register)(a >> N), (Register)(b >> N));
}

constexpr int kBlendBits = 0;

template <int N>
[[gnu::always_inline]] inline U8 narrow_blend(U16 a, U16 b, U16 c, U16 d) {
    U16 upper = splat<U16>(8 - N), lower = splat<U16>(N);
    if constexpr (N == 4) return narrow_shifted<4>(a + b, c + d);
    hide_origin(upper);  // or g++ makes shifts and sums of the products
    hide_origin(lower);
    return narrow_shifted<6>(a * upper + b * lower, c * upper + d * lower);
}

[[gnu::always_inline]] inline Vec<int16_t, 16> widen_low(Vec<uint8_t, 16> a) {
    return (Vec<int16_t, 16>)_mm_cvtepu8_epi16((__m128i)a);
}

#if QORV_VECTOR_BYTES == 32

[[gnu::always_inline]] inline Vec<int16_t, 32> widen(Vec<uint8_t, 16> a) {
    return (Vec<int16_t, 32>)_mm256_cvtepu8_epi16((__m128i)a);
}

#endif

// ---- Shuffle ----

[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 indices) {
    return (U8)QORV_MM(shuffle_epi8)((Register)v, (Register)indices);
}

// An index with its highest bit set selects 0.
[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 w, U8 indices) {
    return shuffle(v, (U8)QORV_MM(adds_epu8)((Register)indices, QORV_MM(set1_epi8)(0x70))) | shuffle(w, indices - 16);
}

constexpr bool kPairsSideBySide = true;

[[gnu::always_inline]] inline Vec<uint8_t, 16> pair_up(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint8_t, 16>)(a | (b << 8));
}

template <int Bytes, class V>
requires(sizeof(V) == 16) [[gnu::always_inline]] inline void exchange(V &a, V &b) {
    static_assert(Bytes == 4 || Bytes == 8);
    const __m128i x = (__m128i)a, y = (__m128i)b;
    a = Bytes == 4 ? (V)_mm_shuffle_ps((__m128)x, (__m128)y, 0x88) : (V)_mm_unpacklo_epi64(x, y);
    b = Bytes == 4 ? (V)_mm_shuffle_ps((__m128)x, (__m128)y, 0xDD) : (V)_mm_unpackhi_epi64(x, y);
}

#if QORV_VECTOR_BYTES == 32

template <int Bytes, class V>
requires(sizeof(V) == 32) [[gnu::always_inline]] inline void exchange(V &a, V &b) {
    static_assert(Bytes == 4 || Bytes == 8 || Bytes == 16);
    const __m256i x = (__m256i)a, y = (__m256i)b;
    if constexpr (Bytes == 16) {
        a = (V)_mm256_permute2x128_si256(x, y, 0x20);
        b = (V)_mm256_permute2x128_si256(x, y, 0x31);
        return;
    }
    a = Bytes == 4 ? (V)_mm256_shuffle_ps((__m256)x, (__m256)y, 0x88) : (V)_mm256_unpacklo_epi64(x, y);
    b = Bytes == 4 ? (V)_mm256_shuffle_ps((__m256)x, (__m256)y, 0xDD) : (V)_mm256_unpackhi_epi64(x, y);
}

[[gnu::always_inline]] inline Vec<uint8_t, 32> concatenate(Vec<uint8_t, 16> lo, Vec<uint8_t, 16> hi) {
    return (Vec<uint8_t, 32>)_mm256_setr_m128i((__m128i)lo, (__m128i)hi);
}

#endif

// ---- Reduce ----

template <int Bytes>
using ByteDistances = Vec<int64_t, Bytes>;
constexpr int kMaxByteDistances = 1 << 20;

template <int Bytes>
using ByteSquares = Vec<uint32_t, Bytes>;

[[gnu::always_inline]] inline void add_byte_distances(Vec<int64_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    sum += (Vec<int64_t, 16>)_mm_sad_epu8((__m128i)a, (__m128i)b);
    hide_origin(sum);  // in this order: no tree of many sums, not all rows of A loaded ahead
}

// a and b side by side, times 1 and -1, give a - b in 16 bits.
[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    const __m128i signs = _mm_set1_epi16(static_cast<int16_t>(0xFF01));
    const __m128i lo = _mm_maddubs_epi16(_mm_unpacklo_epi8((__m128i)a, (__m128i)b), signs);
    const __m128i hi = _mm_maddubs_epi16(_mm_unpackhi_epi8((__m128i)a, (__m128i)b), signs);
    sum += (Vec<uint32_t, 16>)_mm_madd_epi16(lo, lo);
    sum += (Vec<uint32_t, 16>)_mm_madd_epi16(hi, hi);
}

[[gnu::always_inline]] inline void add_pairs(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    static constexpr Vec<int16_t, 16> kOnes = Vec<int16_t, 16>{} + 1;
    sum += (Vec<uint32_t, 16>)_mm_madd_epi16((__m128i)a, (__m128i)constant(kOnes));
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> squares_of_pairs(Vec<int16_t, 16> a) {
    return (Vec<uint32_t, 16>)_mm_madd_epi16((__m128i)a, (__m128i)a);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> max_of_pairs(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    const __m128i even = _mm_blend_epi16((__m128i)a, _mm_slli_epi32((__m128i)b, 16), 0xAA);
    const __m128i odd = _mm_blend_epi16(_mm_srli_epi32((__m128i)a, 16), (__m128i)b, 0xAA);
    return (Vec<uint16_t, 16>)_mm_max_epu16(even, odd);
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> max_of_pairs(Vec<uint32_t, 16> a, Vec<uint32_t, 16> b) {
    return (Vec<uint32_t, 16>)_mm_max_epu32((__m128i)_mm_shuffle_ps((__m128)a, (__m128)b, 0x88),
                                            (__m128i)_mm_shuffle_ps((__m128)a, (__m128)b, 0xDD));
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint16_t, 16> a) {
    return (static_cast<uint32_t>(_mm_movemask_epi8((__m128i)a)) & 0xAAAAAAAA) != 0;
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint32_t, 16> a) {
    return _mm_movemask_ps((__m128)a) != 0;
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<int64_t, 16> a) {
    return static_cast<uint32_t>(
        _mm_cvtsi128_si32(_mm_add_epi32((__m128i)a, _mm_unpackhi_epi64((__m128i)a, (__m128i)a))));
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 16> a) {
    const __m128i odd = _mm_shuffle_epi32((__m128i)a, 0xF5);
    return sum_lanes((Vec<int64_t, 16>)_mm_add_epi32((__m128i)a, odd));
}

#if QORV_VECTOR_BYTES == 32

[[gnu::always_inline]] inline void add_byte_distances(Vec<int64_t, 32> &sum, Vec<uint8_t, 32> a, Vec<uint8_t, 32> b) {
    sum += (Vec<int64_t, 32>)_mm256_sad_epu8((__m256i)a, (__m256i)b);
    hide_origin(sum);
}

[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 32> &sum, Vec<uint8_t, 32> a, Vec<uint8_t, 32> b) {
    const __m256i signs = _mm256_set1_epi16(static_cast<int16_t>(0xFF01));
    const __m256i lo = _mm256_maddubs_epi16(_mm256_unpacklo_epi8((__m256i)a, (__m256i)b), signs);
    const __m256i hi = _mm256_maddubs_epi16(_mm256_unpackhi_epi8((__m256i)a, (__m256i)b), signs);
    sum += (Vec<uint32_t, 32>)_mm256_madd_epi16(lo, lo);
    sum += (Vec<uint32_t, 32>)_mm256_madd_epi16(hi, hi);
}

[[gnu::always_inline]] inline void add_pairs(Vec<uint32_t, 32> &sum, Vec<uint16_t, 32> a) {
    static constexpr Vec<int16_t, 32> kOnes = Vec<int16_t, 32>{} + 1;
    sum += (Vec<uint32_t, 32>)_mm256_madd_epi16((__m256i)a, (__m256i)constant(kOnes));
}

[[gnu::always_inline]] inline Vec<uint32_t, 32> squares_of_pairs(Vec<int16_t, 32> a) {
    return (Vec<uint32_t, 32>)_mm256_madd_epi16((__m256i)a, (__m256i)a);
}

[[gnu::always_inline]] inline Vec<uint16_t, 32> max_of_pairs(Vec<uint16_t, 32> a, Vec<uint16_t, 32> b) {
    const __m256i even = _mm256_blend_epi16((__m256i)a, _mm256_slli_epi32((__m256i)b, 16), 0xAA);
    const __m256i odd = _mm256_blend_epi16(_mm256_srli_epi32((__m256i)a, 16), (__m256i)b, 0xAA);
    return (Vec<uint16_t, 32>)_mm256_max_epu16(even, odd);
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint16_t, 32> a) {
    return (static_cast<uint32_t>(_mm256_movemask_epi8((__m256i)a)) & 0xAAAAAAAA) != 0;
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint32_t, 32> a) {
    return _mm256_movemask_ps((__m256)a) != 0;
}

template <class V>
[[gnu::always_inline]] inline V add_halves(__m256i a) {
    return (V)_mm_add_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<int64_t, 32> a) {
    return sum_lanes(add_halves<Vec<int64_t, 16>>((__m256i)a));
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 32> a) {
    return sum_lanes(add_halves<Vec<uint32_t, 16>>((__m256i)a));
}

#endif

}  // namespace qorv::QORV_ISA

#endif
