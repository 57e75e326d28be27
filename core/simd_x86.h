// The primitives of core/simd.h for x86: SSE4.1 (v2) and AVX2 (v3).
#pragma once

#ifdef QORV_SIMD_X86

// The intrinsic of the full register: both sets have the same operations, AVX2 does them in each 128-bit lane.
#if defined(QORV_ISA_IS_v3)
#define QORV_MM(operation) _mm256_##operation
#else
#define QORV_MM(operation) _mm_##operation
#endif

namespace qorv::QORV_ISA {

#if defined(QORV_ISA_IS_v3)
using Register = __m256i;
#else
using Register = __m128i;
#endif

// The same 16 bytes in every lane.
[[gnu::always_inline]] inline Register every_lane(__m128i v) {
#if defined(QORV_ISA_IS_v3)
    return _mm256_broadcastsi128_si256(v);
#else
    return v;
#endif
}

// ---- Colour conversion ----

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    const Register weights = QORV_MM(set1_epi16)(static_cast<int16_t>(B * 256 + (A & 0xFF)));
    return {(U16)QORV_MM(maddubs_epi16)(QORV_MM(unpacklo_epi8)((Register)a, (Register)b), weights),
            (U16)QORV_MM(maddubs_epi16)(QORV_MM(unpackhi_epi8)((Register)a, (Register)b), weights)};
}

[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return (U8)QORV_MM(packus_epi16)((Register)(w.lo >> 8), (Register)(w.hi >> 8));
}

// The upper half of (256 v + low) x C: C low / 256 is what is added before the shift.
template <int C>
[[gnu::always_inline]] inline U8 high_bytes_of_product(U8 v, int low) {
    const Register factor = QORV_MM(set1_epi16)(C), lows = QORV_MM(set1_epi8)(static_cast<char>(low));
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

[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    const Register packed = QORV_MM(packus_epi16)((Register)(a & 0xFF), (Register)(b & 0xFF));
#if defined(QORV_ISA_IS_v3)
    return (U8)_mm256_permute4x64_epi64(packed, 0xD8);  // the two lanes of a, then those of b
#else
    return (U8)packed;
#endif
}

[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return (U8)QORV_MM(adds_epu8)((Register)a, (Register)b);
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return (U8)QORV_MM(subs_epu8)((Register)a, (Register)b);
}

template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    const Register weights = QORV_MM(set1_epi32)(B * 65536 + (A & 0xFFFF));
    return {(I32)QORV_MM(madd_epi16)(QORV_MM(unpacklo_epi16)((Register)a, (Register)b), weights),
            (I32)QORV_MM(madd_epi16)(QORV_MM(unpackhi_epi16)((Register)a, (Register)b), weights)};
}

[[gnu::always_inline]] inline U16 narrow(Wide32 a) {
    return (U16)QORV_MM(packus_epi32)((Register)a.lo, (Register)a.hi);
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return (U16)QORV_MM(min_epu16)((Register)a, (Register)b);
}

// The `index`-th 16 bytes of `Channels` interleaved channels, and in the second lane those of the next 16 pixels.
template <int Channels>
[[gnu::always_inline]] inline Register load_lanes(const uint8_t *p, int index) {
    const __m128i *q = reinterpret_cast<const __m128i *>(p) + index;
#if defined(QORV_ISA_IS_v3)
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(q)), _mm_loadu_si128(q + Channels), 1);
#else
    return _mm_loadu_si128(q);
#endif
}

[[gnu::always_inline]] inline void load_interleaved2(const uint8_t *p, U8 &a, U8 &b) {
    const U16 v0 = (U16)load_lanes<2>(p, 0), v1 = (U16)load_lanes<2>(p, 1);
    a = (U8)QORV_MM(packus_epi16)((Register)(v0 & 0xFF), (Register)(v1 & 0xFF));
    b = (U8)QORV_MM(packus_epi16)((Register)(v0 >> 8), (Register)(v1 >> 8));
}

// Stores registers one after the other, all their first lanes before all their second ones. Whole registers are
// stored: half as many stores wait for their cache lines.
[[gnu::always_inline]] inline void store_lanes(uint8_t *p, Register a, Register b) {
#if defined(QORV_ISA_IS_v3)
    store(p, _mm256_permute2x128_si256(a, b, 0x20));
    store(p + 32, _mm256_permute2x128_si256(a, b, 0x31));
#else
    store(p, a);
    store(p + 16, b);
#endif
}

[[gnu::always_inline]] inline void store_lanes(uint8_t *p, Register a, Register b, Register c) {
#if defined(QORV_ISA_IS_v3)
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
#if defined(QORV_ISA_IS_v3)
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

// 16 bytes that a shuffle takes from places f(0), f(1), ...: negative gives 0.
template <class F>
[[gnu::always_inline]] inline Register shuffle_indices(F f) {
    return every_lane(_mm_setr_epi8(
        static_cast<char>(f(0)), static_cast<char>(f(1)), static_cast<char>(f(2)), static_cast<char>(f(3)),
        static_cast<char>(f(4)), static_cast<char>(f(5)), static_cast<char>(f(6)), static_cast<char>(f(7)),
        static_cast<char>(f(8)), static_cast<char>(f(9)), static_cast<char>(f(10)), static_cast<char>(f(11)),
        static_cast<char>(f(12)), static_cast<char>(f(13)), static_cast<char>(f(14)), static_cast<char>(f(15))));
}

// One of three interleaved channels: the union of a shuffle of each register.
template <int Channel>
[[gnu::always_inline]] inline U8 gather3(Register v0, Register v1, Register v2) {
    const auto from = [](int index) {
        return [index](int i) { return (3 * i + Channel) / 16 == index ? (3 * i + Channel) % 16 : -1; };
    };
    const Register s0 = QORV_MM(shuffle_epi8)(v0, shuffle_indices(from(0)));
    const Register s1 = QORV_MM(shuffle_epi8)(v1, shuffle_indices(from(1)));
    const Register s2 = QORV_MM(shuffle_epi8)(v2, shuffle_indices(from(2)));
    return (U8)s0 | (U8)s1 | (U8)s2;
}

[[gnu::always_inline]] inline void load_interleaved3(const uint8_t *p, U8 &a, U8 &b, U8 &c) {
    const Register v0 = load_lanes<3>(p, 0), v1 = load_lanes<3>(p, 1), v2 = load_lanes<3>(p, 2);
    a = gather3<0>(v0, v1, v2);
    b = gather3<1>(v0, v1, v2);
    c = gather3<2>(v0, v1, v2);
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

// Four channels: in each register, the four samples of a channel are gathered into a 32-bit lane, then the 4 x 4 matrix
// of those lanes is transposed.
[[gnu::always_inline]] inline void load_interleaved4(const uint8_t *p, U8 &a, U8 &b, U8 &c, U8 &d) {
    const Register gather = every_lane(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    const Register v0 = QORV_MM(shuffle_epi8)(load_lanes<4>(p, 0), gather);
    const Register v1 = QORV_MM(shuffle_epi8)(load_lanes<4>(p, 1), gather);
    const Register v2 = QORV_MM(shuffle_epi8)(load_lanes<4>(p, 2), gather);
    const Register v3 = QORV_MM(shuffle_epi8)(load_lanes<4>(p, 3), gather);
    const Register ab01 = QORV_MM(unpacklo_epi32)(v0, v1), cd01 = QORV_MM(unpackhi_epi32)(v0, v1);
    const Register ab23 = QORV_MM(unpacklo_epi32)(v2, v3), cd23 = QORV_MM(unpackhi_epi32)(v2, v3);
    a = (U8)QORV_MM(unpacklo_epi64)(ab01, ab23);
    b = (U8)QORV_MM(unpackhi_epi64)(ab01, ab23);
    c = (U8)QORV_MM(unpacklo_epi64)(cd01, cd23);
    d = (U8)QORV_MM(unpackhi_epi64)(cd01, cd23);
}

[[gnu::always_inline]] inline void store_interleaved4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    const Register ab_lo = QORV_MM(unpacklo_epi8)((Register)a, (Register)b);
    const Register ab_hi = QORV_MM(unpackhi_epi8)((Register)a, (Register)b);
    const Register cd_lo = QORV_MM(unpacklo_epi8)((Register)c, (Register)d);
    const Register cd_hi = QORV_MM(unpackhi_epi8)((Register)c, (Register)d);
    store_lanes(p, QORV_MM(unpacklo_epi16)(ab_lo, cd_lo), QORV_MM(unpackhi_epi16)(ab_lo, cd_lo),
                QORV_MM(unpacklo_epi16)(ab_hi, cd_hi), QORV_MM(unpackhi_epi16)(ab_hi, cd_hi));
}

// ---- End of colour conversion ----

}  // namespace qorv::QORV_ISA

#endif
